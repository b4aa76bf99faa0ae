#!/usr/bin/env python3
"""Runs the matrix of `tessel verify`: known faults in known movies, named or missed, and clean movies, passed or not.

Three kinds of cells: `fault` (made by `tessel damage`), `clean` (random documents as `tessel render` writes them)
and `foreign` (made by other programs' filters). Each names exactly the findings that it expects. What is known to be
missed stands in known-misses.json with its reason; the run fails on any other miss, and on a known one that is no longer missed.

Results are kept in the output folder: a run that is broken off, or repeated, only makes what is new or has changed.
"""

import argparse
import collections
import concurrent.futures
import glob
import hashlib
import json
import os
import re
import resource
import shlex
import subprocess
import sys
import time

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)

from carriers import PICTURE, SOUND  # noqa: E402
from cells import Cell, Miss, Refused, Tools  # noqa: E402
from clips import CLIPS  # noqa: E402
from documents import COUNT, random_document  # noqa: E402
from faults import FAULTS  # noqa: E402
from foreign import FOREIGN  # noqa: E402

KNOWN = os.path.join(HERE, "known-misses.json")
NOT_CARRIED = "not carried"
SLICE_DOCUMENTS = 6
# Of each subject one, and quick.
SLICE_FOREIGN = ("scale in_range full out_range limited", "swapuv", "lutyuv gain", "select", "reverse", "trim start",
                 "scale half", "hflip", "il swaps fields", "pan swap", "volume", "adelay")


def fault_cells():
    """Every fault in every carrier. The slice has each fault once, in a carrier that changes from row to row, and
    leaves out the large chart."""
    documents = {name: make() for name, make in CLIPS.items()}
    for row, fault in enumerate(FAULTS):
        carrying = [carrier for carrier in fault.carriers if carrier.carries(fault.id)]
        for carrier in fault.carriers:
            name = f"fault/{fault.text}/{fault.clip}/{carrier.name}"
            if carrier not in carrying:
                yield Cell(name, None, {})
                continue

            def make(tools, base, fault=fault, carrier=carrier):
                clip, movie = tools.clip(fault.clip), base + carrier.extension
                try:
                    tools.make([*tools.program, "damage", clip, "--fault", fault.text, "-o", movie,
                                "--threads", "1", *carrier.options])
                finally:
                    tools.remove(movie + ".truth.json")
                return clip, movie

            in_slice = fault.clip != "chart" and carrier is carrying[row % len(carrying)]
            yield Cell(name, make, fault.expect, fault.inside, in_slice=in_slice, notes=fault.notes,
                       inputs=(documents[fault.clip], carrier.options))


def clean_cells():
    for seed in range(COUNT):
        root = random_document(seed)
        for index, carrier in enumerate(PICTURE):

            def make(tools, base, seed=seed, root=root, carrier=carrier):
                clip, movie = tools.save(f"random-{seed:02}", root), base + carrier.extension
                tools.render(clip, movie, carrier.options)
                return clip, movie

            in_slice = seed < SLICE_DOCUMENTS and index == seed % len(PICTURE)
            yield Cell(f"clean/{seed:02}/{carrier.name}", make, {}, in_slice=in_slice, inputs=root)


def foreign_cells():
    for row in FOREIGN:
        yield Cell(f"foreign/{row.name}", row.make, row.expect, row.inside, row.options,
                   in_slice=row.name in SLICE_FOREIGN, inputs=row.command)


def all_cells():
    return [*fault_cells(), *clean_cells(), *foreign_cells()]


def check_that_every_fault_has_a_row(program):
    """@raises SystemExit  where `tessel damage` can do what the table does not have"""
    listed = subprocess.run([*program, "damage", "--list"], stdout=subprocess.PIPE, check=True).stdout.decode()
    names = {re.match(r"[\w.-]+", line).group() for line in listed.splitlines() if not line.startswith(" ")}
    missing = sorted(names - {fault.id for fault in FAULTS})
    if missing:
        sys.exit(f"faults.py has no row for {', '.join(missing)}")


def known_misses():
    with open(KNOWN, encoding="utf-8") as file:
        return {cell: entry["reason"] for entry in json.load(file) for cell in entry["cells"]}


def fingerprint(program, plugin_folder):
    """Of all that a command runs: the program hands movies over to another one beside its libraries."""
    libraries = sorted(glob.glob(os.path.join(plugin_folder, "*.so")))
    movies = os.path.join(os.path.dirname(program), "..", "lib", "tessel", "tessel-movies")
    digest = hashlib.sha256()
    for path in (program, movies, *libraries):
        with open(path, "rb") as file:
            digest.update(file.read())
    return digest.hexdigest()[:16]


def run_cell(cell, tools):
    """@return {"state", "text", "commands"}; the state is ok, miss or refused"""
    if cell.make is None:
        return {"state": NOT_CARRIED, "text": "", "commands": []}
    own = tools.for_one_cell()
    started = time.monotonic()
    try:
        state, text = "ok", cell.run(own)
    except Refused as reason:
        state, text = "refused", str(reason)
    except Miss as reason:
        state, text = "miss", str(reason)
    return {"state": state, "text": text, "commands": [shlex.join(command) for command in own.commands],
            "seconds": round(time.monotonic() - started, 2)}


class Results:
    """What earlier runs of the same program found, by cell."""

    def __init__(self, path, program_key, from_anew):
        self.path = path
        self.program_key = program_key
        self.cells = {}
        if from_anew and os.path.exists(path):
            os.remove(path)
        if os.path.exists(path):
            with open(path, encoding="utf-8") as file:
                for line in file:
                    try:
                        entry = json.loads(line)
                        self.cells[entry["cell"]] = entry
                    except (ValueError, KeyError):
                        pass  # the last line of a run that was broken off

    def get(self, cell):
        entry = self.cells.get(cell.name)
        return entry if entry and entry["key"] == self._key(cell) else None

    def put(self, cell, result):
        entry = {"cell": cell.name, "key": self._key(cell), **result}
        self.cells[cell.name] = entry
        with open(self.path, "a", encoding="utf-8") as file:
            file.write(json.dumps(entry) + "\n")
        return entry

    def _key(self, cell):
        return hashlib.sha256(f"{self.program_key} {cell.definition()}".encode()).hexdigest()[:16]


def run_all(cells, tools, results, jobs):
    """@return results by cell name"""
    told = {}
    waiting = []
    for cell in cells:
        entry = results.get(cell)
        if entry:
            told[cell.name] = entry
        else:
            waiting.append(cell)
    progress = sys.stderr.isatty()
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        futures = {pool.submit(run_cell, cell, tools): cell for cell in waiting}
        for count, future in enumerate(concurrent.futures.as_completed(futures), 1):
            cell = futures[future]
            told[cell.name] = results.put(cell, future.result())
            if progress:
                print(f"\r{count} of {len(waiting)}", end="", file=sys.stderr, flush=True)
    if progress and waiting:
        print(file=sys.stderr)
    return told


def marked(state, is_known):
    if state == "miss":
        return "known" if is_known else "MISS"
    return {"ok": "ok", "refused": "-", NOT_CARRIED: "."}[state]


def table(told, known):
    """Rows of faults, columns of carriers. A point: the file has no place for it; a dash: it cannot be made."""
    columns = list(dict.fromkeys(carrier.name for carrier in (*PICTURE, *SOUND)))
    rows = collections.OrderedDict()
    for name, entry in told.items():
        kind, *rest = name.split("/")
        row = "/".join(rest[:-1]) if kind != "foreign" else "/".join(rest)
        column = rest[-1] if kind != "foreign" else "ffv1"
        rows.setdefault((kind, row), {})[column] = marked(entry["state"], name in known)
    lines = []
    for kind in ("fault", "clean"):
        some = {row: cells for (of, row), cells in rows.items() if of == kind}
        if not some:
            continue
        used = [column for column in columns if any(column in cells for cells in some.values())]
        lines.append(f"{kind:<38}" + "".join(f"{column:>8}" for column in used))
        for row, cells in some.items():
            lines.append(f"{row:<38}" + "".join(f"{cells.get(column, ''):>8}" for column in used))
        lines.append("")
    foreign = [(row, cells["ffv1"]) for (of, row), cells in rows.items() if of == "foreign"]
    lines += [f"{row:<46}{state:>8}" for row, state in foreign]
    return "\n".join(lines)


def judge(told, known):
    """Prints what is wrong. @return whether nothing is"""
    misses = [name for name, entry in told.items() if entry["state"] == "miss"]
    new = [name for name in misses if name not in known]
    fixed = [name for name in told if name in known and told[name]["state"] != "miss"]
    for name in new:
        print(f"\nMISS {name}\n  {told[name]['text']}")
        for command in told[name]["commands"]:
            print(f"  $ {command}")
    for name in fixed:
        print(f"\nFIXED {name}: remove it from {os.path.basename(KNOWN)} ({known[name]})")
    counts = collections.Counter(entry["state"] for entry in told.values())
    print(f"\n{counts['ok']} of {counts['ok'] + counts['miss']} cells as expected, {len(misses) - len(new)} known misses, "
          f"{len(new)} new ones, {len(fixed)} fixed; {counts['refused']} cannot be made, "
          f"{counts[NOT_CARRIED]} are not carried")
    return not new and not fixed


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--tessel", required=True, help="the program")
    parser.add_argument("--plugin", required=True, help="the folder of its plug-in")
    parser.add_argument("--folder", required=True, help="for clips, movies and results")
    parser.add_argument("--slice", action="store_true", help="what takes at most two minutes on two cores, from anew")
    parser.add_argument("--match", default="", help="only cells whose name matches this regular expression")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    parser.add_argument("--list", action="store_true", help="print the names of the cells and do nothing else")
    return parser.parse_args()


def main():
    options = arguments()
    cells = [cell for cell in all_cells() if re.search(options.match, cell.name)]
    if options.slice:
        cells = [cell for cell in cells if cell.in_slice]
    if options.list:
        print("\n".join(cell.name for cell in cells))
        return
    os.nice(10)
    os.makedirs(options.folder, exist_ok=True)
    tools = Tools(options.tessel, options.plugin, options.folder)
    tools.read_schema()
    check_that_every_fault_has_a_row(tools.program)
    known = known_misses()
    names = {cell.name for cell in all_cells()}
    stale = sorted(set(known) - names)
    if stale:
        sys.exit(f"{KNOWN} names cells that there are not: {', '.join(stale)}")
    for name, make in CLIPS.items():
        tools.save(name, make())
    results = Results(os.path.join(options.folder, "results.jsonl"), fingerprint(options.tessel, options.plugin),
                      from_anew=options.slice)
    told = run_all(cells, tools, results, options.jobs)
    told = {cell.name: told[cell.name] for cell in cells}
    text = table(told, known)
    with open(os.path.join(options.folder, "table.txt"), "w", encoding="utf-8") as file:
        file.write(text + "\n")
    print(text)
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    print(f"\nProcessor time: {usage.ru_utime + usage.ru_stime:.0f} s")
    if not judge(told, known):
        sys.exit(1)


if __name__ == "__main__":
    main()

"""One cell of the matrix: make a movie, let `tessel verify` judge it, compare the findings with the expected ones."""

import copy
import json
import math
import os
import re
import shlex
import subprocess
import tempfile
import threading

VERDICT_OF_EXIT = {0: "as expected", 3: "not as expected", 4: "undecided"}


class Refused(Exception):
    """The movie cannot be made: the clip has no place in such a file, or a tool is not installed."""


class Miss(Exception):
    """What was found is not what was put in."""


class Tools:
    """The program under test and a folder for clips and movies."""

    def __init__(self, program, plugin, folder):
        self.program = [program, "--plugin", plugin]
        self.folder = folder
        self.commands = []
        self.validator = None  # of reports, where jsonschema is installed
        self._shown = {}
        self._lock = threading.Lock()

    def for_one_cell(self):
        """The same with a list of commands of its own."""
        own = copy.copy(self)
        own.commands = []
        return own

    def clip(self, name):
        """The path of a clip that was saved."""
        return os.path.join(self.folder, name + ".tessel")

    def run(self, command, time_limit=600):
        """@raises Miss  where the command hangs or is killed by a signal"""
        self.commands.append(command)
        try:
            done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                  timeout=time_limit, check=False)
        except FileNotFoundError:
            raise Refused(f"{command[0]} is not installed") from None
        except subprocess.TimeoutExpired:
            raise Miss(f"no end after {time_limit} s: {shlex.join(command)}") from None
        if done.returncode < 0:
            raise Miss(f"killed by signal {-done.returncode}: {shlex.join(command)}")
        return done

    def make(self, command, may_refuse=False):
        """Runs what makes a movie.
        @param may_refuse  a failure of the work (exit code 1) is the tool's answer, not a fault of the table
        @raises Refused, Miss  with the last line that it said
        """
        done = self.run(command)
        if done.returncode != 0:
            lines = done.stderr.decode(errors="replace").strip().splitlines() or ["no message"]
            raise (Refused if may_refuse and done.returncode == 1 else Miss)(lines[-1])

    def save(self, name, root):
        """Writes a document, at once, because other cells may be reading it."""
        path = self.clip(name)
        with tempfile.NamedTemporaryFile("w", dir=self.folder, delete=False, encoding="utf-8") as file:
            json.dump(root, file)
        os.replace(file.name, path)
        return path

    def remove(self, path):
        """A file of the folder, if it is there."""
        if path and os.path.dirname(path) == self.folder and os.path.exists(path):
            os.remove(path)

    def render(self, clip, movie, options):
        self.make([*self.program, "render", clip, "-o", movie, "--quiet", "--threads", "1", *options], may_refuse=True)

    def verify(self, clip, movie, options=()):
        command = [*self.program, "verify", clip, movie, "--json", "--threads", "1", *options]
        done = self.run(command)
        if done.returncode not in VERDICT_OF_EXIT:
            raise Miss(f"exit code {done.returncode}: {done.stderr.decode(errors='replace').strip()}")
        report = json.loads(done.stdout)
        if report["verdict"] != VERDICT_OF_EXIT[done.returncode]:
            raise Miss(f"exit code {done.returncode} for the verdict '{report['verdict']}'")
        if self.validator:
            for error in self.validator.iter_errors(report):
                raise Miss(f"the report breaks its schema: {error.message}")
        return report

    def shown_by(self, clip):
        """The ids that `--visible` promises of a clip."""
        with self._lock:
            if clip not in self._shown:
                done = self.run([*self.program, "verify", "--visible", clip, "--json"])
                self._shown[clip] = set(json.loads(done.stdout)["asExpected"])
                self.commands.pop()
            return self._shown[clip]

    def read_schema(self):
        """From now on every report is validated."""
        try:
            import jsonschema
        except ImportError:
            return
        schema = json.loads(self.run([*self.program, "verify", "--schema"]).stdout)
        self.validator = jsonschema.Draft202012Validator(schema)


class Cell:
    """@param make      callable(Tools, base path without extension) -> (clip, movie)
    @param expected    id -> Value or None: exactly these findings stand at the root
    @param inside      id -> ids that must stand among its consequences
    @param options     for `tessel verify`
    @param inputs      what else the movie depends on
    @param notes       texts, each of which some note holds
    """

    def __init__(self, name, make, expected, inside=None, options=(), in_slice=False, inputs=None, notes=()):
        self.name = name
        self.make = make
        self.expected = expected
        self.inside = inside or {}
        self.options = list(options)
        self.in_slice = in_slice
        self.inputs = inputs
        self.notes = list(notes)

    def definition(self):
        """A text that changes where the cell does."""
        expected = {check: vars(value) if value else None for check, value in self.expected.items()}
        return repr((self.name, expected, self.inside, self.options, self.inputs, self.notes))

    def run(self, tools):
        """@return what to print behind the cell; @raises Refused, Miss"""
        base = os.path.join(tools.folder, re.sub(r"[^\w.=-]+", "_", self.name))
        movie = None
        try:
            clip, movie = self.make(tools, base)
            told = self.judge(tools.verify(clip, movie, self.options))
            # The container's checks depend on the file; all others on what the clip shows.
            hidden = [check for check in self.expected
                      if not check.startswith("container.") and check not in tools.shown_by(clip)]
            if hidden:
                raise Miss(f"{', '.join(hidden)} is named, but --visible says that this clip does not show it")
            return told
        finally:
            tools.remove(movie)

    def judge(self, report):
        findings = {finding["id"]: finding for finding in report["findings"]}
        wrong = []
        for check in self.expected:
            finding = findings.get(check)
            if finding is None:
                wrong.append(f"{check} is not named")
            elif finding["verdict"] != "not as expected":
                wrong.append(f"{check} is undecided")
        wrong += [f"beside it {check} ({finding['verdict']}): {finding['message']}"
                  for check, finding in findings.items() if check not in self.expected]
        for check, value in self.expected.items():
            if value is not None and check in findings:
                problem = value.problem(findings[check])
                if problem:
                    wrong.append(f"{check}: {problem}")
        for check, ids in self.inside.items():
            told = {inner["id"] for inner in findings.get(check, {"consequences": []})["consequences"]}
            wrong += [f"{missing} does not stand inside {check}" for missing in ids if missing not in told]
        wrong += [f"no note says '{text}'" for text in self.notes
                  if not any(text in note for note in report["notes"])]
        if wrong:
            raise Miss("; ".join(wrong))
        return ", ".join(findings) or "nothing found"


class Near:
    """A number within the finding's own uncertainty. `floor` is what the way the fault is made leaves open."""

    def __init__(self, value, floor=1e-6):
        self.value = value
        self.floor = floor

    def problem(self, finding):
        found, uncertainty = finding.get("found"), finding.get("uncertainty") or 0.0
        if not isinstance(found, (int, float)):
            return f"found {found!r} instead of {self.value:g}"
        if abs(found - self.value) > uncertainty + self.floor:
            return f"found {found:.6g} ± {uncertainty:.3g} instead of {self.value:g}"
        return None


class Modulo:
    """A number that is only told but for whole multiples of a period."""

    def __init__(self, value, period):
        self.value = value
        self.period = period

    def problem(self, finding):
        found, uncertainty = finding.get("found"), finding.get("uncertainty") or 0.0
        off = math.remainder(found - self.value, self.period)
        if abs(off) > uncertainty + 1e-6:
            return f"found {found:.6g} ± {uncertainty:.3g} instead of {self.value:g} modulo {self.period:g}"
        return None


class Text:
    """A text that the found value is, or holds."""

    def __init__(self, *words):
        self.words = words

    def problem(self, finding):
        found = str(finding.get("found"))
        return None if any(word in found for word in self.words) else f"found {found!r} instead of {self.words[0]!r}"


class Frames:
    """The first and last frame, and optionally a Value."""

    def __init__(self, first, last, value=None, kind="frames"):
        self.spans = [(first, last)]
        self.value = value
        self.kind = kind

    def problem(self, finding):
        spans = [(span["first"], span["last"]) for span in finding.get(self.kind) or []]
        covered = sorted({number for first, last in spans for number in (first, last)})
        wanted = sorted({number for first, last in self.spans for number in (first, last)})
        if covered != wanted:
            return f"{self.kind} {spans} instead of {self.spans}"
        return self.value.problem(finding) if self.value else None

#!/usr/bin/env python3
"""Measures where `tessel verify` ends: the smallest numbers it reads, the smallest faults it tells, the longest movie.

Prints Markdown. With --document FILE each table is written there, between the lines "<!-- limits: NAME -->" and
"<!-- end of limits: NAME -->".
"""

import argparse
import concurrent.futures
import os
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from cells import Miss, Tools  # noqa: E402
from clips import CLIPS, RATE, picture  # noqa: E402

HEIGHTS = (180, 108, 90, 72, 54, 44)
QUALITIES = {"h264": (18, 28, 40, 51), "hevc": (28, 40, 51), "mpeg2": (2, 10, 28)}
READ_FRAMES = 24

# Of each fault: the clip, the amounts from large to small, the unit, and the carriers. {} is the amount.
SOUND_CARRIERS = {"PCM": (".mov", ["--video-codec", "v210", "--audio-codec", "pcm24"]),
                  "FLAC": (".mkv", ["--video-codec", "ffv1"]),
                  "AAC": (".mp4", ["--video-codec", "h264", "--quality", "23"])}
PICTURE_CARRIERS = {"FFV1": (".mkv", ["--video-codec", "ffv1"]),
                    "ProRes": (".mov", ["--video-codec", "prores"]),
                    "H.264, CRF 23": (".mp4", ["--video-codec", "h264", "--quality", "23"])}
FRAME_MS = 1000 / RATE
FAULTS = [
    ("sync.offset={}", "stereo", (100, 40, 20, 10, 5, 4, 3.5, 3, 2, 1.5, 1.1, 1, 0.5),
     f"ms; a frame is {FRAME_MS:.1f} ms", SOUND_CARRIERS),
    ("audio.drift={}", "tone", (400, 100, 30, 10, 7, 6, 5, 3, 2, 1.5, 1.1, 1, 0.5), "ppm", SOUND_CARRIERS),
    ("audio.gain={}", "tone", (3, 1, 0.5, 0.4, 0.35, 0.3, 0.2, 0.1, 0.06, 0.05, 0.02), "dB", SOUND_CARRIERS),
    ("audio.lost={}:4", "stereo", (500, 100, 10, 5, 3, 2, 1), "samples", SOUND_CARRIERS),
    ("color.gain={}", "gradient", (0.9, 0.95, 0.97, 0.975, 0.98, 0.985, 0.99, 0.993, 0.995), "factor",
     PICTURE_CARRIERS),
    ("color.offset={}", "gradient", (0.05, 0.02, 0.015, 0.01, 0.008, 0.006, 0.005, 0.004, 0.002), "8-bit codes",
     PICTURE_CARRIERS),
    ("color.saturation={}", "gradient", (0.8, 0.9, 0.95, 0.96, 0.97, 0.975, 0.98, 0.985, 0.99), "factor",
     PICTURE_CARRIERS),
    ("color.hue={}", "gradient", (10, 5, 3, 2.5, 2, 1.5, 1, 0.7, 0.5), "degrees", PICTURE_CARRIERS),
    ("color.siting={}", "chart", (2, 1, 0.5, 0.4, 0.3, 0.25, 0.2), "luma pixels", PICTURE_CARRIERS),
    ("geometry.shifted={}", "gradient", (2.5, 1, 0.5, 0.4, 0.3, 0.25, 0.2, 0.15, 0.1), "pixels", PICTURE_CARRIERS),
]
# What amounts are multiplied by to have the unit: an offset is put in as a part of white, 219 codes above black.
IN_UNITS = {"color.offset={}": 219}
# Of each length: the size, the movie's extension and options.
SMALL = ((160, 90), ".mkv", ["--video-codec", "ffv1"])
LARGE = ((1920, 1080), ".mp4", ["--video-codec", "h264", "--quality", "23"])
LENGTHS = [(SMALL, 500), (SMALL, 5_000), (SMALL, 20_000), (SMALL, 100_000), (LARGE, 100), (LARGE, 500)]


def width_of(height):
    return height * 16 // 9 // 2 * 2


def share_read(tools, codec, height, quality):
    """Of 24 pictures the numbers that were read right."""
    name = f"read-{codec}-{height}-{quality}"
    clip = tools.save(f"read-{height}", picture(size=(width_of(height), height), frames=READ_FRAMES))
    movie = os.path.join(tools.folder, name + (".mxf" if codec == "mpeg2" else ".mp4"))
    try:
        tools.render(clip, movie, ["--video-codec", codec, "--quality", str(quality), "--video-only"])
        report = tools.verify(clip, movie)
    finally:
        tools.remove(movie)
    right = sum(step["pictures"] for step in report["alignment"]["steps"]
                if step["kind"] == "shown" and step["picture"] == step["frame"])
    return right if report["alignment"]["method"] == "number" else 0


def smallest(tools, fault, clip_name, amounts, extension, options):
    """By halving: an amount that is named while the next smaller one is not, and the uncertainty of the number found.
    None where not even the largest is named."""
    check = fault.split("=")[0]
    clip = tools.clip(clip_name)

    def uncertainty_of(amount):
        """None where the fault is not named."""
        base = f"{fault.format(amount)}{extension}".replace(":", "_").replace("/", "_")
        movie = os.path.join(tools.folder, base)
        try:
            tools.make([*tools.program, "damage", clip, "--fault", fault.format(amount), "-o", movie, "--threads", "1",
                        *options])
            report = tools.verify(clip, movie)
        except Miss:
            return None
        finally:
            tools.remove(movie)
            tools.remove(movie + ".truth.json")
        found = [finding for finding in report["findings"]
                 if finding["id"] == check and finding["verdict"] == "not as expected"]
        return (found[0]["uncertainty"] or 0) if found else None

    named, unnamed = -1, len(amounts)  # places in `amounts`: all before are named, all from there on are not
    uncertainty = 0
    while named + 1 < unnamed:
        tried = (named + unnamed) // 2
        found = uncertainty_of(amounts[tried])
        if found is None:
            unnamed = tried
        else:
            named, uncertainty = tried, found
    return (amounts[named], uncertainty) if named >= 0 else None


def told(smallest_fault, in_units):
    """A cell of the table."""
    if smallest_fault is None:
        return "none"
    amount, uncertainty = smallest_fault
    text = f"{amount * in_units:.3g}"
    return text if uncertainty == 0 else f"{text} ± {uncertainty:.2g}"


def peak_of(tools, kind, frames):
    """Megabytes of a comparison."""
    size, extension, options = kind
    clip = tools.save(f"long-{size[1]}-{frames}", picture(size=size, frames=frames))
    movie = os.path.join(tools.folder, f"long-{size[1]}-{frames}{extension}")
    tools.render(clip, movie, options)
    process = subprocess.Popen([*tools.program, "verify", clip, movie, "--quiet"])
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    os.remove(movie)
    if process.returncode != 0:
        raise Miss(f"{frames} pictures of {size[0]}x{size[1]} are not as expected")
    return usage.ru_maxrss / 1024


def reading_table(tools, pool):
    lines = ["Numbers read right, of 24 pictures of a gradient, by the picture's size and the encoder's CRF (MPEG-2: "
             "quantiser).", ""]
    columns = [(codec, quality) for codec, qualities in QUALITIES.items() for quality in qualities]
    lines.append("| Size | " + " | ".join(f"{codec} {quality}" for codec, quality in columns) + " |")
    lines.append("|---" * (len(columns) + 1) + "|")
    for height in HEIGHTS:
        shares = pool.map(lambda column: share_read(tools, column[0], height, column[1]), columns)
        cells = ["all" if share == READ_FRAMES else str(share) for share in shares]
        lines.append(f"| {width_of(height)}x{height} | " + " | ".join(cells) + " |")
    return lines


def fault_table(tools, pool):
    lines = ["The smallest fault that is named, of the amounts tried, with the uncertainty of the number that is "
             "reported."]
    for carriers in (SOUND_CARRIERS, PICTURE_CARRIERS):
        lines += ["", "| Fault | Tried | " + " | ".join(carriers) + " |", "|---" * (len(carriers) + 2) + "|"]
        rows = [row for row in FAULTS if row[-1] is carriers]
        cells = [pool.submit(smallest, tools, fault, clip, amounts, extension, options)
                 for fault, clip, amounts, _, _ in rows for extension, options in carriers.values()]
        for place, (fault, _, amounts, unit, _) in enumerate(rows):
            own = cells[place * len(carriers):(place + 1) * len(carriers)]
            in_units = IN_UNITS.get(fault, 1)
            tried = ", ".join(f"{amount * in_units:.3g}" for amount in amounts)
            lines.append(f"| `{fault.split('=')[0]}` ({unit}) | {tried} | "
                         + " | ".join(told(cell.result(), in_units) for cell in own) + " |")
            print(lines[-1], file=sys.stderr, flush=True)
    return lines


def memory_table(tools, longest):
    lines = [f"The most memory that a comparison takes with {os.cpu_count()} cores, by the movie's length.", "",
             "| Movie | Pictures | Megabytes |", "|---|---|---|"]
    for kind, frames in LENGTHS:
        if frames <= longest:
            (width, height), _, options = kind
            lines.append(f"| {width}x{height}, {options[1]} | {frames:,} | {peak_of(tools, kind, frames):.0f} |")
            print(lines[-1], file=sys.stderr, flush=True)
    return lines


def write_into(path, name, text):
    begin, end = f"<!-- limits: {name} -->\n", f"<!-- end of limits: {name} -->"
    with open(path, encoding="utf-8") as file:
        before, rest = file.read().split(begin, 1)
    after = rest.split(end, 1)[1]
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"{before}{begin}{text}\n{end}{after}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--tessel", required=True, help="the program")
    parser.add_argument("--plugin", required=True, help="the folder of its plug-in")
    parser.add_argument("--folder", required=True, help="for clips and movies")
    parser.add_argument("--document", help="where the tables stand")
    parser.add_argument("--table", choices=("numbers", "faults", "memory"), action="append",
                        help="which table; all where not said")
    parser.add_argument("--longest", type=int, default=20_000, help="pictures of the longest movie (%(default)s)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    options = parser.parse_args()
    os.makedirs(options.folder, exist_ok=True)
    tools = Tools(options.tessel, options.plugin, options.folder)
    for name in ("gradient", "stereo", "tone", "chart"):
        tools.save(name, CLIPS[name]())
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        tables = {"numbers": lambda: reading_table(tools, pool), "faults": lambda: fault_table(tools, pool),
                  "memory": lambda: memory_table(tools, options.longest)}
        for name in options.table or tables:
            text = "\n".join(tables[name]())
            print(text, flush=True)
            if options.document:
                write_into(options.document, name, text)


if __name__ == "__main__":
    main()

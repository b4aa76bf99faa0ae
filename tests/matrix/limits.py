#!/usr/bin/env python3
"""Measures where `tessel verify` ends: the smallest numbers it reads, the smallest faults it tells, the longest movie.

Prints Markdown. With --document FILE each table is written there, between the lines "<!-- limits: NAME -->" and
"<!-- end of limits: NAME -->".
"""

import argparse
import concurrent.futures
import itertools
import os
import subprocess
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from cells import Miss, Tools  # noqa: E402
from clips import CLIPS, document, picture, tone  # noqa: E402

HEIGHTS = (180, 108, 90, 72, 54, 44)
QUALITIES = {"h264": (18, 28, 40, 51), "hevc": (28, 40, 51), "mpeg2": (2, 10, 28)}
READ_FRAMES = 24

# Of each fault: the clip, the amounts from large to small, and the unit. {} is the amount.
SOUND_CARRIERS = {"PCM 24": (".mov", ["--video-codec", "v210", "--audio-codec", "pcm24"]),
                  "FLAC 24": (".mkv", ["--video-codec", "ffv1"]),
                  "AAC": (".mp4", ["--video-codec", "h264", "--quality", "23"])}
PICTURE_CARRIERS = {"FFV1": (".mkv", ["--video-codec", "ffv1"]),
                    "ProRes": (".mov", ["--video-codec", "prores"]),
                    "H.264 CRF 23": (".mp4", ["--video-codec", "h264", "--quality", "23"])}
FAULTS = [
    ("sync.offset={}", "stereo", (40, 20, 10, 5, 2, 1, 0.5), "ms", SOUND_CARRIERS),
    ("audio.drift={}", "tone", (400, 100, 30, 10, 5, 2, 1), "ppm", SOUND_CARRIERS),
    ("audio.gain={}", "tone", (3, 1, 0.5, 0.2, 0.1, 0.05, 0.02), "dB", SOUND_CARRIERS),
    ("audio.lost={}:4", "stereo", (500, 100, 10, 5, 2, 1), "samples", SOUND_CARRIERS),
    ("color.gain={}", "gradient", (0.9, 0.95, 0.97, 0.98, 0.99, 0.995), "", PICTURE_CARRIERS),
    ("color.offset={}", "gradient", (0.05, 0.02, 0.01, 0.005, 0.002), "of white", PICTURE_CARRIERS),
    ("color.hue={}", "gradient", (10, 5, 3, 2, 1, 0.5), "degrees", PICTURE_CARRIERS),
    ("color.saturation={}", "gradient", (0.8, 0.9, 0.95, 0.97, 0.98, 0.99), "", PICTURE_CARRIERS),
    ("geometry.shifted={}", "gradient", (2.5, 1, 0.5, 0.3, 0.2, 0.1), "pixels", PICTURE_CARRIERS),
    ("color.siting={}", "chart", (2, 1, 0.5, 0.25), "luma pixels", PICTURE_CARRIERS),
]


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


def smallest(tools, pool, fault, clip_name, amounts, extension, options):
    """The smallest amount that is named, all larger ones being named as well; None where not even the largest is."""
    check = fault.split("=")[0]
    clip = tools.clip(clip_name)

    def is_named(amount):
        base = f"{fault.format(amount)}{extension}".replace(":", "_").replace("/", "_")
        movie = os.path.join(tools.folder, base)
        try:
            tools.make([*tools.program, "damage", clip, "--fault", fault.format(amount), "-o", movie, "--threads", "1",
                        *options])
            report = tools.verify(clip, movie)
        except Miss:
            return False
        finally:
            tools.remove(movie)
            tools.remove(movie + ".truth.json")
        return any(finding["id"] == check and finding["verdict"] == "not as expected"
                   for finding in report["findings"])

    named = list(itertools.takewhile(lambda pair: pair[1], zip(amounts, pool.map(is_named, amounts))))
    return named[-1][0] if named else None


def peak_of(tools, frames):
    """Megabytes and seconds of a comparison."""
    clip = tools.save(f"long-{frames}", document("bgrx", (160, 90), rate=(25, 1), frames=frames, number=True, **tone()))
    movie = os.path.join(tools.folder, f"long-{frames}.mkv")
    tools.render(clip, movie, [])
    started = time.monotonic()
    process = subprocess.Popen([*tools.program, "verify", clip, movie, "--quiet"])
    _, _, usage = os.wait4(process.pid, 0)
    process.returncode = 0
    os.remove(movie)
    return usage.ru_maxrss / 1024, time.monotonic() - started


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
    lines = ["The smallest fault that is named, of the amounts tried; every larger one is named, too.", ""]
    for carriers in (SOUND_CARRIERS, PICTURE_CARRIERS):
        lines.append("| Fault | Tried | " + " | ".join(carriers) + " |")
        lines.append("|---" * (len(carriers) + 2) + "|")
        for fault, clip, amounts, unit, of in FAULTS:
            if of is not carriers:
                continue
            told = [smallest(tools, pool, fault, clip, amounts, extension, options)
                    for extension, options in carriers.values()]
            tried = ", ".join(f"{amount:g}" for amount in amounts)
            cells = ["none" if amount is None else f"{amount:g}" for amount in told]
            lines.append(f"| `{fault.split('=')[0]}` ({unit or 'factor'}) | {tried} | " + " | ".join(cells) + " |")
        lines.append("")
    return lines[:-1]


def memory_table(tools, lengths):
    lines = ["Memory of a comparison by the movie's length (160x90, FFV1 and FLAC).", "",
             "| Pictures | Megabytes | Pictures a second |", "|---|---|---|"]
    for frames in lengths:
        peak, seconds = peak_of(tools, frames)
        lines.append(f"| {frames:,} | {peak:.0f} | {frames / seconds:.0f} |".replace(",", " "))
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
    parser.add_argument("--longest", type=int, default=100_000, help="pictures of the longest movie")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    options = parser.parse_args()
    os.nice(10)
    os.makedirs(options.folder, exist_ok=True)
    tools = Tools(options.tessel, options.plugin, options.folder)
    for name in ("gradient", "stereo", "tone", "chart"):
        tools.save(name, CLIPS[name]())
    lengths = [frames for frames in (1_000, 5_000, 20_000, 100_000) if frames <= options.longest]
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        tables = {"numbers": lambda: reading_table(tools, pool), "faults": lambda: fault_table(tools, pool),
                  "memory": lambda: memory_table(tools, lengths)}
        for name in options.table or tables:
            text = "\n".join(tables[name]())
            print(text, flush=True)
            if options.document:
                write_into(options.document, name, text)


if __name__ == "__main__":
    main()

"""Documents that cover pairs of properties, and what files made from them have to say."""

import os
import random
import sys
from fractions import Fraction

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

from document_values import TICKS_PER_SECOND, code, color  # noqa: E402

# Name: primaries, transfer, matrix (ITU-T H.273), full range.
SPACES = {
    "Rec. 601 (NTSC)": (6, 6, 6, 0), "Rec. 601 (PAL)": (5, 6, 5, 0), "Rec. 709": (1, 1, 1, 0),
    "Rec. 709 Full Range": (1, 1, 1, 1), "sRGB": (1, 13, 0, 1), "P3-D65 PQ": (12, 16, 0, 1),
    "Rec. 2020 (10-bit)": (9, 14, 9, 0), "Rec. 2100 HLG": (9, 18, 9, 0), "SMPTE 240M": (7, 7, 7, 0),
    "Unspecified": (2, 2, 2, 0),
}
FORMATS = ("bgra", "argb", "bgrx", "BGra", "ARgb", "BGaL", "VUYA", "vuyx", "vUYa", "uyv7", "yuy2", "v210", "v211",
           "yv12", "yvi7")
PROPERTIES = {
    "format": FORMATS,
    "size": ((320, 180), (256, 144), (321, 181), (322, 181), (720, 576), (720, 486), (720, 480)),
    "rate": ((24000, 1001), (24, 1), (25, 1), (30000, 1001), (50, 1), (60000, 1001)),
    "aspect": ((1, 1), (10, 11), (12, 11), (40, 33), (16, 11), (4, 3), (64, 45)),
    "order": (0, 1, 2),
    "space": tuple(SPACES),
    "channels": (1, 2, 5, 6, 8),
    "sample_rate": (44100, 48000, 96000),
}


def covering(seed):
    """Sets of properties so that any two values of different properties meet in one of them, in a random order that
    the seed gives: a few dozen instead of millions."""
    chance = random.Random(seed)
    names = list(PROPERTIES)
    missing = {((a, x), (b, y)) for i, a in enumerate(names) for b in names[i + 1:]
               for x in PROPERTIES[a] for y in PROPERTIES[b]}
    rows = []
    while missing:
        best, met = None, set()
        # Each candidate starts from a pair that is still missing. The order is that of the text, the same at every run.
        for start in chance.sample(sorted(missing, key=str), min(8, len(missing))):
            row = {name: chance.choice(PROPERTIES[name]) for name in names}
            row.update(start)
            items = [(name, row[name]) for name in names]
            gained = {(items[i], other) for i in range(len(items)) for other in items[i + 1:]} & missing
            if len(gained) > len(met):
                best, met = row, gained
        rows.append(best)
        missing -= met
    return rows


def document(row, frames):
    numerator, denominator = row["rate"]
    ticks = TICKS_PER_SECOND * denominator // numerator
    assert ticks * numerator == TICKS_PER_SECOND * denominator
    is_surround = row["channels"] == 6
    return {
        "mPixelFormat": code(row["format"]),
        "mFrameWidth": row["size"][0], "mFrameHeight": row["size"][1],
        "mFramePAR": {"numerator": row["aspect"][0], "denominator": row["aspect"][1]},
        "mFieldType": row["order"], "mRenderFormat": 1,
        "mUpperFieldColor": color(1, 0.5, 0.25), "mLowerFieldColor": color(0, 1, 0),
        "mTopGradiantColorStart": color(1, 0, 0, 0.75), "mTopGradiantColorEnd": color(0.5, 0.5, 0.5),
        "mBottomGradiantColorStart": color(0, 1, 0), "mBottomGradiantColorEnd": color(1, 0.5, 0.25, 0.5),
        "mVideoDuration": {"ticks": ticks * frames}, "mVideoFrameRate": {"ticksperframe": ticks},
        "mDrawFrameFieldNumber": True, "mPredefinedColorSpace": row["space"],
        "mSampleRate": row["sample_rate"], "mNumChannels": row["channels"],
        "mKsAudioChannelType": 3 if is_surround else 2, "mToneFormat": int(is_surround), "mIdentifierFormat": 0,
        "mSteadyToneFrequency": 997, "mSteadyToneAmplitude": 0.3,
    }


def sample_count(row, frames):
    """Frames start at the nearest sample to their time."""
    exact = Fraction(frames * row["rate"][1] * row["sample_rate"], row["rate"][0])
    return int(exact + Fraction(1, 2))


def is_rgb(code):
    return code.lower() in ("bgra", "argb", "bgrx") or code == "BGaL"


def colors(row, file_is_rgb, codec):
    """Primaries, transfer, matrix and range that the file's pixels have."""
    primaries, transfer, matrix, full = SPACES[row["space"]]
    if file_is_rgb:
        return primaries, transfer, 0, 1
    if is_rgb(row["format"]):
        if codec == "mjpeg":
            return primaries, transfer, 5, 1
        if matrix in (0, 2):
            return primaries, transfer, 1, 0
        return primaries, transfer, matrix, full if codec in ("h264", "hevc", "av1", "vp9", "raw") else 0
    if matrix in (0, 2):
        of_format = {"VUYA": 1, "vuyx": 6, "vUYa": 1, "uyv7": 1, "yuy2": 6, "v210": 6, "v211": 1, "yv12": 6, "yvi7": 1}
        # An unspecified space stays unspecified.
        return primaries, transfer, 2 if matrix == 2 else of_format[row["format"]], 0
    return primaries, transfer, matrix, full

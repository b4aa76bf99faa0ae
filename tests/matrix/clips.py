"""The clips of the matrix: small, and each made to show some of the catalogue's checks."""

import json
import os
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "cli", "render"))

from render_support import TICKS_PER_SECOND, document, surround  # noqa: E402

SAMPLES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "samples")
V210 = "v211"  # 10-bit 4:2:2 by BT.709, which v210 and ProRes take as it is
RATE = 24      # every carrier has it, and 3:2 makes 60 of it
LEVEL = 0.125  # of every tone, linear: -18.06 dB below full scale


def tone(**more):
    return {"mSampleRate": 48000, "mNumChannels": 2, "mKsAudioChannelType": 2, "mToneFormat": 0,
            "mSteadyToneFrequency": 1000, "mSteadyToneAmplitude": LEVEL, **more}


def stereo_ident():
    """EBU's stereo identification: a cycle of 3 s whose left channel pauses at its end."""
    return {"mSampleRate": 48000, "mNumChannels": 2, "mKsAudioChannelType": 2, "mToneFormat": 1,
            "mIdentifierFormat": 0}


def blits():
    return {"mSampleRate": 48000, **surround(3)}


def picture(code=V210, size=(384, 216), frames=30, **more):
    """Colours that differ from row to row and from frame to frame, with numbers and a steady tone."""
    return document(code, size, rate=(RATE, 1), frames=frames, pattern="gradient", number=True, **tone(), **more)


# Two cycles of 3 s of the stereo identification, and the beginning of the third.
TIMED_FRAMES = 150


def timed(frames=TIMED_FRAMES, size=(192, 108), sound=None, **more):
    """A clip for its times; small, because only numbers count."""
    return document(V210, size, rate=(RATE, 1), frames=frames, pattern="gradient", number=True,
                    **(sound or stereo_ident()), **more)


def interlaced(order=1):
    return document(V210, (384, 288), rate=(25, 1), frames=24, order=order, number=True,
                    upper=(0.9, 0.4, 0.2, 1.0), lower=(0.1, 0.6, 0.7, 1.0), **tone())


def chart(frames=3):
    """The sample chart: edges between strong colours, and levels beyond black and white. It is painted in BGRA
    float alone. It is a row lower than the sample: between pairs of rows, edges do not show rows that are halved."""
    with open(os.path.join(SAMPLES, "swatch-chart.tessel"), encoding="utf-8") as file:
        root = json.load(file)
    for patches in root["mSwatchCoordinates"].values():
        patches["yCoordinates"] = [row + 1 for row in patches["yCoordinates"]]
    ticks = TICKS_PER_SECOND // RATE
    root["mVideoFrameRate"] = {"ticksperframe": ticks}
    root["mVideoDuration"] = {"ticks": ticks * frames}
    return root


CLIPS = {
    "gradient": picture,
    "planar": lambda: picture("yv17"),  # 4:2:0
    "rgb": lambda: picture("bgrx"),
    "alpha": lambda: document("bgra", (384, 216), rate=(RATE, 1), frames=12, number=True,
                              upper=(0.9, 0.4, 0.2, 0.5), **tone()),
    "alpha-float": lambda: document("vUYa", (384, 216), rate=(RATE, 1), frames=12, number=True,
                                    upper=(0.9, 0.4, 0.2, 0.5), **tone()),
    "fields": interlaced,
    "fields-lower": lambda: interlaced(2),
    "chart": chart,
    "stereo": timed,
    # BLITS takes 13.4 s, and one of its tones alone 0.3 s.
    "surround": lambda: timed(RATE * 14, (160, 90), blits()),
    "mono": lambda: timed(sound=tone(mNumChannels=1)),
    # Drift is the slope of a phase: it takes time to see.
    "tone": lambda: timed(RATE * 10, (160, 90), tone()),
}

"""What the tests of the Python package share. Variables: those of tests/cli/program.py, and PYTHONPATH."""

import json
import os
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))))
sys.path.insert(0, os.path.join(ROOT, "tests", "cli"))

from program import TICKS_PER_SECOND, ProgramTest, code, color, document  # noqa: E402, F401

SKIPPED = 77  # as CTest is told
INTERLACED = {"mFieldType": 1, "mRenderFormat": 0, "mDrawFrameFieldNumber": True}
NTSC = {"mVideoFrameRate": {"ticksperframe": TICKS_PER_SECOND * 1001 // 30000},
        "mVideoDuration": {"ticks": 30 * TICKS_PER_SECOND * 1001 // 30000}}
ODD = {"mFrameWidth": 101, "mFrameHeight": 75}
BLITS = {"mNumChannels": 6, "mKsAudioChannelType": 3, "mSampleRate": 48000, "mToneFormat": 1, "mIdentifierFormat": 3}


def chart():
    """The keys of the sample chart that make it one."""
    with open(os.path.join(ROOT, "samples", "swatch-chart.tessel"), encoding="utf-8") as file:
        keys = json.load(file)
    return {key: value for key, value in keys.items() if not key.startswith(("mVideo", "mNum"))}


class PackageTest(ProgramTest):
    def decode(self, movie, *arguments):
        """The movie's samples as FFmpeg reads them, one after the other."""
        first = ["-start_number", "0", "-i", movie] if "%" in movie else ["-i", movie]
        return subprocess.run(["ffmpeg", "-v", "error", *first, *arguments, "-"], cwd=self.folder,
                              stdout=subprocess.PIPE, check=True).stdout

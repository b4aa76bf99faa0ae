"""What the tests of `tessel render` share: documents, the program, and FFmpeg's tools as witnesses."""

import json
import math
import os
import re
import subprocess
import sys
import tempfile
import unittest
from fractions import Fraction

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "support"))

from document_values import TICKS_PER_SECOND, code as four_bytes, color  # noqa: E402

# Host code, family, storage, matrix, alpha. Written from the host's list, apart from the program's own table.
FORMATS = {}


def _add(code, family, storage, matrix=None, alpha="none", order=""):
    FORMATS[code] = {"code": code, "family": family, "storage": storage, "matrix": matrix, "alpha": alpha,
                     "order": order}


for _code, _alpha, _order in (("bgra", "straight", "bgra"), ("argb", "straight", "argb"), ("bgrx", "none", "bgra"),
                              ("xrgb", "none", "argb"), ("bgrp", "premultiplied", "bgra"),
                              ("prgb", "premultiplied", "argb")):
    _add(_code, "rgb", "8", None, _alpha, _order)
for _code, _alpha in (("BGra", "straight"), ("ARgb", "straight"), ("BGrx", "none"), ("XRgb", "none"),
                      ("BGrp", "premultiplied"), ("PRgb", "premultiplied")):
    _add(_code, "rgb", "float", None, _alpha)
for _code, _alpha in (("BGaL", "straight"), ("ARgL", "straight"), ("BGxL", "none"), ("XRgL", "none"),
                      ("BGpL", "premultiplied"), ("PRgL", "premultiplied")):
    _add(_code, "rgb", "linear", None, _alpha)
for _code, _matrix, _alpha in (("vuya", 601, "straight"), ("VUYA", 709, "straight"), ("vuyx", 601, "none"),
                               ("vux7", 709, "none"), ("vuyp", 601, "premultiplied"),
                               ("vup7", 709, "premultiplied")):
    _add(_code, "ycbcr", "8", _matrix, _alpha)
for _code, _matrix, _alpha in (("VUya", 601, "straight"), ("vUYa", 709, "straight"), ("VUyx", 601, "none"),
                               ("VUx7", 709, "none"), ("VUyp", 601, "premultiplied"),
                               ("VUp7", 709, "premultiplied")):
    _add(_code, "ycbcr", "float", _matrix, _alpha)
for _code, _matrix, _order in (("yuy2", 601, "yuyv"), ("yuy3", 709, "yuyv"), ("uyvy", 601, "uyvy"),
                               ("uyv7", 709, "uyvy")):
    _add(_code, "ycbcr", "422", _matrix, "none", _order)
_add("v210", "ycbcr", "v210", 601)
_add("v211", "ycbcr", "v210", 709)
for _code, _matrix, _order in (("yv12", 601, "frame"), ("yvi2", 601, "field"), ("yv17", 709, "frame"),
                               ("yvi7", 709, "field")):
    _add(_code, "ycbcr", "420", _matrix, "none", _order)
for _code, _matrix in (("dvn2", 601), ("dvp2", 601), ("dvn5", 601), ("dvp5", 601), ("dvn7", 709), ("dvp7", 709),
                       ("dvn1", 709), ("dvp1", 709)):
    _add(_code, "ycbcr", "dv", _matrix)
assert len(FORMATS) == 48


def document(code="bgra", size=(96, 64), rate=(30, 1), frames=5, order=0, pattern="fields", upper=(1.0, 0.5, 0.25, 1.0),
             lower=(0.0, 1.0, 0.0, 1.0), number=False, aspect=(1, 1), space=None, **audio):
    """A data file. Without a version, so that the colour space can be given by name."""
    ticks_per_frame = TICKS_PER_SECOND * rate[1] // rate[0]
    assert ticks_per_frame * rate[0] == TICKS_PER_SECOND * rate[1], "a rate that ticks divide"
    root = {
        "mPixelFormat": four_bytes(code),
        "mFrameWidth": size[0], "mFrameHeight": size[1],
        "mFramePAR": {"numerator": aspect[0], "denominator": aspect[1]},
        "mFieldType": order,
        "mRenderFormat": {"fields": 0, "gradient": 1}[pattern],
        "mUpperFieldColor": color(*upper), "mLowerFieldColor": color(*lower),
        "mTopGradiantColorStart": color(1, 0, 0), "mTopGradiantColorEnd": color(0.5, 0.5, 0.5),
        "mBottomGradiantColorStart": color(0, 1, 0), "mBottomGradiantColorEnd": color(1, 0.5, 0.25),
        "mVideoDuration": {"ticks": ticks_per_frame * frames},
        "mVideoFrameRate": {"ticksperframe": ticks_per_frame},
        "mDrawFrameFieldNumber": number,
    }
    if space is not None:
        root["mPredefinedColorSpace"] = space
    root.update(audio)
    return root


# Audio keys of the 5.1 patterns.
def surround(identifier):
    return {"mNumChannels": 6, "mKsAudioChannelType": 3, "mToneFormat": 1, "mIdentifierFormat": identifier}


class RenderTest(unittest.TestCase):
    """Each test has a folder of its own, which must be as clean afterwards as the test says."""

    tessel = []
    maxDiff = 2000

    def setUp(self):
        self._folder = tempfile.TemporaryDirectory(prefix="tessel-render-")
        self.folder = self._folder.name
        self.addCleanup(self._folder.cleanup)

    def path(self, name):
        return os.path.join(self.folder, name)

    def save(self, root, name="clip.tessel"):
        with open(self.path(name), "w", encoding="utf-8") as file:
            json.dump(root, file)
        return self.path(name)

    def run_tessel(self, *arguments, **options):
        return subprocess.run([*self.tessel, *map(str, arguments)], capture_output=True, timeout=280,
                              cwd=options.pop("cwd", self.folder), check=False, **options)

    def render(self, root, output, *arguments):
        """Renders a document, which must succeed silently; gives the output's path."""
        done = self.run_tessel("render", self.save(root), "-o", self.path(output), "--quiet", *arguments)
        self.assertEqual((done.returncode, done.stderr, done.stdout), (0, b"", b""), f"{root} {output} {arguments}")
        return self.path(output)

    def refuse(self, *arguments, code=1, says=()):
        """Runs a command that must fail with one line on standard error."""
        done = self.run_tessel(*arguments)
        line = done.stderr.decode()
        self.assertEqual(done.returncode, code, line)
        self.assertEqual(done.stdout, b"")
        self.assertTrue(line.startswith("tessel: ") and line.endswith("\n") and line.count("\n") == 1, line)
        for text in says:
            self.assertIn(str(text), line)
        return line

    def left_over(self, *expected):
        self.assertEqual(sorted(os.listdir(self.folder)), sorted(expected))

    def probe(self, path, kind="video"):
        """FFmpeg's view of one stream, its container under "format"."""
        text = subprocess.run(["ffprobe", "-v", "error", "-count_packets", "-show_streams", "-show_format", "-of", "json", path],
                              capture_output=True, check=True).stdout
        answer = json.loads(text)
        streams = [stream for stream in answer["streams"] if stream["codec_type"] == kind]
        self.assertEqual(len(streams), 1, answer)
        return {**streams[0], "format": answer["format"]}

    def decode(self, path, pixel_format, frame=0):
        """One picture in a file's own pixel format, so that nothing is converted."""
        done = subprocess.run(["ffmpeg", "-v", "info", "-nostats", "-i", path, "-map", "0:v", "-vf",
                               f"select=eq(n\\,{frame})", "-frames:v", "1", "-f", "rawvideo", "-"],
                              capture_output=True, check=True)
        # "Stream #0:0: Video: rawvideo (BGRA / 0x41524742), bgra(pc, ...": without a wish the decoder's format stays.
        output = done.stderr.decode("utf-8", "replace").partition("\nOutput #0")[2]
        found = re.search(r"Video: rawvideo(?: \(.*?/ 0x[0-9A-F]+\))?, (\w+)", output)
        self.assertIsNotNone(found, output)
        self.assertEqual(found[1], pixel_format, path)
        return done.stdout

    def samples(self, path, codec="pcm_f32le"):
        """All samples of a file, as interleaved bytes of a PCM codec."""
        return subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-map", "0:a", "-c:a", codec, "-f",
                               codec.removeprefix("pcm_"), "-"], capture_output=True, check=True).stdout


def floor_half_up(value):
    return math.floor(value + Fraction(1, 2))


LUMA = {601: (Fraction("0.299"), Fraction("0.114")), 709: (Fraction("0.2126"), Fraction("0.0722")),
        2020: (Fraction("0.2627"), Fraction("0.0593"))}


def ycbcr(rgb, matrix):
    """Y' 0..1, Cb and Cr -0.5..0.5, exactly."""
    red, green, blue = (Fraction(part) for part in rgb)
    kr, kb = LUMA[matrix]
    luma = kr * red + (1 - kr - kb) * green + kb * blue
    return luma, (blue - luma) / (2 * (1 - kb)), (red - luma) / (2 * (1 - kr))


def ycbcr_codes(rgb, matrix, bits=8):
    unit = 1 << (bits - 8)
    luma, cb, cr = ycbcr(rgb, matrix)
    codes = [(219 * luma + 16) * unit, (224 * cb + 128) * unit, (224 * cr + 128) * unit]
    return [min(max(floor_half_up(code), unit), 255 * unit - 1) for code in codes]


def full_codes(values, bits=8):
    highest = (1 << bits) - 1
    return [min(max(floor_half_up(Fraction(value) * highest), 0), highest) for value in values]


def main():
    """Arguments: the program, the plug-in's folder, then unittest's own."""
    RenderTest.tessel = [sys.argv[1], "--plugin", sys.argv[2]]
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])

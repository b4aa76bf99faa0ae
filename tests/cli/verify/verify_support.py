"""What the tests of `tessel verify` share: clips that show much, FFmpeg's filters as makers of faults, and reports."""

import json
import os
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "render"))

from render_support import RenderTest, color, document, main  # noqa: E402,F401

FRAMES = 30


def gradient(code="bgrx", size=(320, 180), **more):
    """Colours that change from row to row and from frame to frame, with numbers."""
    return document(code, size, rate=(25, 1), frames=more.pop("frames", FRAMES), pattern="gradient", number=True,
                    **more)


def fields(code="uyv7", size=(360, 288), order=1, **more):
    """An interlaced clip whose fields have two colours."""
    return document(code, size, rate=(25, 1), frames=more.pop("frames", FRAMES), order=order, number=True, **more)


class VerifyTest(RenderTest):
    def verify(self, root, movie, *arguments):
        """The report on a movie, and the exit code checked against its verdict."""
        clip = self.save(root)
        done = self.run_tessel("verify", clip, movie, "--json", *arguments)
        self.assertEqual(done.stderr, b"")
        report = json.loads(done.stdout)
        self.assertEqual(done.returncode, {"as expected": 0, "not as expected": 3, "undecided": 4}[report["verdict"]])
        return report

    def ffmpeg(self, source, output, *arguments):
        """Makes a movie from another one, losslessly unless the arguments say otherwise."""
        codec = () if "-c:v" in arguments else ("-c:v", "ffv1")
        path = self.path(output)
        subprocess.run(["ffmpeg", "-v", "error", "-y", "-i", source, *arguments, *codec, "-c:a", "flac", path],
                       check=True, capture_output=True)
        return path

    def filtered(self, root, video_filter, *arguments, output="damaged.mkv"):
        """The clip through one of FFmpeg's filters."""
        whole = self.render(root, "whole.mkv")
        return self.ffmpeg(whole, output, "-vf", video_filter, *arguments)

    def ids(self, report):
        return sorted(finding["id"] for finding in report["findings"])

    def expect_clean(self, report, what):
        self.assertEqual(report["findings"], [], f"{what}: {json.dumps(report['findings'], indent=1)}")
        self.assertEqual(report["verdict"], "as expected", what)

    def expect(self, report, *ids):
        """These findings and no others stand at the root. Gives the first one asked for."""
        self.assertEqual(self.ids(report), sorted(ids), json.dumps(report["findings"], indent=1))
        return next(finding for finding in report["findings"] if finding["id"] == ids[0])

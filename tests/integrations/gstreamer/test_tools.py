"""Clips in GStreamer's own programs: what they write is what `tessel render` writes, and documents open like movies.

Variables: GST_PLUGIN_PATH and GST_REGISTRY, GST_LAUNCH and the other programs, and those of tests/cli/program.py.
"""

import os
import re
import subprocess
import sys
import unittest

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "..", ".."))
sys.path.insert(0, os.path.join(ROOT, "tests", "cli"))

from program import TICKS_PER_SECOND, ProgramTest, code, document  # noqa: E402

FRAMES = 3
NTSC = {"mVideoFrameRate": {"ticksperframe": TICKS_PER_SECOND * 1001 // 30000},
        "mVideoDuration": {"ticks": TICKS_PER_SECOND * 1001 // 30000 * FRAMES}}
# For players: playbin3 of GStreamer 1.22 hangs on any movie that ends while it is still being set up.
LONG = {"mVideoDuration": {"ticks": 4 * TICKS_PER_SECOND}, "mFrameWidth": 160, "mFrameHeight": 90}
PAL = {"mVideoDuration": {"ticks": TICKS_PER_SECOND // 25 * FRAMES}}


RUN_PIPELINE = os.path.join(ROOT, "tests", "support", "run-pipeline")  # gst-launch-1.0


def sample(name):
    return os.path.join(ROOT, "samples", name)


class GStreamerTest(ProgramTest):
    def settings(self, environment=None):
        return super().settings({"KESTREL_PLUGIN_PATH": os.environ["TESSEL_PLUGIN"], "GST_DEBUG_NO_COLOR": "1",
                                 **(environment or {})})

    def launch(self, line, **options):
        """Runs a pipeline as it is typed, to its end."""
        return self.run_command([RUN_PIPELINE, "-q", *line.split()], timeout=240, **options)

    def assert_plays(self, line):
        answer = self.launch(line)
        self.assertEqual((answer.code, answer.out, answer.err), (0, "", ""), line)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def decoded(self, movie, *decode):
        """A movie's pictures or samples, as FFmpeg reads them."""
        first = ["-start_number", "0"] if "%" in movie else []
        return subprocess.run(["ffmpeg", "-v", "error", *first, "-i", movie, *decode, "-"], cwd=self.folder,
                              stdout=subprocess.PIPE, check=True).stdout


def without_padding(data, planes):
    """The pictures' rows without what GStreamer adds: planes are (bytes of a row, bytes to the next one, rows, rows in
    memory)."""
    size = sum(stride * rows_in_memory for _, stride, _, rows_in_memory in planes)
    kept = []
    for start in range(0, len(data), size):
        for row_bytes, stride, rows, rows_in_memory in planes:
            kept += [data[start + row * stride:][:row_bytes] for row in range(rows)]
            start += stride * rows_in_memory
    return b"".join(kept)


def planes_of_vuya(data):
    """Pictures of 8x4 pixels of V, U, Y, A as planes of Y, U, V, A."""
    pictures = [data[start:start + 128] for start in range(0, len(data), 128)]
    return b"".join(picture[component::4] for picture in pictures for component in (2, 1, 0, 3))


class RawOutput(GStreamerTest):
    def compare(self, format_, movie, decode, arguments=(), change=lambda data: data, **changes):
        name = self.write("clip.tessel", document(**{**PAL, **changes}))
        self.assert_done(self.run_program("render", name, "-o", movie, "--video-only", "--quiet", *arguments))
        expected = self.decoded(movie, *decode, "-f", "rawvideo")
        self.assert_plays(f"tesselsrc location=clip.tessel ! video/x-raw,format={format_} ! filesink location=out.raw")
        got = change(self.read("out.raw"))
        self.assertGreater(len(expected), 0)
        self.assertEqual(len(got), len(expected))
        self.assertTrue(got == expected, "the pixels differ")

    def test_pictures_are_those_that_the_program_writes(self):
        pixels = lambda name: ["-pix_fmt", name]  # noqa: E731
        raw = ["-c:v", "copy"]
        lossless = ("--video-codec", "h264", "--quality", "0")
        fields = {"mFieldType": 1, "mRenderFormat": 0}
        odd = {"mFrameWidth": 101, "mFrameHeight": 75}
        cases = [
            ("BGRA", "a.mkv", pixels("bgra"), {}),
            ("BGRA", "a.mkv", pixels("bgra"), {"changes": {**fields, **NTSC}}),
            ("BGRA", "a.mkv", pixels("bgra"), {"changes": odd}),
            ("ARGB", "a.nut", raw, {"changes": {"mPixelFormat": code("argb")}}),
            ("BGRx", "a.nut", raw, {"changes": {"mPixelFormat": code("bgrx")}}),
            ("xRGB", "a.nut", raw, {"changes": {"mPixelFormat": code("xrgb")}}),
            ("RGBA", "f%d.png", pixels("rgba"), {}),
            ("RGBA64_LE", "f%d.png", pixels("rgba64le"), {"changes": {"mPixelFormat": code("BGra")}}),
            ("UYVY", "a.nut", raw, {"changes": {"mPixelFormat": code("uyv7"), **NTSC}}),
            ("YUY2", "a.nut", raw, {"changes": {"mPixelFormat": code("yuy2"), "mFieldType": 2, "mFrameWidth": 720,
                                                "mFrameHeight": 480, **NTSC}}),
            ("v210", "a.mkv", raw, {"changes": {"mPixelFormat": code("v210")}}),
            ("v210", "a.mkv", raw, {"arguments": ("--video-codec", "v210")}),
            ("v210", "a.mkv", raw, {"changes": {"mPixelFormat": code("v210"), **odd}}),
            ("VUYA", "a.mov", pixels("yuva444p"),
             {"arguments": ("--video-codec", "v408"), "change": planes_of_vuya,
              "changes": {"mPixelFormat": code("VUYA"), "mFrameWidth": 8, "mFrameHeight": 4}}),
            ("I420", "a.mkv", pixels("yuv420p"), {"arguments": lossless}),
            ("I420", "a.mkv", pixels("yuv420p"), {"arguments": lossless, "changes": fields}),
            ("I420", "a.mkv", pixels("yuv420p"), {"changes": {"mPixelFormat": code("yv12"), **fields}}),
            ("I420", "a.mkv", pixels("yuv420p"), {
                "changes": {"mPixelFormat": code("yv17"), **odd},
                "change": lambda data: without_padding(data, [(101, 104, 75, 76), (51, 52, 38, 38), (51, 52, 38, 38)]),
            }),
        ]
        for format_, movie, decode, options in cases:
            changes = options.pop("changes", {})
            with self.subTest(format=format_, movie=movie, **changes):
                self.compare(format_, movie, decode, **options, **changes)

    def test_charts_of_swatches_are_those_that_the_program_writes(self):
        self.assert_done(self.run_program("render", sample("swatch-chart.tessel"), "-o", "f%d.png", "--frames", "1",
                                          "--video-only", "--quiet"))
        expected = self.decoded("f%d.png", "-pix_fmt", "rgba64le", "-f", "rawvideo")
        self.assert_plays(f"tesselsrc location={sample('swatch-chart.tessel')} ! video/x-raw,format=RGBA64_LE ! "
                          "filesink location=out.raw")
        self.assertTrue(self.read("out.raw")[:1920 * 1080 * 8] == expected, "the pixels differ")

    def test_planes_of_yv12_are_those_of_i420_with_chroma_exchanged(self):
        self.write("clip.tessel", document(mPixelFormat=code("uyvy"), mFrameWidth=32, mFrameHeight=16, **PAL))
        for format_ in ("I420", "YV12"):
            self.assert_plays(f"tesselsrc location=clip.tessel ! video/x-raw,format={format_} ! "
                              f"filesink location={format_}")
        i420, yv12 = self.read("I420")[:768], self.read("YV12")[:768]
        self.assertEqual(i420[:512] + i420[640:] + i420[512:640], yv12)
        self.assertNotEqual(i420, yv12)

    def test_samples_are_those_that_the_program_writes(self):
        stereo = {"mNumChannels": 2, "mSampleRate": 44100, "mSteadyToneFrequency": 997}
        blits = {"mNumChannels": 6, "mKsAudioChannelType": 3, "mToneFormat": 1, "mIdentifierFormat": 3}
        eight = {"mNumChannels": 8, "mSampleRate": 96000}
        for changes in (stereo, blits, eight):
            with self.subTest(**changes):
                name = self.write("clip.tessel", document(**{**changes, **NTSC}))
                self.assert_done(self.run_program("render", name, "-o", "sound.mkv", "--audio-only", "--quiet",
                                                  "--audio-codec", "pcmfloat"))
                self.assert_plays("tesselsrc location=clip.tessel name=t t.audio ! filesink location=out.raw")
                expected = self.decoded("sound.mkv", "-f", "f32le")
                self.assertGreater(len(expected), 0)
                self.assertTrue(self.read("out.raw") == expected, "the samples differ")

    def test_a_document_as_bytes_gives_what_the_source_gives(self):
        self.write("clip.tessel", document(mNumChannels=1, **PAL))
        self.assert_plays("tesselsrc location=clip.tessel name=t t.video ! filesink location=v1 "
                          "t.audio ! filesink location=a1")
        self.assert_plays("filesrc location=clip.tessel blocksize=100 ! tesseldemux name=t "
                          "t.video ! filesink location=v2 t.audio ! filesink location=a2")
        self.assertEqual(self.read("v1"), self.read("v2"))
        self.assertEqual(self.read("a1"), self.read("a2"))


class Players(GStreamerTest):
    def test_the_type_finder_knows_documents_and_nothing_else(self):
        self.write("clip.tessel", document())
        self.write("wrapped.tessel", {"SerializerWrappedObject": document(mVersion=...)})
        self.write("marked.json", b"\xEF\xBB\xBF\n " + self.read("clip.tessel"))
        self.write("other.json", '{"mFrame": 1, "format": "mPixelFormat"}')
        self.write("text.txt", '"mPixelFormat": 1, "mFrameWidth": 2')
        for name, is_document in (("clip.tessel", True), ("wrapped.tessel", True), ("marked.json", True),
                                  ("other.json", False), ("text.txt", False)):
            answer = self.run_command([os.environ["GST_TYPEFIND"], name])
            self.assertEqual("application/x-tessel" in answer.out, is_document, answer.out + answer.err)

    def test_players_open_documents(self):
        self.write("a clip.tessel", document(**LONG))
        place = self.path("a%20clip.tessel")
        for element in ("playbin3", "playbin"):
            for scheme in ("file", "tessel"):
                with self.subTest(element=element, scheme=scheme):
                    self.assert_plays(f"{element} uri={scheme}://{place} video-sink=fakesink audio-sink=fakesink")

    def test_decoders_give_the_clip_s_own_pictures(self):
        self.write("clip.tessel", document(mPixelFormat=code("v210"), mNumChannels=0, **LONG))
        self.assert_plays("tesselsrc location=clip.tessel ! filesink location=expected.raw")
        place = self.path("clip.tessel")
        for opened in (f"uridecodebin3 uri=file://{place}", f"uridecodebin uri=file://{place}",
                       f"uridecodebin3 uri=tessel://{place}", "filesrc location=clip.tessel ! decodebin3",
                       "filesrc location=clip.tessel ! decodebin"):
            with self.subTest(opened=opened):
                self.assert_plays(f"{opened} ! filesink location=out.raw")
                self.assertTrue(self.read("out.raw") == self.read("expected.raw"), "the bytes differ")

    def test_the_discoverer_reads_what_the_clip_is(self):
        # 5 frames, as then the sound has whole samples: 5 x 1001 / 30000 s, 8008 samples.
        self.write("clip.tessel", document(mFieldType=2, mFrameWidth=720, mFrameHeight=480, mNumChannels=6,
                                           mKsAudioChannelType=3, mPixelFormat=code("yuy2"),
                                           mFramePAR={"numerator": 10, "denominator": 11},
                                           **{**NTSC, "mVideoDuration": {"ticks": 5 * 8475667200}}))
        answer = self.run_command([os.environ["GST_DISCOVERER"], "-v", "clip.tessel"])
        for line in ("Duration: 0:00:00.166833333", "Seekable: yes", "framerate=(fraction)30000/1001",
                     "pixel-aspect-ratio=(fraction)10/11", "field-order=(string)bottom-field-first",
                     "Channels: 6 (front-left, front-right, front-center, lfe1, side-left, side-right)"):
            self.assertIn(line, answer.out)

    def test_inspection_says_what_the_elements_are(self):
        for element, says in (("tesselsrc", ("tessel", "location", "'video'", "'audio'", "Sometimes")),
                              ("tesseldemux", ("Codec/Demux", "application/x-tessel", "primary"))):
            answer = self.run_command([os.environ["GST_INSPECT"], element])
            self.assertEqual((answer.code, answer.err), (0, ""))
            for part in says:
                self.assertIn(part, answer.out)


class Guide(GStreamerTest):
    def test_the_pipelines_of_the_guide_run(self):
        with open(os.path.join(ROOT, "docs", "integrations.md"), encoding="utf-8") as file:
            lines = re.search(r"^```gstreamer\n(.*?)^```$", file.read(), re.DOTALL | re.MULTILINE).group(1).splitlines()
        self.assertGreater(len(lines), 2)
        self.write("clip.tessel", document(mNumChannels=2, **LONG))
        for line in lines:
            self.assertTrue(line.startswith("gst-launch-1.0 "))
            missing = [element for element in ("x264enc", "mp4mux", "wavenc", "videoconvert") if element in line and
                       self.run_command([os.environ["GST_INSPECT"], element]).code != 0]
            if not missing:
                pipeline = line[len("gst-launch-1.0 "):].replace("/clips/", self.folder + "/")
                self.assert_plays(pipeline)


class Failures(GStreamerTest):
    def assert_one_error(self, line, *says):
        """gst-launch of 1.22 sometimes runs on after an error that comes while it starts, whichever element reports it (it
        does with oggdemux and a text file): then it is ended here. That the elements stop is a test of the streams."""
        try:
            answer = self.run_command([os.environ["GST_LAUNCH"], "-q", *line.split()], timeout=8)
            self.assertNotEqual(answer.code, 0)
            said = answer.err
        except subprocess.TimeoutExpired as endless:
            said = (endless.stderr or b"").decode()
        errors = [text for text in said.splitlines() if text.startswith("ERROR: from")]
        self.assertEqual(len(errors), 1, said)
        for part in says:
            self.assertIn(part, errors[0])

    def test_a_bad_document_gives_one_error_that_names_the_file_and_the_key(self):
        self.write("bad.tessel", document(mFrameWidth=...))
        self.assert_one_error("tesselsrc location=bad.tessel ! fakesink", "bad.tessel", "mFrameWidth")
        self.assert_one_error("filesrc location=bad.tessel ! tesseldemux ! fakesink", "bad.tessel", "mFrameWidth")
        self.assert_one_error(f"playbin3 uri=file://{self.path('bad.tessel')} video-sink=fakesink", "bad.tessel",
                              "mFrameWidth")

    def test_what_cannot_be_painted_is_said_before_anything_plays(self):
        self.write("chart.tessel", document(mRenderFormat=2))
        self.assert_one_error("tesselsrc location=chart.tessel ! fakesink", "chart.tessel", "1920")

    def test_a_clip_without_a_rate_is_refused(self):
        self.write("still.tessel", document(mVideoFrameRate={"ticksperframe": 0}))
        self.assert_one_error("tesselsrc location=still.tessel ! fakesink", "still.tessel", "mVideoFrameRate")

    def test_a_clip_with_sound_that_cannot_be_had_shows_its_pictures_and_says_so(self):
        for changes in ({"mNumChannels": 65}, {"mNumChannels": 2, "mSampleRate": 44100.5}):
            with self.subTest(**changes):
                self.write("clip.tessel", document(**{**PAL, **changes}))
                # With -q gst-launch keeps warnings to itself.
                answer = self.run_command([os.environ["GST_LAUNCH"], *"tesselsrc location=clip.tessel ! fakesink".split()])
                self.assertEqual(answer.code, 0)
                self.assertIn("clip.tessel: the sound cannot be had:", answer.out + answer.err)

    def test_what_is_missing_is_named(self):
        self.assert_one_error("tesselsrc location=missing.tessel ! fakesink", "missing.tessel")
        self.assert_one_error("tesselsrc ! fakesink", "location")
        self.assert_one_error("playbin3 uri=tessel://relative.tessel video-sink=fakesink", "absolute")

    def test_a_stream_that_is_not_linked_stops_nothing(self):
        self.write("clip.tessel", document(mNumChannels=2, **LONG))
        for _ in range(5):  # decodebin3 ends when all streams have ended, the unlinked one too
            self.assert_plays("filesrc location=clip.tessel ! decodebin3 ! fakesink")
        self.assert_plays("tesselsrc location=clip.tessel name=t t.video ! fakesink")
        self.assert_plays("tesselsrc location=clip.tessel name=t t.audio ! fakesink")


class Leaks(GStreamerTest):
    def test_nothing_is_left_when_a_pipeline_ends(self):
        self.write("clip.tessel", document(mNumChannels=2, **LONG))
        self.write("bad.tessel", document(mFrameWidth=...))
        for line in ("tesselsrc location=clip.tessel name=t t.video ! fakesink t.audio ! fakesink",
                     f"playbin3 uri=file://{self.path('clip.tessel')} video-sink=fakesink audio-sink=fakesink",
                     "filesrc location=bad.tessel ! tesseldemux ! fakesink"):
            with self.subTest(line=line):
                answer = self.launch(line, environment={"GST_TRACERS": "leaks", "GST_DEBUG": "GST_TRACER:7"})
                self.assertIn("object-alive", answer.err, "the tracer did not run")
                # playbin3 leaves a volume element of its own, whatever it plays.
                left = [text for text in answer.err.splitlines()
                        if "object-alive, type-name=(string)" in text and "=(string)%s" not in text and
                        ("playbin3" not in line or re.search("Tessel|tessel|picture|sound", text))]
                self.assertEqual(left, [])


if __name__ == "__main__":
    unittest.main()

"""Clips as numpy arrays: what `tessel.Clip` gives is what `tessel render` writes."""

import gc
import os
import pathlib
import threading
import time
import unittest
from concurrent.futures import ThreadPoolExecutor
from fractions import Fraction

import numpy as np
from python_support import BLITS, INTERLACED, NTSC, ODD, PackageTest, chart, code, color, document

import tessel

FRAMES = 3


def rows(planes):
    """The bytes of a frame's planes, one after the other."""
    return b"".join(plane.tobytes() for plane in (planes if isinstance(planes, tuple) else (planes,)))


class ClipTest(PackageTest):
    def open(self, **changes):
        return tessel.Clip.from_document(document(**changes))

    def file(self, **changes):
        return self.path(self.write("clip.tessel", document(**changes)))


class Pictures(ClipTest):
    def compare(self, layout, movie, decode, *arguments, **changes):
        file = self.file(**changes)
        self.assert_done(self.run_program("render", file, "-o", movie, "--frames", str(FRAMES), "--video-only", "--quiet",
                                          *arguments))
        expected = self.decode(movie, *decode, "-f", "rawvideo")
        clip = tessel.Clip(file)
        got = b"".join(rows(clip.frame(number, layout)) for number in range(FRAMES))
        self.assertEqual(len(got), len(expected))
        self.assertTrue(got == expected, "the pixels differ")

    def test_frames_are_those_that_the_program_writes(self):
        raw = ("-c:v", "copy")
        lossless = ("--video-codec", "h264", "--quality", "0")
        floats = {"mPixelFormat": code("BGra")}
        # Rows of v210 are padded to 48 pixels in files: 336 is 7 x 48, so the plug-in's own rows are those of files.
        cases = [
            ("own", "a.mkv", ("-pix_fmt", "bgra"), (), {}),
            ("own", "a.mkv", raw, (), {"mPixelFormat": code("v210"), "mFrameWidth": 336, **NTSC}),
            ("own", "a.nut", raw, (), {"mPixelFormat": code("uyv7"), **INTERLACED}),
            ("bgra", "a.mkv", ("-pix_fmt", "bgra"), (), {**ODD, **NTSC}),
            ("bgra", "a.mkv", ("-pix_fmt", "bgra"), (), INTERLACED),
            ("rgb", "f%d.png", ("-pix_fmt", "rgb24"), (), {"mPixelFormat": code("bgrx")}),
            ("v210", "a.mkv", raw, ("--video-codec", "v210"), INTERLACED),
            ("v210", "a.mkv", raw, ("--video-codec", "v210"), chart()),
            ("rgba64", "f%d.png", ("-pix_fmt", "rgba64le"), (), floats),
            ("gbrap_f32", "f%d.exr", ("-pix_fmt", "gbrapf32le"), (), {**floats, **ODD}),
            ("yuv420p", "a.mkv", ("-pix_fmt", "yuv420p"), lossless, NTSC),
            ("yuv420p", "a.mkv", ("-pix_fmt", "yuv420p"), lossless, INTERLACED),
        ]
        for layout, movie, decode, arguments, changes in cases:
            with self.subTest(layout=layout, movie=movie, keys=sorted(changes)):
                self.compare(layout, movie, decode, *arguments, **changes)

    def test_the_array_s_type_and_shape_are_the_layout_s(self):
        clip = self.open(mFrameWidth=100, mFrameHeight=50, mPixelFormat=code("v210"))
        expected = {"own": (np.uint32, (50, 68)),  # 17 groups of 6 pixels, 4 words each
                    "v210": (np.uint32, (50, 96)),  # 3 paddings to 48 pixels, 32 words each
                    "uyvy": (np.uint8, (50, 50, 4)), "rgb48": (np.uint16, (50, 100, 3))}
        for layout, (kind, shape) in expected.items():
            frame = clip.frame(0, layout)
            self.assertEqual((frame.dtype, frame.shape), (kind, shape), layout)
        luma, blue, red = clip.frame(0, "yuv420p10")
        self.assertEqual([(plane.dtype, plane.shape) for plane in (luma, blue, red)],
                         [(np.uint16, (50, 100)), (np.uint16, (25, 50)), (np.uint16, (25, 50))])
        floats = self.open(mPixelFormat=code("BGra"), mFrameWidth=8, mFrameHeight=2).frame(0)
        self.assertEqual((floats.dtype, floats.shape), (np.float32, (2, 8, 4)))
        for layout in tessel.LAYOUTS:
            self.assertGreater(len(rows(clip.frame(0, layout))), 0, layout)

    def test_the_upper_row_comes_first_also_where_the_plug_in_stores_the_lower_one_first(self):
        clip = self.open(mRenderFormat=0, mFieldType=1, mUpperFieldColor=color(1, 0, 0), mLowerFieldColor=color(0, 0, 1),
                         mDrawFrameFieldNumber=False, mFrameWidth=4, mFrameHeight=2)
        self.assertEqual(clip.frame(0)[:, 0].tolist(), [[0, 0, 255, 255], [255, 0, 0, 255]])

    def test_a_frame_goes_into_given_arrays_without_touching_what_lies_between_their_rows(self):
        clip = self.open(mFrameWidth=10, mFrameHeight=4)
        plain = clip.frame(7)
        wide = np.full((4, 16, 4), 0xAA, np.uint8)
        view = wide[:, 3:13]
        self.assertIs(clip.frame(7, out=view), view)
        self.assertTrue((view == plain).all())
        self.assertTrue((wide[:, :3] == 0xAA).all() and (wide[:, 13:] == 0xAA).all())
        upwards = np.empty((4, 10, 4), np.uint8)
        clip.frame(7, out=upwards[::-1])
        self.assertTrue((upwards == plain[::-1]).all())
        planes = tuple(np.zeros_like(plane) for plane in clip.frame(7, "yuv420p"))
        clip.frame(7, "yuv420p", out=planes)
        self.assertEqual(rows(planes), rows(clip.frame(7, "yuv420p")))

    def test_arrays_that_do_not_fit_are_refused_and_nothing_is_written(self):
        clip = self.open(mFrameWidth=10, mFrameHeight=4)
        good = np.full((4, 10, 4), 0xAA, np.uint8)
        frozen = good.copy()
        frozen.flags.writeable = False
        for out in (good[:3], good.astype(np.uint16), np.full((4, 20, 4), 0xAA, np.uint8)[:, ::2], frozen, [good], b""):
            with self.subTest(out=type(out)):
                with self.assertRaisesRegex(ValueError, r"out must be .* \(4, 10, 4\)"):
                    clip.frame(0, out=out)
        with self.assertRaisesRegex(ValueError, "tuple of 3 arrays"):
            clip.frame(0, "yuv420p", out=good)
        self.assertTrue((good == 0xAA).all())


class Sound(ClipTest):
    def test_samples_are_those_that_the_program_writes(self):
        stereo = {"mNumChannels": 2, "mSampleRate": 44100, "mSteadyToneFrequency": 997, "mSteadyToneAmplitude": 0.5}
        for changes in (stereo, BLITS, {**BLITS, **NTSC}):
            with self.subTest(keys=sorted(changes)):
                file = self.file(**changes)
                self.assert_done(self.run_program("render", file, "-o", "sound.mkv", "--audio-only", "--quiet",
                                                  "--audio-codec", "pcmfloat"))
                woven = np.frombuffer(self.decode("sound.mkv", "-f", "f32le"), np.float32)
                clip = tessel.Clip(file)
                facts = clip.description
                samples = clip.samples(0, facts.sample_count)
                self.assertEqual((samples.dtype, samples.shape), (np.float32, (facts.channel_count, facts.sample_count)))
                self.assertTrue(np.array_equal(samples, woven.reshape(-1, facts.channel_count).T))
                self.assertTrue(np.array_equal(clip.samples(4801, 7919), samples[:, 4801:4801 + 7919]))

    def test_what_is_outside_the_clip_is_refused(self):
        clip = self.open(mNumChannels=2, mSampleRate=48000)  # 2 s
        self.assertEqual(clip.samples(96000, 0).shape, (2, 0))
        for start, count in ((-1, 1), (0, -1), (95999, 2), (10**30, 1)):
            with self.assertRaisesRegex(IndexError, "96000 samples"):
                clip.samples(start, count)
        with self.assertRaisesRegex(tessel.ClipError, "sound"):
            self.open(mNumChannels=0).samples(0, 1)


class Descriptions(ClipTest):
    def test_a_clip_says_what_it_is(self):
        facts = self.open(mFrameWidth=720, mFrameHeight=480, mFramePAR={"numerator": 10, "denominator": 11}, mFieldType=2,
                          mSampleRate=48000, mNumChannels=2, **NTSC).description
        self.assertEqual((facts.width, facts.height, facts.pixel_aspect), (720, 480, Fraction(10, 11)))
        self.assertEqual(facts.field_order, tessel.FieldOrder.LOWER_FIRST)
        self.assertEqual((facts.rate, facts.frame_count, facts.duration),
                         (Fraction(30000, 1001), 30, Fraction(1001, 1000)))
        self.assertEqual((facts.sample_rate, facts.channel_count, facts.sample_count), (48000, 2, 48048))
        self.assertEqual(facts.pixel_format, "bgra")
        with self.assertRaises(AttributeError):
            facts.width = 3

    def test_a_clip_without_a_rate_has_no_duration(self):
        facts = self.open(mVideoFrameRate={"ticksperframe": 0}).description
        self.assertEqual((facts.rate, facts.duration), (None, None))

    def test_pictures_say_what_their_samples_are(self):
        clip = self.open(mPixelFormat=code("v210"))
        own = clip.describe_picture()
        self.assertEqual((own.format, own.sample_bits, own.matrix, own.full_range), ("v210", 10, 6, False))
        self.assertEqual(clip.describe_picture("yuv420p").chroma_shift, (1, 1))


class BadInput(ClipTest):
    def test_each_mistake_raises_one_exception_of_one_line(self):
        self.write("broken.tessel", '{"mFrameWidth": 3,')
        clip = self.open()
        chart_of_wrong_size = self.open(mRenderFormat=2)
        mistakes = [
            (tessel.OpenError, "missing.tessel", lambda: tessel.Clip(self.path("missing.tessel"))),
            (tessel.OpenError, "broken.tessel", lambda: tessel.Clip(self.path("broken.tessel"))),
            (tessel.OpenError, "no-plugin.so", lambda: tessel.Clip("clip.tessel", plugin="/no-plugin.so")),
            (tessel.OpenError, "the path is empty", lambda: tessel.Clip("")),
            (tessel.OpenError, "the document: line 1", lambda: tessel.Clip.from_document("{")),
            (tessel.ClipError, "1920", lambda: chart_of_wrong_size.frame(0)),
            (tessel.ClipError, "no picture", lambda: self.open(mFrameWidth=0).frame(0)),
            (IndexError, "50 frames", lambda: clip.frame(50)),
            (IndexError, "no frame -1", lambda: clip.frame(-1)),
            (ValueError, "yuv420p10", lambda: clip.frame(0, "yuv420")),
            (ValueError, "null character", lambda: tessel.Clip("a\0b")),
            (TypeError, "integer", lambda: clip.frame(0.5)),
            (TypeError, "layout must be a str", lambda: clip.frame(0, 3)),
            (TypeError, "path must be a str", lambda: tessel.Clip(b"clip.tessel")),
            (TypeError, "document must be", lambda: tessel.Clip.from_document(3)),
            (tessel.Error, "save it first", lambda: os.fspath(clip)),
        ]
        for kind, says, mistake in mistakes:
            with self.subTest(says=says):
                with self.assertRaises(kind) as caught:
                    mistake()
                self.assertIn(says, str(caught.exception))
                self.assertNotIn("\n", str(caught.exception))

    def test_a_document_that_cannot_be_read_gives_the_default_clip_where_that_is_wanted(self):
        clip = tessel.Clip.from_document("{", allow_default=True)
        self.assertEqual((clip.description.width, clip.description.height), (720, 480))
        self.assertNotEqual(clip.warning, "")
        self.assertEqual(self.open().warning, "")


class Life(ClipTest):
    def test_a_document_may_be_removed_while_it_is_open(self):
        file = self.file(mNumChannels=1, mSampleRate=48000)
        clip = tessel.Clip(file)
        expected = tessel.Clip(file).frame(3)
        os.remove(file)
        self.assertTrue((clip.frame(3) == expected).all())
        self.assertEqual(clip.samples(0, 10).shape, (1, 10))

    def test_arrays_outlive_their_clip(self):
        frame, samples = (lambda clip: (clip.frame(1), clip.samples(0, 96000)))(
            self.open(mNumChannels=2, mSampleRate=48000))
        gc.collect()
        again = self.open(mNumChannels=2, mSampleRate=48000)
        self.assertTrue((frame == again.frame(1)).all() and (samples == again.samples(0, 96000)).all())

    def test_a_clip_in_memory_is_saved_as_it_is(self):
        clip = self.open(**NTSC)
        file = clip.save(pathlib.Path(self.path("saved.tessel")))
        self.assertEqual(os.fspath(clip), str(file))
        self.assertEqual(tessel.Clip(clip).description, clip.description)
        with self.assertRaisesRegex(tessel.Error, "in a file already"):
            tessel.Clip(file).save(self.path("again.tessel"))


class Threads(ClipTest):
    def test_clips_are_opened_and_used_and_forgotten_in_many_threads(self):
        keys = document(mFrameWidth=64, mFrameHeight=36, mNumChannels=2, mSampleRate=48000)
        clip = tessel.Clip.from_document(keys)
        pictures = [rows(clip.frame(number, "yuv420p")) for number in range(4)]
        sound = clip.samples(0, 4000)

        def work(index):
            for turn in range(7):
                mine = tessel.Clip.from_document(keys)
                number = (index + turn) % 4
                assert rows(mine.frame(number, "yuv420p")) == pictures[number]
                assert (mine.samples(100 * index, 50) == sound[:, 100 * index:100 * index + 50]).all()
                assert rows(clip.frame(number, "yuv420p")) == pictures[number]

        with ThreadPoolExecutor(8) as pool:
            list(pool.map(work, range(8)))  # raises what a thread raised

    def test_other_threads_run_while_a_frame_is_made(self):
        # A float picture of 4K takes some 30 ms. A thread that ticks meanwhile would stand still with the lock held.
        clip = self.open(mFrameWidth=3840, mFrameHeight=2160, mPixelFormat=code("BGra"))
        out = tuple(clip.frame(0, "gbrap_f32"))
        ticks = []
        done = threading.Event()

        def tick():
            while not done.is_set():
                ticks.append(time.monotonic())
                time.sleep(0.001)

        ticker = threading.Thread(target=tick)
        ticker.start()
        begin = time.monotonic()
        for number in range(8):
            clip.frame(number, "gbrap_f32", out=out)
        end = time.monotonic()
        done.set()
        ticker.join()
        # With the lock held the thread would run between the frames alone: some nine times.
        self.assertGreater(sum(begin < tick < end for tick in ticks), 20)


if __name__ == "__main__":
    unittest.main()

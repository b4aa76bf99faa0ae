"""The C interface, called from outside through the built library.

Variables: TESSEL_LIBRARY, and those of tests/cli/program.py.
"""

import ctypes
import json
import os
import resource
import subprocess
import sys
import threading
import unittest
from array import array

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "cli"))

import clips  # noqa: E402
from clips import (BAD_ARGUMENT, FAILED, LIBRARY, NOT_OPENED, NOT_POSSIBLE, OK, Clip)  # noqa: E402
from program import TICKS_PER_SECOND, ProgramTest, code, color, document  # noqa: E402

FRAMES_TO_COMPARE = 3


def rate(numerator, denominator):
    return {"ticksperframe": TICKS_PER_SECOND * denominator // numerator}


def text_of(**changes):
    return json.dumps(document(**changes)).encode()


class ApiTest(ProgramTest, clips.RefusedCalls):
    def open(self, **changes):
        clip = Clip(text=text_of(**changes))
        self.addCleanup(clip.close)
        return clip


class Description(ApiTest):
    def test_a_clip_says_what_it_is(self):
        facts = self.open(mFrameWidth=720, mFrameHeight=480, mFramePAR={"numerator": 10, "denominator": 11},
                          mFieldType=2, mVideoFrameRate=rate(30000, 1001),
                          mVideoDuration={"ticks": 90 * TICKS_PER_SECOND * 1001 // 30000}, mSampleRate=48000,
                          mNumChannels=2).describe()
        self.assertEqual((facts.width, facts.height), (720, 480))
        self.assertEqual((facts.pixel_aspect_numerator, facts.pixel_aspect_denominator), (10, 11))
        self.assertEqual(facts.field_order, 2)
        self.assertEqual((facts.rate_numerator, facts.rate_denominator), (30000, 1001))
        self.assertEqual(facts.frame_count, 90)
        self.assertEqual((facts.sample_rate, facts.channel_count), (48000, 2))
        self.assertEqual(facts.sample_count, 144144)  # 3.003 s
        self.assertEqual(facts.pixel_format, code("bgra"))
        self.assertEqual(facts.is_still, 0)

    def test_a_clip_without_a_rate_says_so(self):
        facts = self.open(mVideoFrameRate={"ticksperframe": 0}).describe()
        self.assertEqual((facts.rate_numerator, facts.rate_denominator), (0, 1))
        self.assertEqual(facts.sample_count, 0)

    def test_a_structure_of_an_older_header_gets_as_much_as_it_holds(self):
        description = clips.Description()
        older = clips.Description.height.offset
        description.size = older
        description.height = -7
        self.assertEqual(LIBRARY.tessel_describe(self.open().handle, description), OK)
        self.assertEqual((description.width, description.height, description.size), (320, -7, older))

    def test_a_structure_without_its_size_is_refused(self):
        self.assertEqual(LIBRARY.tessel_describe(self.open().handle, clips.Description()), BAD_ARGUMENT)
        self.assertIn(b"size", LIBRARY.tessel_error_text())

    def test_the_version_is_the_program_s(self):
        self.assertIn(LIBRARY.tessel_version().decode(), self.run_program("--version").out)


class Opening(ApiTest):
    def test_what_cannot_be_opened_is_named(self):
        self.write("broken.tessel", '{"mFrameWidth": 3,')
        self.assert_call_fails(NOT_OPENED, "missing.tessel", lambda: Clip(file=self.path("missing.tessel")))
        self.assert_call_fails(NOT_OPENED, "broken.tessel", lambda: Clip(file=self.path("broken.tessel")))
        self.assert_call_fails(NOT_OPENED, "no-plugin.so", lambda: Clip(text=b"{}", plugin="/no-plugin.so"))

    def test_an_empty_path_is_said(self):
        self.assert_call_fails(NOT_OPENED, "the path is empty", lambda: Clip(file=""))

    def test_errors_of_a_document_in_memory_call_it_the_document_and_name_no_file(self):
        self.assert_call_fails(NOT_OPENED, "the document: line 1", lambda: Clip(text=b"{"))
        self.assert_call_fails(NOT_OPENED, 'the document: "mFrameWidth": expected an integer',
                               lambda: Clip(text=text_of(mFrameWidth="wide")))
        chart = self.open(mRenderFormat=2)  # of a size that charts do not have
        for call in (lambda: chart.frame(0, clips.OWN), lambda: chart.describe_picture(clips.BGRA),
                     lambda: clips.Movie(chart)):
            self.assert_call_fails(FAILED, "the document: frame 0: a swatch chart needs", call)

    def test_a_document_that_cannot_be_read_gives_the_default_clip_where_that_is_wanted(self):
        with Clip(text=b"{", allow_default=True) as clip:
            self.assertEqual((clip.describe().width, clip.describe().height), (720, 480))
            self.assertNotEqual(clip.warning(), "")
        self.assertEqual(self.open().warning(), "")

    def test_null_pointers_are_refused(self):
        handle = ctypes.c_void_p()
        self.assertEqual(LIBRARY.tessel_open_file(None, None, handle), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_open_text(None, 0, None, handle), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_describe(None, clips.sized(clips.Description)), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_frame(None, 0, clips.OWN, None, None), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_samples(None, 0, 1, None, 0), BAD_ARGUMENT)
        LIBRARY.tessel_close(None)

    def test_a_document_that_is_removed_while_it_is_open_goes_on(self):
        name = self.write("clip.tessel", document(mNumChannels=1, mSampleRate=48000))
        with Clip(file=self.path(name)) as clip, Clip(file=self.path(name)) as other:
            other.frame(0, clips.OWN)
            os.remove(self.path(name))
            self.assertEqual(clip.frame(3, clips.OWN), other.frame(3, clips.OWN))
            self.assertEqual(len(clip.samples(0, 10)[0]), 40)

    def with_temporary_files_in(self, folder, script, **options):
        """What a script prints in a process of its own; its argument is a document."""
        answer = self.run_command([sys.executable, "-B", "-c", script, text_of().decode()],
                                  {"TMPDIR": folder, "PYTHONPATH": os.path.dirname(os.path.abspath(__file__))}, **options)
        self.assertEqual(answer.err, "")
        return answer.out

    def test_a_document_in_memory_leaves_no_file(self):
        folder = self.path("temporary")
        os.mkdir(folder)
        script = ("import clips, os, sys; clip = clips.Clip(text=sys.argv[1].encode()); clip.frame(0, clips.OWN); "
                  "print(os.listdir(os.environ['TMPDIR']))")
        self.assertEqual(self.with_temporary_files_in(folder, script), "[]\n")

    def test_a_document_in_memory_that_finds_no_place_on_a_disk_says_why(self):
        folder = self.path("temporary")
        os.mkdir(folder)
        script = ("import clips, os, sys\ntry:\n    clips.Clip(text=sys.argv[1].encode())\n"
                  "except clips.CallFailed as error:\n    print(error)")
        line = self.with_temporary_files_in(
            folder, script, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0)))
        self.assertRegex(line, f"^{folder}/tessel-[^/]+/document.tessel: the document cannot be written there: "
                               "it is larger than files may be here\n$")
        self.assertEqual(os.listdir(folder), [])
        line = self.with_temporary_files_in(self.path("missing"), script)
        self.assertEqual(line, "the folder for temporary files, as TMPDIR names it, cannot be used: "
                               "there is no such folder\n")


class Pictures(ApiTest):
    def rendered(self, name, movie, arguments, decode):
        """The pictures that the program wrote, as FFmpeg reads them."""
        self.assert_done(self.run_program("render", name, "-o", movie, "--frames", str(FRAMES_TO_COMPARE),
                                          "--video-only", "--quiet", *arguments))
        first = ["-i", movie] if "%" not in movie else ["-start_number", "0", "-i", movie]
        return subprocess.run(["ffmpeg", "-v", "error", *first, *decode, "-f", "rawvideo", "-"], cwd=self.folder,
                              stdout=subprocess.PIPE, check=True).stdout

    def compare(self, layout, movie, decode, *arguments, **changes):
        name = self.write("clip.tessel", document(**changes))
        expected = self.rendered(name, movie, arguments, decode)
        with Clip(file=self.path(name)) as clip:
            got = b"".join(clip.frame(number, layout) for number in range(FRAMES_TO_COMPARE))
        self.assertEqual(len(got), len(expected))
        self.assertTrue(got == expected, "the pixels differ")

    def test_layouts_are_those_that_the_program_writes(self):
        pixels = lambda name: ["-pix_fmt", name]  # noqa: E731
        raw = ["-c:v", "copy"]
        lossless = ("--video-codec", "h264", "--quality", "0")
        bt601 = {"mColorSpace": ...}
        odd = {"mFrameWidth": 101, "mFrameHeight": 75}
        interlaced = {"mFieldType": 1, "mRenderFormat": 0}
        cases = [
            (clips.BGRA, "a.mkv", pixels("bgra"), (), {}),
            (clips.BGRA, "a.mkv", pixels("bgra"), (), odd),
            (clips.BGRA, "a.mkv", pixels("bgra"), (), interlaced),
            (clips.ARGB, "a.nut", raw, (), {"mPixelFormat": code("argb")}),
            (clips.BGRX, "a.nut", raw, (), {"mPixelFormat": code("bgrx")}),
            (clips.RGB, "f%d.png", pixels("rgb24"), (), {"mPixelFormat": code("bgrx")}),
            (clips.RGBA, "f%d.png", pixels("rgba"), (), {}),
            (clips.RGBA64, "f%d.png", pixels("rgba64le"), (), {"mPixelFormat": code("BGra")}),
            (clips.GBRAP_F32, "f%d.exr", pixels("gbrapf32le"), (), {"mPixelFormat": code("BGra")}),
            (clips.UYVY, "a.nut", raw, (), {"mPixelFormat": code("uyv7")}),
            (clips.V210, "a.mkv", raw, (), {"mPixelFormat": code("v210")}),
            (clips.V210, "a.mkv", raw, ("--video-codec", "v210"), {}),
            (clips.YUV420P, "a.mkv", pixels("yuv420p"), lossless, {}),
            (clips.YUV420P, "a.mkv", pixels("yuv420p"), lossless, interlaced),
            (clips.YUV420P, "a.mkv", pixels("yuv420p"), lossless, bt601),
        ]
        for layout, movie, decode, arguments, changes in cases:
            with self.subTest(layout=layout, movie=movie, **changes):
                self.compare(layout, movie, decode, *arguments, **changes)

    def test_own_pixels_are_the_plug_in_s(self):
        # Opaque mid grey, in the layouts whose bytes can be written down by hand.
        grey = dict(mRenderFormat=0, mUpperFieldColor=color(0.25, 0.5, 1), mLowerFieldColor=color(0.25, 0.5, 1),
                    mDrawFrameFieldNumber=False, mFrameWidth=8, mFrameHeight=2)
        clip = self.open(**grey)
        self.assertEqual(clip.frame(0, clips.OWN), bytes((255, 128, 64, 255)) * 16)
        self.assertEqual(clip.describe_picture(clips.OWN).format, code("bgra"))
        floats = self.open(**grey, mPixelFormat=code("BGra"))
        self.assertEqual(array("f", floats.frame(0, clips.OWN)).tolist(), [1.0, 0.5, 0.25, 1.0] * 16)

    def test_rows_may_run_upwards_and_have_room_between_them(self):
        clip = self.open(mFrameWidth=8, mFrameHeight=4)
        plain = clip.frame(0, clips.BGRA)
        stride = 48
        memory = ctypes.create_string_buffer(b"\xAA" * (4 * stride), 4 * stride)
        last = ctypes.addressof(memory) + 3 * stride
        self.assertEqual(LIBRARY.tessel_frame(clip.handle, 0, clips.BGRA, (ctypes.c_void_p * 4)(last),
                                              (ctypes.c_ssize_t * 4)(-stride)), OK)
        for row in range(4):
            found = memory.raw[(3 - row) * stride:][:stride]
            self.assertEqual(found, plain[row * 32:][:32] + b"\xAA" * 16)

    def test_rows_with_room_between_them_hold_the_same_in_every_format(self):
        # The clip's own layout is painted where it is wanted, others are copied there.
        cases = [("bgra", clips.OWN), ("bgra", clips.BGRA), ("argb", clips.ARGB), ("bgrx", clips.BGRX),
                 ("uyvy", clips.UYVY), ("yuy3", clips.YUYV), ("v210", clips.OWN), ("v211", clips.V210),
                 ("BGra", clips.OWN), ("VUYA", clips.OWN), ("bgra", clips.RGB), ("yv12", clips.V210)]
        for format_, layout in cases:
            with self.subTest(format=format_, layout=layout):
                clip = self.open(mFrameWidth=101, mFrameHeight=7, mFieldType=1, mPixelFormat=code(format_))
                row = clip.describe_picture(layout).row_bytes[0]
                stride = row + 9
                memory = ctypes.create_string_buffer(b"\xAA" * (7 * stride + 3), 7 * stride + 3)
                self.assertEqual(LIBRARY.tessel_frame(clip.handle, 1, layout,
                                                      (ctypes.c_void_p * 4)(ctypes.addressof(memory) + 3),
                                                      (ctypes.c_ssize_t * 4)(stride)), OK)
                rows = [memory.raw[3 + number * stride:][:stride] for number in range(7)]
                self.assertEqual([line[row:] for line in rows], [b"\xAA" * 9] * 7)
                # Upwards nothing is painted in place.
                last = ctypes.create_string_buffer(b"\xAA" * (7 * row), 7 * row)
                self.assertEqual(LIBRARY.tessel_frame(clip.handle, 1, layout,
                                                      (ctypes.c_void_p * 4)(ctypes.addressof(last) + 6 * row),
                                                      (ctypes.c_ssize_t * 4)(-row)), OK)
                self.assertEqual([line[:row] for line in rows],
                                 [last.raw[(6 - number) * row:][:row] for number in range(7)])

    def test_a_stride_shorter_than_the_row_is_refused_and_nothing_written(self):
        clip = self.open(mFrameWidth=8, mFrameHeight=2)
        memory = ctypes.create_string_buffer(b"\xAA" * 64, 64)
        result = LIBRARY.tessel_frame(clip.handle, 0, clips.BGRA, (ctypes.c_void_p * 4)(ctypes.addressof(memory)),
                                      (ctypes.c_ssize_t * 4)(31))
        self.assertEqual((result, memory.raw), (BAD_ARGUMENT, b"\xAA" * 64))

    def test_what_a_clip_cannot_give_is_said(self):
        self.assert_call_fails(BAD_ARGUMENT, "layout 99", lambda: self.open().frame(0, 99))
        self.assert_call_fails(BAD_ARGUMENT, "from 0", lambda: self.open().frame(-1, clips.OWN))
        self.assert_call_fails(NOT_POSSIBLE, "no picture", lambda: self.open(mFrameWidth=0).frame(0, clips.OWN))
        # A chart needs 1920x1080.
        self.assert_call_fails(FAILED, "1920", lambda: self.open(mRenderFormat=2).frame(0, clips.OWN))


class Sound(ApiTest):
    def test_samples_are_those_that_the_program_writes(self):
        stereo = {"mNumChannels": 2, "mSampleRate": 44100, "mSteadyToneFrequency": 997, "mSteadyToneAmplitude": 0.5}
        blits = {"mNumChannels": 6, "mKsAudioChannelType": 3, "mSampleRate": 48000, "mToneFormat": 1,
                 "mIdentifierFormat": 3}
        for changes in (stereo, blits):
            with self.subTest(**changes):
                name = self.write("clip.tessel", document(**changes, mVideoDuration={"ticks": 4 * TICKS_PER_SECOND}))
                self.assert_done(self.run_program("render", name, "-o", "sound.mkv", "--audio-only", "--quiet",
                                                  "--audio-codec", "pcmfloat"))
                expected = subprocess.run(["ffmpeg", "-v", "error", "-i", "sound.mkv", "-f", "f32le", "-"],
                                          cwd=self.folder, stdout=subprocess.PIPE, check=True).stdout
                with Clip(file=self.path(name)) as clip:
                    count = clip.describe().sample_count
                    channels = [array("f", channel) for channel in clip.samples(0, count)]
                    woven = array("f", bytes(4 * count * len(channels)))
                    for index, channel in enumerate(channels):
                        woven[index::len(channels)] = channel
                    self.assertTrue(woven.tobytes() == expected, "the samples differ")
                    # The same samples, whatever they are asked for with.
                    pieces = clip.samples(4801, 7919)
                    self.assertEqual(array("f", pieces[0]), channels[0][4801:4801 + 7919])

    def test_a_clip_whose_sound_cannot_be_had_says_what_it_has(self):
        self.assertIn("the sound cannot be had: 65 channels", self.open(mNumChannels=65).warning())
        self.assertEqual(self.open(mNumChannels=0).warning(), "")
        self.assert_call_fails(NOT_POSSIBLE, "65 channels at 48000 samples per second",
                               lambda: self.open(mNumChannels=65, mSampleRate=48000).samples(0, 1))
        self.assert_call_fails(NOT_POSSIBLE, "2 channels at 44100.5 samples per second",
                               lambda: self.open(mNumChannels=2, mSampleRate=44100.5).samples(0, 1))

    def test_a_clip_without_sound_says_so(self):
        self.assert_call_fails(NOT_POSSIBLE, "sound", lambda: self.open(mNumChannels=0).samples(0, 1))
        self.assert_call_fails(NOT_POSSIBLE, "11025.5",
                               lambda: self.open(mNumChannels=1, mSampleRate=11025.5).samples(0, 1))


class Threads(ApiTest):
    def in_threads(self, count, work):
        errors = []

        def guarded(index):
            try:
                work(index)
            except BaseException as error:  # pylint: disable=broad-except
                errors.append(error)

        threads = [threading.Thread(target=guarded, args=(index,)) for index in range(count)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(errors, [])

    def test_clips_may_be_opened_used_and_closed_in_many_threads(self):
        text = text_of(mFrameWidth=64, mFrameHeight=36, mNumChannels=2, mSampleRate=48000)
        with Clip(text=text) as clip:
            pictures = [clip.frame(number, clips.YUV420P) for number in range(4)]
            sound = clip.samples(0, 4000)

        def work(index):
            for turn in range(7):
                with Clip(text=text) as mine:
                    number = (index + turn) % 4
                    assert mine.frame(number, clips.YUV420P) == pictures[number]
                    assert mine.samples(100 * index, 50)[1] == sound[1][400 * index:][:200]

        self.in_threads(8, work)

    def test_one_clip_serves_many_threads(self):
        with Clip(text=text_of(mFrameWidth=64, mFrameHeight=36, mNumChannels=1, mSampleRate=48000)) as clip:
            layouts = (clips.OWN, clips.V210, clips.YUV422P, clips.RGB48)
            pictures = {(number, layout): clip.frame(number, layout) for number in range(20) for layout in layouts}
            sound = clip.samples(0, 96000)[0]

            def work(index):
                for turn in range(60):
                    key = ((7 * turn + 3 * index) % 20, layouts[(turn + index) % 4])
                    assert clip.frame(*key) == pictures[key]
                    start = (9973 * turn + 1013 * index) % 90000
                    assert clip.samples(start, 64)[0] == sound[4 * start:][:256]

            self.in_threads(8, work)

    def test_each_thread_has_its_own_error(self):
        self.assert_call_fails(NOT_OPENED, "one.tessel", lambda: Clip(file="/one.tessel"))
        texts = []

        def work(_):
            texts.append(LIBRARY.tessel_error_text())

        self.in_threads(1, work)
        self.assertEqual(texts, [b""])
        self.assertIn(b"one.tessel", LIBRARY.tessel_error_text())


if __name__ == "__main__":
    unittest.main()

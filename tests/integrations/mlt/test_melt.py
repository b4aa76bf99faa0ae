"""Documents in melt: the same pictures and sound as `tessel render` writes, projects, profiles.

Variables: MELT, MLT_MODULE (the module), MLT_MODULES (the folder of MLT's own), and those of tests/cli/program.py.
"""

import json
import os
import re
import subprocess
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))))
sys.path.insert(0, os.path.join(ROOT, "tests", "cli"))

from program import TICKS_PER_SECOND, ProgramTest, code, color, document  # noqa: E402

MELT = os.environ["MELT"]
# Of MLT's own modules; others want a display or print of their own. "xine" has the deinterlacer that leaves
# progressive pictures alone; the one of "avformat" converts every picture.
WANTED = ("avformat", "core", "plus", "resample", "xine", "xml")
FRAMES = 3
TRIES = (10, 10, 20, 20, 40, 40, 60)  # seconds for each run of melt; see MeltTest.melt
INTERLACED = {"mFieldType": 1, "mRenderFormat": 0, "mDrawFrameFieldNumber": True}
NTSC = {"mVideoFrameRate": {"ticksperframe": TICKS_PER_SECOND * 1001 // 30000},
        "mVideoDuration": {"ticks": 60 * TICKS_PER_SECOND * 1001 // 30000}}
BLITS = {"mNumChannels": 6, "mKsAudioChannelType": 3, "mSampleRate": 48000, "mToneFormat": 1, "mIdentifierFormat": 3}
STEREO = {"mNumChannels": 2, "mSampleRate": 48000, "mSteadyToneFrequency": 997, "mSteadyToneAmplitude": 0.5}


def chart():
    with open(os.path.join(ROOT, "samples", "swatch-chart.tessel"), encoding="utf-8") as file:
        return json.load(file)


class MeltTest(ProgramTest):
    def setUp(self):
        super().setUp()
        modules = self.path("modules")
        os.mkdir(modules)
        for name in WANTED:
            os.symlink(os.path.join(os.environ["MLT_MODULES"], f"libmlt{name}.so"),
                       os.path.join(modules, f"libmlt{name}.so"))
        os.symlink(os.environ["MLT_MODULE"], os.path.join(modules, "libmlttessel.so"))
        # Loaded by a link, the module cannot tell where its libraries are.
        libraries = os.path.dirname(os.path.dirname(os.environ["MLT_MODULE"]))
        self.environment = {"MLT_REPOSITORY": modules, "LD_LIBRARY_PATH": libraries}

    def melt(self, *arguments, fails=False):
        """Runs melt. On a busy machine melt 7.12 sometimes ends without having written a picture, or never ends, whatever
        it plays (`color:` too): then it is run again."""
        outputs = [self.path(text.removeprefix("avformat:")) for text in arguments if text.startswith("avformat:")]
        for seconds in TRIES:
            for file in filter(os.path.exists, outputs):
                os.remove(file)
            try:
                answer = self.run_command([MELT, "-silent", *arguments], self.environment, timeout=seconds)
            except subprocess.TimeoutExpired:
                continue
            if fails or answer.code != 0 or all(os.path.exists(file) and os.path.getsize(file) > 0 for file in outputs):
                self.assertEqual(answer.code != 0, fails, answer.err)
                return answer
        self.fail(f"melt wrote nothing in {len(TRIES)} runs: {arguments}")

    def clip(self, **changes):
        return self.write("clip.tessel", document(**changes))

    def pictures(self, source, image_format, pixels, *arguments):
        if os.path.exists(self.path("out.raw")):
            os.remove(self.path("out.raw"))
        self.melt(*source, "-consumer", "avformat:out.raw", "f=rawvideo", "vcodec=rawvideo", f"pix_fmt={pixels}",
                  f"mlt_image_format={image_format}", "an=1", "real_time=-1", *arguments)
        with open(self.path("out.raw"), "rb") as file:
            return file.read()

    def rendered(self, clip, movie, decode, *arguments):
        """The first pictures that the program wrote, as FFmpeg reads them."""
        self.assert_done(self.run_program("render", clip, "-o", movie, "--frames", str(FRAMES), "--video-only", "--quiet",
                                          *arguments))
        first = ["-start_number", "0", "-i", movie] if "%" in movie else ["-i", movie]
        return subprocess.run(["ffmpeg", "-v", "error", *first, *decode, "-f", "rawvideo", "-"], cwd=self.folder,
                              stdout=subprocess.PIPE, check=True).stdout


class Pictures(MeltTest):
    def compare(self, image_format, pixels, movie, decode, *arguments, **changes):
        clip = self.clip(**changes)
        expected = self.rendered(clip, movie, decode, *arguments)
        # As the clip's: melt's own is the lower field first.
        order = "top_field_first=1" if changes.get("mFieldType") == 1 else "top_field_first=0"
        got = self.pictures([clip, f"out={FRAMES - 1}"], image_format, pixels, order)
        self.assertEqual(len(got), len(expected))
        self.assertTrue(got == expected, "the pixels differ")

    def test_pictures_are_those_that_the_program_writes(self):
        png = ("f%d.png", ("-pix_fmt", "rgb24"))
        raw = ("a.nut", ("-pix_fmt", "yuyv422"))
        cases = [
            ("rgb", "rgb24", *png, {}),
            ("rgb", "rgb24", *png, {"mFrameWidth": 101, "mFrameHeight": 75}),
            ("rgb", "rgb24", *png, {**INTERLACED, **NTSC}),
            ("yuv422p16", "yuv422p10le", "a.mov", ("-pix_fmt", "yuv422p10le"), "--video-codec", "v210", chart()),
            ("rgba", "rgba", "f%d.png", ("-pix_fmt", "rgba"), {"mUpperFieldColor": color(1, 0.5, 0.25, 0.5),
                                                              "mLowerFieldColor": color(0, 1, 0, 0.25), **INTERLACED}),
            ("yuv422", "yuyv422", *raw, {"mPixelFormat": code("yuy3"), **NTSC}),
            ("yuv422", "yuyv422", *raw, {"mPixelFormat": code("yuy3"), **INTERLACED}),
            ("yuv422p16", "yuv422p10le", "a.mkv", ("-pix_fmt", "yuv422p10le"), {"mPixelFormat": code("v211"), **NTSC}),
        ]
        for image_format, pixels, movie, decode, *arguments, changes in cases:
            with self.subTest(format=image_format, keys=sorted(changes)):
                self.compare(image_format, pixels, movie, decode, *arguments, **changes)

    def test_any_frame_can_be_reached(self):
        clip = self.clip()
        whole = self.pictures([clip], "rgb", "rgb24")
        size = 320 * 180 * 3
        self.assertEqual(len(whole), 50 * size)
        for first in (49, 31, 7):
            self.assertTrue(self.pictures([clip, f"in={first}", f"out={first}"], "rgb", "rgb24") ==
                            whole[first * size:][:size], first)

    def test_a_project_of_another_rate_shows_the_frames_of_its_moments(self):
        clip = self.clip()
        size = 320 * 180 * 3
        whole = self.pictures([clip], "rgb", "rgb24")
        # 25 frames a second in 50: each twice. The profile is 320x180, as the clip.
        self.write("double", "description=double\nframe_rate_num=50\nframe_rate_den=1\nwidth=320\nheight=180\nprogressive=1\n"
                             "sample_aspect_num=1\nsample_aspect_den=1\ndisplay_aspect_num=16\ndisplay_aspect_den=9\n"
                             "colorspace=709\n")
        doubled = self.pictures(["-profile", self.path("double"), clip], "rgb", "rgb24")
        self.assertEqual(len(doubled), 100 * size)
        self.assertTrue(all(doubled[at * size:][:size] == whole[at // 2 * size:][:size] for at in range(100)))


class Sound(MeltTest):
    def test_sound_is_that_which_the_program_writes(self):
        for channels, changes in ((2, STEREO), (2, {**STEREO, **NTSC}), (6, {**BLITS, **NTSC})):
            with self.subTest(keys=sorted(changes)):
                clip = self.clip(mDrawFrameFieldNumber=False, **changes)
                self.melt(clip, "-consumer", "avformat:out.f32", "f=f32le", "acodec=pcm_f32le", "vn=1", "real_time=-1", "mlt_audio_format=f32le",
                          f"channels={channels}", "frequency=48000")
                self.assert_done(self.run_program("render", clip, "-o", "sound.mkv", "--audio-only", "--quiet",
                                                  "--audio-codec", "pcmfloat"))
                expected = subprocess.run(["ffmpeg", "-v", "error", "-i", "sound.mkv", "-f", "f32le", "-"],
                                          cwd=self.folder, stdout=subprocess.PIPE, check=True).stdout
                with open(self.path("out.f32"), "rb") as file:
                    got = file.read()
                # The last frame's samples may be one more or one less than what the clip's length rounds to.
                self.assertLessEqual(abs(len(got) - len(expected)), 4 * channels)
                common = min(len(got), len(expected))
                self.assertTrue(got[:common] == expected[:common], "the samples differ")


class Projects(MeltTest):
    def test_a_project_with_a_document_is_saved_and_opens_again(self):
        clip = self.clip(**STEREO)
        direct = self.pictures([clip, "out=2"], "rgb", "rgb24")
        self.melt(clip, "out=2", "-consumer", "xml:project.mlt")
        with open(self.path("project.mlt"), encoding="utf-8") as file:
            project = file.read()
        self.assertIn('<property name="mlt_service">tessel</property>', project)
        self.assertIn('<property name="aspect_ratio">1</property>', project)
        self.assertIn('<property name="length">50</property>', project)
        self.assertTrue(self.pictures(["project.mlt"], "rgb", "rgb24") == direct)

    def test_a_document_named_as_a_movie_in_a_project_opens(self):
        clip = self.clip()
        direct = self.pictures([clip, "out=2"], "rgb", "rgb24")
        for service in ("tessel", "avformat", "avformat-novalidate"):
            self.write("hand.mlt", '<mlt><profile width="320" height="180" frame_rate_num="25" frame_rate_den="1" '
                       'progressive="1" sample_aspect_num="1" sample_aspect_den="1" display_aspect_num="16" '
                       'display_aspect_den="9" colorspace="709"/><producer id="a" in="0" out="2">'
                       f'<property name="resource">{clip}</property><property name="mlt_service">{service}</property>'
                       "</producer></mlt>")
            with self.subTest(service=service):
                self.assertTrue(self.pictures(["hand.mlt"], "rgb", "rgb24") == direct)

    def test_what_cannot_be_opened_is_said(self):
        self.write("broken.tessel", "{")
        answer = self.run_command([MELT, "-silent", "broken.tessel", "-consumer", "null"], self.environment)
        self.assertIn("broken.tessel: line 1", answer.err)

    def test_what_cannot_be_played_is_refused_when_it_is_opened(self):
        # melt would otherwise show black for a chart of a wrong size, and never end for a rate of 0.
        for says, changes in (("frame 0: a swatch chart needs a frame of 1920x1080", {"mRenderFormat": 2}),
                              ("mVideoFrameRate is no frame rate that can be played",
                               {"mVideoFrameRate": {"ticksperframe": 0}}),
                              ("100000 x 100000 pixels are more than MLT holds", {"mFrameWidth": 100000,
                                                                                 "mFrameHeight": 100000}),
                              ("the clip has neither picture nor sound", {"mFrameWidth": 0, "mNumChannels": 0})):
            with self.subTest(says=says):
                clip = self.clip(**changes)
                answer = self.run_command(["timeout", "-k", "1", "20", MELT, "-silent", clip, "out=0", "-consumer",
                                           "avformat:out.nut", "vcodec=rawvideo", "real_time=-1"], self.environment)
                self.assertIn(f"{clip}: {says}", answer.err)
                self.assertFalse(os.path.exists(self.path("out.nut")))

    def test_a_clip_with_sound_that_cannot_be_had_shows_its_pictures(self):
        clip = self.clip(mNumChannels=65)
        answer = self.melt(clip, "out=2", "-consumer", "avformat:out.nut", "vcodec=rawvideo", "real_time=-1")
        self.assertNotIn("[producer tessel] sound from sample", answer.err)
        self.assertIn("clip.tessel: the sound cannot be had:", answer.err)

    def test_metadata_tells_what_the_producer_is(self):
        os.makedirs(self.path("data"))
        for name in os.listdir("/usr/share/mlt-7"):
            os.symlink(os.path.join("/usr/share/mlt-7", name), os.path.join(self.path("data"), name))
        os.symlink(os.path.join(ROOT, "integrations", "mlt"), os.path.join(self.path("data"), "tessel"))
        answer = self.run_command([MELT, "-query", "producer=tessel"], {**self.environment, "MLT_DATA": self.path("data")})
        self.assertIn("identifier: tessel", answer.out)


class Guide(MeltTest):
    def test_every_command_of_the_guide_runs(self):
        self.clip(**STEREO)
        with open(os.path.join(ROOT, "docs", "integrations.md"), encoding="utf-8") as file:
            blocks = re.findall(r"^```melt\n(.*?)^```$", file.read(), re.DOTALL | re.MULTILINE)
        commands = "".join(blocks).splitlines()
        self.assertEqual(len(commands), 5)
        for command in commands:
            with self.subTest(command):
                self.melt(*command.split()[1:])
        # 25 frames of 320x180, three bytes a pixel; one second of two floats a sample.
        self.assertEqual(os.path.getsize(self.path("rgb.raw")), 25 * 320 * 180 * 3)
        self.assertEqual(os.path.getsize(self.path("sound.f32")), 48000 * 2 * 4)
        self.assertGreater(os.path.getsize(self.path("project.mp4")), 1000)


class Profiles(MeltTest):
    def profile(self, **changes):
        clip = self.clip(**changes)
        self.melt(clip, "out=0", "-consumer", "xml:project.mlt")
        with open(self.path("project.mlt"), encoding="utf-8") as file:
            line = next(line for line in file if "<profile" in line)
        return {name: value for name, value in
                (part.split("=") for part in line.split("<profile ", 1)[1].rstrip("/>\n").replace('"', "").split(" ")
                 if "=" in part and not part.startswith("description"))}

    def assert_profile(self, found, **expected):
        self.assertEqual({name: found[name] for name in expected}, {name: str(value) for name, value in expected.items()})

    def test_the_automatic_profile_is_the_clip_s(self):
        self.assert_profile(self.profile(), width=320, height=180, progressive=1, frame_rate_num=25, frame_rate_den=1,
                            sample_aspect_num=1, sample_aspect_den=1)
        self.assert_profile(self.profile(**NTSC), frame_rate_num=30000, frame_rate_den=1001)
        # A PAL wide-screen picture: 16/11 x 720/576 is 20/11.
        self.assert_profile(self.profile(mFrameWidth=720, mFrameHeight=576, mFramePAR={"numerator": 16, "denominator": 11},
                                         **INTERLACED),
                            width=720, height=576, progressive=0, frame_rate_num=25, frame_rate_den=1,
                            sample_aspect_num=16, sample_aspect_den=11)
        self.assert_profile(self.profile(mFrameWidth=720, mFrameHeight=480, mFramePAR={"numerator": 10, "denominator": 11},
                                         **{**INTERLACED, **NTSC}),
                            progressive=0, frame_rate_num=30000, frame_rate_den=1001, sample_aspect_num=10,
                            sample_aspect_den=11)


class Library(MeltTest):
    """MLT's own library, called from a script: what melt cannot show."""

    SCRIPT = '''
import ctypes, os
mlt = ctypes.CDLL("libmlt-7.so.7")
for name in ("mlt_factory_init", "mlt_profile_init", "mlt_factory_producer"):
    getattr(mlt, name).restype = ctypes.c_void_p
mlt.mlt_factory_producer.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p]
mlt.mlt_producer_get_length.argtypes = [ctypes.c_void_p]
mlt.mlt_producer_close.argtypes = [ctypes.c_void_p]
mlt.mlt_producer_seek.argtypes = [ctypes.c_void_p, ctypes.c_int]
mlt.mlt_service_get_frame.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_int]
mlt.mlt_frame_close.argtypes = [ctypes.c_void_p]
mlt.mlt_factory_init(None)
profile = mlt.mlt_profile_init(b"atsc_1080p_25")
'''

    def run_script(self, script):
        answer = self.run_command([sys.executable, "-c", self.SCRIPT + script], self.environment)
        self.assertEqual((answer.code, answer.err), (0, ""))
        return answer.out

    def test_yuv420p_in_memory_is_what_the_program_writes(self):
        # The "avformat" consumer of MLT 7.12 reads the last plane at a wrong place, so no file can show this.
        for changes in ({}, INTERLACED):
            with self.subTest(**changes):
                clip = self.clip(**changes)
                expected = self.rendered(clip, "a.mkv", ("-pix_fmt", "yuv420p"), "--video-codec", "h264", "--quality", "0")
                self.run_script(f'''
producer = mlt.mlt_factory_producer(profile, b"tessel", b"clip.tessel")
with open("out.raw", "wb") as out:
    for number in range({FRAMES}):
        frame, buffer = ctypes.c_void_p(), ctypes.c_void_p()
        form, width, height = ctypes.c_int(4), ctypes.c_int(320), ctypes.c_int(180)
        mlt.mlt_producer_seek(producer, number)
        assert mlt.mlt_service_get_frame(producer, ctypes.byref(frame), 0) == 0
        assert mlt.mlt_frame_get_image(frame, ctypes.byref(buffer), ctypes.byref(form), ctypes.byref(width),
                                       ctypes.byref(height), 0) == 0
        assert (form.value, width.value, height.value) == (4, 320, 180)
        out.write(ctypes.string_at(buffer, 320 * 180 * 3 // 2))
        mlt.mlt_frame_close(frame)
mlt.mlt_producer_close(producer)
''')
                with open(self.path("out.raw"), "rb") as file:
                    self.assertTrue(file.read() == expected, "the pixels differ")

    def test_settings_that_changed_on_disk_are_picked_up_when_the_document_is_opened_again(self):
        self.clip()
        self.write("other.tessel", document(mVideoDuration={"ticks": 3 * TICKS_PER_SECOND}))
        self.assertEqual(self.run_script('''
for turn in range(2):
    producer = mlt.mlt_factory_producer(profile, None, b"clip.tessel")
    print(mlt.mlt_producer_get_length(producer))
    mlt.mlt_producer_close(producer)
    if turn == 0:
        os.replace("other.tessel", "clip.tessel")
'''), "50\n75\n")

    def test_many_producers_live_in_many_threads(self):
        self.clip(**STEREO)
        self.assertEqual(self.run_script('''
import threading
lengths = []
def work():
    for _ in range(7):
        producer = mlt.mlt_factory_producer(profile, b"tessel", b"clip.tessel")
        lengths.append(mlt.mlt_producer_get_length(producer))
        mlt.mlt_producer_close(producer)
threads = [threading.Thread(target=work) for _ in range(8)]
[thread.start() for thread in threads]
[thread.join() for thread in threads]
print(len(lengths), set(lengths))
'''), "56 {50}\n")


if __name__ == "__main__":
    unittest.main()

"""Clips as movies in memory: FFmpeg finds in them what it finds in the files that the program writes.

Variables: TESSEL_LIBRARY, and those of tests/cli/program.py.
"""

import ctypes
import json
import os
import random
import shutil
import subprocess
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "cli"))

import clips  # noqa: E402
from clips import BAD_ARGUMENT, LIBRARY, NOT_POSSIBLE, OK, Clip, Document, Movie  # noqa: E402
from program import ProgramTest  # noqa: E402

SWATCHES = [os.path.join(ROOT, "samples", name) for name in ("swatch-coordinates.json", "swatch-colors.json")]
SMALL = ("size=64x36", "rate=25", "duration=12f")


class MovieTest(ProgramTest, clips.RefusedCalls):
    def clip(self, *settings, **keys):
        """An opened clip, and the name of its document. Keys are set whatever comes of it."""
        with Document(*settings) as made:
            text = json.dumps({**json.loads(made.text()), **keys})
        clip = Clip(text=text.encode())
        self.addCleanup(clip.close)
        return clip, self.write("clip.tessel", text)

    def movie(self, clip, **options):
        movie = Movie(clip, **options)
        self.addCleanup(movie.close)
        return movie

    def dump(self, movie, name, piece=1 << 20):
        """Writes the movie into a file, read in pieces."""
        with open(self.path(name), "wb") as file:
            for offset in range(0, movie.size(), piece):
                file.write(movie.read(offset, piece))
        self.assertEqual(os.path.getsize(self.path(name)), movie.size())
        return name

    def run_tool(self, *command):
        """What another program prints. It runs without the sanitizer that Python loads first: mediainfo would hang."""
        settings = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
        return subprocess.run(command, cwd=self.folder, env=settings, stdout=subprocess.PIPE, check=True).stdout.decode()

    def probe(self, name):
        """Streams, and packets with their hashes, but without their places: files have room for an index that grows."""
        found = json.loads(self.run_tool("ffprobe", "-v", "error", "-print_format", "json", "-show_streams",
                                         "-show_packets", "-show_data_hash", "md5", name))
        for packet in found["packets"]:
            del packet["pos"]
        self.assertNotEqual(found["packets"], [])
        return found


class Contents(MovieTest):
    def compare(self, settings, video="raw", audio="pcm24", arguments=(), keys=None, **options):
        clip, name = self.clip(*settings, **(keys or {}))
        self.assert_done(self.run_program("render", name, "-o", "rendered.mov", "--quiet", *arguments,
                                          *(() if video == "none" else ("--video-codec", video)),
                                          *(() if audio == "none" else ("--audio-codec", audio))))
        movie = self.movie(clip, **options)
        self.dump(movie, "virtual.mov")
        self.assertEqual(self.probe("virtual.mov"), self.probe("rendered.mov"))

    def test_streams_packets_and_samples_are_those_of_the_rendered_file(self):
        ntsc = ("rate=29.97", "duration=6f", "pixel-aspect=10/11", "fields=lower", "size=720x480")
        pal = ("rate=25", "duration=5f", "pixel-aspect=16/15", "fields=upper", "size=720x576")
        odd = ("size=101x75", "rate=24000/1001", "duration=9f")
        cases = [
            (SMALL, "raw"),
            ((*ntsc, "pixel-format=v210", "ident=blits"), "v210"),
            ((*pal, "pixel-format=uyvy", "channels=mono"), "raw"),
            ((*pal, "pixel-format=v210", "ident=ebu-stereo-1000"), "v210"),
            ((*ntsc, "pixel-format=yuyv", "color-space=rec601-ntsc"), "raw"),
            ((*odd, "pixel-format=bgra"), "raw"),
            ((*odd, "pixel-format=uyvy", "sample-rate=44100"), "raw"),
            ((*odd, "pixel-format=v210", "channels=8"), "v210"),
            ((*odd, "pixel-format=yuv420-frame"), "raw"),
            ((*SMALL, "pixel-format=argb"), "raw"),
            ((*SMALL, "pixel-format=bgrx", "color-space=unspecified"), "raw"),
            ((*SMALL, "pixel-format=vuya", "color-space=rec601-pal"), "v408"),
            ((*SMALL, "pixel-format=vuyx"), "v408"),
            ((*SMALL, "pixel-format=vuya-float"), "v210"),
            ((*SMALL, "pixel-format=bgra-float", "color-space=rec2100-pq"), "raw"),
            ((*SMALL, "pixel-format=argb-float-linear"), "raw"),
            (("rate=60", "duration=2f", "pixel-format=bgra-float", *(f"swatches={name}" for name in SWATCHES)), "raw"),
            ((*ntsc, "pixel-format=ntscdv25", "color-space=rec601-ntsc"), "raw"),
            ((*pal, "pixel-format=paldv25", "color-space=rec601-pal"), "raw"),
            ((*pal, "pixel-format=paldv50", "color-space=rec601-pal"), "raw"),
            ((*SMALL, "picture=fields", "colors=red/red", "number=off"), "raw"),
            (("size=64x36", "rate=50", "duration=3s", "sample-rate=96000", "ident=blits"), "raw"),
            (("size=64x36", "rate=12.5", "duration=2s", "channels=64"), "raw"),  # chunks of less than a megabyte
            (("size=640x480", "rate=30", "duration=4f", "sample-rate=8000"), "raw"),  # pictures of more than one
        ]
        for settings, codec in cases:
            with self.subTest(settings):
                self.compare(settings, codec)

    def test_a_clip_without_sound_has_one_stream(self):
        self.compare(SMALL, audio="none", keys={"mNumChannels": 0})
        self.compare(SMALL, audio="none", arguments=("--video-only",), audio_codec="none")

    def test_sound_may_stand_alone(self):
        self.compare(("size=64x36", "rate=25", "duration=3s", "ident=blits"), video="none",
                     arguments=("--audio-only",), video_codec="none")

    def test_sound_has_the_codec_that_was_asked_for(self):
        for rate in ("48000", "96000"):
            for codec in ("pcm16", "pcm24", "pcm32", "pcmfloat"):
                with self.subTest(codec=codec, rate=rate):
                    self.compare((*SMALL, f"sample-rate={rate}", "tone=997:-3"), audio=codec, audio_codec=codec)

    def test_pictures_have_the_codec_that_was_asked_for(self):
        for codec in ("raw", "v210", "v408"):
            with self.subTest(codec):
                self.compare((*SMALL, "pixel-format=uyvy"), codec, video_codec=codec)

    def test_times_that_are_rounded_up_keep_the_order_of_packets(self):
        # At these rates a picture's first sample lies now before its time and now behind it.
        for rate in ("59.94", "23.976", "1000", "7"):
            with self.subTest(rate):
                self.compare(("size=16x16", f"rate={rate}", "duration=40f", "sample-rate=44100"))

    def test_other_tools_open_it(self):
        if shutil.which("mediainfo") is None:
            self.skipTest("mediainfo is not installed")
        clip, _ = self.clip("size=720x576", "rate=25", "duration=7f", "pixel-aspect=16/15", "fields=lower",
                            "pixel-format=v210", "ident=blits")
        self.dump(self.movie(clip), "virtual.mov")
        tracks = {track["@type"]: track for track in
                  json.loads(self.run_tool("mediainfo", "--Output=JSON", "virtual.mov"))["media"]["track"]}
        video, audio = tracks["Video"], tracks["Audio"]
        self.assertEqual((video["CodecID"], video["Width"], video["Height"]), ("v210", "720", "576"))
        self.assertEqual((video["ScanType"], video["ScanOrder"]), ("Interlaced", "BFF"))
        self.assertEqual((video["FrameCount"], video["FrameRate"]), ("7", "25.000"))
        self.assertEqual(video["PixelAspectRatio"], "1.067")
        self.assertEqual((audio["Channels"], audio["BitDepth"], audio["SamplingRate"]), ("6", "24", "48000"))
        self.assertEqual(audio["ChannelLayout"], "L R C LFE Ls Rs")
        self.assertEqual(tracks["General"]["IsStreamable"], "Yes")  # its index stands first


class Bytes(MovieTest):
    CLIP = ("size=160x90", "rate=29.97", "duration=20f", "pixel-format=v210", "ident=ebu-stereo-1000")

    def test_any_piece_has_the_bytes_of_the_whole(self):
        clip, _ = self.clip(*self.CLIP)
        movie = self.movie(clip)
        whole = movie.read(0, movie.size())
        self.assertEqual(len(whole), movie.size())
        seed = random.randrange(1 << 32)
        chosen = random.Random(seed)
        for _ in range(400):
            offset = chosen.randrange(len(whole))
            count = chosen.choice((1, 2, 7, 100, 4096, 70000))
            self.assertEqual(movie.read(offset, count), whole[offset:offset + count], (seed, offset, count))
        # Another movie of the same clip, from its end to its start, byte by byte around a packet's border.
        other = self.movie(clip)
        border = whole.index(b"mdat") + 4
        for offset in reversed(range(border - 3, border + 40)):
            self.assertEqual(other.read(offset, 1), whole[offset:offset + 1], offset)

    def test_nothing_lies_behind_the_end(self):
        clip, _ = self.clip(*SMALL)
        movie = self.movie(clip)
        size = movie.size()
        self.assertEqual(len(movie.read(size - 3, 10)), 3)
        self.assertEqual(movie.read(size, 10), b"")
        self.assertEqual(movie.read(1 << 62, 10), b"")

    def test_movies_of_more_than_4_gib_are_addressed_with_64_bits(self):
        # 1920x1080 in v210 has 5 529 600 bytes: 2000 pictures are 10.3 GiB, of which only the last is made.
        clip, _ = self.clip("size=1920x1080", "rate=25", "duration=2000f", "pixel-format=v210", mNumChannels=0)
        movie = self.movie(clip)
        header = movie.read(0, 1 << 20)
        self.assertIn(b"co64", header)
        self.assertNotIn(b"wide", header)
        begin = movie.size() - 2000 * 5_529_600
        self.assertEqual(header[begin - 12:begin - 8], b"mdat")
        self.assertEqual(int.from_bytes(header[begin - 8:begin], "big"), movie.size() - begin + 16)
        place = header.index(b"co64") + 12
        self.assertEqual(int.from_bytes(header[place + 8 * 1999:place + 8 * 2000], "big"), movie.size() - 5_529_600)
        picture = clip.describe_picture(clips.V210)
        self.assertEqual(movie.read(movie.size() - 5_529_600, 5_529_600), clip.frame(1999, clips.V210))
        self.assertEqual(picture.row_bytes[0] * 1080, 5_529_600)


class Refusals(MovieTest):
    def test_what_cannot_be_a_movie_is_said(self):
        clip, _ = self.clip(*SMALL)
        for options, result, says in (({"video_codec": "h264"}, NOT_POSSIBLE, "raw, v210 or v408"),
                                      ({"audio_codec": "aac"}, NOT_POSSIBLE, "pcm16"),
                                      ({"video_codec": "nonsense"}, BAD_ARGUMENT, "nonsense"),
                                      ({"video_codec": "none", "audio_codec": "none"}, BAD_ARGUMENT, "or sound")):
            self.assert_call_fails(result, says, lambda: Movie(clip, **options))  # pylint: disable=W0640
        silent, _ = self.clip(*SMALL, mNumChannels=0)
        blind, _ = self.clip(*SMALL, mFrameWidth=0)
        self.assert_call_fails(NOT_POSSIBLE, "sound alone", lambda: Movie(blind))
        odd, _ = self.clip(*SMALL, mSampleRate=11025.5)
        self.assert_call_fails(NOT_POSSIBLE, "picture alone", lambda: Movie(odd))
        self.assert_call_fails(NOT_POSSIBLE, "no sound", lambda: Movie(silent, video_codec="none"))

    def test_null_pointers_are_refused(self):
        handle, got = ctypes.c_void_p(), ctypes.c_size_t()
        clip, _ = self.clip(*SMALL)
        self.assertEqual(LIBRARY.tessel_movie_open(None, None, handle), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_movie_open(clip.handle, None, None), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_movie_read(None, 0, None, 0, got), BAD_ARGUMENT)
        movie = self.movie(clip)
        self.assertEqual(LIBRARY.tessel_movie_read(movie.handle, -1, None, 0, got), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_movie_read(movie.handle, 0, None, 1, got), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_movie_read(movie.handle, 0, None, 0, got), OK)
        self.assertEqual(LIBRARY.tessel_movie_size(None), 0)
        LIBRARY.tessel_movie_close(None)


if __name__ == "__main__":
    unittest.main()

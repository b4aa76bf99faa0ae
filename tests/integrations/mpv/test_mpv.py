"""mpv plays documents: the pictures and samples that it decodes are those of the rendered file.

Variables: MPV, MPV_PLUGIN (the built plug-in), and those of tests/cli/program.py.
"""

import json
import os
import socket
import subprocess
import sys
import time
import unittest
import urllib.parse

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))))
sys.path.insert(0, os.path.join(ROOT, "tests", "cli"))

from program import ProgramTest, document  # noqa: E402

SWATCHES = [os.path.join(ROOT, "samples", name) for name in ("swatch-coordinates.json", "swatch-colors.json")]
NTSC = ("--rate", "29.97", "--duration", "9f", "--size", "720x480", "--pixel-aspect", "10/11", "--fields", "lower")
SMALL = ("--rate", "25", "--duration", "12f", "--size", "64x36", "--pixel-format", "bgra")


class MpvTest(ProgramTest):
    def new(self, *options, name="clip.tessel"):
        self.assertEqual(self.run_program("new", name, "--force", *options).code, 0)
        return name

    def command(self, *arguments):
        return [os.environ["MPV"], "--no-config", f"--script={os.environ['MPV_PLUGIN']}", *arguments]

    def mpv(self, *arguments):
        """Runs mpv without windows and loudspeakers."""
        return self.run_command(self.command("--vo=null", "--ao=null", *arguments))

    def ffmpeg(self, *arguments):
        return subprocess.run(["ffmpeg", "-v", "error", *arguments, "-"], cwd=self.folder, stdout=subprocess.PIPE,
                              check=True).stdout

    def pictures(self, movie, pixels):
        """A digest of each picture. @param pixels  FFmpeg's name of the layout that is compared"""
        lines = self.ffmpeg("-i", movie, "-map", "0:v", "-pix_fmt", pixels, "-f", "framemd5").decode().splitlines()
        return [line.split(",")[-1].strip() for line in lines if not line.startswith("#")]

    def played(self, name, pixels, *arguments):
        """Digests of the pictures that mpv decodes."""
        answer = self.mpv(name, "--really-quiet", "--o=played.nut", "--of=nut", "--ovc=rawvideo", "--no-audio",
                          *arguments)
        self.assertEqual((answer.code, answer.err), (0, ""))
        found = self.pictures("played.nut", pixels)
        os.remove(self.path("played.nut"))
        return found

    def render(self, name, movie, *options):
        self.assert_done(self.run_program("render", name, "-o", movie, "--quiet", *options))


class Signal(MpvTest):
    def test_pictures_are_those_of_the_rendered_file(self):
        odd = ("--rate", "24000/1001", "--duration", "7f", "--size", "101x75")
        cases = [
            (SMALL, "raw", "bgra"),
            ((*NTSC, "--pixel-format", "v210"), "v210", "yuv422p10le"),
            ((*NTSC, "--pixel-format", "uyvy"), "raw", "uyvy422"),
            ((*odd, "--pixel-format", "bgra"), "raw", "bgra"),
            ((*odd, "--pixel-format", "v210"), "v210", "yuv422p10le"),
            ((*odd, "--pixel-format", "vuya"), "v408", "yuva444p"),
            (("--rate", "50", "--duration", "2f", "--pixel-format", "bgra-float", "--swatches", SWATCHES[0],
              "--swatches", SWATCHES[1]), "raw", "rgba64le"),
        ]
        for options, codec, pixels in cases:
            with self.subTest(options):
                name = self.new(*options)
                self.render(name, "rendered.mov", "--video-only", "--video-codec", codec)
                expected = self.pictures("rendered.mov", pixels)
                self.assertGreater(len(expected), 1)
                self.assertEqual(self.played(name, pixels), expected)

    def test_samples_are_those_of_the_rendered_file(self):
        for options, layout in ((("--ident", "blits"), "5.1(side)"), (("--tone", "997:-6"), "stereo")):
            with self.subTest(layout):
                name = self.new(*NTSC, *options)
                self.render(name, "sound.wav")
                answer = self.mpv(name, "--really-quiet", "--no-video", "--ao=pcm", "--ao-pcm-file=played.wav",
                                  f"--audio-channels={layout}", "--audio-format=s32")
                self.assertEqual((answer.code, answer.err), (0, ""))
                samples = [self.ffmpeg("-i", file, "-f", "s32le") for file in ("sound.wav", "played.wav")]
                self.assertGreater(len(samples[0]), 1000)
                self.assertTrue(samples[0] == samples[1], "the samples differ")

    def test_a_seek_shows_the_frame_of_its_time(self):
        name = self.new(*NTSC, "--pixel-format", "uyvy")
        self.render(name, "rendered.mov", "--video-only")
        frames = self.pictures("rendered.mov", "uyvy422")
        self.assertEqual(len(set(frames)), 9)
        for frame in (8, 1, 5, 0):
            # mpv shows the first frame that does not lie before the time.
            seconds = max(0, frame - 0.25) * 1001 / 30000
            self.assertEqual(self.played(name, "uyvy422", f"--start={seconds}", "--frames=1"), [frames[frame]], frame)


class Names(MpvTest):
    def test_names_may_have_blanks_percents_and_umlauts(self):
        frames = None
        for name in ("clip.tessel", "a clip.tessel", "50%41.tessel", "Prüfbild.tessel"):
            self.new(*SMALL, name=name)
            frames = frames or self.played(name, "bgra")
            address = "file://" + urllib.parse.quote(self.path(name))
            for said in (name, address):
                with self.subTest(said):
                    self.assertEqual(self.played(said, "bgra"), frames)

    def test_a_playlist_may_mix_documents_and_movies(self):
        self.new(*SMALL, name="one.tessel")
        self.new(*SMALL, "--no-number", name="two.tessel")
        self.render("one.tessel", "three.mov", "--video-codec", "raw")
        answer = self.mpv("--untimed", "one.tessel", "three.mov", "two.tessel")
        self.assertEqual(answer.code, 0, answer.out + answer.err)
        self.assertEqual(answer.out.count("(rawvideo 64x36"), 3, answer.out)

    def test_a_clip_without_a_picture_is_heard(self):
        name = self.write("clip.tessel", document(mFrameWidth=0, mNumChannels=2, mSampleRate=48000))
        answer = self.mpv("--untimed", name)
        self.assertEqual(answer.code, 0, answer.out + answer.err)
        self.assertIn("AO: [null] 48000Hz stereo", answer.out)


class Failures(MpvTest):
    def test_what_cannot_be_opened_is_said_in_one_line(self):
        self.write("broken.tessel", "{")
        self.write("wrong.tessel", document(mFrameWidth="wide"))
        for name, says in (("broken.tessel", "JSON"), ("missing.tessel", "no such file"), ("wrong.tessel", "mFrameWidth")):
            with self.subTest(name):
                answer = self.mpv(name)
                self.assertEqual(answer.code, 2)
                lines = [line for line in (answer.out + answer.err).splitlines() if line.startswith("[tessel] ")]
                self.assertEqual(len(lines), 1, answer.out + answer.err)
                self.assertIn(name, lines[0])

    def test_a_clip_that_is_no_movie_is_named(self):
        name = self.write("clip.tessel", document(mVideoDuration={"ticks": 0}))
        answer = self.mpv(name)
        self.assertEqual(answer.code, 2)
        self.assertIn("[tessel] clip.tessel: the clip has no frames", answer.out + answer.err)

    def test_a_clip_with_sound_that_cannot_be_had_shows_its_pictures_and_says_so(self):
        for changes in ({"mNumChannels": 65}, {"mNumChannels": 2, "mSampleRate": 44100.5}):
            with self.subTest(**changes):
                name = self.write("clip.tessel", document(**changes))
                answer = self.mpv("--untimed", "--frames=2", name)
                self.assertEqual(answer.code, 0, answer.out + answer.err)
                self.assertIn("[tessel] clip.tessel: the sound cannot be had:", answer.out + answer.err)
                self.assertIn("Video --vid=1", answer.out)

    def test_a_document_that_is_removed_while_it_plays_goes_on(self):
        name = self.new(*SMALL)
        self.render(name, "rendered.mov", "--video-codec", "raw")
        frames = self.pictures("rendered.mov", "bgra")
        with Player(self.command("--vo=null", "--ao=null", "--really-quiet", "--pause", "--keep-open", self.path(name)),
                    self.path("socket"), self.settings()) as player:
            os.remove(self.path(name))
            for frame in (11, 3, 7):
                player.ask("seek", (frame - 0.25) / 25, "absolute+exact")
                player.wait_for("playback-restart")
                player.ask("screenshot-to-file", self.path("shot.png"), "video")
                self.assertEqual(self.pictures("shot.png", "bgra"), [frames[frame]], frame)


class Player:
    """mpv as it runs, and the socket by which it is remote-controlled."""

    def __init__(self, command, address, environment):
        self.running = subprocess.Popen([*command, f"--input-ipc-server={address}"], env=environment,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(60)
        end = time.monotonic() + 60
        while True:
            try:
                self.socket.connect(address)
                break
            except OSError:
                if time.monotonic() > end or self.running.poll() is not None:
                    raise
                time.sleep(0.05)
        self.lines = self.socket.makefile("r", encoding="utf-8")

    def __enter__(self):
        while self.property("time-pos") is None:
            time.sleep(0.05)
        return self

    def __exit__(self, *_):
        self.lines.close()
        self.socket.close()
        self.running.terminate()
        self.running.wait()

    def send(self, *command):
        self.socket.sendall(json.dumps({"command": command}).encode() + b"\n")
        for line in self.lines:
            answer = json.loads(line)
            if "error" in answer:
                return answer
        raise AssertionError("mpv has gone")

    def property(self, name):
        return self.send("get_property", name).get("data")

    def ask(self, *command):
        answer = self.send(*command)
        assert answer["error"] == "success", (command, answer)

    def wait_for(self, event):
        for line in self.lines:
            if json.loads(line).get("event") == event:
                return
        raise AssertionError("mpv has gone")


if __name__ == "__main__":
    unittest.main()

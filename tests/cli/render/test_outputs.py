"""What a render announces and where it puts things: dry runs, timecodes, the null format, the index first."""

import os
import struct
import subprocess

from render_support import RenderTest, document, main


def atoms(path):
    """(type, begin, size) of the atoms at a QuickTime file's top level."""
    found = []
    with open(path, "rb") as file:
        end = file.seek(0, os.SEEK_END)
        place = 0
        while place < end:
            file.seek(place)
            size, name = struct.unpack(">I4s", file.read(8))
            if size == 1:
                size = struct.unpack(">Q", file.read(8))[0]
            found.append((name.decode(), place, size))
            place += size
    return found


class DryRun(RenderTest):
    def announce(self, root, output, *arguments):
        before = set(os.listdir(self.folder)) | {"clip.tessel"}
        done = self.run_tessel("render", self.save(root), "-o", output, "--dry-run", *arguments)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(set(os.listdir(self.folder)), before, "a dry run wrote something")
        return done.stdout.decode()

    def test_what_is_announced_is_what_is_written(self):
        root = document("v210", size=(96, 64), frames=7, order=1)
        for output, codec, sound in (("x.mov", "v210", "pcm_s24le"), ("x.mp4", "h264", "aac"), ("x.mkv", "v210", "flac"),
                                     ("x.mxf", "mpeg2video", "pcm_s24le")):
            text = self.announce(root, output)
            self.assertIn("7 frames", text.splitlines()[0])
            self.assertIn("96x64", text)
            self.render(root, output)
            self.assertEqual(self.probe(self.path(output))["codec_name"], codec)
            self.assertEqual(self.probe(self.path(output), "audio")["codec_name"], sound)
            os.remove(self.path(output))
        self.assertIn("v210", self.announce(root, "x.mov"))
        self.assertIn("h264", self.announce(root, "x.mp4"))

    def test_what_the_file_will_not_say_is_said_before(self):
        text = self.announce(document("uyvy", order=1), "x.avi")
        self.assertIn("not said", text)
        self.assertNotIn("not said", self.announce(document("bgra"), "x.mkv"))
        for container, is_said in (("avi", False), ("nut", False), ("mkv", True), ("mov", True), ("mp4", True)):
            text = self.announce(document("bgra"), f"x.{container}", "--audio-codec", "aac")
            self.assertEqual("the delay of its coder (aac)" in text, not is_said, text)

    def test_what_cannot_be_written_is_refused_without_writing(self):
        clip = self.save(document())
        self.refuse("render", clip, "-o", "x.mov", "--dry-run", "--video-codec", "dv", says=("720x480",))
        self.refuse("render", clip, "-o", "x.wav", "--dry-run", "--video-codec", "png", code=2)
        self.left_over("clip.tessel")

    def test_folders_are_not_made(self):
        text = self.announce(document(), "out/%06d.png")
        self.assertIn("png", text)


class Timecode(RenderTest):
    def read_back(self, path):
        """The timecode as ffprobe sees it: of the stream or of the file."""
        text = subprocess.run(["ffprobe", "-v", "error", "-show_entries",
                               "format_tags=timecode:stream_tags=timecode", "-of", "default=nk=1:nw=1", path],
                              capture_output=True, check=True).stdout.decode()
        return set(text.split())

    def test_mov_mxf_and_mkv_hold_it(self):
        for output in ("x.mov", "x.mxf", "x.mkv"):
            path = self.render(document(size=(96, 64), rate=(25, 1), frames=3), output, "--timecode", "10:00:00:12")
            self.assertEqual(self.read_back(path), {"10:00:00:12"}, output)

    def test_drop_frame_keeps_its_semicolon(self):
        for output in ("x.mov", "x.mxf", "x.mkv"):
            path = self.render(document(size=(96, 64), rate=(30000, 1001), frames=3), output, "--timecode",
                               "00:01:00;02")
            self.assertEqual(self.read_back(path), {"00:01:00;02"}, output)

    def test_a_timecode_that_is_none_says_what_would_be(self):
        drop = self.save(document(rate=(30000, 1001)))
        self.refuse("render", drop, "-o", "x.mov", "--timecode", "00:01:00;00", code=2, says=("00:01:00;02",))
        self.refuse("render", drop, "-o", "x.mov", "--timecode", "10:00:00:30", code=2, says=("the last of a second is 10:00:00:29",))
        self.refuse("render", drop, "-o", "x.mov", "--timecode", "ten", code=2, says=("10:00:00:00",))
        whole = self.save(document(rate=(25, 1)))
        self.refuse("render", whole, "-o", "x.mov", "--timecode", "10:00:00;00", code=2,
                    says=("drop-frame timecodes exist only at 29.97, 59.94, 119.88 and 149.85 frames a second", "10:00:00:00"))
        self.left_over("clip.tessel")

    def test_files_without_a_place_for_it_refuse_it(self):
        clip = self.save(document())
        for output in ("x.mp4", "x.avi", "x.nut", "x.y4m", "x.wav"):
            self.refuse("render", clip, "-o", output, "--timecode", "10:00:00:00", code=2, says=("timecode",))


class Null(RenderTest):
    def test_everything_is_rendered_and_nothing_is_written(self):
        clip = self.save(document(frames=20, pattern="gradient"))
        done = self.run_tessel("render", clip, "--format", "null")
        self.assertEqual((done.returncode, done.stdout), (0, b""))
        self.assertIn(b"20 frames", done.stderr)
        self.left_over("clip.tessel")

    def test_a_file_s_name_has_no_place_there(self):
        self.refuse("render", self.save(document()), "--format", "null", "-o", "x.mkv", code=2, says=("remove -o",))

    def test_every_codec_can_be_measured(self):
        clip = self.save(document(size=(256, 128), frames=3))
        for codec in ("ffv1", "h264", "prores", "mpeg2", "mjpeg"):
            done = self.run_tessel("render", clip, "--format", "null", "--quiet", "--video-codec", codec)
            self.assertEqual((done.returncode, done.stderr), (0, b""), codec)


class IndexFirst(RenderTest):
    def check(self, path, frames):
        names = [name for name, _, _ in atoms(path)]
        self.assertLess(names.index("moov"), names.index("mdat"), names)
        probe = self.probe(path)
        self.assertEqual(int(probe["nb_read_packets"]), frames)
        # Every picture is where the index says: an index that grew over the pictures would have spoiled them.
        done = subprocess.run(["ffmpeg", "-v", "error", "-xerror", "-i", path, "-f", "null", "-"],
                              capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))

    def test_short_files_have_it(self):
        for output in ("x.mov", "x.mp4"):
            for arguments in ((), ("--video-only",), ("--audio-only",)):
                path = self.render(document(size=(64, 64), frames=3, pattern="gradient"), output, *arguments)
                names = [name for name, _, _ in atoms(path)]
                self.assertLess(names.index("moov"), names.index("mdat"), (output, arguments))

    def test_the_room_is_enough_for_a_long_file_of_small_pictures(self):
        # Their index is several times the room that every file has in reserve (32 KB).
        for output in ("x.mp4", "x.mov"):
            # Many pictures in a short time, because encoding the sound takes longer than encoding them.
            root = document(size=(16, 16), rate=(240, 1), frames=8000, pattern="gradient", mSampleRate=16000)
            path = self.render(root, output, "--video-codec", "h264", "--audio-codec", "aac", "--quality", "40")
            self.check(path, 8000)
            index = next(size for name, _, size in atoms(path) if name == "moov")
            self.assertGreater(index, 3 * 32768)

    def test_the_room_is_enough_where_sound_is_cut_often(self):
        # Every picture ends a span of sound; 1000 frames a second make the spans shorter than a packet.
        root = document(size=(16, 16), rate=(1000, 1), frames=2500, pattern="gradient", mSampleRate=8000)
        self.check(self.render(root, "x.mov", "--video-codec", "h264", "--audio-codec", "aac"), 2500)
        self.check(self.render(root, "y.mov", "--video-codec", "h264", "--audio-codec", "pcm16"), 2500)


if __name__ == "__main__":
    main()

"""Parts that are rendered apart and joined: the file of one render, or one line that says why not."""

import os
import shutil
import subprocess

from render_support import RenderTest, document, main

# Every container of movies with every codec of it that codes pictures one by one, in a size and rate that all have.
CODECS = {"ffv1": "mkv mov avi nut", "raw": "mkv mov avi nut", "v210": "mkv mov avi nut", "v408": "mkv mov avi nut",
          "prores": "mkv mov avi nut", "dnxhr": "mkv mov mxf", "mjpeg": "mkv mov avi nut", "png": "mkv mov avi nut",
          "mpeg2": "mkv mov mp4 mxf avi nut"}


def numbered(**changes):
    """A clip of which no two pictures are equal, with sound that differs from part to part."""
    return document(**{"size": (320, 180), "rate": (30000, 1001), "frames": 11, "number": True, "pattern": "gradient",
                       **changes})


class PartsTest(RenderTest):
    def render_parts(self, count, extension, *arguments, clip="clip.tessel", name="part"):
        names = [f"{name}{number}.{extension}" for number in range(1, count + 1)]
        for number, file in enumerate(names, 1):
            done = self.run_tessel("render", clip, "--quiet", "--part", f"{number}/{count}", "-o", file, *arguments)
            self.assertEqual((done.returncode, done.stderr, done.stdout), (0, b"", b""), file)
        return names

    def join(self, parts, output, *arguments):
        done = self.run_tessel("join", "clip.tessel", *parts, "-o", output, "--quiet", *arguments)
        self.assertEqual((done.returncode, done.stderr, done.stdout), (0, b"", b""), f"{output} {arguments}")
        return self.path(output)

    def one_render(self, output, *arguments):
        done = self.run_tessel("render", "clip.tessel", "--quiet", "-o", output, *arguments)
        self.assertEqual((done.returncode, done.stderr), (0, b""), f"{output} {arguments}")
        return self.path(output)

    def packets(self, path):
        """Every packet of both streams with its times and the hash of its bytes, as FFmpeg reads them."""
        return subprocess.run(["ffprobe", "-v", "error", "-show_packets", "-show_data_hash", "md5", "-show_entries",
                               "packet=stream_index,pts,dts,duration,size,flags,data_hash", "-of", "csv", path],
                              capture_output=True, check=True).stdout.decode().splitlines()

    def pictures(self, path):
        """The hash and time of every decoded picture."""
        return subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-map", "0:v", "-f", "framemd5", "-"],
                              capture_output=True, check=True).stdout

    def assert_same_bytes(self, left, right):
        with open(left, "rb") as one, open(right, "rb") as other:
            self.assertTrue(one.read() == other.read(), f"{left} and {right} differ")


class Joined(PartsTest):
    def test_parts_of_every_codec_and_container_join_to_the_file_of_one_render(self):
        self.save(numbered(frames=3))
        for codec, containers in CODECS.items():
            for extension in containers.split():
                with self.subTest(codec=codec, container=extension):
                    options = ("--video-codec", codec)
                    parts = self.render_parts(2, extension, *options)
                    joined = self.join([parts[1], parts[0]], f"joined.{extension}", *options)
                    self.assert_same_bytes(joined, self.one_render(f"one.{extension}", *options))

    def test_packets_times_and_pictures_are_those_of_one_render_for_other_readers(self):
        self.save(numbered())
        for extension in ("mkv", "mov", "nut"):
            parts = self.render_parts(3, extension)
            joined, one = self.join(parts, f"joined.{extension}"), self.one_render(f"one.{extension}")
            self.assertEqual(len([line for line in self.packets(one) if line.startswith("packet,0,")]), 11)
            self.assertEqual(self.packets(joined), self.packets(one))
            self.assertEqual(self.pictures(joined), self.pictures(one))

    def test_dv_joins_too(self):
        self.save(document("dvp2", size=(720, 576), rate=(25, 1), frames=5, order=2, number=True))
        for extension in ("mkv", "mov", "avi"):
            parts = self.render_parts(2, extension)
            self.assert_same_bytes(self.join(parts, f"joined.{extension}"), self.one_render(f"one.{extension}"))

    def test_raw_pictures_of_float_clips_join_in_quicktimes_arrangement(self):
        self.save(numbered(code="BGra", size=(96, 64)))
        parts = self.render_parts(2, "mov", "--video-codec", "raw")
        joined = self.join(parts, "joined.mov", "--video-codec", "raw")
        self.assert_same_bytes(joined, self.one_render("one.mov", "--video-codec", "raw"))

    def test_fields_aspects_rates_and_colours_come_from_the_document(self):
        for root in (numbered(code="v210", size=(96, 64), order=1, aspect=(10, 11), space="Rec601NTSC"),
                     numbered(code="uyvy", size=(96, 64), order=2, rate=(60000, 1001)),
                     numbered(code="BGra", size=(95, 63), rate=(24, 1)),
                     numbered(code="yv12", size=(64, 48), rate=(25, 1), pattern="fields")):
            self.save(root)
            for extension in ("mkv", "mov", "nut"):
                with self.subTest(root=root["mPixelFormat"], container=extension):
                    parts = self.render_parts(4, extension)
                    joined = self.join(parts, f"joined.{extension}")
                    self.assert_same_bytes(joined, self.one_render(f"one.{extension}"))

    def test_a_range_is_divided_and_joined_with_the_same_options(self):
        self.save(numbered())
        options = ("--from", "3", "--to", "9")
        parts = self.render_parts(3, "mkv", *options)
        # 7 frames from 3 on: floor(7 / 3) = 2, floor(14 / 3) = 4.
        for part, count in zip(parts, (2, 2, 3)):
            self.assertEqual(int(self.probe(self.path(part))["nb_read_packets"]), count)
        self.assert_same_bytes(self.join(parts, "joined.mkv", *options), self.one_render("one.mkv", *options))

    def test_timecode_and_sound_options_are_those_of_join(self):
        self.save(numbered())
        parts = self.render_parts(2, "mov")
        options = ("--timecode", "10:00:00;00", "--audio-codec", "pcm16", "--dither")
        self.assert_same_bytes(self.join(parts, "joined.mov", *options), self.one_render("one.mov", *options))
        self.assert_same_bytes(self.join(parts, "silent.mov", "--video-only"), self.one_render("o.mov", "--video-only"))

    def test_parts_of_mov_become_mkv_with_what_mov_cannot_say(self):
        self.save(numbered())
        parts = self.render_parts(3, "mov", "--video-codec", "ffv1")
        joined = self.join(parts, "joined.mkv")
        self.assertEqual(self.probe(joined)["color_range"], "pc")
        self.assert_same_bytes(joined, self.one_render("one.mkv"))

    def test_parts_of_y4m_join_in_the_order_given(self):
        self.save(numbered())
        parts = self.render_parts(3, "y4m")
        self.assert_same_bytes(self.join(parts, "joined.y4m"), self.one_render("one.y4m"))

    def test_ranges_of_frames_join_in_the_order_given(self):
        self.save(numbered())
        for name, first, last in (("a", 0, 5), ("b", 6, 6), ("c", 7, 10)):
            self.one_render(f"{name}.mov", "--video-only", "--from", first, "--to", last)
        joined = self.join(["a.mov", "b.mov", "c.mov"], "joined.mov")
        self.assert_same_bytes(joined, self.one_render("one.mov"))

    def test_one_part_of_each_frame_and_one_part_alone(self):
        self.save(numbered(frames=5))
        one = self.one_render("one.mkv")
        self.assert_same_bytes(self.join(self.render_parts(5, "mkv"), "five.mkv"), one)
        self.assert_same_bytes(self.join(self.render_parts(1, "mkv"), "single.mkv"), one)

    def test_a_join_into_a_pipe(self):
        self.save(numbered())
        parts = self.render_parts(2, "nut")
        done = self.run_tessel("join", "clip.tessel", *parts, "-o", "-", "--format", "nut", "--quiet")
        one = self.run_tessel("render", "clip.tessel", "-o", "-", "--format", "nut", "--quiet")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertTrue(done.stdout == one.stdout)


class Sequences(PartsTest):
    def test_parts_write_the_numbers_of_their_frames(self):
        self.save(numbered(size=(64, 48)))
        for extension in ("png", "tiff", "dpx", "exr"):
            with self.subTest(extension=extension):
                one = self.one_render(f"one/%04d.{extension}")
                self.render_parts(3, extension, name=f"{extension}/%04d.part")
                files = sorted(os.listdir(self.path(extension)))
                self.assertEqual(len(files), 11)
                # Each part has a name of its own here; together they are the frames 0 to 10.
                self.assertEqual([file[:4] for file in files], [f"{frame:04d}" for frame in range(11)])
                sequences = [f"{extension}/%04d.part{number}.{extension}" for number in (1, 2, 3)]
                self.join(sequences, f"joined-{extension}/%04d.{extension}")
                for frame in range(11):
                    self.assert_same_bytes(self.path(f"joined-{extension}/{frame:04d}.{extension}"), one % frame)

    def test_without_an_output_join_says_whether_all_are_there(self):
        self.save(numbered(size=(64, 48)))
        for number in (2, 1):
            self.one_render("out/%03d.png", "--part", f"{number}/2")
        done = self.run_tessel("join", "clip.tessel", "out/%03d.png")
        self.assertEqual((done.returncode, done.stdout), (0, b""))
        self.assertIn(b"frames 0 to 10", done.stderr)
        before = sorted(os.listdir(self.path("out")))
        self.assertEqual(len(before), 11)
        self.refuse("join", "clip.tessel", "out/%03d.png", "-o", "out/%03d.png", code=2, says=("-o",))
        os.remove(self.path("out/007.png"))
        self.refuse("join", "clip.tessel", "out/%03d.png", says=("frame 7", "'out/007.png'", "missing"))

    def test_pictures_that_are_there_twice_broken_or_of_another_size_are_refused(self):
        self.save(numbered(size=(64, 48), frames=3))
        self.one_render("out/%03d.png")
        shutil.copytree(self.path("out"), self.path("again"))
        self.refuse("join", "clip.tessel", "out/%03d.png", "again/%03d.png", says=("frame 0", "twice"))
        with open(self.path("out/001.png"), "r+b") as file:
            file.truncate(file.seek(0, os.SEEK_END) // 2)
        self.refuse("join", "clip.tessel", "out/%03d.png", says=("'out/001.png'", "PNG"))
        self.refuse("join", "clip.tessel", "out/%03d.png", "-o", "new/%03d.png", says=("'out/001.png'",))
        self.assertFalse(os.path.exists(self.path("new")))
        self.save(numbered(size=(32, 48), frames=3), "small.tessel")
        self.refuse("join", "small.tessel", "again/%03d.png", says=("64x48", "32x48"))


class Refused(PartsTest):
    def test_a_missing_part_is_named_with_its_frames(self):
        self.save(numbered())
        parts = self.render_parts(4, "mkv")
        # floor(11 / 4) = 2, floor(22 / 4) = 5, floor(33 / 4) = 8
        self.refuse("join", "clip.tessel", parts[0], parts[1], parts[3], "-o", "x.mkv", says=("part 3/4", "frames 5 to 7"))
        self.refuse("join", "clip.tessel", parts[1], "-o", "x.mkv", says=("part 1/4", "2 more"))
        self.refuse("join", "clip.tessel", *parts, "nofile.mkv", "-o", "x.mkv", says=("'nofile.mkv'",))
        self.left_over("clip.tessel", *parts)

    def test_a_part_that_is_there_twice_is_refused(self):
        self.save(numbered())
        parts = self.render_parts(2, "mov")
        shutil.copy(self.path(parts[1]), self.path("copy.mov"))
        self.refuse("join", "clip.tessel", *parts, "copy.mov", "-o", "x.mov", says=("'part2.mov'", "'copy.mov'", "2/2"))

    def test_a_short_part_is_refused_and_leaves_the_older_file(self):
        self.save(numbered())
        for extension in ("mkv", "mov", "nut", "avi", "y4m"):
            with self.subTest(container=extension):
                parts = self.render_parts(2, extension)
                with open(self.path(f"x.{extension}"), "wb") as file:
                    file.write(b"older")
                with open(self.path(parts[1]), "r+b") as file:
                    file.truncate(file.seek(0, os.SEEK_END) // 2)
                self.refuse("join", "clip.tessel", *parts, "-o", f"x.{extension}")
                with open(self.path(f"x.{extension}"), "rb") as file:
                    self.assertEqual(file.read(), b"older")
                self.assertFalse([name for name in os.listdir(self.folder) if name.startswith(".")])

    def test_a_part_with_a_picture_left_out_is_refused(self):
        self.save(numbered())
        parts = self.render_parts(2, "mkv")
        subprocess.run(["ffmpeg", "-v", "error", "-i", self.path(parts[0]), "-c", "copy", "-frames:v", "4", "-map_metadata", "0",
                        self.path("short.mkv")], check=True)
        self.refuse("join", "clip.tessel", "short.mkv", parts[1], "-o", "x.mkv", says=("'short.mkv'", "4 of its 5"))

    def test_pictures_that_do_not_add_up_are_refused(self):
        self.save(numbered())
        parts = self.render_parts(2, "y4m")
        self.refuse("join", "clip.tessel", parts[0], "-o", "x.y4m", says=("5 pictures", "11 frames"))
        self.refuse("join", "clip.tessel", parts[0], *parts, "-o", "x.y4m", says=("'part2.y4m'", "frames 0 to 10"))

    def test_parts_of_an_older_document_are_refused(self):
        self.save(numbered())
        parts = self.render_parts(2, "mkv")
        self.save(numbered(number=False))
        self.refuse("join", "clip.tessel", *parts, "-o", "x.mkv", says=("'part1.mkv'", "document"))

    def test_parts_of_other_options_are_refused_with_what_they_are(self):
        self.save(numbered())
        parts = self.render_parts(2, "mov", "--video-codec", "mjpeg", "--quality", "5")
        self.refuse("join", "clip.tessel", *parts, "-o", "x.mov", says=("'part1.mov'", "mjpeg", "png"))
        self.refuse("join", "clip.tessel", *parts, "-o", "x.mov", "--video-codec", "mjpeg", says=("quality 5", "quality 2"))
        self.refuse("join", "clip.tessel", *parts, "-o", "x.mov", "--video-codec", "mjpeg", "--quality", "5", "--from", "1",
                    says=("frames 0 to 4", "frames 1 to 5"))
        other = self.render_parts(3, "mov", "--video-codec", "mjpeg", "--quality", "5", name="third")
        self.refuse("join", "clip.tessel", parts[0], other[1], "-o", "x.mov", "--video-codec", "mjpeg", "--quality", "5",
                    says=("2/3", "1/2"))

    def test_a_part_without_a_label_among_parts_with_one_is_refused(self):
        self.save(numbered())
        parts = self.render_parts(2, "mkv")
        self.one_render("plain.mkv", "--video-only", "--from", "5")
        self.refuse("join", "clip.tessel", parts[0], "plain.mkv", "-o", "x.mkv", says=("'plain.mkv'", "--part"))

    def test_files_with_sound_and_files_that_are_none_are_refused(self):
        self.save(numbered())
        self.one_render("both.mkv")
        self.refuse("join", "clip.tessel", "both.mkv", "-o", "x.mkv", says=("'both.mkv'", "2 streams"))
        self.refuse("join", "clip.tessel", "clip.tessel", "-o", "x.mkv", says=("'clip.tessel'",))

    def test_no_part_and_no_clip_is_overwritten(self):
        self.save(numbered())
        parts = self.render_parts(2, "mkv")
        self.refuse("join", "clip.tessel", *parts, "-o", parts[0], code=2, says=("'part1.mkv' is a part itself",))
        self.refuse("join", "clip.tessel", *parts, "-o", "clip.tessel", "--format", "mkv", code=2, says=("clip itself",))
        self.refuse("join", "clip.tessel", *parts, code=2, says=("-o is missing",))
        self.refuse("join", "clip.tessel", *parts, "-o", "x.wav", code=2, says=("wav",))
        self.refuse("join", "clip.tessel", *parts, "-o", "x.mkv", "--audio-only", code=2, says=("--audio-only",))

    def test_parts_that_cannot_be_are_refused_before_anything_is_rendered(self):
        clip = self.save(numbered())
        for part in ("0/3", "4/3", "1", "1/0", "a/b", "1/3/5", "-1/3", "1/", " 1/3", "+1/3", "1/99999999999999999999"):
            self.refuse("render", clip, f"--part={part}", "-o", "x.mkv", code=2, says=("K/N",))
        self.refuse("render", clip, "--part", "1/12", "-o", "x.mkv", code=2, says=("11 frames", "12 parts"))
        self.refuse("render", clip, "--part", "1/4", "--frames", "3", "-o", "x.mkv", code=2, says=("3 frames",))
        self.refuse("render", clip, "--part", "1/2", "-o", "x.wav", code=2, says=("--part",))
        self.refuse("render", clip, "--part", "1/2", "-o", "x.mkv", "--audio-only", code=2, says=("--part",))
        self.refuse("render", clip, "--part", "1/2", "-o", "x.mov", "--timecode", "10:00:00:00", code=2, says=("tessel join",))
        self.refuse("render", clip, "--part", "1/2", "-o", "folder/", code=2, says=("clip.1.mkv",))
        self.left_over("clip.tessel")

    def test_codecs_whose_pictures_need_each_other_are_refused_by_both(self):
        clip = self.save(numbered())
        for codec in ("h264", "hevc", "vp9", "av1"):
            self.refuse("render", clip, "--part", "1/2", "-o", "x.mkv", "--video-codec", codec, code=2, says=(codec, "ffv1"))
        self.one_render("a.mp4", "--video-only")
        self.refuse("join", clip, "a.mp4", "-o", "x.mp4", code=2, says=("h264", "mpeg2"))


class Announced(PartsTest):
    def test_a_dry_run_says_which_frames_a_part_has_and_writes_nothing(self):
        clip = self.save(numbered())
        done = self.run_tessel("render", clip, "--part", "2/3", "-o", "x.mkv", "--dry-run")
        # floor(11 / 3) = 3, floor(22 / 3) = 7
        self.assertIn("4 frames (3 to 6, part 2/3)", done.stdout.decode())
        self.assertNotIn("sound", done.stdout.decode())
        self.left_over("clip.tessel")

    def test_a_dry_run_of_a_join_checks_the_parts_and_writes_nothing(self):
        self.save(numbered())
        parts = self.render_parts(2, "mkv")
        done = self.run_tessel("join", "clip.tessel", *parts, "-o", "x.mkv", "--dry-run")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertIn("11 frames from 2 parts", done.stdout.decode())
        self.assertIn("sound", done.stdout.decode())
        self.refuse("join", "clip.tessel", parts[1], "-o", "x.mkv", "--dry-run", says=("part 1/2",))
        self.left_over("clip.tessel", *parts)

    def test_the_closing_line_is_that_of_render(self):
        self.save(numbered())
        parts = self.render_parts(2, "mkv")
        done = self.run_tessel("join", "clip.tessel", *parts, "-o", "x.mkv")
        self.assertEqual(done.returncode, 0)
        line = done.stderr.decode()
        self.assertIn("x.mkv: 11 frames of ffv1 bgra, 320x180", line)
        self.assertIn("flac", line)

    def test_a_whole_render_has_no_comment(self):
        self.save(numbered())
        path = self.one_render("x.mkv")
        self.assertNotIn("COMMENT", self.probe(path)["format"].get("tags", {}))


main()

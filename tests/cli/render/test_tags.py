"""What files announce: size, rate, length, pixel aspect, field order and colours, read back by two other programs."""

import json
import shutil
import subprocess
import unittest
from fractions import Fraction

from render_support import FORMATS, RenderTest, document, main

# ITU-T H.273 codes as FFmpeg names them.
PRIMARIES = {1: "bt709", 5: "bt470bg", 6: "smpte170m", 7: "smpte240m", 9: "bt2020", 11: "smpte431", 12: "smpte432"}
TRANSFERS = {1: "bt709", 6: "smpte170m", 7: "smpte240m", 8: "linear", 13: "iec61966-2-1", 14: "bt2020-10",
             15: "bt2020-12", 16: "smpte2084", 17: "smpte428", 18: "arib-std-b67"}
MATRICES = {0: "gbr", 1: "bt709", 5: "bt470bg", 6: "smpte170m", 7: "smpte240m", 9: "bt2020nc"}

SPACES = {
    "Rec. 601 (NTSC)": (6, 6, 6, 0), "Rec. 601 (PAL)": (5, 6, 5, 0), "Rec. 709": (1, 1, 1, 0),
    "Rec. 709 Full Range": (1, 1, 1, 1), "sRGB": (1, 13, 0, 1), "P3-D65 (sRGB transfer)": (12, 13, 0, 1),
    "P3-D65 PQ": (12, 16, 0, 1), "P3 Theatre (gamma 2.6)": (11, 17, 0, 1), "Rec. 2020 (10-bit)": (9, 14, 9, 0),
    "Rec. 2020 (12-bit)": (9, 15, 9, 0), "Rec. 2100 PQ": (9, 16, 9, 0), "Rec. 2100 HLG": (9, 18, 9, 0),
    "Rec. 709 Linear": (1, 8, 0, 1), "Rec. 2020 Linear": (9, 8, 0, 1), "SMPTE 240M": (7, 7, 7, 0),
}

RATES = ((24000, 1001), (24, 1), (25, 1), (30000, 1001), (30, 1), (48, 1), (50, 1), (60000, 1001), (60, 1),
         (15, 1), (120, 1))


class Tags(RenderTest):
    @staticmethod
    def output_of(*command):
        return subprocess.run(command, capture_output=True, check=True).stdout

    def expect_colors(self, path, codes, full, what):
        stream = self.probe(path)
        got = [stream.get(key) for key in ("color_primaries", "color_transfer", "color_space", "color_range")]
        names = [PRIMARIES[codes[0]], TRANSFERS[codes[1]], MATRICES[codes[2]], "pc" if full else "tv"]
        self.assertEqual(got, names, what)

    def test_rgb_pixels_announce_matrix_0_and_their_full_range(self):
        for space, codes in SPACES.items():
            path = self.render(document("bgra", (64, 48), frames=1, space=space), "x.mkv", "--video-only")
            self.expect_colors(path, (codes[0], codes[1], 0), True, space)

    def test_ycbcr_pixels_announce_the_clips_codes_also_where_they_contradict_the_format(self):
        for code in ("vuyx", "uyv7"):
            for space, codes in SPACES.items():
                path = self.render(document(code, (64, 48), frames=1, space=space), "x.mkv", "--video-only")
                is_rgb_space = codes[2] == 0
                matrix = {601: 6, 709: 1}[FORMATS[code]["matrix"]] if is_rgb_space else codes[2]
                self.expect_colors(path, (codes[0], codes[1], matrix), bool(codes[3]) and not is_rgb_space,
                                   f"{code} {space}")

    def test_an_unspecified_space_stays_unspecified(self):
        stream = self.probe(self.render(document("vuyx", (64, 48), frames=1, space="Unspecified"), "x.mkv",
                                        "--video-only"))
        for key in ("color_primaries", "color_transfer", "color_space"):
            self.assertIn(stream.get(key), (None, "unknown"), key)

    def test_dnxhr_pictures_do_not_contradict_the_matrix_of_the_file(self):
        # The colour volume of SMPTE ST 2019-1: 0 is BT.709, 1 BT.2020 with non-constant luminance, 3 "out of band", where
        # the container's matrix counts.
        for space, volume, matrix in (("Rec. 709", 0, "bt709"), ("Rec. 2020 (10-bit)", 1, "bt2020nc"),
                                      ("Rec. 601 (PAL)", 3, "bt470bg"), ("SMPTE 240M", 3, "smpte240m"),
                                      ("Unspecified", 3, "bt709")):  # which FFmpeg's decoder then takes
            for output in ("x.mov", "x.mkv", "x.mxf"):
                with self.subTest(space=space, output=output):
                    path = self.render(document("vUYa", (256, 144), (25, 1), frames=2, space=space), output, "--video-only",
                                       "--video-codec", "dnxhr")
                    coded = self.output_of("ffmpeg", "-v", "error", "-i", path, "-map", "0:v", "-c", "copy", "-frames:v", "1",
                                           "-f", "data", "-")
                    self.assertEqual(coded[0x2C] >> 1 & 3, volume)
                    frame = self.output_of("ffprobe", "-v", "error", "-read_intervals", "%+#1", "-show_entries",
                                           "frame=color_space", "-of", "default=nk=1:nw=1", path)
                    self.assertEqual(frame.decode().split(), [matrix])

    def test_mxf_announces_widths_of_whole_macroblocks_and_render_says_so(self):
        for width, announced in ((320, 320), (322, 336)):  # 336 = 21 x 16
            for codec in ("mpeg2", "h264", "dnxhr"):
                with self.subTest(width=width, codec=codec):
                    clip = self.save(document("uyv7", (width, 180), (25, 1), frames=2))
                    done = self.run_tessel("render", clip, "-o", "x.mxf", "--video-only", "--video-codec", codec)
                    self.assertEqual(done.returncode, 0, done.stderr)
                    note = f"frame size ({width}x180 in the stream; mxf says {announced}x180)"
                    self.assertEqual(note in done.stderr.decode(), width != announced, done.stderr)
                    self.assertEqual(self.probe(self.path("x.mxf"))["width"], width)
                    with open(self.path("x.mxf"), "rb") as file:
                        found = file.read().split(bytes.fromhex("32090004"))  # the local tag of the display width, its length
                    self.assertEqual(int.from_bytes(found[1][:4], "big"), announced)

    def test_mxf_does_not_name_the_field_order_of_h264_and_render_says_so(self):
        for codec, order, is_denied in (("h264", 2, True), ("h264", 1, False), ("h264", 0, False), ("mpeg2", 2, False)):
            with self.subTest(codec=codec, order=order):
                clip = self.save(document("uyv7", (320, 192), (25, 1), frames=2, order=order))
                done = self.run_tessel("render", clip, "-o", "x.mxf", "--video-only", "--video-codec", codec)
                self.assertEqual(done.returncode, 0, done.stderr)
                note = "field order (lower field first in the stream; mxf does not name it)"
                self.assertEqual(note in done.stderr.decode(), is_denied, done.stderr)
                with open(self.path("x.mxf"), "rb") as file:
                    named = bytes.fromhex("32120001") in file.read()  # SMPTE ST 377-1: the field dominance, one byte
                self.assertEqual(named, codec == "mpeg2")

    def test_mxf_has_one_field_order_for_each_height_of_dv_and_render_says_so(self):
        # What FFmpeg's writer puts into the header: "tt" for 480 and 1080 lines, "bb" for 576, progressive for 720.
        upper, lower, none = "upper field first", "lower field first", "progressive"
        for code, size, rate, announced in (("dvn2", (720, 480), (30000, 1001), "tt"), ("dvp2", (720, 576), (25, 1), "bb"),
                                            ("dvn1", (1280, 1080), (30000, 1001), "tt"),
                                            ("dvp7", (960, 720), (50, 1), "progressive")):
            right = {"tt": upper, "bb": lower, "progressive": none}[announced]
            for order, said in enumerate((none, upper, lower)):
                with self.subTest(code=code, order=said):
                    clip = self.save(document(code, size, rate, frames=1, order=order))
                    done = self.run_tessel("render", clip, "-o", "x.mxf", "--video-only")
                    self.assertEqual(done.returncode, 0, done.stderr)
                    self.assertEqual(self.probe(self.path("x.mxf"))["field_order"], announced)
                    notes = done.stderr.decode()
                    if said == right:
                        self.assertNotIn("field order", notes)
                    elif none in (said, right):  # the frames themselves cannot say it
                        frames = none if size[1] == 720 else lower
                        self.assertIn(f"field order ({said}; DV frames of {size[1]} lines are {frames})", notes)
                    else:
                        self.assertIn(f"field order ({said} in the stream; mxf says {right})", notes)

    def test_containers_that_hold_the_field_order_of_dv_lose_nothing(self):
        for output, is_lost in (("x.mov", False), ("x.mkv", False), ("x.nut", True)):
            clip = self.save(document("dvp7", (960, 720), (50, 1), frames=1, order=1))
            done = self.run_tessel("render", clip, "-o", output, "--video-only")
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertEqual("field order (upper field first; DV frames of 720 lines are progressive)" in done.stderr.decode(),
                             is_lost, output)

    def test_render_says_that_a_matrix_of_its_own_choice_is_lost(self):
        # R'G'B' without a matrix becomes BT.709, which NUT and Y4M have no place for.
        for code, output, codec, is_lost in (("bgra", "x.nut", "v210", True), ("bgra", "x.y4m", "raw", True),
                                             ("bgra", "x.mkv", "v210", False), ("v211", "x.nut", "v210", False)):
            with self.subTest(code=code, output=output):
                clip = self.save(document(code, (96, 64), (25, 1), frames=2, space="Unspecified"))
                done = self.run_tessel("render", clip, "-o", output, "--video-codec", codec, "--video-only")
                self.assertEqual(done.returncode, 0, done.stderr)
                self.assertEqual("colours (primaries 2, transfer 2, matrix 1)" in done.stderr.decode(), is_lost, done.stderr)

    def test_a_stream_of_pictures_says_which_sound_it_leaves_out(self):
        clip = self.save(document(frames=2))
        for arguments, is_said in (((), True), (("--dry-run",), True), (("--video-only",), False)):
            done = self.run_tessel("render", clip, "-o", "x.y4m", *arguments)
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertEqual(b"sound (2 channels)" in done.stdout + done.stderr, is_said, arguments)

    def test_containers_keep_colors(self):
        for code, output in (("bgra", "x.mov"), ("BGra", "x.mov"), ("vUYa", "x.mov"), ("VUYA", "x.mp4"), ("VUYA", "x.mxf")):
            path = self.render(document(code, (128, 96), (25, 1), frames=3), output, "--video-only")
            matrix = 0 if output == "x.mov" and code == "bgra" else 1
            self.expect_colors(path, (1, 1, matrix), matrix == 0, f"{code} {output}")
        for code in ("v211", "uyv7", "yv17"):
            stream = self.probe(self.render(document(code, (96, 64), frames=3), "x.mov", "--video-only"))
            self.assertEqual([stream[key] for key in ("color_primaries", "color_transfer", "color_space")],
                             ["bt709"] * 3, code)

    def test_rates_are_exact_and_lengths_are_to_the_frame(self):
        for rate in RATES:
            for output in ("x.mkv", "x.mov", "x.nut", "x.avi", "x.y4m", "x.mp4"):
                frames = 7
                path = self.render(document("bgrx", (64, 48), rate, frames), output)
                stream = self.probe(path)
                got = Fraction(stream["r_frame_rate"])
                if output == "x.mkv" and max(rate) > 30000:
                    # Matroska holds a frame's nanoseconds, and FFmpeg makes a fraction of terms up to 30000 of it.
                    self.assertLess(abs(got - Fraction(*rate)), Fraction(1, 10000), rate)
                else:
                    self.assertEqual(got, Fraction(*rate), output)
                self.assertEqual(int(stream["nb_read_packets"]), frames, output)
                if output in ("x.mov", "x.mp4"):
                    self.assertEqual(Fraction(stream["time_base"]) * stream["duration_ts"],
                                     Fraction(frames * rate[1], rate[0]), output)
                elif output in ("x.mkv", "x.avi"):  # NUT and Y4M only say when the last frame starts
                    seconds = Fraction(stream["format"]["duration"])
                    # The sound may stand out by its rounding to a sample, Matroska by its milliseconds.
                    self.assertLess(abs(seconds - Fraction(frames * rate[1], rate[0])), Fraction(1, 500), output)

    @staticmethod
    def first_frame(path):
        text = subprocess.run(["ffprobe", "-v", "error", "-read_intervals", "%+#1", "-show_frames", "-of", "json",
                               path], capture_output=True, check=True).stdout
        return json.loads(text)["frames"][0]

    def test_field_order_is_kept(self):
        for code, output in (("bgra", "x.mkv"), ("v210", "x.mkv"), ("uyvy", "x.mkv"), ("bgra", "x.mov"),
                             ("BGra", "x.mov"), ("v210", "x.mov"), ("uyvy", "x.mov")):
            for order, name in ((0, "progressive"), (1, "tb"), (2, "bt")):
                stream = self.probe(self.render(document(code, (96, 64), order=order), output, "--video-only"))
                if stream["codec_name"] == "prores" and order != 0:
                    # FFmpeg's ProRes decoder names coded and shown order alike.
                    self.assertIn(stream["field_order"], (name, name[0] * 2), f"{code} {output}")
                else:
                    self.assertEqual(stream["field_order"], name, f"{code} {output}")

    def test_field_order_reaches_pictures_of_other_codecs(self):
        for code, size, rate, output, order, top_first in (("VUYA", (128, 96), (25, 1), "x.mp4", 1, 1),
                                                 ("VUYA", (128, 96), (25, 1), "x.mp4", 2, 0),
                                                 ("VUYA", (128, 96), (25, 1), "x.mxf", 1, 1),
                                                 ("dvp2", (720, 576), (25, 1), "x.mov", 2, 0)):
            path = self.render(document(code, size, rate, order=order, frames=3), output, "--video-only")
            frame = self.first_frame(path)
            self.assertEqual((frame["interlaced_frame"], frame["top_field_first"]), (1, top_first), f"{code} {output}")

    def test_mxf_names_the_field_order_of_mpeg2(self):
        # "tb" is FFmpeg's name for "upper field stored first, lower shown first".
        for order, name, top_first in ((0, "progressive", 0), (1, "tt", 1), (2, "tb", 0)):
            for size, rate in (((720, 576), (25, 1)), ((720, 480), (30000, 1001))):
                path = self.render(document("uyvy", size, rate, 2, order), "x.mxf", "--video-only")
                self.assertEqual(self.probe(path)["field_order"], name, size)
        # These containers have no field for it; the pictures themselves carry it.
        for code, size, codec in (("uyvy", (720, 576), "h264"), ("dvp5", (720, 576), "dv"), ("dvp2", (720, 576), "dv")):
            for order in (1, 2):
                path = self.render(document(code, size, (25, 1), 2, order), "x.mxf", "--video-only", "--video-codec", codec)
                frame = self.first_frame(path)
                self.assertEqual((frame["interlaced_frame"], frame["top_field_first"]), (1, int(order == 1)), code)

    def test_range_is_kept_where_the_table_says_so(self):
        for code, output, codec in (("bgra", "x.mov", "png"), ("uyvy", "x.mov", "h264"), ("uyvy", "x.mp4", "h264"),
                                    ("uyvy", "x.mxf", "h264"), ("uyvy", "x.y4m", "raw"), ("uyvy", "x.mkv", "v210")):
            for space, full in (("Rec. 709", code == "bgra"), ("Rec. 709 Full Range", True)):
                path = self.render(document(code, (128, 96), (25, 1), 1, space=space), output, "--video-only",
                                   "--video-codec", codec)
                self.assertEqual(self.probe(path)["color_range"], "pc" if full else "tv", f"{output} {codec} {space}")

    def test_quicktime_names_each_kind_of_dv_and_of_raw_pictures(self):
        for code, size, rate, tag in (("dvn2", (720, 480), (30000, 1001), "dvc "), ("dvp2", (720, 576), (25, 1), "dvcp"),
                                      ("dvn5", (720, 480), (30000, 1001), "dv5n"), ("dvp5", (720, 576), (25, 1), "dv5p"),
                                      ("dvn7", (960, 720), (60000, 1001), "dvhp"), ("dvp7", (960, 720), (50, 1), "dvhq"),
                                      ("dvn1", (1280, 1080), (30000, 1001), "dvh6"),
                                      ("dvp1", (1440, 1080), (25, 1), "dvh5"), ("uyvy", (96, 64), (25, 1), "2vuy"),
                                      ("yuy3", (96, 64), (25, 1), "yuvs"), ("v210", (96, 64), (25, 1), "v210"),
                                      ("yv12", (96, 64), (25, 1), "I420"), ("vuyx", (96, 64), (25, 1), "v308")):
            path = self.render(document(code, size, rate, 1), "x.mov")
            self.assertEqual(self.probe(path)["codec_tag_string"], tag, code)
            self.assertEqual(self.probe(path, "audio")["codec_tag_string"], "in24", code)

    def test_interlaced_h264_has_any_even_height(self):
        for height, progressive, interlaced in ((576, "yuv420p", "yuv420p"), (486, "yuv420p", "yuv444p"),
                                                (18, "yuv420p", "yuv444p"), (27, "yuv444p", None)):
            for order, pixel_format in ((0, progressive), (1, interlaced), (2, interlaced)):
                root = document("uyvy", (720, height), (30000, 1001), 1, order)
                if pixel_format is None:
                    self.refuse("render", self.save(root), "-o", "x.mp4", "--video-only",
                                says=("clip.tessel", height, "mFieldType", "mkv"))
                    continue
                path = self.render(root, "x.mp4", "--video-only")
                stream = self.probe(path)
                self.assertEqual((stream["pix_fmt"], stream["height"]), (pixel_format, height))
                frame = self.first_frame(path)
                self.assertEqual((frame["interlaced_frame"], frame["top_field_first"]),
                                 (int(order != 0), int(order == 1)), f"{height} {order}")

    def test_chroma_is_announced_where_it_lies(self):
        # Every second column; 4:2:0 between two rows ("left"), the others on every row ("topleft").
        for code, place in (("uyvy", "topleft"), ("v210", "topleft"), ("yv12", "left"), ("yvi7", "left")):
            for order in (0, 1):
                root = document(code, (96, 64), frames=1, order=order)
                path = self.render(root, "x.mkv", "--video-only")
                self.assertEqual(self.probe(path).get("chroma_location"), place, code)
                path = self.render(root, "h.mkv", "--video-only", "--video-codec", "h264")
                self.assertEqual(self.probe(path).get("chroma_location"), "left", code)
                path = self.render(root, "x.y4m")
                if place == "left":
                    self.assertEqual(self.probe(path).get("chroma_location"), place, code)
        for code in ("bgra", "vuyx", "VUya"):
            path = self.render(document(code, (96, 64), frames=1), "x.mkv", "--video-only")
            self.assertIn(self.probe(path).get("chroma_location"), (None, "unspecified"), code)

    def test_dpx_files_announce_the_clips_transfer_and_primaries(self):
        # Codes of SMPTE 268M: 0 user-defined, 2 linear, 4 unspecified, 6 ITU-R 709, 7 and 8 ITU-R 601 (625, 525 lines).
        for space, transfer, colorimetry in (("Rec. 709", 6, 6), ("Rec. 601 (NTSC)", 8, 8), ("Rec. 601 (PAL)", 7, 7),
                                             ("sRGB", 0, 6), ("Rec. 709 Linear", 2, 6), ("Rec. 2100 PQ", 0, 0),
                                             ("Unspecified", 4, 4)):
            for code in ("bgra", "v210"):
                path = self.render(document(code, (64, 48), frames=1, space=space), "x.dpx")
                with open(path, "rb") as file:
                    self.assertEqual(tuple(file.read()[801:803]), (transfer, colorimetry), f"{space} {code}")

    def test_pixel_aspect_is_kept(self):
        for aspect in ((10, 11), (40, 33), (12, 11), (16, 11), (2, 1), (4, 3), (3, 2), (9, 10), (128, 117), (64, 45)):
            for output in ("x.mkv", "x.mov", "x.mp4", "x.y4m", "x.nut"):
                path = self.render(document("vuyx", (64, 48), frames=1, aspect=aspect), output, "--video-only")
                got = Fraction(self.probe(path)["sample_aspect_ratio"].replace(":", "/"))
                self.assertEqual(got, Fraction(*aspect), output)

    def test_an_impossible_pixel_aspect_is_left_unsaid(self):
        for aspect in ((0, 1), (1, 0), (4294967295, 4294967294)):
            stream = self.probe(self.render(document("vuyx", (64, 48), frames=1, aspect=aspect), "x.mkv", "--video-only"))
            self.assertIn(stream.get("sample_aspect_ratio", "0:1"), ("0:1", "1:1"), aspect)
            with open(self.render(document("vuyx", (64, 48), frames=1, aspect=aspect), "x.y4m"), "rb") as file:
                self.assertIn(b" A0:0 ", file.readline())

    @unittest.skipUnless(shutil.which("mediainfo"), "MediaInfo is not installed")
    def test_mediainfo_reads_the_same(self):
        for output in ("x.mkv", "x.mov"):
            for order, scan in ((1, "TFF"), (2, "BFF")):
                path = self.render(document("v211", (720, 576), (25, 1), 10, order, aspect=(12, 11)), output)
                text = subprocess.run(["mediainfo", "--Output=JSON", path], capture_output=True, check=True).stdout
                tracks = {track["@type"]: track for track in json.loads(text)["media"]["track"]}
                video, audio = tracks["Video"], tracks["Audio"]
                self.assertEqual((video["Width"], video["Height"], float(video["FrameRate"]), video["FrameCount"]),
                                 ("720", "576", 25.0, "10"), output)
                self.assertEqual((video["ScanType"], video["ScanOrder"]), ("Interlaced", scan), output)
                self.assertEqual(video["PixelAspectRatio"], "1.091", output)
                self.assertEqual((video["colour_primaries"], video["matrix_coefficients"]), ("BT.709", "BT.709"))
                self.assertEqual((audio["SamplingRate"], audio["Channels"], audio["BitDepth"]), ("48000", "2", "24"))

    def test_ranges_give_the_frames_that_the_clip_has_there(self):
        root = document("bgrx", (64, 48), frames=20, pattern="gradient")
        whole = self.render(root, "whole.mkv")
        part = self.render(root, "part.mkv", "--from", "7", "--to", "11")
        self.assertEqual(int(self.probe(part)["nb_read_packets"]), 5)
        for index in range(5):
            self.assertEqual(self.decode(part, "bgr0", index), self.decode(whole, "bgr0", 7 + index), index)
        counted = self.render(root, "counted.mkv", "--from", "7", "--frames", "5")
        with open(part, "rb") as first, open(counted, "rb") as second:
            self.assertEqual(first.read(), second.read())

    def test_the_same_file_comes_out_whatever_the_number_of_threads_is(self):
        for code, output in (("BGra", "x.mov"), ("bgra", "x.nut"), ("v210", "x.mkv")):
            root = document(code, (64, 48), frames=25, pattern="gradient", number=True)
            files = []
            for threads in (1, 2, 7):
                with open(self.render(root, output, "--threads", threads), "rb") as file:
                    files.append(file.read())
            self.assertEqual(files[0], files[1])
            self.assertEqual(files[0], files[2])


if __name__ == "__main__":
    main()

"""Lossy codecs, read back by FFmpeg and MediaInfo: what they are, what they announce, what they show."""

import shutil
import struct
import subprocess
import unittest

from render_support import RenderTest, document, main, ycbcr_codes

# Output, codec, FFmpeg's name for it, the container's code where it has one; what FFmpeg reads of the container:
# pixel aspect, field order, primaries and transfer.
FILES = (
    ("x.mkv", "hevc", "hevc", None, True, True, True), ("x.mov", "hevc", "hevc", "hvc1", True, True, True),
    ("x.mp4", "hevc", "hevc", "hvc1", True, True, True), ("x.nut", "hevc", "hevc", None, True, False, True),
    ("x.mkv", "av1", "av1", None, True, True, True), ("x.mp4", "av1", "av1", "av01", True, True, True),
    ("x.nut", "av1", "av1", None, True, False, True),
    ("x.mkv", "vp9", "vp9", None, True, True, True), ("x.mp4", "vp9", "vp9", "vp09", True, True, True),
    ("x.nut", "vp9", "vp9", None, True, False, False),
    ("x.mkv", "dnxhr", "dnxhd", None, True, True, True), ("x.mov", "dnxhr", "dnxhd", "AVdh", True, False, True),
    ("x.mxf", "dnxhr", "dnxhd", None, False, False, True),
    ("x.mkv", "mjpeg", "mjpeg", None, True, True, True), ("x.mov", "mjpeg", "mjpeg", "jpeg", True, True, True),
    ("x.avi", "mjpeg", "mjpeg", "MJPG", True, False, False), ("x.nut", "mjpeg", "mjpeg", None, True, False, False),
)

# The clip's format and the pixels that each codec makes of it.
PIXELS = (
    ("bgra", {"hevc": "yuv420p", "av1": "yuv420p", "vp9": "yuv420p", "dnxhr": "yuv444p10le", "mjpeg": "yuvj444p"}),
    ("BGra", {"hevc": "yuv420p10le", "av1": "yuv420p10le", "vp9": "yuv420p10le", "dnxhr": "yuv444p10le",
              "mjpeg": "yuvj444p"}),
    ("uyv7", {"hevc": "yuv420p", "av1": "yuv420p", "vp9": "yuv420p", "dnxhr": "yuv422p", "mjpeg": "yuv422p"}),
    ("v211", {"hevc": "yuv420p10le", "av1": "yuv420p10le", "vp9": "yuv420p10le", "dnxhr": "yuv422p10le",
              "mjpeg": "yuv422p"}),
    ("yv17", {"hevc": "yuv420p", "av1": "yuv420p", "vp9": "yuv420p", "dnxhr": "yuv422p", "mjpeg": "yuv420p"}),
)

COLOR = (0.75, 0.5, 0.25, 1.0)


class Codecs(RenderTest):
    def test_each_container_gives_back_what_it_keeps(self):
        for output, codec, name, tag, aspect, order, colors in FILES:
            root = document("uyv7", (256, 144), (30000, 1001), 3, 2, aspect=(10, 11), space="Rec. 2020 (10-bit)")
            stream = self.probe(self.render(root, output, "--video-only", "--video-codec", codec))
            what = f"{codec} {output}"
            self.assertEqual(stream["codec_name"], name, what)
            if tag is not None:
                self.assertEqual(stream["codec_tag_string"], tag, what)
            self.assertEqual((stream["width"], stream["height"], stream["nb_read_packets"]), (256, 144, "3"), what)
            self.assertEqual(stream["r_frame_rate"], "30000/1001", what)
            self.assertEqual(stream.get("sample_aspect_ratio") == "10:11", aspect, what)
            self.assertEqual(stream.get("field_order") == "bt", order, what)
            self.assertEqual((stream.get("color_primaries"), stream.get("color_transfer")) == ("bt2020", "bt2020-10"),
                             colors, what)
            # JPEG has one matrix, whatever its container says.
            matrix = "bt470bg" if codec == "mjpeg" else "bt2020nc"
            self.assertEqual(stream.get("color_space"), matrix, what)

    def test_the_pixels_are_the_nearest_that_readers_know(self):
        for code, layouts in PIXELS:
            for codec, layout in layouts.items():
                path = self.render(document(code, (256, 144), frames=1), "x.mkv", "--video-only", "--video-codec", codec)
                self.assertEqual(self.probe(path)["pix_fmt"], layout, f"{code} {codec}")

    def test_odd_sizes_have_whole_chroma(self):
        for codec in ("hevc", "av1", "vp9"):
            path = self.render(document("bgra", (175, 97), frames=2), "x.mkv", "--video-only", "--video-codec", codec)
            stream = self.probe(path)
            self.assertEqual((stream["pix_fmt"], stream["width"], stream["height"]), ("yuv444p", 175, 97), codec)

    def test_a_flat_picture_comes_back_within_a_code_or_two(self):
        for code, layouts in PIXELS[:1]:
            for codec, layout in layouts.items():
                root = document(code, (256, 144), frames=1, order=0, upper=COLOR, lower=COLOR)
                path = self.render(root, "x.mkv", "--video-only", "--video-codec", codec, "--quality", "2"
                                   ) if codec != "dnxhr" else self.render(root, "x.mkv", "--video-only",
                                                                           "--video-codec", codec)
                data = self.decode(path, layout)
                bits = 10 if layout.endswith("10le") else 8
                form = "<H" if bits == 10 else "<B"
                area = 256 * 144
                chroma = area // 4 if "420" in layout else area
                size = struct.calcsize(form)
                found = [struct.unpack_from(form, data, place * size)[0] for place in (area // 2, area + chroma // 2,
                                                                                       area + chroma + chroma // 2)]
                if codec == "mjpeg":  # BT.601, full range
                    luma, cb, cr = (0.299 * 0.75 + 0.587 * 0.5 + 0.114 * 0.25, 0, 0)
                    cb, cr = (0.25 - luma) / 1.772, (0.75 - luma) / 1.402
                    expected = [round(255 * luma), round(255 * cb + 128), round(255 * cr + 128)]
                else:
                    expected = ycbcr_codes(COLOR[:3], 709, bits)
                for got, wanted in zip(found, expected):
                    self.assertLessEqual(abs(got - wanted), 2 if bits == 8 else 6, f"{codec} {found} {expected}")

    def test_full_range_is_kept_where_the_stream_says_it(self):
        for codec in ("hevc", "av1", "vp9"):
            root = document("bgra", (128, 96), frames=1, space="Rec. 709 Full Range")
            for output in ("x.mkv", "x.mp4"):
                stream = self.probe(self.render(root, output, "--video-only", "--video-codec", codec))
                self.assertEqual(stream["color_range"], "pc", f"{codec} {output}")

    def test_quality_is_the_codecs_own_scale(self):
        def size(codec, quality):
            root = document("bgra", (256, 144), frames=3, pattern="gradient", number=True)
            path = self.render(root, "x.mkv", "--video-only", "--video-codec", codec, *quality)
            return int(self.probe(path)["format"]["size"])
        for codec, usual, worse in (("h264", 16, 45), ("hevc", 16, 45), ("av1", 20, 60), ("vp9", 20, 60),
                                    ("mpeg2", 2, 28), ("mjpeg", 2, 31)):
            self.assertEqual(size(codec, []), size(codec, ["--quality", usual]), codec)
            self.assertGreater(size(codec, []), size(codec, ["--quality", worse]), codec)

    def test_a_quality_that_the_codec_lacks_is_refused(self):
        clip = self.save(document())
        for arguments, code, says in ((("--video-codec", "hevc", "--quality", "52"), 2, "from 0 (best) to 51"),
                                      (("--video-codec", "mpeg2", "--quality", "0"), 2, "from 1 (best) to 28"),
                                      (("--video-codec", "ffv1", "--quality", "1"), 2, "ffv1 has one quality only"),
                                      (("--quality", "1"), 2, "ffv1 has one quality only"),
                                      (("--audio-only", "--quality", "1"), 2, "remove --quality")):
            self.refuse("render", clip, "-o", "x.mkv", *arguments, code=code, says=(says,))
        self.left_over("clip.tessel")

    @unittest.skipUnless(shutil.which("mediainfo"), "mediainfo is not installed")
    def test_mediainfo_reads_the_same(self):
        for output, codec, name in (("x.mov", "hevc", "HEVC"), ("x.mp4", "av1", "AV1"), ("x.mkv", "vp9", "VP9"),
                                    ("x.mxf", "dnxhr", "VC-3"), ("x.mov", "mjpeg", "JPEG")):
            root = document("uyv7", (256, 144), (25, 1), 3, 1, aspect=(12, 11), space="Rec. 709")
            path = self.render(root, output, "--video-only", "--video-codec", codec)
            read = subprocess.run(["mediainfo", "--Output=Video;%Format%|%Width%x%Height%|%FrameRate%|%FrameCount%",
                                   path], capture_output=True, check=True, text=True).stdout.strip()
            self.assertEqual(read, f"{name}|256x144|25.000|3", output)


if __name__ == "__main__":
    main()

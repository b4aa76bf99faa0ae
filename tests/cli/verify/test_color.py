"""Colour faults that FFmpeg's own filters make, named."""

import json
import os

from verify_support import FRAMES, VerifyTest, document, gradient, main

SAMPLE_CHART = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "samples", "swatch-chart.tessel")
TAGS = ("-color_primaries", "1", "-color_trc", "1", "-colorspace", "1", "-color_range", "tv")


class Color(VerifyTest):
    def fault(self, code, video_filter, *ids, arguments=TAGS):
        root = gradient(code, (480, 270))
        return self.expect(self.verify(root, self.filtered(root, video_filter, *arguments)), *ids)

    def test_matrix_of_the_codes(self):
        # colormatrix works in 8 bits, as uyvy is.
        finding = self.fault("uyv7", "colormatrix=bt709:bt601", "color.matrix")
        self.assertIn("codes are BT.601", finding["message"])
        self.assertIn("fidelity.exact", [inner["id"] for inner in finding["consequences"]])

    def test_a_matrix_that_moves_codes_by_the_tolerance_is_named_where_it_alone_explains_them(self):
        # BT.2020 moves these colours by two codes, and H.264 is allowed 2.5.
        root = gradient("v211", (384, 216))
        movie = self.path("of2020.mp4")
        self.run_tessel("damage", self.save(root), "--fault", "color.matrix=2020", "-o", movie, "--video-codec", "h264",
                        "--quality", "23")
        self.assertEqual(self.expect(self.verify(root, movie), "color.matrix")["found"], "BT.2020")

    def test_a_matrix_that_moves_codes_by_less_than_the_tolerance_is_named_by_its_direction(self):
        # SMPTE 240M moves these colours by 0.8 codes, and H.264 is allowed 2.5.
        root = gradient("v211", (384, 216))
        movie = self.path("of240.mp4")
        self.run_tessel("damage", self.save(root), "--fault", "color.matrix=240", "-o", movie, "--video-codec", "h264",
                        "--quality", "23")
        finding = self.expect(self.verify(root, movie), "color.matrix")
        self.assertEqual(finding["found"], "SMPTE 240M")
        self.assertNotIn("one of", finding["message"])
        self.expect_clean(self.verify(root, movie, "--tolerance", "color.matrix=2.5"), "with a tolerance that was asked for")
        self.expect_clean(self.verify(root, self.render(root, "clean.mp4", "--video-codec", "h264", "--quality", "23")), "clean")

    def test_matrix_tag_alone(self):
        root = gradient("v211", (480, 270))
        report = self.verify(root, self.filtered(root, "setparams=colorspace=smpte170m", "-colorspace", "smpte170m"))
        finding = self.expect(report, "container.matrix")
        self.assertEqual([inner["id"] for inner in finding["consequences"]], ["color.matrix"])

    def test_the_matrix_of_rgb_on_pictures_in_ycbcr(self):
        root = gradient("bgrx", space="sRGB")
        movie = self.filtered(root, "scale=out_color_matrix=bt709:out_range=tv,format=yuv444p", "-color_range", "tv",
                              "-colorspace", "rgb")
        finding = self.expect(self.verify(root, movie), "container.matrix")
        self.assertEqual(finding["message"], "the announced matrix is R'G'B', not one of Y'CbCr")

    def test_squeezed_and_expanded_range(self):
        finding = self.fault("v211", "scale=in_range=full:out_range=limited", "color.range")
        self.assertEqual(finding["found"], "squeezed")
        finding = self.fault("v211", "scale=in_range=limited:out_range=full", "color.range")
        self.assertEqual(finding["found"], "expanded")

    def test_exchanged_chroma(self):
        self.fault("v211", "swapuv", "color.chroma-swapped")

    def test_exchanged_red_and_blue(self):
        finding = self.fault("bgrx", "colorchannelmixer=rr=0:rb=1:br=1:bb=0", "color.channels", arguments=())
        self.assertEqual(finding["found"], "B'G'R'")

    def test_hue_and_saturation_with_their_values(self):
        finding = self.fault("v211", "hue=h=12", "color.hue")
        self.assertAlmostEqual(abs(finding["found"]), 12, delta=finding["uncertainty"] + 0.2)
        finding = self.fault("v211", "hue=s=0.8", "color.saturation")
        self.assertAlmostEqual(finding["found"], 0.8, delta=finding["uncertainty"] + 0.005)

    def test_offset_and_gain_with_their_values(self):
        # 10-bit codes: 48 are 12 codes in 8-bit units.
        finding = self.fault("v211", "lutyuv=y=val+48", "color.offset")
        self.assertAlmostEqual(finding["found"], 12, delta=finding["uncertainty"] + 0.1)
        finding = self.fault("v211", "lutyuv=y=64+(val-64)*0.9", "color.gain")
        self.assertAlmostEqual(finding["found"], 0.9, delta=finding["uncertainty"] + 0.002)

    def test_gamma_applied_twice(self):
        finding = self.fault("bgrx", "format=gbrp,lutrgb=r=gammaval(0.4545):g=gammaval(0.4545):b=gammaval(0.4545)",
                             "color.transfer", arguments=())
        self.assertIn("gamma 2.2", finding["message"])


    def test_codes_cut_off_at_their_levels(self):
        # 10-bit codes: 200 and 700 are 50 and 175 in 8-bit units.
        finding = self.fault("v211", "lutyuv=y=clip(val\\,200\\,700)", "color.clipped")
        self.assertEqual(finding["found"], "50..175")

    def test_eight_bits_on_the_way_with_and_without_dither(self):
        finding = self.fault("v211", "format=yuv422p,format=yuv422p10le", "color.depth")
        self.assertEqual(finding["found"], 8)
        finding = self.fault("v211", "lutyuv=y=bitand(val\\,1008):u=bitand(val\\,1008):v=bitand(val\\,1008)",
                             "color.depth")
        self.assertEqual(finding["found"], 6)
        self.assertIn("without dither", finding["message"])

    def test_chroma_subsampled_on_the_way(self):
        finding = self.fault("bgrx", "format=yuv444p,format=yuv422p,format=yuv444p,format=gbrp", "color.subsampling",
                             arguments=())
        self.assertIn("4:2:2", finding["found"])

    def chart(self, row):
        """The sample chart, two frames of it, moved down; unmoved, its edges lie on even rows."""
        with open(SAMPLE_CHART, encoding="utf-8") as file:
            root = json.load(file)
        root["mSwatchCoordinates"] = {name: {**patches, "yCoordinates": [y + row for y in patches["yCoordinates"]]}
                                      for name, patches in root["mSwatchCoordinates"].items()}
        root["mVideoDuration"] = {"ticks": root["mVideoFrameRate"]["ticksperframe"] * 2}
        return root

    def test_halved_rows_of_chroma_show_at_edges_inside_pairs_of_rows(self):
        notes = []
        for row in (0, 1):
            root = self.chart(row)
            whole = self.render(root, "whole.mov", "--video-codec", "v210")
            report = self.verify(root, whole)
            self.expect_clean(report, f"row {row}")
            notes.append([note for note in report["notes"] if "rows of chroma could be lost unseen" in note])
            movie = self.path("halved.mov")
            self.run_tessel("damage", self.save(root), "--fault", "color.subsampling=420", "-o", movie, "--video-codec",
                            "v210")
            if row:
                self.assertIn("4:2:0", self.expect(self.verify(root, movie), "color.subsampling")["found"])
            else:
                self.expect_clean(self.verify(root, movie), "the same codes")
        self.assertEqual([len(told) for told in notes], [1, 0])

    def test_a_quarter_of_the_columns_is_told_from_a_shift_behind_a_lossy_codec(self):
        root = self.chart(0)
        movie = self.path("few.mxf")
        self.run_tessel("damage", self.save(root), "--fault", "color.subsampling=411", "-o", movie, "--video-codec",
                        "mpeg2", "--quality", "2")
        self.assertIn("4:1:1", self.expect(self.verify(root, movie), "color.subsampling")["found"])

    def test_grey_is_no_chroma_at_all(self):
        self.fault("v211", "hue=s=0", "color.subsampling")

    def test_alpha_that_is_lost_or_multiplied_twice(self):
        root = document("bgra", (320, 180), rate=(25, 1), frames=6, number=True, upper=(1.0, 0.5, 0.25, 0.5))
        finding = self.expect(self.verify(root, self.filtered(root, "lutrgb=a=maxval")), "color.alpha")
        self.assertIn("opaque", finding["message"])
        finding = self.expect(self.verify(root, self.filtered(root, "format=gbrap,premultiply=inplace=1")), "color.alpha")
        self.assertIn("multiplied by alpha", finding["message"])

    def test_chroma_location_that_is_only_said(self):
        root = gradient("v211", (480, 270), frames=6)
        whole = self.render(root, "whole.mkv", "--video-only")
        movie = self.ffmpeg(whole, "said.mp4", "-c:v", "libx264", "-crf", "12", "-pix_fmt", "yuv420p10le",
                            "-chroma_sample_location", "topleft", *TAGS)
        self.expect(self.verify(root, movie, "--accept", "container.channels"), "container.siting")

    def test_a_scaled_picture_keeps_its_colours(self):
        root = gradient("v211", (640, 360), frames=6)
        for video_filter in ("scale=480:270", "scale=426:240:flags=lanczos", "crop=600:320:16:12"):
            report = self.verify(root, self.filtered(root, video_filter, *TAGS))
            told = [finding["id"] for finding in report["findings"]]
            told += [inner["id"] for finding in report["findings"] for inner in finding["consequences"]]
            self.assertEqual([check for check in told if check.startswith("color.")], [], video_filter)

    def test_what_one_colour_cannot_tell_apart_is_one_of(self):
        # One grey: gain and offset look alike.
        root = document("v211", (320, 180), rate=(25, 1), frames=4, upper=(0.5, 0.5, 0.5, 1.0))
        finding = self.expect(self.verify(root, self.filtered(root, "lutyuv=y=val+48", *TAGS)), "color.offset")
        self.assertIn("one of", finding["message"])


class Alignment(VerifyTest):
    """Clips without numbers, told by their colours."""

    def moving(self, code="bgrx"):
        return document(code, (320, 180), rate=(25, 1), frames=FRAMES, pattern="gradient")

    def expect_told(self, video_filter, *ids):
        report = self.verify(self.moving(), self.filtered(self.moving(), video_filter), "--accept", "container.duration")
        self.assertEqual(report["alignment"]["method"], "color")
        return self.expect(report, *ids) if ids else self.expect_clean(report, video_filter)

    def test_order_is_seen_without_numbers(self):
        self.expect_told("null")
        finding = self.expect_told("select='not(between(n,12,13))',setpts=N/25/TB", "order.missing")
        self.assertEqual([(span["first"], span["last"]) for span in finding["frames"]], [(12, 13)])
        self.expect_told("reverse", "order.reversed")
        self.expect_told("shuffleframes=" + " ".join(map(str, [*range(10), 11, 10, *range(12, FRAMES)])),
                         "order.swapped")

    def test_changed_colours_tell_frames_as_well(self):
        self.expect_told("colorchannelmixer=rr=0:rb=1:br=1:bb=0", "color.channels")

    def test_colours_that_stand_still_leave_time(self):
        root = document("bgrx", (320, 180), rate=(25, 1), frames=8)
        report = self.verify(root, self.render(root, "x.mkv"))
        self.assertEqual(report["alignment"]["method"], "time")


main()

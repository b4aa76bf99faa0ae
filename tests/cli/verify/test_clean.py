"""What `tessel render` writes is found as expected: no false alarms."""

from verify_support import VerifyTest, document, fields, gradient, main


class Clean(VerifyTest):
    def clean(self, root, *outputs):
        for output in outputs:
            report = self.verify(root, self.render(root, output))
            self.expect_clean(report, f"{root['mPixelFormat']} {output}")
            self.assertEqual(report["alignment"]["matched"], report["alignment"]["pictures"], output)
            self.assertEqual(report["alignment"]["pictures"], report["alignment"]["frames"], output)

    def test_rgb_in_every_container(self):
        self.clean(gradient(), "x.mkv", "x.mov", "x.mp4", "x.mxf", "x.nut", "x.avi", "x.y4m", "x_%03d.png", "x_%03d.dpx")

    def test_v210_in_quicktime_and_h264(self):
        self.clean(gradient("v211", (480, 270)), "x.mov", "x.mkv", "x.mp4")

    def test_v210_in_prores(self):
        root = gradient("v211", (480, 270))
        self.expect_clean(self.verify(root, self.render(root, "x.mov", "--video-codec", "prores")), "prores")

    def test_interlaced_fields_of_two_colours(self):
        for order in (1, 2):
            self.clean(fields(order=order), "x.mkv", "x.mov", "x.mp4", "x.mxf")

    def test_premultiplied_alpha(self):
        self.clean(gradient("bgrp"), "x.mkv", "x.mov")

    def test_float_with_colours_outside_the_range(self):
        self.clean(document("BGra", (320, 180), rate=(25, 1), frames=8, number=True, upper=(1.2, 0.5, -0.1, 1.0)),
                   "x.mkv", "x_%02d.exr")

    def test_a_clip_that_contradicts_its_tags_is_what_was_asked_for(self):
        self.clean(gradient("v210"), "x.mov", "x.mkv")  # codes of BT.601 announced as BT.709

    def test_a_clip_without_numbers_is_compared_by_time(self):
        root = document("bgrx", (320, 180), rate=(25, 1), frames=8)
        report = self.verify(root, self.render(root, "x.mkv"))
        self.expect_clean(report, "no numbers")
        self.assertEqual(report["alignment"]["method"], "time")
        self.assertIn("order.missing", [check["id"] for check in report["notVisible"]])

    def test_one_frame(self):
        self.clean(gradient(frames=1), "x.mkv", "x.mp4")

    def test_sound_alone(self):
        root = gradient()
        report = self.verify(root, self.render(root, "x.wav"))
        self.expect_clean(report, "wav")
        self.assertIn("order.missing", [check["id"] for check in report["notVisible"]])


main()

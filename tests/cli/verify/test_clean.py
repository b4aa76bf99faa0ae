"""What `tessel render` writes is found as expected: no false alarms."""

import os

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

    def test_names_that_ffmpeg_takes_for_protocols_or_patterns(self):
        root = gradient(frames=3)
        for name in ("12:30.mkv", "pipe:0.mkv", "50%.mkv", "take %02d.mkv", "%d%d.mkv", "-x.mkv"):
            with self.subTest(name):
                os.rename(self.render(root, "x.mkv"), self.path(name))
                self.expect_clean(self.verify(root, f"./{name}" if name.startswith("-") else name), name)
        for folder in ("50%", "take %02d", "1:2"):
            with self.subTest(folder):
                os.mkdir(self.path(folder))
                self.render(root, "p_%03d.png")
                for frame in range(3):
                    os.rename(self.path(f"p_{frame:03}.png"), os.path.join(self.path(folder), f"p_{frame:03}.png"))
                self.expect_clean(self.verify(root, f"{folder}/p_%03d.png"), folder)

    def test_one_frame(self):
        self.clean(gradient(frames=1), "x.mkv", "x.mp4")

    def test_sound_alone(self):
        root = gradient()
        report = self.verify(root, self.render(root, "x.wav"))
        self.expect_clean(report, "wav")
        hidden = {check["id"] for check in report["notVisible"]}
        shown_by_pictures = {"order.missing", "geometry.scaled", "fields.lost", "color.gain", "fidelity.psnr"}
        self.assertEqual(shown_by_pictures - hidden, set())
        self.assertEqual(report["notChecked"], [])
        self.assertIn("signal.other", report["asExpected"])
        self.assertEqual(report["alignment"]["method"], "none")

    def test_what_aac_leaves_out_of_the_lfe_channel_is_a_note(self):
        for channels, kind in ((6, 3), (8, 2)):
            root = document("v211", (192, 108), rate=(25, 1), frames=50, number=True, mNumChannels=channels,
                            mKsAudioChannelType=kind, mSteadyToneFrequency=440.0)
            movie = self.render(root, "x.mp4")
            report = self.verify(root, movie)
            self.expect_clean(report, f"{channels} channels")
            self.assertTrue(any("LFE" in note and "audio.silence" in note for note in report["notes"]), report["notes"])
            self.assertEqual(self.ids(self.verify(root, movie, "--strict", "--only", "audio.silence")),
                             ["audio.silence"])

    def test_a_fifth_of_a_second_of_sound_has_no_harmonics(self):
        root = document("bgrx", (190, 320), rate=(50, 1), frames=11, number=True, mSteadyToneFrequency=440.0,
                        mSteadyToneAmplitude=0.25)
        self.clean(root, "x.mkv", "x.mov")

    def test_full_range_becomes_limited_where_a_container_has_no_place_for_it(self):
        root = document("bgrx", (192, 320), rate=(50, 1), frames=12, upper=(0.9, 0.5, 0.2, 1.0), number=True,
                        space="BT709_FULL")
        self.expect_clean(self.verify(root, self.render(root, "x.mov", "--video-codec", "v210")), "v210")

    def test_chroma_of_planar_pictures_is_kept_by_frame_or_by_field_as_the_format_says(self):
        frames = document("yv17", (344, 76), rate=(25, 1), frames=6, order=2, upper=(0.9, 0.1, 0.2, 1.0),
                          lower=(0.1, 0.8, 0.7, 1.0))
        fields_ = document("yvi7", (136, 260), rate=(25, 1), frames=6, number=True, pattern="gradient")
        for root in (frames, fields_):
            self.expect_clean(self.verify(root, self.render(root, "x.mkv", "--video-codec", "ffv1")), "planar")

    def test_lossy_codecs_smooth_rows_and_edges(self):
        # Faint gradients in fields, and a plate whose few edges are all that shows where chroma is.
        rows = document("vux7", (482, 300), rate=(24, 1), frames=20, order=2, pattern="gradient")
        edges = document("BGpL", (492, 310), rate=(25, 1), frames=20, pattern="gradient", number=True)
        for root in (rows, edges):
            self.expect_clean(self.verify(root, self.render(root, "x.mp4", "--quality", "23")), root["mPixelFormat"])

    def test_mxf_counts_frames_so_sound_is_compared_exactly(self):
        root = document("v211", (192, 108), rate=(25, 1), frames=100, pattern="gradient", number=True,
                        mToneFormat=1, mIdentifierFormat=0)
        report = self.verify(root, self.render(root, "x.mxf", "--video-codec", "mpeg2"))
        self.expect_clean(report, "mxf")
        self.assertNotIn("sync.offset", [check["id"] for check in report["notVisible"]])


main()

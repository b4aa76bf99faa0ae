"""Colour faults that FFmpeg's own filters make, named."""

from verify_support import VerifyTest, gradient, main

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

    def test_matrix_tag_alone(self):
        root = gradient("v211", (480, 270))
        report = self.verify(root, self.filtered(root, "setparams=colorspace=smpte170m", "-colorspace", "smpte170m"))
        finding = self.expect(report, "container.matrix")
        self.assertEqual([inner["id"] for inner in finding["consequences"]], ["color.matrix"])

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


main()

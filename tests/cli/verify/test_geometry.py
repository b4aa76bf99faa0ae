"""What FFmpeg's filters do to the place of the picture, named with its measure."""

import re

from verify_support import VerifyTest, gradient, main


class Geometry(VerifyTest):
    def fault(self, video_filter, *ids):
        root = gradient(size=(640, 360), frames=6)
        return self.expect(self.verify(root, self.filtered(root, video_filter)), *ids)

    def test_scaled(self):
        finding = self.fault("scale=320:180", "geometry.scaled")
        self.assertAlmostEqual(finding["found"], 0.5, delta=finding["uncertainty"])
        self.assertIn("container.size", [inner["id"] for inner in finding["consequences"]])

    def test_cropped(self):
        finding = self.fault("crop=600:320:16:12", "geometry.cropped")
        self.assertAlmostEqual(finding["found"], 28, delta=finding["uncertainty"] + 0.5)
        # Edges are found to a fraction of a pixel: 16, 12, 24 and 28 to the nearest.
        edges = re.findall(r"(\w+) ([0-9.]+)", finding["message"])
        self.assertEqual([(edge, round(float(pixels))) for edge, pixels in edges],
                         [("left", 16), ("top", 12), ("right", 24), ("bottom", 28)])

    def test_a_crop_that_takes_the_number_along(self):
        for size, cut in (((320, 180), 16), ((160, 106), 16)):
            root = gradient(size=size, frames=6)
            report = self.verify(root, self.filtered(root, f"crop={size[0] - 2 * cut}:{size[1] - 2 * cut}"))
            finding = self.expect(report, "geometry.cropped")
            self.assertAlmostEqual(finding["found"], cut, delta=0.5)

    def test_padded(self):
        finding = self.fault("pad=800:480:80:60", "geometry.padded")
        self.assertAlmostEqual(finding["found"], 80, delta=finding["uncertainty"] + 0.5)

    def test_shifted(self):
        finding = self.fault("pad=644:360:4:0,crop=640:360:0:0", "geometry.shifted")
        self.assertAlmostEqual(finding["found"], 4, delta=finding["uncertainty"])

    def test_mirrored_and_upside_down(self):
        self.assertEqual(self.fault("hflip", "geometry.flipped")["found"], "horizontal")
        self.assertEqual(self.fault("vflip", "geometry.flipped")["found"], "vertical")

    def test_turned(self):
        self.assertEqual(self.fault("transpose=clock", "geometry.rotated")["found"], 90)
        self.assertEqual(self.fault("transpose=cclock", "geometry.rotated")["found"], 270)
        self.assertEqual(self.fault("hflip,vflip", "geometry.rotated")["found"], 180)


main()

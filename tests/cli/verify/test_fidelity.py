"""How near pictures are: which are measured, and what is said of them."""

from verify_support import VerifyTest, gradient, main


class Fidelity(VerifyTest):
    def findings(self, report):
        return {finding["id"]: finding for finding in report["findings"]}

    def test_a_picture_that_differs_is_measured_wherever_it_is(self):
        # Neither the first picture nor a 25th one.
        root = gradient(frames=30)
        box = "drawbox=enable=eq(n\\,13):x=200:y=100:w=64:h=48:color=white:t=fill"
        finding = self.findings(self.verify(root, self.filtered(root, box)))["fidelity.exact"]
        self.assertEqual(finding["frames"], [{"first": 13, "last": 13}])

    def test_the_worst_frame_and_the_place_in_it_are_told(self):
        root = gradient("uyv7", frames=6)
        box = "drawbox=enable=eq(n\\,4):x=200:y=100:w=64:h=48:color=white:t=fill"
        findings = self.findings(self.verify(root, self.filtered(root, box), "--fidelity", "all"))
        psnr = findings["fidelity.psnr"]
        self.assertEqual(psnr["frames"], [{"first": 4, "last": 4}])
        self.assertIn("in frame 4", psnr["message"])

    def test_a_picture_that_is_worse_than_lost_bits_make_it_is_a_fault_of_its_own(self):
        root = gradient("v211", frames=30)
        box = "drawbox=enable=eq(n\\,13):x=200:y=100:w=64:h=48:color=red:t=fill"
        clean = self.findings(self.verify(root, self.filtered(root, "format=yuv422p", output="bits.mkv")))
        self.assertEqual(list(clean), ["container.depth"])
        spoilt = self.findings(self.verify(root, self.filtered(root, "format=yuv422p," + box, output="box.mkv")))
        self.assertEqual(sorted(spoilt), ["container.depth", "fidelity.psnr"])
        self.assertEqual(spoilt["fidelity.psnr"]["frames"], [{"first": 13, "last": 13}])

    def test_all_pictures_are_measured_on_demand(self):
        root = gradient("v211", frames=30)
        movie = self.render(root, "x.mp4")
        some = " ".join(self.verify(root, movie)["notes"])
        every = " ".join(self.verify(root, movie, "--fidelity", "all")["notes"])
        self.assertIn("of 2 measured pictures", some)
        self.assertIn("of 30 measured pictures", every)


main()

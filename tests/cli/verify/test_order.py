"""What FFmpeg's filters do to the order of frames, named."""

from verify_support import VerifyTest, gradient, main


class Order(VerifyTest):
    def fault(self, video_filter, *ids, arguments=()):
        root = gradient()
        whole = self.render(root, "whole.mkv", "--video-only")
        damaged = self.ffmpeg(whole, "damaged.mkv", "-vf", video_filter, *arguments)
        return self.expect(self.verify(root, damaged, "--accept", "container.channels"), *ids)

    def frames(self, finding):
        return [(span["first"], span["last"]) for span in finding["frames"]]

    def test_missing_frames(self):
        finding = self.fault("select='not(between(n,12,13))',setpts=N/25/TB", "order.missing")
        self.assertEqual((finding["found"], self.frames(finding)), (2, [(12, 13)]))
        self.assertEqual([inner["id"] for inner in finding["consequences"]], ["container.duration"])

    def test_swapped_frames(self):
        finding = self.fault("shuffleframes=" + " ".join(map(str, [*range(10), 11, 10, *range(12, 30)])),
                             "order.swapped")
        self.assertEqual(self.frames(finding), [(10, 10), (11, 11)])

    def test_reversed(self):
        self.fault("reverse", "order.reversed")

    def test_repeated_at_the_end(self):
        finding = self.fault("tpad=stop=3:stop_mode=clone", "order.repeated")
        self.assertEqual(finding["found"], 3)

    def test_pictures_before_the_first(self):
        tags = ("-color_primaries", "1", "-color_trc", "1")
        finding = self.fault("tpad=start=4", "order.inserted", arguments=tags)
        self.assertEqual((finding["found"], self.frames(finding)), (4, [(0, 3)]))

    def test_frozen(self):
        # Frames 11 to 14 replaced by frame 10, in place.
        order = [*range(11), 10, 10, 10, 10, *range(15, 30)]
        finding = self.fault("shuffleframes=" + " ".join(map(str, order)), "order.frozen")
        self.assertEqual(self.frames(finding), [(11, 14)])

    def test_cadence_of_a_rate_conversion(self):
        finding = self.fault("fps=30", "order.cadence")
        self.assertAlmostEqual(finding["found"], 1.2, places=2)
        self.assertIn("container.rate", [inner["id"] for inner in finding["consequences"]])

    def test_cadence_of_a_conversion_that_blends(self):
        root = gradient("v211")
        whole = self.render(root, "whole.mkv")
        tags = ("-color_primaries", "1", "-color_trc", "1", "-colorspace", "1", "-color_range", "tv")
        for rate in (24, 30, 50):
            with self.subTest(rate):
                damaged = self.ffmpeg(whole, f"{rate}.mkv", "-vf", f"framerate={rate}", *tags)
                finding = self.expect(self.verify(root, damaged), "order.cadence")
                self.assertAlmostEqual(finding["found"], rate / 25, places=2)
                self.assertIn("container.rate", [inner["id"] for inner in finding["consequences"]])

    def test_another_rate_alone_is_no_cadence(self):
        self.fault("setpts=N/24/TB", "container.rate", arguments=("-r", "24"))

    def test_trimmed_head_and_tail(self):
        root = gradient()
        whole = self.render(root, "whole.mkv", "--video-only")
        head = self.ffmpeg(whole, "head.mkv", "-vf", "trim=start_frame=5,setpts=PTS-STARTPTS")
        finding = self.expect(self.verify(root, head, "--accept", "container.channels"), "order.head")
        self.assertEqual(self.frames(finding), [(0, 4)])
        tail = self.ffmpeg(whole, "tail.mkv", "-vf", "trim=end_frame=25")
        finding = self.expect(self.verify(root, tail, "--accept", "container.channels"), "order.tail")
        self.assertEqual(self.frames(finding), [(25, 29)])

    def test_numbers_survive_crf_40_at_a_third_of_the_size(self):
        root = gradient("v211", (1280, 720))
        whole = self.render(root, "whole.mkv", "--video-only")
        small = self.ffmpeg(whole, "small.mp4", "-vf", "scale=426:240", "-c:v", "libx264", "-crf", "40")
        report = self.verify(root, small, "--only", "order.missing")
        self.assertEqual((report["verdict"], report["alignment"]["matched"]), ("as expected", 30))


main()

"""Movies that are cut short, damaged, or of something else: one clear verdict each."""

import os
import resource
import subprocess

from verify_support import VerifyTest, color, document, gradient, main


class BadInput(VerifyTest):
    def cut(self, movie, size, name):
        with open(movie, "rb") as file:
            data = file.read()
        with open(self.path(name), "wb") as file:
            file.write(data[:size(len(data))])
        return self.path(name)

    def generated(self, name, source, *arguments):
        path = self.path(name)
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", source, *arguments, path], check=True)
        return path

    def test_an_index_without_pictures_is_undecided_in_one_finding(self):
        root = gradient(frames=30)
        # The index stands before the pictures, in room of 16 kB or more.
        cut = self.cut(self.render(root, "whole.mp4"), lambda size: size // 5, "cut.mp4")
        report = self.verify(root, cut)
        finding = self.expect(report, "signal.other")
        self.assertEqual((report["verdict"], finding["verdict"]), ("undecided", "undecided"))
        self.assertIn("no picture can be decoded", finding["message"])

    def test_a_lack_of_memory_or_threads_is_no_fault_of_the_movie(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_AS, (1 << 30, 1 << 30))

        started = subprocess.run([*self.tessel, "--version"], preexec_fn=limit, capture_output=True, check=False)
        if started.returncode != 0:
            self.skipTest("this build takes more addresses to start, as under a sanitizer")
        movie = self.render(gradient(), "whole.mkv")
        done = self.run_tessel("verify", self.path("clip.tessel"), movie, "--threads", "1000", preexec_fn=limit)
        if done.returncode != 0:
            self.assertEqual((done.returncode, done.stderr), (1, b"tessel: out of memory\n"), done.stdout)

    def test_an_index_without_sound_is_undecided_in_one_finding(self):
        root = gradient(frames=30)
        cut = self.cut(self.render(root, "whole.mp4", "--audio-only"), lambda size: size // 5, "cut.mp4")
        report = self.verify(root, cut)
        self.assertEqual(report["verdict"], "undecided")
        self.assertIn("no sound can be decoded", self.expect(report, "signal.other")["message"])

    def test_a_movie_that_ends_early_misses_its_tail(self):
        root = gradient(frames=30)
        cut = self.cut(self.render(root, "whole.mkv", "--video-only"), lambda size: size // 2, "cut.mkv")
        finding = self.expect(self.verify(root, cut, "--accept", "container.channels"), "order.tail")
        self.assertEqual(finding["frames"][0]["last"], 29)

    def test_one_frame_of_many_misses_the_others(self):
        root = gradient(frames=30)
        one = self.render(root, "one.mkv", "--frames", "1")
        finding = self.expect(self.verify(root, one), "order.tail")
        self.assertEqual(finding["frames"], [{"first": 1, "last": 29}])

    def test_a_movie_without_sound(self):
        root = gradient()
        movie = self.render(root, "mute.mkv", "--video-only")
        finding = self.expect(self.verify(root, movie), "container.channels")
        self.assertEqual(finding["message"], "the movie has no sound")

    def test_a_movie_without_pictures(self):
        root = gradient()
        movie = self.render(root, "dark.mkv", "--audio-only")
        finding = self.expect(self.verify(root, movie), "container.size")
        self.assertEqual(finding["message"], "the movie has no pictures")

    def test_a_movie_of_something_else_is_one_finding(self):
        root = gradient(frames=24)
        for source in ("testsrc2", "mandelbrot", "smptehdbars", "rgbtestsrc"):
            with self.subTest(source):
                other = self.generated(f"{source}.mp4", f"{source}=s=320x180:r=25", "-t", "1")
                self.expect(self.verify(root, other), "signal.other")

    def test_a_movie_of_one_colour_is_something_else(self):
        for color in ("black", "white", "gray", "0x303030", "red"):
            with self.subTest(color):
                other = self.generated(f"{color}.mp4", f"color={color}:s=320x180:r=25", "-t", "1")
                self.expect(self.verify(gradient(frames=24), other), "signal.other")

    def test_noise_is_something_else(self):
        for name, planes in (("grey", "random(1)*255:128:128"), ("colour", "random(1)*255:random(2)*255:random(3)*255")):
            with self.subTest(name):
                other = self.generated(f"{name}.mkv", f"nullsrc=s=320x180:r=25,geq={planes}", "-t", "1", "-c:v", "ffv1")
                self.expect(self.verify(gradient(frames=24), other), "signal.other")

    def test_another_clip_with_numbers_of_its_own_is_something_else(self):
        root = gradient(frames=24)
        other = gradient(frames=24)
        for key, rgb in (("mTopGradiantColorStart", (0.1, 0.1, 0.8)), ("mTopGradiantColorEnd", (0.0, 0.9, 0.9)),
                         ("mBottomGradiantColorStart", (0.9, 0.9, 0.1)), ("mBottomGradiantColorEnd", (0.2, 0.0, 0.6))):
            other[key] = color(*rgb)
        self.expect(self.verify(root, self.render(other, "other.mkv")), "signal.other")

    def test_the_clip_under_a_curve_is_still_the_clip(self):
        # A strong contrast curve is not on the closed list, but the numbers and the order of the greys remain.
        root = gradient(frames=24)
        curve = "curves=all='0/0 0.4/0.05 0.6/0.95 1/1'"
        graded = self.ffmpeg(self.render(root, "whole.mkv"), "graded.mkv", "-vf", curve)
        self.assertNotIn("signal.other", self.ids(self.verify(root, graded)))

    def test_a_sound_of_something_else_is_one_finding(self):
        other = self.generated("noise.wav", "anoisesrc=c=pink:r=44100:d=3")
        report = self.verify(gradient(frames=25), other)
        self.assertEqual(self.expect(report, "signal.other")["message"], "the sound is not this clip's")

    def test_damaged_packets_end_with_a_verdict_and_a_note(self):
        root = gradient(frames=60)
        whole = self.render(root, "whole.mp4")
        for amount in (50, 2000):
            noisy = self.path(f"noisy-{amount}.mp4")
            subprocess.run(["ffmpeg", "-v", "error", "-i", whole, "-c", "copy", "-bsf:v", f"noise=amount={amount}",
                            noisy], check=True)
            report = self.verify(root, noisy)
            self.assertEqual(report["verdict"], "not as expected")
            self.assertTrue([note for note in report["notes"] if "data is damaged" in note], report["notes"])

    def test_a_document_with_errors_is_refused_in_one_line(self):
        movie = self.render(gradient(frames=2), "x.mkv")
        for name, text, says in (("cut.tessel", '{"mPixelFormat": 3,', "line 1"),
                                 ("empty.tessel", "", "empty.tessel"),
                                 ("text.tessel", '{"mPixelFormat": "bgra"}', "mPixelFormat"),
                                 ("absent.tessel", None, "absent.tessel")):
            if text is not None:
                with open(self.path(name), "w", encoding="utf-8") as file:
                    file.write(text)
            self.refuse("verify", self.path(name), movie, says=[name, says])

    def peak_memory(self, root, movie):
        """Kilobytes that a comparison takes at most, and its exit code."""
        # The address sanitizer would keep 256 MB of what was freed.
        environment = {**os.environ, "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=1"}
        process = subprocess.Popen([*self.tessel, "verify", self.save(root), movie, "--quiet"], env=environment)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        return usage.ru_maxrss, process.returncode

    def test_six_thousand_frames_take_no_more_memory_than_a_thousand(self):
        peaks = []
        for frames in (1_000, 6_000):
            root = document("bgrx", (160, 90), rate=(25, 1), frames=frames, number=True)
            peak, code = self.peak_memory(root, self.render(root, f"{frames}.mkv", "--video-only"))
            self.assertEqual(code, 3, "only the sound is missing")
            peaks.append(peak)
        # A picture's record takes some 100 bytes: 0.5 MB for 5,000; their pixels would be 288 MB.
        self.assertLess(peaks[1], peaks[0] + 16_000, peaks)


if __name__ == "__main__":
    main()

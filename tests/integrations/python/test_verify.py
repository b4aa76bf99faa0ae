"""`tessel.verify` and `tessel.assert_same_signal`: what the program says, and never a pass without a check."""

import os
import subprocess
import unittest
import unittest.mock

from python_support import PackageTest, document

import tessel

CLIP = {"mFrameWidth": 160, "mFrameHeight": 90, "mDrawFrameFieldNumber": True, "mNumChannels": 2,
        "mSampleRate": 48000, "mSteadyToneAmplitude": 0.25, "mSteadyToneFrequency": 1000}


class VerifyTest(PackageTest):
    def setUp(self):
        super().setUp()
        self.file = self.path(self.write("clip.tessel", document(**CLIP)))

    def render(self, name, *arguments):
        self.assert_done(self.run_program("render", self.file, "-o", name, "--quiet", *arguments))
        return self.path(name)

    def without_frame(self, movie, frame):
        damaged = self.path("damaged.mkv")
        subprocess.run(["ffmpeg", "-v", "error", "-i", movie, "-vf", f"select='not(eq(n,{frame}))'", "-c:v", "ffv1",
                        "-c:a", "copy", damaged], check=True)
        return damaged


class Verifying(VerifyTest):
    def test_what_the_program_wrote_is_as_expected(self):
        report = tessel.verify(tessel.Clip(self.file), self.render("a.mkv"))
        self.assertTrue(report.ok, report)
        self.assertEqual(report.findings, ())
        self.assertIn("order.missing", report.as_expected)
        self.assertIn("interlaced", report.not_visible["fields.swapped"])
        self.assertEqual(report.data["alignment"]["matched"], 50)

    def test_a_fault_is_named(self):
        report = tessel.verify(self.file, self.without_frame(self.render("a.mkv"), 30))
        self.assertFalse(report.ok)
        self.assertEqual([finding.id for finding in report.findings], ["order.missing"])
        self.assertEqual(report.findings[0].data["frames"], [{"first": 30, "last": 30}])
        self.assertIn("order.missing: ", str(report))

    def test_options_reach_the_program(self):
        movie = self.without_frame(self.render("a.mkv"), 30)
        self.assertTrue(tessel.verify(self.file, movie, accept=["order.missing"]).ok)
        self.assertEqual(tessel.verify(self.file, movie, only=["container.size"]).as_expected, ("container.size",))
        # One picture lasts 80 ms where all others last 40 ms.
        loose = {"container.constant-rate": 50}
        self.assertFalse(tessel.verify(self.file, movie, only=loose).ok)
        self.assertTrue(tessel.verify(self.file, movie, only=loose, tolerances=loose, strict=True,
                                      fidelity_all=True).ok)

    def test_a_clip_in_memory_is_compared_too(self):
        self.assertTrue(tessel.verify(tessel.Clip.from_document(document(**CLIP)), self.render("a.mkv")).ok)

    def test_names_that_begin_with_a_dash_are_names(self):
        self.render("a.mkv")
        os.rename(self.path("a.mkv"), self.path("-a.mkv"))
        before = os.getcwd()
        self.addCleanup(os.chdir, before)
        os.chdir(self.folder)
        self.assertTrue(tessel.verify("clip.tessel", "-a.mkv").ok)

    def test_what_cannot_be_compared_raises_one_exception(self):
        self.write("broken.tessel", "{")
        movie = self.render("a.mkv", "--frames", "2")
        for says, mistake in (("missing.mov", lambda: tessel.verify(self.file, self.path("missing.mov"))),
                              ("broken.tessel", lambda: tessel.verify(self.path("broken.tessel"), movie)),
                              ("order.mising", lambda: tessel.verify(self.file, movie, accept=["order.mising"]))):
            with self.subTest(says=says):
                with self.assertRaises(tessel.VerifyError) as caught:
                    mistake()
                self.assertIn(says, str(caught.exception))
        with self.assertRaisesRegex(TypeError, r'only=\["order.missing"\]'):
            tessel.verify(self.file, movie, only="order.missing")

    def test_a_missing_program_is_said(self):
        for variables, says in (({"TESSEL": "", "PATH": "/nowhere"}, "install it"),
                                ({"TESSEL": "/nowhere/tessel"}, "/nowhere/tessel: cannot be started")):
            with self.subTest(says=says), unittest.mock.patch.dict(os.environ, variables):
                with self.assertRaisesRegex(tessel.VerifyError, says):
                    tessel.verify(self.file, self.file)


class Asserting(VerifyTest):
    def assert_fails(self, says, movie, **options):
        with self.assertRaises(AssertionError) as caught:
            tessel.assert_same_signal(movie, self.file, **options)
        self.assertIn(says, str(caught.exception))

    def test_the_same_signal_passes_and_gives_the_report(self):
        movie = self.render("a.mkv")
        self.assertTrue(tessel.assert_same_signal(movie, self.file).ok)
        tessel.assert_same_signal(movie, self.file, require=["order.missing", "audio.gain"])
        tessel.assert_same_signal(self.render("sound.wav", "--audio-only"), self.file)

    def test_a_fault_fails(self):
        self.assert_fails("order.missing", self.without_frame(self.render("a.mkv"), 30))

    def test_an_undecided_comparison_fails(self):
        movie = self.render("whole.mp4")
        with open(movie, "rb") as whole, open(self.path("cut.mp4"), "wb") as cut:
            cut.write(whole.read()[:os.path.getsize(movie) // 5])  # an index without pictures
        self.assert_fails("undecided", self.path("cut.mp4"))

    def test_checks_of_the_container_alone_compare_nothing(self):
        self.assert_fails("no picture and no sound was compared", self.render("a.mkv"), only=["container.size"])

    def test_a_required_check_that_the_clip_cannot_show_fails(self):
        movie = self.render("a.mkv")
        self.assert_fails("fields.swapped was not checked; use an interlaced clip", movie, require=["fields.swapped"])
        self.assert_fails("order.mising was not checked", movie, require=["order.mising"])
        self.assert_fails("order.missing was not checked", self.render("sound.wav", "--audio-only"),
                          require=["order.missing"])


if __name__ == "__main__":
    unittest.main()

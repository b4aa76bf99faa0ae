"""The pytest plug-in, in runs of pytest of its own: what passes, and above all what must fail."""

import re
import subprocess
import sys
import textwrap
import unittest

from python_support import SKIPPED, PackageTest, document

CLIP = {"mFrameWidth": 160, "mFrameHeight": 90, "mDrawFrameFieldNumber": True}


class PluginTest(PackageTest):
    def run_pytest(self, test):
        """A run of pytest on a file with this test: "passed", "failed" or "skipped", and what pytest says.

        clip.tessel and a.mkv lie beside the file.
        """
        self.write("clip.tessel", document(**CLIP))
        self.assert_done(self.run_program("render", "clip.tessel", "-o", "a.mkv", "--quiet"))
        self.write("test_it.py", textwrap.dedent(test))
        done = subprocess.run([sys.executable, "-m", "pytest", "-p", "no:cacheprovider", "-rs", "test_it.py"],
                              cwd=self.folder, env=self.settings({"COLUMNS": "250"}), stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False)
        ends = re.findall(r"^=+ 1 (passed|failed|skipped) in .*=$", done.stdout, re.MULTILINE)
        self.assertEqual(len(ends), 1, done.stdout)
        return ends[0], done.stdout

    def assert_fails(self, says, test):
        outcome, said = self.run_pytest(test)
        self.assertEqual(outcome, "failed", said)
        self.assertIn(says, said)


class Asserting(PluginTest):
    def test_the_same_signal_passes(self):
        self.assertEqual(self.run_pytest("""
            def test_it(assert_same_signal):
                assert assert_same_signal("a.mkv", "clip.tessel", require=["order.missing"]).ok
        """)[0], "passed")

    def test_a_fault_fails_and_is_named(self):
        self.assert_fails("geometry.flipped", """
            import subprocess

            def test_it(assert_same_signal):
                subprocess.run(["ffmpeg", "-v", "error", "-i", "a.mkv", "-vf", "hflip", "b.mkv"], check=True)
                assert_same_signal("b.mkv", "clip.tessel")
        """)

    def test_a_test_that_compares_nothing_fails(self):
        self.assert_fails("nothing was compared", """
            import pathlib

            def test_it(assert_same_signal):
                for movie in pathlib.Path("no-such-folder").glob("*.mov"):
                    assert_same_signal(movie, "clip.tessel")
        """)

    def test_a_comparison_of_the_container_alone_fails(self):
        self.assert_fails("no picture and no sound was compared", """
            def test_it(assert_same_signal):
                assert_same_signal("a.mkv", "clip.tessel", only=["container.size"])
        """)

    def test_a_movie_that_is_not_there_fails(self):
        self.assert_fails("nothing.mkv: cannot be read", """
            def test_it(assert_same_signal):
                assert_same_signal("nothing.mkv", "clip.tessel")
        """)

    def test_a_test_that_fails_before_it_compares_keeps_its_own_reason(self):
        self.assert_fails("assert 1 == 2", """
            def test_it(assert_same_signal):
                assert 1 == 2
        """)

    def test_a_test_that_is_skipped_stays_skipped(self):
        outcome, said = self.run_pytest("""
            import pytest

            def test_it(assert_same_signal):
                pytest.skip("not today")
        """)
        self.assertEqual(outcome, "skipped")
        self.assertIn("not today", said)


class Loading(PluginTest):
    def test_runs_that_do_not_use_it_do_not_load_the_package(self):
        self.assertEqual(self.run_pytest("""
            import sys

            def test_it():
                assert "pytest_tessel" in sys.modules
                assert "tessel" not in sys.modules
        """)[0], "passed")


if __name__ == "__main__":
    try:
        import pytest  # noqa: F401
    except ImportError:
        print("skipped: this Python has no pytest")
        sys.exit(SKIPPED)
    unittest.main()

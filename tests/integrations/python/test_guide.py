"""The chapter on Python of docs/integrations.md: its code, run as it stands there."""

import os
import re
import subprocess
import sys
import unittest

from python_support import ROOT, PackageTest, document

import tessel


def chapter():
    with open(os.path.join(ROOT, "docs", "integrations.md"), encoding="utf-8") as file:
        return re.search(r"^## Python\n(.*?)(?=^## |\Z)", file.read(), re.DOTALL | re.MULTILINE).group(1)


class Guide(PackageTest):
    def setUp(self):
        super().setUp()
        self.write("clip.tessel", document(mFrameWidth=128, mFrameHeight=72, mNumChannels=2, mSampleRate=48000))
        self.assert_done(self.run_program("render", "clip.tessel", "-o", "clip.mov", "--quiet"))
        blocks = re.findall(r"^```python\n(.*?)^```$", chapter(), re.DOTALL | re.MULTILINE)
        self.scripts = [block for block in blocks if "def test_" not in block]
        self.tests = [block for block in blocks if "def test_" in block]

    def run_python(self, *arguments):
        path = os.path.dirname(os.environ["TESSEL"]) + os.pathsep + os.environ["PATH"]
        done = subprocess.run([sys.executable, *arguments], cwd=self.folder, env=self.settings({"PATH": path}),
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout

    def test_the_code_runs_from_first_to_last(self):
        self.assertGreater(len(self.scripts), 4)
        self.write("guide.py", "\n".join(self.scripts))
        self.assertEqual(self.run_python("guide.py"), "25 50\n")
        self.assertEqual(tessel.Clip(self.path("film.tessel")).description.pixel_format, "v211")  # of BT.709

    def test_the_test_passes(self):
        self.assertEqual(len(self.tests), 1)
        self.write("test_guide.py", self.tests[0])
        self.assertIn("1 passed", self.run_python("-m", "pytest", "-p", "no:cacheprovider", "test_guide.py"))

    def test_the_table_names_every_layout(self):
        rows = re.findall(r"^\| (`[^|]*) \|", chapter(), re.MULTILINE)
        named = {name for row in rows for name in re.findall(r"`([a-z0-9_]+)`", row)}
        self.assertEqual(set(tessel.LAYOUTS) - named, set())


if __name__ == "__main__":
    unittest.main()

"""The manual pages are whole, and say what --help says.

Variables: TESSEL, and MANUAL: the folder with man1, man5, man7.
"""

import glob
import json
import os
import re
import shutil
import subprocess
import unittest

TESSEL = os.environ["TESSEL"]
MANUAL = os.environ["MANUAL"]
PAGES = sorted(glob.glob(os.path.join(MANUAL, "man*", "*")))


def dump():
    return json.loads(subprocess.run([TESSEL, "help", "--dump-json"], stdout=subprocess.PIPE, check=True).stdout)


def words(text):
    """A text without its line breaks and spacing."""
    return " ".join(text.split())


class Manual(unittest.TestCase):
    def shown(self, name):
        """A page as a reader sees it."""
        page, = (path for path in PAGES if os.path.basename(path) == name)
        # One column so wide that no word is broken; no bold letters.
        done = subprocess.run(["man", "-l", "--no-hyphenation", "--no-justification", page], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, text=True, check=True,
                              env=dict(os.environ, MANWIDTH="1000", MAN_KEEP_FORMATTING="", LC_ALL="C.UTF-8"))
        return words(re.sub(".\b", "", done.stdout))

    def test_every_command_and_topic_has_a_page(self):
        program = dump()
        expected = ["tessel.1", "tessel.5", *(f"tessel-{command['name']}.1" for command in program["commands"]),
                    *(f"tessel-{topic['name']}.7" for topic in program["topics"])]
        self.assertEqual(sorted(map(os.path.basename, PAGES)), sorted(expected))

    @unittest.skipUnless(shutil.which("man") and shutil.which("groff"), "man-db or groff is not installed")
    def test_every_page_formats_without_a_warning(self):
        for page in PAGES:
            done = subprocess.run(["groff", "-man", "-Tutf8", "-Kutf8", "-ww", "-z", page], stderr=subprocess.PIPE,
                                  text=True, check=False)
            self.assertEqual((done.returncode, done.stderr), (0, ""), page)

    @unittest.skipUnless(shutil.which("man") and shutil.which("groff"), "man-db or groff is not installed")
    def test_every_option_stands_on_its_page_with_its_text(self):
        count = 0
        for command in dump()["commands"]:
            page = self.shown(f"tessel-{command['name']}.1")
            for option in [*command["positionals"], *(one for group in command["groups"] for one in group["options"])]:
                count += 1
                for name in option["names"]:
                    self.assertIn(name, page)
                self.assertIn(words(option["text"]), page)
            for example in command["examples"]:
                self.assertIn(words(example["command"]), page)
        self.assertGreater(count, 50)

    @unittest.skipUnless(shutil.which("man") and shutil.which("groff"), "man-db or groff is not installed")
    def test_the_formats_page_has_every_key(self):
        page = self.shown("tessel.5")
        for key in ("mPixelFormat", "mTopGradiantColorEnd", "mIdentifierFormat", "mSwatchCoordinates"):
            self.assertIn(key, page)
        self.assertNotIn("`", page)

    @unittest.skipUnless(shutil.which("man") and shutil.which("groff"), "man-db or groff is not installed")
    def test_no_word_is_hyphenated_because_many_are_typed(self):
        for page in PAGES:
            done = subprocess.run(["man", "-l", page], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=True,
                                  env=dict(os.environ, MANWIDTH="80", LC_ALL="C.UTF-8"))
            broken = [line for line in done.stdout.splitlines() if line.endswith("\N{HYPHEN}")]
            self.assertEqual(broken, [], page)

    @unittest.skipUnless(shutil.which("man") and shutil.which("groff"), "man-db or groff is not installed")
    def test_topics_fit_a_terminal(self):
        for topic in dump()["topics"]:
            page, = (path for path in PAGES if os.path.basename(path) == f"tessel-{topic['name']}.7")
            done = subprocess.run(["man", "-l", page], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=True,
                                  env=dict(os.environ, MANWIDTH="80", LC_ALL="C.UTF-8"))
            lines = re.sub(".\b", "", done.stdout).splitlines()
            self.assertLessEqual(max(map(len, lines)), 80, topic["name"])

    @unittest.skipUnless(shutil.which("lexgrog"), "man-db is not installed")
    def test_apropos_can_list_every_page(self):
        for page in PAGES:
            done = subprocess.run(["lexgrog", page], stdout=subprocess.PIPE, text=True, check=False)
            self.assertIn(os.path.basename(page).rsplit(".", 1)[0] + " - ", done.stdout, page)


if __name__ == "__main__":
    unittest.main()

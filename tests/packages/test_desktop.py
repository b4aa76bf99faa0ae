"""What a desktop learns of documents: their type, icon, application and thumbnails, asked of the desktop's own tools.

Variables: TESSEL.
"""

import configparser
import os
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DESKTOP = os.path.join(ROOT, "packaging", "desktop")
SAMPLE = os.path.join(ROOT, "samples", "short.tessel")


class Desktop(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tessel-desktop-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def run_tool(self, *command):
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False,
                              env=dict(os.environ, XDG_DATA_HOME=self.folder, HOME=self.folder))
        self.assertEqual(done.returncode, 0, done.stdout)
        return done.stdout

    def use_type(self):
        """A person's data folder that has the type, as an installation makes it."""
        packages = os.path.join(self.folder, "mime", "packages")
        os.makedirs(packages)
        shutil.copy(os.path.join(DESKTOP, "tessel.xml"), packages)
        self.run_tool("update-mime-database", os.path.dirname(packages))

    @unittest.skipUnless(shutil.which("update-mime-database") and shutil.which("gio"),
                         "shared-mime-info or gio is not installed")
    def test_a_document_has_a_type_of_its_own_that_is_json_and_no_image(self):
        self.use_type()
        self.assertIn("standard::content-type: application/x-tessel",
                      self.run_tool("gio", "info", "-a", "standard::content-type", SAMPLE))
        with open(os.path.join(self.folder, "mime", "subclasses"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "application/x-tessel application/json\n")
        icons = self.run_tool("gio", "info", "-a", "standard::icon", SAMPLE)
        self.assertIn("application-x-tessel", icons)
        self.assertTrue(os.path.exists(os.path.join(DESKTOP, "application-x-tessel.svg")))

    @unittest.skipUnless(shutil.which("desktop-file-validate"), "desktop-file-utils is not installed")
    def test_the_application_is_valid_and_opens_the_type(self):
        entry = os.path.join(DESKTOP, "tessel.desktop")
        self.assertEqual(self.run_tool("desktop-file-validate", entry), "")
        with open(entry, encoding="utf-8") as file:
            self.assertIn("\nMimeType=application/x-tessel;\n", file.read())

    def test_the_thumbnailers_command_makes_a_picture(self):
        entry = configparser.ConfigParser(interpolation=None)
        entry.read(os.path.join(DESKTOP, "tessel.thumbnailer"))
        entry = entry["Thumbnailer Entry"]
        self.assertEqual(entry["MimeType"], "application/x-tessel;")
        picture = os.path.join(self.folder, "picture.png")
        words = {"%i": SAMPLE, "%o": picture, "%s": "128", "tessel": os.environ["TESSEL"]}
        self.assertEqual(self.run_tool(*(words.get(word, word) for word in entry["Exec"].split())), "")
        with open(picture, "rb") as file:
            self.assertEqual(file.read(8), b"\x89PNG\r\n\x1a\n")


if __name__ == "__main__":
    unittest.main()

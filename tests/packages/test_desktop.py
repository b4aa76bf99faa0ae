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
APPLICATIONS = ("tessel.desktop", "tessel.settings.desktop")
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
        for name in APPLICATIONS:
            entry = os.path.join(DESKTOP, name)
            self.assertEqual(self.run_tool("desktop-file-validate", entry), "")
            with open(entry, encoding="utf-8") as file:
                self.assertIn("\nMimeType=application/x-tessel;\n", file.read())

    @unittest.skipUnless(shutil.which("update-desktop-database") and shutil.which("update-mime-database")
                         and shutil.which("gio"), "desktop-file-utils, shared-mime-info or gio is not installed")
    def test_a_double_click_opens_the_player_and_the_settings_are_the_other_choice(self):
        self.use_type()
        applications = os.path.join(self.folder, "applications")
        os.makedirs(applications)
        for name in APPLICATIONS:
            shutil.copy(os.path.join(DESKTOP, name), applications)
        self.run_tool("update-desktop-database", applications)
        # Desktops leave out applications whose program is not there.
        programs = os.path.join(self.folder, "bin")
        os.makedirs(programs)
        os.symlink(os.path.abspath(os.environ["TESSEL"]), os.path.join(programs, "tessel"))
        answer = self.run_tool("env", "PATH=" + programs + os.pathsep + os.environ["PATH"], "LC_ALL=C", "gio", "mime",
                               "application/x-tessel")
        self.assertRegex(answer.splitlines()[0], "^Default application.*: tessel.desktop$")
        self.assertIn("tessel.settings.desktop", answer)

    def test_the_applications_commands_are_the_programs(self):
        for name, command in (("tessel.desktop", "view"), ("tessel.settings.desktop", "edit")):
            entry = configparser.ConfigParser(interpolation=None)
            entry.optionxform = str  # its keys are capitalised
            entry.read(os.path.join(DESKTOP, name))
            words = entry["Desktop Entry"]["Exec"].split()
            self.assertEqual(words[:2], ["tessel", command])
            self.run_tool(os.environ["TESSEL"], command, "--help")

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

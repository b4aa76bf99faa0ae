"""What the program loads: FFmpeg's libraries for commands that handle movies, and for no other."""

import os
import re
import shutil
import subprocess
import unittest

from program import PROGRAM, ProgramTest, document

MEDIA = re.compile(r"^lib(?:av|sw|x26|aom|vpx|dav1d|Qt)")


class Start(ProgramTest):
    def loaded(self, *arguments):
        """The names of the libraries that were initialised, as the dynamic linker says."""
        report = self.path("linker")
        answer = self.run_program(*arguments, environment={"LD_DEBUG": "files", "LD_DEBUG_OUTPUT": report})
        self.assertEqual(answer.code, 0, answer.err)
        text = ""
        for name in os.listdir(self.folder):
            if name.startswith("linker."):
                with open(self.path(name), encoding="utf-8", errors="replace") as file:
                    text += file.read()
                os.remove(self.path(name))
        names = {os.path.basename(path) for path in re.findall(r"calling init: (\S+)", text)}
        if not names:
            self.skipTest("the dynamic linker does not say what it loads")
        return names

    def test_commands_without_movies_load_no_media_library(self):
        self.write("clip.tessel", document())
        for arguments in (["--version"], ["--help"], ["render", "--help"], ["view", "--help"], ["help", "codecs"], ["list", "codecs"],
                          ["info", "clip.tessel"], ["new", "new.tessel"], ["set", "clip.tessel", "rate=50"],
                          ["schema"], ["bench", "clip.tessel", "--seconds", "0.01"]):
            with self.subTest(arguments=arguments):
                names = self.loaded(*arguments)
                self.assertEqual([name for name in names if MEDIA.match(name)], [])
                self.assertLess(len(names), 20, names)

    def test_commands_with_movies_load_them(self):
        self.write("clip.tessel", document())
        for arguments in (["render", "clip.tessel", "-o", "x.mkv", "--quiet"], ["verify", "clip.tessel", "x.mkv"],
                          ["damage", "clip.tessel", "--fault", "order.missing=3", "-o", "y.mkv"]):
            self.assertTrue(any(name.startswith("libavcodec") for name in self.loaded(*arguments)), arguments)

    def test_wrong_command_lines_of_movie_commands_are_refused_before_anything_is_loaded(self):
        report = self.path("linker")
        answer = self.run_program("render", "clip.tessel", "--nonsense",
                                  environment={"LD_DEBUG": "files", "LD_DEBUG_OUTPUT": report})
        self.assertEqual(answer.code, 2)
        reports = os.listdir(self.folder)
        if not reports:
            self.skipTest("the dynamic linker does not say what it loads")
        for name in reports:
            with open(self.path(name), encoding="utf-8", errors="replace") as file:
                self.assertNotIn("libavcodec", file.read())

    def test_the_other_part_is_found_through_links_and_told_where_it_is_missing(self):
        self.write("clip.tessel", document())
        os.symlink(PROGRAM, self.path("linked"))
        done = subprocess.run([self.path("linked"), "render", "clip.tessel", "-o", "x.mkv", "--quiet"],
                              cwd=self.folder, capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        os.mkdir(self.path("bin"))
        shutil.copy(PROGRAM, self.path("bin/tessel"))
        libraries = os.path.join(os.path.dirname(os.path.dirname(PROGRAM)), "lib")
        done = subprocess.run([self.path("bin/tessel"), "render", "clip.tessel", "-o", "y.mkv"], cwd=self.folder,
                              env={**os.environ, "LD_LIBRARY_PATH": libraries}, capture_output=True, check=False)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertRegex(done.stderr.decode(), r"^tessel: .*tessel-movies: the part of tessel that handles movies "
                                               r"cannot be started: [^\n]*\n$")


if __name__ == "__main__":
    unittest.main()

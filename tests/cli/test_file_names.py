"""Unusual file names, valid and invalid ones."""

import json
import os
import unittest

from program import ProgramTest, document

GOOD_NAMES = [
    "two words.tessel",
    " leading space.tessel",
    "trailing space .tessel",
    "quote ' and \" both.tessel",
    "dollar $HOME `id`.tessel",
    "100% {0} {} %s.tessel",
    "back\\slash.tessel",
    "star*?[a].tessel",
    "übung_日本語_Ω.tessel",
    "e\u0301 combining.tessel",
    "emoji \U0001F3AC.tessel",
    "many.dots.in.it.tessel",
    "UPPER.TESSEL",
    "x" * 240 + ".tessel",
]


class FileNames(ProgramTest):
    def test_good_names_open_and_are_reported_as_they_are(self):
        for name in GOOD_NAMES:
            with self.subTest(name=name):
                self.write(name, document())
                answer = self.run_program("info", name, "--json")
                self.assert_done(answer)
                self.assertEqual(json.loads(answer.out)["file"], name)

    def test_good_names_open_below_odd_folders(self):
        os.makedirs(self.path("a b/ü/-c"))
        name = self.write("a b/ü/-c/clip.tessel", document())
        self.assert_done(self.run_program("info", name))
        self.assert_done(self.run_program("info", os.path.join("a b", "..", name)))
        self.assert_done(self.run_program("info", self.path(name)))

    def test_a_leading_dash_needs_the_usual_help(self):
        self.write("-dash.tessel", document())
        self.assert_done(self.run_program("info", "./-dash.tessel"))
        self.assert_done(self.run_program("info", "--", "-dash.tessel"))
        self.assert_failed(self.run_program("info", "-dash.tessel"), 2)

    def test_a_name_that_is_not_utf8_is_refused_before_anything_loads(self):
        name = b"b\xffd.tessel"
        self.write(name, document())
        self.assert_failed(self.run_program(b"info", name), 1, "b\ufffdd.tessel", "not UTF-8")
        # The name is refused before the plug-in is looked for.
        self.assert_failed(self.run_program("--plugin", "gone.so", "info", name), 1, "not UTF-8")

    def test_a_folder_that_is_not_utf8_does_not_matter_to_a_name_below_it(self):
        os.mkdir(self.path(b"f\xff"))
        with open(self.path(b"f\xff/clip.tessel"), "w", encoding="utf-8") as file:
            json.dump(document(), file)
        answer = self.run_program("info", "clip.tessel", cwd=self.path(b"f\xff"))
        self.assert_done(answer)

    def test_control_characters_do_not_break_the_line(self):
        self.assert_failed(self.run_program("info", "a\nb\x1b[31m.tessel"), 1, "a\\nb\\x1b[31m.tessel: no such file")

    def test_a_name_that_is_too_long(self):
        self.assert_failed(self.run_program("info", "x" * 5000 + ".tessel"), 1, "cannot be read")

    def test_an_empty_name(self):
        self.assert_failed(self.run_program("info", ""), 2, "CLIP: must not be empty")


if __name__ == "__main__":
    unittest.main()

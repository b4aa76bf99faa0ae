"""The commands that documents show, typed as they stand there.

Blocks of shell are run whole, one after the other, in one folder for each document; lines in tables one by one. Players
that need a screen are replaced by a program that reads to the end. README.md has a test of its own.
"""

import glob
import os
import re
import unittest

from program import HAS_PLAYER, TICKS_PER_SECOND, ProgramTest, document

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PLAYERS = ("ffplay", "mpv")
# The guide is run by the test of the installed SDK; the report names what was done to other programs, where they are;
# the cluster's commands are run by tests/cluster.
ELSEWHERE = {"write-an-importer.md", "field-report.md", "cluster.md"}
# What a person does between two commands; the stand-in changes nothing.
BY_HAND = {"# In the editor: import clip.mov, export the timeline as export.mov.": "cp clip.mov export.mov"}
# A word in capitals, dots or brackets stands for something.
PLACEHOLDER = re.compile(r"\b[A-Z]{2,}\b|\.\.\.|…|\[|=N\b|\s[A-Z]\b")


def documents():
    for path in sorted(glob.glob(os.path.join(ROOT, "docs", "*.md"))):
        # Without the player its document shows nothing that could run.
        is_of_player = os.path.basename(path) == "view.md"
        if os.path.basename(path) not in ELSEWHERE and (HAS_PLAYER or not is_of_player):
            with open(path, encoding="utf-8") as file:
                yield os.path.basename(path), file.read()


def blocks(text):
    return re.findall(r"^```sh\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)


def table_commands(text):
    """Whole command lines in the cells of tables."""
    for line in re.findall(r"^\|.*\|$", text, re.MULTILINE):
        for command in re.findall(r"`(tessel [a-z]+ [^`]*)`", line):
            if not PLACEHOLDER.search(command):
                yield command.replace("\\|", "|")


class DocumentedCommands(ProgramTest):
    def prepare(self, folder):
        os.makedirs(folder)
        os.symlink(os.path.join(ROOT, "samples"), os.path.join(folder, "samples"))
        # Small, so that it renders at once; long enough for frames that documents name.
        self.write(os.path.join(folder, "clip.tessel"),
                   document(mFrameWidth=128, mFrameHeight=72, mVideoDuration={"ticks": 5 * TICKS_PER_SECOND}))
        players = os.path.join(folder, ".players")
        os.mkdir(players)
        for name in PLAYERS:
            path = os.path.join(players, name)
            with open(path, "w", encoding="utf-8") as file:
                file.write("#!/bin/sh\nbytes=$(wc -c)\ntest \"$bytes\" -gt 1000\n")
            os.chmod(path, 0o755)

    def play(self, name, script):
        """What a person sees who types the lines; the first that fails ends it."""
        folder = self.path(name)
        if not os.path.exists(folder):
            self.prepare(folder)
        for line, stand_in in BY_HAND.items():
            script = script.replace(line, stand_in)
        answer = self.run_shell(f"set -e; PATH='{folder}/.players':$PATH\n{script}", cwd=folder,
                                environment={"KESTREL_UI": "scripted"}, timeout=300)
        self.assertEqual(answer.code, 0, f"{name}:\n{script}\n{answer.err}")
        return answer

    def test_every_block_of_every_document_runs(self):
        count = 0
        for name, text in documents():
            for block in blocks(text):
                count += 1
                with self.subTest(document=name, block=block):
                    self.play(name, block)
        self.assertGreater(count, 5)

    def test_every_command_of_every_table_runs(self):
        count = 0
        for name, text in documents():
            for command in table_commands(text):
                count += 1
                with self.subTest(document=name, command=command):
                    self.play(name, command)
        self.assertGreater(count, 5)


if __name__ == "__main__":
    unittest.main()

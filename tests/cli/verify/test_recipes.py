"""The recipes of docs/verify.md, run as they stand there."""

import os
import re
import stat
import subprocess

from verify_support import VerifyTest, main

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..")
# What people do by hand between two commands of a recipe, and what does nothing to the signal in its place.
BY_HAND = {"# In the editor: import clip.mov, export the timeline as export.mov.":
           "ffmpeg -v error -i clip.mov -c copy export.mov"}


def recipes():
    """The title and the commands of each."""
    with open(os.path.join(ROOT, "docs", "verify.md"), encoding="utf-8") as file:
        section = file.read().split("\n## Recipes\n", 1)[1].split("\n## ", 1)[0]
    return re.findall(r"\*\*(.*?)\.\*\*.*?```sh\n(.*?)```", section, re.DOTALL)


class Recipes(VerifyTest):
    def test_there_are_three(self):
        self.assertEqual([title for title, _ in recipes()],
                         ["Check an encoder's preset", "Check an editor's export", "A nightly job"])

    def test_each_ends_as_expected(self):
        os.symlink(os.path.abspath(os.path.join(ROOT, "samples")), self.path("samples"))
        program = self.path("tessel")
        with open(program, "w", encoding="utf-8") as file:
            file.write("#!/bin/sh\nexec " + " ".join(f"'{word}'" for word in self.tessel) + ' "$@"\n')
        os.chmod(program, os.stat(program).st_mode | stat.S_IXUSR)
        for title, commands in recipes():
            with self.subTest(title):
                for comment, command in BY_HAND.items():
                    commands = commands.replace(comment, command)
                done = subprocess.run(["bash", "-ec", commands], cwd=self.folder, capture_output=True, check=False,
                                      stdin=subprocess.DEVNULL,
                                      env={**os.environ, "PATH": self.folder + os.pathsep + os.environ["PATH"]})
                self.assertEqual(done.returncode, 0, done.stdout.decode() + done.stderr.decode())


main()

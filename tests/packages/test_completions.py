"""What shells complete of the program's command line, asked of the shells themselves.

Variables: COMPLETIONS: the folder with bash, zsh and fish.
"""

import os
import pty
import select
import shutil
import subprocess
import tempfile
import time
import unittest

FOLDER = os.environ["COMPLETIONS"]


class Completion:
    """The claims that hold in every shell."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tessel-completions-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        for name in ("one.tessel", "two words.tessel", "movie.mov"):
            open(os.path.join(self.folder, name), "w", encoding="utf-8").close()
        os.mkdir(os.path.join(self.folder, "subfolder"))

    def test_commands(self):
        self.assertEqual(self.complete("tessel ren"), {"render"})
        self.assertEqual(self.complete("tessel ver"), {"verify"})

    def test_options_of_a_command(self):
        self.assertEqual(self.complete("tessel render --video-c"), {"--video-codec"})
        self.assertEqual(self.complete("tessel info --js"), {"--json"})
        self.assertEqual(self.complete("tessel info --video-c"), set())

    def test_options_of_every_command(self):
        self.assertEqual(self.complete("tessel --plug"), {"--plugin"})
        self.assertEqual(self.complete("tessel render --plug"), {"--plugin"})

    def test_formats_and_codecs(self):
        self.assertEqual(self.complete("tessel render --format mo"), {"mov"})
        self.assertEqual(self.complete("tessel render --video-codec pro"), {"prores"})
        self.assertEqual(self.complete("tessel render one.tessel --audio-codec fl"), {"flac"})

    def test_keys_and_settings(self):
        self.assertEqual(self.complete("tessel set one.tessel durat"), {"duration="})
        self.assertEqual(self.complete("tessel set one.tessel mSteadyToneA"), {"mSteadyToneAmplitude="})
        self.assertEqual(self.complete("tessel new out.tessel --set mNumC"), {"mNumChannels="})

    def test_subjects_of_lists(self):
        self.assertEqual(self.complete("tessel list pixel-f"), {"pixel-formats"})

    def test_a_clip_is_a_document(self):
        self.assertEqual(self.complete("tessel info on"), {"one.tessel"})
        self.assertEqual(self.complete("tessel info mov"), set())
        self.assertEqual(self.complete("tessel render sub"), {"subfolder/"})

    def test_a_movie_is_any_file(self):
        self.assertEqual(self.complete("tessel verify one.tessel mov"), {"movie.mov"})


@unittest.skipUnless(shutil.which("bash"), "bash is not installed")
class Bash(Completion, unittest.TestCase):
    def complete(self, line):
        # As bash splits a line into words: the last may be empty.
        script = r"""
            source "$1"; shift
            COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
            compopt() { :; }
            _tessel tessel "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD-1]}"
            printf '%s\n' "${COMPREPLY[@]}"
        """
        done = subprocess.run(["bash", "--norc", "-c", script, "bash", os.path.join(FOLDER, "bash", "tessel"), *line.split(" ")],
                              cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=True)
        self.assertEqual(done.stderr, "")
        # bash itself puts the slash behind a folder.
        return {name + "/" * os.path.isdir(os.path.join(self.folder, name))
                for name in done.stdout.splitlines() if name}

    def test_a_value_behind_an_equals_sign(self):
        self.assertEqual(self.complete("tessel render --format = mo"), {"mov"})

    def test_a_name_with_a_space_is_one_name(self):
        self.assertEqual(self.complete("tessel info two"), {"two words.tessel"})


@unittest.skipUnless(shutil.which("fish"), "fish is not installed")
class Fish(Completion, unittest.TestCase):
    def complete(self, line):
        done = subprocess.run(["fish", "--no-config", "-c", "source $argv[1]; complete -C $argv[2]",
                               os.path.join(FOLDER, "fish", "tessel.fish"), line], cwd=self.folder,
                              env=dict(os.environ, HOME=self.folder, XDG_CONFIG_HOME=self.folder),
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=True)
        return {row.split("\t")[0] for row in done.stdout.splitlines()}


@unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
class Zsh(Completion, unittest.TestCase):
    """A shell at a terminal: Tab is pressed, and the line is read that comes of it."""

    def setUp(self):
        super().setUp()
        self.answer = os.path.join(self.folder, "..answer")
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(self.folder)
            os.environ.update(HOME=self.folder, ZDOTDIR=self.folder, TERM="dumb", PS1="ready> ")
            os.execlp("zsh", "zsh", "-f", "-i")
        self.addCleanup(self.end)
        self.type(f"fpath=({shell_word(os.path.join(FOLDER, 'zsh'))} $fpath)\n"
                  "autoload -Uz compinit; compinit -u -D\n"
                  "unsetopt beep list_beep; setopt no_auto_menu\n"
                  f"tell() {{ print -r -- \"$BUFFER\" >| {shell_word(self.answer)}; zle kill-whole-line }}\n"
                  "zle -N tell; bindkey '^X' tell; bindkey '^I' complete-word\n"
                  f"print started >| {shell_word(self.answer)}\n")
        self.assertEqual(self.wait(), "started")

    def end(self):
        os.close(self.terminal)
        os.kill(self.process, 9)
        os.waitpid(self.process, 0)

    def type(self, text):
        os.write(self.terminal, text.encode())

    def wait(self):
        end = time.monotonic() + 60
        while time.monotonic() < end:
            # What the shell shows is of no interest, but must be taken.
            if select.select([self.terminal], [], [], 0.05)[0]:
                os.read(self.terminal, 65536)
            if os.path.exists(self.answer) and os.path.getsize(self.answer):
                with open(self.answer, encoding="utf-8") as file:
                    text = file.read()
                if text.endswith("\n"):
                    os.remove(self.answer)
                    return text.rstrip("\n")
        raise AssertionError("zsh does not answer")

    def complete(self, line):
        self.type(line + "\t\x18")
        made = self.wait()
        # What is unique is written out, with a space behind it; else the line stays as it is.
        word, typed = made.rstrip(" ").split(" ")[-1], line.split(" ")[-1]
        return set() if made == line or word == typed else {word.rstrip("=") if typed.startswith("-") else word}


def shell_word(text):
    return "'" + text.replace("'", "'\\''") + "'"


if __name__ == "__main__":
    unittest.main()

"""Malformed values: every option of every command refuses them as part of the command line, before any work.

The options are those that the program's help lists, so that a new one without a row below fails here."""

import json
import os
import unittest

from program import HAS_PLAYER, ProgramTest, document

# Malformed values of each option, and what the message says would be right. A row "COMMAND OPTION" goes before one that
# holds for the option in every command.
MALFORMED = {
    "--timecode": (("foo", "10:00:00:00"), ("1:00:00:00", "10:00:00;00"), ("24:00:00:00", "23"), ("10:60:00:00", "59"),
                   ("10:00:60:00", "59")),
    "--format": (("foo", "mkv, mov"),),
    "--video-codec": (("foo", "ffv1, raw"), ("prores_ks", "did you mean 'prores'?")),
    "--audio-codec": (("foo", "pcm16, pcm24"), ("s24", "did you mean 'pcm24'?")),
    "--quality": (("foo", "a whole number from 0 on"), ("-1", "a whole number from 0 on"), ("1.5", "a whole number"),
                  ("99999999999999999999", "a whole number from 0 to 9223372036854775807")),
    "--from": (("foo", "a whole number from 0 on"), ("-1", "a whole number from 0 on")),
    "--to": (("foo", "a whole number from 0 on"), ("0x10", "a whole number from 0 on")),
    "--frames": (("foo", "a whole number from"), ("-1", "a whole number from"), ("10f", "a whole number from")),
    "--threads": (("foo", "a whole number from 1 on"), ("0", "a whole number from 1 on"),
                  ("1000000", "a whole number from 1 to 1024"), ("99999999999", "a whole number from 1 to 1024")),
    "--part": (("foo", "K/N"), ("0/2", "from 1 to N"), ("3/2", "from 1 to N"), ("1/", "K/N")),
    "--seconds": (("foo", "a number of seconds from"), ("nan", "a number of seconds from"), ("-1", "a number of seconds"),
                  ("1e9", "3600")),
    "--play-for": (("foo", "a number of seconds from"), ("-1", "a number of seconds from 0 to 86400")),
    "--fault": (("foo", "tessel damage --list"), ("=1", "tessel damage --list"), ("color.gain=x", "FACTOR")),
    "--only": (("foo", "tessel verify --list"),),
    "--accept": (("foo", "tessel verify --list"),),
    "--tolerance": (("foo", "NAME=VALUE"), ("foo=1", "tessel verify --list"), ("color.gain=x", "a number"),
                    ("color.gain=-1", "0 or more"), ("color.gain=nan", "a number")),
    "--fidelity": (("foo", "some, all"),),
    "--theme": (("foo", "dark, light"),),
    "--frame": (("foo", "a number, a timecode"), ("24:00:00:00", "23")),
    "--press": (("NoSuchKey", "Shift+Right"),),
    "view --size": (("foo", "1280x720"), ("1280", "1280x720"), ("1280x720x", "1280x720"), ("1x1", "320")),
    "--size": (("foo", "1920x1080"), ("0x0", "1920x1080"), ("1920", "1920x1080"), ("99999999999x1", "1920x1080")),
    "--rate": (("foo", "29.97"), ("0", "29.97"), ("25/0", "29.97")),
    "--par": (("foo", "10/11"), ("0/0", "10/11")),
    "--template": (("foo", "hd, hd-v210"),),
    "--set": (("foo", "KEY=VALUE"), ("=1", "KEY=VALUE"), ("foo=1", "tessel schema"), ("mFrameWidth=x", "an integer")),
    "--pixel-aspect": (("foo", "10/11"), ("0/0", "10/11")),
    "--fields": (("foo", "progressive, upper, lower"),),
    "--color-space": (("foo", "tessel list color-spaces"),),
    "--pixel-format": (("foo", "tessel list pixel-formats"),),
    "--picture": (("foo", "fields, gradient, swatches"),),
    "--colors": (("foo", "#ff8000"), ("red/foo", "#ff8000")),
    "--duration": (("foo", "250f"), ("0f", "250f"), ("-5s", "250f")),
    "--tone": (("foo", "1000:-18"), ("1000:x", "1000:-18")),
    "--ident": (("foo", "blits"),),
    "--channels": (("foo", "mono, stereo or 5.1"), ("0", "mono, stereo or 5.1")),
    "--sample-rate": (("foo", "a number greater than 0"), ("0", "a number greater than 0")),
    "list SUBJECT": (("foo", "pixel-formats, frame-rates"),),
    "help TOPIC": (("foo", "documents, codecs, colors"),),
    "set KEY=VALUE": (("foo", "KEY=VALUE"), ("size=foo", "1920x1080"), ("foo=1", "size, pixel-aspect")),
}

# Any text may be the name of a file: whether it is there, or can be written, is found out by the work (exit code 1).
FILES = {"--plugin", "--output", "--swatches", "--hash", "--verify", "--truth", "--script", "--against", "--screenshot",
         "--junit", "--html", "--visible", "new --from", "OUT", "CLIP", "PART", "MOVIE"}

# What a command needs beside the option, so that nothing else is wrong with the command line.
REST = {
    "new": ("made.tessel",), "info": ("clip.tessel",), "set": ("clip.tessel",), "list": (),
    "render": ("clip.tessel", "--output", "made.mkv"), "join": ("clip.tessel", "part.mkv", "--output", "made.mkv"),
    "bench": ("clip.tessel",), "damage": ("clip.tessel", "--fault", "color.gain", "--output", "made.mkv"),
    "edit": ("--output", "made.tessel", "--script", "accept.script"), "view": ("clip.tessel", "--screenshot", "made.png"),
    "verify": ("clip.tessel", "movie.mkv"), "schema": (), "help": (),
}


def name_of(option):
    return option["names"][-1]


def row_of(table, command, option):
    """The option's key in a table; None where it is in none."""
    return next((key for key in (f"{command} {name_of(option)}", name_of(option)) if key in table), None)


class MalformedValues(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("clip.tessel", document())
        self.write("accept.script", "accept\n")
        self.write("movie.mkv", "not read")
        self.write("part.mkv", "not read")

    def files(self):
        return {name: os.stat(self.path(name)).st_mtime_ns for name in os.listdir(self.folder)}

    def commands(self):
        """Each command's name with its options and with its arguments."""
        answer = self.run_program("help", "--dump-json")
        self.assert_done(answer)
        dump = json.loads(answer.out)
        shared = [option for group in dump["groups"] for option in group["options"]]
        for command in dump["commands"]:
            own = [option for group in command["groups"] for option in group["options"]]
            yield command["name"], own + shared, command["positionals"]

    def refuse(self, command, arguments, *says):
        """The command with more arguments is a wrong command line, and leaves every file as it was."""
        rest = list(REST[command])
        if arguments[0] in rest:  # an option that the rest gives too
            at = rest.index(arguments[0])
            del rest[at:at + 2]
        before = self.files()
        with self.subTest(command=command, arguments=arguments):
            answer = self.run_program(command, *rest, *arguments, environment={"QT_QPA_PLATFORM": "offscreen"})
            self.assert_failed(answer, 2, *says)
            self.assertEqual(self.files(), before)

    def test_every_option_and_argument_has_a_row(self):
        used = set()
        for command, options, arguments in self.commands():
            self.assertIn(command, REST)
            for option in [*(option for option in options if option["value"]), *arguments]:
                row = row_of(MALFORMED.keys() | FILES, command, option)
                self.assertIsNotNone(row, f"{command} {name_of(option)}: give it malformed values here, or name it as a file")
                used.add(row)
        self.assertEqual(used, set(MALFORMED) | FILES, "rows of options that there are no longer")

    def test_a_malformed_value_is_named_with_its_option_and_with_what_would_be_right(self):
        for command, options, arguments in self.commands():
            if command == "view" and not HAS_PLAYER:
                continue
            for option in options:
                row = row_of(MALFORMED.keys() | FILES, command, option)
                for value, right in MALFORMED.get(row, ()):
                    self.refuse(command, (name_of(option), value), name_of(option), right)
            for argument in arguments:
                for value, right in MALFORMED.get(row_of(MALFORMED, command, argument), ()):
                    self.refuse(command, (value,), value.split("=")[0], right)

    def test_every_option_that_takes_words_refuses_others(self):
        for command, options, arguments in self.commands():
            for option in [*options, *arguments]:
                if option["choices"]:
                    self.assertIsNotNone(row_of(MALFORMED, command, option), name_of(option))

    def test_an_option_without_its_value_and_one_with_an_empty_value_are_refused(self):
        for command, options, _ in self.commands():
            for option in options:
                if option["value"]:
                    self.refuse(command, (name_of(option),), name_of(option), "needs a value")
                    self.refuse(command, (name_of(option), ""), name_of(option), ": must ")

    def test_a_flag_with_a_value_is_refused(self):
        for command, options, _ in self.commands():
            for option in options:
                if not option["value"] and name_of(option) != "--help":  # prints the page, whatever stands behind
                    self.refuse(command, (f"{name_of(option)}=foo",), name_of(option), "takes no value")

    def test_an_option_for_one_value_is_refused_a_second_time(self):
        for command, options, _ in self.commands():
            for option in options:
                if option["value"] and not option["several"]:
                    self.refuse(command, (name_of(option), "1", name_of(option), "1"), name_of(option))


if __name__ == "__main__":
    unittest.main()

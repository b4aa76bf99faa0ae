"""Help: pages that fit the terminal, the same text as data, and guesses at what was meant."""

import fcntl
import json
import os
import pty
import struct
import subprocess
import termios
import unittest

from program import PROGRAM, ProgramTest, document


class Help(ProgramTest):
    def dump(self):
        answer = self.run_program("help", "--dump-json")
        self.assert_done(answer)
        return json.loads(answer.out)

    def page(self, *arguments, columns=80):
        answer = self.run_program(*arguments, environment={"COLUMNS": str(columns)})
        self.assert_done(answer)
        return answer.out

    def test_every_command_has_a_page_with_all_its_options_and_examples(self):
        for command in self.dump()["commands"]:
            with self.subTest(command=command["name"]):
                page = self.page(command["name"], "--help")
                self.assertEqual(page, self.page("help", command["name"]))
                self.assertTrue(page.startswith("Usage: " + command["usage"].split(" [")[0]), page)
                self.assertIn(command["summary"], page)
                for group in command["groups"]:
                    self.assertIn("\n" + group["name"] + ":\n", page)
                    for option in group["options"]:
                        self.assertIn("\n  " + ", ".join(option["names"]), page)
                for positional in command["positionals"]:
                    self.assertIn("\n  " + positional["names"][0], page)
                self.assertGreater(len(command["examples"]), 0)
                last = command["examples"][-1]
                self.assertTrue(page.rstrip().endswith(last["text"]), page)
                for example in command["examples"]:
                    self.assertIn("\n  " + example["command"] + "\n", page)

    def test_the_dump_has_the_parser_s_own_options(self):
        for command in self.dump()["commands"]:
            for group in command["groups"]:
                for option in group["options"]:
                    with self.subTest(command=command["name"], option=option["names"]):
                        # A flag does not take a value, every other option needs one.
                        name = option["names"][-1]
                        refused = self.run_program(command["name"], f"{name}=" if option["value"] == "" else name)
                        self.assertNotIn("is no option", refused.err)
                        if option["value"]:
                            self.assert_failed(refused, 2, name, "needs a value")

    def test_files_and_words_are_marked_for_completions(self):
        commands = {command["name"]: command for command in self.dump()["commands"]}
        options = {name: option for group in commands["render"]["groups"] for option in group["options"]
                   for name in option["names"]}
        self.assertEqual(commands["render"]["positionals"][0]["file"], "clip")
        self.assertTrue(commands["render"]["positionals"][0]["several"])
        self.assertEqual(options["--output"]["file"], "any")
        self.assertIn("mkv", options["--format"]["choices"])
        self.assertIn("prores", options["--video-codec"]["choices"])
        self.assertEqual(options["--dry-run"]["value"], "")

    def test_the_program_s_page_lists_commands_and_topics(self):
        dump = self.dump()
        page = self.page("--help")
        self.assertEqual(page, self.page("help"))
        for command in dump["commands"]:
            self.assertIn("\n  " + command["name"] + " ", page)
        for topic in dump["topics"]:
            self.assertIn("\n  help " + topic["name"] + " ", page)
        self.assertEqual([topic["name"] for topic in dump["topics"]], ["documents", "codecs", "colors"])

    def test_topics_are_pages_and_colours_is_colors(self):
        for topic in self.dump()["topics"]:
            page = self.page("help", topic["name"])
            self.assertTrue(page.startswith(topic["summary"]), page)
        self.assertEqual(self.page("help", "colours"), self.page("help", "colors"))
        self.assertIn("ffv1", self.page("help", "codecs"))
        self.assert_failed(self.run_program("help", "documnets"), 2, "no help on 'documnets'",
                           "did you mean 'documents'?")

    def test_topics_fit_the_terminal_too(self):
        for columns in (40, 80, 100):
            for topic in self.dump()["topics"]:
                page = self.page("help", topic["name"], columns=columns)
                self.assertLessEqual(max(map(len, page.splitlines())), columns, topic["name"])
                self.assertEqual(page.split(), (topic["summary"] + "\n" + topic["text"]).split())
        # What does not fit of a list goes on below the list.
        self.assertIn("\n  mov    ffv1, raw, v210, v408, prores, dnxhr,\n         mjpeg,",
                      self.page("help", "codecs", columns=50))

    def test_the_documents_page_names_the_commands_that_make_and_change_documents(self):
        page = self.page("help", "documents")
        for command in ("new", "info", "set", "edit", "list", "schema"):
            self.assertIn("\n  tessel " + command + " ", page)

    def test_pages_are_as_wide_as_the_terminal(self):
        for columns in (60, 100):
            widths = []
            for command in self.dump()["commands"]:
                examples = {"  " + example["command"] for example in command["examples"]}
                lines = self.page(command["name"], "--help", columns=columns).splitlines()
                widths += [len(line) for line in lines if line not in examples]
            self.assertLessEqual(max(widths), columns)
            self.assertGreater(max(widths), columns - 10)

    def test_a_terminal_s_own_width_counts_before_the_variable(self):
        controller, terminal = pty.openpty()
        fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 50, 0, 0))
        environment = dict(os.environ, COLUMNS="100")
        running = subprocess.Popen([PROGRAM, "info", "--help"], stdout=terminal, env=environment)
        os.close(terminal)
        text = b""
        try:
            while piece := os.read(controller, 4096):
                text += piece
        except OSError:  # the terminal's end on Linux
            pass
        os.close(controller)
        self.assertEqual(running.wait(), 0)
        lines = [line for line in text.decode().splitlines() if "tessel info" not in line]
        self.assertLessEqual(max(map(len, lines)), 50)
        self.assertGreater(max(map(len, lines)), 40)

    def test_near_misses_are_suggested(self):
        clip = self.write("clip.tessel", document())
        for arguments, says in ((["rendor"], "did you mean 'render'?"),
                                (["inf", clip], "did you mean 'info'?"),
                                (["render", clip, "--formt", "mov"], "did you mean '--format'?"),
                                (["info", clip, "--jsn"], "did you mean '--json'?"),
                                (["info", clip, "--plugn=x"], "did you mean '--plugin'?"),
                                (["render", clip, "-o", "x.mov", "--format", "mvo"], "did you mean 'mov'?"),
                                (["render", clip, "-o", "x.mov", "--video-codec", "h246"], "did you mean 'h264'?"),
                                (["render", clip, "-o", "x.mov", "--audio-codec", "pcm25"], "did you mean 'pcm24'?"),
                                (["render", clip, "-o", "x.mvk"], "did you mean 'mkv'?"),
                                (["render", clip, "--format", "nulll"], "did you mean 'null'?"),
                                (["verify", clip, "x.mov", "--only", "color.gian"], "did you mean 'color.gain'?"),
                                (["edit", clip, "--theme", "drak"], "did you mean 'dark'?")):
            with self.subTest(arguments=arguments):
                self.assert_failed(self.run_program(*arguments), 2, says)

    def test_other_programs_names_of_codecs_are_known(self):
        clip = self.write("clip.tessel", document())
        for name, codec in (("h265", "hevc"), ("H265", "hevc"), ("libx264", "h264"), ("avc", "h264"),
                            ("prores_ks", "prores"), ("dnxhd", "dnxhr"), ("mpeg2video", "mpeg2")):
            answer = self.run_program("render", clip, "-o", "x.mkv", "--video-codec", name)
            self.assert_failed(answer, 2, f"did you mean '{codec}'?")
        for name, codec in (("pcm_s24le", "pcm24"), ("s16", "pcm16"), ("pcm_f32le", "pcmfloat"), ("libopus", "opus")):
            answer = self.run_program("render", clip, "-o", "x.mkv", "--audio-codec", name)
            self.assert_failed(answer, 2, f"did you mean '{codec}'?")

    def test_nothing_is_suggested_for_what_is_like_nothing(self):
        for arguments in (["nonsense"], ["info", "a.tessel", "--nonsense"]):
            answer = self.run_program(*arguments)
            self.assert_failed(answer, 2)
            self.assertNotIn("did you mean", answer.err)

    def test_wrong_command_lines_are_told_in_one_voice(self):
        clip = self.write("clip.tessel", document())
        for arguments, line in (
                ([], "a command is missing (see tessel --help)"),
                (["info"], "CLIP is missing (see tessel info --help)"),
                (["list"], "SUBJECT is missing: it is one of pixel-formats, frame-rates, pixel-aspects, color-spaces, "
                           "idents, templates, containers, codecs (see tessel list --help)"),
                (["info", clip, "--unknown"], "'--unknown' is no option of info (see tessel info --help)"),
                (["--unknown"], "'--unknown' is no option (see tessel --help)"),
                (["bench", clip, "b"], "'b' is one argument too many (see tessel bench --help)"),
                (["render", clip, "-o"], "--output needs a value (see tessel render --help)"),
                (["--plugin"], "--plugin needs a value (see tessel --help)"),
                (["bench", clip, "--frames", "x"],
                 "--frames: must be a whole number from 0 on, not \"x\" (see tessel bench --help)")):
            with self.subTest(arguments=arguments):
                answer = self.run_program(*arguments)
                self.assertEqual((answer.code, answer.err), (2, "tessel: " + line + "\n"))


if __name__ == "__main__":
    unittest.main()

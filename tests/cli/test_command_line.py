"""The command line itself: exit codes, help, the plug-in's place, outputs that take nothing."""

import os
import subprocess
import unittest

from program import PLUGIN, PROGRAM, ProgramTest, document


class CommandLine(ProgramTest):
    def test_wrong_command_lines_end_with_2(self):
        for arguments in ([], ["nonsense"], ["info"], ["info", "--nonsense", "a.tessel"], ["--plugin"],
                          ["bench"], ["bench", "a.tessel", "b.tessel"]):
            with self.subTest(arguments=arguments):
                self.assert_failed(self.run_program(*arguments), 2, "(see tessel ", "--help)")

    def test_an_unknown_command_is_named_beside_those_that_there_are(self):
        self.assert_failed(self.run_program("bogus"), 2, "'bogus' is no command", "new, info, set, list, render, join, bench, damage, edit, view, verify, schema, help")
        self.assert_failed(self.run_program("bogus", "a.tessel"), 2, "'bogus' is no command")

    def test_empty_values_are_not_taken_for_missing_ones(self):
        clip = self.write("clip.tessel", document())
        before = os.stat(self.path(clip)).st_mtime_ns
        script = self.write("accept.script", "accept\n")
        for arguments, option in ((["info", ""], "CLIP"), (["info", clip, ""], "CLIP"), (["bench", ""], "CLIP"),
                                  (["render", "", "-o", "x.mkv"], "CLIP"), (["render", clip, "-o", ""], "--output"),
                                  (["render", clip, "-o", "x.mkv", "--format", ""], "--format"),
                                  (["render", clip, "-o", "x.mkv", "--video-codec", ""], "--video-codec"),
                                  (["render", clip, "-o", "x.mkv", "--audio-codec", ""], "--audio-codec"),
                                  (["--plugin", "", "info", clip], "--plugin"),
                                  (["edit", clip, "-o", "", "--script", script], "--output"),
                                  (["edit", clip, "--script", ""], "--script"),
                                  (["edit", "", "-o", "new.tessel", "--script", script], "CLIP")):
            with self.subTest(arguments=arguments):
                self.assert_failed(self.run_program(*arguments), 2, option, "must not be empty")
        self.assertEqual(os.stat(self.path(clip)).st_mtime_ns, before)
        self.assertEqual(sorted(os.listdir(self.folder)), ["accept.script", "clip.tessel"])

    def test_settings_are_not_written_to_a_name_that_no_clip_can_have(self):
        clip = self.write("clip.tessel", document())
        script = self.write("accept.script", "accept\n")
        for arguments in ((clip,), ()):
            self.assert_failed(self.run_program("edit", *arguments, "-o", "x.mov", "--script", script), 2, "x.mov",
                               ".tessel was expected")
        self.assertEqual(sorted(os.listdir(self.folder)), ["accept.script", "clip.tessel"])

    def test_a_new_document_takes_no_other_ones_place(self):
        clip = self.write("clip.tessel", document())
        script = self.write("accept.script", "press okButton\n")
        before = os.stat(self.path(clip)).st_mtime_ns
        self.assert_failed(self.run_program("edit", "-o", clip, "--script", script), 1, clip, "is there already")
        self.assertEqual(os.stat(self.path(clip)).st_mtime_ns, before)
        self.assert_done(self.run_program("edit", clip, "-o", clip, "--script", script))

    def test_pipes_in_the_place_of_files_are_not_waited_for(self):
        clip = self.write("clip.tessel", document())
        os.mkfifo(self.path("pipe"))
        self.assert_failed(self.run_program("edit", clip, "--script", "pipe"), 1, "pipe: ", "script",
                           "not an ordinary file")
        answer = self.run_program("--no-testing-plugins", "info", clip,
                                  environment={"KESTREL_DEBUG_DATABASE": self.path("pipe")})
        self.assertEqual(answer.code, 1)
        self.assertIn("pipe: cannot be read", answer.err)

    def test_help_and_version_go_to_standard_output(self):
        for arguments, says in ((["--help"], "info"), (["info", "--help"], "--json"),
                                (["bench", "--help"], "--seconds"), (["--version"], "tessel ")):
            with self.subTest(arguments=arguments):
                answer = self.run_program(*arguments)
                self.assert_done(answer)
                self.assertIn(says, answer.out)

    def test_global_options_stand_before_or_behind_the_command(self):
        self.write("clip.tessel", document())
        self.assert_done(self.run_program("--plugin", PLUGIN, "info", "clip.tessel"))
        self.assert_done(self.run_program("info", "clip.tessel", "--plugin", PLUGIN))

    def test_the_plugin_is_found_by_option_variable_and_folder(self):
        self.write("clip.tessel", document())
        folder = os.path.dirname(PLUGIN)
        self.assert_done(self.run_program("info", "clip.tessel", environment={"KESTREL_PLUGIN_PATH": folder}))
        self.assert_done(self.run_program("info", "clip.tessel", environment={"KESTREL_PLUGIN_PATH": PLUGIN}))
        self.assert_failed(self.run_program("info", "clip.tessel", environment={"KESTREL_PLUGIN_PATH": "gone"}), 1,
                           "gone", "KESTREL_PLUGIN_PATH")
        self.assert_done(self.run_program("--plugin", folder, "info", "clip.tessel",
                                          environment={"KESTREL_PLUGIN_PATH": "gone"}))

    def test_files_that_are_no_plugin_are_refused(self):
        self.write("clip.tessel", document())
        self.write("text.so", "no library")
        self.assert_failed(self.run_program("--plugin", "gone.so", "info", "clip.tessel"), 1, "gone.so")
        self.assert_failed(self.run_program("--plugin", "text.so", "info", "clip.tessel"), 1, "text.so")
        self.assert_failed(self.run_program("--plugin", PROGRAM, "info", "clip.tessel"), 1, "no resource")

    def test_test_plugins_load_only_where_the_debug_database_says_so_when_asked(self):
        self.write("clip.tessel", document())
        self.assert_failed(self.run_program("--no-testing-plugins", "info", "clip.tessel"), 1,
                           "ML.LoadTestingPluginsAtStartup")
        for text, exit_code in (("true", 0), ("True", 1), ("1", 1), ("false", 1)):
            self.write("debug.json", '{"ML.LoadTestingPluginsAtStartup": "%s"}' % text)
            answer = self.run_program("--no-testing-plugins", "info", "clip.tessel",
                                      environment={"KESTREL_DEBUG_DATABASE": self.path("debug.json")})
            self.assertEqual(answer.code, exit_code, text)

    def test_a_full_disk_is_noticed(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("this system has no /dev/full")
        self.write("clip.tessel", document())
        for arguments in (["info", "clip.tessel"], ["info", "clip.tessel", "--json"], ["--help"], ["--version"]):
            with self.subTest(arguments=arguments), open("/dev/full", "wb") as full:
                self.assert_failed(self.run_program(*arguments, stdout=full), 1, "standard output")

    def test_a_reader_that_went_away_is_noticed_without_a_signal(self):
        self.write("clip.tessel", document())
        reading, writing = os.pipe()
        os.close(reading)
        try:
            self.assert_failed(self.run_program("info", "clip.tessel", stdout=writing), 1, "standard output")
        finally:
            os.close(writing)

    def test_a_closed_standard_output_is_noticed(self):
        self.write("clip.tessel", document())
        answer = subprocess.run(["/bin/sh", "-c", '"$0" info clip.tessel >&-', PROGRAM], cwd=self.folder,
                                stderr=subprocess.PIPE, check=False)
        self.assertEqual(answer.returncode, 1)


if __name__ == "__main__":
    unittest.main()

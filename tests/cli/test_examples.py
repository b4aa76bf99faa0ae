"""Every example at the end of every --help runs as it stands."""

import json
import os
import tempfile
import unittest

from program import HAS_PLAYER, ProgramTest, document

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


class Examples(ProgramTest):
    def play(self, command):
        """Runs a line of shell as it is typed, in a folder of its own; whoever presses OK in dialogs is a script."""
        folder = tempfile.mkdtemp(dir=self.folder)
        os.symlink(os.path.join(ROOT, "samples"), os.path.join(folder, "samples"))
        self.write(os.path.join(folder, "clip.tessel"), document())
        script = self.write(os.path.join(folder, "ok.script"), "press okButton\n")
        return self.run_shell(command, cwd=folder,
                              environment={"KESTREL_UI": "scripted", "KESTREL_UI_SCRIPT": script})

    def test_every_example_of_every_help_page_works(self):
        dump = json.loads(self.run_program("help", "--dump-json").out)
        examples = dump["examples"] + [example for command in dump["commands"] for example in command["examples"]]
        self.assertGreater(len(examples), len(dump["commands"]))
        for example in examples:
            if example["command"].startswith("tessel view") and not HAS_PLAYER:
                continue
            with self.subTest(example=example["command"]):
                answer = self.play(example["command"])
                self.assertEqual(answer.code, 0, answer.err)


if __name__ == "__main__":
    unittest.main()

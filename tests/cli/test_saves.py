"""In what order a save reaches the disk: a machine that stops leaves the old file or the new one."""

import unittest

from program import document
from traces import TracedTest


class Saves(TracedTest):
    def steps(self, *arguments):
        """What of "sync" and "rename" the program does, in its order."""
        calls = self.calls("fsync,fdatasync,rename,renameat,renameat2", *arguments)
        return ["rename" if "rename" in call else "sync" for call in calls if call.endswith("= 0")]

    def test_the_new_content_is_on_the_disk_before_it_takes_the_name_and_the_name_before_the_end(self):
        self.write("clip.tessel", document())
        self.write("save.script", "press okButton\n")
        for command in (["set", "clip.tessel", "number=on"],
                        ["new", "clip.tessel", "--force"],
                        ["edit", "clip.tessel", "--script", "save.script"]):
            with self.subTest(command=command[0]):
                self.assertEqual(self.steps(*command), ["sync", "rename", "sync"])


if __name__ == "__main__":
    unittest.main()

"""The commands that README.md shows do what it says, typed as they stand there."""

import os
import re
import shlex
import unittest

from program import ProgramTest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def commands(heading):
    """The lines of the first shell block below a heading, without their comments."""
    with open(os.path.join(ROOT, "README.md"), encoding="utf-8") as file:
        section = file.read().split(f"\n## {heading}\n", 1)[1]
    block = re.search(r"```sh\n(.*?)```", section, re.DOTALL).group(1)
    return [shlex.split(line, comments=True) for line in block.splitlines() if line.strip()]


class Readme(ProgramTest):
    def setUp(self):
        super().setUp()
        os.symlink(os.path.join(ROOT, "samples"), self.path("samples"))

    def test_what_people_do_with_it(self):
        shown = commands("What people do with it")
        self.assertEqual({command[1] for command in shown},
                         {"new", "info", "render", "verify", "damage", "view", "edit", "bench"})
        for command in shown:
            with self.subTest(command=shlex.join(command)):
                self.assertEqual(command[0], "tessel")
                if command[1] in ("edit", "view"):
                    continue  # these open windows, and edit saves into the sample
                # What would take long is shortened; nothing else is changed.
                shorter = {"render": ["--frames", "2", "--quiet"], "damage": ["--frames", "20"],
                           "bench": ["--seconds", "0.02"]}.get(command[1], [])
                answer = self.run_program(*command[1:], *shorter)
                if command[1] == "verify":
                    # The movie was shortened above: only that is wrong with it.
                    self.assertEqual(answer.code, 3, answer.err)
                    self.assertIn("order.tail", answer.out)
                    continue
                self.assert_done(answer)
                if command[1] == "new":
                    self.assertTrue(os.path.exists(self.path(command[2])))
                    continue
                if "-o" not in command:
                    self.assertIn(command[2], answer.out)
                    continue
                output = command[command.index("-o") + 1]
                for number in (0, 1):
                    self.assertGreater(os.path.getsize(self.path(output % number if "%" in output else output)), 0)


if __name__ == "__main__":
    unittest.main()

"""Every rule about texts finds a small violation, and lets the nearest permitted thing pass."""

import os
import tempfile
import unittest

from text_rules import RULES, broken_rules

# rule's name, a file that breaks it, a file that does not.
CASES = [
    ("a path becomes text through UTF8Text",
     ("kestrel/orb/A.cpp", "Say(file.string());"),
     ("kestrel/orb/A.cpp", "// not file.string()\nSay(UTF8Text(file));")),
    ("a path becomes text through UTF8Text",
     ("tessel/export/plan/A.h", "Say(file.filename().generic_string());"),
     ("tests/unit/A.cpp", "Say(file.string());")),
    ("a path's own units are for platform files",
     ("kestrel/qelcore/files/A.cpp", "Open(file.native().c_str());"),
     ("kestrel/qelcore/files/APosix.cpp", "Open(file.native().c_str());")),
    ("the host names no plug-in and no program",
     ("kestrel/importhost/A.cpp", 'Find("ImporterTessel");'),
     ("tessel/document/A.cpp", 'Find("ImporterTessel");')),
    ("the host names no plug-in and no program",
     ("kestrel/qelui/A.h", "/// For tessel's dialog."),
     ("kestrel/qelui/A.h", "/// For any program's dialog.")),
    ("the host knows no key of a document",
     ("kestrel/importhost/A.cpp", 'Read(root, "mVideoFrameRate");'),
     ("tessel/document/A.cpp", 'Read(root, "mVideoFrameRate");')),
    ("the host knows no key of a document",
     ("kestrel/importhost/A.cpp", 'Read(root, "mVersion");'),
     ("kestrel/importhost/A.h", "int mVersion = 0;")),
    ("the host names no option of a program",
     ("kestrel/importhost/A.cpp", 'throw HostError("name it with --plugin");'),
     ("kestrel/importhost/A.cpp", "for (; count > 0; --count) {\n    if (--entry->second == 0 && --i) {}\n}")),
    ("nothing names a place on somebody's machine",
     ("docs/render.md", "see /home/somebody/clips"),
     ("docs/render.md", "see ~/home/somebody, $PWD/home/clips, /usr/bin/env and out/home/clips")),
    ("nothing names a place on somebody's machine",
     ("scripts/demo", "# from /Users/somebody/clips"),
     ("scripts/demo", "# network/")),
]


class Rules(unittest.TestCase):
    def broken(self, file):
        path, text = file
        with tempfile.TemporaryDirectory() as root:
            os.makedirs(os.path.join(root, os.path.dirname(path)))
            with open(os.path.join(root, path), "w", encoding="utf-8") as out:
                out.write(text + "\n")
            return {rule for _, _, _, rule in broken_rules(root)}

    def test_every_rule_finds_its_violation(self):
        for rule, violation, _ in CASES:
            with self.subTest(rule=rule, violation=violation):
                self.assertIn(rule, self.broken(violation))

    def test_what_is_permitted_passes_every_rule(self):
        for rule, _, permitted in CASES:
            with self.subTest(rule=rule, permitted=permitted):
                self.assertEqual(self.broken(permitted), set())

    def test_every_rule_has_a_case(self):
        self.assertEqual({rule.name for rule in RULES}, {rule for rule, _, _ in CASES})


if __name__ == "__main__":
    unittest.main()

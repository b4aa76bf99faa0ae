"""Cases of rules about files: each rule finds a small violation, and lets the nearest permitted thing pass."""

import os
import tempfile


def write_file(root, path, text):
    os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
    with open(os.path.join(root, path), "w", encoding="utf-8") as out:
        out.write(text)


class RuleCases:
    """Tests for a `unittest.TestCase` with RULES, `broken_rules` of a root, and CASES.

    A case is a rule's name, a file that breaks it, and a file that does not; a file is a path and its text. SURROUNDINGS
    are files that are there in each case.
    """

    SURROUNDINGS = ()

    def broken(self, file):
        path, text = file
        with tempfile.TemporaryDirectory() as root:
            for surrounding in self.SURROUNDINGS:
                write_file(root, *surrounding)
            write_file(root, path, text + "\n")
            return {rule for _, _, _, rule in self.broken_rules(root)}

    def test_every_rule_finds_its_violation(self):
        for rule, violation, _ in self.CASES:
            with self.subTest(rule=rule, violation=violation):
                self.assertIn(rule, self.broken(violation))

    def test_what_is_permitted_passes_every_rule(self):
        for rule, _, permitted in self.CASES:
            with self.subTest(rule=rule, permitted=permitted):
                self.assertEqual(self.broken(permitted), set())

    def test_every_rule_has_a_case(self):
        self.assertEqual({rule.name for rule in self.RULES}, {rule for rule, _, _ in self.CASES})

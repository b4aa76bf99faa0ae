"""Checks the rules about the text of files on a source tree: check_text.py ROOT."""

import sys

from text_rules import broken_rules


def main():
    broken = list(broken_rules(sys.argv[1]))
    for path, line, what, rule in broken:
        print(f"{path}:{line}: {what}: {rule}")
    sys.exit(1 if broken else 0)


main()

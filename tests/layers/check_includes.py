"""Checks the include rules on a source tree: check_includes.py ROOT."""

import sys

from include_rules import broken_rules, count_files


def main():
    root = sys.argv[1]
    files = count_files(root)
    if files < 100:
        sys.exit(f"only {files} source files below {root}: the check looks in the wrong place")
    broken = list(broken_rules(root))
    for path, line, header, rule in broken:
        print(f"{path}:{line}: includes {header}: {rule}")
    sys.exit(1 if broken else 0)


main()

"""Checks that the build knows every source file and every folder of a source tree: check_lists.py ROOT.

A file that no CMake list names is not compiled, and a folder that no list adds is not built; CMake says neither.
"""

import os
import re
import sys

SOURCE_ENDINGS = (".cpp", ".c", ".S")
FOLDERS = ("ImporterTessel", "benchmarks", "examples", "integrations", "kestrel", "tessel", "tests")
WORD = re.compile(r'[^\s()";]+')
OWN_FOLDER = re.compile(r"\$\{CMAKE_CURRENT_(?:SOURCE|FUNCTION_LIST)_DIR\}/")


def paths_named_in(list_file, root):
    """Every word of a CMake list as the path that it would be."""
    with open(list_file, encoding="utf-8") as file:
        text = re.sub(r"#[^\n]*", "", file.read())
    for word in WORD.findall(text):
        word = OWN_FOLDER.sub("", word).replace("${CMAKE_SOURCE_DIR}", root)
        yield os.path.normpath(os.path.join(os.path.dirname(list_file), word))


def problems(root):
    """(path, what is wrong) of each file and folder that the build does not know."""
    root = os.path.abspath(root)
    named = set(paths_named_in(os.path.join(root, "CMakeLists.txt"), root))
    places = [place for folder in FOLDERS for place in sorted(os.walk(os.path.join(root, folder)))]
    for where, _, files in places:
        if "CMakeLists.txt" in files:
            named.update(paths_named_in(os.path.join(where, "CMakeLists.txt"), root))
    for where, _, files in places:
        if "CMakeLists.txt" in files and where not in named:
            yield os.path.relpath(where, root), "no CMakeLists.txt adds this folder"
        for path in sorted(os.path.join(where, name) for name in files if name.endswith(SOURCE_ENDINGS)):
            # A function that makes one target of each file is given the file's stem.
            if path not in named and os.path.splitext(path)[0] not in named:
                yield os.path.relpath(path, root), "no CMakeLists.txt names this file"


def main():
    broken = list(problems(sys.argv[1]))
    for path, what in broken:
        print(f"{path}: {what}")
    sys.exit(1 if broken else 0)


if __name__ == "__main__":
    main()

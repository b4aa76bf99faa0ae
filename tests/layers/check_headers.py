"""Compiles each public header of the host alone: check_headers.py [options] ROOT.

Every header must include what it needs and give no warning. The wire format's headers are compiled as C11 too, and
by every compiler that is there.
"""

import argparse
import concurrent.futures
import os
import shutil
import subprocess
import sys
import tempfile

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Werror"]
WIRE_FORMAT = "kestrel/importabi/"
# Needs Qt's headers, and has no public header.
WINDOWS = "kestrel/qt/"


def headers_below(root):
    for where, _, names in sorted(os.walk(os.path.join(root, "kestrel"))):
        for name in sorted(names):
            path = os.path.relpath(os.path.join(where, name), root)
            if name.endswith(".h") and not path.startswith(WINDOWS):
                yield path


def compile_alone(root, header, compiler, language):
    """The compiler's messages, empty where it has none."""
    command = [compiler, "-x", "c" if language == "c11" else "c++", f"-std={language}", *WARNINGS, "-fsyntax-only",
               "-I", root, "-"]
    done = subprocess.run(command, input=f"#include <{header}>\n", stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, check=False)
    return "" if done.returncode == 0 else f"{header} as {language} with {compiler}:\n{done.stdout}"


def jobs(root, cxx):
    compilers = [name for name in ("g++", "clang++") if shutil.which(name)]
    c_compilers = [name for name in ("gcc", "clang") if shutil.which(name)]
    for header in headers_below(root):
        if header.startswith(WIRE_FORMAT):
            yield from ((header, compiler, "c++20") for compiler in compilers)
            yield from ((header, compiler, "c11") for compiler in c_compilers)
        else:
            yield header, cxx, "c++20"


def complaints(root, cxx):
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lambda job: compile_alone(root, *job), jobs(root, cxx)))
    return len(results), [text for text in results if text]


def check_the_check(cxx):
    """A header that needs another one, and one that is not C, must be found."""
    with tempfile.TemporaryDirectory() as root:
        for path, text in (("kestrel/importabi/Cxx.h", "struct Packed { int a; };\nstatic inline Packed* P();\n"),
                           ("kestrel/orb/Needy.h", "inline std::string text;\n"),
                           ("kestrel/orb/Content.h", "#include <string>\ninline std::string text;\n")):
            os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
            with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                file.write(text)
        _, found = complaints(root, cxx)
        assert any("Cxx.h as c11" in text for text in found)
        assert any("Needy.h" in text for text in found)
        assert not any("Content.h" in text for text in found)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cxx", default="c++")
    parser.add_argument("root")
    arguments = parser.parse_args()
    check_the_check(arguments.cxx)
    count, found = complaints(arguments.root, arguments.cxx)
    for text in found:
        print(text)
    print(f"{count} compilations, {len(found)} with complaints")
    sys.exit(1 if found or count == 0 else 0)


main()

"""Compiles each public header alone: check_headers.py [--cxx COMPILER] --headers "H;H;..." ROOT

Every header must include what it needs and give no warning. Those that C programs include are compiled as C11 too,
and by every compiler that is there. (An internal header is included first by its own source file, and so compiled alone
in the presets that precompile nothing.)
"""

import argparse
import concurrent.futures
import os
import shutil
import subprocess
import sys
import tempfile

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Werror"]
FOR_C = ("kestrel/importabi/", "tessel/api/")


def compile_alone(root, header, compiler, language):
    """The compiler's messages, empty where it has none."""
    command = [compiler, "-x", "c" if language == "c11" else "c++", f"-std={language}", *WARNINGS, "-fsyntax-only",
               "-I", root, "-"]
    done = subprocess.run(command, input=f"#include <{header}>\n", stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, check=False)
    return "" if done.returncode == 0 else f"{header} as {language} with {compiler}:\n{done.stdout}"


def jobs(headers, cxx):
    compilers = [name for name in ("g++", "clang++") if shutil.which(name)]
    c_compilers = [name for name in ("gcc", "clang") if shutil.which(name)]
    for header in headers:
        if header.startswith(FOR_C):
            yield from ((header, compiler, "c++20") for compiler in compilers)
            yield from ((header, compiler, "c11") for compiler in c_compilers)
        else:
            yield header, cxx, "c++20"


def complaints(root, headers, cxx):
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        results = list(pool.map(lambda job: compile_alone(root, *job), jobs(headers, cxx)))
    return len(results), [text for text in results if text]


def check_the_check(cxx):
    """A header that needs another one, and one that is not C, must be found."""
    with tempfile.TemporaryDirectory() as root:
        files = (("kestrel/importabi/Cxx.h", "struct Packed { int a; };\nstatic inline Packed* P();\n"),
                 ("kestrel/orb/Needy.h", "inline std::string text;\n"),
                 ("kestrel/orb/Content.h", "#include <string>\ninline std::string text;\n"))
        for path, text in files:
            os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
            with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                file.write(text)
        _, found = complaints(root, [path for path, _ in files], cxx)
        assert any("Cxx.h as c11" in text for text in found)
        assert any("Needy.h" in text for text in found)
        assert not any("Content.h" in text for text in found)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--cxx", default="c++")
    parser.add_argument("--headers", required=True, help="paths between semicolons")
    parser.add_argument("root")
    arguments = parser.parse_args()
    headers = [os.path.relpath(path, arguments.root) for path in arguments.headers.split(";")]
    check_the_check(arguments.cxx)
    count, found = complaints(arguments.root, headers, arguments.cxx)
    for text in found:
        print(text)
    print(f"{count} compilations, {len(found)} with complaints")
    sys.exit(1 if found or count == 0 else 0)


main()

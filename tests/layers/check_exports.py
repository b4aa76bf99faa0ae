"""Checks the symbols that the built libraries export: check_exports.py --plugin FILE --library NAME FILE [--headers H;H]..."""

import argparse
import re
import subprocess
import sys

ENTRIES = {"xImportEntry", "PluginDataEntryFunction"}

# What each library shows: names that begin with one of its namespaces (or are one of its C-style functions).
SHOWN = {
    "kestrel": r"(?:qelcore|qelmediatypes|qelaccelerate|BR|KSM|ORB|pixmill)::|PM_",
    "kestrelui": r"(?:qelui|qellumenfactory|qelworkspace)::",
    "kestrelhost": r"importhost::",
    "kestrelqt": r"KestrelGetToolkit$",
    "tessel": r"tessel_",
}
# The other libraries of the host that each may need.
MAY_NEED = {
    "plug-in": {"kestrel", "kestrelui"},
    "kestrel": set(),
    "kestrelui": {"kestrel"},
    "kestrelhost": {"kestrel", "kestrelui"},
    "kestrelqt": {"kestrel", "kestrelui"},
    "tessel": {"kestrel", "kestrelui", "kestrelhost"},
}
# The C and C++ runtime, with the sanitizers'.
RUNTIME = re.compile(r"^(?:libstdc\+\+|libm|libc|libgcc_s|ld-linux.*|libasan|libubsan|libtsan)\.so")
HOST_LIBRARY = re.compile(r"^lib(kestrel[a-z]*)\.so\.[0-9.]+$")
# What the compiler makes of a class or a variable, in front of its name.
COMPILER_MADE = re.compile(
    r"^(?:vtable for |VTT for |typeinfo for |typeinfo name for |guard variable for |(?:non-)?virtual thunk to )+")
SANITIZER = re.compile(r"^_*(?:asan|ubsan|tsan|sancov|odr)")


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True).stdout


def exported(nm, library):
    """Names of the dynamic symbols that the library defines, C++ names readable."""
    lines = run(nm, "-D", "--defined-only", "-C", library).splitlines()
    names = {line.split(maxsplit=2)[2] for line in lines if len(line.split(maxsplit=2)) == 3}
    return {COMPILER_MADE.sub("", name) for name in names if not SANITIZER.match(name)}


def needed(readelf, library):
    return re.findall(r"\(NEEDED\).*\[(.*)\]", run(readelf, "-d", library))


def declared_name(name):
    """The class or function behind the namespaces: `qelui` of "qelui::UI_Popup::Add(int)" gives "UI_Popup"."""
    plain = re.sub(r"\[abi:cxx11\]|\(.*| const$", "", name)
    parts = plain.split("::")
    while len(parts) > 1 and re.match(r"^[a-z]+$|^BR$|^KSM$|^ORB$", parts[0]):
        parts = parts[1:]
    return parts[0]


def problems_of_plugin(names, libraries):
    if names != ENTRIES:
        extra, missing = sorted(names - ENTRIES), sorted(ENTRIES - names)
        yield f"the plug-in must export exactly its two entries: too many {extra[:5]}, missing {missing}"
    for library in libraries:
        if not RUNTIME.match(library) and not may_need("plug-in", library):
            yield f"the plug-in needs {library}, which is neither the C++ runtime nor the host"


def may_need(who, library):
    host = HOST_LIBRARY.match(library)
    return host is not None and host.group(1) in MAY_NEED[who]


def problems_of_library(library, names, libraries, headers):
    """`headers` is the text of the library's public headers, or None where it has none."""
    if not names:
        yield f"lib{library} exports nothing"
    for name in sorted(names):
        if not re.match(SHOWN[library], name):
            yield f"lib{library} exports {name}, which is not of its namespaces"
        elif headers is not None and not re.search(rf"\b{re.escape(declared_name(name))}\b", headers):
            yield f"lib{library} exports {name}, which no public header of it declares"
    for other in libraries:
        if other.startswith("libkestrel") and not may_need(library, other):
            yield f"lib{library} needs {other}"


def check_the_checks():
    """Each rule must find a small violation, or it checks nothing."""
    assert not list(problems_of_plugin(ENTRIES, ["libstdc++.so.6", "libkestrel.so.0.1", "libc.so.6"]))
    assert list(problems_of_plugin(ENTRIES | {"Stray()"}, []))
    assert list(problems_of_plugin({"xImportEntry"}, []))
    assert list(problems_of_plugin(ENTRIES, ["libQt6Core.so.6"]))
    assert list(problems_of_plugin(ENTRIES, ["libkestrelhost.so.0.1"]))
    assert list(problems_of_plugin(ENTRIES, ["libkestrel.so"])), "a library without a version"
    header = "class Clip { static Clip Open(); };"
    assert not list(problems_of_library("kestrelhost", {"importhost::Clip::Open()"}, ["libkestrelui.so.0.1"], header))
    assert list(problems_of_library("kestrelhost", set(), [], header))
    assert list(problems_of_library("kestrelhost", {"importhost::FramePool::Take(unsigned long)"}, [], header))
    assert list(problems_of_library("kestrelhost", {"void std::fill<int>(int*)"}, [], header))
    assert list(problems_of_library("kestrelhost", {"fmt::v9::detail::error_handler::on_error(char const*)"}, [], header))
    assert list(problems_of_library("kestrel", {"qelui::Stray()"}, [], "Stray"))
    assert list(problems_of_library("kestrel", {"PM_FillWithColor"}, ["libkestrelui.so.0.1"], "PM_FillWithColor"))
    assert declared_name("qelcore::utility::FileUtils::FileOrDirExists[abi:cxx11](int)") == "FileUtils"
    assert declared_name("importhost::Clip") == "Clip"
    assert declared_name("PM_PrintNum(void*, int)") == "PM_PrintNum"


def read(files):
    text = ""
    for file in files:
        with open(file, encoding="utf-8") as stream:
            text += stream.read()
    return text


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--nm", default="nm")
    parser.add_argument("--readelf", default="readelf")
    parser.add_argument("--plugin", action="append", default=[])
    parser.add_argument("--library", nargs=3, action="append", default=[], metavar=("NAME", "FILE", "HEADERS"),
                        help="HEADERS: the public ones, with semicolons between; '-' for a library with none")
    arguments = parser.parse_args()
    check_the_checks()

    problems = []
    for plugin in arguments.plugin:
        problems += problems_of_plugin(exported(arguments.nm, plugin), needed(arguments.readelf, plugin))
    for name, file, headers in arguments.library:
        text = None if headers == "-" else read(headers.split(";"))
        problems += problems_of_library(name, exported(arguments.nm, file), needed(arguments.readelf, file), text)
    for problem in problems:
        print(problem)
    sys.exit(1 if problems else 0)


main()

"""Checks what the built libraries show the world: check_exports.py [options] IMPORTER HOST_LIBRARY..."""

import argparse
import re
import subprocess
import sys

ENTRIES = {"xImportEntry", "PluginDataEntryFunction"}
# Of libraries that the host keeps to itself. `typeinfo for` and vtables count too.
PRIVATE = re.compile(r"\b(?:nlohmann|fmt)::|\bv[0-9]+::basic_memory_buffer|\bCLI::")
# Libraries that the plug-in may need: itself nothing but the C++ runtime and the host.
PLUGIN_NEEDS = re.compile(r"^(?:libkestrel|libkestrelui|libstdc\+\+|libm|libc|libgcc_s|ld-linux.*|libasan|libubsan|libtsan)\.so")


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True).stdout


def exported(nm, library):
    """Names of the dynamic symbols that the library defines, C++ names readable."""
    lines = run(nm, "-D", "--defined-only", "-C", library).splitlines()
    return {line.split(maxsplit=2)[2] for line in lines if len(line.split(maxsplit=2)) == 3}


def needed(readelf, library):
    return re.findall(r"\(NEEDED\).*\[(.*)\]", run(readelf, "-d", library))


def problems_of_plugin(names, libraries):
    if names != ENTRIES:
        extra, missing = sorted(names - ENTRIES), sorted(ENTRIES - names)
        yield f"the plug-in must export exactly its two entries: too many {extra[:5]}, missing {missing}"
    for library in libraries:
        if not PLUGIN_NEEDS.match(library):
            yield f"the plug-in needs {library}, which is neither the C++ runtime nor the host"


def problems_of_host(names):
    for name in sorted(names):
        if PRIVATE.search(name):
            yield f"the host exports {name} of a library that it keeps to itself"


def check_the_checks():
    """Each rule must find a small violation, or it checks nothing."""
    assert list(problems_of_plugin(ENTRIES, ["libstdc++.so.6", "libkestrel.so", "libc.so.6"])) == []
    assert list(problems_of_plugin(ENTRIES | {"Stray()"}, []))
    assert list(problems_of_plugin({"xImportEntry"}, []))
    assert list(problems_of_plugin(ENTRIES, ["libQt6Core.so.6"]))
    assert list(problems_of_host({"importhost::Clip::Open()"})) == []
    assert list(problems_of_host({"typeinfo for nlohmann::detail::exception"}))
    assert list(problems_of_host({"fmt::v9::detail::error_handler::on_error(char const*)"}))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--nm", default="nm")
    parser.add_argument("--readelf", default="readelf")
    parser.add_argument("--sanitizer", default="", help="sanitizers export symbols of their own")
    parser.add_argument("plugin")
    parser.add_argument("host", nargs="+")
    arguments = parser.parse_args()
    check_the_checks()

    names = exported(arguments.nm, arguments.plugin)
    if arguments.sanitizer:
        names = {name for name in names if not re.match(r"_*(?:asan|ubsan|tsan|sancov|odr)", name)}
    host_names = set().union(*(exported(arguments.nm, library) for library in arguments.host))
    problems = list(problems_of_plugin(names, needed(arguments.readelf, arguments.plugin)))
    problems += problems_of_host(host_names)
    if not any("importhost::Clip::Open" in name for name in host_names):
        problems.append("the host does not export its clips: the check looks at the wrong library")
    for problem in problems:
        print(problem)
    sys.exit(1 if problems else 0)


main()

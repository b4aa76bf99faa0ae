"""The include rules, one row each: which files, and what they must not include (or may only include)."""

import os
import re
import sys

SOURCE_FOLDERS = ("ImporterTessel", "examples", "integrations", "kestrel", "tessel", "tests/conformance/checker")
SOURCE_ENDINGS = (".h", ".hpp", ".cpp", ".c", ".inc")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:<([^>\n]+)>|"([^"\n]+)")', re.MULTILINE)

# Headers that name an operating system. Architecture headers (immintrin.h) are allowed everywhere.
PLATFORM_HEADERS = re.compile(
    r"^(?:sys/.*|linux/.*|unistd\.h|fcntl\.h|dlfcn\.h|pwd\.h|pthread\.h|poll\.h|dirent\.h|termios\.h|elf\.h|link\.h|"
    r"gelf\.h|libelf\.h|spawn\.h|sched\.h|mach/.*|windows\.h|io\.h)$")
PLATFORM_FILES = re.compile(r"(?:Linux|Posix)\.(?:cpp|h)$")

QT = re.compile(r"^Q[A-Z][A-Za-z]+$|^Qt[A-Z][A-Za-z]*/|^q[a-z]+\.h$")
FFMPEG = re.compile(r"^lib(?:av[a-z]+|sw[a-z]+|postproc)/|^zimg")
JSON = re.compile(r"^nlohmann/")
COMMAND_LINE = re.compile(r"^CLI/")
FORMATTING = re.compile(r"^fmt/")
STANDARD = re.compile(r"^(?:[a-z_]+|(?:assert|stddef|stdint|stdbool|string|math|immintrin|emmintrin)\.h)$")
INSTALLED = "an installed header"
INSTALLED_LIST = re.compile(r"FILE_SET\s+HEADERS\b[^)]*?\bFILES\b([^)]*)\)")


class Rule:
    def __init__(self, name, files, allowed=None, forbidden=None, exempt=None):
        self.name = name
        self.files = re.compile(files)
        self.exempt = re.compile(exempt) if exempt else None
        self.allowed = allowed  # patterns of which one must match, INSTALLED among them, or None
        self.forbidden = forbidden

    def breaks(self, path, included, installed):
        if not self.files.match(path) or (self.exempt and self.exempt.search(path)):
            return False
        if self.allowed is not None:
            return not any(included in installed if pattern is INSTALLED else pattern.search(included)
                           for pattern in self.allowed)
        return self.forbidden.search(included) is not None


# The plug-in's rooms: which other rooms each may look into.
PLUGIN_ROOMS = {
    "host": (),
    "settings": (),
    "audio": ("settings",),
    "video": ("host", "settings"),
    "dialog": ("settings",),
    "entry": ("audio", "dialog", "host", "settings", "video"),
    "resources": ("entry",),
}


def room_rules():
    for room, others in PLUGIN_ROOMS.items():
        permitted = "|".join((room,) + others)
        reach = ", ".join(others) + " only" if others else "no other room"
        yield Rule(f"the plug-in's room {room} looks into {reach}",
                   rf"ImporterTessel/{room}/", forbidden=re.compile(rf"^ImporterTessel/(?!(?:{permitted})/)"))


RULES = [
    *room_rules(),
    Rule("the plug-in includes the standard library, itself and the host's public headers only",
         r"ImporterTessel/", allowed=[STANDARD, re.compile(r"^ImporterTessel/"), INSTALLED]),
    Rule("the plug-in never includes the loader", r"ImporterTessel/", forbidden=re.compile(r"^kestrel/importhost/")),
    Rule("the examples include the standard library, themselves and installed headers only", r"examples/",
         allowed=[STANDARD, re.compile(r"^std(?:io|lib)\.h$"), re.compile(r"^examples/"), INSTALLED]),
    Rule("the program never includes the plug-in", r"tessel/", forbidden=re.compile(r"^ImporterTessel/")),
    Rule("the host never includes the plug-in", r"kestrel/", forbidden=re.compile(r"^ImporterTessel/")),
    Rule("the host never includes the program", r"kestrel/", forbidden=re.compile(r"^tessel/")),
    Rule("the wire format includes C's headers and itself only", r"kestrel/importabi/",
         allowed=[re.compile(r"^(?:assert|stdbool|stddef|stdint)\.h$"), re.compile(r"^kestrel/importabi/")]),
    Rule("the base libraries include no other library of the host",
         r"kestrel/(?:brindle|ksm|orb|pixmill|qelaccelerate|qelcore|qelmediatypes)/",
         forbidden=re.compile(r"^kestrel/(?:importhost|qellumenfactory|qelui|qelworkspace|qt)/")),
    Rule("the user interface includes neither the loader nor the windows",
         r"kestrel/(?:qellumenfactory|qelui|qelworkspace)/", forbidden=re.compile(r"^kestrel/(?:importhost|qt)/")),
    Rule("the windows never include the loader", r"kestrel/qt/", forbidden=re.compile(r"^kestrel/importhost/")),
    Rule("nobody includes the windows: they are loaded at run time",
         r"(?:kestrel/(?!qt/)|ImporterTessel/|tessel/|examples/)", forbidden=re.compile(r"^kestrel/qt/")),
    Rule("Qt stays in its toolkit and in the viewer", r"(?:kestrel/(?!qt/)|ImporterTessel/|tessel/(?!view/))",
         forbidden=QT),
    Rule("the viewer's models open no window", r"tessel/view/(?:compare|model)/", forbidden=QT),
    Rule("the scopes know pictures, not where they come from", r"tessel/scopes/",
         forbidden=re.compile(r"^tessel/(?!scopes/|export/(?:convert/|ExportError\.h))|^kestrel/importhost/")),
    Rule("the JSON library stays behind serialization",
         r"(?:kestrel/(?!qelcore/serialization/)|ImporterTessel/|tessel/)", forbidden=JSON),
    Rule("FFmpeg and zimg stay in the export and in the verification's reader",
         r"(?:kestrel/|ImporterTessel/|tessel/(?!export/|verify/read/))", forbidden=FFMPEG),
    Rule("FFTW and Eigen stay in the sound's judge", r"(?:kestrel/|ImporterTessel/|tessel/(?!verify/judge/sound/))",
         forbidden=re.compile(r"^(?:fftw3\.h$|Eigen/|unsupported/Eigen/)")),
    Rule("verification and damage share names and nothing else", r"tessel/verify/",
         forbidden=re.compile(r"^tessel/damage/")),
    Rule("damage knows of the verification its names alone", r"tessel/damage/",
         forbidden=re.compile(r"^tessel/verify/(?!catalogue/Names\.h$)")),
    Rule("in the export, FFmpeg stays in the encoders", r"tessel/export/(?!encode/)",
         forbidden=re.compile(r"^lib(?:av[a-z]+|sw[a-z]+|postproc)/")),
    Rule("in the export, zimg stays in the conversion", r"tessel/export/(?!convert/)", forbidden=re.compile(r"^zimg")),
    Rule("the conversion knows no other room of the export", r"tessel/export/convert/",
         forbidden=re.compile(r"^tessel/export/(?!convert/|ExportError\.h)")),
    Rule("plans know what a conversion is, not the converter", r"tessel/export/plan/",
         forbidden=re.compile(r"^tessel/export/(?!plan/|ExportError\.h|"
                              r"convert/(?:Conversion|Dither|Picture|PixelKind)\.h)")),
    Rule("movies in memory know neither files nor encoders", r"tessel/export/virtual/",
         forbidden=re.compile(r"^tessel/export/(?:files|encode)/")),
    Rule("the files know no other room of the export", r"tessel/export/files/",
         forbidden=re.compile(r"^tessel/export/(?!files/|ExportError\.h)")),
    Rule("the encoders know the other rooms, not who drives them", r"tessel/export/encode/",
         forbidden=re.compile(r"^tessel/export/(?!(?:encode|plan|convert|files)/|ExportError\.h)")),
    Rule("settings as people type them know documents and plans alone", r"tessel/typed/",
         forbidden=re.compile(r"^tessel/(?!typed/|document/|export/(?:plan/|ExportError\.h))")),
    Rule("one file includes the command-line library",
         r"(?:kestrel/|ImporterTessel/|tessel/(?!cli/CommandLine\.cpp$))",
         forbidden=COMMAND_LINE),
    Rule("the C interface stands on documents and the signal: no files, no judging, no commands", r"tessel/api/",
         forbidden=re.compile(r"^tessel/(?!api/|document/|typed/|export/(?:[A-Z]|convert/|plan/|virtual/))")),
    Rule("the C header includes C's headers only", r"tessel/api/tessel\.h$", allowed=[re.compile(r"^std(?:int|def)\.h$")]),
    Rule("integrations know the C interface alone", r"integrations/",
         forbidden=re.compile(r"^(?:kestrel|ImporterTessel|tessel/(?!api/tessel\.h$))")),
    Rule("the host's headers show no formatting library", r"kestrel/.*\.h$", forbidden=FORMATTING),
    Rule("the conformance checker knows the wire format alone", r"tests/conformance/checker/",
         forbidden=re.compile(r"^(?:kestrel/(?!importabi/)|tessel/|ImporterTessel/|tests/(?!conformance/checker/)|"
                              r"nlohmann/|fmt/|CLI/)")),
    Rule("platform headers stay in platform files", r"(?:kestrel|ImporterTessel|tessel|tests/conformance/checker)/",
         forbidden=PLATFORM_HEADERS, exempt=PLATFORM_FILES.pattern),
]


def without_comments(text):
    text = re.sub(r"/\*.*?\*/", lambda found: "\n" * found.group().count("\n"), text, flags=re.DOTALL)
    return re.sub(r"//[^\n]*", "", text)


def includes(text):
    """(line, header, quoted) of each include directive outside comments."""
    plain = without_comments(text)
    for found in INCLUDE.finditer(plain):
        yield plain.count("\n", 0, found.start()) + 1, found.group(1) or found.group(2), found.group(1) is None


def rooted(root, path, header, quoted):
    """The header as it is written from its root: a quoted one of the file's own folder gets the folder's."""
    if not quoted:
        return header
    beside = os.path.normpath(os.path.join(os.path.dirname(path), header))
    if not os.path.exists(os.path.join(root, beside)):
        return header
    return beside


def installed_headers(root):
    """The headers that the CMake lists of `kestrel/` and `tessel/api/` name as public, as they are included."""
    folders = (entry for folder in ("kestrel", "tessel/api") for entry in os.walk(os.path.join(root, folder)))
    for where, _, names in folders:
        if "CMakeLists.txt" not in names:
            continue
        with open(os.path.join(where, "CMakeLists.txt"), encoding="utf-8") as file:
            for found in INSTALLED_LIST.finditer(file.read()):
                for name in found.group(1).split():
                    yield os.path.relpath(os.path.join(where, name), root)


def broken_rules(root):
    """(path, line, header, rule's name) of everything that breaks a rule below `root`."""
    installed = set(installed_headers(root))
    for folder in SOURCE_FOLDERS:
        for where, _, names in sorted(os.walk(os.path.join(root, folder))):
            for name in sorted(names):
                if not name.endswith(SOURCE_ENDINGS):
                    continue
                path = os.path.relpath(os.path.join(where, name), root)
                with open(os.path.join(root, path), encoding="utf-8") as file:
                    text = file.read()
                for line, header, quoted in includes(text):
                    for rule in RULES:
                        if rule.breaks(path, rooted(root, path, header, quoted), installed):
                            yield path, line, header, rule.name


def count_files(root):
    return sum(name.endswith(SOURCE_ENDINGS) for folder in SOURCE_FOLDERS
               for _, _, names in os.walk(os.path.join(root, folder)) for name in names)


if __name__ == "__main__":
    sys.exit("run check_includes.py")

"""Rules about the text of files, one row each: which files, and what must not or must stand in them."""

import os
import re

from include_rules import installed_headers, without_comments

LEFT_OUT = {".git", ".cache", "__pycache__", "build", "out"}
SOURCES = r"(?:kestrel|ImporterTessel|tessel|examples|integrations)/.*\.(?:h|cpp|c)$"


class Rule:
    def __init__(self, name, files, forbidden, exempt=None, in_comments=False):
        self.name = name
        self.files = re.compile(files)
        self.forbidden = re.compile(forbidden)
        self.exempt = re.compile(exempt) if exempt else None
        self.in_comments = in_comments

    def concerns(self, path, _installed):
        return self.files.match(path) and not (self.exempt and self.exempt.search(path))

    def breaks(self, text):
        """(line, what stands there) of each violation in a file's text."""
        searched = text if self.in_comments else without_comments(text)
        for found in self.forbidden.finditer(searched):
            yield searched.count("\n", 0, found.start()) + 1, found.group()


class PublicHeaderRule:
    """What each installed header must say."""

    def __init__(self, name, required, exempt):
        self.name = name
        self.required = re.compile(required)
        self.exempt = re.compile(exempt)

    def concerns(self, path, installed):
        return path in installed and not self.exempt.search(path)

    def breaks(self, text):
        if not self.required.search(text):
            yield 1, "no such word"


RULES = [
    # What `path::string` gives is in the platform's own encoding, which is UTF-8 on some platforms only.
    Rule("a path becomes text through UTF8Text", SOURCES, r"\.(?:generic_)?string\(\)"),
    # What a path is made of is bytes on some platforms only.
    Rule("a path's own units are for platform files", SOURCES, r"\.native\(\)",
         exempt=r"(?:Linux|Posix)\.(?:cpp|h)$"),
    # The host serves any plug-in. A document's key, a file type or an option in its code is knowledge of one.
    Rule("the host names no plug-in and no program", r"kestrel/.*\.(?:h|cpp|c)$",
         r"(?i:tessel)|\bTSSL\b|\bLSST\b|\bZOKE\b", in_comments=True),
    Rule("the host knows no key of a document", r"kestrel/.*\.(?:h|cpp|c)$",
         r"\bm(?:PixelFormat|Frame(?:Width|Height|PAR)|FieldType|RenderFormat|(?:Upper|Lower)FieldColor|"
         r"(?:Top|Bottom)GradiantColor\w*|Video(?:Duration|FrameRate)|Swatch\w+|DrawFrameFieldNumber|"
         r"KsAudioChannelType|NumChannels|ToneFormat|SteadyTone\w+|IdentifierFormat|PredefinedColorSpace|"
         r"(?:Alpha|Red|Green|Blue)Part)\b|\"m(?:ColorSpace|Version|SampleRate)\"|ticksperframe|SerializerWrapped|"
         r"\b(?:colorSwatches|legalRangeGradient|fullRangeGradient|[xy]Coordinates)\b", in_comments=True),
    Rule("the host names no option of a program", r"kestrel/.*\.(?:h|cpp|c)$",
         r'"(?:[^"\\\n]|\\.)*(?<![\w-])--[a-z]{2}'),
    Rule("nothing names a place on somebody's machine", r".*", r"(?<![\w.$}~-])/(?:Users|home|root|work|workspace)/\w+",
         exempt=r"\.(?:png)$|^tests/fuzz/[^/]+/corpus/|^tests/layers/test_text\.py$", in_comments=True),
    # The words of docs/threads.md. Macros and numbers have no threads.
    PublicHeaderRule("a public header says which threads may call", r"\[(?:ui-thread|any-thread|thread-safe|serialised)\]",
                     exempt=r"^kestrel/(?:Export|importabi/(?:Resources|ResultCodes))\.h$"),
]


def broken_rules(root):
    """(path, line, what stands there, rule's name) of everything that breaks a rule below `root`."""
    installed = set(installed_headers(root))
    for where, folders, names in os.walk(root):
        folders[:] = sorted(set(folders) - LEFT_OUT)
        for name in sorted(set(names) - LEFT_OUT):
            path = os.path.relpath(os.path.join(where, name), root)
            rules = [rule for rule in RULES if rule.concerns(path, installed)]
            if not rules:
                continue
            with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
                text = file.read()
            for rule in rules:
                for line, what in rule.breaks(text):
                    yield path, line, what, rule.name

"""Every rule about texts finds a small violation, and lets the nearest permitted thing pass."""

import unittest

from rule_cases import RuleCases
from text_rules import RULES, broken_rules

# rule's name, a file that breaks it, a file that does not.
CASES = [
    ("a path becomes text through UTF8Text",
     ("kestrel/orb/A.cpp", "Say(file.string());"),
     ("kestrel/orb/A.cpp", "// not file.string()\nSay(UTF8Text(file));")),
    ("a path becomes text through UTF8Text",
     ("tessel/export/plan/A.h", "Say(file.filename().generic_string());"),
     ("tests/unit/A.cpp", "Say(file.string());")),
    ("a path becomes text through UTF8Text",
     ("integrations/mlt/A.cpp", "Say(file.string());"),
     ("integrations/mlt/A.cpp", "Say(file.u8string());")),
    ("a path's own units are for platform files",
     ("kestrel/qelcore/files/A.cpp", "Open(file.native().c_str());"),
     ("kestrel/qelcore/files/APosix.cpp", "Open(file.native().c_str());")),
    ("the host names no plug-in and no program",
     ("kestrel/importhost/A.cpp", 'Find("ImporterTessel");'),
     ("tessel/document/A.cpp", 'Find("ImporterTessel");')),
    ("the host names no plug-in and no program",
     ("kestrel/qelui/A.h", "/// For tessel's dialog."),
     ("kestrel/qelui/A.h", "/// For any program's dialog.")),
    ("the host knows no key of a document",
     ("kestrel/importhost/A.cpp", 'Read(root, "mVideoFrameRate");'),
     ("tessel/document/A.cpp", 'Read(root, "mVideoFrameRate");')),
    ("the host knows no key of a document",
     ("kestrel/importhost/A.cpp", 'Read(root, "mVersion");'),
     ("kestrel/importhost/A.h", "int mVersion = 0;")),
    ("the host names no option of a program",
     ("kestrel/importhost/A.cpp", 'throw HostError("name it with --plugin");'),
     ("kestrel/importhost/A.cpp", "for (; count > 0; --count) {\n    if (--entry->second == 0 && --i) {}\n}")),
    ("nothing names a place on somebody's machine",
     ("docs/render.md", "see /home/somebody/clips"),
     ("docs/render.md", "see ~/home/somebody, $PWD/home/clips, /usr/bin/env and out/home/clips")),
    ("nothing names a place on somebody's machine",
     ("scripts/demo", "# from /Users/somebody/clips"),
     ("scripts/demo", "# network/")),
    ("a public header says which threads may call",
     ("kestrel/orb/Installed.h", "/// A file. Threads: as usual.\n"),
     ("kestrel/orb/Installed.h", "/// A file. Threads: [any-thread].\n")),
    ("a public header says which threads may call",
     ("kestrel/orb/Installed.h", "int buffer[thread];\n"),
     ("kestrel/orb/Private.h", "int buffer[thread];\n")),
]


class Rules(RuleCases, unittest.TestCase):
    RULES = RULES
    CASES = CASES
    broken_rules = staticmethod(broken_rules)
    SURROUNDINGS = (("kestrel/orb/CMakeLists.txt",
                     "target_sources(kestrel PRIVATE Private.h)\n"
                     "target_sources(kestrel PUBLIC FILE_SET HEADERS FILES Installed.h)\n"),)


if __name__ == "__main__":
    unittest.main()

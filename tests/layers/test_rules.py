"""Every include rule finds a small violation, and lets the nearest permitted thing pass."""

import os
import tempfile
import unittest

from include_rules import RULES, broken_rules

# rule's name, a file that breaks it, a file that does not.
CASES = [
    ("the plug-in's room host looks into no other room",
     ("ImporterTessel/host/A.cpp", "#include <ImporterTessel/settings/TesselInfo.h>"),
     ("ImporterTessel/host/A.cpp", "#include <ImporterTessel/host/HostServices.h>")),
    ("the plug-in's room settings looks into no other room",
     ("ImporterTessel/settings/A.cpp", "#include <ImporterTessel/entry/StartUp.h>"),
     ("ImporterTessel/settings/A.cpp", "#include <ImporterTessel/settings/TesselInfo.h>")),
    ("the plug-in's room audio looks into settings only",
     ("ImporterTessel/audio/A.h", "#include <ImporterTessel/video/FrameView.h>"),
     ("ImporterTessel/audio/A.h", "#include <ImporterTessel/settings/TesselInfo.h>")),
    ("the plug-in's room video looks into host, settings only",
     ("ImporterTessel/video/A.cpp", "#include <ImporterTessel/entry/HostServices.h>"),
     ("ImporterTessel/video/A.cpp", "#include <ImporterTessel/host/FrameSuites.h>")),
    ("the plug-in's room dialog looks into settings only",
     ("ImporterTessel/dialog/A.cpp", "#include <ImporterTessel/host/HostServices.h>"),
     ("ImporterTessel/dialog/A.cpp", "#include <ImporterTessel/settings/SwatchFiles.h>")),
    ("the plug-in's room entry looks into audio, dialog, host, settings, video only",
     ("ImporterTessel/entry/A.cpp", "#include <ImporterTessel/resources/Texts.h>"),
     ("ImporterTessel/entry/A.cpp", "#include <ImporterTessel/video/FrameSynthesis.h>")),
    ("the plug-in's room resources looks into entry only",
     ("ImporterTessel/resources/A.cpp", "#include <ImporterTessel/settings/TesselInfo.h>"),
     ("ImporterTessel/resources/A.cpp", "#include <ImporterTessel/entry/Identity.h>")),
    ("the plug-in includes the standard library, itself and the host's public headers only",
     ("ImporterTessel/entry/A.cpp", "#include <kestrel/importhost/Clip.h>"),
     ("ImporterTessel/entry/A.cpp", "#include <kestrel/qelcore/logging/Log.h>\n#include <vector>\n#include <stdint.h>")),
    ("the plug-in includes the standard library, itself and the host's public headers only",
     ("ImporterTessel/dialog/A.h", "#include <fmt/format.h>"),
     ("ImporterTessel/dialog/A.h", "#include <ImporterTessel/settings/TesselInfo.h>")),
    ("the plug-in includes the standard library, itself and the host's public headers only",
     ("ImporterTessel/dialog/A.h", "#include <unistd.h>"),
     ("ImporterTessel/dialog/A.h", "// #include <unistd.h>")),
    ("the plug-in includes the standard library, itself and the host's public headers only",
     ("ImporterTessel/dialog/A.h", '#include "../../kestrel/qt/Toolkit.h"'),
     ("ImporterTessel/dialog/A.h", "/* #include <qt/Toolkit.h>\n */")),
    ("the examples include the standard library, themselves and installed headers only",
     ("examples/flat/A.cpp", "#include <kestrel/orb/Private.h>"),
     ("examples/flat/A.cpp", "#include <kestrel/orb/Installed.h>\n#include <vector>\n#include <examples/flat/A.h>")),
    ("the examples include the standard library, themselves and installed headers only",
     ("examples/flat/A.h", '#include "../../kestrel/qt/Toolkit.h"'),
     ("examples/flat/A.h", "#include <kestrel/orb/AlsoInstalled.h>")),
    ("the examples include the standard library, themselves and installed headers only",
     ("examples/flat/A.cpp", "#include <ImporterTessel/entry/Identity.h>"),
     ("examples/flat/A.cpp", "#include <stdint.h>")),
    ("the program never includes the plug-in",
     ("tessel/export/A.cpp", "  #  include <ImporterTessel/settings/TesselInfo.h>"),
     ("tessel/export/A.cpp", "#include <kestrel/importhost/Clip.h>")),
    ("the host never includes the plug-in",
     ("kestrel/importhost/A.cpp", "#include <ImporterTessel/settings/DataFile.h>"),
     ("kestrel/importhost/A.cpp", "#include <kestrel/importabi/Records.h>")),
    ("the host never includes the program",
     ("kestrel/qelui/A.cpp", "#include <tessel/cli/Commands.h>"),
     ("kestrel/qelui/A.cpp", "#include <kestrel/qelui/Control.h>")),
    ("the wire format includes C's headers and itself only",
     ("kestrel/importabi/A.h", "#include <cstdint>"),
     ("kestrel/importabi/A.h", "#include <stdint.h>\n#include <kestrel/importabi/Records.h>")),
    ("the base libraries include no other library of the host",
     ("kestrel/pixmill/A.cpp", "#include <kestrel/importhost/Frame.h>"),
     ("kestrel/importhost/A.cpp", "#include <kestrel/importhost/Frame.h>")),
    ("the base libraries include no other library of the host",
     ("kestrel/qelcore/A.cpp", "#include <kestrel/qelui/toolkit/Toolkit.h>"),
     ("kestrel/qelui/A.cpp", "#include <kestrel/qelcore/logging/Log.h>\n#include <kestrel/qelui/toolkit/Toolkit.h>")),
    ("the user interface includes neither the loader nor the windows",
     ("kestrel/qelui/A.cpp", "#include <kestrel/importhost/Clip.h>"),
     ("kestrel/importhost/A.cpp", "#include <kestrel/qelui/toolkit/Toolkit.h>")),
    ("the windows never include the loader",
     ("kestrel/qt/A.cpp", "#include <kestrel/importhost/Clip.h>"),
     ("kestrel/qt/A.cpp", "#include <kestrel/qelui/toolkit/Toolkit.h>\n#include <kestrel/qt/Toolkit.h>")),
    ("nobody includes the windows: they are loaded at run time",
     ("tessel/cli/A.cpp", "#include <kestrel/qt/Toolkit.h>"),
     ("tessel/cli/A.cpp", "#include <kestrel/qelui/toolkit/Toolkit.h>")),
    ("Qt stays in its toolkit and in the viewer",
     ("kestrel/qelui/A.cpp", "#include <QWidget>"),
     ("kestrel/qt/A.cpp", "#include <QWidget>\n#include <QtGui/QImage>")),
    ("Qt stays in its toolkit and in the viewer",
     ("tessel/cli/A.cpp", "#include <QtCore/QObject>"),
     ("tessel/view/A.cpp", "#include <QObject>")),
    ("the JSON library stays behind serialization",
     ("kestrel/qelcore/debug/A.cpp", "#include <nlohmann/json.hpp>"),
     ("kestrel/qelcore/serialization/A.cpp", "#include <nlohmann/json.hpp>")),
    ("FFmpeg and zimg stay in the export and in the verification's reader",
     ("tessel/cli/A.cpp", "#include <libavutil/frame.h>"),
     ("tessel/export/encode/A.cpp", "#include <libavutil/frame.h>")),
    ("FFmpeg and zimg stay in the export and in the verification's reader",
     ("kestrel/pixmill/A.cpp", "#include <zimg.h>"),
     ("tessel/export/convert/A.cpp", "#include <zimg.h>")),
    ("FFmpeg and zimg stay in the export and in the verification's reader",
     ("tessel/verify/judge/A.cpp", "#include <libavutil/frame.h>"),
     ("tessel/verify/read/A.cpp", "#include <libavutil/frame.h>")),
    ("verification and damage share names and nothing else",
     ("tessel/verify/read/A.cpp", "#include <tessel/damage/Fault.h>"),
     ("tessel/verify/read/A.cpp", "#include <tessel/verify/catalogue/Catalogue.h>")),
    ("damage knows of the verification its names alone",
     ("tessel/damage/A.cpp", "#include <tessel/verify/catalogue/Catalogue.h>"),
     ("tessel/damage/A.cpp", "#include <tessel/verify/catalogue/Names.h>")),
    ("in the export, FFmpeg stays in the encoders",
     ("tessel/export/plan/A.h", "#include <libavcodec/avcodec.h>"),
     ("tessel/export/encode/A.h", "#include <libavcodec/avcodec.h>")),
    ("in the export, FFmpeg stays in the encoders",
     ("tessel/export/A.cpp", "#include <libavutil/frame.h>"),
     ("tessel/export/A.cpp", "#include <tessel/export/encode/VideoEncoder.h>")),
    ("in the export, zimg stays in the conversion",
     ("tessel/export/encode/A.cpp", "#include <zimg.h>"),
     ("tessel/export/encode/A.cpp", "#include <tessel/export/convert/Picture.h>")),
    ("the conversion knows no other room of the export",
     ("tessel/export/convert/A.h", "#include <tessel/export/plan/ColorTags.h>"),
     ("tessel/export/convert/A.h", "#include <tessel/export/ExportError.h>\n#include <tessel/export/convert/Picture.h>")),
    ("the conversion knows no other room of the export",
     ("tessel/export/convert/A.h", "#include <tessel/export/SignalSource.h>"),
     ("tessel/export/convert/A.h", "#include <kestrel/importhost/Frame.h>")),
    ("plans know what a conversion is, not the converter",
     ("tessel/export/plan/A.cpp", "#include <tessel/export/convert/FrameConverter.h>"),
     ("tessel/export/plan/A.cpp", "#include <tessel/export/convert/Conversion.h>")),
    ("plans know what a conversion is, not the converter",
     ("tessel/export/plan/A.cpp", "#include <tessel/export/encode/VideoEncoder.h>"),
     ("tessel/export/plan/A.cpp", "#include <tessel/export/plan/VideoPlan.h>")),
    ("the files know no other room of the export",
     ("tessel/export/files/A.cpp", "#include <tessel/export/convert/Picture.h>"),
     ("tessel/export/files/A.cpp", "#include <tessel/export/files/OutputFile.h>\n#include <kestrel/orb/FileReplacement.h>")),
    ("the encoders know the other rooms, not who drives them",
     ("tessel/export/encode/A.cpp", "#include <tessel/export/Render.h>"),
     ("tessel/export/encode/A.cpp", "#include <tessel/export/files/OutputFile.h>\n#include <tessel/export/plan/VideoPlan.h>")),
    ("one file includes the command-line library",
     ("tessel/cli/CommandLine.h", "#include <CLI/CLI.hpp>"),
     ("tessel/cli/CommandLine.cpp", "#include <CLI/CLI.hpp>")),
    ("the host's headers show no formatting library",
     ("kestrel/qelcore/A.h", "#include <fmt/format.h>"),
     ("kestrel/qelcore/A.cpp", "#include <fmt/format.h>")),
    ("the conformance checker knows the wire format alone",
     ("tests/conformance/checker/host/A.cpp", "#include <kestrel/qelcore/logging/Log.h>"),
     ("tests/conformance/checker/host/A.cpp", "#include <kestrel/importabi/Records.h>")),
    ("the conformance checker knows the wire format alone",
     ("tests/conformance/checker/host/A.cpp", "#include <tests/support/Host.h>"),
     ("tests/conformance/checker/host/A.cpp", "#include <vector>")),
    ("platform headers stay in platform files",
     ("kestrel/orb/File.cpp", "#include <sys/stat.h>"),
     ("kestrel/orb/FilePosix.cpp", "#include <sys/stat.h>\n#include <unistd.h>")),
    ("platform headers stay in platform files",
     ("tessel/cli/A.h", "#include <dlfcn.h>"),
     ("tessel/cli/ALinux.cpp", "#include <dlfcn.h>")),
]


class Rules(unittest.TestCase):
    def broken(self, file):
        path, text = file
        with tempfile.TemporaryDirectory() as root:
            os.makedirs(os.path.join(root, "kestrel/qt"))
            with open(os.path.join(root, "kestrel/qt/Toolkit.h"), "w", encoding="utf-8"):
                pass
            os.makedirs(os.path.join(root, "kestrel/orb"))
            with open(os.path.join(root, "kestrel/orb/CMakeLists.txt"), "w", encoding="utf-8") as lists:
                lists.write("target_sources(kestrel PRIVATE Private.h)\n"
                            "target_sources(kestrel PUBLIC FILE_SET HEADERS BASE_DIRS x FILES\n"
                            "    AlsoInstalled.h\n    Installed.h)\n")
            os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
            with open(os.path.join(root, path), "w", encoding="utf-8") as out:
                out.write(text + "\n")
            return {rule for _, _, _, rule in broken_rules(root)}

    def test_every_rule_finds_its_violation(self):
        for rule, violation, _ in CASES:
            with self.subTest(rule=rule, violation=violation):
                self.assertIn(rule, self.broken(violation))

    def test_what_is_permitted_passes_every_rule(self):
        for rule, _, permitted in CASES:
            with self.subTest(rule=rule, permitted=permitted):
                self.assertEqual(self.broken(permitted), set())

    def test_every_rule_has_a_case(self):
        self.assertEqual({rule.name for rule in RULES}, {rule for rule, _, _ in CASES})


if __name__ == "__main__":
    unittest.main()

"""Where no window can be opened the program says so in one line; Qt must not end it."""

import os
import unittest
from unittest import mock

from program import PROGRAM, ProgramTest, document


@unittest.skipUnless(os.path.exists(os.path.join(os.path.dirname(PROGRAM), "../lib/libkestrelqt.so")),
                     "built without windows")
class Display(ProgramTest):
    def edit(self, *arguments, **variables):
        """Runs `tessel edit` with these variables and no others that choose a display."""
        choosing = ("DISPLAY", "WAYLAND_DISPLAY", "KESTREL_UI", "XDG_SESSION_TYPE", "XDG_RUNTIME_DIR")
        environment = {key: value for key, value in os.environ.items()
                       if key not in choosing and not key.startswith("QT_")}
        clip = self.write("clip.tessel", document())
        with mock.patch.dict(os.environ, {**environment, **variables}, clear=True):
            return self.run_program("edit", clip, *arguments)

    def refused(self, *says, **variables):
        self.assert_failed(self.edit(**variables), 1, "the dialog cannot be shown", *says)

    def test_a_platform_that_qt_has_no_plug_in_for(self):
        self.refused("nonsense", "Qt has platform plug-ins for", "offscreen", KESTREL_UI="qt",
                     QT_QPA_PLATFORM="nonsense")

    def test_wayland_without_a_server_or_its_plug_in(self):
        self.refused("Qt cannot open a window here", WAYLAND_DISPLAY="wayland-of-nobody")

    def test_a_display_that_does_not_answer(self):
        self.refused("Qt cannot open a window here", ":987", DISPLAY=":987")
        self.refused("Qt cannot open a window here", ":987", KESTREL_UI="qt", QT_QPA_PLATFORM="xcb", DISPLAY=":987")

    def test_platforms_that_find_no_hardware(self):
        for name in ("eglfs", "linuxfb", "minimalegl", "vkkhrdisplay"):
            answer = self.edit(KESTREL_UI="qt", QT_QPA_PLATFORM=name, KESTREL_UI_SCRIPT="cancel.script")
            self.assertIn(answer.code, (0, 1), name)  # a machine may have the hardware; none ends by a signal

    def test_no_display_at_all(self):
        self.refused("DISPLAY and WAYLAND_DISPLAY are not set")
        self.refused("DISPLAY and WAYLAND_DISPLAY are not set", KESTREL_UI="qt")

    def test_a_script_is_played_without_windows_then(self):
        self.write("ok.script", "press okButton\n")
        answer = self.edit("--script", "ok.script", WAYLAND_DISPLAY="wayland-of-nobody")
        self.assertEqual((answer.code, answer.err), (0, ""))

    def test_the_second_of_several_platforms_is_taken(self):
        self.write("ok.script", "press okButton\n")
        for platforms in ("nonsense;offscreen", "xcb;offscreen"):
            answer = self.edit("--script", "ok.script", KESTREL_UI="qt", QT_QPA_PLATFORM=platforms)
            self.assertEqual(answer.code, 0, answer.err)


if __name__ == "__main__":
    unittest.main()

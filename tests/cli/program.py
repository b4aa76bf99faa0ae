"""Running the program and writing documents for it; the tests beside this file build on it."""

import copy
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

from document_values import TICKS_PER_SECOND, code, color  # noqa: E402

PROGRAM = os.environ["TESSEL"]
PLUGIN = os.environ["TESSEL_PLUGIN"]
# It needs Qt, and is not built without.
HAS_PLAYER = os.path.exists(os.path.join(os.path.dirname(os.path.dirname(PROGRAM)), "lib", "tessel", "tessel-view"))

DOCUMENT = {
    "mPixelFormat": code("bgra"),
    "mFrameWidth": 320,
    "mFrameHeight": 180,
    "mFramePAR": {"numerator": 1, "denominator": 1},
    "mFieldType": 0,
    "mRenderFormat": 1,
    "mUpperFieldColor": color(1, 0.5, 0.25),
    "mLowerFieldColor": color(0, 1, 0),
    "mTopGradiantColorStart": color(1, 0, 0),
    "mTopGradiantColorEnd": color(0.5, 0.5, 0.5),
    "mBottomGradiantColorStart": color(0, 1, 0),
    "mBottomGradiantColorEnd": color(1, 0.5, 0.25),
    "mVideoDuration": {"ticks": 2 * TICKS_PER_SECOND},
    "mVideoFrameRate": {"ticksperframe": TICKS_PER_SECOND // 25},
    "mVersion": 1,
}


def document(**changes):
    """The document above with keys replaced, or removed where the value is `...`."""
    made = copy.deepcopy(DOCUMENT)
    for key, value in changes.items():
        if value is ...:
            made.pop(key, None)
        else:
            made[key] = value
    return made


class Answer:
    def __init__(self, completed):
        self.code = completed.returncode
        self.out = completed.stdout.decode("utf-8")
        self.err = completed.stderr.decode("utf-8")  # strict: messages are UTF-8 whatever the file's name is


class ProgramTest(unittest.TestCase):
    """Each test has an empty folder of its own, in which the program runs."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="tessel-cli-")
        self.addCleanup(shutil.rmtree, self.folder, True)

    def path(self, name):
        """The name in the test's folder; text or bytes."""
        folder = self.folder if isinstance(name, str) else os.fsencode(self.folder)
        return os.path.join(folder, name)

    def write(self, name, content):
        """Writes a document, or text or bytes as they are. Returns the name."""
        if isinstance(content, dict):
            content = json.dumps(content)
        if isinstance(content, str):
            content = content.encode("utf-8")
        with open(self.path(name), "wb") as file:
            file.write(content)
        return name

    def settings(self, environment=None):
        """The environment that the program runs in."""
        settings = dict(os.environ)
        settings.pop("KESTREL_PLUGIN_PATH", None)
        settings["KESTREL_DEBUG_DATABASE"] = self.path("no-such-debug-database.json")
        settings.update(environment or {})
        return settings

    def run_command(self, command, environment=None, **options):
        options.setdefault("stdout", subprocess.PIPE)
        options.setdefault("cwd", self.folder)
        options.setdefault("timeout", 120)
        completed = subprocess.run(command, env=self.settings(environment), stdin=subprocess.DEVNULL,
                                   stderr=subprocess.PIPE, check=False, **options)
        completed.stdout = completed.stdout or b""
        return Answer(completed)

    def run_program(self, *arguments, **options):
        return self.run_command([PROGRAM, *arguments], **options)

    def run_shell(self, line, environment=None, **options):
        """A line as people type it, with the program in their path."""
        path = os.path.dirname(PROGRAM) + os.pathsep + os.environ.get("PATH", os.defpath)
        return self.run_command(["/bin/sh", "-c", line], {"PATH": path, **(environment or {})}, **options)

    def assert_done(self, answer):
        self.assertEqual((answer.code, answer.err), (0, ""))

    def assert_failed(self, answer, exit_code, *says):
        """One line on standard error that holds each of `says`, nothing on standard output."""
        self.assertEqual(answer.code, exit_code, answer.err)
        self.assertEqual(answer.out, "")
        self.assertTrue(answer.err.startswith("tessel: "), answer.err)
        self.assertEqual(answer.err.count("\n"), 1, answer.err)
        self.assertTrue(answer.err.endswith("\n"), answer.err)
        for part in says:
            self.assertIn(part, answer.err)

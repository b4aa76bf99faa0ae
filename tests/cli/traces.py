"""The program's calls of the system, seen from outside with strace."""

import os
import shutil
import subprocess
import unittest

from program import PROGRAM, ProgramTest


@unittest.skipUnless(shutil.which("strace"), "strace is not installed")
class TracedTest(ProgramTest):
    def calls(self, names, *arguments):
        """The calls of these names ("open,openat") that the program makes, a line each."""
        environment = dict(os.environ, KESTREL_DEBUG_DATABASE=self.path("no-such-debug-database.json"))
        completed = subprocess.run(["strace", "-f", "-e", f"trace={names}", "-o", "trace", PROGRAM, *arguments],
                                   cwd=self.folder, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120, check=False)
        if completed.returncode != 0 and b"ptrace" in completed.stderr:
            self.skipTest("tracing is not permitted on this system")
        self.assertEqual((completed.returncode, completed.stderr), (0, b""))
        with open(self.path("trace"), encoding="utf-8", errors="replace") as trace:
            return trace.read().splitlines()

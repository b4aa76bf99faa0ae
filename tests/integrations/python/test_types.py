"""The package's types: mypy finds nothing in it, and infers from a user's code what the package gives."""

import importlib.util
import os
import subprocess
import sys
import unittest

from python_support import SKIPPED, PackageTest

PACKAGES = os.environ["PYTHONPATH"].split(os.pathsep)[0]
USER = '''\
import tessel

clip = tessel.Clip("clip.tessel")
reveal_type(clip.frame(0))
reveal_type(clip.frame(0, "yuv420p"))
reveal_type(clip.samples(0, 10))
reveal_type(clip.description.rate)
reveal_type(tessel.verify(clip, "movie.mov").findings)
clip.frame("0")
'''


class Types(PackageTest):
    def mypy(self, *arguments):
        return subprocess.run([sys.executable, "-m", "mypy", "--strict", "--cache-dir", self.path("cache"), *arguments],
                              cwd=self.folder, env=dict(os.environ, MYPYPATH=PACKAGES), stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False)

    def test_the_package_and_its_users_are_typed(self):
        self.write("user.py", USER)
        # The decorator of pytest 7 for hooks has no types.
        checked = self.mypy("--allow-untyped-decorators", "-p", "tessel", "-m", "pytest_tessel")
        self.assertEqual(checked.returncode, 0, checked.stdout)
        said = [line.split(": ", 2)[2] for line in self.mypy("user.py").stdout.splitlines() if line.startswith("user.py")]
        array = "numpy.ndarray[Any, numpy.dtype[Any]]"
        self.assertEqual([line.replace("builtins.", "") for line in said[:5]], [
            f'Revealed type is "{array}"', f'Revealed type is "tuple[{array}, ...]"',
            'Revealed type is "numpy.ndarray[Any, numpy.dtype[numpy.floating[numpy._typing._32Bit]]]"',
            'Revealed type is "Union[fractions.Fraction, None]"', 'Revealed type is "tuple[tessel._verify.Finding, ...]"'])
        self.assertIn('No overload variant of "frame" of "Clip" matches argument type "str"', said[5])


if __name__ == "__main__":
    if importlib.util.find_spec("mypy") is None:
        print("skipped: this Python has no mypy")
        sys.exit(SKIPPED)
    unittest.main()

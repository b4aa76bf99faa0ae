"""What `cmake --install` gives to people who write importers: used as they would, from a folder that was moved.

Variables: BUILD (the build folder), CMAKE, CXX and CC, the compilers that the build was made with, and MODULE_PYTHON,
the Python that its module is for, empty where it has none.
"""

import glob
import os
import re
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
GUIDE = os.path.join(ROOT, "docs", "write-an-importer.md")
EXAMPLE = os.path.join(ROOT, "examples", "flat-importer")
CMAKE = os.environ.get("CMAKE", "cmake")
CXX = os.environ.get("CXX", "c++")
CC = os.environ.get("CC", "cc")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def blocks(language):
    """The guide's code blocks of a language, in order."""
    return re.findall(rf"^```{language}\n(.*?)^```$", read(GUIDE), re.DOTALL | re.MULTILINE)


def project_version():
    return re.search(r"project\(Tessel VERSION ([0-9.]+)", read(os.path.join(ROOT, "CMakeLists.txt"))).group(1)


class InstalledTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="tessel-sdk-")
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        first = os.path.join(cls.folder, "first")
        subprocess.run([CMAKE, "--install", os.environ["BUILD"], "--prefix", first], check=True,
                       stdout=subprocess.DEVNULL)
        cls.prefix = os.path.join(cls.folder, "moved")
        os.rename(first, cls.prefix)

    def run_in(self, folder, *command, **more):
        environment = dict(os.environ, PREFIX=self.prefix, CXX=CXX, CC=CC,
                           PKG_CONFIG_PATH=os.path.join(self.prefix, "lib", "pkgconfig"))
        environment.pop("KESTREL_PLUGIN_PATH", None)
        done = subprocess.run(command, cwd=folder, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, check=False, timeout=240, **more)
        self.assertEqual(done.returncode, 0, f"{command}\n{done.stdout}")
        return done.stdout

    def new_folder(self):
        return tempfile.mkdtemp(dir=self.folder)

    def configure(self, text):
        """Configures a project of that CMakeLists.txt against the installed package."""
        folder = self.new_folder()
        with open(os.path.join(folder, "CMakeLists.txt"), "w", encoding="utf-8") as file:
            file.write("cmake_minimum_required(VERSION 3.25)\nproject(User LANGUAGES CXX)\n" + text)
        return self.run_in(folder, CMAKE, "-S", ".", "-B", "build", f"-DCMAKE_PREFIX_PATH={self.prefix}")


class Guide(InstalledTest):
    def test_every_command_of_the_guide_does_what_it_says(self):
        folder = self.new_folder()
        commands = "".join(blocks("sh"))
        self.assertIn("cmake --install build/release", commands)
        script = commands.replace("build/release", '"$BUILD"')
        self.run_in(folder, "bash", "-euo", "pipefail", "-c", script)
        work = os.path.join(folder, "flat-importer")
        tessel = os.path.join(self.prefix, "bin", "tessel")
        for plugin in ("build/FlatImporter.so", "FlatImporter.so"):
            with self.subTest(plugin=plugin):
                facts = self.run_in(work, tessel, "--plugin", plugin, "info", "blue.flat")
                self.assertRegex(facts, r"frame size +1920x1080")
                self.assertRegex(facts, r"duration +100 frames")
                self.assertRegex(facts, r"audio +48000 Hz, 2 channels")
        # 0.2, 0.4 and 0.6 of 255 are 51, 102 and 153.
        self.run_in(work, tessel, "--plugin", "build/FlatImporter.so", "render", "blue.flat", "--frames", "1", "-o",
                    "frame.png")
        pixels = subprocess.run(["ffmpeg", "-v", "error", "-i", "frame.png", "-f", "rawvideo", "-pix_fmt", "rgb24", "-"],
                                cwd=work, stdout=subprocess.PIPE, check=True).stdout
        self.assertEqual(pixels, bytes((51, 102, 153)) * (1920 * 1080))

    def test_the_guide_shows_the_example_as_it_is(self):
        files = {"cpp": ("FlatImporter.cpp", "FlatClip.h"), "cmake": ("CMakeLists.txt",)}
        for language, names in files.items():
            example = re.sub(r"^ +", "", "".join(read(os.path.join(EXAMPLE, name)) for name in names), flags=re.MULTILINE)
            shown = blocks(language)
            self.assertTrue(shown)
            for block in shown:
                with self.subTest(block=block):
                    self.assertIn(re.sub(r"^ +", "", block, flags=re.MULTILINE), example)


class Package(InstalledTest):
    def test_components_are_found_by_name(self):
        self.configure("find_package(Kestrel REQUIRED COMPONENTS base ui host)\n"
                       "foreach(target IN ITEMS importabi kestrel kestrelui kestrelhost)\n"
                       "    if(NOT TARGET Kestrel::${target})\n"
                       "        message(FATAL_ERROR ${target})\n"
                       "    endif()\n"
                       "endforeach()\n")

    def test_a_component_that_is_none_is_not_found(self):
        out = self.configure("find_package(Kestrel COMPONENTS base sausage)\n"
                             "message(STATUS \"found: ${Kestrel_FOUND}\")\n")
        self.assertRegex(out, r"found: (?:0|FALSE)")

    def test_only_public_headers_are_installed(self):
        installed = set()
        include = os.path.join(self.prefix, "include")
        for where, _, names in os.walk(include):
            installed |= {os.path.relpath(os.path.join(where, name), include) for name in names}
        self.assertIn("kestrel/importabi/Records.h", installed)
        self.assertIn("kestrel/importhost/Clip.h", installed)
        for private in ("kestrel/pixmill/FillRow.h", "kestrel/importhost/FramePool.h", "kestrel/qt/Messages.h"):
            self.assertTrue(os.path.exists(os.path.join(ROOT, private)), private)
            self.assertNotIn(private, installed)
        # A public header that included a private one could not be used.
        for header in sorted(installed):
            for included in re.findall(r'#include (?:<(kestrel/[^>]+)>|"([^"]+)")', read(os.path.join(include, header))):
                wanted = included[0] or os.path.normpath(os.path.join(os.path.dirname(header), included[1]))
                self.assertIn(wanted, installed, f"included by {header}")

    def test_the_wire_format_serves_a_c_program(self):
        folder = self.new_folder()
        headers = sorted(os.listdir(os.path.join(self.prefix, "include", "kestrel", "importabi")))
        with open(os.path.join(folder, "user.c"), "w", encoding="utf-8") as file:
            file.write("".join(f"#include <kestrel/importabi/{header}>\n" for header in headers))
            file.write('KS_IMPORTER_RESOURCES("$$$/User/Name=User", "USER Importer");\n')
        flags = self.run_in(folder, "pkg-config", "--cflags", "kestrel-importabi")
        self.run_in(folder, "bash", "-c", f'"$CC" -std=c11 -Wall -Wextra -Wpedantic -Werror -c user.c {flags}')

    def test_no_installed_file_names_the_folder_it_was_built_or_installed_in(self):
        for where, _, names in os.walk(self.prefix):
            for name in names:
                path = os.path.join(where, name)
                if not name.endswith((".cmake", ".pc", ".h")):
                    continue
                for folder in (ROOT, os.environ["BUILD"], os.path.join(self.folder, "first")):
                    self.assertNotIn(folder, read(path), path)


class CInterface(InstalledTest):
    """The library `libtessel`, as C programs use it: the example, built both ways."""

    EXAMPLE = os.path.join(ROOT, "examples", "c-frame")

    def compare_with_the_program(self, frame):
        clip = os.path.join(ROOT, "samples", "short.tessel")
        folder = self.new_folder()
        self.run_in(folder, "bash", "-c", f"{frame} {clip} 7 > frame.ppm")
        self.run_in(folder, os.path.join(self.prefix, "bin", "tessel"), "render", clip, "--from", "7", "--frames", "1",
                    "--quiet", "-o", "frame.png")
        pictures = [subprocess.run(["ffmpeg", "-v", "error", "-i", name, "-f", "rawvideo", "-pix_fmt", "rgb24", "-"],
                                   cwd=folder, stdout=subprocess.PIPE, check=True).stdout
                    for name in ("frame.ppm", "frame.png")]
        self.assertEqual(len(pictures[0]), 160 * 106 * 3)
        self.assertTrue(pictures[0] == pictures[1])

    def test_the_example_is_built_with_the_cmake_package(self):
        folder = self.new_folder()
        self.run_in(folder, CMAKE, "-S", self.EXAMPLE, "-B", "build", f"-DCMAKE_PREFIX_PATH={self.prefix}",
                    f"-DCMAKE_C_COMPILER={CC}")
        self.run_in(folder, CMAKE, "--build", "build")
        self.compare_with_the_program(os.path.join(folder, "build", "frame"))

    def test_the_example_is_built_with_pkg_config_and_without_warnings(self):
        folder = self.new_folder()
        self.run_in(folder, "bash", "-c", '"$CC" -std=c11 -Wall -Wextra -Wpedantic -Werror -o frame '
                    f'{self.EXAMPLE}/frame.c $(pkg-config --cflags --libs tessel) -Wl,-rpath,"$PREFIX/lib"')
        self.compare_with_the_program(os.path.join(folder, "frame"))

    def test_the_header_serves_c_plus_plus(self):
        folder = self.new_folder()
        with open(os.path.join(folder, "user.cpp"), "w", encoding="utf-8") as file:
            file.write("#include <tessel/api/tessel.h>\nint main() { return tessel_version() == nullptr; }\n")
        self.run_in(folder, "bash", "-c", '"$CXX" -std=c++11 -Wall -Wextra -Wpedantic -Werror -c user.cpp '
                    "$(pkg-config --cflags tessel)")


@unittest.skipUnless(os.environ.get("MODULE_PYTHON"), "the build has no Python module")
class PythonPackage(InstalledTest):
    def test_it_is_imported_from_the_moved_tree_and_finds_the_plug_in(self):
        found = glob.glob(os.path.join(self.prefix, "lib", "python3*", "dist-packages"))
        self.assertEqual(len(found), 1, found)
        folder = self.new_folder()
        script = ("import sys; sys.path.insert(0, sys.argv[1]); import tessel; clip = tessel.Clip(sys.argv[2]); "
                  "clip.frame(7, 'rgb').tofile('frame.raw'); print(tessel.__version__)")
        clip = os.path.join(ROOT, "samples", "short.tessel")
        said = self.run_in(folder, os.environ["MODULE_PYTHON"], "-B", "-c", script, found[0], clip)
        self.assertEqual(said.strip(), project_version())
        self.run_in(folder, os.path.join(self.prefix, "bin", "tessel"), "render", clip, "--from", "7", "--frames", "1",
                    "--quiet", "-o", "frame.png")
        expected = subprocess.run(["ffmpeg", "-v", "error", "-i", "frame.png", "-f", "rawvideo", "-pix_fmt", "rgb24", "-"],
                                  cwd=folder, stdout=subprocess.PIPE, check=True).stdout
        with open(os.path.join(folder, "frame.raw"), "rb") as file:
            self.assertTrue(file.read() == expected)


class OtherPrograms(InstalledTest):
    """The modules of other programs in the moved tree, used without packages as docs/integrations.md says."""

    CLIP = os.path.join(ROOT, "samples", "short.tessel")

    def require(self, *module):
        path = os.path.join(self.prefix, "lib", *module)
        if not os.path.exists(path):
            self.skipTest(f"the build has no {module[-1]}")
        return path

    def test_mpv_takes_the_plug_in_from_its_configuration(self):
        plugin = self.require("mpv-tessel", "tessel.so")
        folder = self.new_folder()
        os.mkdir(os.path.join(folder, "mpv"))
        with open(os.path.join(folder, "mpv", "mpv.conf"), "w", encoding="utf-8") as file:
            file.write(f"script={plugin}\n")
        self.run_in(folder, "env", f"XDG_CONFIG_HOME={folder}", "mpv", "--vo=null", "--ao=null", "--frames=2", self.CLIP)

    def test_gstreamer_takes_the_plug_in_from_a_folder(self):
        plugin = self.require("gstreamer-1.0", "libgsttessel.so")
        folder = self.new_folder()
        self.run_in(folder, "env", f"GST_PLUGIN_PATH={os.path.dirname(plugin)}", f"GST_REGISTRY={folder}/registry",
                    os.path.join(ROOT, "tests", "support", "run-pipeline"), "-q", "tesselsrc", f"location={self.CLIP}", "!", "filesink", "location=out.raw")
        self.assertGreater(os.path.getsize(os.path.join(folder, "out.raw")), 160 * 106)

    def test_melt_takes_the_module_from_a_folder_with_its_own(self):
        self.require("mlt-7", "libmlttessel.so")
        folder = self.new_folder()
        guide = read(os.path.join(ROOT, "docs", "integrations.md"))
        link, play = re.search(r"^(ln -s .*)\n(MLT_REPOSITORY=\S+ melt) clip.tessel$", guide, re.MULTILINE).groups()
        play = f"{play} -silent {self.CLIP} out=2 -consumer avformat:out.nut vcodec=rawvideo real_time=-1 </dev/null"
        # melt 7.12 sometimes hangs or writes nothing on a busy machine, whatever it plays: then it is run again.
        again = f"for turn in 1 2 3 4; do [ -s out.nut ] || timeout 40 env {play} || true; done; [ -s out.nut ]"
        script = f"{link}\n{again}".replace("PREFIX/", '"$PREFIX"/')
        self.run_in(folder, "env", "QT_QPA_PLATFORM=offscreen", "bash", "-euc", script)


class Version(InstalledTest):
    def test_program_libraries_packages_and_change_log_share_one(self):
        version = project_version()
        self.assertEqual(self.run_in("/", os.path.join(self.prefix, "bin", "tessel"), "--version").split()[-1], version)
        for module in ("kestrel-importabi", "kestrel", "kestrelui", "kestrelhost", "tessel"):
            self.assertEqual(self.run_in("/", "pkg-config", "--modversion", module).strip(), version, module)
        self.configure(f"find_package(Kestrel {version} EXACT REQUIRED COMPONENTS base)\n"
                       f"find_package(Tessel {version} EXACT REQUIRED)\n")
        for library in ("kestrel", "kestrelui", "kestrelhost", "tessel"):
            self.assertTrue(os.path.exists(os.path.join(self.prefix, "lib", f"lib{library}.so.{version}")), library)
        newest = re.search(r"^## \[([0-9.]+)\]", read(os.path.join(ROOT, "CHANGELOG.md")), re.MULTILINE).group(1)
        self.assertEqual(newest, version)


if __name__ == "__main__":
    unittest.main()

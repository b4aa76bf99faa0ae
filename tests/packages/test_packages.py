"""The Debian packages as files: what is in which, what they need, and that an unpacked one works.

Variables: BUILD (the build folder), CMAKE, and HAS_WINDOWS, HAS_PYTHON, HAS_MLT, HAS_MPV, HAS_GSTREAMER: 1 where the
build has the Qt toolkit, the Python module, the module of MLT, the plug-in of mpv, that of GStreamer. PACKAGES names a folder of packages to look into,
instead of making them.
"""

import gzip
import os
import re
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SAMPLE = os.path.join(ROOT, "samples", "hd-2997.tessel")
HAS_WINDOWS = os.environ.get("HAS_WINDOWS", "1") == "1"
HAS_PYTHON = os.environ.get("HAS_PYTHON", "1") == "1"
HAS_MPV = os.environ.get("HAS_MPV", "1") == "1"
HAS_MLT = os.environ.get("HAS_MLT", "1") == "1"
HAS_GSTREAMER = os.environ.get("HAS_GSTREAMER", "1") == "1"
NAMES = sorted(["libkestrel-dev", "tessel"] + (["tessel-qt"] if HAS_WINDOWS else []) +
               (["python3-tessel"] if HAS_PYTHON else []) + (["mpv-tessel"] if HAS_MPV else []) +
               (["mlt-tessel"] if HAS_MLT else []) +
               (["gstreamer1.0-tessel"] if HAS_GSTREAMER else []))
NEEDED = ("dpkg-deb", "dpkg-shlibdeps", "readelf", "gzip")


def output(*command, **more):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True, **more).stdout


def make_packages(folder):
    cpack = os.path.join(os.path.dirname(os.environ["CMAKE"]), "cpack")
    done = subprocess.run([cpack, "--config", os.path.join(os.environ["BUILD"], "CPackConfig.cmake"), "-B", folder,
                           "-D", f"CPACK_PACKAGE_DIRECTORY={folder}", "-D", f"CPACK_OUTPUT_FILE_PREFIX={folder}",
                           # Small packages are for people who download them.
                           "-D", "CPACK_DEBIAN_COMPRESSION_TYPE=none"],
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    if done.returncode != 0:
        raise AssertionError(done.stdout)


def walk(folder):
    for where, _, names in os.walk(folder):
        for name in names:
            yield os.path.relpath(os.path.join(where, name), folder)


FOLDER = tempfile.mkdtemp(prefix="tessel-packages-")
unittest.addModuleCleanup(shutil.rmtree, FOLDER, ignore_errors=True)
FILES = {}
UNPACKED = {}
CONTENTS = {}


def setUpModule():
    if not all(map(shutil.which, NEEDED)):
        raise unittest.SkipTest(f"one of {', '.join(NEEDED)} is not installed")
    made = os.environ.get("PACKAGES") or os.path.join(FOLDER, "made")
    if "PACKAGES" not in os.environ:
        make_packages(made)
    for name in os.listdir(made):
        if name.endswith(".deb"):
            package = name.split("_")[0]
            FILES[package] = os.path.join(made, name)
            UNPACKED[package] = os.path.join(FOLDER, package)
            subprocess.run(["dpkg-deb", "-x", FILES[package], UNPACKED[package]], check=True)
            CONTENTS[package] = sorted(walk(UNPACKED[package]))


class PackageTest(unittest.TestCase):
    def field(self, package, name):
        return output("dpkg-deb", "-f", FILES[package], name).strip()

    def one(self, package, pattern):
        """The one path of a package that matches."""
        found = [path for path in CONTENTS[package] if re.fullmatch(pattern, path)]
        self.assertEqual(len(found), 1, f"{pattern}: {found}")
        return os.path.join(UNPACKED[package], found[0])

    def binaries(self):
        for package, paths in CONTENTS.items():
            for path in paths:
                full = os.path.join(UNPACKED[package], path)
                if not os.path.islink(full):
                    with open(full, "rb") as file:
                        if file.read(4) == b"\x7fELF":
                            yield full


class Contents(PackageTest):
    def test_there_is_one_package_for_each_kind_of_user(self):
        self.assertEqual(sorted(FILES), NAMES)

    def test_no_file_is_in_two_packages(self):
        everything = [path for paths in CONTENTS.values() for path in paths]
        self.assertEqual(sorted(set(everything)), sorted(everything))

    def test_the_program_comes_with_plug_in_and_host(self):
        self.one("tessel", r"usr/bin/tessel")
        self.one("tessel", r"usr/lib/(?:[^/]+/)?kestrel/ImporterTessel\.so")
        for library in ("kestrel", "kestrelui", "kestrelhost"):
            self.one("tessel", rf"usr/lib/(?:[^/]+/)?lib{library}\.so\.[0-9.]+\.[0-9]+\.[0-9]+")

    @unittest.skipUnless(HAS_PYTHON, "the build has no Python module")
    def test_the_python_package_is_where_debians_python_looks(self):
        for pattern in (r"tessel/__init__\.py", r"tessel/py\.typed", r"tessel/_tessel\.cpython-.*\.so", r"pytest_tessel\.py",
                        r"tessel-[0-9.]+\.dist-info/METADATA", r"tessel-[0-9.]+\.dist-info/entry_points\.txt"):
            self.one("python3-tessel", r"usr/lib/python3(?:\.[0-9]+)?/dist-packages/" + pattern)
        self.assertFalse([path for path in CONTENTS["python3-tessel"] if path.endswith(".pyc")])
        scripts = output("dpkg-deb", "-I", FILES["python3-tessel"])
        self.assertIn("postinst", scripts)
        self.assertIn("prerm", scripts)

    @unittest.skipUnless(HAS_MLT, "the build has no module of MLT")
    def test_mlt_finds_its_module_among_its_own(self):
        self.one("mlt-tessel", r"usr/lib/(?:[^/]+/)?mlt-7/libmlttessel\.so")
        self.one("mlt-tessel", r"usr/share/mlt-7/tessel/producer_tessel\.yml")
        self.assertIn("libmlt7", self.field("mlt-tessel", "Depends"))

    @unittest.skipUnless(HAS_MPV, "the build has no plug-in of mpv")
    def test_mpv_finds_its_plug_in_among_its_scripts(self):
        plug_in = self.one("mpv-tessel", r"usr/lib/(?:[^/]+/)?mpv-tessel/tessel\.so")
        link = os.readlink(self.one("mpv-tessel", r"etc/mpv/scripts/tessel\.so"))
        self.assertEqual(UNPACKED["mpv-tessel"] + link, plug_in)

    @unittest.skipUnless(HAS_GSTREAMER, "the build has no GStreamer plug-in")
    def test_the_gstreamer_package_is_where_gstreamer_looks(self):
        library = self.one("gstreamer1.0-tessel", r"usr/lib/(?:[^/]+/)?gstreamer-1\.0/libgsttessel\.so")
        self.assertIn("gst_plugin_tessel_get_desc", output("readelf", "-W", "--dyn-syms", library))

    def test_manual_pages_are_compressed_and_completions_stand_where_shells_look(self):
        pages = [path for path in CONTENTS["tessel"] if path.startswith("usr/share/man/")]
        self.assertIn("usr/share/man/man1/tessel-render.1.gz", pages)
        self.assertIn("usr/share/man/man5/tessel.5.gz", pages)
        self.assertTrue(all(page.endswith(".gz") for page in pages), pages)
        for pattern in (r"usr/share/bash-completion/completions/tessel", r"usr/share/zsh/[^/]+/_tessel",
                        r"usr/share/fish/vendor_completions\.d/tessel\.fish"):
            self.one("tessel", pattern)

    def test_the_scripts_for_clusters_can_be_called(self):
        for script in ("slurm/render-parts", "slurm/part", "slurm/join", "parallel/render-parts"):
            path = self.one("tessel", rf"usr/share/tessel/cluster/{script}")
            self.assertTrue(os.access(path, os.X_OK), path)

    def test_headers_and_names_to_link_by_are_for_developers_alone(self):
        for_developers = re.compile(r"usr/include/.*|.*\.so|.*\.pc|.*/cmake/(?:Kestrel|Tessel)/.*|.*/kestrel-conformance"
                                    # Examples are sources to build.
                                    r"|.*/kestrel/examples/.*|usr/share/doc/libkestrel-dev/.*")
        plug_ins = re.compile(r".*/kestrel/ImporterTessel\.so|.*/dist-packages/tessel/_tessel\..*\.so|"
                              r".*/mpv(?:-tessel|/scripts)/tessel\.so|.*/gstreamer-1\.0/libgsttessel\.so"
                              r"|.*/mlt-7/libmlttessel\.so")
        for package, paths in CONTENTS.items():
            for path in paths:
                if plug_ins.fullmatch(path):
                    continue
                self.assertEqual(bool(for_developers.fullmatch(path)), package == "libkestrel-dev", f"{package}: {path}")

    def test_each_package_says_what_it_is_under_which_terms_and_what_is_new(self):
        for package in NAMES:
            documents = os.path.join(UNPACKED[package], "usr/share/doc", package)
            with open(os.path.join(documents, "copyright"), encoding="utf-8") as file:
                self.assertIn("No licence has been granted", file.read())
            with gzip.open(os.path.join(documents, "changelog.Debian.gz"), "rt", encoding="utf-8") as file:
                first = file.readline()
            self.assertEqual(first.split()[:2], [package, f"({self.field(package, 'Version')})"])

    def test_programs_are_stripped_and_search_the_systems_folders_alone(self):
        seen = 0
        for file in self.binaries():
            seen += 1
            sections = output("readelf", "-SW", file)
            self.assertNotIn(".symtab", sections, file)
            self.assertNotIn(".debug_info", sections, file)
            self.assertNotRegex(output("readelf", "-dW", file), r"\((?:RPATH|RUNPATH)\)", file)
        self.assertGreaterEqual(seen, 6)

    def test_each_library_has_the_name_that_the_loader_looks_for(self):
        for file in self.binaries():
            soname = re.search(r"\(SONAME\).*\[(.*)\]", output("readelf", "-dW", file))
            if soname:
                link = os.path.join(os.path.dirname(file), soname.group(1))
                self.assertTrue(os.path.samefile(link, file), f"{link} is not {file}")

    def test_the_loaders_list_is_renewed(self):
        triggers = output("dpkg-deb", "-I", FILES["tessel"], "triggers")
        self.assertIn("ldconfig", triggers)


class Control(PackageTest):
    def test_the_version_is_the_projects(self):
        with open(os.path.join(ROOT, "CMakeLists.txt"), encoding="utf-8") as file:
            version = re.search(r"project\(Tessel VERSION ([0-9.]+)", file.read()).group(1)
        for package in NAMES:
            self.assertEqual(self.field(package, "Version"), version + "-1")

    def test_the_program_needs_ffmpegs_libraries_and_no_windows(self):
        needed = self.field("tessel", "Depends")
        for library in ("libavcodec", "libavformat", "libzimg", "libelf1", "libc6"):
            self.assertIn(library, needed)
        self.assertNotIn("qt", needed.lower())

    def test_the_other_packages_need_this_very_program(self):
        same = f"tessel (= {self.field('tessel', 'Version')})"
        for package in NAMES:
            if package != "tessel":
                self.assertIn(same, self.field(package, "Depends"))
        if HAS_PYTHON:
            self.assertRegex(self.field("python3-tessel", "Depends"),
                             r"python3 \(>= 3\.[0-9]+\), python3 \(<< 3\.[0-9]+\)")
        if HAS_WINDOWS:
            self.assertIn("libqt6widgets6", self.field("tessel-qt", "Depends"))


class Unpacked(PackageTest):
    """The package of the program alone, unpacked somewhere: the windows are not there."""

    def run_program(self, *arguments):
        libraries = os.path.dirname(self.one("tessel", r"usr/lib/(?:[^/]+/)?libkestrelhost\.so\.[0-9.]+\.[0-9]+\.[0-9]+"))
        environment = {key: value for key, value in os.environ.items()
                       if not key.startswith("KESTREL_") and key not in ("DISPLAY", "WAYLAND_DISPLAY")}
        environment["LD_LIBRARY_PATH"] = libraries
        return subprocess.run([os.path.join(UNPACKED["tessel"], "usr/bin/tessel"), *arguments], cwd=FOLDER,
                              env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)

    def test_it_finds_its_plug_in_and_renders(self):
        done = self.run_program("render", SAMPLE, "--frames", "2", "-o", "two.mkv")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertGreater(os.path.getsize(os.path.join(FOLDER, "two.mkv")), 1000)

    def test_edit_names_the_package_with_the_windows(self):
        done = self.run_program("edit", SAMPLE)
        self.assertEqual((done.returncode, done.stderr.count("\n")), (1, 1), done.stderr)
        self.assertIn("package tessel-qt", done.stderr)


if __name__ == "__main__":
    unittest.main()

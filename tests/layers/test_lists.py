"""The check of CMake lists finds what is missing in a small tree, and nothing in a whole one."""

import os
import tempfile
import unittest

from check_lists import problems

WHOLE = {
    "CMakeLists.txt": "add_subdirectory(kestrel)\nadd_subdirectory(tests)",
    "kestrel/CMakeLists.txt": "add_subdirectory(orb)",
    "kestrel/orb/CMakeLists.txt": "target_sources(kestrel PRIVATE File.cpp text/Names.cpp ../Shared.cpp)",
    "kestrel/orb/File.cpp": "",
    "kestrel/orb/text/Names.cpp": "",
    "kestrel/Shared.cpp": "",
    "tests/CMakeLists.txt": 'add_plugin(Stem)\nadd_test("${CMAKE_CURRENT_SOURCE_DIR}/Own.c"\n'
                            '${CMAKE_SOURCE_DIR}/tests/FromTheRoot.S)',
    "tests/Stem.cpp": "",
    "tests/Own.c": "",
    "tests/FromTheRoot.S": "",
    "tests/notes.txt": "",
}


def found_in(files):
    with tempfile.TemporaryDirectory() as root:
        for path, text in files.items():
            os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
            with open(os.path.join(root, path), "w", encoding="utf-8") as out:
                out.write(text)
        return {path for path, _ in problems(root)}


class Lists(unittest.TestCase):
    def test_a_tree_whose_lists_name_everything_passes(self):
        self.assertEqual(found_in(WHOLE), set())

    def test_a_file_that_no_list_names_is_found(self):
        self.assertEqual(found_in(WHOLE | {"tests/Left.cpp": ""}), {"tests/Left.cpp"})

    def test_a_file_that_stands_in_a_comment_only_is_found(self):
        self.assertEqual(found_in(WHOLE | {"tests/Left.cpp": "", "kestrel/CMakeLists.txt":
                                           "# ../tests/Left.cpp\nadd_subdirectory(orb)"}), {"tests/Left.cpp"})

    def test_a_file_of_the_same_name_elsewhere_does_not_count(self):
        self.assertEqual(found_in(WHOLE | {"tests/File.cpp": ""}), {"tests/File.cpp"})

    def test_a_folder_that_no_list_adds_is_found(self):
        self.assertEqual(found_in(WHOLE | {"kestrel/ksm/CMakeLists.txt": ""}), {"kestrel/ksm"})


if __name__ == "__main__":
    unittest.main()

"""Documents that are no clip: one line that names the file and what was expected, exit 1."""

import os
import subprocess
import unittest

from program import ProgramTest, document


class Documents(ProgramTest):
    def refuse(self, name, *says):
        self.assert_failed(self.run_program("info", name), 1, f"tessel: {name}: ", *says)

    def test_a_missing_file(self):
        self.refuse("gone.tessel", "no such file")

    def test_a_missing_folder(self):
        self.refuse("gone/clip.tessel", "no such file")

    def test_a_directory(self):
        os.mkdir(self.path("folder.tessel"))
        self.refuse("folder.tessel", "is a directory")

    def test_an_empty_file(self):
        self.refuse(self.write("clip.tessel", ""), "is empty")

    def test_a_pipe_is_refused_instead_of_waited_for(self):
        os.mkfifo(self.path("pipe.tessel"))
        self.refuse("pipe.tessel", "not an ordinary file")

    def test_a_link_to_itself(self):
        os.symlink("loop.tessel", self.path("loop.tessel"))
        self.refuse("loop.tessel", "cannot be read: too many levels of symbolic links")

    def test_a_link_to_nothing(self):
        os.symlink("gone", self.path("link.tessel"))
        self.refuse("link.tessel", "no such file")

    def test_an_unreadable_file(self):
        self.write("clip.tessel", document())
        os.chmod(self.path("clip.tessel"), 0)
        if os.access(self.path("clip.tessel"), os.R_OK):
            self.skipTest("this user may read everything")
        self.refuse("clip.tessel", "cannot be read: permission denied")

    def test_an_unknown_extension(self):
        self.refuse(self.write("clip.mov", document()), ".mov", ".tessel was expected")
        self.refuse(self.write("clip", document()), "no file extension", ".tessel was expected")
        self.refuse(self.write(".tessel", document()), ".tessel was expected")

    def test_broken_json_is_named_with_its_place(self):
        self.refuse(self.write("clip.tessel", '{\n  "mFrameWidth": ,\n}'), "line 2, column 18")
        self.refuse(self.write("clip.tessel", '{"a": 1} x'), "line 1, column")
        self.refuse(self.write("clip.tessel", "\xef\xbb\xbf"), "line 1")
        self.refuse(self.write("clip.tessel", b'{"a": "\xff"}'), "line 1")

    def test_a_wrong_type_is_named_with_its_key(self):
        self.refuse(self.write("clip.tessel", document(mFrameWidth=720.0)), '"mFrameWidth": expected an integer')
        self.refuse(self.write("clip.tessel", document(mFrameWidth="720")), '"mFrameWidth": expected an integer')
        self.refuse(self.write("clip.tessel", document(mFramePAR=[1, 1])), '"mFramePAR": expected')
        self.refuse(self.write("clip.tessel", document(mDrawFrameFieldNumber="no")), '"mDrawFrameFieldNumber"')

    def test_a_missing_key_is_named(self):
        self.refuse(self.write("clip.tessel", document(mVideoDuration=...)), '"mVideoDuration"')

    def test_a_key_in_an_object_is_named_with_those_that_lead_to_it(self):
        color = dict(document()["mLowerFieldColor"], mRedPart="1")
        self.refuse(self.write("clip.tessel", document(mLowerFieldColor=color)),
                    '"mLowerFieldColor.mRedPart": expected a number')
        self.refuse(self.write("clip.tessel", document(mVideoDuration={})),
                    '"mVideoDuration.ticks": missing key')
        bands = {band: {"xCoordinates": [], "yCoordinates": []}
                 for band in ("colorSwatches", "legalRangeGradient", "fullRangeGradient")}
        bands["legalRangeGradient"]["yCoordinates"] = [1.5]
        self.refuse(self.write("clip.tessel", document(mSwatchCoordinates=bands)),
                    '"mSwatchCoordinates.legalRangeGradient.yCoordinates[0]": expected an integer')

    def test_broken_profile_data_is_named_with_its_key(self):
        for data in ("not base 64!", "AQIDBA", "AQIDBB=="):
            space = {"baseColorProfile": {"colorProfileData": data}}
            self.refuse(self.write("clip.tessel", document(mColorSpace=space)),
                        '"mColorSpace.baseColorProfile.colorProfileData": ', "base 64")

    def test_documents_that_are_no_object(self):
        for text in ("[]", " \t\r\n[{}]", "42", "\"text\"", "null"):
            self.refuse(self.write("clip.tessel", text), "expected a JSON object")

    def test_wrappers_of_no_object(self):
        for text in ("[]", "42", "null"):
            self.refuse(self.write("clip.tessel", '{"SerializerWrappedObject": %s}' % text),
                        '"SerializerWrappedObject": expected a JSON object')

    def test_binary_files_are_refused_in_one_line(self):
        self.refuse(self.write("clip.tessel", bytes(range(256)) * 100))
        self.refuse(self.write("clip.tessel", b"\0" * 1000))
        self.refuse(self.write("clip.tessel", b"\x1b[31m\n\n\n{"))

    def test_200000_nested_brackets_are_answered(self):
        self.refuse(self.write("clip.tessel", "[" * 200000))
        self.refuse(self.write("clip.tessel", '{"a":' * 200000))

    def test_nothing_but_white_space(self):
        self.refuse(self.write("clip.tessel", " " * 10_000_000))

    def test_what_stands_behind_a_nul_is_not_read(self):
        import json
        self.write("clip.tessel", json.dumps(document()).encode() + b"\0 garbage")
        self.assert_done(self.run_program("info", "clip.tessel"))


if __name__ == "__main__":
    unittest.main()

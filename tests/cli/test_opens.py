"""How often a command opens its document. Counted from outside, with strace."""

import unittest

from program import document
from traces import TracedTest


class Opens(TracedTest):
    def opens(self, *arguments):
        """How often the program opens clip.tessel for reading."""
        return sum('clip.tessel"' in call for call in self.calls("open,openat", *arguments))

    def test_a_document_is_opened_once(self):
        self.write("clip.tessel", document())
        for command in (["info", "clip.tessel"], ["bench", "clip.tessel", "--seconds", "0.01"],
                        ["render", "clip.tessel", "--quiet", "--frames", "1", "-o", "out.mkv"]):
            with self.subTest(command=command[0]):
                self.assertEqual(self.opens(*command), 1)

    def test_settings_that_are_too_long_to_be_handed_back_are_read_in_the_same_go(self):
        self.write("clip.tessel", document(mSwatchColorsFilePath="x" * 11000))
        self.assertEqual(self.opens("info", "clip.tessel"), 1)

    def test_a_document_that_looks_like_the_default_clip_is_opened_once_too(self):
        self.write("clip.tessel", document(mFrameWidth=720, mFrameHeight=480,
                                           mVideoFrameRate={"ticksperframe": 8_467_200_000},
                                           mVideoDuration={"ticks": 15_240_960_000_000}))
        self.assertEqual(self.opens("info", "clip.tessel"), 1)

    def test_editing_opens_it_to_check_it_and_once_more_for_the_dialog(self):
        self.write("clip.tessel", document())
        self.write("ok.script", "press okButton\n")
        self.assertEqual(self.opens("edit", "clip.tessel", "-o", "new.tessel", "--script", "ok.script"), 2)


if __name__ == "__main__":
    unittest.main()

"""Documents made through the C interface: the same as the program makes, and the same refusals.

Variables: TESSEL_LIBRARY, and those of tests/cli/program.py.
"""

import ctypes
import json
import os
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "cli"))

import clips  # noqa: E402
from clips import BAD_ARGUMENT, LIBRARY, NOT_OPENED, REFUSED, Clip, Document  # noqa: E402
from program import ProgramTest  # noqa: E402

SWATCHES = [os.path.join(ROOT, "samples", name) for name in ("swatch-coordinates.json", "swatch-colors.json")]


class DocumentTest(ProgramTest, clips.RefusedCalls):
    def printed(self, *options):
        """What the program prints for the same settings: 'size=4x2' stands for '--size 4x2'."""
        answer = self.run_program("new", "-", *options)
        self.assertEqual(answer.code, 0, answer.err)
        return answer

    def options(self, settings):
        for setting in settings:
            name, value = setting.split("=", 1)
            yield from ("--set", setting) if name.startswith("m") else (f"--{name}", value)

    def assert_refused(self, result, call):
        return self.assert_call_fails(result, "", call)


class New(DocumentTest):
    def test_the_text_is_what_the_program_prints(self):
        cases = [
            (),
            ("size=1280x718", "rate=29.97", "duration=250f", "pixel-format=v210", "pixel-aspect=10/11", "fields=lower",
             "color-space=rec709", "channels=8", "sample-rate=96000", "tone=440:-20"),
            ("duration=00:00:10:00", "rate=25"),  # the rate counts, although it comes later
            ("ident=blits", "duration=1m"),
            ("picture=fields", "colors=red/blue", "fields=upper", "mFramePAR.numerator=16", "mFramePAR.denominator=15"),
            ("swatches=bars", "pixel-format=bgra-float"),
            ("pixel-format=bgra-float", *(f"swatches={name}" for name in SWATCHES)),
        ]
        for settings in cases:
            with self.subTest(settings), Document(*settings) as made:
                self.assertEqual(made.text(), self.printed(*self.options(settings)).out)

    def test_every_template_is_the_program_s(self):
        names = [row["name"] for row in json.loads(self.run_program("list", "templates", "--json").out)]
        self.assertGreater(len(names), 3)
        for name in names:
            with self.subTest(name), Document("tone=440:-20", template=name) as made:
                self.assertEqual(made.text(), self.printed("--template", name, "--tone", "440:-20").out)

    def test_another_document_s_keys_stay(self):
        with Document("size=64x36") as made:
            other = json.loads(made.text())
        other["remark"] = "mine"
        text = json.dumps(other).encode()
        file = self.path(self.write("other.tessel", text))
        for base in ({"file": file}, {"text": text}):
            with self.subTest(base), Document("rate=50", **base) as made:
                self.assertEqual(json.loads(made.text())["remark"], "mine")
                self.assertEqual(made.text(), self.printed("--from", "other.tessel", "--rate", "50").out)

    def test_the_text_opens_as_a_clip(self):
        with Document("size=64x36", "rate=24000/1001", "duration=7f") as made:
            with Clip(text=made.text().encode()) as clip:
                facts = clip.describe()
                self.assertEqual((facts.width, facts.height, facts.frame_count), (64, 36, 7))
                self.assertEqual((facts.rate_numerator, facts.rate_denominator), (24000, 1001))

    def test_refusals_are_the_program_s_lines(self):
        for settings in (("size=1920",), ("rate=fast",), ("picture=swatch",), ("tone=1000:-18", "ident=blits"),
                         ("swatches=missing.json",), ("size=0x0",), ("color-space=purple",), ("mFieldType=[]",),
                         ("duration=0f",), ("picture=swatches", "size=64x36"), ("mFrameWidth=-5",)):
            with self.subTest(settings):
                line = self.assert_refused(REFUSED, lambda: Document(*settings))  # pylint: disable=W0640
                answer = self.run_program("new", "-", *self.options(settings))
                self.assertEqual(answer.code, 2)
                # The program calls settings by its options' names; keys are values of --set.
                self.assertEqual(answer.err.replace("--set: ", "").replace("--", ""), f"tessel: {line}\n")

    def test_what_is_no_setting_is_named_with_its_neighbour(self):
        self.assertIn("did you mean 'rate'", self.assert_refused(REFUSED, lambda: Document("rat=25")))
        self.assertIn("KEY=VALUE", self.assert_refused(REFUSED, lambda: Document("25")))
        self.assertIn("did you mean 'hd-bars'",
                      self.assert_refused(REFUSED, lambda: Document(template="hd-bar")))
        self.assertIn("given twice", self.assert_refused(REFUSED, lambda: Document("rate=25", "rate=30")))
        self.assertIn("UTF-8", self.assert_refused(REFUSED, lambda: Document(b"mSwatchColorsFilePath=\xff")))
        self.assertIn("\\n", self.assert_refused(REFUSED, lambda: Document("size=1\n2")))

    def test_a_base_that_cannot_be_read_is_named(self):
        self.write("broken.tessel", "{")
        self.assertIn("missing.tessel", self.assert_refused(NOT_OPENED, lambda: Document(file=self.path("missing.tessel"))))
        self.assertIn("broken.tessel", self.assert_refused(NOT_OPENED, lambda: Document(file=self.path("broken.tessel"))))
        self.assert_refused(NOT_OPENED, lambda: Document(text=b"[]"))
        self.assertIn("several", self.assert_refused(BAD_ARGUMENT, lambda: Document(text=b"{}", template="hd-bars")))

    def test_what_is_perhaps_not_meant_is_said(self):
        with Document("rate=25") as made:
            self.assertEqual(made.warning(), "")
        with Document("rate=10.7", "duration=1f", "color-space=rec709", "pixel-format=UYVY_422_8u_601") as made:
            lines = made.warning().split("\n")
            self.assertEqual(len(lines), 2, lines)
            self.assertIn("10.7 frames a second", lines[0])
            self.assertEqual(self.printed("--rate", "10.7", "--duration", "1f", "--color-space", "rec709", "--pixel-format",
                                          "UYVY_422_8u_601").err,
                             "".join(f"tessel: warning: {line}\n" for line in lines))


class Change(DocumentTest):
    def test_settings_change_and_the_others_stay(self):
        with Document("size=64x36", "rate=30", "duration=4s") as made:
            made.set("rate=60", "mDrawFrameFieldNumber=false")
            found = json.loads(made.text())
            self.assertEqual(found["mFrameWidth"], 64)
            self.assertEqual(found["mVideoFrameRate"]["ticksperframe"], 254_016_000_000 // 60)
            self.assertEqual(found["mVideoDuration"]["ticks"], 4 * 254_016_000_000)
            self.assertFalse(found["mDrawFrameFieldNumber"])

    def test_a_refused_change_changes_nothing(self):
        with Document("size=64x36") as made:
            before = made.text()
            self.assert_refused(REFUSED, lambda: made.set("size=32x18", "rate=never"))
            self.assert_refused(REFUSED, lambda: made.set("picture=swatches"))
            self.assertEqual(made.text(), before)

    def test_null_pointers_are_refused(self):
        handle = ctypes.c_void_p()
        self.assertEqual(LIBRARY.tessel_document_new(None, None, 1, handle), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_document_new(None, None, 0, None), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_document_new(None, (ctypes.c_char_p * 1)(None), 1, handle), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_document_set(None, None, 0), BAD_ARGUMENT)
        self.assertEqual(LIBRARY.tessel_document_text(None, None), b"")
        self.assertEqual(LIBRARY.tessel_document_warning(None), b"")
        LIBRARY.tessel_document_close(None)
        self.assertEqual(LIBRARY.tessel_document_new(clips.DocumentOptions(), None, 0, handle), BAD_ARGUMENT)


if __name__ == "__main__":
    unittest.main()

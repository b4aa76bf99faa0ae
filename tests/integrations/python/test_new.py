"""New clips from settings: `tessel.Clip.new` makes the documents that `tessel new` makes."""

import datetime
import json
import os
import unittest
from fractions import Fraction

from python_support import PackageTest

import tessel


class New(PackageTest):
    def typed(self, *options):
        """The document that the program makes."""
        answer = self.run_program("new", "-", *options)
        self.assertEqual(answer.code, 0, answer.err)
        return json.loads(answer.out)

    def made(self, clip):
        with open(clip.save(self.path("made.tessel")), encoding="utf-8") as file:
            return json.load(file)

    def test_settings_are_those_of_the_program(self):
        cases = [
            ({}, []),
            ({"size": (640, 360), "rate": 25, "duration": 50}, ["--size", "640x360", "--rate", "25", "--duration", "50f"]),
            ({"size": "640x360", "rate": 29.97, "duration": "2s"},
             ["--size", "640x360", "--rate", "29.97", "--duration", "2s"]),
            ({"rate": Fraction(30000, 1001), "duration": datetime.timedelta(seconds=1.5)},
             ["--rate", "30000/1001", "--duration", "1.5s"]),
            ({"template": "pal-sd", "pixel_aspect": Fraction(16, 11)}, ["--template", "pal-sd", "--pixel-aspect", "16/11"]),
            ({"fields": tessel.FieldOrder.LOWER_FIRST, "picture": "fields", "colors": ["red", (0, 0.25, 1)]},
             ["--fields", "lower", "--picture", "fields", "--colors", "red/0,0.25,1"]),
            ({"pixel_format": "v210", "color_space": "rec601-pal", "number": True},
             ["--pixel-format", "v210", "--color-space", "rec601-pal", "--number"]),
            ({"number": False, "tone": (440, -20.5), "channels": 1, "sample_rate": 44100},
             ["--no-number", "--tone", "440:-20.5", "--channels", "1", "--sample-rate", "44100"]),
            ({"ident": "blits"}, ["--ident", "blits"]),
            ({"swatches": "bars", "pixel_format": "bgra-float"}, ["--swatches", "bars", "--pixel-format", "bgra-float"]),
            ({"keys": {"mFramePAR.numerator": 10, "mColorSpace.baseColorProfile.colorProfileName": "Mine"}},
             ["--set", "mFramePAR.numerator=10", "--set", 'mColorSpace.baseColorProfile.colorProfileName="Mine"']),
        ]
        for settings, options in cases:
            with self.subTest(options=options):
                self.assertEqual(self.made(tessel.Clip.new(**settings)), self.typed(*options))

    def test_swatch_files_are_read(self):
        samples = os.path.join(os.path.dirname(__file__), "..", "..", "..", "samples")
        files = [os.path.join(samples, f"swatch-{part}.json") for part in ("coordinates", "colors")]
        clip = tessel.Clip.new(swatches=files, pixel_format="bgra-float")
        self.assertEqual(self.made(clip), self.typed("--pixel-format", "bgra-float", "--swatches", files[0], "--swatches",
                                                     files[1]))
        self.assertEqual(clip.frame(0).shape, (1080, 1920, 4))

    def test_a_base_keeps_what_no_setting_changes(self):
        first = tessel.Clip.new(size=(64, 36), rate=50, keys={"mSteadyToneFrequency": 333})
        second = tessel.Clip.new(base=first, rate=25)
        self.assertEqual((second.description.width, second.description.rate), (64, 25))
        first.save(self.path("first.tessel"))
        third = tessel.Clip.new(base=self.path("first.tessel"), pixel_format="v210")
        self.assertEqual((third.description.width, third.description.pixel_format), (64, "v211"))  # of BT.709

    def test_a_new_clip_plays_without_a_file(self):
        clip = tessel.Clip.new(size=(64, 36), rate=25, duration=3, tone=(1000, -20))
        self.assertIsNone(clip.path)
        self.assertEqual((clip.frame(2).shape, clip.samples(0, 5760).shape), ((36, 64, 4), (2, 5760)))
        self.assertEqual(clip.description.frame_count, 3)

    def test_what_could_not_be_played_is_refused_with_what_would_be_right(self):
        chart = {"swatches": "bars", "pixel_format": "bgra-float"}
        for says, mistake in ((r"1920x1080", lambda: tessel.Clip.new(**chart, size=(64, 36))),
                              (r"v210", lambda: tessel.Clip.new(pixel_format="v211x")),
                              (r"mFrameWidht", lambda: tessel.Clip.new(keys={"mFrameWidht": 3})),
                              (r"nodding", lambda: tessel.Clip.new(template="nodding"))):
            with self.subTest(says=says):
                with self.assertRaisesRegex(tessel.SettingError, says) as caught:
                    mistake()
                self.assertIsInstance(caught.exception, ValueError)
        with self.assertRaisesRegex(TypeError, '"1.5s"'):
            tessel.Clip.new(duration=1.5)
        with self.assertRaisesRegex(TypeError, "frame_rate"):
            tessel.Clip.new(frame_rate=25)
        with self.assertRaisesRegex(ValueError, "not with both"):
            tessel.Clip.new(template="hd", base="x.tessel")
        with self.assertRaisesRegex(tessel.OpenError, "missing.tessel"):
            tessel.Clip.new(base=self.path("missing.tessel"))

    def test_a_value_of_a_wrong_type_is_refused_with_the_setting_s_name(self):
        for says, wrong in (("size must be", {"size": 5}), ("size must be", {"size": (1920, 1080, 3)}),
                            ("colors must be", {"colors": 5}), ("colors must be", {"colors": [7]}),
                            ("tone must be", {"tone": 1000}), ("fields must be", {"fields": 1.5}),
                            ("swatches must be", {"swatches": 3}), ("swatches must be", {"swatches": [3]}),
                            ("template must be", {"template": 7}), ("base must be", {"base": b"clip.tessel"})):
            with self.subTest(**wrong):
                with self.assertRaisesRegex(TypeError, f"^{says}"):
                    tessel.Clip.new(**wrong)
        with self.assertRaisesRegex(tessel.SettingError, "fields: must be .*, not 7"):
            tessel.Clip.new(fields=7)

    def test_the_words_of_the_program_are_taken_too(self):
        for number, drawn in ((True, True), ("on", True), (False, False), ("off", False)):
            with self.subTest(number=number):
                self.assertEqual(self.made(tessel.Clip.new(number=number))["mDrawFrameFieldNumber"], drawn)
        with self.assertRaisesRegex(tessel.SettingError, "number"):
            tessel.Clip.new(number="perhaps")

    def test_remarks_are_warnings(self):
        # A second has 254016000000 ticks, and 254016000000 / 24.7 is no whole number.
        self.assertIn("whole number of ticks", tessel.Clip.new(rate=24.7, duration=5).warning)
        self.assertEqual(tessel.Clip.new().warning, "")


if __name__ == "__main__":
    unittest.main()

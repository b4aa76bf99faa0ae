"""tessel info: everything that the plug-in reports of a clip."""

import json
import unittest

from program import TICKS_PER_SECOND, ProgramTest, code, document


class Info(ProgramTest):
    def report(self, made, *options):
        self.write("clip.tessel", made)
        answer = self.run_program("info", "clip.tessel", "--json", *options)
        self.assert_done(answer)
        return json.loads(answer.out)

    def table(self, made):
        self.write("clip.tessel", made)
        answer = self.run_program("info", "clip.tessel")
        self.assert_done(answer)
        return answer.out

    def test_every_field_is_the_documents(self):
        report = self.report(document(
            mPixelFormat=code("v211"), mFrameWidth=1440, mFrameHeight=1080,
            mFramePAR={"numerator": 4, "denominator": 3}, mFieldType=1,
            mVideoFrameRate={"ticksperframe": TICKS_PER_SECOND * 1001 // 30000},
            mVideoDuration={"ticks": 10 * TICKS_PER_SECOND * 1001 // 1000},
            mSampleRate=44100, mNumChannels=6, mKsAudioChannelType=3))
        self.assertEqual(report["file"], "clip.tessel")
        self.assertEqual(report["warning"], "")
        video = report["video"]
        self.assertEqual((video["width"], video["height"]), (1440, 1080))
        self.assertEqual(video["pixelAspectRatio"],
                         {"numerator": 4, "denominator": 3, "name": "HDAnamorphic1080"})
        self.assertEqual(video["pixelFormat"], {
            "code": code("v211"), "fourCharacterCode": "v211", "name": "KsPixelFormat_V210_422_10u_709",
            "bottomRowFirst": False})
        self.assertEqual((video["fieldOrder"], video["fieldType"]), ("upper field first", 1))
        self.assertEqual(video["frameRate"]["numerator"], 30000)
        self.assertEqual(video["frameRate"]["denominator"], 1001)
        self.assertEqual(video["frameRate"]["framesPerSecond"], 30000 / 1001)
        self.assertEqual(video["frameRate"]["ticksPerFrame"], 8475667200)
        # 10.01 s at 29.97 are 300 frames, ten seconds as timecode counts them.
        self.assertEqual(video["duration"]["frames"], 300)
        self.assertAlmostEqual(video["duration"]["seconds"], 10.01, places=12)
        self.assertEqual(video["duration"]["timecode"], "00:00:10:00")
        self.assertEqual(video["colorSpace"], {"name": "Rec. 709", "primaries": 1, "transfer": 1, "matrix": 1,
                                               "fullRange": False, "managed": True})
        self.assertEqual(report["audio"], {"sampleRate": 44100, "channelCount": 6, "channelType": 3,
                                           "layout": "5.1"})

    def test_the_known_rates_are_exact(self):
        for numerator, denominator in [(10, 1), (12, 1), (25, 2), (15, 1), (24000, 1001), (24, 1), (25, 1),
                                       (30000, 1001), (30, 1), (50, 1), (60000, 1001), (60, 1), (100, 1),
                                       (1000, 1)]:
            ticks, rest = divmod(TICKS_PER_SECOND * denominator, numerator)
            self.assertEqual(rest, 0)
            rate = self.report(document(mVideoFrameRate={"ticksperframe": ticks}))["video"]["frameRate"]
            self.assertEqual((rate["numerator"], rate["denominator"], rate["ticksPerFrame"]),
                             (numerator, denominator, ticks))

    def test_bgra_float_says_that_its_rows_are_stored_bottom_first(self):
        made = document(mPixelFormat=code("BGra"))
        self.assertTrue(self.report(made)["video"]["pixelFormat"]["bottomRowFirst"])
        self.assertIn("bottom row first", self.table(made))
        self.assertNotIn("bottom row first", self.table(document(mPixelFormat=code("ARgb"))))

    def test_the_table_is_aligned_and_readable(self):
        table = self.table(document(mFieldType=2))
        for line in table.splitlines():
            self.assertEqual(line[15], " ", line)
            self.assertNotEqual(line[16], " ", line)
        for part in ["320x180", "1/1 (Square)", "KsPixelFormat_BGRA_4444_8u", "lower field first", "25/1 fps",
                     "50 frames, 2.000 s, 00:00:02:00", "Rec. 709", "48000 Hz, 2 channels", "(stereo)"]:
            self.assertIn(part, table)

    def test_a_clip_without_a_rate_is_described(self):
        made = document(mVideoFrameRate={"ticksperframe": 0})
        self.assertEqual(self.report(made)["video"]["duration"], {"frames": 0, "seconds": 0, "timecode": "-"})
        self.assertIn("no frame rate", self.table(made))

    def test_an_unknown_pixel_format_is_described(self):
        self.assertEqual(self.report(document(mPixelFormat=1))["video"]["pixelFormat"]["name"], "unknown")

    def test_several_clips_are_reported_in_order(self):
        self.write("a.tessel", document(mFrameWidth=100))
        self.write("b.tessel", document(mFrameWidth=200))
        answer = self.run_program("info", "--json", "b.tessel", "a.tessel")
        self.assert_done(answer)
        self.assertEqual([report["video"]["width"] for report in json.loads(answer.out)], [200, 100])
        answer = self.run_program("info", "b.tessel", "a.tessel")
        self.assert_done(answer)
        self.assertEqual(answer.out.count("frame size"), 2)

    def test_one_bad_clip_of_several_does_not_hide_the_others(self):
        self.write("good.tessel", document())
        answer = self.run_program("info", "gone.tessel", "good.tessel", "--json")
        self.assertEqual(answer.code, 1)
        self.assertEqual(answer.err, "tessel: gone.tessel: no such file\n")
        self.assertEqual(len(json.loads(answer.out)), 1)

    def test_several_clips_are_an_array_also_where_none_could_be_opened(self):
        answer = self.run_program("info", "gone.tessel", "lost.tessel", "--json")
        self.assertEqual((answer.code, json.loads(answer.out)), (1, []))

    def test_a_malformed_document_is_the_default_clip_where_allowed(self):
        report = self.report("{}", "--allow-default")
        self.assertEqual((report["video"]["width"], report["video"]["duration"]["frames"]), (720, 1800))
        self.assertIn("mPixelFormat", report["warning"])

    def test_a_locale_with_decimal_commas_changes_nothing(self):
        self.write("clip.tessel", document(mSampleRate=44100.5))
        answers = {self.run_program("info", "clip.tessel", environment={"LC_ALL": locale}).out
                   for locale in ("C", "de_DE.UTF-8")}
        self.assertEqual(len(answers), 1)
        self.assertIn("44100.5 Hz", answers.pop())


if __name__ == "__main__":
    unittest.main()

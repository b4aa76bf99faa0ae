"""tessel bench: the report's shape. Speed itself is not tested."""

import json
import unittest

from program import ProgramTest, code, document


class Bench(ProgramTest):
    def bench(self, made, *options):
        self.write("clip.tessel", made)
        return self.run_program("bench", "clip.tessel", "--seconds", "0.02", *options)

    def test_the_report_has_its_keys_and_its_ratios_agree(self):
        answer = self.bench(document(), "--json")
        self.assert_done(answer)
        report = json.loads(answer.out)
        video, audio, machine = report["video"], report["audio"], report["machine"]
        self.assertEqual(video["bytesPerFrame"], 320 * 4 * 180)
        self.assertAlmostEqual(video["bytesPerSecond"] / video["framesPerSecond"] / video["bytesPerFrame"], 1.0)
        self.assertAlmostEqual(video["relativeToMemset"] * machine["memsetBytesPerSecond"]
                               / video["bytesPerSecond"], 1.0)
        self.assertAlmostEqual(video["relativeToStreaming"] * machine["streamingBytesPerSecond"]
                               / video["bytesPerSecond"], 1.0)
        self.assertAlmostEqual(audio["samplesPerSecond"] / audio["timesRealTime"], 48000.0)

    def test_the_table_says_the_same(self):
        answer = self.bench(document())
        self.assert_done(answer)
        for part in ["frames/s", "of memset", "times real time"]:
            self.assertIn(part, answer.out)

    def test_a_number_of_frames_ends_it_too(self):
        self.assert_done(self.bench(document(), "--frames", "1", "--json"))

    def test_a_clip_without_sound_has_no_audio_speed(self):
        for made in (document(mNumChannels=0), document(mSampleRate=0)):
            answer = self.bench(made, "--json")
            self.assert_done(answer)
            self.assertEqual(json.loads(answer.out)["audio"], {"samplesPerSecond": 0, "timesRealTime": 0})

    def test_a_frame_that_cannot_be_made_says_why(self):
        self.assert_failed(self.bench(document(mPixelFormat=7)), 1, "clip.tessel", "\"mPixelFormat\": 7")
        self.assert_failed(self.bench(document(mFrameWidth=90000, mFrameHeight=90000, mPixelFormat=code("BGra"))),
                           1, "clip.tessel", "2 GiB")
        self.assert_failed(self.bench(document(mRenderFormat=2)), 1, "clip.tessel", "1920x1080", "320x180")

    def test_more_channels_than_can_be_played_are_refused(self):
        self.assert_failed(self.bench(document(mNumChannels=65)), 1, "clip.tessel", "\"mNumChannels\": 65", "64")

    def test_limits_that_make_no_sense_are_a_wrong_command_line(self):
        self.assert_failed(self.bench(document(), "--frames", "-1"), 2, "--frames")
        self.assert_failed(self.run_program("bench", "clip.tessel", "--seconds", "0"), 2, "--seconds")
        for seconds in ("soon", "nan", "-nan", "inf", "-1", "1e9", ""):
            self.assert_failed(self.run_program("bench", "clip.tessel", "--seconds=" + seconds), 2, "--seconds")


if __name__ == "__main__":
    unittest.main()

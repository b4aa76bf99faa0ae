"""Damaged files hold the fault that was asked for, and nothing else."""

import json
import os
import subprocess
import unittest

from program import ProgramTest, code, document

FRAMES = 12
WIDTH = 64
HEIGHT = 36


class Damage(ProgramTest):
    def clip(self, **changes):
        values = {"mFrameWidth": WIDTH, "mFrameHeight": HEIGHT, "mDrawFrameFieldNumber": False,
                  "mSampleRate": 48000, "mNumChannels": 2, "mToneFormat": 0, "mSteadyToneFrequency": 1000,
                  "mSteadyToneAmplitude": 0.125}
        values.update(changes)
        return self.write("clip.tessel", document(**values))

    def damage(self, clip, *faults, output="out.mkv", options=()):
        arguments = ["damage", clip, "-o", self.path(output), "--frames", str(FRAMES), *options]
        for fault in faults:
            arguments += ["--fault", fault]
        answer = self.run_program(*arguments)
        self.assertEqual((answer.code, answer.err), (0, ""))
        with open(self.path(output) + ".truth.json", encoding="utf-8") as file:
            return self.path(output), json.load(file)

    def clean(self, clip, output="clean.mkv"):
        answer = self.run_program("render", clip, "-o", self.path(output), "--frames", str(FRAMES))
        self.assertEqual(answer.code, 0, answer.err)
        return self.path(output)

    def decoded(self, file, *options):
        return subprocess.run(["ffmpeg", "-v", "error", "-i", file, *options, "-"], check=True,
                              stdout=subprocess.PIPE).stdout

    def pictures(self, file):
        """Each picture's bytes, in the file's own layout."""
        data = self.decoded(file, "-map", "0:v", "-f", "rawvideo", "-vsync", "0", "-pix_fmt", "bgra")
        size = WIDTH * HEIGHT * 4
        return [data[i:i + size] for i in range(0, len(data), size)]

    def sound(self, file):
        """Each channel's 16-bit samples."""
        data = memoryview(self.decoded(file, "-map", "0:a", "-f", "s16le", "-c:a", "pcm_s16le")).cast("h")
        return data[0::2].tolist(), data[1::2].tolist()

    def probe(self, file, entries):
        text = subprocess.run(["ffprobe", "-v", "error", "-select_streams", "v", "-show_entries",
                               f"stream={entries}", "-of", "default=nk=1:nw=1", file],
                              check=True, stdout=subprocess.PIPE, text=True).stdout
        return text.split()

    def test_no_fault_is_a_wrong_command_line(self):
        answer = self.run_program("damage", self.clip(), "-o", self.path("x.mkv"))
        self.assertEqual(answer.code, 2)
        self.assertIn("--fault", answer.err)

    def test_unknown_faults_are_named(self):
        answer = self.run_program("damage", self.clip(), "-o", self.path("x.mkv"), "--fault", "color.gold")
        self.assertEqual(answer.code, 2)
        self.assertIn("--fault color.gold: no such fault", answer.err)

    def test_a_mistyped_fault_is_answered_with_the_nearest(self):
        for fault, nearest in (("order.mising=3", "order.missing"), ("audio.gian=-6", "audio.gain")):
            answer = self.run_program("damage", self.clip(), "-o", self.path("x.mkv"), "--fault", fault)
            self.assertEqual(answer.code, 2)
            self.assertIn(f"did you mean '{nearest}'?", answer.err)

    def test_faults_of_order_move_whole_pictures(self):
        clip = self.clip()
        clean = self.pictures(self.clean(clip))
        self.assertEqual(len(set(clean)), FRAMES, "every frame looks different")
        for fault, frames in (("order.missing=5", [0, 1, 2, 3, 4, 6, 7, 8, 9, 10, 11]),
                              ("order.repeated=5", [0, 1, 2, 3, 4, 5, 5, 6, 7, 8, 9, 10, 11]),
                              ("order.swapped=5", [0, 1, 2, 3, 4, 6, 5, 7, 8, 9, 10, 11]),
                              ("order.frozen=2:5", [0, 1, 2, 3, 4, 5, 5, 5, 8, 9, 10, 11]),
                              ("order.reversed", list(range(11, -1, -1))),
                              ("order.head=3", list(range(3, 12))),
                              ("order.tail=3", list(range(0, 9)))):
            with self.subTest(fault):
                file, truth = self.damage(clip, fault)
                self.assertEqual(self.pictures(file), [clean[i] for i in frames])
                self.assertEqual(truth["pictures"], len(frames))

    def test_the_truth_says_what_was_put_in_and_where(self):
        _, truth = self.damage(self.clip(), "order.missing=5", "audio.dropout=480:0.1")
        self.assertEqual(truth["faults"], [{"id": "order.missing", "value": "5", "frames": [5, 5]},
                                           {"id": "audio.dropout", "value": "480:0.1", "samples": [4800, 5279]}])

    def test_faults_of_sound_leave_pictures_alone(self):
        clip = self.clip()
        clean_file = self.clean(clip)
        left, right = self.sound(clean_file)
        file, _ = self.damage(clip, "audio.polarity=1", "audio.dropout=480:0.1")
        self.assertEqual(self.pictures(file), self.pictures(clean_file))
        damaged_left, damaged_right = self.sound(file)
        self.assertEqual(damaged_left[:4800], left[:4800])
        self.assertEqual(damaged_left[4800:5280], [0] * 480)
        self.assertEqual(damaged_left[5280:], left[5280:])
        # Rounding is towards plus infinity at halves, so an inverted sample may differ by one code.
        self.assertLessEqual(max(abs(a + b) for a, b in zip(damaged_right[:4800], right[:4800])), 1)

    def test_later_sound_is_the_same_sound(self):
        clip = self.clip()
        left, _ = self.sound(self.clean(clip))
        file, _ = self.damage(clip, "sync.offset=10")
        late, _ = self.sound(file)
        self.assertEqual(late[:480], [0] * 480)
        self.assertEqual(late[480:], left[:-480])

    def test_faults_of_announcements_leave_codes_alone(self):
        clip = self.clip(mPixelFormat=code("v210"), mFrameWidth=WIDTH)
        clean_file = self.clean(clip)
        for fault, entry, value in (("container.aspect=4:3", "sample_aspect_ratio", "4:3"),
                                    ("container.matrix=9", "color_space", "bt2020nc"),
                                    ("container.fields=lower", "field_order", "bt")):
            with self.subTest(fault):
                file, _ = self.damage(clip, fault)
                self.assertEqual(self.probe(file, entry), [value])
                self.assertNotEqual(self.probe(clean_file, entry), [value])
                raw = ("-map", "0:v", "-f", "rawvideo", "-vsync", "0")
                self.assertEqual(self.decoded(file, *raw), self.decoded(clean_file, *raw))

    def test_cropped_pictures_are_the_inside_of_clean_ones(self):
        clip = self.clip()
        file, _ = self.damage(clip, "geometry.cropped=4")
        self.assertEqual(self.probe(file, "width,height"), [str(WIDTH - 8), str(HEIGHT - 8)])
        raw = ("-map", "0:v", "-f", "rawvideo", "-vsync", "0", "-pix_fmt", "bgra")
        cropped = self.decoded(self.clean(clip), "-vf", f"crop={WIDTH - 8}:{HEIGHT - 8}:4:4", *raw)
        self.assertEqual(self.decoded(file, *raw), cropped)

    def test_faults_that_the_clip_cannot_have_are_refused_before_anything_is_written(self):
        answer = self.run_program("damage", self.clip(), "-o", self.path("x.mkv"), "--fault", "fields.swapped")
        self.assertEqual(answer.code, 2)
        self.assertIn("the clip is progressive", answer.err)
        self.assertEqual(os.listdir(self.folder), ["clip.tessel"])

    def test_a_depth_of_sound_that_the_container_does_not_carry_is_the_faults(self):
        # The codec was not asked for: the fault stands for it.
        answer = self.run_program("damage", self.clip(), "-o", self.path("x.mp4"), "--fault", "container.depth")
        self.assert_failed(answer, 2, "clip.tessel: --fault container.depth: mp4 files do not carry pcm16")

    def test_the_clip_is_never_replaced_by_its_own_rendering(self):
        with open(self.path(self.clip()), "rb") as file:
            before = file.read()
        answer = self.run_program("damage", "clip.tessel", "--fault", "order.missing=5", "-o", "clip.tessel", "--format", "mkv")
        self.assert_failed(answer, 2, "'clip.tessel' is the clip itself")
        with open(self.path("clip.tessel"), "rb") as file:
            self.assertEqual(file.read(), before)
        self.assertEqual(os.listdir(self.folder), ["clip.tessel"])

    def test_sound_that_would_end_before_its_start_is_left_out(self):
        file, _ = self.damage(self.clip(), "container.duration=-100", output="out.mov")
        self.assertEqual(len(self.pictures(file)), FRAMES)
        # ffprobe shows no track without samples.
        kinds = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "stream=codec_type", "-of", "csv=p=0", file],
                               check=True, stdout=subprocess.PIPE, text=True).stdout
        self.assertEqual(kinds.split(), ["video"])

    def test_options_that_exclude_each_other_are_refused_as_by_render(self):
        for options in (("--to", "3", "--frames", "9"), ("--from", "5", "--to", "3"), ("--audio-only", "--video-only")):
            with self.subTest(options):
                answer = self.run_program("damage", self.clip(), "--fault", "order.missing=1", "-o", "x.mkv", *options)
                self.assert_failed(answer, 2, options[0])

    def test_frames_that_the_clip_does_not_have_are_a_wrong_command_line(self):
        answer = self.run_program("damage", self.clip(), "--fault", "order.missing=1", "-o", "x.mkv", "--from", "50")
        self.assert_failed(answer, 2, "clip.tessel: there is no frame 50: the clip has frames 0 to 49")

    def test_a_layout_of_another_number_of_channels_is_refused(self):
        for layout, channels in (("mono", 1), ("5.1", 6)):
            answer = self.run_program("damage", self.clip(), "-o", self.path("x.mov"), "--fault",
                                      f"container.layout={layout}")
            self.assertEqual(answer.code, 2)
            self.assertIn(f"{layout} is a layout of {channels} channel", answer.err)
            self.assertIn("the file has 2", answer.err)
        self.assertEqual(os.listdir(self.folder), ["clip.tessel"])

    def test_a_layout_can_be_left_out(self):
        file, _ = self.damage(self.clip(), "container.layout=none", output="x.mov")
        text = subprocess.run(["ffprobe", "-v", "error", "-select_streams", "a", "-show_entries",
                               "stream=channels,channel_layout", "-of", "default=nk=1:nw=1", file], check=True,
                              stdout=subprocess.PIPE, text=True).stdout
        self.assertEqual(text.split(), ["2", "unknown"])


if __name__ == "__main__":
    unittest.main()

"""Sound files, measured by FFmpeg's decoders and filters: levels, frequencies, speakers, lengths, rounding."""

import json
import math
import os
import struct
import subprocess
import unittest

from render_support import RenderTest, document, main, surround

SPEAKERS = ("FL", "FR", "FC", "LFE", "SL", "SR")


class Sound(RenderTest):
    @staticmethod
    def frequency(samples, rate):
        """From the first to the last upward zero crossing, interpolated."""
        crossings = []
        for i in range(1, len(samples)):
            if samples[i - 1] < 0 <= samples[i]:
                crossings.append(i - samples[i] / (samples[i] - samples[i - 1]))
        return (len(crossings) - 1) * rate / (crossings[-1] - crossings[0])

    def speakers(self, path, labels, start, length):
        """A stretch of each of the speakers, by FFmpeg's own reading of the layout."""
        pan = "|".join(f"c{place}={label}" for place, label in enumerate(labels))
        data = subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-map", "0:a", "-af",
                               f"pan={len(labels)}c|{pan},atrim=start={start}:duration={length}", "-f", "f32le", "-"],
                              capture_output=True, check=True).stdout
        samples = struct.unpack(f"<{len(data) // 4}f", data)
        return {label: samples[place::len(labels)] for place, label in enumerate(labels)}

    def test_the_default_tone_is_1000_hz_at_minus_12_04_dbfs_on_both_channels(self):
        for output in ("x.mkv", "x.mov", "x.wav", "x.mp4"):
            path = self.render(document(frames=60), output)
            self.assertEqual(self.probe(path, "audio")["channels"], 2)
            for label, samples in self.speakers(path, ("FL", "FR"), 0.5, 1).items():
                self.assertAlmostEqual(self.frequency(samples, 48000), 1000, delta=0.01, msg=f"{output} {label}")
                peak = 20 * math.log10(max(abs(sample) for sample in samples))
                self.assertAlmostEqual(peak, 20 * math.log10(0.25), delta=0.2 if output == "x.mp4" else 0.001,
                                       msg=f"{output} {label}")

    def expect_visits(self, path, visits, what, continuous=()):
        """visits: (speaker, from, seconds, Hz): there it sounds at -18.06 dBFS, and no other speaker does."""
        for label, start, length, hertz in visits:
            margin = length / 8
            heard = self.speakers(path, SPEAKERS, start + margin, length - 2 * margin)
            self.assertAlmostEqual(self.frequency(heard[label], 48000), hertz, delta=hertz / 500, msg=f"{what} {label}")
            peak = 20 * math.log10(max(map(abs, heard[label])))
            self.assertAlmostEqual(peak, -18.06, delta=0.02, msg=f"{what} {label}")
            for other in SPEAKERS:
                if other not in (label, *continuous):
                    self.assertEqual(max(map(abs, heard[other])), 0, f"{what}: {other} while {label} sounds")

    def test_blits_sounds_on_the_speakers_that_the_labels_say(self):
        for output, arguments in (("x.mkv", ()), ("x.wav", ()), ("x.mov", ()), ("x.wav", ("--audio-codec", "pcmfloat"))):
            path = self.render(document(frames=420, **surround(3)), output, "--audio-only", *arguments)
            self.assertEqual(self.probe(path, "audio")["channel_layout"], "5.1(side)", output)
            self.expect_visits(path, self.BLITS, f"{output} {arguments}")

    def test_ebu_multichannel_sounds_on_the_speakers_that_the_labels_say(self):
        path = self.render(document(frames=360, **surround(2)), "x.mkv", "--audio-only")
        self.expect_visits(path, self.EBU, "EBU", continuous=("LFE",))
        for start in (0, 4, 8.2):
            samples = self.speakers(path, ("LFE",), start, 0.5)["LFE"]
            self.assertAlmostEqual(self.frequency(samples, 48000), 80, delta=0.01)
            self.assertAlmostEqual(20 * math.log10(max(map(abs, samples))), -18.06, delta=0.01)

    # The passages that visit one speaker after the other: speaker, start and length in seconds, frequency.
    BLITS = (("FL", 0.0, 0.6, 880), ("FR", 0.8, 0.6, 880), ("FC", 1.6, 0.6, 1320), ("LFE", 2.4, 0.6, 88.5),
             ("SL", 3.2, 0.6, 660), ("SR", 4.0, 0.6, 660))
    EBU = (("FL", 3.5, 0.5, 1000), ("FC", 4.5, 0.5, 1000), ("FR", 5.5, 0.5, 1000), ("SR", 6.5, 0.5, 1000),
           ("SL", 7.5, 0.5, 1000))

    def test_six_channels_that_are_not_5_1_keep_their_order(self):
        root = document(frames=420, **{**surround(3), "mKsAudioChannelType": 2})
        plain = self.samples(self.render(root, "plain.wav", "--audio-only", "--audio-codec", "pcmfloat"))
        ordered = self.samples(self.render({**root, "mKsAudioChannelType": 3}, "ordered.wav", "--audio-only",
                                           "--audio-codec", "pcmfloat"))
        self.assertNotEqual(plain, ordered)
        plain = struct.unpack(f"<{len(plain) // 4}f", plain)
        ordered = struct.unpack(f"<{len(ordered) // 4}f", ordered)
        for place, host in enumerate((0, 1, 4, 5, 2, 3)):
            self.assertEqual(ordered[place::6], plain[host::6], place)

    def test_layouts_are_named_as_each_codec_knows_them(self):
        for output, codec, layout in (("x.mkv", "flac", "5.1(side)"), ("x.wav", "pcm24", "5.1(side)"),
                                      ("x.mov", "pcm24", "5.1(side)"), ("x.mkv", "aac", "5.1"),
                                      ("x.mkv", "opus", "5.1")):
            path = self.render(document(frames=30, **surround(3)), output, "--audio-only", "--audio-codec", codec)
            self.assertEqual(self.probe(path, "audio")["channel_layout"], layout, f"{output} {codec}")

    def test_lossy_codecs_keep_every_channel_of_up_to_five(self):
        for count in range(1, 6):
            root = document(size=(16, 16), frames=30, mNumChannels=count, mSteadyToneAmplitude=0.25)
            for output, codec in (("x.mp4", "aac"), ("x.mkv", "opus")):
                if codec == "opus" and count == 4:
                    continue  # its four channels are two pairs, which files without a layout do not promise
                with self.subTest(channels=count, codec=codec):
                    data = self.samples(self.render(root, output, "--audio-only", "--audio-codec", codec))
                    samples = struct.unpack(f"<{len(data) // 4}f", data)
                    for channel in range(count):
                        peak = max(map(abs, samples[24000 * count + channel:36000 * count:count]))
                        self.assertAlmostEqual(20 * math.log10(max(peak, 1e-9)), 20 * math.log10(0.25), delta=0.3,
                                               msg=f"channel {channel}")

    def test_lengths_are_exact_to_the_sample(self):
        for rate, frames, sample_rate in (((30000, 1001), 7, 48000), ((24000, 1001), 5, 44100), ((25, 1), 3, 11025),
                                          ((60, 1), 11, 8000), ((120, 1), 1, 192000)):
            for output in ("x.wav", "x.mkv", "x.mov"):
                path = self.render(document(size=(16, 16), rate=rate, frames=frames, mSampleRate=sample_rate), output)
                exact = frames * rate[1] * sample_rate / rate[0]
                self.assertEqual(len(self.samples(path)) // 8, math.floor(exact + 0.5), f"{output} {rate} {sample_rate}")

    def test_a_coder_that_needs_a_start_does_not_delay_the_pictures(self):
        root = document(size=(64, 64), frames=30, pattern="gradient")
        for output, video, sound in (("x.mkv", "h264", "aac"), ("x.mkv", "ffv1", "opus"), ("x.mkv", "hevc", "aac"),
                                     ("x.mp4", "h264", "aac"), ("x.mov", "prores", "aac")):
            with self.subTest(output=output, video=video, sound=sound):
                path = self.render(root, output, "--video-codec", video, "--audio-codec", sound)
                done = subprocess.run(["ffprobe", "-v", "error", "-select_streams", "v", "-show_entries", "frame=pts_time",
                                       "-of", "csv=p=0", path], capture_output=True, check=True)
                times = [float(line.strip(",")) for line in done.stdout.decode().split()]
                self.assertEqual(len(times), 30)
                for frame, time in enumerate(times):
                    self.assertAlmostEqual(time, frame / 30, delta=0.0006)

    def test_samples_are_the_same_however_they_are_cut(self):
        root = document(size=(16, 16), rate=(30000, 1001), frames=90, **surround(2))
        whole = self.samples(self.render(root, "whole.mkv", "--audio-only", "--audio-codec", "pcmfloat"))
        first = self.samples(self.render(root, "a.mkv", "--to", "30", "--audio-codec", "pcmfloat"))
        second = self.samples(self.render(root, "b.mkv", "--from", "31", "--threads", "3", "--audio-codec", "pcmfloat"))
        self.assertEqual(whole, first + second)

    def test_integers_are_the_nearest_ones_to_the_floats(self):
        root = document(size=(16, 16), frames=30, mSteadyToneFrequency=997.0, mSteadyToneAmplitude=0.9)
        floats = self.samples(self.render(root, "x.wav", "--audio-only", "--audio-codec", "pcmfloat"))
        floats = struct.unpack(f"<{len(floats) // 4}f", floats)
        for codec, bits, output in (("pcm16", 16, "x.wav"), ("pcm24", 24, "x.wav"), ("pcm32", 32, "x.wav"),
                                    ("pcm24", 24, "x.mov"), ("flac", 24, "x.mkv")):
            data = self.samples(self.render(root, output, "--audio-only", "--audio-codec", codec), "pcm_s32le")
            integers = struct.unpack(f"<{len(data) // 4}i", data)
            expected = tuple(math.floor(sample * 2 ** (bits - 1) + 0.5) << (32 - bits) for sample in floats)
            self.assertEqual(integers, expected, f"{codec} {output}")

    def test_full_scale_and_more_is_clipped(self):
        root = document(size=(16, 16), frames=30, mSteadyToneAmplitude=4.0)
        data = self.samples(self.render(root, "x.wav", "--audio-only", "--audio-codec", "pcm16"), "pcm_s16le")
        samples = struct.unpack(f"<{len(data) // 2}h", data)
        self.assertEqual((min(samples), max(samples)), (-32768, 32767))

    def test_dither_is_two_steps_wide_and_repeats(self):
        root = document(size=(16, 16), frames=30, mSteadyToneFrequency=997.0)
        plain = self.render(root, "plain.wav", "--audio-only", "--audio-codec", "pcm16")
        first = self.render(root, "first.wav", "--audio-only", "--audio-codec", "pcm16", "--dither")
        again = self.render(root, "again.wav", "--audio-only", "--audio-codec", "pcm16", "--dither", "--threads", "1")
        with open(first, "rb") as one, open(again, "rb") as other:
            self.assertEqual(one.read(), other.read())
        plain, dithered = (self.samples(path, "pcm_s16le") for path in (plain, first))
        difference = [a - b for a, b in zip(struct.unpack(f"<{len(plain) // 2}h", plain),
                                            struct.unpack(f"<{len(dithered) // 2}h", dithered))]
        self.assertEqual(set(difference), {-1, 0, 1})
        # With a rest r from rounding, noise that is triangular between -1 and 1 leaves the code with probability
        # 3/4 - r²; the mean over r from -1/2 to 1/2 is 2/3. The two channels get noise of their own.
        share = difference.count(0) / len(difference)
        self.assertAlmostEqual(share, 2 / 3, delta=0.02)
        self.assertNotEqual(difference[0::2], difference[1::2])

    def test_every_listed_container_takes_the_sound_codec(self):
        done = self.run_tessel("list", "codecs", "--json")
        rows = [row for row in json.loads(done.stdout) if row["kind"] == "sound"]
        self.assertGreater(len(rows), 0)
        coded = {"pcm16": "pcm_s16", "pcm24": "pcm_s24", "pcm32": "pcm_s32", "pcmfloat": "pcm_f32"}
        for row in rows:
            for container in row["containers"]:
                with self.subTest(codec=row["name"], container=container):
                    path = self.render(document(size=(64, 48), rate=(25, 1), frames=3), "x." + container, "--audio-codec",
                                       row["name"])
                    name = self.probe(path, "audio")["codec_name"]
                    self.assertTrue(name.startswith(coded.get(row["name"], row["name"])), name)

    def test_mxf_says_which_sample_rate_it_has(self):
        root = document(size=(64, 48), rate=(25, 1), frames=3, mSampleRate=44100)
        self.refuse("render", self.save(root), "-o", self.path("x.mxf"),
                    says=("mxf", "48000", "44100", "mov or mkv", "--video-only"))
        self.render(root, "x.mxf", "--video-only")

    def test_more_channels_than_flac_has_become_pcm(self):
        path = self.render(document(size=(16, 16), frames=3, mNumChannels=64), "x.mkv")
        stream = self.probe(path, "audio")
        self.assertEqual((stream["codec_name"], stream["channels"]), ("pcm_s24le", 64))
        self.refuse("render", self.save(document(mNumChannels=65)), "-o", "y.mkv", says=("65", "64", "--video-only"))
        self.render(document(mNumChannels=65), "z.mkv", "--video-only")

    def test_a_clip_without_channels_gives_a_picture_alone(self):
        path = self.render(document(frames=3, mNumChannels=0), "x.mkv")
        self.probe(path)
        self.assertNotIn(b"Audio", subprocess.run(["ffprobe", path], capture_output=True, check=True).stderr)
        self.refuse("render", self.path("clip.tessel"), "-o", "x.wav", says=("mNumChannels",))

    def test_sample_rates_that_files_cannot_have_are_refused(self):
        for rate in (0, 0.5, 44100.5, -48000, 1e12, 1e-30):
            self.refuse("render", self.save(document(mSampleRate=rate)), "-o", "x.wav",
                        says=("mSampleRate", "--video-only"))
            self.left_over("clip.tessel")
        self.refuse("render", self.save(document(mSampleRate=12345)), "-o", "x.mp4", says=("12345", "48000"))

    @unittest.skipUnless(os.environ.get("TESSEL_LONG_TESTS"), "writes 4.6 GB")
    def test_beyond_4_gib_a_wave_file_is_rf64(self):
        seconds = 10 * 3600
        root = document(size=(16, 16), rate=(1, 1), frames=seconds, mNumChannels=32, mSampleRate=1000)
        path = self.render(root, "x.wav", "--audio-codec", "pcm32")
        with open(path, "rb") as file:
            self.assertEqual(file.read(4), b"RF64")
        self.assertEqual(int(self.probe(path, "audio")["duration_ts"]), seconds * 1000)


if __name__ == "__main__":
    main()

"""Sound: clean encodes, every fault of `tessel damage`, and what FFmpeg's own filters do, named with its measure."""

import os
import subprocess

from verify_support import VerifyTest, document, main

from render_support import surround

BLITS = surround(3)
EBU_SURROUND = surround(2)
EBU_STEREO = {"mToneFormat": 1, "mIdentifierFormat": 0}
TONE = {"mSteadyToneFrequency": 997.0}


def clip(sound, seconds=14, rate=48000):
    """Small pictures with numbers, ten a second."""
    return document("bgrx", (320, 180), rate=(10, 1), frames=seconds * 10, pattern="gradient", number=True,
                    mSampleRate=float(rate), **sound)


class Sound(VerifyTest):
    # A sound file has no pictures: what is said of them is left out.
    def heard(self, root, name, *arguments):
        """The report on a sound file."""
        return self.verify(root, self.path(name), "--accept", "container.size", *arguments)

    def convert(self, source, output, *arguments):
        subprocess.run(["ffmpeg", "-v", "error", "-y", "-i", self.path(source), *arguments, "-strict", "-2",
                        self.path(output)], check=True, capture_output=True)

    def damaged(self, root, *faults, output="damaged.wav"):
        arguments = [part for fault in faults for part in ("--fault", fault)]
        done = self.run_tessel("damage", self.save(root), *arguments, "-o", self.path(output))
        self.assertEqual(done.returncode, 0, done.stderr)
        return output

    def fault(self, root, fault, *arguments):
        """The only finding, which must have the fault's name."""
        name = self.damaged(root, fault)
        return self.expect(self.heard(root, name, *arguments), fault.split("=")[0])

    def filtered_sound(self, root, filters, *ids, codec="pcm_s24le", output="filtered.mka"):
        if not os.path.exists(self.path("whole.wav")):
            self.render(root, "whole.wav")
        self.convert("whole.wav", output, "-af", filters, "-c:a", codec)
        return self.expect(self.heard(root, output, "--accept", "container.layout"), *ids)


class Clean(Sound):
    def test_clean_encodes_have_no_fault(self):
        documents = [clip(BLITS), clip(EBU_SURROUND, 13), clip(EBU_STEREO, 7), clip({}, 3), clip(TONE, 3),
                     clip(EBU_STEREO, 4, rate=44100), clip({"mSteadyToneFrequency": 60.0}, 3),
                     clip({"mNumChannels": 1}, 3), clip({"mSteadyToneAmplitude": 0.001}, 3)]
        codecs = {"aac": "m4a", "ac3": "mka", "libopus": "mka", "mp2": "mka", "flac": "mka", "pcm_s24le": "mka"}
        for index, root in enumerate(documents):
            self.render(root, "clean.wav")
            for codec, kind in codecs.items():
                if codec == "mp2" and root.get("mNumChannels", 2) > 2:
                    continue  # it has two channels at most
                if codec == "libopus" and root["mSampleRate"] != 48000:
                    continue  # it resamples
                layout = ("-af", "aformat=channel_layouts=5.1") if codec == "libopus" and index < 2 else ()
                self.convert("clean.wav", f"clean.{kind}", *layout, "-c:a", codec)
                report = self.heard(root, f"clean.{kind}")
                self.expect_clean(report, f"{index} {codec}")


    def test_our_own_lossy_sound_has_no_fault(self):
        for root in (clip(BLITS), clip(EBU_SURROUND, 13), clip(EBU_STEREO, 7)):
            for output, codec in (("clean.m4a", "aac"), ("clean.mka", "aac"), ("clean.mka", "opus")):
                kind = "mp4" if output.endswith("m4a") else "mkv"
                self.render(root, output, "--format", kind, "--audio-only", "--audio-codec", codec)
                self.expect_clean(self.heard(root, output), f"{root['mToneFormat']} {output} {codec}")


class OwnFaults(Sound):
    def test_channels_of_blits(self):
        root = clip(BLITS)
        self.assertIn("L and R are swapped", self.fault(root, "audio.order=0:1")["message"])
        self.assertEqual(self.fault(root, "audio.order=2:4")["found"], "L R Ls LFE C Rs")  # Ls and C, counted as clips do
        self.assertEqual(self.fault(root, "audio.polarity=1")["found"], "R inverted")
        self.assertEqual(self.fault(root, "audio.silence=5")["found"], "LFE silent")
        self.assertIn("Lo/Ro of ITU-R BS.775", self.fault(root, "audio.downmix")["message"])

    def test_levels_of_blits(self):
        root = clip(BLITS)
        for decibels in (-6, 0.3):
            finding = self.fault(root, f"audio.gain={decibels}")
            self.assertAlmostEqual(finding["found"], decibels, delta=finding["uncertainty"])
        finding = self.fault(root, "audio.dc=0.001")
        self.assertAlmostEqual(finding["found"], -60, delta=finding["uncertainty"] + 0.01)
        finding = self.fault(root, "audio.noise=-60")
        self.assertAlmostEqual(finding["found"], -60, delta=finding["uncertainty"])
        finding = self.fault(clip(EBU_STEREO, 4), "audio.harmonics=1")
        self.assertAlmostEqual(finding["found"], -39.8, delta=finding["uncertainty"] + 0.3)  # 1 % of a tone 3 % softer
        self.assertEqual(self.fault(root, "audio.depth=8")["found"], 8)
        self.assertIn("-24.0", self.fault(root, "audio.clipping=-24")["found"])

    def test_time_of_blits(self):
        root = clip(BLITS)
        stereo = clip(EBU_STEREO, 4)  # sound of another speed takes long to make
        finding = self.fault(stereo, "audio.pitch=4")
        self.assertAlmostEqual(finding["found"], 1.04, delta=finding["uncertainty"] + 1e-8)
        finding = self.fault(stereo, "audio.drift=100")
        self.assertAlmostEqual(finding["found"], 100, delta=finding["uncertainty"] + 0.01)
        for fault in ("audio.lost=480", "audio.lost=501:4", "audio.inserted=480", "audio.inserted=13:2.5",
                      "audio.inserted=1000:3.3", "audio.inserted=1000:5", "audio.lost=1000:5"):
            finding = self.fault(root, fault)
            count, _, seconds = fault.partition("=")[2].partition(":")
            self.assertAlmostEqual(finding["found"], int(count), delta=finding["uncertainty"])
            place = float(seconds or 1) * 48000
            span = finding["samples"][0]
            self.assertLessEqual(span["first"], place + 2, fault)
            self.assertGreaterEqual(span["last"], place - int(count) - 2, fault)
        finding = self.fault(root, "audio.dropout=480")
        self.assertAlmostEqual(finding["found"], 480, delta=finding["uncertainty"])
        self.assertAlmostEqual(finding["samples"][0]["first"], 48000, delta=4)
        self.assertEqual(len(self.fault(root, "audio.segments")["samples"]), 2)
        for milliseconds in (40, -30, 1.5):
            finding = self.fault(root, f"sync.offset={milliseconds}")
            self.assertAlmostEqual(finding["found"], milliseconds, delta=finding["uncertainty"])

    def test_ebu_stereo(self):
        root = clip(EBU_STEREO, 10)
        for fault in ("audio.order=0:1", "audio.polarity=0", "audio.silence=1", "audio.clipping=-20", "audio.gain=-3",
                      "audio.lost=501:4", "audio.dropout=480", "audio.downmix", "audio.upmix", "sync.offset=40"):
            self.fault(root, fault)

    def test_ebu_surround(self):
        # 480 samples are whole periods of the channels' 1000 Hz, but not of the low tone.
        root = clip(EBU_SURROUND, 10)
        for fault in ("audio.inserted=480:2", "audio.lost=480:2"):
            finding = self.fault(root, fault)
            self.assertAlmostEqual(finding["found"], 480, delta=finding["uncertainty"])

    def test_a_steady_tone_shows_what_it_can(self):
        root = clip(TONE, 3)
        for fault in ("audio.polarity=0", "audio.gain=-6", "audio.silence=1", "audio.clipping=-14", "audio.noise=-60",
                      "audio.drift=50", "audio.pitch=-2", "audio.lost=11:2", "audio.dropout=100", "audio.depth=12",
                      "sync.offset=40"):
            self.fault(root, fault)

    def test_sound_against_picture_in_a_movie(self):
        root = clip(BLITS, 6)
        name = self.damaged(root, "sync.offset=40", output="late.mkv")
        finding = self.expect(self.verify(root, self.path(name)), "sync.offset")
        self.assertAlmostEqual(finding["found"], 40, delta=finding["uncertainty"])
        self.assertIn("0.40 frames", finding["message"])
        self.assertNotIn("by the movie's times", finding["message"])
        name = self.damaged(root, "container.duration=1", output="long.mkv")
        self.expect(self.verify(root, self.path(name)), "container.duration")

    def test_a_few_lost_samples_are_no_other_speed(self):
        root = clip(EBU_STEREO, 7)
        for count in (1, 3, 10):
            with self.subTest(count=count):
                name = self.damaged(root, f"audio.lost={count}:4", output="lost.mkv")
                finding = self.expect(self.verify(root, self.path(name)), "audio.lost")
                self.assertAlmostEqual(finding["found"], count, delta=finding["uncertainty"])


class ForeignFaults(Sound):
    def test_filters_on_blits(self):
        root = clip(BLITS)
        self.filtered_sound(root, "channelmap=1|0|2|3|4|5:5.1", "audio.order")
        finding = self.filtered_sound(root, "volume=-3dB", "audio.gain")
        self.assertAlmostEqual(finding["found"], -3, delta=finding["uncertainty"])
        finding = self.filtered_sound(root, "adelay=40:all=1", "sync.offset")
        self.assertAlmostEqual(finding["found"], 40, delta=finding["uncertainty"])
        finding = self.filtered_sound(root, "asetrate=48048,aresample=48000", "audio.drift")
        self.assertAlmostEqual(finding["found"], 1001 / 1000 * 1e6 - 1e6, delta=1)
        finding = self.filtered_sound(root, "aselect='not(between(n,40,41))',asetpts=N/SR/TB", "audio.lost")
        self.assertEqual(round(finding["found"]) % 227, 0)  # 4096 bytes of WAV are 227 samples of 6 × 3 bytes
        self.filtered_sound(root, "pan=stereo|FL=FL+0.707*FC+0.707*BL|FR=FR+0.707*FC+0.707*BR", "audio.downmix")
        self.filtered_sound(root, "aresample=44100", "container.sample-rate")

    def test_sound_that_was_stretched_with_its_pitch_kept(self):
        # FFmpeg's atempo lays pieces over each other, up to 21 ms from where the speed puts them.
        for name, root in (("stereo", clip(EBU_STEREO, 10)), ("surround", clip(EBU_SURROUND, 13)), ("blits", clip(BLITS))):
            self.render(root, "whole.wav")
            for tempo in (1.01, 0.97, 1.1):
                with self.subTest(clip=name, tempo=tempo):
                    finding = self.filtered_sound(root, f"atempo={tempo}", "sync.drift")
                    self.assertAlmostEqual(finding["found"], (1 - tempo) * 1e6, delta=finding["uncertainty"])
                    self.assertIn("its pitch kept", finding["message"])

    def test_filters_on_ebu_stereo(self):
        root = clip(EBU_STEREO, 10)
        self.filtered_sound(root, "pan=stereo|c0=c1|c1=c0", "audio.order")
        self.filtered_sound(root, "pan=mono|c0=0.5*c0+0.5*c1", "audio.downmix")
        self.filtered_sound(root, "pan=stereo|c0=-1*c0|c1=c1", "audio.polarity")
        self.filtered_sound(root, "pan=stereo|c0=c0|c1=0*c1", "audio.silence")
        self.filtered_sound(root, "asetrate=50000,aresample=48000", "audio.pitch")
        self.filtered_sound(root, "dcshift=0.02", "audio.dc")
        self.filtered_sound(root, "aformat=sample_fmts=u8p", "audio.depth")


main()

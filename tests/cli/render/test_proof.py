"""Hashes of what encoders get, comparison with them, and the truth table, beside FFmpeg's own hashes."""

import csv
import hashlib
import os
import subprocess
from fractions import Fraction

from render_support import RenderTest, document, main, surround


class Proof(RenderTest):
    def hashes_of(self, path, *codecs):
        """FFmpeg's framehash output of a file, without the line that names the program."""
        done = subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-map", "0", *codecs, "-f", "framehash", "-"],
                              capture_output=True, check=True)
        return self.without_program(done.stdout.decode())

    @staticmethod
    def without_program(text):
        return [line for line in text.splitlines() if not line.startswith("#software")]

    def written(self, name):
        with open(self.path(name), encoding="utf-8", newline="") as file:
            return file.read()

    def table(self, name):
        return list(csv.DictReader(self.written(name).splitlines()))

    def test_the_hashes_are_ffmpegs_of_the_lossless_file(self):
        for code, size, rate, audio in (("bgra", (96, 64), (30000, 1001), {}), ("uyvy", (50, 34), (25, 1), {}),
                                        ("BGra", (33, 17), (24, 1), {}), ("vuya", (64, 48), (50, 1), surround(3)),
                                        ("yv17", (64, 48), (25, 1), {"mNumChannels": 1})):
            with self.subTest(code=code):
                root = document(code, size=size, rate=rate, frames=30, pattern="gradient", **audio)
                path = self.render(root, "x.mkv", "--hash", "x.framehash")
                expected = self.hashes_of(path, "-c:v", "rawvideo", "-c:a", "pcm_s24le")
                self.assertEqual(self.without_program(self.written("x.framehash")), expected)

    def test_v210_is_hashed_as_it_is_packed(self):
        root = document("v210", size=(96, 64), rate=(25, 1), frames=10, pattern="gradient")
        path = self.render(root, "x.mov", "--video-only", "--hash", "x.framehash")
        expected = self.hashes_of(path, "-c", "copy")
        ours = self.without_program(self.written("x.framehash"))
        self.assertIn("#codec_id 0: v210", ours)
        self.assertEqual([line.split(",")[-1] for line in ours if not line.startswith("#")],
                         [line.split(",")[-1] for line in expected if not line.startswith("#")])

    def test_the_codec_and_the_threads_do_not_change_them(self):
        root = document("bgra", size=(96, 64), frames=20, pattern="gradient", number=True)
        clip = self.save(root)
        texts = set()
        for arguments in (("-o", "x.mkv"), ("-o", "y.mkv", "--threads", "1"), ("-o", "z.avi", "--audio-codec", "pcm24"),
                          ("-o", "w_%03d.png",), ("--format", "null", "--video-codec", "ffv1")):
            done = self.run_tessel("render", clip, "-q", "--video-only", "--hash", "x.framehash",
                                   *[part for part in arguments if part not in ("--audio-codec", "pcm24")])
            self.assertEqual((done.returncode, done.stderr), (0, b""), arguments)
            lines = self.written("x.framehash").splitlines()
            texts.add(tuple(line.split(",")[-1] for line in lines if not line.startswith("#")))
        # PNG has another order of components than FFV1: its hashes are others, each again the same.
        self.assertEqual(len(texts), 2)

    def test_sound_alone_is_stream_0(self):
        path = self.render(document(frames=20), "x.wav", "--hash", "x.framehash")
        lines = self.without_program(self.written("x.framehash"))
        self.assertIn("#media_type 0: audio", lines)
        data = [line for line in lines if not line.startswith("#")]
        self.assertEqual(sum(int(line.split(",")[3]) for line in data), int(self.probe(path, "audio")["duration_ts"]))

    def test_verify_passes_on_the_same_and_names_the_first_that_differs(self):
        clip = self.save(document("bgra", frames=12, pattern="gradient"))
        self.assertEqual(self.run_tessel("render", clip, "--format", "null", "-q", "--hash", "x.framehash").returncode, 0)
        done = self.run_tessel("render", clip, "-o", "x.mkv", "-q", "--verify", "x.framehash", "--video-codec", "ffv1")
        self.assertEqual(done.returncode, 1)
        # FLAC cuts the sound into other pieces.
        self.assertIn(b"the sound from sample 0 on cannot be compared with x.framehash", done.stderr)
        self.assertIn(b"render with the format and codecs that it was written with", done.stderr)
        for arguments in (("--format", "null"), ("-o", "x.nut")):
            done = self.run_tessel("render", clip, "-q", "--verify", "x.framehash", *arguments)
            self.assertEqual((done.returncode, done.stderr), (0, b""), arguments)
        text = self.written("x.framehash").splitlines()
        pictures = [number for number, line in enumerate(text) if line.startswith("0,")]
        text[pictures[7]] = text[pictures[7]][:-1] + ("0" if text[pictures[7]][-1] != "0" else "1")
        with open(self.path("y.framehash"), "w", encoding="utf-8") as file:
            file.write("\n".join(text) + "\n")
        os.remove(self.path("x.nut"))
        self.refuse("render", clip, "-o", "x.nut", "-q", "--verify", "y.framehash", says=("picture 7", "y.framehash"))
        self.left_over("clip.tessel", "x.framehash", "y.framehash")

    def test_verify_counts_what_is_missing_and_what_is_too_much(self):
        clip = self.save(document("bgra", frames=12))
        self.run_tessel("render", clip, "--format", "null", "-q", "--video-only", "--hash", "x.framehash")
        self.refuse("render", clip, "-o", "x.mkv", "-q", "--video-only", "--video-codec", "raw", "--frames", "11",
                    "--verify", "x.framehash", says=("x.framehash has more: picture 11",))
        with open(self.path("x.framehash"), "r+", encoding="utf-8") as file:
            lines = file.read().splitlines()[:-1]
            file.seek(0)
            file.truncate()
            file.write("\n".join(lines) + "\n")
        self.refuse("render", clip, "-o", "x.mkv", "-q", "--video-only", "--video-codec", "raw", "--verify",
                    "x.framehash", says=("x.framehash ends before picture 11",))
        self.left_over("clip.tessel", "x.framehash")

    def test_ffmpegs_own_hash_files_are_taken_whatever_the_hash_is(self):
        root = document("bgra", size=(96, 64), rate=(25, 1), frames=10, pattern="gradient")
        path = self.render(root, "x.mkv")
        for algorithm in ("md5", "SHA512", "murmur3"):
            subprocess.run(["ffmpeg", "-v", "error", "-y", "-i", path, "-map", "0", "-c:v", "rawvideo", "-c:a",
                            "pcm_s24le", "-f", "framehash", "-hash", algorithm, self.path("x.framehash")], check=True)
            self.render(root, "y.mkv", "--verify", "x.framehash")

    def test_a_dash_is_standard_output(self):
        clip = self.save(document("bgra", frames=3, pattern="gradient"))
        for option in ("--hash", "--truth"):
            self.assertEqual(self.run_tessel("render", clip, "--format", "null", "-q", option, "table").returncode, 0)
            done = self.run_tessel("render", clip, "--format", "null", option, "-")
            self.assertEqual((done.returncode, done.stdout.decode()), (0, self.written("table")))
            self.refuse("render", clip, "-o", "-", "--format", "y4m", option, "-", code=2, says=("standard output",))
        self.left_over("clip.tessel", "table")

    def test_files_that_are_no_hashes_are_refused(self):
        clip = self.save(document())
        for content, says in (("", "#hash"), ("#hash: SHA256\nnonsense\n", "nonsense"), ("#hash: nonsense\n", "nonsense")):
            with open(self.path("x.framehash"), "w", encoding="utf-8") as file:
                file.write(content)
            self.refuse("render", clip, "-o", "x.mkv", "-q", "--verify", "x.framehash", says=(says,))
        self.refuse("render", clip, "-o", "x.mkv", "--verify", "gone", says=("gone", "no such file"))
        self.left_over("clip.tessel", "x.framehash")

    def test_the_truth_is_a_row_for_each_picture(self):
        root = document("bgra", size=(96, 64), rate=(30000, 1001), frames=1810, pattern="gradient", **surround(3))
        self.render(root, "x.mkv", "--truth", "x.csv", "--from", "1795", "--to", "1805")
        rows = self.table("x.csv")
        self.assertEqual([int(row["frame"]) for row in rows], list(range(1795, 1806)))
        for row in rows:
            frame = int(row["frame"])
            self.assertEqual(Fraction(row["seconds"]), Fraction(frame * 1001, 30000))
            # A sample is the nearest to the frame's time.
            self.assertLessEqual(abs(Fraction(row["sample"]) - Fraction(row["seconds"]) * 48000), Fraction(1, 2))
        # 1800 frames are one minute of timecode; drop-frame counting then leaves out two numbers.
        by_frame = {int(row["frame"]): row for row in rows}
        self.assertEqual(by_frame[1799]["timecode"], "00:00:59:29")
        self.assertEqual(by_frame[1799]["drop_frame_timecode"], "00:00:59;29")
        self.assertEqual(by_frame[1800]["timecode"], "00:01:00:00")
        self.assertEqual(by_frame[1800]["drop_frame_timecode"], "00:01:00;02")

    def test_the_truth_follows_the_timecode_that_the_file_gets(self):
        root = document(rate=(25, 1), frames=3)
        self.render(root, "x.mov", "--truth", "x.csv", "--timecode", "10:00:00:24", "--from", "1")
        self.assertEqual([(row["frame"], row["timecode"], row["drop_frame_timecode"]) for row in self.table("x.csv")],
                         [("1", "10:00:00:24", ""), ("2", "10:00:01:00", "")])

    def test_the_picture_s_hash_is_that_of_the_painted_pixels(self):
        # One colour all over: bgra of 1, 0.5, 0.25, 1 by round to nearest.
        pixel = bytes([64, 128, 255, 255])
        self.render(document("bgra", size=(96, 64), frames=2), "x.mp4", "--truth", "x.csv")
        expected = hashlib.sha256(pixel * 96 * 64).hexdigest()
        self.assertEqual([row["picture_sha256"] for row in self.table("x.csv")], [expected] * 2)
        # Of a moving picture, the lossless file holds the same bytes, upright.
        path = self.render(document("bgra", size=(97, 63), frames=3, pattern="gradient"), "x.mkv", "--truth", "x.csv")
        for frame, row in enumerate(self.table("x.csv")):
            self.assertEqual(row["picture_sha256"], hashlib.sha256(self.decode(path, "bgra", frame)).hexdigest())

    def test_idents_are_named_by_the_channels_that_sound(self):
        # The published sequence of BLITS, in tenths of a second; a picture each tenth.
        root = document(rate=(10, 1), frames=134, **surround(3))
        self.render(root, "x.mkv", "--truth", "x.csv")
        heard = [row["ident"] for row in self.table("x.csv")]
        self.assertEqual(heard[0:8], ["L"] * 6 + ["silence"] * 2)
        self.assertEqual([heard[start] for start in (8, 16, 24, 32, 40)], ["R", "C", "LFE", "Ls", "Rs"])
        self.assertEqual(heard[48:79], ["L+R"] * 10 + (["R"] * 3 + ["L+R"] * 3) * 3 + ["R"] * 3)
        self.assertEqual(heard[79:134], ["L+R"] * 20 + ["silence"] * 3 + ["all"] * 30 + ["silence"] * 2)

    def test_idents_say_what_the_samples_hold(self):
        roles = ["L", "R", "C", "LFE", "Ls", "Rs"]  # as files have them
        for identifier in (0, 1, 2, 3):
            surround_sound = identifier > 1
            keys = surround(identifier) if surround_sound else {"mToneFormat": 1, "mIdentifierFormat": identifier}
            root = document(rate=(4, 1), frames=56, **keys)
            path = self.render(root, "x.mkv", "--truth", "x.csv", "--audio-codec", "pcm16")
            data = memoryview(self.samples(path, "pcm_s16le")).cast("h")
            count = 6 if surround_sound else 2
            for row in self.table("x.csv"):
                begin = (int(row["sample"]) + 100) * count  # a hundred samples on: no tone is at its zero for long
                window = data[begin:begin + 2000 * count]
                loud = {roles[channel] for channel in range(count) if max(map(abs, window[channel::count])) > 1000}
                if identifier == 2:
                    loud -= {"LFE"}  # sounds all the time
                named = {"silence": set(), "all": set(roles[:count]) - ({"LFE"} if identifier == 2 else set())}
                expected = named.get(row["ident"], set(row["ident"].split("+")))
                self.assertEqual(loud, expected, (identifier, row))

    def test_nothing_is_left_where_the_work_fails(self):
        clip = self.save(document())
        self.refuse("render", clip, "-o", "gone/x.mkv", "--hash", "x.framehash", "--truth", "x.csv", says=("gone",))
        self.refuse("render", clip, "-o", "x.mkv", "--truth", "gone/x.csv", says=("gone/x.csv",))
        self.refuse("render", clip, "-o", "x.wav", "--truth", "x.csv", says=("--truth",))
        self.left_over("clip.tessel")

    def test_what_makes_no_sense_is_refused(self):
        clip = self.save(document())
        other = self.save(document(), "other.tessel")
        self.refuse("render", clip, other, "-o", "out/", "--hash", "x", code=2, says=("one clip",))
        self.refuse("render", clip, "-o", "x.mkv", "--hash", "x", "--truth", "x", code=2, says=("same file",))
        self.refuse("render", clip, "-o", "x.mkv", "--hash", "x.mkv", code=2, says=("x.mkv", "another name"))
        self.refuse("render", clip, "-o", "x.mkv", "--truth", "./x.mkv", code=2, says=("./x.mkv", "another name"))
        self.refuse("render", clip, "-o", "./", "--hash", "clip.mkv", code=2, says=("clip.mkv", "another name"))
        for option in ("--hash", "--truth"):
            self.refuse("render", clip, "-o", "x.mkv", option, clip, code=2, says=("clip itself", "another name"))
        self.refuse("render", clip, "--format", "null", "--verify", "x", "--hash", "x", code=2, says=("--verify", "another name"))


if __name__ == "__main__":
    main()

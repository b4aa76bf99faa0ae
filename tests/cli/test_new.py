"""`tessel new`, `set`, `list` and `schema`: documents from the command line."""

import json
import os
import re
import stat
import unittest
from fractions import Fraction

from program import TICKS_PER_SECOND, ProgramTest, code, document

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SWATCHES = [os.path.join(ROOT, "samples", name) for name in ("swatch-coordinates.json", "swatch-colors.json")]


class DocumentTest(ProgramTest):
    def new(self, *options, name="new.tessel", warnings=False):
        """Makes a document, opens it in the plug-in and returns what the plug-in reports, with the document."""
        answer = self.run_program("new", name, *options)
        self.assertEqual(answer.code, 0, answer.err)
        if not warnings:
            self.assertEqual(answer.err, "")
        with open(self.path(name), encoding="utf-8") as file:
            text = file.read()
        info = self.run_program("info", "--json", name)
        self.assert_done(info)
        os.remove(self.path(name))
        return json.loads(info.out), json.loads(text), answer

    def refuse(self, options, *says):
        answer = self.run_program("new", "new.tessel", *options)
        self.assert_failed(answer, 2, *says)
        self.assertFalse(os.path.exists(self.path("new.tessel")))

    def listed(self, subject):
        answer = self.run_program("list", subject, "--json")
        self.assert_done(answer)
        return json.loads(answer.out)


class New(DocumentTest):
    def test_the_clip_is_what_was_asked_for(self):
        report, made, _ = self.new("--size", "1280x718", "--rate", "29.97", "--duration", "250f", "--pixel-format",
                                   "v210", "--pixel-aspect", "10/11", "--fields", "lower", "--color-space", "rec709",
                                   "--channels", "8", "--sample-rate", "96000", "--tone", "440:-20", "--no-number")
        video, audio = report["video"], report["audio"]
        self.assertEqual((video["width"], video["height"]), (1280, 718))
        self.assertEqual((video["frameRate"]["numerator"], video["frameRate"]["denominator"]), (30000, 1001))
        self.assertEqual(video["duration"]["frames"], 250)
        self.assertEqual(video["pixelFormat"]["name"], "KsPixelFormat_V210_422_10u_709")
        self.assertEqual((video["pixelAspectRatio"]["numerator"], video["pixelAspectRatio"]["denominator"]), (10, 11))
        self.assertEqual(video["fieldOrder"], "lower field first")
        self.assertEqual(video["colorSpace"]["name"], "Rec. 709")
        self.assertEqual((audio["sampleRate"], audio["channelCount"]), (96000, 8))
        self.assertEqual(made["mSteadyToneFrequency"], 440)
        self.assertAlmostEqual(made["mSteadyToneAmplitude"], 0.1, places=7)  # -20 dB is a tenth
        self.assertFalse(made["mDrawFrameFieldNumber"])

    def test_durations_are_frames_times_and_timecodes(self):
        for rate, duration, frames in (("25", "10s", 250), ("25", "1.5s", 38),  # 37.5 frames: the later one
                                       ("25", "2m", 3000), ("25", "500ms", 13), ("24", "1h", 86400),
                                       ("29.97", "10s", 300),  # 299.7
                                       ("29.97", "00:00:10:00", 300), ("29.97", "00:01:00;02", 1800),
                                       ("29.97", "00:01:00:00", 1800), ("23.976", "00:00:01:12", 36),
                                       ("12.5", "3f", 3), ("7", "1f", 1), ("1000", "1s", 1000)):
            with self.subTest(rate=rate, duration=duration):
                report, _, _ = self.new("--rate", rate, "--duration", duration)
                self.assertEqual(report["video"]["duration"]["frames"], frames)

    def test_a_timecode_that_the_rate_does_not_have_says_what_to_write(self):
        drops = "drop-frame timecodes exist only at 29.97, 59.94, 119.88 and 149.85 frames a second"
        for rate, duration, says in (("25", "00:01:00;00", f"{drops}, not at 25: write 00:01:00:00"),
                                     ("30", "00:01:00;00", f"{drops}, not at 30: write 00:01:00:00"),
                                     ("23.976", "00:01:00;00", f"{drops}, not at 24000/1001: write 00:01:00:00"),
                                     ("25", "00:01:00;25", "the last of a second is 00:01:00:24"),
                                     ("29.97", "00:01:00;00", "the first of that minute is 00:01:00;02"),
                                     ("25", "1:00:00:00", "'1:00:00:00' is no timecode"),
                                     ("12.5", "00:00:10:00", "must be frames or a time such as 250f or 10s")):
            with self.subTest(rate=rate, duration=duration):
                self.refuse(["--rate", rate, "--duration", duration], "tessel: --duration: ", says)

    def test_layouts_take_their_matrix_from_the_colour_space(self):
        for space, matrix in (("rec601-pal", "601"), ("rec601-ntsc", "601"), ("rec709", "709"), ("srgb", "709")):
            for layout in ("v210", "uyvy", "yuyv", "yuv420-frame"):
                report, _, _ = self.new("--pixel-format", layout, "--color-space", space)
                self.assertTrue(report["video"]["pixelFormat"]["name"].endswith(matrix), (space, report))
        report, _, _ = self.new("--pixel-format", "vuya-float", "--color-space", "rec601-pal")
        self.assertEqual(report["video"]["pixelFormat"]["name"], "KsPixelFormat_VUYA_4444_32f")

    def test_the_hosts_names_and_codes_are_kept_with_a_warning_where_matrices_disagree(self):
        for name in ("KsPixelFormat_V210_422_10u_601", "V210_422_10u_601", "uyvy_422_8u_601"):
            report, _, answer = self.new("--pixel-format", name, "--color-space", "rec709", warnings=True)
            self.assertIn("601", report["video"]["pixelFormat"]["name"])
            self.assertIn("warning: the pixels are painted with the BT.601 matrix, the colour space is Rec. 709",
                          answer.err)
        for name in ("v211", "VUYA", "uyv7"):
            report, _, _ = self.new("--pixel-format", name)
            self.assertEqual(report["video"]["pixelFormat"]["fourCharacterCode"], name)
        _, _, answer = self.new("--pixel-format", "v210", "--color-space", "rec2020-10-bit", warnings=True)
        self.assertIn("warning: ", answer.err)

    def test_layouts_are_known_in_capitals_and_with_underscores(self):
        for name, constant in (("UYVY", "UYVY_422_8u_709"), ("V210", "V210_422_10u_709"),
                               ("bgra_float", "BGRA_4444_32f"), ("BGRA", "BGRA_4444_8u")):
            report, _, _ = self.new("--pixel-format", name)
            self.assertEqual(report["video"]["pixelFormat"]["name"], "KsPixelFormat_" + constant)

    def test_tones_that_come_out_as_something_else_are_warned_of(self):
        for options, says in ((["--tone", "24000:-18"], "48000 samples a second hold no tone of 24000 Hz"),
                              (["--tone", "5000:-18", "--sample-rate", "8000"], "choose one below 4000 Hz"),
                              (["--tone", "1000:6"], "1000:6 is louder than full scale")):
            _, _, answer = self.new(*options, warnings=True)
            self.assertIn("warning: ", answer.err)
            self.assertIn(says, answer.err)
        self.new("--tone", "23999:0")
        self.new("--ident", "blits", "--sample-rate", "1000")  # has no steady tone

    def made_with(self, option, values):
        """What the plug-in reports of a clip for each value, with the documents."""
        names = []
        for number, value in enumerate(values):
            names.append(f"{option.strip('-')}-{number}.tessel")
            answer = self.run_program("new", names[-1], "--force", "--size", "48x32", "--duration", "2f", option, value)
            self.assertEqual(answer.code, 0, answer.err)
        info = self.run_program("info", "--json", *names)
        self.assert_done(info)
        documents = []
        for name in names:
            with open(self.path(name), encoding="utf-8") as file:
                documents.append(json.load(file))
        return list(zip(json.loads(info.out), documents))

    def test_every_listed_value_makes_a_clip_that_has_it(self):
        rows = self.listed("pixel-formats")
        for row, (report, _) in zip(rows, self.made_with("--pixel-format", [row["name"] for row in rows])):
            self.assertEqual(report["video"]["pixelFormat"]["code"], row["code"])
        rows = self.listed("frame-rates")
        for row, (report, _) in zip(rows, self.made_with("--rate", [row["name"] for row in rows])):
            rate = report["video"]["frameRate"]
            self.assertEqual(Fraction(rate["numerator"], rate["denominator"]),
                             Fraction(row["numerator"], row["denominator"]))
            self.assertEqual(rate["ticksPerFrame"], row["ticksPerFrame"])
            self.assertEqual(Fraction(TICKS_PER_SECOND, row["ticksPerFrame"]),
                             Fraction(row["numerator"], row["denominator"]), "not exact")
        rows = self.listed("pixel-aspects")
        for row, (report, _) in zip(rows, self.made_with("--pixel-aspect", [row["name"].lower() for row in rows])):
            self.assertEqual(report["video"]["pixelAspectRatio"]["name"], row["name"])
        rows = self.listed("color-spaces")
        for key in ("name", "title"):
            for row, (report, _) in zip(rows, self.made_with("--color-space", [row[key] for row in rows])):
                self.assertEqual(report["video"]["colorSpace"]["name"], row["title"])
                self.assertEqual([report["video"]["colorSpace"][code] for code in ("primaries", "transfer", "matrix")],
                                 [row[code] for code in ("primaries", "transfer", "matrix")])
        rows = self.listed("idents")
        for row, (report, made) in zip(rows, self.made_with("--ident", [row["name"] for row in rows])):
            self.assertEqual(report["audio"]["channelCount"], row["channels"])
            self.assertEqual(report["audio"]["layout"], "5.1" if row["channels"] == 6 else "stereo")
            self.assertEqual((made["mToneFormat"], made["mIdentifierFormat"]), (1, row["mIdentifierFormat"]))

    def test_every_template_can_be_rendered(self):
        for row in self.listed("templates"):
            with self.subTest(template=row["name"]):
                self.assert_done(self.run_program("new", row["name"] + ".tessel", "--template", row["name"]))
                answer = self.run_program("render", row["name"] + ".tessel", "--format", "null", "--frames", "2",
                                          "--quiet")
                self.assert_done(answer)

    def test_without_options_and_template_the_default_record_s_settings_are_kept(self):
        # An empty object is malformed, so the plug-in shows its default record.
        self.write("default.tessel", "{}")
        default = json.loads(self.run_program("info", "--json", "--allow-default", "default.tessel").out)
        report, _, _ = self.new("--size", "720x480", "--rate", "30", "--duration", "60s")
        for key in ("pixelFormat", "pixelAspectRatio", "fieldOrder", "colorSpace", "duration"):
            self.assertEqual(report["video"][key], default["video"][key])
        self.assertEqual(report["audio"], default["audio"])

    def test_colours_go_where_the_picture_shows_them(self):
        def rgb(made, key):
            return [made[key][part] for part in ("mRedPart", "mGreenPart", "mBluePart", "mAlphaPart")]
        _, made, _ = self.new("--picture", "fields", "--colors", "1,0.5,0.25/#00ff80")
        self.assertEqual(rgb(made, "mUpperFieldColor"), [1, 0.5, 0.25, 1])
        self.assertEqual(rgb(made, "mLowerFieldColor")[:2], [0, 1])
        self.assertAlmostEqual(made["mLowerFieldColor"]["mBluePart"], 128 / 255)
        _, made, _ = self.new("--colors", "red/black/1.25,-0.25,0,0.5/white")
        self.assertEqual(rgb(made, "mTopGradiantColorStart"), [1, 0, 0, 1])
        self.assertEqual(rgb(made, "mTopGradiantColorEnd"), [0, 0, 0, 1])
        self.assertEqual(rgb(made, "mBottomGradiantColorStart"), [1.25, -0.25, 0, 0.5])
        self.assertEqual(rgb(made, "mBottomGradiantColorEnd"), [1, 1, 1, 1])
        self.refuse(["--picture", "fields", "--colors", "red/green/blue"], "--colors: 3 colours", "1 or 2")
        self.refuse(["--colors", "1,2"], "--colors: must be colours", "\"1,2\"")

    def test_a_chart_s_colours_are_where_its_files_say(self):
        report, made, _ = self.new("--pixel-format", "bgra-float", "--swatches", SWATCHES[1], "--swatches",
                                   SWATCHES[0])
        self.assertTrue(report["video"]["pixelFormat"]["bottomRowFirst"])
        for key, name in (("mSwatchCoordinates", SWATCHES[0]), ("mSwatchColors", SWATCHES[1])):
            with open(name, encoding="utf-8") as file:
                self.assertEqual(made[key], json.load(file))
            self.assertEqual(made[key + "FilePath"], name)
        self.assertEqual(made["mRenderFormat"], 2)

    def test_what_cannot_work_is_refused_with_what_would(self):
        chart = ["--swatches", "bars"]
        self.refuse(chart, "32-bit float BGRA", "bgra-float")
        self.refuse([*chart, "--pixel-format", "bgra-float", "--size", "1280x720"], "1920x1080", "1280x720")
        self.refuse(["--picture", "swatches", "--pixel-format", "bgra-float"], "load a swatch coordinates file")
        self.refuse(["--ident", "blits", "--channels", "2"], "BLITS (5.1) needs 6 channels", "has 2")
        self.refuse(["--ident", "blits", "--tone", "1000:-18"], "exclude each other")
        self.refuse(["--size", "0x10"], "--size: must be", "\"0x10\"")
        self.refuse(["--size", "100001x10"], "1 to 100000")
        self.refuse(["--size", "60000x60000"], "2 GiB")
        self.refuse(["--rate", "0"], "--rate: must be")
        self.refuse(["--duration", "10"], "--duration: must be", "250f, 10s")
        self.refuse(["--duration", "0s"], "--duration: must be")
        self.refuse(["--rate", "29.97", "--duration", "8760h"], "frames", "can be counted; choose a shorter duration")
        self.refuse(["--channels", "65"], "1 to 64")
        self.refuse(["--tone", "loud"], "--tone: must be", "1000:-18")
        self.refuse(["--sample-rate", "-1"], "--sample-rate: must be")
        self.refuse(["--pixel-format", "v201"], "must be a pixel format", "did you mean 'v210'?")
        self.refuse(["--color-space", "rec790"], "did you mean 'rec709'?")
        # Several have these beginnings.
        for beginning, nearest in (("rec601", "rec601-ntsc"), ("bt70", None), ("rec70", "rec709"), ("rec7", "rec709"),
                                   ("rec", "rec601-ntsc")):
            self.refuse(["--color-space", beginning], "must be a colour space",
                        f"did you mean '{nearest}'?" if nearest else "")
        self.refuse(["--ident", "blitz"], "did you mean 'blits'?")
        self.refuse(["--pixel-aspect", "dvntscc"], "must be a pixel aspect ratio", "did you mean 'dvntsc'?")
        self.refuse(["--picture", "fields", "--colors", "red/blue/red"], "3 colours were given")
        self.refuse(["--picture", "gradient", "--colors", "red"], "one colour was given")
        self.refuse(["--fields", "uper"], "did you mean 'upper'?")
        self.refuse(["--template", "hd-bar"], "did you mean 'hd-bars'?")
        self.refuse(["--set", "mFrameWith=5"], "did you mean 'mFrameWidth'?")
        self.refuse(["--set", "mFrameWidth=wide"], "\"mFrameWidth\": expected an integer")
        self.refuse(["--set", "mFrameWidth=4294967936"], "\"mFrameWidth\": expected an integer of 32 bits")  # 2^32 + 640
        self.refuse(["--set", "mFieldType=uper"], "or one of progressive, upper, lower", "did you mean 'upper'?")
        self.refuse(["--set", "nothing"], "--set: must be KEY=VALUE")
        self.refuse(["--number", "--no-number"], "exclude each other")
        self.refuse(["--rate", "25", "--rate", "50"], "--rate takes one value")

    def test_keys_of_the_document_are_set_last(self):
        report, made, _ = self.new("--size", "1280x720", "--set", "mFrameWidth=640", "--set", "mFieldType=upper",
                                   "--set", "mFramePAR.numerator=2", "--set", "mSwatchColorsFilePath=a b.json")
        self.assertEqual(report["video"]["width"], 640)
        self.assertEqual(report["video"]["fieldOrder"], "upper field first")
        self.assertEqual(made["mFramePAR"], {"numerator": 2, "denominator": 1})
        self.assertEqual(made["mSwatchColorsFilePath"], "a b.json")

    def test_another_document_is_where_it_begins(self):
        self.write("old.tessel", document(mNote="kept", mFrameWidth=333))
        report, made, _ = self.new("--from", "old.tessel", "--rate", "50")
        self.assertEqual((report["video"]["width"], report["video"]["frameRate"]["numerator"]), (333, 50))
        self.assertEqual(made["mNote"], "kept")
        self.write("wrapped.tessel", {"SerializerWrappedObject": document(mFrameWidth=334)})
        _, made, _ = self.new("--from", "wrapped.tessel")
        self.assertEqual(made["mFrameWidth"], 334)
        self.write("broken.tessel", document(mFrameWidth="wide"))
        self.assert_failed(self.run_program("new", "new.tessel", "--from", "broken.tessel"), 1, "broken.tessel",
                           "\"mFrameWidth\": expected an integer")
        self.assert_failed(self.run_program("new", "new.tessel", "--from", "gone.tessel"), 1, "gone.tessel")

    def test_the_text_is_canonical(self):
        answer = self.run_program("new", "-")
        self.assert_done(answer)
        self.assertEqual(answer.out, json.dumps(json.loads(answer.out), indent=2, sort_keys=True) + "\n")
        self.assertEqual(answer.out, self.run_program("new", "-o", "-").out)

    def test_a_file_that_is_there_stays_without_force(self):
        self.write("new.tessel", "mine")
        self.assert_failed(self.run_program("new", "new.tessel"), 1, "new.tessel", "--force")
        with open(self.path("new.tessel"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "mine")
        self.assert_done(self.run_program("new", "new.tessel", "--force"))
        self.assert_done(self.run_program("info", "new.tessel"))
        self.assertEqual(os.listdir(self.folder), ["new.tessel"])

    def test_a_disk_that_is_full_leaves_no_file_and_no_loss(self):
        self.write("old.tessel", document())
        with open(self.path("old.tessel"), "rb") as file:
            before = file.read()
        limit = "ulimit -f 0; exec tessel "
        for line, name in (("new new.tessel", "new.tessel"), ("new old.tessel --force", "old.tessel"),
                           ("set old.tessel rate=50", "old.tessel")):
            answer = self.run_shell(limit + line)
            self.assert_failed(answer, 1, name, "cannot be written")
        with open(self.path("old.tessel"), "rb") as file:
            self.assertEqual(file.read(), before)
        self.assertEqual(os.listdir(self.folder), ["old.tessel"])

    def test_a_folder_that_takes_no_files_is_said(self):
        os.mkdir(self.path("locked"), 0o555)
        self.addCleanup(os.chmod, self.path("locked"), 0o755)
        if os.access(self.path("locked"), os.W_OK):
            self.skipTest("this user may write everywhere")
        self.assert_failed(self.run_program("new", "locked/new.tessel"), 1, "locked/new.tessel", "cannot be written")

    def test_a_reader_that_went_away_is_noticed(self):
        for arguments in (("new", "-"), ("schema",), ("list", "codecs"), ("help", "codecs"), ("help", "--dump-json")):
            reading, writing = os.pipe()
            os.close(reading)
            self.assert_failed(self.run_program(*arguments, stdout=writing), 1, "standard output")
            os.close(writing)

    def test_places_that_take_no_file_are_said(self):
        self.assert_failed(self.run_program("new", "gone/new.tessel"), 1, "gone/new.tessel", "cannot be written")
        self.assert_failed(self.run_program("new", "new.json"), 2, "new.json", ".tessel was expected")
        self.assert_failed(self.run_program("new"), 2, "OUT")
        self.assert_failed(self.run_program("new", "a.tessel", "-o", "b.tessel"), 2, "one OUT")
        self.assertEqual(os.listdir(self.folder), [])


class Set(DocumentTest):
    TEXT = """\ufeff{
    "note": [1, 2,   3],
    "mFrameWidth": 320, "mFrameHeight":180,
    "mPixelFormat": 1634887522,
\t"mFramePAR": {"numerator": 1, "denominator": 1},
    "mFieldType": 0, "mRenderFormat": 1, "mRenderFormat": 0,
    "mUpperFieldColor": {"mAlphaPart": 1, "mRedPart": 1, "mGreenPart": 0.50, "mBluePart": 0},
    "mLowerFieldColor": {"mAlphaPart": 1, "mRedPart": 1, "mGreenPart": 0.50, "mBluePart": 0},
    "mTopGradiantColorStart": {"mAlphaPart": 1, "mRedPart": 1, "mGreenPart": 0.50, "mBluePart": 0},
    "mTopGradiantColorEnd": {"mAlphaPart": 1, "mRedPart": 1, "mGreenPart": 0.50, "mBluePart": 0},
    "mBottomGradiantColorStart": {"mAlphaPart": 1, "mRedPart": 1, "mGreenPart": 0.50, "mBluePart": 0},
    "mBottomGradiantColorEnd": {"mAlphaPart": 1, "mRedPart": 1, "mGreenPart": 0.50, "mBluePart": 0},
    "mVideoDuration": {"ticks": 508032000000},
    "mVideoFrameRate": {"ticksperframe": 10160640000},
    "\\u006dVersion": 1
}
"""

    def text(self):
        with open(self.path("clip.tessel"), encoding="utf-8", newline="") as file:
            return file.read()

    def set(self, *assignments):
        self.assert_done(self.run_program("set", "clip.tessel", *assignments))
        self.assert_done(self.run_program("info", "clip.tessel"))
        return self.text()

    def test_only_the_value_changes(self):
        self.write("clip.tessel", self.TEXT)
        self.assertEqual(self.set("mFrameWidth=640"), self.TEXT.replace('"mFrameWidth": 320', '"mFrameWidth": 640'))
        self.assertEqual(self.set("size=320x180"), self.TEXT)
        self.assertEqual(self.set("mUpperFieldColor.mRedPart=0.75"),
                         self.TEXT.replace('"mRedPart": 1', '"mRedPart": 0.75', 1))
        self.write("clip.tessel", self.TEXT)
        # Of equal keys the last counts; escapes in keys are read.
        self.assertEqual(self.set("picture=gradient"), self.TEXT.replace('"mRenderFormat": 0', '"mRenderFormat": 1'))
        self.write("clip.tessel", self.TEXT)
        self.assertEqual(self.set("mVersion=0"), self.TEXT.replace('Version": 1', 'Version": 0'))

    def test_an_absent_key_comes_behind_the_last_one(self):
        self.write("clip.tessel", self.TEXT)
        self.assertEqual(self.set("sample-rate=44100"),
                         self.TEXT.replace('Version": 1\n', 'Version": 1,\n    "mSampleRate": 44100\n'))
        self.write("clip.tessel", self.TEXT)
        self.assertIn(',\n    "mColorSpace": {\n        "colorSpaceLinearized": true\n    }\n}',
                      self.set("mColorSpace.colorSpaceLinearized=true"))

    def test_layout_without_lines_stays_on_one(self):
        self.write("clip.tessel", json.dumps(document()))
        self.assertNotIn("\n", self.set("number=off", "color-space=rec601-pal"))

    def test_wrapped_documents_and_what_stands_behind_a_nul_stay(self):
        self.write("clip.tessel", json.dumps({"SerializerWrappedObject": document(), "by": "me"}) + "\0rest \u00e4")
        text = self.set("rate=50")
        self.assertTrue(text.endswith("\0rest \u00e4"))
        wrapped = json.loads(text[:text.index("\0")])
        self.assertEqual(wrapped["by"], "me")
        self.assertEqual(wrapped["SerializerWrappedObject"]["mVideoFrameRate"]["ticksperframe"],
                         TICKS_PER_SECOND // 50)

    def test_settings_are_applied_in_an_order_that_makes_sense(self):
        self.write("clip.tessel", document())
        self.set("duration=100f", "rate=50")
        report = json.loads(self.run_program("info", "--json", "clip.tessel").out)
        self.assertEqual(report["video"]["duration"]["frames"], 100)
        self.set("ident=ebu-5.1")
        report = json.loads(self.run_program("info", "--json", "clip.tessel").out)
        self.assertEqual((report["audio"]["channelCount"], report["audio"]["layout"]), (6, "5.1"))

    def test_a_change_that_cannot_work_leaves_the_file(self):
        self.write("clip.tessel", document())
        before = (self.text(), os.stat(self.path("clip.tessel")).st_mtime_ns)
        for assignment, says in (("size=0x0", "must be"), ("picture=swatches", "bgra-float"),
                                 ("chanels=2", "did you mean 'channels'?"), ("mFrameWidht=2", "'mFrameWidth'"),
                                 ("mFramePAR=1", "expected an object"), ("rate", "KEY=VALUE"), ("=1", "KEY=VALUE"),
                                 ("mFrameWidth.x=1", "is no setting")):
            with self.subTest(assignment=assignment):
                self.assert_failed(self.run_program("set", "clip.tessel", "rate=50", assignment), 2, says)
        self.assert_failed(self.run_program("set", "clip.tessel", "rate=50", "rate=25"), 2, "twice")
        self.assert_failed(self.run_program("set", "clip.tessel", "duration=00:01:00;00"), 2,
                           "tessel: clip.tessel: duration: drop-frame timecodes", "write 00:01:00:00")
        self.assertEqual((self.text(), os.stat(self.path("clip.tessel")).st_mtime_ns), before)
        self.assertEqual(os.listdir(self.folder), ["clip.tessel"])

    def test_a_document_that_did_not_play_may_be_changed(self):
        self.write("clip.tessel", document(mNumChannels=65))
        answer = self.run_program("set", "clip.tessel", "rate=50")
        self.assertEqual(answer.code, 0)
        self.assertIn("warning: clip.tessel: 65 channels", answer.err)
        self.assertIn(str(TICKS_PER_SECOND // 50), self.text())

    def test_files_that_are_no_documents_are_refused(self):
        self.write("broken.tessel", "{")
        self.assert_failed(self.run_program("set", "broken.tessel", "rate=50"), 1, "broken.tessel", "line 1")
        self.assert_failed(self.run_program("set", "gone.tessel", "rate=50"), 1, "gone.tessel", "no such file")
        self.write("partly.tessel", "{}")
        self.assert_failed(self.run_program("set", "partly.tessel", "rate=50"), 1, "is missing")
        os.mkdir(self.path("folder.tessel"))
        os.mkfifo(self.path("pipe.tessel"))
        for name, why in (("folder.tessel", "is a directory"), ("pipe.tessel", "is not an ordinary file")):
            self.assert_failed(self.run_program("set", name, "rate=50"), 1, f"{name}: {why}")
            self.assert_failed(self.run_program("new", "-", "--from", name), 1, f"{name}: {why}")
            self.assert_failed(self.run_program("new", "-", "--swatches", name), 2, f"{name}: {why}")

    def test_links_and_permissions_stay(self):
        self.write("real.tessel", document())
        os.chmod(self.path("real.tessel"), 0o640)
        os.symlink("real.tessel", self.path("clip.tessel"))
        self.set("rate=50")
        self.assertTrue(os.path.islink(self.path("clip.tessel")))
        self.assertEqual(stat.S_IMODE(os.stat(self.path("real.tessel")).st_mode), 0o640)


class Lists(DocumentTest):
    def test_tables_and_json_have_the_same_rows(self):
        for subject in ("pixel-formats", "frame-rates", "pixel-aspects", "color-spaces", "idents", "templates",
                        "containers", "codecs"):
            rows = self.listed(subject)
            answer = self.run_program("list", subject)
            self.assert_done(answer)
            lines = answer.out.splitlines()
            self.assertEqual(len(lines), len(rows) + 1)
            self.assertEqual(set(lines[0].split()), set(rows[0]))
            for line, row in zip(lines[1:], rows):
                for value in row.values():
                    if isinstance(value, (str, list)):
                        self.assertIn(value if isinstance(value, str) else ", ".join(value), line)

    def test_lists_within_rows_are_arrays(self):
        containers = {row["name"]: row for row in self.listed("containers")}
        self.assertEqual(containers["mp4"]["audioCodecs"], ["flac", "aac", "opus"])
        self.assertEqual(containers["wav"]["videoCodecs"], [])
        codecs = {row["name"]: row for row in self.listed("codecs")}
        self.assertEqual(codecs["dnxhr"]["containers"], ["mkv", "mov", "mxf"])

    def test_the_lists_are_complete(self):
        self.assertEqual(len(self.listed("pixel-formats")), 48)
        self.assertEqual(len(self.listed("pixel-aspects")), 13)
        self.assertEqual(len(self.listed("color-spaces")), 16)
        self.assertEqual({row["code"] for row in self.listed("pixel-formats")} & {code("v210"), code("v211")},
                         {code("v210"), code("v211")})
        for subject in ("color-spaces", "templates", "idents"):
            names = [row["name"] for row in self.listed(subject)]
            self.assertEqual(len(names), len(set(names)))
            for name in names:
                self.assertTrue(re.fullmatch(r"[a-z0-9][a-z0-9.-]*", name), name)

    def test_every_rate_and_ident_of_the_dialog_is_listed(self):
        self.write("clip.tessel", document())
        self.write("dump.script", f'dump "{self.path("state.json")}"\npress cancelButton\n')
        self.run_program("edit", "clip.tessel", "--script", "dump.script", environment={"KESTREL_UI": "scripted"})
        with open(self.path("state.json"), encoding="utf-8") as file:
            text = file.read()
        rates = set(re.findall(r'"[^"]*?([0-9.]+) fps', text))
        self.assertGreaterEqual(len(rates), 14)
        self.assertLessEqual(rates, {row["name"] for row in self.listed("frame-rates")})
        stereo = {row["title"] for row in self.listed("idents") if row["channels"] == 2}
        self.assertEqual({title for title in stereo if title in text}, stereo)

    def test_wrong_subjects_are_told_from_right_ones(self):
        self.assert_failed(self.run_program("list", "codec"), 2, "SUBJECT", "did you mean 'codecs'?")
        self.assert_failed(self.run_program("list"), 2, "SUBJECT is missing")


if __name__ == "__main__":
    unittest.main()

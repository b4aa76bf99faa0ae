"""Importers that have nothing to do with Tessel: every command that is not about its documents serves them."""

import json
import os
import unittest

from program import PLUGIN, ProgramTest, document

IMPORTERS = os.environ["TEST_IMPORTERS"]
PLAIN = os.path.join(IMPORTERS, "PlainImporter", "PlainImporter.so")


def wrong(name):
    return os.path.join(IMPORTERS, name, name + ".so")


class OtherImporters(ProgramTest):
    """The plain importer's documents are "WIDTH HEIGHT FRAMES"; it paints UYVY and has one silent channel."""

    def setUp(self):
        super().setUp()
        self.write("clip.plain", "64 32 10\n")

    def run_plain(self, *arguments):
        return self.run_program("--plugin", PLAIN, *arguments)

    def test_info_shows_what_it_reports_and_asks_a_frame_for_the_pixel_format(self):
        answer = self.run_plain("info", "clip.plain", "--json")
        self.assert_done(answer)
        report = json.loads(answer.out)
        video = report["video"]
        self.assertEqual((video["width"], video["height"], video["duration"]["frames"]), (64, 32, 10))
        self.assertEqual((video["frameRate"]["numerator"], video["frameRate"]["ticksPerFrame"]),
                         (25, 10_160_640_000))
        self.assertEqual((video["pixelFormat"]["fourCharacterCode"], video["pixelFormat"]["name"]),
                         ("uyv7", "KsPixelFormat_UYVY_422_8u_709"))
        self.assertEqual(video["colorSpace"]["name"], "Unspecified")
        self.assertEqual(report["audio"], {"sampleRate": 48000, "channelCount": 1, "channelType": 0, "layout": ""})
        self.assertEqual(report["warning"], "")

    def test_the_table_shows_no_channel_type_that_nobody_reported(self):
        answer = self.run_plain("info", "clip.plain")
        self.assert_done(answer)
        self.assertIn("48000 Hz, 1 channel\n", answer.out)

    def test_messages_about_its_clips_name_no_key_of_other_documents(self):
        for text, output, says in (("0 0 10", "clip.mkv", "its frames are 0x0"),
                                   ("64 32 0", "clip.mkv", "the clip has no frames")):
            self.write("clip.plain", text + "\n")
            answer = self.run_plain("render", "clip.plain", "-o", output)
            self.assert_failed(answer, 1, says)
            self.assertNotRegex(answer.err, r"\bm[A-Z]")

    def test_render_keeps_the_format_of_the_frames(self):
        self.assert_done(self.run_plain("render", "clip.plain", "--quiet", "--frames", "2", "--format", "y4m", "-o", "clip.y4m"))
        with open(self.path("clip.y4m"), "rb") as file:
            header, _, frames = file.read().partition(b"\n")
        self.assertIn(b"W64 H32 F25:1", header)
        self.assertIn(b"C422", header)
        # A planar frame after its own header: 64 x 32 luma, twice 32 x 32 chroma.
        picture = bytes([180]) * 2048 + bytes([128]) * 2048
        self.assertEqual(frames, (b"FRAME\n" + picture) * 2)

    def test_render_writes_its_sound(self):
        self.assert_done(self.run_plain("render", "clip.plain", "--quiet", "-o", "clip.wav"))
        with open(self.path("clip.wav"), "rb") as file:
            data = file.read().partition(b"data")[2]
        # 0.4 s of one channel of 24 bits
        self.assertEqual(data[4:], bytes(19200 * 3))

    def test_bench_measures_it(self):
        answer = self.run_plain("bench", "clip.plain", "--seconds", "0.02", "--json")
        self.assert_done(answer)
        self.assertEqual(json.loads(answer.out)["video"]["bytesPerFrame"], 64 * 2 * 32)

    def test_files_that_it_cannot_read_are_refused(self):
        self.write("broken.plain", "hello")
        self.assert_failed(self.run_plain("info", "broken.plain"), 1, "broken.plain: cannot be read")
        self.assert_failed(self.run_plain("info", "gone.plain"), 1, "gone.plain: no such file")

    def test_a_tessel_document_is_none_of_its_files(self):
        self.write("clip.tessel", document())
        self.assert_failed(self.run_plain("info", "clip.tessel"), 1, "clip.tessel: unknown file extension .tessel",
                           ".plain was expected")

    def test_a_folder_stands_for_the_one_importer_in_it(self):
        self.write("libother.so", "no library")
        for importer in (PLAIN, wrong("WrongNoResources")):
            os.symlink(importer, self.path(os.path.basename(importer)))
        self.assert_done(self.run_program("--plugin", self.folder, "info", "clip.plain"))
        os.symlink(wrong("WrongWidth"), self.path("WrongWidth.so"))
        self.assert_failed(self.run_program("--plugin", self.folder, "info", "clip.plain"), 1, "several importer",
                           "PlainImporter.so and WrongWidth.so")
        # The program's own plug-in goes before others.
        os.symlink(PLUGIN, self.path(os.path.basename(PLUGIN)))
        self.write("clip.tessel", document())
        self.assert_done(self.run_program("--plugin", self.folder, "info", "clip.tessel"))


class WrongImporters(ProgramTest):
    def test_a_frame_of_another_size_than_described_is_one_error(self):
        self.write("clip.plain", "64 32 10\n")
        for command in (["bench", "clip.plain"], ["render", "clip.plain", "-o", "clip.mkv"],
                        ["render", "clip.plain", "-o", "clip_%d.png"]):
            self.assert_failed(self.run_program("--plugin", wrong("WrongWidth"), *command), 1,
                               "clip.plain: frame 0: the plug-in made a frame of 64x32, but it described the clip "
                               "as 512x32")
        self.assertEqual(os.listdir(self.folder), ["clip.plain"])

    def test_a_frame_that_the_host_did_not_make_is_one_error(self):
        self.write("clip.plain", "64 32 10\n")
        self.assert_failed(self.run_program("--plugin", wrong("WrongHandle"), "bench", "clip.plain"), 1,
                           "clip.plain: frame 0: the plug-in gave a frame that this host did not make")


if __name__ == "__main__":
    unittest.main()

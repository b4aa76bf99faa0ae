"""The pictures that file managers ask for."""

import os
import shutil
import subprocess
import unittest

from program import PROGRAM, ProgramTest, code, color, document


def pixels(path):
    """Width, height and the bytes of a PNG file's pixels, red, green, blue."""
    size = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "stream=width,height", "-of", "csv=p=0", path],
                          stdout=subprocess.PIPE, text=True, check=True).stdout
    data = subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-f", "rawvideo", "-pix_fmt", "rgb24", "-"],
                          stdout=subprocess.PIPE, check=True).stdout
    width, height = map(int, size.split(","))
    return width, height, data


class Thumbnail(ProgramTest):
    def thumbnail(self, clip, size="128"):
        answer = self.run_program("thumbnail", clip, "out.png", size)
        self.assert_done(answer)
        return pixels(self.path("out.png"))

    def test_it_shows_the_clip(self):
        flat = document(mFrameWidth=640, mRenderFormat=0, mFrameHeight=360, mDrawFrameFieldNumber=False,
                        mUpperFieldColor=color(1, 0.5, 0.25), mLowerFieldColor=color(1, 0.5, 0.25))
        width, height, data = self.thumbnail(self.write("flat.tessel", flat))
        # 0.5 and 0.25 of 255 are 127.5 and 63.75.
        self.assertEqual((width, height, set(zip(data[0::3], data[1::3], data[2::3]))), (128, 72, {(255, 128, 64)}))

    def test_it_shows_every_pixel_format(self):
        for name in ("bgra", "VUYA", "uyv7", "v211", "yv17", "BGra", "BGaL"):
            flat = document(mPixelFormat=code(name), mRenderFormat=0, mDrawFrameFieldNumber=False,
                            mUpperFieldColor=color(1, 1, 1), mLowerFieldColor=color(1, 1, 1))
            _, _, data = self.thumbnail(self.write("flat.tessel", flat))
            self.assertGreaterEqual(min(data), 254, name)

    def test_what_cannot_be_painted_gives_a_square_picture_of_the_reason(self):
        seen = set()
        for name, content in {
                "chart.tessel": document(mRenderFormat=2, mPixelFormat=code("BGra"), mFrameWidth=1920,
                                         mFrameHeight=1080, mSwatchColorsFilePath="gone.json"),
                "size.tessel": document(mRenderFormat=2),
                "broken.tessel": '{"mPixelFormat": '}.items():
            width, height, data = self.thumbnail(self.write(name, content))
            self.assertEqual((width, height), (128, 128), name)
            seen.add(data)
        self.assertEqual(len(seen), 3, "each has a reason of its own")

    def test_a_size_is_16_to_2048_pixels(self):
        clip = self.write("clip.tessel", document())
        for size in ("15", "2049", "x"):
            self.assert_failed(self.run_program("thumbnail", clip, "out.png", size), 2)

    def test_it_stands_in_no_list_of_commands(self):
        self.assertNotIn("thumbnail", self.run_program("--help").out)
        self.assertNotIn("thumbnail", self.run_program("nonsense").err)

    @unittest.skipUnless(shutil.which("bwrap"), "bubblewrap is not installed")
    def test_a_sandbox_with_the_document_alone_is_enough(self):
        clip = self.write("clip.tessel", document())
        os.mkdir(self.path("out"))
        build = os.path.dirname(os.path.dirname(PROGRAM))
        command = ["bwrap", "--ro-bind", "/usr", "/usr", "--symlink", "usr/lib", "/lib", "--symlink", "usr/lib64", "/lib64",
                   "--ro-bind", build, build, "--ro-bind", self.path(clip), "/clip.tessel",
                   "--bind", self.path("out"), "/out", "--proc", "/proc", "--dev", "/dev", "--unshare-all",
                   "--die-with-parent", "--clearenv", "--chdir", "/",
                   PROGRAM, "thumbnail", "/clip.tessel", "/out/thumb.png", "128"]
        if subprocess.run([*command[:command.index(PROGRAM)], "/usr/bin/true"], stderr=subprocess.PIPE,
                          check=False).returncode != 0:
            self.skipTest("this system makes no sandboxes")
        done = subprocess.run(command, stderr=subprocess.PIPE, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        width, _, data = pixels(self.path("out/thumb.png"))
        self.assertEqual(width, 128)
        self.assertEqual(data, self.thumbnail(clip)[2])


if __name__ == "__main__":
    unittest.main()

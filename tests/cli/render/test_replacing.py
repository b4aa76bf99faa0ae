"""Old files are replaced without losing what belongs to them, wherever a person may write them."""

import os
import signal
import subprocess
import time
import unittest

from render_support import RenderTest, document, main

NOBODY = 65534
needs_root = unittest.skipIf(os.geteuid() != 0, "only root can become another user")


class Replacing(RenderTest):
    def old(self, name="x.mkv", mode=0o644, owner=-1):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write("old")
        os.chmod(self.path(name), mode)
        os.chown(self.path(name), owner, owner)
        return self.path(name)

    def assert_is_movie(self, path):
        self.assertEqual(self.probe(path)["codec_name"], "ffv1")

    def render_as_nobody(self, output):
        """Renders without rights; the folder for what has no other place must be empty afterwards."""
        elsewhere = self.path("elsewhere")
        os.makedirs(elsewhere, exist_ok=True)
        os.chmod(elsewhere, 0o777)
        os.chmod(self.folder, 0o755)
        clip = self.save(document(frames=2))
        try:
            done = self.run_tessel("render", "--quiet", clip, "-o", output, user=NOBODY, group=NOBODY,
                                   extra_groups=[], env={**os.environ, "TMPDIR": elsewhere})
        except PermissionError:
            self.skipTest("the build is in a folder that other users cannot enter")
        self.assertEqual(done.returncode, 0, done.stderr.decode())
        self.assertEqual(os.listdir(elsewhere), [])
        return done.stderr.decode()

    def test_hard_links_stay_together(self):
        for name, output in (("x.mkv", "x.mkv"), ("s_0.png", "s_%d.png")):
            old = self.old(name)
            os.link(old, self.path("link"))
            self.render(document(frames=1), output)
            self.assertTrue(os.path.samefile(old, self.path("link")), name)
            self.assertGreater(os.path.getsize(old), 3)
            os.remove(self.path("link"))

    @needs_root
    def test_a_file_in_a_folder_that_is_not_writable_is_overwritten(self):
        old = self.old(owner=NOBODY)
        before = os.stat(old).st_ino
        self.assertEqual(self.render_as_nobody(old), "")
        self.assertEqual(os.stat(old).st_ino, before)
        self.assert_is_movie(old)
        self.left_over("clip.tessel", "elsewhere", "x.mkv")

    @needs_root
    def test_anothers_file_in_a_sticky_folder_is_overwritten(self):
        os.mkdir(self.path("sticky"))
        os.chmod(self.path("sticky"), 0o1777)
        old = self.old("sticky/x.mkv", mode=0o666)
        self.assertEqual(self.render_as_nobody(old), "")
        self.assert_is_movie(old)
        self.assertEqual(os.listdir(self.path("sticky")), ["x.mkv"])

    @needs_root
    def test_an_owner_that_cannot_be_kept_is_a_warning(self):
        os.mkdir(self.path("theirs"))
        os.chown(self.path("theirs"), NOBODY, NOBODY)
        old = self.old("theirs/x.mkv", mode=0o666)
        said = self.render_as_nobody(old)
        self.assertEqual(said.count("\n"), 1, said)
        for text in ("tessel: warning: ", old, "could not keep its owner root"):
            self.assertIn(text, said)

    def test_what_a_killed_sequence_leaves_is_gone_after_the_next_one(self):
        clip = self.save(document(frames=100000, size=(640, 480), pattern="gradient"))
        with subprocess.Popen([*self.tessel, "render", clip, "-o", self.path("x_%d.png")],
                              stderr=subprocess.PIPE) as process:
            deadline = time.monotonic() + 60
            while len(os.listdir(self.folder)) < 2 and time.monotonic() < deadline:
                time.sleep(0.02)
            process.send_signal(signal.SIGKILL)
        self.assertEqual(len(os.listdir(self.folder)), 2, "the folder of the pictures stays")
        self.render(document(frames=1), "y.png")
        self.left_over("clip.tessel", "y.png")


if __name__ == "__main__":
    main()

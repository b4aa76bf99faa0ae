"""What goes wrong gives one line, the right exit code and leaves nothing; what was there stays whole."""

import os
import resource
import signal
import stat
import subprocess
import time
import unittest

from render_support import RenderTest, document, main

LONG = {"frames": 100000, "size": (640, 480), "pattern": "gradient"}


class Failures(RenderTest):
    def clip(self, **more):
        return self.save(document(**more))

    def test_wrong_command_lines_exit_2(self):
        clip = self.clip()
        for arguments in (("render",), ("render", clip), ("render", "-o", "x.mkv"),
                          ("render", clip, "-o", "x.mkv", "--format", "ogg"),
                          ("render", clip, "-o", "x.mkv", "--video-codec", "theora"),
                          ("render", clip, "-o", "x.mkv", "--audio-codec", "mp3"),
                          ("render", clip, "-o", "x.mkv", "--audio-only", "--video-only"),
                          ("render", clip, "-o", "x.mkv", "--to", "3", "--frames", "2"),
                          ("render", clip, "-o", "x.mkv", "--from", "one"),
                          ("render", clip, "-o", "x.mkv", "--from", "-1"),
                          ("render", clip, "-o", "x.mkv", "--to", "-1"),
                          ("render", clip, "-o", "x_%s.png"), ("render", clip, "-o", "x.wav", "--video-only"),
                          ("render", clip, "-o", "-"), ("render", clip, clip, "-o", "-", "--format", "nut"),
                          ("render", clip, clip, "-o", "folder")):
            self.refuse(*arguments, code=2)
        self.assertNotIn("x.mkv", os.listdir(self.folder))

    def test_a_codec_for_a_stream_that_the_format_lacks_is_to_be_removed(self):
        clip = self.clip()
        for output, option, codec, says in (("x.y4m", "--audio-codec", "flac", "y4m has no sound: remove --audio-codec"),
                                            ("x.wav", "--video-codec", "raw", "wav has no picture: remove --video-codec")):
            self.refuse("render", clip, "-o", output, option, codec, code=2, says=(says,))
        self.left_over("clip.tessel")

    def test_numbers_that_make_no_sense_say_which_would(self):
        clip = self.clip()
        for option in ("--frames", "--threads"):
            for number in ("0", "-1", "2x", "1.5", "99999999999999999999"):
                line = self.refuse("render", clip, "-o", "x.mkv", f"{option}={number}", code=2,
                                   says=(option, "must be a whole number from 1 ", number))
                self.assertLess(len(line), 130)
        self.refuse("render", clip, "-o", "x.mkv", "--from", "5", "--to", "3", code=2,
                    says=("--to 3 comes before --from 5",))
        self.left_over("clip.tessel")

    def test_numbers_are_decimal(self):
        self.render(document(frames=12), "x_%d.png", "--from", "01", "--frames", "010")
        self.left_over("clip.tessel", *(f"x_{number}.png" for number in range(1, 11)))

    def test_an_unknown_extension_says_which_are_known(self):
        clip = self.clip()
        for name in ("x.webm", "x", "x.", ".mkv.bak"):
            self.refuse("render", clip, "-o", name, code=2, says=(name, "mkv", "exr"))
        self.left_over("clip.tessel")

    def test_a_clip_that_is_missing_malformed_or_foreign_is_named(self):
        with open(self.path("empty.tessel"), "w", encoding="utf-8"):
            pass
        with open(self.path("odd.tessel"), "w", encoding="utf-8") as file:
            file.write('{"mPixelFormat": "bgra"}')
        with open(self.path("clip.txt"), "w", encoding="utf-8") as file:
            file.write("{}")
        os.mkdir(self.path("folder.tessel"))
        before = sorted(os.listdir(self.folder))
        for name, says in (("missing.tessel", ()), ("empty.tessel", ()), ("odd.tessel", ("mPixelFormat",)),
                           ("clip.txt", ()), ("folder.tessel", ())):
            self.refuse("render", name, "-o", "x.mkv", says=(name, *says))
        self.left_over(*before)
        done = self.run_tessel("render", "odd.tessel", "-o", "x.mkv", "--allow-default", "--frames", "2")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(self.probe(self.path("x.mkv"))["width"], 720)

    def test_what_the_clip_cannot_do_names_the_clip_wherever_the_output_goes(self):
        clip = self.clip(frames=3)
        # "a" is a word of many messages: a file of that name is not what they are about.
        for output in (("-o", "-", "--format", "mov"), ("-o", "a", "--format", "mov"), ("-o", "x.mov"), ("--format", "null")):
            for options, says in ((("--from", "7"), "there is no frame 7"), (("--part", "1/4"), "cannot be divided")):
                line = self.refuse("render", clip, *output, *options, code=2, says=(says,))
                self.assertTrue(line.startswith(f"tessel: {clip}: "), line)
            line = self.refuse("render", clip, *output, "--truth", "x.csv", "--audio-only", says=("--truth",))
            self.assertTrue(line.startswith(f"tessel: {clip}: "), line)
        line = self.refuse("damage", clip, "-o", "-", "--format", "nut", "--fault", "fields.swapped", code=2,
                           says=("the clip is progressive",))
        self.assertTrue(line.startswith(f"tessel: {clip}: "), line)

    def test_a_clip_is_never_replaced_by_its_own_rendering(self):
        clip = self.clip()
        os.link(clip, self.path("same.mkv"))
        with open(clip, "rb") as file:
            before = file.read()
        self.refuse("render", clip, "-o", "same.mkv", code=2, says=("same.mkv",))
        self.refuse("render", clip, "-o", clip, "--format", "mkv", code=2, says=("clip.tessel",))
        with open(clip, "rb") as file:
            self.assertEqual(file.read(), before)

    def test_places_that_cannot_be_written_to_are_named(self):
        clip = self.clip()
        self.refuse("render", clip, "-o", "nowhere/x.mkv", says=("nowhere/x.mkv: cannot be written: its folder does not exist",))
        self.refuse("render", clip, "-o", "nowhere/deeper/x_%d.png", says=("nowhere/deeper", "folder does not exist"))
        self.refuse("render", clip, "-o", "/proc/x.mkv", says=("/proc/x.mkv",))
        os.mkdir(self.path("x.mkv"))
        os.mkdir(self.path("x.mkv/clip.mkv"))
        self.refuse("render", clip, "-o", "x.mkv", says=("clip.mkv: cannot be written: it is a folder",))
        self.left_over("clip.tessel", "x.mkv")

    @unittest.skipIf(os.geteuid() == 0, "root may write everywhere")
    def test_a_read_only_folder_and_file_are_named(self):
        clip = self.clip()
        os.mkdir(self.path("locked"))
        os.chmod(self.path("locked"), stat.S_IRUSR | stat.S_IXUSR)
        self.refuse("render", clip, "-o", "locked/x.mkv", says=("locked/x.mkv: cannot be written: permission denied",))
        with open(self.path("old.mkv"), "w", encoding="utf-8") as file:
            file.write("old")
        os.chmod(self.path("old.mkv"), stat.S_IRUSR)
        self.refuse("render", clip, "-o", "old.mkv", says=("old.mkv: cannot be written: permission denied",))

    def test_a_full_disk_is_said_at_once(self):
        clip = self.clip(**LONG)
        for name in ("mkv", "mov", "nut", "y4m", "wav", "png"):
            start = time.monotonic()
            self.refuse("render", clip, "-o", "/dev/full", "--format", name, "--frames",
                        "1" if name == "png" else "90000", says=("/dev/full: cannot be written: the disk is full",))
            self.assertLess(time.monotonic() - start, 60)
        with open("/dev/full", "wb") as full:
            done = subprocess.run([*self.tessel, "render", clip, "-o", "-", "--format", "nut"], stdout=full,
                                  stderr=subprocess.PIPE, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr, b"tessel: standard output: cannot be written: the disk is full\n")
        self.left_over("clip.tessel")

    def test_a_closed_pipe_ends_with_one_line(self):
        for name in ("nut", "mkv", "mov", "y4m", "png"):
            with subprocess.Popen([*self.tessel, "render", self.clip(**LONG), "-o", "-", "--format", name],
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
                process.stdout.read(1000)
                process.stdout.close()
                line = process.stderr.read().decode()
                self.assertEqual(process.wait(), 1, line)
                self.assertEqual(line.count("\n"), 1, line)
                self.assertEqual(line, "tessel: standard output: cannot be written: its reader has gone\n")

    def test_pipes_carry_whole_files(self):
        clip = self.clip(frames=4)
        for name, frames in (("nut", 4), ("mkv", 4), ("mov", 4), ("mp4", 4), ("y4m", 4), ("png", 4)):
            done = self.run_tessel("render", "--quiet", clip, "-o", "-", "--format", name)
            self.assertEqual((done.returncode, done.stderr), (0, b""), name)
            with open(self.path("piped." + name), "wb") as file:
                file.write(done.stdout)
            demuxer = ("-f", "png_pipe") if name == "png" else ()
            text = subprocess.run(["ffprobe", "-v", "error", *demuxer, "-count_frames", "-select_streams", "v",
                                   "-show_entries", "stream=nb_read_frames", "-of", "csv=p=0",
                                   self.path("piped." + name)], capture_output=True, check=True).stdout
            self.assertEqual(int(text.decode().strip().strip(",")), frames, name)
        for name in ("mxf", "avi"):
            self.refuse("render", clip, "-o", "-", "--format", name, code=2, says=(name, "pipe"))

    def end_half_way(self, number, output, arguments=()):
        """Starts a long rendering, ends it by a signal when it has got going; gives the finished process."""
        clip = self.clip(**LONG)
        with subprocess.Popen([*self.tessel, "render", clip, "-o", output, *arguments], cwd=self.folder,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            deadline = time.monotonic() + 60
            while time.monotonic() < deadline and self.bytes_written(process.pid) < 100000:
                time.sleep(0.02)
            self.assertIsNone(process.poll(), "the rendering ended too early")
            process.send_signal(number)
            _, errors = process.communicate(timeout=60)
            return process.returncode, errors

    @staticmethod
    def bytes_written(process):
        try:
            with open(f"/proc/{process}/io", encoding="ascii") as file:
                return int(next(line for line in file if line.startswith("wchar")).split()[1])
        except (OSError, StopIteration):
            return 0

    def test_interrupted_half_way_nothing_is_left_and_shells_see_the_signal(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            for output in ("x.mkv", "x.mov", "x_%04d.png"):
                code, errors = self.end_half_way(number, output)
                self.assertEqual((code, errors), (-number, b"tessel: interrupted; unfinished files were removed\n"),
                                 output)
                self.left_over("clip.tessel")

    def test_killed_half_way_nothing_is_left_of_a_movie(self):
        code, _ = self.end_half_way(signal.SIGKILL, "x.mkv")
        self.assertEqual(code, -signal.SIGKILL)
        names = set(os.listdir(self.folder)) - {"clip.tessel"}
        self.assertNotIn("x.mkv", names)
        # Where the file system has files without names, not even a hidden one is left.
        try:
            os.close(os.open(self.folder, os.O_TMPFILE | os.O_RDWR))
        except OSError:
            self.assertTrue(all(name.startswith(".") for name in names), names)
        else:
            self.assertEqual(names, set())

    def test_an_old_file_stays_whole_until_the_new_one_is(self):
        with open(self.path("x.mkv"), "w", encoding="utf-8") as file:
            file.write("old")
        self.end_half_way(signal.SIGTERM, "x.mkv")
        with open(self.path("x.mkv"), encoding="utf-8") as file:
            self.assertEqual(file.read(), "old")
        self.render(document(frames=2), "x.mkv")
        self.assertEqual(self.probe(self.path("x.mkv"))["codec_name"], "ffv1")
        self.left_over("clip.tessel", "x.mkv")

    def test_a_link_keeps_pointing_at_the_file_that_is_replaced(self):
        os.mkdir(self.path("elsewhere"))
        with open(self.path("elsewhere/real.mkv"), "w", encoding="utf-8") as file:
            file.write("old")
        os.symlink("elsewhere/real.mkv", self.path("x.mkv"))
        self.render(document(frames=2), "x.mkv")
        self.assertTrue(os.path.islink(self.path("x.mkv")))
        self.assertEqual(self.probe(self.path("elsewhere/real.mkv"))["codec_name"], "ffv1")
        self.assertEqual(os.listdir(self.path("elsewhere")), ["real.mkv"])

    def test_a_link_to_nothing_keeps_pointing_at_the_file_that_is_made(self):
        os.mkdir(self.path("elsewhere"))
        for name, output in (("x.mkv", "x.mkv"), ("s_0.png", "s_%d.png")):
            os.symlink("elsewhere/" + name, self.path(name))
            self.render(document(frames=1), output)
            self.assertTrue(os.path.islink(self.path(name)))
            self.assertTrue(os.path.isfile(self.path("elsewhere/" + name)))

    def test_a_file_that_is_replaced_keeps_its_permissions(self):
        for name, output in (("x.mkv", "x.mkv"), ("s_0.png", "s_%d.png")):
            with open(self.path(name), "w", encoding="utf-8") as file:
                file.write("old")
            os.chmod(self.path(name), 0o600)
            self.render(document(frames=1), output)
            self.assertGreater(os.path.getsize(self.path(name)), 3)
            self.assertEqual(stat.S_IMODE(os.stat(self.path(name)).st_mode), 0o600)

    def test_the_pipe_of_a_shell_is_written_to(self):
        reading, writing = os.pipe()
        with subprocess.Popen([*self.tessel, "render", self.clip(frames=2), "--quiet", "-o", f"/dev/fd/{writing}", "--format",
                               "y4m"], pass_fds=[writing], stderr=subprocess.PIPE) as process:
            os.close(writing)
            with open(reading, "rb") as file:
                self.assertTrue(file.read().startswith(b"YUV4MPEG2"))
            self.assertEqual((process.wait(), process.stderr.read()), (0, b""))

    def test_names_may_be_as_long_as_the_file_system_allows(self):
        for extension in (".mkv", ".png"):
            name = "x" * (255 - len(extension)) + extension
            self.render(document(frames=1), name)
            self.left_over("clip.tessel", name)
            os.remove(self.path(name))
            self.refuse("render", self.clip(frames=1), "-o", "x" + name, says=("the name is too long",))
        self.left_over("clip.tessel")

    def test_the_largest_size_of_files_is_an_error_and_no_signal(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (10000, 10000))

        done = subprocess.run([*self.tessel, "render", self.clip(**LONG), "-o", "x.mkv"], cwd=self.folder,
                              preexec_fn=limit, capture_output=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (1, b"tessel: x.mkv: cannot be written: it is larger than files may be here\n"))
        self.left_over("clip.tessel")

    def test_a_picture_that_cannot_be_written_is_called_by_its_own_name(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))

        clip = self.clip(frames=2)
        done = subprocess.run([*self.tessel, "render", clip, "-o", "out/%03d.dpx"], cwd=self.folder, preexec_fn=limit,
                              capture_output=True, check=False)
        line = f"tessel: {clip}: out/000.dpx: cannot be written: it is larger than files may be here\n"
        self.assertEqual((done.returncode, done.stderr.decode()), (1, line))
        self.left_over("clip.tessel")

    def test_more_threads_than_codecs_take_are_no_error(self):
        for name in ("x.mov", "x.mkv", "x.mp4"):
            self.render(document(frames=2), name, "--threads", "1000")

    def test_too_little_memory_for_threads_is_said(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_AS, (1 << 30, 1 << 30))

        started = subprocess.run([*self.tessel, "--version"], preexec_fn=limit, capture_output=True, check=False)
        if started.returncode != 0:
            self.skipTest("this build takes more addresses to start, as under a sanitizer")
        # A thread's stack alone takes 8 MiB of addresses; what it makes may be the first that finds no place.
        done = subprocess.run([*self.tessel, "render", self.clip(**LONG), "-o", "x.y4m", "--threads", "1000"],
                              cwd=self.folder, preexec_fn=limit, capture_output=True, check=False)
        line = done.stderr.decode()
        self.assertEqual((done.returncode, line.count("\n")), (1, 1), line)
        self.assertRegex(line, "starts only [0-9]+ of 1000 threads; use fewer, as in --threads 4|out of memory")
        self.left_over("clip.tessel")

    def test_new_files_have_the_rights_that_the_mask_leaves(self):
        path = self.render(document(frames=1), "x.mkv")
        mask = os.umask(0)
        os.umask(mask)
        self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), 0o666 & ~mask)

    def test_frames_that_the_clip_does_not_have_are_refused(self):
        clip = self.clip(frames=10)
        for arguments in (("--from", "10"), ("--to", "10"), ("--from", "5", "--frames", "6"), ("--frames", "9223372036854775807"),
                          ("--from", "9", "--to", "9223372036854775807")):
            self.refuse("render", clip, "-o", "x.mkv", *arguments, code=2, says=("clip.tessel: ",))
        self.refuse("render", clip, "-o", "x.mkv", "--from", "9", "--to", "12", code=2,
                    says=("there is no frame 12: the clip has frames 0 to 9",))
        self.refuse("render", self.clip(frames=0), "-o", "x.mkv", says=("mVideoDuration",))
        self.left_over("clip.tessel")

    def test_several_pictures_need_a_number_in_the_name(self):
        clip = self.clip(frames=3)
        for arguments in ((), ("--dry-run",)):
            self.refuse("render", clip, "-o", "x.png", *arguments, code=2, says=("x_%06d.png", "--frames 1"))
        for name in ("x_%d_%d.png", "x_%s.png", "x_%6d.png", "x_%.png"):
            self.refuse("render", clip, "-o", name, code=2, says=("%06d",))
        self.left_over("clip.tessel")
        done = self.run_tessel("render", "--quiet", clip, "-o", "100%%_%03d.png", "--from", "1")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.left_over("100%_001.png", "100%_002.png", "clip.tessel")

    def test_several_clips_are_not_put_into_a_folder_with_a_files_name(self):
        self.save(document(frames=1), "a.tessel")
        self.save(document(frames=1), "b.tessel")
        for name, says in (("x.mov", "-o x/ --format mov"), ("deep/x.png", "-o deep/x/ --format png"),
                           ("x.webm", "-o x/"), ("%06d.exr", "-o out/ --format exr"), ("%d", "-o out/")):
            self.refuse("render", "a.tessel", "b.tessel", "-o", name, code=2, says=(f"'{name}'", says))
        self.left_over("a.tessel", "b.tessel")
        os.mkdir(self.path("there.mov"))
        for name in ("there.mov", "new.mov/"):
            done = self.run_tessel("render", "--quiet", "a.tessel", "b.tessel", "-o", name)
            self.assertEqual((done.returncode, done.stderr), (0, b""))
            self.assertEqual(sorted(os.listdir(self.path(name))), ["a.mkv", "b.mkv"])

    def test_folders_are_made_for_sequences(self):
        self.render(document(frames=2), "new/%03d.exr")
        self.assertEqual(sorted(os.listdir(self.path("new"))), ["000.exr", "001.exr"])
        self.left_over("clip.tessel", "new")

    def test_a_failure_leaves_no_folder_that_it_made(self):
        clip = self.clip(frames=3)
        self.refuse("render", "nofile.tessel", "-o", "new/", says=("nofile.tessel",))
        self.refuse("render", "nofile.tessel", clip, "-o", "new/deeper/", says=("nofile.tessel",))
        self.refuse("render", clip, "-o", "new/", "--from", "99", code=2, says=("frame 99",))
        self.refuse("render", clip, clip, "-o", "new", code=2, says=("clip.mkv",))
        self.refuse("render", clip, "-o", "new/%d.png", "--from", "99", code=2, says=("frame 99",))
        self.refuse("render", self.save(document(code="BGra", size=(40000, 40000)), "large.tessel"), "-o",
                    "new/%d.png", says=("large.tessel",))
        os.remove(self.path("large.tessel"))
        self.left_over("clip.tessel")
        code, _ = self.end_half_way(signal.SIGINT, "new/%04d.png")
        self.assertEqual(code, -signal.SIGINT)
        code, _ = self.end_half_way(signal.SIGINT, "new/deeper/")
        self.assertEqual(code, -signal.SIGINT)
        self.left_over("clip.tessel")
        os.mkdir(self.path("old"))
        self.refuse("render", clip, "-o", "old/", "--from", "999999", code=2, says=("frame 999999",))
        self.left_over("clip.tessel", "old")

    def test_a_failed_clip_leaves_the_folder_with_what_is_done(self):
        self.refuse("render", self.clip(frames=1), "nofile.tessel", "--quiet", "-o", "new/", says=("nofile.tessel",))
        self.assertEqual(os.listdir(self.path("new")), ["clip.mkv"])

    def test_several_clips_go_into_a_folder(self):
        self.save(document(frames=2), "a.tessel")
        self.save(document(frames=2), "b.tessel")
        for form, names in (((), ["a.mkv", "b.mkv"]), (("--format", "mov"), ["a.mov", "b.mov"]),
                            (("--format", "png"), ["a_000000.png", "a_000001.png", "b_000000.png", "b_000001.png"])):
            folder = "out" + "".join(form)
            done = self.run_tessel("render", "--quiet", "a.tessel", "b.tessel", "-o", folder, *form)
            self.assertEqual((done.returncode, done.stderr), (0, b""))
            self.assertEqual(sorted(os.listdir(self.path(folder))), names)

    def test_a_percent_sign_in_a_clips_name_is_no_numbers_place(self):
        self.save(document(frames=1), "50%d.tessel")
        done = self.run_tessel("render", "--quiet", "50%d.tessel", "-o", "out/", "--format", "png")
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(os.listdir(self.path("out")), ["50%d_000000.png"])

    def test_interrupted_while_nobody_reads_the_pipe_it_ends(self):
        with subprocess.Popen([*self.tessel, "render", self.clip(**LONG), "-o", "-", "--format", "nut"],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            process.stdout.read(1)
            time.sleep(1)  # a pipe holds 64 KiB; by now it is full, or soon will be
            process.send_signal(signal.SIGTERM)
            self.assertEqual(process.wait(timeout=60), -signal.SIGTERM)

    def test_odd_file_names_are_files_like_any_other(self):
        for name in ("with space.mkv", "-dash.mkv", "new\nline.mkv", "umläut.mkv", "file:x.mkv", "pipe:1.mkv",
                     "'quoted'.mkv", "%.mkv"):
            done = self.run_tessel("render", "--quiet", self.clip(frames=1), "--output=" + name)
            self.assertEqual((done.returncode, done.stderr), (0, b""), name)
            self.assertIn(name, os.listdir(self.folder))

    def test_formats_and_codecs_that_do_not_go_together_say_what_does(self):
        clip = self.clip()
        for arguments, says in ((("-o", "x.mp4", "--video-codec", "v210"), ("mp4", "v210", "h264")),
                                (("-o", "x.mov", "--audio-codec", "flac"), ("mov", "flac", "pcm24")),
                                (("-o", "x.wav", "--video-codec", "ffv1"), ("wav",)),
                                (("-o", "x.y4m", "--audio-codec", "pcm16"), ("y4m",)),
                                (("-o", "x_%d.png", "--audio-only"), ("png",)),
                                (("-o", "x.wav", "--video-only"), ("wav",))):
            self.refuse("render", clip, *arguments, code=2, says=says)
        self.left_over("clip.tessel")

    def test_dv_says_which_sizes_and_rates_are_valid(self):
        for code, says in (("dvn2", ("720x480", "30000/1001")), ("dvp2", ("720x576", "25")),
                           ("dvn7", ("960x720", "60000/1001")), ("dvp7", ("960x720", "50")),
                           ("dvn1", ("1280x1080", "30000/1001")), ("dvp1", ("1440x1080", "25"))):
            self.refuse("render", self.clip(code=code, size=(1920, 1080)), "-o", "x.mov", says=(*says, "1920x1080"))
        self.refuse("render", self.clip(), "-o", "x.mov", "--video-codec", "dv", says=("720x576", "1440x1080"))
        self.left_over("clip.tessel")

    def test_a_clip_without_size_or_rate_is_refused(self):
        for root, says in (({"mFrameWidth": 0}, '"mFrameWidth"'), ({"mFrameHeight": -5}, '"mFrameHeight"'),
                           ({"mPixelFormat": 1}, '"mPixelFormat"')):
            self.refuse("render", self.save({**document(), **root}), "-o", "x.mkv", says=(says,))
        # 118 ticks are more than 2^31 - 1 frames a second; the last is the rate that documents use for none.
        for ticks in (0, -1, 118, 2**63 - 1):
            root = {**document(), "mVideoFrameRate": {"ticksperframe": ticks}}
            for output in ("x.mkv", "x.wav", "x_%d.png"):
                self.refuse("render", self.save(root), "-o", output,
                            says=("clip.tessel", '"mVideoFrameRate"', '"ticksperframe"', "10160640000"))
        self.left_over("clip.tessel")


if __name__ == "__main__":
    main()

"""Reports, exit codes, and movies that cannot be compared."""

import base64
import collections
import html.parser
import json
import os
import pty
import re
import resource
import subprocess
import unittest
import xml.etree.ElementTree as xml

from verify_support import VerifyTest, gradient, main

try:
    import jsonschema
except ImportError:
    jsonschema = None


class Page(html.parser.HTMLParser):
    """Elements of a page that are open, how many there are of each kind, and what they refer to."""

    def __init__(self):
        super().__init__()
        self.open = []
        self.count = collections.Counter()
        self.sources = []

    def handle_starttag(self, tag, attributes):
        self.count[tag] += 1
        if tag not in ("img", "meta"):
            self.open.append(tag)
        self.sources += [value for name, value in attributes if name in ("src", "href")]

    def handle_startendtag(self, tag, attributes):
        self.count[tag] += 1

    def handle_endtag(self, tag):
        assert self.open and self.open[-1] == tag, f"</{tag}> closes {self.open[-1:]}"
        self.open.pop()


class Reports(VerifyTest):
    def clip(self):
        return self.save(gradient(frames=6))

    @unittest.skipUnless(jsonschema, "python3-jsonschema is not installed")
    def test_json_follows_the_printed_schema(self):
        schema = json.loads(self.run_tessel("verify", "--schema").stdout)
        jsonschema.Draft202012Validator.check_schema(schema)
        root = gradient(frames=6)
        whole = self.render(root, "whole.mkv")
        for movie in (whole, self.ffmpeg(whole, "damaged.mkv", "-vf", "hflip,swapuv,fps=30")):
            jsonschema.Draft202012Validator(schema).validate(self.verify(root, movie))

    def test_every_check_of_the_list_stands_in_every_report_once(self):
        listed = [line.split()[0] for line in self.run_tessel("verify", "--list").stdout.decode().splitlines()
                  if not line.startswith(" ")]
        root = gradient(frames=6)
        report = self.verify(root, self.filtered(root, "hflip"))
        told = report["asExpected"] + report["notChecked"] + [check["id"] for check in report["notVisible"]]
        for finding in report["findings"]:
            told += [finding["id"], *(inner["id"] for inner in finding["consequences"])]
        self.assertEqual(sorted(told), sorted(listed))

    def test_junit_counts_failures_and_skips(self):
        root = gradient(frames=6)
        damaged = self.filtered(root, "hflip")
        done = self.run_tessel("verify", self.save(root), damaged, "--quiet", "--junit", self.path("report.xml"))
        self.assertEqual((done.returncode, done.stdout, done.stderr), (3, b"", b""))
        suite = xml.parse(self.path("report.xml")).getroot().find("testsuite")
        cases = {case.get("name"): case for case in suite.iter("testcase")}
        self.assertEqual(len(cases), int(suite.get("tests")))
        self.assertIsNotNone(cases["geometry.flipped"].find("failure"))
        self.assertEqual(suite.get("failures"), "1")
        self.assertIsNotNone(cases["container.siting"].find("skipped"))
        self.assertEqual(list(cases["container.rate"]), [])

    def test_a_report_that_cannot_be_finished_leaves_the_earlier_one_whole(self):
        root = gradient(frames=6)
        movie = self.filtered(root, "hflip")
        for option in ("--html", "--junit"):
            report = self.path("report")
            with open(report, "w", encoding="utf-8") as file:
                file.write("the earlier one")
            # Files end after 2000 bytes, as on a full disk.
            done = self.run_tessel("verify", self.save(root), movie, option, report,
                                   preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (2000, 2000)))
            self.assertEqual((done.returncode, done.stderr.count(b"\n")), (1, 1), done.stderr)
            self.assertIn(report.encode(), done.stderr)
            with open(report, encoding="utf-8") as file:
                self.assertEqual(file.read(), "the earlier one", option)
        self.left_over("clip.tessel", "damaged.mkv", "report", "whole.mkv")

    def test_a_report_needs_a_folder_and_replaces_neither_clip_nor_movie(self):
        clip = self.clip()
        movie = self.render(gradient(frames=6), "x.mkv")
        for option in ("--html", "--junit"):
            self.refuse("verify", clip, movie, option, self.path("no/such/report"), says=["no/such/report"])
            for kept in (clip, movie):
                with open(kept, "rb") as file:
                    before = file.read()
                self.refuse("verify", clip, movie, option, kept, code=2, says=[option, "name another file"])
                with open(kept, "rb") as file:
                    self.assertEqual(file.read(), before)

    def test_html_is_one_page_that_needs_nothing_else(self):
        root = gradient(frames=30)
        movie = self.path("a<b>&c.mkv")  # what would be markup has to be text
        os.rename(self.filtered(root, "select='not(eq(n,12))',setpts=N/25/TB,lutrgb=r=val*0.8"), movie)
        done = self.run_tessel("verify", self.save(root), movie, "--quiet", "--html", self.path("page.html"))
        self.assertEqual((done.returncode, done.stderr), (3, b""))
        with open(self.path("page.html"), encoding="utf-8") as file:
            text = file.read()
        page = Page()
        page.feed(text)
        self.assertEqual(page.open, [], "every element is closed")
        self.assertFalse([source for source in page.sources if not source.startswith("data:")])
        self.assertNotIn("a<b>", text)
        report = self.verify(root, movie)
        for finding in report["findings"]:
            self.assertIn(f"<code>{finding['id']}</code>", text)
        self.assertEqual(page.count["rect"], len(report["alignment"]["steps"]))
        self.assertGreater(page.count["img"], 0)
        self.assertEqual(page.count["img"] % 3, 0, "expected, actual and difference")
        for source in page.sources:
            bitmap = base64.b64decode(source.split(",", 1)[1])
            self.assertEqual((bitmap[:2], int.from_bytes(bitmap[2:6], "little")), (b"BM", len(bitmap)))

    def test_the_page_shows_the_one_picture_that_differs(self):
        root = gradient(frames=30)
        whole = self.render(root, "whole.mkv")
        for wrong in (13, 17):  # neither is one of the dozen frames that colours are read from
            box = f"drawbox=enable='eq(n,{wrong})':t=fill:color=red:x=100:y=80:w=100:h=60"
            movie = self.ffmpeg(whole, "glitch.mkv", "-vf", box)
            self.run_tessel("verify", self.save(root), movie, "--quiet", "--html", self.path("page.html"))
            with open(self.path("page.html"), encoding="utf-8") as file:
                self.assertIn(f"Frame {wrong} (picture {wrong})", re.findall("<h2>(.*?)</h2>", file.read()))

    def test_reports_are_well_formed_where_a_file_name_is_no_text(self):
        root = gradient(frames=6)
        movie = os.path.join(os.fsencode(self.folder), b"bytes \xff\xfe.mkv")
        os.rename(self.render(root, "x.mkv"), movie)
        done = subprocess.run([*self.tessel, "verify", self.save(root), movie, "--json", "--junit", self.path("r.xml"),
                               "--html", self.path("r.html")], capture_output=True, check=True, cwd=self.folder)
        self.assertIn("\ufffd", json.loads(done.stdout)["movie"])
        self.assertIn("\ufffd", xml.parse(self.path("r.xml")).getroot().find("testsuite").get("name"))
        with open(self.path("r.html"), encoding="utf-8") as file:
            self.assertIn("\ufffd", file.read())

    def test_the_list_of_checks_as_json_says_what_the_text_says(self):
        text = self.run_tessel("verify", "--list").stdout.decode()
        checks = json.loads(self.run_tessel("verify", "--list", "--json").stdout)
        heads = [line for line in text.splitlines() if not line.startswith(" ")]
        self.assertEqual([f"{check['id']}  ({check['severity']})" for check in checks], heads)
        for check in checks:
            self.assertIn(f"    {check['sentence']}\n    seen with: {check['seenWith']}\n", text)
        by_id = {check["id"]: check for check in checks}
        self.assertEqual(by_id["color.offset"]["tolerance"], {"lossless": 1, "mezzanine": 1.5, "delivery": 2.5})
        self.assertIsNone(by_id["order.missing"]["tolerance"])
        self.assertIn("container.duration", by_id["order.missing"]["consequences"])

    def test_text_names_movie_clip_and_fault(self):
        root = gradient(frames=6)
        damaged = self.filtered(root, "hflip")
        done = self.run_tessel("verify", self.save(root), damaged)
        text = done.stdout.decode()
        self.assertTrue(text.startswith(f"{damaged}: not as {self.path('clip.tessel')}\n"), text)
        self.assertIn("left and right are exchanged  geometry.flipped", text)
        self.assertNotIn("\x1b", text)

    def test_accept_and_only_narrow_the_verdict(self):
        root = gradient(frames=6)
        damaged = self.filtered(root, "hflip")
        self.assertEqual(self.verify(root, damaged, "--accept", "geometry.flipped")["verdict"], "as expected")
        self.assertEqual(self.verify(root, damaged, "--only", "container.rate")["verdict"], "as expected")
        self.assertEqual(self.verify(root, damaged, "--only", "geometry.flipped")["verdict"], "not as expected")

    def test_strict_makes_a_fault_of_what_a_container_cannot_say(self):
        root = gradient("v211", frames=6)
        movie = self.render(root, "x.mp4")
        report = self.verify(root, movie)
        self.assertEqual(report["verdict"], "as expected")
        self.assertEqual(report["notes"][0], "h264 in MP4 cannot carry more than 8 bits in its profile High; "
                                             "the clip has 10 [container.depth]")
        self.expect(self.verify(root, movie, "--strict"), "container.depth")

    def test_a_tolerance_of_ones_own(self):
        root = gradient("v211", frames=6)
        damaged = self.filtered(root, "lutyuv=y=val+8")  # 2 codes in 8-bit units
        self.expect(self.verify(root, damaged), "color.offset")
        self.assertNotIn("color.offset", self.ids(self.verify(root, damaged, "--tolerance", "color.offset=3")))

    def test_pictures_come_through_a_pipe(self):
        root = gradient(frames=6)
        with open(self.render(root, "x.nut"), "rb") as movie:
            done = self.run_tessel("verify", self.save(root), "-", stdin=movie)
        self.assertEqual(done.returncode, 0, done.stdout)

    def test_a_pipe_that_brings_no_movie_is_named_as_standard_input(self):
        done = self.run_tessel("verify", self.clip(), "-", stdin=subprocess.DEVNULL)
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        self.assertTrue(done.stderr.startswith(b"tessel: standard input: cannot be read as a movie: "), done.stderr)

    def test_text_has_colours_on_terminals_that_want_them(self):
        root = gradient(frames=6)
        command = ["verify", self.save(root), self.filtered(root, "hflip"), "--no-progress"]
        for variables, has_colors in (({"TERM": "xterm"}, True), ({"TERM": "dumb"}, False),
                                      ({"TERM": "xterm", "NO_COLOR": "1"}, False),
                                      ({"TERM": "xterm", "NO_COLOR": ""}, True)):
            reader, writer = pty.openpty()
            environment = {name: text for name, text in os.environ.items() if name not in ("TERM", "NO_COLOR")}
            subprocess.run([*self.tessel, *command], stdout=writer, env={**environment, **variables}, check=False)
            text = os.read(reader, 100_000)
            os.close(writer)
            os.close(reader)
            self.assertEqual(b"\x1b[31m" in text, has_colors, variables)

    def test_something_else_is_one_finding(self):
        other = self.path("other.mp4")
        subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "testsrc2=s=320x180:r=25:d=1", other], check=True)
        self.expect(self.verify(gradient(frames=25), other), "signal.other")

    def test_a_truncated_movie_ends_early(self):
        root = gradient(frames=30)
        whole = self.render(root, "whole.mkv", "--video-only")
        with open(whole, "rb") as file:
            data = file.read()
        with open(self.path("cut.mkv"), "wb") as file:
            file.write(data[:len(data) * 2 // 3])
        self.assertIn("order.tail", self.ids(self.verify(root, self.path("cut.mkv"))))

    def test_what_is_no_movie_is_refused_in_one_line(self):
        clip = self.clip()
        with open(self.path("no.mp4"), "wb") as file:
            file.write(b"not a movie at all" * 100)
        with open(self.path("empty.mov"), "wb"):
            pass
        for movie in ("no.mp4", "empty.mov", "absent.mkv", "absent_%03d.png", "clip.tessel"):
            self.refuse("verify", clip, self.path(movie), says=[movie])

    def test_a_wrong_command_line_is_refused(self):
        clip = self.clip()
        self.refuse("verify", clip, code=2, says=["a clip and a movie"])
        self.refuse("verify", clip, "x.mkv", "--only", "color.taste", code=2, says=["color.taste", "--list"])
        self.refuse("verify", clip, "x.mkv", "--tolerance", "color.gain", code=2, says=["NAME=VALUE"])
        self.refuse("verify", clip, "x.mkv", "--tolerance", "color.gain=much", code=2, says=["number"])
        self.refuse("verify", clip, "x.mkv", "--tolerance", "order.missing=2", code=2, says=["compares no number"])
        self.refuse("verify", clip, "x.mkv", "--tolerance", "color.hue=-1", code=2, says=["color.hue=-1", "0 or more"])
        self.refuse("verify", clip, "x.mkv", "--json", "--quiet", code=2, says=["--json", "--quiet"])
        for option in ("--html", "--junit"):
            self.refuse("verify", clip, "x.mkv", option, "-", code=2, says=[option, "file's name"])
        self.refuse("verify", clip, "x.mkv", "--junit", "report", "--html", "./report", code=2, says=["name another"])
        self.refuse("verify", "--list", "--schema", code=2, says=["--list", "--schema"])
        self.refuse("verify", "--list", "--visible", clip, code=2, says=["--list", "--visible"])
        self.refuse("verify", "--visible", clip, "--html", "x.html", code=2, says=["--visible", "--html"])
        self.left_over("clip.tessel")

    def test_visible_tells_what_a_clip_shows(self):
        done = self.run_tessel("verify", "--visible", self.clip())
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        text = done.stdout.decode()
        self.assertIn("shows      order.missing\n", text)
        self.assertIn("not shown  color.alpha (use ", text)


main()

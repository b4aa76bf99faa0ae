"""The player without a person: keys pressed by the command line, pictures of the window, what is told in the end."""

import re
import struct
import unittest
import zlib

from program import HAS_PLAYER, TICKS_PER_SECOND, ProgramTest, color, document


def pixels_of(path):
    """Rows of (red, green, blue) of a PNG of 8 bits."""
    with open(path, "rb") as file:
        data = file.read()
    at, packed, header = 8, b"", None
    while at < len(data):
        length, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if kind == b"IHDR":
            header = struct.unpack(">IIBBBBB", body)
        elif kind == b"IDAT":
            packed += body
        at += 12 + length
    width, height, depth, kind = header[:4]
    assert depth == 8 and kind in (2, 6), header
    step = 3 if kind == 2 else 4
    raw, rows, last = zlib.decompress(packed), [], bytearray(width * step)
    for y in range(height):
        start = y * (width * step + 1)
        method, line = raw[start], bytearray(raw[start + 1:start + 1 + width * step])
        for i, value in enumerate(line):
            left = line[i - step] if i >= step else 0
            up, corner = last[i], last[i - step] if i >= step else 0
            if method == 1:
                value += left
            elif method == 2:
                value += up
            elif method == 3:
                value += (left + up) // 2
            elif method == 4:
                estimate = left + up - corner
                value += min((left, up, corner), key=lambda part: abs(estimate - part))
            line[i] = value & 255
        rows.append([tuple(line[x * step:x * step + 3]) for x in range(width)])
        last = line
    return rows


def counts_of(rows):
    counts = {}
    for row in rows:
        for pixel in row:
            counts[pixel] = counts.get(pixel, 0) + 1
    return counts


@unittest.skipUnless(HAS_PLAYER, "the player is not built")
class View(ProgramTest):
    def view(self, *arguments):
        return self.run_program("view", *arguments, environment={"QT_QPA_PLATFORM": "offscreen"})

    def picture(self, *arguments):
        answer = self.view(*arguments, "--size", "800x600", "--screenshot", "window.png")
        self.assertEqual(answer.code, 0, answer.err)
        return pixels_of(self.path("window.png"))

    def clip(self, **changes):
        """Fields of two colours, 64 pixels wide and 48 high, without a number."""
        return self.write("clip.tessel", document(mFrameWidth=64, mFrameHeight=48, mRenderFormat=0,
                                                  mDrawFrameFieldNumber=False, mFieldType=1, **changes))

    def test_code_pixels_are_the_plug_ins_own_colours_one_for_one(self):
        self.clip()
        counts = counts_of(self.picture("clip.tessel", "--press", "X"))
        # Upper field (1, 0.5, 0.25), lower (0, 1, 0) at 8 bits: 24 rows of 64 pixels each.
        self.assertEqual(counts.get((255, 128, 64)), 24 * 64)
        self.assertEqual(counts.get((0, 255, 0)), 24 * 64)

    def test_enlarged_pixels_are_exact(self):
        self.clip()
        counts = counts_of(self.picture("clip.tessel", "--press", "X", "--press", "Ctrl++", "--press", "Ctrl++"))
        self.assertEqual(counts.get((255, 128, 64)), 9 * 24 * 64)
        self.assertEqual(counts.get((0, 255, 0)), 9 * 24 * 64)

    def test_a_field_view_shows_one_field_alone(self):
        self.clip()
        upper = counts_of(self.picture("clip.tessel", "--press", "X", "--press", "F"))
        self.assertEqual(upper.get((255, 128, 64)), 48 * 64)
        self.assertNotIn((0, 255, 0), upper)
        lower = counts_of(self.picture("clip.tessel", "--press", "X", "--press", "F", "--press", "F"))
        self.assertEqual(lower.get((0, 255, 0)), 48 * 64)

    def test_clips_stand_side_by_side(self):
        self.clip()
        self.write("other.tessel", document(mFrameWidth=64, mFrameHeight=48, mRenderFormat=0, mFieldType=0,
                                            mDrawFrameFieldNumber=False, mUpperFieldColor=color(0, 0, 1)))
        counts = counts_of(self.picture("clip.tessel", "other.tessel", "--press", "X"))
        self.assertEqual(counts.get((255, 128, 64)), 24 * 64)
        self.assertGreaterEqual(counts.get((0, 0, 255), 0), 24 * 64)

    def test_keys_and_typed_frames_lead_to_the_same_picture_as_the_option(self):
        self.write("clip.tessel", document())
        by_option = self.picture("clip.tessel", "--frame", "12")
        for keys in (["1", "2", "Return"], ["End", "Home", "Shift+Right", "Right", "Right"], ["+", "1", "2", "Return"]):
            pressed = [part for key in keys for part in ("--press", key)]
            with self.subTest(keys=keys):
                self.assertEqual(self.picture("clip.tessel", *pressed), by_option)
        self.assertEqual(self.picture("clip.tessel", "--frame", "00:00:00:12"), by_option)

    def test_a_movie_that_lost_nothing_differs_nowhere(self):
        self.clip()
        self.assert_done(self.run_program("render", "clip.tessel", "-o", "clip.mkv", "--quiet"))
        rows = self.picture("clip.tessel", "--against", "clip.mkv", "--press", "X", "--press", "]")
        equal = [(128, 128, 128)] * 64
        runs = [x for row in rows for x in range(len(row) - 63) if row[x:x + 64] == equal]
        self.assertEqual((len(runs), len(set(runs))), (48, 1))  # a block of 64 times 48, and no other
        counts = counts_of(rows)
        self.assertEqual(counts.get((255, 128, 64)), 2 * 24 * 64)  # in the clip and in the movie

    def test_findings_are_marked_on_the_timeline(self):
        self.write("clip.tessel", document(mVideoDuration={"ticks": 2 * TICKS_PER_SECOND}))
        self.assert_done(self.run_program("damage", "clip.tessel", "--fault", "order.missing=20", "-o", "bad.mkv"))
        mark = (0xE0, 0x50, 0x40)
        marked = counts_of(self.picture("clip.tessel", "--against", "bad.mkv"))
        self.assertGreater(marked.get(mark, 0), 10)
        self.assertNotIn(mark, counts_of(self.picture("clip.tessel")))

    def test_playing_tells_what_was_shown_and_dropped(self):
        self.clip()
        answer = self.view("clip.tessel", "--play-for", "1")
        self.assertEqual(answer.code, 0, answer.err)
        shown, dropped = map(int, re.fullmatch(r"(\d+) frames shown, (\d+) dropped\n", answer.out).groups())
        self.assertGreater(shown, 0)
        self.assertLessEqual(shown + dropped, 27)

    def test_what_cannot_be_done_is_one_line(self):
        self.clip()
        self.write("notes.txt", "x")
        for arguments, code, words in (
                (["missing.tessel", "--screenshot", "a.png"], 1, "missing.tessel"),
                (["clip.tessel", "--screenshot", "nowhere/a.png"], 1, "nowhere/a.png"),
                (["clip.tessel", "--frame", "x", "--screenshot", "a.png"], 2, "'x' is no frame"),
                (["clip.tessel", "--frame", "99", "--screenshot", "a.png"], 2,
                 "tessel: clip.tessel: --frame: there is no frame 99: the clip has frames 0 to"),
                (["clip.tessel", "--frame", "00:00:00:27", "--screenshot", "a.png"], 2, "--frame: there is no timecode"),
                (["clip.tessel", "--press", "Nonsense", "--screenshot", "a.png"], 2, "--press Nonsense"),
                (["clip.tessel", "--size", "10x10"], 2, "--size 10x10"),
                (["clip.tessel", "--against", "missing.mov", "--screenshot", "a.png"], 1,
                 "missing.mov: cannot be read as a movie: no such file or directory"),
                (["--screenshot", "a.png"], 2, "CLIP")):
            with self.subTest(arguments=arguments):
                answer = self.view(*arguments)
                self.assertEqual(answer.code, code, answer.err)
                self.assertIn(words, answer.err)
                self.assertEqual(answer.err.count("\n"), 1, answer.err)

    def test_without_a_display_a_window_is_refused_in_one_line(self):
        self.clip()
        nothing = {"DISPLAY": "", "WAYLAND_DISPLAY": "", "QT_QPA_PLATFORM": ""}
        for chosen, says in (({}, "there is no display"), ({"DISPLAY": ":4711"}, "connect to display :4711"),
                             ({"QT_QPA_PLATFORM": "nonsense"}, "Qt platform plugin \"nonsense\"")):
            with self.subTest(chosen=chosen):
                answer = self.run_program("view", "clip.tessel", environment={**nothing, **chosen})
                self.assertEqual(answer.code, 1)
                self.assertIn(says, answer.err)
                self.assertEqual((answer.err.count("\n"), answer.err.count("\\n")), (1, 0), answer.err)


if __name__ == "__main__":
    unittest.main()

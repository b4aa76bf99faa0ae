"""Every pixel format through files and back, to the last code value, by FFmpeg's decoders and exact fractions."""

import struct
import subprocess
from fractions import Fraction

from render_support import FORMATS, RenderTest, color, document, floor_half_up, full_codes, main, ycbcr, ycbcr_codes

UPPER = (1.0, 0.5, 0.25, 1.0)
LOWER = (0.0, 1.0, 0.0, 1.0)
SEETHROUGH = (1.0, 0.5, 0.25, 0.5)


def planes(data, width, height, count, bits):
    """Full-size planes of a decoded picture as lists of rows."""
    size = 1 if bits == 8 else 2
    samples = struct.unpack(f"<{len(data) // size}{'B' if size == 1 else 'H'}", data)
    assert len(samples) == width * height * count, (len(samples), width, height, count)
    return [[samples[(plane * height + row) * width:(plane * height + row + 1) * width] for row in range(height)]
            for plane in range(count)]


def multiplied(rgba):
    return tuple(part * rgba[3] for part in rgba[:3])


class Pixels(RenderTest):
    WIDTH, HEIGHT = 38, 18

    def picture(self, code, output, pixel_format, upper=UPPER, lower=LOWER, order=1, arguments=(), size=None, **more):
        root = document(code, size or (self.WIDTH, self.HEIGHT), upper=upper, lower=lower, order=order, frames=2,
                        **more)
        return self.decode(self.render(root, output, "--video-only", *arguments), pixel_format)

    def expect_planes(self, data, count, bits, upper, lower, what):
        """Flat fields: every sample of a row is the field's."""
        for plane, rows in enumerate(planes(data, self.WIDTH, self.HEIGHT, count, bits)):
            for row, samples in enumerate(rows):
                expected = (lower if row % 2 else upper)[plane]
                self.assertEqual(set(samples), {expected}, f"{what} plane {plane} row {row}")

    def test_8_bit_rgb_is_kept_in_ffv1(self):
        for form in (f for f in FORMATS.values() if f["family"] == "rgb" and f["storage"] == "8"):
            has_alpha = form["alpha"] != "none"
            data = self.picture(form["code"], "x.mkv", "bgra" if has_alpha else "bgr0", upper=SEETHROUGH)
            rgb = multiplied(SEETHROUGH) if form["alpha"] == "premultiplied" else SEETHROUGH[:3]
            upper = full_codes(rgb)[::-1] + full_codes([0.5])
            lower = full_codes(LOWER[:3])[::-1] + [255]
            if not has_alpha:
                # FFV1 does not code the fourth byte, so its decoder is free in it.
                data, upper, lower = bytes(b for i, b in enumerate(data) if i % 4 != 3), upper[:3], lower[:3]
            rows = [bytes(upper) * self.WIDTH, bytes(lower) * self.WIDTH] * (self.HEIGHT // 2)
            self.assertEqual(data, b"".join(rows), form["code"])

    def test_8_bit_rgb_is_kept_in_png_tiff_dpx_mov_and_raw(self):
        for output in ("x_%d.png", "x_%d.tiff", "x_%d.dpx", "x.mov", "x.nut"):
            for code in ("bgra", "argb", "bgrx", "xrgb"):
                has_alpha = FORMATS[code]["alpha"] != "none"
                root = document(code, (self.WIDTH, self.HEIGHT), upper=SEETHROUGH, lower=LOWER, order=1, frames=2)
                path = self.render(root, output, "--video-only").replace("%d", "0")
                pixel_format = self.probe(path)["pix_fmt"]
                data = self.decode(path, pixel_format)
                component = {"rgba": "rgba", "rgb24": "rgb", "bgra": "bgra", "argb": "argb", "bgr0": "bgr0",
                             "0rgb": "0rgb"}[pixel_format]
                if has_alpha:
                    self.assertIn("a", component)
                values = dict(zip("rgba", full_codes(SEETHROUGH)))
                if not has_alpha:
                    values["a"] = 255
                first = dict(zip(component, data[:len(component)]))
                for name, value in first.items():
                    if name != "0":
                        self.assertEqual(value, values[name], f"{code} {output} {component} {first}")

    def test_vuya_is_kept_in_444_planes(self):
        for form in (f for f in FORMATS.values() if f["family"] == "ycbcr" and f["storage"] == "8"):
            has_alpha = form["alpha"] != "none"
            rgb = multiplied(SEETHROUGH) if form["alpha"] == "premultiplied" else SEETHROUGH[:3]
            upper = ycbcr_codes(rgb, form["matrix"]) + full_codes([0.5])
            lower = ycbcr_codes(LOWER[:3], form["matrix"]) + [255]
            for output in ("x.mkv", "x.mov", "x.nut"):
                data = self.picture(form["code"], output, "yuva444p" if has_alpha else "yuv444p", upper=SEETHROUGH)
                self.expect_planes(data, 4 if has_alpha else 3, 8, upper, lower, f"{form['code']} {output}")

    def test_float_becomes_16_bits_in_ffv1(self):
        for form in (f for f in FORMATS.values() if f["storage"] in ("float", "linear")):
            has_alpha = form["alpha"] != "none"
            rgb = multiplied(SEETHROUGH) if form["alpha"] == "premultiplied" else SEETHROUGH[:3]
            if form["storage"] == "linear" and form["alpha"] == "premultiplied":
                continue  # what was multiplied in linear light is not the product of coded values
            if form["family"] == "rgb":
                red, green, blue = full_codes(rgb, 16)
                upper, name = [green, blue, red], "gbrap16le" if has_alpha else "gbrp16le"
                lower = [65535, 0, 0]
            else:
                upper, name = ycbcr_codes(rgb, form["matrix"], 16), "yuva444p16le" if has_alpha else "yuv444p16le"
                lower = ycbcr_codes(LOWER[:3], form["matrix"], 16)
            data = self.picture(form["code"], "x.mkv", name, upper=SEETHROUGH)
            for plane, rows in enumerate(planes(data, self.WIDTH, self.HEIGHT, 4 if has_alpha else 3, 16)):
                # Bottom row first formats show the fields the other way round; height is even.
                flip = form["code"] == "BGra"
                for row, samples in enumerate(rows):
                    is_lower = (row % 2 == 1) != flip
                    if plane == 3:
                        expected = 65535 if is_lower else 32768
                    else:
                        expected = (lower if is_lower else upper)[plane]
                    # Floats hold 24 bits, so a code may come out one beside the exact one.
                    for sample in set(samples):
                        self.assertLessEqual(abs(sample - expected), 1, f"{form['code']} plane {plane} row {row}")

    def test_float_rgb_becomes_the_nearest_16_bit_codes(self):
        # 65535 times the float 0.9 is 58981.4984, so near a half that floats cannot tell it apart.
        values = [Fraction(struct.unpack("<f", struct.pack("<f", part))[0]) for part in (0.9, 0.3, 0.7, 0.9)]
        red, green, blue, alpha = full_codes(values, 16)
        self.assertEqual(red, 58981)
        for output, pixel_format, expected in (("x_%d.png", "rgba64be", (">4H", red, green, blue, alpha)),
                                               ("x_%d.tiff", "rgba64le", ("<4H", red, green, blue, alpha))):
            path = self.render(document("BGra", (6, 4), upper=(0.9, 0.3, 0.7, 0.9), order=0, frames=1), output)
            data = self.decode(path.replace("%d", "0"), pixel_format)
            self.assertEqual(data, struct.pack(*expected) * 24, output)
        data = self.picture("BGra", "x.mkv", "gbrap16le", upper=(0.9, 0.3, 0.7, 0.9), order=0)
        codes = (green, blue, red, alpha)
        self.expect_planes(data, 4, 16, codes, codes, "FFV1")

    def test_float_rgb_is_kept_bit_for_bit_in_exr(self):
        upper, lower = (1.5, -0.25, 0.1, 0.5), (0.3, 1e-3, 7.25, 1.0)
        for form in (f for f in FORMATS.values() if f["family"] == "rgb" and f["storage"] in ("float", "linear")):
            if form["storage"] == "linear" or form["alpha"] == "premultiplied":
                continue  # expected values need the transfer function; the unit test has them
            has_alpha = form["alpha"] != "none"
            root = document(form["code"], (self.WIDTH, self.HEIGHT), upper=upper, lower=lower, order=1, frames=1)
            path = self.render(root, "x.exr")
            data = self.decode(path, "gbrapf32le" if has_alpha else "gbrpf32le")
            count = 4 if has_alpha else 3
            self.assertEqual(len(data), self.WIDTH * self.HEIGHT * count * 4)
            for plane, component in enumerate((1, 2, 0, 3)[:count]):
                for row in range(self.HEIGHT):
                    is_lower = (row % 2 == 1) != (form["code"] == "BGra")
                    value = struct.pack("<f", (lower if is_lower else upper)[component])
                    start = (plane * self.HEIGHT + row) * self.WIDTH * 4
                    self.assertEqual(data[start:start + self.WIDTH * 4], value * self.WIDTH,
                                     f"{form['code']} plane {plane} row {row}")

    def test_float_ycbcr_keeps_values_far_outside_in_exr(self):
        upper, lower = (20000.0, 40000.0, -30000.0, 1.0), (1e36, 2e36, 1e37, 1.0)
        for code in ("VUyx", "VUx7"):
            root = document(code, (self.WIDTH, self.HEIGHT), upper=upper, lower=lower, order=1, frames=1)
            data = self.decode(self.render(root, "x.exr"), "gbrpf32le")
            for plane, component in enumerate((1, 2, 0)):
                for row in range(self.HEIGHT):
                    start = (plane * self.HEIGHT + row) * self.WIDTH * 4
                    expected = (lower if row % 2 else upper)[component]
                    for got in struct.unpack(f"<{self.WIDTH}f", data[start:start + self.WIDTH * 4]):
                        # Through a matrix of floats and back.
                        self.assertLess(abs(got - expected), 1e-5 * max(lower if row % 2 else map(abs, upper)),
                                        f"{code} plane {plane} row {row}")

    def test_v210_reduced_to_8_bits_keeps_clear_of_the_timing_codes(self):
        # Far outside, v210 has 1019 and 4: a quarter of 1019 would round to 255.
        data = self.picture("v211", "x.mov", "uyvy422", upper=(3.0,) * 4, lower=(-3.0,) * 3 + (1.0,),
                            arguments=("--video-codec", "raw"))
        rows = [bytes((128, 254)) * self.WIDTH, bytes((128, 1)) * self.WIDTH]
        self.assertEqual(data, b"".join(rows) * (self.HEIGHT // 2))

    def test_packed_422_stays_as_it_is(self):
        for code in ("yuy2", "yuy3", "uyvy", "uyv7"):
            form = FORMATS[code]
            for output in ("x.mkv", "x.mov", "x.avi", "x.nut"):
                for width in (self.WIDTH, self.WIDTH + 1):
                    if width % 2 == 1 and output == "x.avi":
                        continue
                    name = "yuyv422" if form["order"] == "yuyv" else "uyvy422"
                    data = self.picture(code, output, name, size=(width, self.HEIGHT))
                    for row in range(self.HEIGHT):
                        luma, cb, cr = ycbcr_codes((LOWER if row % 2 else UPPER)[:3], form["matrix"])
                        pair = bytes((luma, cb, luma, cr) if form["order"] == "yuyv" else (cb, luma, cr, luma))
                        length = (width + 1) // 2 * 4
                        got = data[row * length:(row + 1) * length]
                        self.assertEqual(got[:width * 2], (pair * width)[:width * 2], f"{code} {output} row {row}")

    def test_v210_stays_bit_for_bit(self):
        for code in ("v210", "v211"):
            for output in ("x.mkv", "x.mov", "x.avi", "x.nut"):
                root = document(code, (self.WIDTH, self.HEIGHT), upper=UPPER, lower=LOWER, order=1, frames=2)
                path = self.render(root, output, "--video-only")
                self.assertEqual(self.probe(path)["codec_name"], "v210")
                packets = subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-c", "copy", "-f", "data", "-map",
                                          "0:v", "-"], capture_output=True, check=True).stdout
                row_bytes = (self.WIDTH + 47) // 48 * 128
                self.assertEqual(len(packets), 2 * self.HEIGHT * row_bytes)
                for row in range(self.HEIGHT):
                    luma, cb, cr = ycbcr_codes((LOWER if row % 2 else UPPER)[:3], FORMATS[code]["matrix"], 10)
                    samples = []
                    for x in range(0, self.WIDTH, 2):
                        samples += [cb, luma, cr, luma]
                    samples += [0] * (row_bytes // 16 * 12 - len(samples))
                    words = [samples[i] | samples[i + 1] << 10 | samples[i + 2] << 20
                             for i in range(0, len(samples), 3)]
                    self.assertEqual(packets[row * row_bytes:(row + 1) * row_bytes],
                                     struct.pack(f"<{len(words)}I", *words), f"{code} {output} row {row}")

    def test_y4m_frames_are_whole_at_odd_sizes(self):
        # Chroma planes round up, whatever the bytes of a sample.
        for code, pixel_format, shift_x, shift_y, bits in (
                ("v210", "yuv422p10le", 1, 0, 10), ("uyv7", "yuv422p", 1, 0, 8), ("yvi7", "yuv420p", 1, 1, 8),
                ("dvn2", "yuv411p", 2, 0, 8), ("VUx7", "yuv444p16le", 0, 0, 16), ("vuyx", "yuv444p", 0, 0, 8)):
            form = FORMATS[code]
            for width, height in ((63, 5), (61, 4), (1, 1), (64, 4)):
                root = document(code, (width, height), upper=UPPER, lower=UPPER, frames=3)
                path = self.render(root, "x.y4m")
                columns, rows = -(-width // (1 << shift_x)), -(-height // (1 << shift_y))
                picture = (width * height + 2 * columns * rows) * (1 if bits == 8 else 2)
                with open(path, "rb") as file:
                    header = file.readline()
                    self.assertEqual(len(file.read()), 3 * (len(b"FRAME\n") + picture), f"{header} {code}")
                if code == "dvn2":
                    continue
                data = self.decode(path, pixel_format, 2)
                self.assertEqual(len(data), picture, code)
                samples = struct.unpack(f"<{picture}B" if bits == 8 else f"<{picture // 2}H", data)
                luma, cb, cr = ycbcr_codes(UPPER[:3], form["matrix"], bits)
                ends = (0, width * height, width * height + columns * rows, len(samples))
                for plane, code_value in enumerate((luma, cb, cr)):
                    # 16 bits are more than the floats behind them hold to the last code.
                    for sample in set(samples[ends[plane]:ends[plane + 1]]):
                        self.assertLessEqual(abs(sample - code_value), bits // 16, f"{code} {width} plane {plane}")

    def test_opaque_8_bit_ycbcr_is_kept_in_mov_at_odd_widths(self):
        # v308 has none, so v408 with full alpha holds them.
        for code in ("vuyx", "vux7"):
            for output in ("x.mov", "x.avi"):
                root = document(code, (37, 18), upper=UPPER, lower=UPPER, frames=1)
                path = self.render(root, output, "--video-only", "--video-codec", "v408")
                data = self.decode(path, "yuva444p")
                for plane, value in enumerate(ycbcr_codes(UPPER[:3], FORMATS[code]["matrix"]) + [255]):
                    self.assertEqual(set(data[plane * 37 * 18:(plane + 1) * 37 * 18]), {value}, f"{code} {output}")
            self.assertEqual(self.probe(self.render(root, "y.mov"))["codec_name"], "v408")

    def test_planar_420_is_real_420(self):
        # Frame pictures average both fields' chroma; field pictures keep each field's.
        for code in ("yv12", "yvi2", "yv17", "yvi7"):
            form = FORMATS[code]
            for output in ("x.mkv", "x.mov", "x.y4m"):
                data = self.picture(code, output, "yuv420p", size=(40, 20))
                upper, lower = (self.through_709(rgb[:3], form["matrix"]) for rgb in (UPPER, LOWER))
                for row in range(20):
                    expected = (lower if row % 2 else upper)[0]
                    self.assert_codes(data[row * 40:(row + 1) * 40], expected, f"{code} {output} luma row {row}")
                for plane in (1, 2):
                    for row in range(10):
                        start = 800 + (plane - 1) * 200 + row * 20
                        if form["order"] == "frame":
                            expected = (upper[plane] + lower[plane]) / 2
                        else:
                            expected = (lower if row % 2 else upper)[plane]
                        self.assert_codes(data[start:start + 20], expected, f"{code} {output} plane {plane} row {row}")

    @staticmethod
    def through_709(rgb, matrix):
        """The exact codes, before the last rounding, of a colour that was painted as 8-bit 709."""
        codes = ycbcr_codes(rgb, 709)
        if matrix == 709:
            return [Fraction(code) for code in codes]
        luma, cb, cr = Fraction(codes[0] - 16, 219), Fraction(codes[1] - 128, 224), Fraction(codes[2] - 128, 224)
        red, blue = luma + cr * Fraction("1.5748"), luma + cb * Fraction("1.8556")
        green = (luma - Fraction("0.2126") * red - Fraction("0.0722") * blue) / Fraction("0.7152")
        luma, cb, cr = ycbcr((red, green, blue), 601)
        return [219 * luma + 16, 224 * cb + 128, 224 * cr + 128]

    def assert_codes(self, samples, exact, what):
        self.assertEqual(set(samples), {floor_half_up(exact)}, f"{what}: exactly {float(exact)}")

    def test_rgb_in_y4m_and_h264_is_coded_by_the_clips_matrix(self):
        for space, matrix in (("Rec. 601 (NTSC)", 601), ("Rec. 709", 709), ("Rec. 2020 (10-bit)", 2020), ("sRGB", 709)):
            data = self.picture("bgra", "x.y4m", "yuv444p", order=0, space=space)
            codes = ycbcr_codes([Fraction(code, 255) for code in full_codes(UPPER[:3])], matrix)
            self.expect_planes(data, 3, 8, codes, codes, space)

    def test_full_range_spaces_give_full_range_codes(self):
        data = self.picture("bgra", "x.y4m", "yuv444p", order=0, space="Rec. 709 Full Range")
        luma, cb, cr = ycbcr([Fraction(code, 255) for code in full_codes(UPPER[:3])], 709)
        codes = [floor_half_up(255 * luma), floor_half_up(255 * cb + 128), floor_half_up(255 * cr + 128)]
        self.expect_planes(data, 3, 8, codes, codes, "full range")

    def test_full_range_is_made_only_where_readers_are_told(self):
        # Readers take codes for 16 to 235 unless the file says full range, "pc".
        rows = (("x.mov", "prores", "tv", "yuva444p12le", 12), ("x.mov", "v210", None, "yuv422p10le", 10),
                ("x.mkv", "v210", "tv", "yuv422p10le", 10), ("x.mov", "v408", None, "yuva444p", 8),
                ("x.avi", "v408", None, "yuva444p", 8), ("x.mkv", "mpeg2", "tv", "yuv422p", 8),
                ("x.mov", "dv", None, "yuv422p", 8), ("x.mkv", "dv", "tv", "yuv422p", 8),
                ("x.mov", "h264", "pc", "yuvj420p", 8), ("x.avi", "h264", "pc", "yuvj420p", 8),
                ("x.mxf", "h264", "pc", "yuvj420p", 8), ("x.y4m", "raw", "pc", "yuv444p16le", 16))
        for output, codec, says, pixel_format, bits in rows:
            root = document("BGra", (720, 576), (25, 1), 1, space="Rec. 709 Full Range")
            for name, number in (("white", 1), ("black", 0)):
                root["mUpperFieldColor"] = root["mLowerFieldColor"] = color(number, number, number)
                path = self.render(root, output, "--video-only", "--video-codec", codec)
                self.assertEqual(self.probe(path).get("color_range"), says, f"{output} {codec}")
                data = self.decode(path, pixel_format)
                luma = data[0] if bits == 8 else struct.unpack("<H", data[:2])[0]
                highest, unit = (1 << bits) - 1, 1 << (bits - 8)
                expected = number * highest if says == "pc" else (16 + 219 * number) * unit
                slack = 1 if codec in ("prores", "h264", "mpeg2", "dv") else 0
                self.assertLessEqual(abs(luma - expected), slack, f"{output} {codec} {name}: {luma}")

    def test_ycbcr_becomes_rgb_for_pictures(self):
        for code, bits, pixel_format in (("VUYA", 8, "rgba"), ("vuyx", 8, "rgb24"), ("uyvy", 8, "rgb24"),
                                         ("v211", 10, "rgb48be")):
            data = self.picture(code, "x.png", pixel_format, order=0, arguments=("--frames", "1"))
            matrix = FORMATS[code]["matrix"]
            kr, kb = {601: ("0.299", "0.114"), 709: ("0.2126", "0.0722")}[matrix]
            kr, kb, unit = Fraction(kr), Fraction(kb), 1 << (bits - 8)
            codes = ycbcr_codes(UPPER[:3], matrix, bits)
            luma = Fraction(codes[0] - 16 * unit, 219 * unit)
            cb, cr = (Fraction(c - 128 * unit, 224 * unit) for c in codes[1:])
            red, blue = luma + 2 * (1 - kr) * cr, luma + 2 * (1 - kb) * cb
            green = (luma - kr * red - kb * blue) / (1 - kr - kb)
            if bits == 8:
                expected = bytes(full_codes((red, green, blue)))
                self.assertEqual(data[:3], expected, code)
            else:
                for got, exact in zip(struct.unpack(">3H", data[:6]), full_codes((red, green, blue), 16)):
                    self.assertLessEqual(abs(got - exact), 1, code)

    def test_the_default_pictures_first_row_is_red(self):
        root = document("bgra", (720, 480), pattern="gradient", number=True, frames=300)
        data = self.decode(self.render(root, "x.mkv", "--frames", "1"), "bgra")
        self.assertEqual(data[:720 * 4], bytes((0, 0, 255, 255)) * 720)

    def test_dv_formats_become_dv(self):
        for code, size, rate, pixel_format in (("dvn2", (720, 480), (30000, 1001), "yuv411p"),
                                               ("dvp2", (720, 576), (25, 1), "yuv420p"),
                                               ("dvn5", (720, 480), (30000, 1001), "yuv422p"),
                                               ("dvp5", (720, 576), (25, 1), "yuv422p"),
                                               ("dvn7", (960, 720), (60000, 1001), "yuv422p"),
                                               ("dvp7", (960, 720), (50, 1), "yuv422p"),
                                               ("dvn1", (1280, 1080), (30000, 1001), "yuv422p"),
                                               ("dvp1", (1440, 1080), (25, 1), "yuv422p")):
            root = document(code, size, rate, 2, upper=(0.5, 0.5, 0.5, 1.0))
            for output in ("x.mov", "x.mkv", "x.avi", "x.mxf"):
                path = self.render(root, output, "--video-only")
                stream = self.probe(path)
                self.assertEqual((stream["codec_name"], stream["pix_fmt"], stream["width"], stream["height"]),
                                 ("dvvideo", pixel_format, *size), output)
                data = self.decode(path, pixel_format)
                grey = ycbcr_codes([Fraction(128, 255)] * 3, 709)
                self.assertLessEqual(max(abs(sample - grey[0]) for sample in data[:size[0] * size[1]]), 1, output)
                self.assertLessEqual(max(abs(sample - 128) for sample in data[size[0] * size[1]:]), 1, output)

    def test_rgb_becomes_dv_by_the_profiles_matrix(self):
        # Decoders of DV go by the profile: 601 for standard definition, 709 for high, limited range.
        for size, rate, matrix, name in (((720, 480), (30000, 1001), 601, "smpte170m"),
                                         ((720, 576), (25, 1), 601, "bt470bg"), ((1440, 1080), (25, 1), 709, "bt709")):
            for space in ("Rec. 709 Full Range", "Rec. 2020 (10-bit)", "Rec. 601 (NTSC)"):
                root = document("bgra", size, rate, 1, upper=UPPER, lower=UPPER, space=space)
                path = self.render(root, "x.mkv", "--video-only", "--video-codec", "dv")
                stream = self.probe(path)
                self.assertEqual((stream["color_space"], stream["color_range"]), (name, "tv"), space)
                data = self.decode(path, "yuv422p")
                luma, cb, cr = ycbcr_codes([Fraction(code, 255) for code in full_codes(UPPER[:3])], matrix)
                pixels = size[0] * size[1]
                ends = (0, pixels, pixels * 3 // 2, pixels * 2)
                for plane, code in enumerate((luma, cb, cr)):
                    for sample in set(data[ends[plane]:ends[plane + 1]]):
                        self.assertLessEqual(abs(sample - code), 1, f"{size} {space} plane {plane}")


if __name__ == "__main__":
    main()

"""The C interface from Python: each function of tessel.h, and its structures."""

import ctypes
import os

OWN, BGRA, ARGB, BGRX, XRGB, RGBA, RGB, RGBA64, RGB48, GBRP_F32, GBRAP_F32 = range(11)
UYVY, YUYV, V210, YUV420P, YUV422P, YUV444P, YUV420P10, YUV422P10, YUV444P10, YUVA444P10 = range(11, 21)

OK, BAD_ARGUMENT, NOT_OPENED, NOT_POSSIBLE, FAILED, OUT_OF_MEMORY, REFUSED = range(7)


class OpenOptions(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("plugin", ctypes.c_char_p), ("allow_default", ctypes.c_int32)]


class DocumentOptions(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("template_name", ctypes.c_char_p), ("file", ctypes.c_char_p),
                ("text", ctypes.c_char_p), ("text_length", ctypes.c_size_t)]


class MovieOptions(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("video_codec", ctypes.c_char_p), ("audio_codec", ctypes.c_char_p)]


class Description(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t)] + [(name, ctypes.c_int32) for name in (
        "width", "height", "pixel_aspect_numerator", "pixel_aspect_denominator", "field_order", "rate_numerator",
        "rate_denominator")] + [
        ("frame_count", ctypes.c_int64)] + [(name, ctypes.c_int32) for name in (
            "sample_rate", "channel_count", "is_surround_51")] + [
        ("sample_count", ctypes.c_int64)] + [(name, ctypes.c_int32) for name in (
            "primaries", "transfer", "matrix", "full_range")] + [
        ("color_space", ctypes.c_char_p), ("pixel_format", ctypes.c_uint32), ("is_still", ctypes.c_int32)]


class Picture(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("width", ctypes.c_int32), ("height", ctypes.c_int32),
                ("plane_count", ctypes.c_int32), ("plane_rows", ctypes.c_int32 * 4),
                ("row_bytes", ctypes.c_size_t * 4), ("sample_type", ctypes.c_int32), ("sample_bits", ctypes.c_int32),
                ("group_pixels", ctypes.c_int32), ("group_bytes", ctypes.c_int32), ("chroma_shift_x", ctypes.c_int32),
                ("chroma_shift_y", ctypes.c_int32), ("format", ctypes.c_uint32), ("matrix", ctypes.c_int32),
                ("full_range", ctypes.c_int32), ("is_linear", ctypes.c_int32)]


LIBRARY = ctypes.CDLL(os.environ["TESSEL_LIBRARY"])
LIBRARY.tessel_error_text.restype = ctypes.c_char_p
LIBRARY.tessel_version.restype = ctypes.c_char_p
LIBRARY.tessel_warning.restype = ctypes.c_char_p
LIBRARY.tessel_warning.argtypes = [ctypes.c_void_p]
LIBRARY.tessel_open_file.argtypes = [ctypes.c_char_p, ctypes.POINTER(OpenOptions), ctypes.POINTER(ctypes.c_void_p)]
LIBRARY.tessel_open_text.argtypes = [ctypes.c_char_p, ctypes.c_size_t, ctypes.POINTER(OpenOptions),
                                     ctypes.POINTER(ctypes.c_void_p)]
LIBRARY.tessel_close.argtypes = [ctypes.c_void_p]
LIBRARY.tessel_close.restype = None
LIBRARY.tessel_describe.argtypes = [ctypes.c_void_p, ctypes.POINTER(Description)]
LIBRARY.tessel_describe_picture.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.POINTER(Picture)]
LIBRARY.tessel_frame.argtypes = [ctypes.c_void_p, ctypes.c_int64, ctypes.c_int, ctypes.POINTER(ctypes.c_void_p),
                                 ctypes.POINTER(ctypes.c_ssize_t)]
LIBRARY.tessel_samples.argtypes = [ctypes.c_void_p, ctypes.c_int64, ctypes.c_size_t, ctypes.POINTER(ctypes.c_void_p),
                                   ctypes.c_size_t]
LIBRARY.tessel_document_new.argtypes = [ctypes.POINTER(DocumentOptions), ctypes.POINTER(ctypes.c_char_p),
                                        ctypes.c_size_t, ctypes.POINTER(ctypes.c_void_p)]
LIBRARY.tessel_document_set.argtypes = [ctypes.c_void_p, ctypes.POINTER(ctypes.c_char_p), ctypes.c_size_t]
LIBRARY.tessel_document_text.restype = ctypes.c_char_p
LIBRARY.tessel_document_text.argtypes = [ctypes.c_void_p, ctypes.POINTER(ctypes.c_size_t)]
LIBRARY.tessel_document_warning.restype = ctypes.c_char_p
LIBRARY.tessel_document_warning.argtypes = [ctypes.c_void_p]
LIBRARY.tessel_document_close.argtypes = [ctypes.c_void_p]
LIBRARY.tessel_document_close.restype = None
LIBRARY.tessel_movie_open.argtypes = [ctypes.c_void_p, ctypes.POINTER(MovieOptions), ctypes.POINTER(ctypes.c_void_p)]
LIBRARY.tessel_movie_size.restype = ctypes.c_int64
LIBRARY.tessel_movie_size.argtypes = [ctypes.c_void_p]
LIBRARY.tessel_movie_read.argtypes = [ctypes.c_void_p, ctypes.c_int64, ctypes.c_void_p, ctypes.c_size_t,
                                      ctypes.POINTER(ctypes.c_size_t)]
LIBRARY.tessel_movie_close.argtypes = [ctypes.c_void_p]
LIBRARY.tessel_movie_close.restype = None


class CallFailed(Exception):
    def __init__(self, result):
        self.result = result
        super().__init__(LIBRARY.tessel_error_text().decode("utf-8"))


class RefusedCalls:
    """For test cases: calls that must fail."""

    def assert_call_fails(self, result, says, call):
        """Gives the line that the call left; it holds `says`."""
        with self.assertRaises(CallFailed) as caught:
            call()
        self.assertEqual(caught.exception.result, result, caught.exception)
        self.assertIn(says, str(caught.exception))
        self.assertNotIn("\n", str(caught.exception))
        return str(caught.exception)


def check(result):
    if result != OK:
        raise CallFailed(result)


def sized(kind):
    made = kind()
    made.size = ctypes.sizeof(kind)
    return made


class Clip:
    def __init__(self, *, file=None, text=None, plugin=None, allow_default=False):
        options = sized(OpenOptions)
        options.plugin = (plugin or os.environ["TESSEL_PLUGIN"]).encode()
        options.allow_default = int(allow_default)
        self.handle = ctypes.c_void_p()
        if file is not None:
            check(LIBRARY.tessel_open_file(os.fsencode(file), options, self.handle))
        else:
            check(LIBRARY.tessel_open_text(text, len(text), options, self.handle))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        LIBRARY.tessel_close(self.handle)
        self.handle = ctypes.c_void_p()

    def warning(self):
        return LIBRARY.tessel_warning(self.handle).decode("utf-8")

    def describe(self):
        description = sized(Description)
        check(LIBRARY.tessel_describe(self.handle, description))
        return description

    def describe_picture(self, layout):
        picture = sized(Picture)
        check(LIBRARY.tessel_describe_picture(self.handle, layout, picture))
        return picture

    def frame(self, number, layout):
        """The planes' rows, one after another without gaps, plane after plane."""
        picture = self.describe_picture(layout)
        planes = [ctypes.create_string_buffer(picture.row_bytes[plane] * picture.plane_rows[plane])
                  for plane in range(picture.plane_count)]
        pointers = (ctypes.c_void_p * 4)(*[ctypes.addressof(plane) for plane in planes])
        strides = (ctypes.c_ssize_t * 4)(*picture.row_bytes)
        check(LIBRARY.tessel_frame(self.handle, number, layout, pointers, strides))
        return b"".join(plane.raw for plane in planes)

    def samples(self, start, count):
        """A list of channels, each the bytes of its 32-bit floats."""
        channels = [ctypes.create_string_buffer(4 * count) for _ in range(self.describe().channel_count)]
        pointers = (ctypes.c_void_p * max(1, len(channels)))(*[ctypes.addressof(channel) for channel in channels])
        check(LIBRARY.tessel_samples(self.handle, start, count, pointers, len(channels)))
        return [channel.raw for channel in channels]


def texts(lines):
    return (ctypes.c_char_p * max(1, len(lines)))(*[os.fsencode(line) for line in lines])


class Document:
    """A new document. Options are those of DocumentOptions; settings are texts, or bytes as they are."""

    def __init__(self, *settings, template=None, file=None, text=None):
        options = sized(DocumentOptions)
        options.template_name = template and template.encode()
        options.file = file and os.fsencode(file)
        options.text = text
        options.text_length = len(text or b"")
        self.handle = ctypes.c_void_p()
        check(LIBRARY.tessel_document_new(options, texts(settings), len(settings), self.handle))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        LIBRARY.tessel_document_close(self.handle)
        self.handle = ctypes.c_void_p()

    def set(self, *settings):
        check(LIBRARY.tessel_document_set(self.handle, texts(settings), len(settings)))

    def text(self):
        length = ctypes.c_size_t()
        text = LIBRARY.tessel_document_text(self.handle, length)
        assert len(text) == length.value
        return text.decode("utf-8")

    def warning(self):
        return LIBRARY.tessel_document_warning(self.handle).decode("utf-8")


class Movie:
    """A clip as a movie."""

    def __init__(self, clip, video_codec=None, audio_codec=None):
        options = sized(MovieOptions)
        options.video_codec = video_codec and video_codec.encode()
        options.audio_codec = audio_codec and audio_codec.encode()
        self.handle = ctypes.c_void_p()
        check(LIBRARY.tessel_movie_open(clip.handle, options, self.handle))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        LIBRARY.tessel_movie_close(self.handle)
        self.handle = ctypes.c_void_p()

    def size(self):
        return LIBRARY.tessel_movie_size(self.handle)

    def read(self, offset, count):
        buffer = ctypes.create_string_buffer(max(1, count))
        got = ctypes.c_size_t()
        check(LIBRARY.tessel_movie_read(self.handle, offset, buffer, count, got))
        return buffer.raw[:got.value]

"""Asks a built plug-in for sound through its entry point alone: selectors 39, 25 and 9."""

import ctypes
import json
import os
import struct
import tempfile
from array import array

import model

AUDIO = 25
OPEN_FILE = 39
DELETE_INSTANCE = 9

POISON = array("f", bytes.fromhex("cccccccc"))
GUARD = 16


def document(clip):
    """A data file with the clip's sound; its pictures do not matter."""
    color = {"mAlphaPart": 1.0, "mRedPart": 1.0, "mGreenPart": 0.5, "mBluePart": 0.25}
    tone_format, identifier_format = model.PATTERNS[clip.pattern][:2]
    return json.dumps({
        "mVersion": 1, "mPixelFormat": 0x61726762, "mFrameWidth": 64, "mFrameHeight": 48,
        "mFramePAR": {"numerator": 1, "denominator": 1}, "mFieldType": 0, "mRenderFormat": 1,
        "mUpperFieldColor": color, "mLowerFieldColor": color,
        "mTopGradiantColorStart": color, "mTopGradiantColorEnd": color,
        "mBottomGradiantColorStart": color, "mBottomGradiantColorEnd": color,
        "mVideoDuration": {"ticks": 15240960000000}, "mVideoFrameRate": {"ticksperframe": 8467200000},
        "mSampleRate": float(clip.sample_rate), "mNumChannels": clip.channel_count, "mKsAudioChannelType": 2,
        "mToneFormat": tone_format, "mIdentifierFormat": identifier_format,
        "mSteadyToneFrequency": clip.frequency, "mSteadyToneAmplitude": clip.amplitude,
    })


class Plugin:
    def __init__(self, library):
        self.entry = ctypes.CDLL(library).xImportEntry
        self.entry.restype = ctypes.c_int32
        self.entry.argtypes = [ctypes.c_int32, ctypes.c_void_p, ctypes.c_void_p, ctypes.c_void_p]
        # These selectors need none of the host's services.
        self.standard_parameters = ctypes.create_string_buffer(20)

    def request(self, selector, param2):
        return self.entry(selector, ctypes.addressof(self.standard_parameters), None, param2)


class OpenClip:
    """An instance with a clip's settings; a context manager, because the plug-in owns memory for it."""

    def __init__(self, plugin, clip):
        self.plugin = plugin
        self.clip = clip

    def __enter__(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "sound.tessel")
            with open(path, "w", encoding="utf-8") as file:
                file.write(document(self.clip))
            text = ctypes.create_string_buffer(path.encode("utf-16-le") + b"\0\0")
            record = ctypes.create_string_buffer(44)
            struct.pack_into("<Q", record, 12, ctypes.addressof(text))
            result = self.plugin.request(OPEN_FILE, ctypes.addressof(record))
        self.instance = struct.unpack_from("<Q", record, 36)[0]
        if result != 0 or self.instance == 0:
            raise RuntimeError(f"opening a data file answered {result}")
        return self

    def __exit__(self, *_):
        self.plugin.request(DELETE_INSTANCE, self.instance)

    def render(self, position, count):
        """A list of arrays, one for each of the host's buffers: six at least. Raises where the plug-in wrote
        outside of them."""
        channel_count = max(6, self.clip.channel_count)
        storage = [array("f", POISON * (count + 2 * GUARD)) for _ in range(channel_count)]
        pointers = (ctypes.c_void_p * channel_count)(
            *(samples.buffer_info()[0] + 4 * GUARD for samples in storage))
        record = ctypes.create_string_buffer(28)
        struct.pack_into("<qIQQ", record, 0, position, count, ctypes.addressof(pointers), self.instance)
        result = self.plugin.request(AUDIO, ctypes.addressof(record))
        if result != 0:
            raise RuntimeError(f"the request for sound answered {result}")
        guard = (POISON * GUARD).tobytes()
        for samples in storage:
            if samples[:GUARD].tobytes() != guard or samples[GUARD + count:].tobytes() != guard:
                raise RuntimeError("a sample was written outside its buffer")
        return [samples[GUARD:GUARD + count] for samples in storage]

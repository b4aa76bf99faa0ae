"""Every fault of `tessel damage`: with which clip it is put in, into which movies, and what has to be named.

What stands in a row's `expect` is derived from the fault's own description and the clip's settings, never from what
`tessel verify` printed.
"""

import math

from cells import Frames, Modulo, Near, Text
from carriers import PICTURE, SOUND
from clips import LEVEL, RATE, TIMED_FRAMES

CODES = 219  # 8-bit codes from black to white


class Fault:
    def __init__(self, text, clip, expect, carriers=PICTURE, inside=None, without=(), also=None, notes=()):
        """@param text     as `--fault` takes it
        @param expect      id -> Value or None: what stands at the report's root
        @param inside      id -> ids of its consequences
        @param without     carriers in which the fault cannot be: a name, or (name, reason)
        @param also        more `--fault` arguments
        @param notes       what notes of the report say
        """
        self.text = text
        self.id = text.split("=")[0]
        self.clip = clip
        self.expect = expect
        self.inside = inside or {}
        self.carriers = [carrier for carrier in carriers if carrier.name not in without]
        self.also = also or []
        self.notes = notes


def decibels(factor):
    return 20 * math.log10(factor)


def one(text, clip, value=None, **more):
    """A fault that is found under its own name."""
    return Fault(text, clip, {text.split("=")[0]: value}, **more)


FAULTS = [
    # A file's own words.
    Fault("container.size=512:288", "gradient", {"geometry.scaled": Near(4 / 3)},
          inside={"geometry.scaled": ["container.size"]}),
    one("container.rate=25:1", "stereo"),
    one("container.constant-rate=10", "gradient", Near(1000 / RATE, 0.1), without=("mpeg2",)),  # MXF counts frames
    one("container.aspect=4:3", "gradient", Text("4/3")),
    one("container.fields=upper", "gradient", Text("upper field first")),
    one("container.fields=progressive", "fields", Text("progressive")),
    one("container.primaries=9", "gradient"),
    one("container.transfer=16", "gradient"),
    one("container.matrix=9", "gradient"),
    one("container.range=full", "gradient", Text("full")),
    # Of 4:2:0; 4:2:2 has no rows between which chroma could lie.
    one("container.siting=topleft", "planar"),
    one("container.duration=1", "stereo"),
    one("container.start=10", "stereo", Near(10_000 / RATE, 1)),
    one("container.channels=1", "stereo", Near(1), carriers=SOUND),
    one("container.channels=3", "stereo", Near(3), carriers=SOUND),
    # FLAC and AAC have one order for six channels, and say it.
    one("container.layout=none", "surround", Text("not said"), carriers=SOUND, without=("flac", "aac")),
    one("container.sample-rate=44100", "stereo", Near(44100), carriers=SOUND),
    one("container.depth=pcm16", "stereo", Near(16), carriers=SOUND, without=("flac", "aac")),
    one("container.alpha", "alpha"),
    # The order of pictures.
    one("order.missing=80", "stereo", Frames(80, 80, Near(1))),
    one("order.repeated=80", "stereo", Frames(80, 80, Near(1))),
    one("order.inserted=80", "stereo", Near(1)),
    one("order.swapped=80", "stereo", Frames(80, 81)),
    one("order.frozen=6:80", "stereo", Frames(81, 86, Near(6))),
    one("order.reversed", "stereo"),
    one("order.cadence=3:2", "stereo", Near(2.5)),
    one("order.head=5", "stereo", Frames(0, 4, Near(5))),
    one("order.tail=5", "stereo", Frames(TIMED_FRAMES - 5, TIMED_FRAMES - 1, Near(5))),
    one("order.unreadable=80", "stereo", Near(1)),
    # Where the picture is.
    one("geometry.scaled=0.5", "gradient", Near(0.5)),
    one("geometry.cropped=16", "gradient", Near(16)),
    one("geometry.cropped=8:0:4:0", "gradient", Near(8)),
    one("geometry.padded=16", "gradient", Near(16)),
    one("geometry.shifted=2.5", "gradient", Near(2.5)),
    one("geometry.shifted=0:-3", "gradient", Near(-3)),
    one("geometry.flipped=left-right", "gradient", Text("horizontal")),
    one("geometry.flipped=top-bottom", "gradient", Text("vertical")),
    one("geometry.rotated=90", "gradient", Near(90)),
    one("geometry.rotated=180", "gradient", Near(180)),
    one("geometry.rotated=270", "gradient", Near(270)),
    # Fields.
    one("fields.swapped", "fields"),
    one("fields.shifted", "fields"),
    one("fields.blended", "fields"),
    one("fields.bobbed", "fields"),
    one("fields.lost=lower", "fields"),
    one("fields.lost=upper", "fields-lower"),
    one("fields.progressive=upper", "fields"),
    one("fields.interlaced=upper", "gradient"),
    # Colours. A factor on R'G'B' is one on luma and chroma; an amount is one on luma alone.
    one("color.matrix=601", "gradient", Text("BT.601")),
    one("color.matrix=2020", "gradient", Text("BT.2020")),
    # It moves these codes by 0.8 of 255, which is less than the tolerance of a lossy codec.
    one("color.matrix=240", "gradient", Text("SMPTE 240M")),
    one("color.range=squeezed", "gradient", Text("squeezed")),
    one("color.range=expanded", "gradient", Text("expanded")),
    # R'G'B' in integer samples holds nothing beyond black and white anyway.
    one("color.clipped=0:1", "chart", without=("ffv1", "raw")),
    one("color.channels", "gradient", Text("B'G'R'")),
    one("color.channels", "rgb", Text("B'G'R'")),
    one("color.chroma-swapped", "gradient"),
    one("color.transfer=twice", "gradient"),
    one("color.transfer=linear", "gradient"),
    one("color.transfer=gamma2.2", "rgb"),
    one("color.gain=0.9", "gradient", Near(0.9)),
    one("color.gain=1.05", "rgb", Near(1.05)),
    one("color.offset=0.05", "gradient", Near(0.05 * CODES)),
    one("color.saturation=0.8", "gradient", Near(0.8)),
    one("color.hue=10", "gradient", Near(10)),
    one("color.depth=6", "gradient", Near(6)),
    one("color.subsampling=420", "chart", Text("4:2:0")),
    one("color.subsampling=411", "chart", Text("4:1:1")),
    one("color.siting=0.5", "chart", Near(0.5)),
    one("color.alpha=opaque", "alpha"),
    one("color.alpha=premultiplied", "alpha"),
    one("color.alpha=opaque", "alpha-float"),
    # Sound. Channels of files stand in the order L R C LFE Ls Rs.
    one("audio.order=0:1", "stereo", carriers=SOUND),
    one("audio.order=2:3", "surround", carriers=SOUND),
    one("audio.order=0:4", "surround", carriers=SOUND),
    one("audio.polarity=0", "stereo", carriers=SOUND),
    one("audio.polarity=3", "surround", carriers=SOUND),
    one("audio.gain=-6", "stereo", Near(-6), carriers=SOUND),
    one("audio.gain=3", "tone", Near(3), carriers=SOUND),
    one("audio.silence=0", "stereo", carriers=SOUND),
    one("audio.silence=2", "surround", carriers=SOUND),
    # Half of the tone's peak, which is -18.06 dBFS.
    one("audio.clipping=-24", "tone", Text("-24", "-23.9"), carriers=SOUND),
    one("audio.dc=0.01", "tone", Near(decibels(0.01), 0.001), carriers=SOUND),
    one("audio.noise=-60", "tone", Near(-60), carriers=SOUND, without=("aac",)),  # its own noise may be as loud
    one("audio.noise=-40", "tone", Near(-40), carriers=SOUND),
    one("audio.harmonics=1", "tone", Near(decibels(0.01), 0.2), carriers=SOUND),
    one("audio.pitch=4", "tone", Near(1.04), carriers=SOUND),
    one("audio.drift=100", "tone", Near(100), carriers=SOUND),
    # A tone of 1000 Hz repeats after 48 samples: ten of its periods leave no trace.
    one("audio.lost=100:4", "tone", Modulo(100, 48), carriers=SOUND),
    Fault("audio.lost=480:4", "tone", {}, SOUND, notes=["repeats every 48"]),
    one("audio.lost=100:4.2", "stereo", Near(100), carriers=SOUND),
    one("audio.inserted=480:4", "stereo", Near(480), carriers=SOUND),
    # 1000 samples are no whole periods of the tone that sounds then.
    one("audio.inserted=1000:5", "surround", Near(1000), carriers=SOUND),
    one("audio.dropout=480:4", "tone", carriers=SOUND),
    one("audio.depth=8", "tone", Near(8), carriers=SOUND),
    one("audio.downmix", "surround", carriers=SOUND),
    one("audio.downmix", "stereo", carriers=SOUND),
    one("audio.upmix", "stereo", carriers=SOUND),
    one("audio.upmix", "mono", carriers=SOUND),
    one("audio.segments=0.8:1.6:0.6", "surround", carriers=SOUND),
    one("sync.offset=40", "stereo", Near(40), carriers=SOUND),
    one("sync.offset=-100", "surround", Near(-100), carriers=SOUND),
    # One cause: the sound's clock. Beyond what clocks do it is the pitch.
    Fault("sync.drift=1000", "stereo", {"audio.drift": Near(1000)}, SOUND, {"audio.drift": ["sync.drift"]}),
]

assert LEVEL == 0.125  # the levels above count from it

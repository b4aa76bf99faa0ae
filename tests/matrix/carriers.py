"""What movies of the matrix are written as, and what each of them has no place for."""


class Carrier:
    """A codec in its container.

    cannot_say: checks that the file has no place for; a fault in them is lost on the way, and nothing is found.
    cannot_show: the same for what the codec's own losses hide.
    rates: None, or those the container has.
    """

    def __init__(self, name, extension, options, cannot_say=(), cannot_show=(), rates=None, alpha=False):
        self.name = name
        self.extension = extension
        self.options = list(options)
        self.cannot_say = set(cannot_say)
        self.cannot_show = set(cannot_show)
        self.rates = rates
        self.alpha = alpha

    def carries(self, check):
        return check not in self.cannot_say and check not in self.cannot_show


ALPHA = ("container.alpha", "color.alpha")
# Codes that were cut down to few bits come back as fine as ever from a codec that works on their spectrum.
DEPTH = ("color.depth",)
MXF_RATES = {"24/1", "24000/1001", "25/1", "30/1", "30000/1001", "50/1", "60/1", "60000/1001"}

PICTURE = [
    Carrier("ffv1", ".mkv", ("--video-codec", "ffv1"), alpha=True),
    # MOV has no place for the range of v210, nor for where chroma is.
    Carrier("v210", ".mov", ("--video-codec", "v210"), ("container.range", "container.siting", *ALPHA)),
    Carrier("prores", ".mov", ("--video-codec", "prores"), ("container.range", "container.siting"), DEPTH, alpha=True),
    # 8-bit 4:2:0: what thinned the chroma before has left no trace.
    Carrier("h264", ".mp4", ("--video-codec", "h264", "--quality", "23"), ALPHA, (*DEPTH, "color.subsampling")),
    # MPEG-2 is limited by definition, has square pixels or the shape of the whole picture, and starts at zero.
    # FFmpeg's MXF writer ends the sound with the picture.
    Carrier("mpeg2", ".mxf", ("--video-codec", "mpeg2", "--quality", "2"),
            ("container.range", "container.aspect", "container.siting", "container.start", "container.layout",
             "container.duration", *ALPHA),
            DEPTH, rates=MXF_RATES),
    Carrier("raw", ".nut", ("--video-codec", "raw"),
            ("container.primaries", "container.transfer", "container.matrix", "container.range", "container.fields",
             "container.siting", "container.layout"), alpha=True),
]

SOUND = [
    Carrier("pcm", ".mov", ("--video-codec", "v210", "--audio-codec", "pcm24")),
    Carrier("flac", ".mkv", ("--video-codec", "ffv1", "--audio-codec", "flac")),
    # AAC keeps spectra, not samples.
    Carrier("aac", ".mp4", ("--video-codec", "h264", "--quality", "23", "--audio-codec", "aac"), (),
            ("audio.depth", "container.depth")),
]

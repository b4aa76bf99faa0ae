"""Exact test signals for tests of video software.

    import tessel

    clip = tessel.Clip("bars.tessel")
    clip.description.rate            # Fraction(30000, 1001)
    clip.frame(0)                    # the pixels, as a numpy array
    clip.samples(0, 48000)           # float32, one row for each channel

    small = tessel.Clip.new(size=(640, 360), rate=25, duration="2s", tone=(440, -20))
    small.save("small.tessel")

    report = tessel.verify(clip, "returned.mp4")
    assert report.ok, report
"""

from ._clip import LAYOUTS, Clip, Description, FieldOrder, PackedLayout, PictureDescription, PlanarLayout
from ._errors import ClipError, Error, OpenError, SettingError, VerifyError
from ._same_signal import assert_same_signal
from ._tessel import version as __version__
from ._verify import Finding, Report, verify

__all__ = [
    "LAYOUTS",
    "Clip",
    "ClipError",
    "Description",
    "Error",
    "FieldOrder",
    "Finding",
    "OpenError",
    "PackedLayout",
    "PictureDescription",
    "PlanarLayout",
    "Report",
    "SettingError",
    "VerifyError",
    "assert_same_signal",
    "verify",
]

for _error in (ClipError, Error, OpenError, SettingError, VerifyError):
    _error.__module__ = __name__  # as people import it
del _error

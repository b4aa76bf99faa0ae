"""Clips and their descriptions."""

from __future__ import annotations

import dataclasses
import datetime
import enum
import json
import operator
import os
import pathlib
from collections.abc import Iterable, Mapping
from fractions import Fraction
from typing import Any, Literal, Union, overload

import numpy as np
import numpy.typing as npt

from . import _tessel
from ._errors import Error
from ._settings import assignments

LAYOUTS: tuple[str, ...] = _tessel.LAYOUTS
"""The names that `layout=` takes; those of tessel.h in small letters."""

PackedLayout = Literal["own", "bgra", "argb", "bgrx", "xrgb", "rgba", "rgb", "rgba64", "rgb48", "uyvy", "yuyv", "v210"]
"""Layouts of one plane."""

PlanarLayout = Literal["gbrp_f32", "gbrap_f32", "yuv420p", "yuv422p", "yuv444p", "yuv420p10", "yuv422p10", "yuv444p10",
                       "yuva444p10"]
"""Layouts of several planes."""

Plane = npt.NDArray[Any]
"""uint8, uint16, float32, or for v210 uint32."""

StrPath = Union[str, "os.PathLike[str]"]


class FieldOrder(enum.IntEnum):
    """Whether a picture is two fields, and which of them comes first."""

    PROGRESSIVE = 0
    UPPER_FIRST = 1
    LOWER_FIRST = 2


@dataclasses.dataclass(frozen=True)
class Description:
    """What a clip is."""

    width: int  #: pixels; 0 or less where the clip has no picture
    height: int  #: pixels
    pixel_aspect: Fraction | None  #: width to height of a pixel; None where it is not known
    field_order: FieldOrder
    rate: Fraction | None  #: frames per second; None where the clip has no usable rate
    frame_count: int
    sample_rate: int  #: samples per second and channel; 0 where the clip gives no sound
    channel_count: int
    is_surround_51: bool  #: six channels are L R C LFE Ls Rs
    sample_count: int  #: samples of a channel from the first frame's start to the last one's end
    primaries: int  #: this and the next two are codes of ITU-T H.273; 2 is "unspecified"
    transfer: int
    matrix: int
    full_range: bool
    color_space: str  #: a name to read
    pixel_format: str  #: the host's four characters; "" where the document says none
    is_still: bool  #: every frame shows the same picture

    @property
    def duration(self) -> Fraction | None:
        """Seconds, exact; None where the clip has no usable rate."""
        return self.frame_count / self.rate if self.rate else None


@dataclasses.dataclass(frozen=True)
class PictureDescription:
    """What the samples of a picture in some layout are. A Description says what the clip claims to be."""

    format: str  #: the host's four characters, for the layout "own"; else ""
    sample_bits: int  #: 8, 10, 16, or 32 for floats
    matrix: int  #: H.273 code of the matrix that made Y'CbCr samples; 0 for R'G'B'
    full_range: bool
    is_linear: bool  #: linear light
    chroma_shift: tuple[int, int]  #: log2 of how much smaller chroma planes are, across and down


def _fraction(numerator: int, denominator: int) -> Fraction | None:
    return Fraction(numerator, denominator) if numerator else None


def _bytes_of_path(path: StrPath, what: str) -> bytes:
    """A path as the C interface takes it."""
    given = os.fspath(path) if isinstance(path, os.PathLike) else path
    if not isinstance(given, str):
        raise TypeError(f"{what} must be a str or a path of str, not {type(given).__name__}")
    if "\0" in given:
        raise ValueError(f"{what} has a null character: {given!r}")
    return os.fsencode(given)


def _described(facts: dict[str, Any]) -> Description:
    facts["pixel_aspect"] = _fraction(*facts["pixel_aspect"])
    facts["rate"] = _fraction(*facts["rate"])
    facts["field_order"] = FieldOrder(facts["field_order"])
    return Description(**facts)


class Clip:
    """A `.tessel` document, open.

    path:          the document. It is read once and may be removed afterwards.
    plugin:        the importer plug-in's file or folder. None: where the variable KESTREL_PLUGIN_PATH says, else the
                   installed one
    allow_default: take a document that cannot be read as the plug-in's default clip; `warning` then says why

    Raises OpenError for a document that cannot be read.

    A clip that has a file is a path, too: `subprocess.run(["encoder", clip])` gives the document's name. All methods may
    be called from several threads at once; other threads run on while pictures and sound are made.
    """

    _clip: _tessel.Clip
    _path: pathlib.Path | None
    _text: bytes | None  # the document, where it was made in memory
    _remarks: str  # on the settings of a new clip

    def __init__(self, path: StrPath, *, plugin: StrPath | None = None, allow_default: bool = False) -> None:
        self._clip = _tessel.open_file(_bytes_of_path(path, "path"), _plugin_place(plugin), bool(allow_default))
        self._path = pathlib.Path(path)
        self._text = None
        self._remarks = ""
        self._description = _described(self._clip.describe())

    @classmethod
    def from_document(cls, document: str | bytes | Mapping[str, Any], *, plugin: StrPath | None = None,
                      allow_default: bool = False) -> Clip:
        """Opens a document that is in memory: its text, or its keys and values.

        Raises OpenError for a document that cannot be read.
        """
        if isinstance(document, Mapping):
            document = json.dumps(dict(document))
        text = document.encode() if isinstance(document, str) else document
        if not isinstance(text, bytes):
            raise TypeError(f"document must be a str, bytes or a mapping, not {type(document).__name__}")
        return cls._in_memory(text, "", plugin, allow_default)

    @classmethod
    def new(cls, *, template: str | None = None, base: StrPath | Clip | None = None,
            size: tuple[int, int] | str | None = None,
            rate: Fraction | float | str | None = None,
            duration: int | str | datetime.timedelta | None = None,
            pixel_format: str | None = None,
            pixel_aspect: Fraction | int | str | None = None,
            fields: FieldOrder | str | None = None,
            color_space: str | None = None,
            picture: str | None = None,
            colors: str | Iterable[str | Iterable[float]] | None = None,
            swatches: StrPath | Iterable[StrPath] | None = None,
            number: bool | None = None,
            tone: tuple[float, float] | str | None = None,
            ident: str | None = None,
            channels: int | str | None = None,
            sample_rate: float | None = None,
            keys: Mapping[str, Any] | None = None,
            plugin: StrPath | None = None) -> Clip:
        """Makes a clip as `tessel new` does. `tessel new --help` explains the settings and names their words.

        template: what to begin with, as `tessel list templates` names it
        base:     another document or clip to begin with, instead
        size:     width and height
        rate:     frames per second: 25, 29.97, Fraction(30000, 1001)
        duration: a number of frames, "10s", or a timedelta
        colors:   "red/blue", or of each its name or its red, green, blue and perhaps alpha, where 1 is white
        swatches: the chart's files, or "bars"
        number:   whether the frame number is printed
        tone:     hertz and dBFS, or "silence"
        keys:     the document's own keys, as in {"mFramePAR.numerator": 10}

        The clip is in memory; `save` writes its document. Raises SettingError for an unknown setting, a wrong value and a
        clip that could not be played, OpenError for a base that cannot be read.
        """
        if template is not None and base is not None:
            raise ValueError("a clip begins with a template or with a base, not with both")
        if template is not None and not isinstance(template, str):
            raise TypeError(f"template must be a str, not {type(template).__name__}")
        settings = {"size": size, "rate": rate, "duration": duration, "pixel_format": pixel_format,
                    "pixel_aspect": pixel_aspect, "fields": fields, "color_space": color_space, "picture": picture,
                    "colors": colors, "swatches": swatches, "number": number, "tone": tone, "ident": ident,
                    "channels": channels, "sample_rate": sample_rate}
        in_memory = base._text if isinstance(base, Clip) else None
        text, remarks = _tessel.new_document(
            None if template is None else template.encode(),
            None if base is None or in_memory is not None else _bytes_of_path(base, "base"),
            in_memory, assignments(settings, keys or {}))
        return cls._in_memory(text, remarks, plugin, allow_default=False)

    @classmethod
    def _in_memory(cls, text: bytes, remarks: str, plugin: StrPath | None, allow_default: bool) -> Clip:
        clip = cls.__new__(cls)
        clip._clip = _tessel.open_text(text, _plugin_place(plugin), bool(allow_default))
        clip._path = None
        clip._text = text
        clip._remarks = remarks
        clip._description = _described(clip._clip.describe())
        return clip

    @property
    def path(self) -> pathlib.Path | None:
        """The document's file, as it was given; None for a document in memory that was not saved."""
        return self._path

    def __fspath__(self) -> str:
        if self._path is None:
            raise Error("the clip is in memory and has no file: save it first")
        return os.fspath(self._path)

    def save(self, path: StrPath) -> pathlib.Path:
        """Writes the document of a clip that was made in memory. From then on `path` is its file."""
        if self._text is None:
            raise Error(f"{self._path}: the clip is in a file already")
        file = pathlib.Path(path)
        file.write_bytes(self._text)
        self._path = file
        return file

    @property
    def description(self) -> Description:
        """What the clip is."""
        return self._description

    @property
    def warning(self) -> str:
        """What was remarked on the settings or when the clip was opened, one line each; "" where all is well."""
        return "\n".join(filter(None, (self._remarks, self._clip.warning)))

    def describe_picture(self, layout: str = "own") -> PictureDescription:
        """What the samples of `frame` in that layout are. The first call makes a frame.

        Raises ValueError for an unknown layout, ClipError for a clip without pictures.
        """
        return PictureDescription(**self._clip.describe_picture(_name(layout)))

    @overload
    def frame(self, number: int, layout: PackedLayout = "own", *, out: Plane | None = None) -> Plane: ...

    @overload
    def frame(self, number: int, layout: PlanarLayout, *,
              out: tuple[Plane, ...] | list[Plane] | None = None) -> tuple[Plane, ...]: ...

    @overload
    def frame(self, number: int, layout: str, *, out: Any = None) -> Any: ...

    def frame(self, number: int, layout: str = "own", *, out: Any = None) -> Any:
        """The pixels of a frame, top row first, as `tessel render` writes them.

        number: 0 for the first frame
        layout: "own" for the plug-in's own samples, whatever they are (see `describe_picture`), or one of LAYOUTS
        out:    arrays to write into instead of new ones; their rows may be apart, or run upwards as in `array[::-1]`

        A layout of one plane gives an array of rows, columns and samples. 4:2:2 pairs as in UYVY have a column for two
        pixels; v210 gives the 32-bit words of its rows. Layouts of several planes give a tuple of arrays.

        Raises IndexError for a frame beyond the clip, ValueError for an unknown layout or an array that does not
        fit, ClipError where the frame cannot be made.
        """
        index = operator.index(number)
        count = self._description.frame_count
        if not 0 <= index < count:
            raise IndexError(f"the clip has {count} frames, from 0 on; there is no frame {index}")
        return self._clip.frame(index, _name(layout), out)

    def samples(self, start: int, count: int) -> npt.NDArray[np.float32]:
        """Sound: one row of floats for each channel, full scale is 1. Channels come as L R C LFE Ls Rs.

        Raises IndexError for samples beyond the clip, ClipError for a clip without sound.
        """
        first, length = operator.index(start), operator.index(count)
        facts = self._description
        if facts.sample_rate != 0 and not (0 <= first and 0 <= length and first + length <= facts.sample_count):
            raise IndexError(f"the clip has {facts.sample_count} samples, from 0 on; "
                             f"there are no {length} samples from {first} on")
        return self._clip.samples(first, length, facts.channel_count)

    def __repr__(self) -> str:
        facts = self._description
        size = f"{facts.width}x{facts.height}" if facts.width > 0 and facts.height > 0 else "no picture"
        return f"<tessel.Clip {self._path or 'in memory'}: {size}, {facts.rate} frames/s, {facts.frame_count} frames>"


def _plugin_place(plugin: StrPath | None) -> bytes | None:
    return None if plugin is None else _bytes_of_path(plugin, "plugin")


def _name(layout: str) -> str:
    if not isinstance(layout, str):
        raise TypeError(f"layout must be a str, not {type(layout).__name__}")
    return layout

"""A new clip's settings, from Python's values to the words that `tessel new` takes."""

from __future__ import annotations

import datetime
import json
import os
from collections.abc import Iterable, Mapping
from fractions import Fraction
from typing import Any

from ._errors import SettingError


def _number(value: Any) -> str:
    """A number as people type it: 25, 29.97, 30000/1001."""
    if isinstance(value, Fraction) and value.denominator != 1:
        return f"{value.numerator}/{value.denominator}"
    return str(value)


def _parts(value: Any, wanted: str) -> list[Any]:
    try:
        return list(value)
    except TypeError:
        raise TypeError(f"{wanted}, not {value!r}") from None


def _size(value: Any) -> str:
    if isinstance(value, str):
        return value
    wanted = "size must be a width and a height as in (1920, 1080)"
    lengths = _parts(value, wanted)
    if len(lengths) != 2:
        raise TypeError(f"{wanted}, not {value!r}")
    return "x".join(str(length) for length in lengths)


def _duration(value: Any) -> str:
    if isinstance(value, datetime.timedelta):
        return f"{value.total_seconds()!r}s"
    if isinstance(value, float):
        raise TypeError(f"duration is a number of frames, a text as in \"{value}s\", or a timedelta; not {value}")
    return value if isinstance(value, str) else f"{value}f"


_FIELDS = ("progressive", "upper", "lower")  # in the order of FieldOrder


def _fields(value: Any) -> str:
    if isinstance(value, str):
        return value
    wanted = "must be a FieldOrder, or " + ", ".join(f'"{word}"' for word in _FIELDS)
    if not isinstance(value, int):
        raise TypeError(f"fields {wanted}, not {value!r}")
    if not 0 <= value < len(_FIELDS):
        raise SettingError(f"fields: {wanted}, not {value}")
    return _FIELDS[value]


def _colors(value: Any) -> str:
    if isinstance(value, str):
        return value
    wanted = 'colors must be names or numbers as in ["red", (0, 0.5, 1)]'
    return "/".join(color if isinstance(color, str) else ",".join(_number(part) for part in _parts(color, wanted))
                    for color in _parts(value, wanted))


def _tone(value: Any) -> str:
    wanted = "tone must be hertz and dBFS as in (1000, -18)"
    return value if isinstance(value, str) else ":".join(_number(part) for part in _parts(value, wanted))


def _swatches(value: Any) -> list[str]:
    wanted = 'swatches must be paths of files, or "bars"'
    several = [value] if isinstance(value, (str, os.PathLike)) else _parts(value, wanted)
    for file in several:
        if not isinstance(file, (str, os.PathLike)):
            raise TypeError(f"{wanted}, not {value!r}")
    return [str(os.fspath(file)) for file in several]


def _switch(value: Any) -> str:
    if isinstance(value, str):
        return value  # "on" or "off", as `tessel new` takes them
    return "on" if value else "off"


_AS_TYPED = {"size": _size, "duration": _duration, "fields": _fields, "colors": _colors, "tone": _tone,
             "number": _switch}


def assignments(settings: Mapping[str, Any], keys: Mapping[str, Any]) -> list[bytes]:
    """ "NAME=VALUE" for each setting that is not None, and for each of the document's keys."""

    def made() -> Iterable[str]:
        for name, value in settings.items():
            if value is None:
                continue
            if name == "swatches":
                yield from (f"swatches={file}" for file in _swatches(value))
            else:
                yield f"{name.replace('_', '-')}={_AS_TYPED.get(name, _number)(value)}"
        for key, value in keys.items():
            yield f"{key}={json.dumps(value)}"

    texts = list(made())
    for text in texts:
        if "\0" in text:
            raise ValueError(f"a setting has a null character: {text!r}")
    return [os.fsencode(text) for text in texts]

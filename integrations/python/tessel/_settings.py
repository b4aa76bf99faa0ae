"""A new clip's settings, from Python's values to the words that `tessel new` takes."""

from __future__ import annotations

import datetime
import json
import os
from collections.abc import Iterable, Mapping
from fractions import Fraction
from typing import Any


def _number(value: Any) -> str:
    """A number as people type it: 25, 29.97, 30000/1001."""
    if isinstance(value, Fraction) and value.denominator != 1:
        return f"{value.numerator}/{value.denominator}"
    return str(value)


def _size(value: Any) -> str:
    return value if isinstance(value, str) else "x".join(str(length) for length in value)


def _duration(value: Any) -> str:
    if isinstance(value, datetime.timedelta):
        return f"{value.total_seconds()!r}s"
    if isinstance(value, float):
        raise TypeError(f"duration is a number of frames, a text as in \"{value}s\", or a timedelta; not {value}")
    return value if isinstance(value, str) else f"{value}f"


def _fields(value: Any) -> str:
    return value if isinstance(value, str) else ("progressive", "upper", "lower")[value]


def _colors(value: Any) -> str:
    if isinstance(value, str):
        return value
    return "/".join(color if isinstance(color, str) else ",".join(_number(part) for part in color) for color in value)


def _tone(value: Any) -> str:
    return value if isinstance(value, str) else ":".join(_number(part) for part in value)


def _swatches(value: Any) -> list[str]:
    several = [value] if isinstance(value, (str, os.PathLike)) else value
    return [str(os.fspath(file)) for file in several]


def _switch(value: Any) -> str:
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

"""The assertion for tests of software that takes movies in and gives movies out."""

from __future__ import annotations

import os
from collections.abc import Iterable
from typing import Any, Union

from ._clip import Clip, StrPath
from ._verify import Report, verify


def _compared_signal(report: Report) -> bool:
    """Whether pictures or sound were judged, not only what the container says of them."""
    pictures = report.data["alignment"]["matched"] > 0
    return any(name.startswith(("audio.", "sync.")) or (pictures and not name.startswith("container."))
               for name in report.as_expected)


def assert_same_signal(movie: StrPath, clip: Union[StrPath, Clip], *, require: Iterable[str] = (),
                       **options: Any) -> Report:
    """Fails unless the movie shows the clip, and all that the two can show is as expected.

    It fails, too, where no picture and no sound was compared.

    require: ids of `tessel verify --list` that must have been checked; fails where clip or movie cannot show them
    options: those of `tessel.verify`

    Gives the report. Raises AssertionError, and VerifyError where the comparison could not be made.
    """
    __tracebackhide__ = True  # pytest shows the caller's line
    if isinstance(require, str):
        raise TypeError(f"require must be several ids, as in require=[\"{require}\"]")
    report = verify(clip, movie, **options)
    name = os.fspath(movie)
    if not report.ok:
        raise AssertionError(f"{name}: {report}")
    if not _compared_signal(report):
        raise AssertionError(f"{name}: no picture and no sound was compared with {report.data['clip']}; "
                             f"checked: {', '.join(report.as_expected) or 'nothing'}")
    for wanted in require:
        if wanted not in report.as_expected:
            hint = f"use {report.not_visible[wanted]}" if wanted in report.not_visible else "see tessel verify --list"
            raise AssertionError(f"{name}: {wanted} was not checked; {hint}")
    return report

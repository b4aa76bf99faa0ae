"""Judging a movie: the program `tessel verify`, and its report as objects."""

from __future__ import annotations

import contextlib
import dataclasses
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
from collections.abc import Iterable, Iterator, Mapping
from typing import Any, Union

from ._clip import Clip, StrPath
from ._errors import VerifyError

_DONE = (0, 3, 4)  # exit codes: all as expected, something is not, something is undecided


@dataclasses.dataclass(frozen=True)
class Finding:
    """A fault, or what may be one. `tessel verify --list` tells all ids."""

    id: str
    verdict: str  #: "not as expected" or "undecided"
    severity: str  #: "minor", "major" or "critical"
    message: str
    data: Mapping[str, Any] = dataclasses.field(repr=False)  #: the report's own object, with all its values


@dataclasses.dataclass(frozen=True)
class Report:
    """What `tessel verify --json` says."""

    verdict: str  #: "as expected", "not as expected" or "undecided"
    findings: tuple[Finding, ...]
    as_expected: tuple[str, ...]  #: ids of what was checked and is fine
    not_visible: Mapping[str, str]  #: ids of faults that this clip or movie cannot show, and what to use instead
    data: Mapping[str, Any] = dataclasses.field(repr=False)  #: the whole report

    @property
    def ok(self) -> bool:
        """All that was checked is as expected."""
        return self.verdict == "as expected"

    def __str__(self) -> str:
        return "\n".join([self.verdict] + [f"  {finding.id}: {finding.message}" for finding in self.findings])


def _program() -> str:
    program = os.environ.get("TESSEL") or shutil.which("tessel")
    if not program:
        raise VerifyError("the program tessel is not on the path: install it, or name it in the variable TESSEL")
    return program


@contextlib.contextmanager
def _document_file(clip: Union[StrPath, Clip]) -> Iterator[str]:
    """The file of a clip; for one in memory, a file for as long as the context lasts."""
    if not isinstance(clip, Clip) or clip.path is not None:
        yield os.fspath(clip)
        return
    with tempfile.TemporaryDirectory(prefix="tessel-") as folder:
        file = pathlib.Path(folder, "clip.tessel")
        file.write_bytes(clip._text or b"")
        yield str(file)


def _ids(given: Iterable[str], what: str) -> list[str]:
    if isinstance(given, str):
        raise TypeError(f"{what} must be several ids, as in {what}=[\"{given}\"]")
    return list(given)


def verify(clip: Union[StrPath, Clip], movie: StrPath, *, only: Iterable[str] = (), accept: Iterable[str] = (),
           tolerances: Mapping[str, float] | None = None, strict: bool = False,
           fidelity_all: bool = False) -> Report:
    """Compares a movie with what the clip is by its rules, and names what became of the signal.

    clip:       a clip or its document
    movie:      anything that FFmpeg's libraries decode, a sound file, or pictures as in "out/%06d.png"
    only:       ids of `tessel verify --list` that alone are judged
    accept:     ids of faults that are fine
    tolerances: ids and what is still fine, instead of the defaults of the movie's codec
    strict:     what the container or codec cannot say or carry is a fault, too
    fidelity_all: PSNR and SSIM of every picture instead of some

    It runs the program `tessel` from the path, or the one that the variable TESSEL names.

    Raises VerifyError where the comparison could not be made.
    """
    command = [_program(), "verify", "--json"]
    command += [argument for name in _ids(only, "only") for argument in ("--only", name)]
    command += [argument for name in _ids(accept, "accept") for argument in ("--accept", name)]
    command += [argument for name, value in (tolerances or {}).items()
                for argument in ("--tolerance", f"{name}={float(value)!r}")]
    command += ["--strict"] if strict else []
    command += ["--fidelity", "all"] if fidelity_all else []
    with _document_file(clip) as document:
        # Behind "--", names that begin with "-" are names.
        command += ["--", document, os.fspath(movie)]
        try:
            done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                  check=False)
        except OSError as error:
            raise VerifyError(f"{command[0]}: cannot be started: {error.strerror}") from None
    if done.returncode not in _DONE:
        said = done.stderr.decode("utf-8", "replace").strip()
        raise VerifyError(said or f"{command[0]} ended with {done.returncode}")
    data = json.loads(done.stdout)
    findings = tuple(Finding(entry["id"], entry["verdict"], entry["severity"], entry["message"], entry)
                     for entry in data["findings"])
    not_visible = {entry["id"]: entry["use"] for entry in data["notVisible"]}
    return Report(data["verdict"], findings, tuple(data["asExpected"]), not_visible, data)

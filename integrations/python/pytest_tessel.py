"""The pytest plug-in. pytest loads it where the package is installed.

    def test_my_encoder(tessel_clip, assert_same_signal, tmp_path):
        clip = tessel_clip(size=(640, 360), rate=25, duration="2s")
        my_encoder(clip, tmp_path / "out.mp4")
        assert_same_signal(tmp_path / "out.mp4", clip)

A test that takes `assert_same_signal` and passes without a call of it fails: it compared nothing.

pytest imports this in every run, so the package is imported only by tests that use it.
"""

from __future__ import annotations

import pathlib
from collections.abc import Callable, Generator
from typing import TYPE_CHECKING, Any

import pytest

if TYPE_CHECKING:
    from tessel import Clip, Report


class SameSignal:
    """`tessel.assert_same_signal`, which counts what it compared."""

    def __init__(self) -> None:
        self.comparisons = 0

    def __call__(self, movie: Any, clip: Any, **options: Any) -> Report:
        __tracebackhide__ = True
        import tessel

        report = tessel.assert_same_signal(movie, clip, **options)
        self.comparisons += 1
        return report


@pytest.fixture
def tessel_clip(tmp_path: pathlib.Path) -> Callable[..., Clip]:
    """`tessel_clip(**settings)`: `tessel.Clip.new`, saved in the test's own folder."""
    import tessel

    made = 0

    def make(**settings: Any) -> tessel.Clip:
        nonlocal made
        made += 1
        clip = tessel.Clip.new(**settings)
        clip.save(tmp_path / f"clip-{made}.tessel")
        return clip

    return make


@pytest.fixture
def assert_same_signal() -> SameSignal:
    """`assert_same_signal(movie, clip, **options)`: `tessel.assert_same_signal` for this test."""
    return SameSignal()


# Outermost, so that every other wrapper has finished when the exception is raised.
@pytest.hookimpl(hookwrapper=True, tryfirst=True)
def pytest_pyfunc_call(pyfuncitem: pytest.Function) -> Generator[None, Any, None]:
    outcome = yield
    outcome.get_result()  # raises what a test raised that failed or was skipped
    same_signal = pyfuncitem.funcargs.get("assert_same_signal")
    if isinstance(same_signal, SameSignal) and same_signal.comparisons == 0:
        pytest.fail("nothing was compared: the test takes assert_same_signal and never calls it", pytrace=False)

"""What follows calls that take long."""

from __future__ import annotations

import sys
import time
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from typing import Any, Literal

Progress = bool | Literal["auto"] | Callable[[int, int], object]

_PATIENCE = 1.5
"""Seconds before a bar shows by itself."""


class _Bar:
    """A bar of tqdm, if that is installed."""

    def __init__(self, unit: str, patience: float) -> None:
        self._unit = unit
        self._from = time.monotonic() + patience
        self._bar: Any = None

    def __call__(self, done: int, everything: int) -> None:
        if self._bar is None:
            if time.monotonic() < self._from:
                return
            try:
                from tqdm.auto import tqdm
            except ImportError:
                self._from = float("inf")
                return
            self._bar = tqdm(total=everything or None, unit=self._unit, leave=False)
        self._bar.update(done - self._bar.n)

    def close(self) -> None:
        if self._bar is not None:
            self._bar.close()


def _somebody_looks() -> bool:
    return "ipykernel" in sys.modules or (sys.stderr is not None and sys.stderr.isatty())


@contextmanager
def following(progress: Progress, unit: str) -> Iterator[Callable[[int, int], object] | None]:
    """The callable for the library, for as long as the call runs."""
    if callable(progress):
        yield progress
    elif progress is True or (progress == "auto" and _somebody_looks()):
        bar = _Bar(unit, 0 if progress is True else _PATIENCE)
        try:
            yield bar
        finally:
            bar.close()
    elif progress is False or progress == "auto":
        yield None
    else:
        raise ValueError(f"progress {progress!r}: give True, False, 'auto' or a callable")

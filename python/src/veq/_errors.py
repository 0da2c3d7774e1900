"""What is raised and warned of beyond Python's own."""

from __future__ import annotations


class _AtPlace(Exception):
    """A sentence, and where in a text it holds."""

    def __init__(self, text: str, line: int | None = None, column: int | None = None) -> None:
        super().__init__(text)
        self.line = line
        self.column = column


class FormatError(_AtPlace, ValueError):
    """A text is not what its format asks for. ``line`` and ``column`` count from 1, if known."""


class UnsupportedError(_AtPlace, RuntimeError):
    """Something that is understood, but cannot be done."""


class StoppedError(_AtPlace, RuntimeError):
    """The work was stopped, because ``progress`` returned False; its object is as it was."""


class ReadWarning(UserWarning):
    """Something of a file was repaired or left out."""

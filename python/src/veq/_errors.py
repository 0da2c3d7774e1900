"""What is raised and warned of beyond Python's own."""

from __future__ import annotations


class _AtPlace(Exception):
    """A sentence, and where in a text it holds."""

    def __init__(self, text: str, line: int | None = None, column: int | None = None) -> None:
        super().__init__(text)
        self.line = line
        self.column = column


class FormatError(_AtPlace, ValueError):
    """A text is not what its format asks for. ``line`` and ``column`` count from 1, if known.

    Examples
    --------
    >>> try:
    ...     veq.reads("*Vertices 2\\n*Edges\\n1 x\\n", "pajek", strict=True)
    ... except veq.FormatError as error:
    ...     print(error.line)
    3
    """


class UnsupportedError(_AtPlace, RuntimeError):
    """Something that is understood, but cannot be done."""


class StoppedError(_AtPlace, RuntimeError):
    """The work was stopped, because ``progress`` returned False; its object is as it was.

    Examples
    --------
    >>> network = veq.gnm(100, 500, seed=1)
    >>> try:
    ...     veq.rewired(network, 10**10, seed=1, progress=lambda done, everything: False)
    ... except veq.StoppedError:
    ...     print("stopped")
    stopped
    """


class ReadWarning(UserWarning):
    """Something of a file was repaired or left out.

    Examples
    --------
    >>> text = "%%MatrixMarket matrix coordinate pattern general\\n2 2 1\\n1 2 more\\n"
    >>> import warnings
    >>> with warnings.catch_warnings():
    ...     warnings.simplefilter("ignore", veq.ReadWarning)
    ...     veq.reads(text).num_edges
    1
    """

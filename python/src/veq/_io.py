"""Files."""

from __future__ import annotations

import os
import warnings
from collections.abc import Sequence
from os import PathLike
from typing import TYPE_CHECKING, Literal, NamedTuple, TypedDict, Unpack

from . import _arrays, _core
from ._errors import ReadWarning
from ._progress import Progress, following

if TYPE_CHECKING:
    from ._network import Network

Format = Literal["xnet", "pajek", "list", "matrix-market", "gml", "graphml", "archive", "csv"]
PathName = str | bytes | PathLike[str] | PathLike[bytes]


class Note(NamedTuple):
    """What a person should know about what was read.

    Examples
    --------
    >>> text = "%%MatrixMarket matrix coordinate pattern general\\n2 2 1\\n1 2 more\\n"
    >>> notes = []
    >>> network = veq.reads(text, notes=notes)
    >>> [note.line for note in notes if note.kind == "left out"]
    [3]
    """

    kind: str
    """"taken", "repaired" or "left out"."""
    text: str
    line: int
    times: int


class ReadOptions(TypedDict, total=False):
    """How `read` and `reads` take a file."""

    directed: bool | None
    """Whether a list of edges is directed, where it does not say so itself."""
    ids_are_indices: bool
    """Takes the integers of a list for indices, instead of keeping them as a column "Id"."""
    strict: bool
    """Makes the first thing that would be repaired or left out an error."""
    keep_weights: bool
    """Keeps weights that a 32-bit float does not hold in an edge column "Weight"."""
    most_vertices: int | None
    """A limit, for files of strangers."""
    most_bytes: int | None
    """Likewise, of the text once it is unpacked."""
    notes: list[Note] | None
    """Gets what there is to say; without it, what was repaired or left out is a `ReadWarning`."""
    progress: Progress
    """As of all long calls."""


def _told(found: Sequence[tuple[str, str, int, int]], notes: list[Note] | None) -> None:
    """To the caller's list; without one, a warning of what was repaired or left out."""
    made = [Note(*note) for note in found]
    if notes is not None:
        notes.extend(made)
        return
    for note in made:
        if note.kind != "taken":
            where = f"line {note.line}: " if note.line else ""
            warnings.warn(f"{where}{note.text}", ReadWarning, stacklevel=4)


def _read(
    source: bytes,
    is_text: bool,
    format: Format | None,
    *,
    directed: bool | None = None,
    ids_are_indices: bool = False,
    strict: bool = False,
    keep_weights: bool = False,
    most_vertices: int | None = None,
    most_bytes: int | None = None,
    notes: list[Note] | None = None,
    progress: Progress = "auto",
) -> Network:
    from ._network import Network

    vertices = None if most_vertices is None else _arrays.count(most_vertices, "most_vertices")
    bytes_ = None if most_bytes is None else _arrays.count(most_bytes, "most_bytes")
    with following(progress, "bytes") as call:
        network, found = _core.read(
            source,
            is_text,
            format,
            None if directed is None else bool(directed),
            bool(ids_are_indices),
            bool(strict),
            bool(keep_weights),
            vertices,
            bytes_,
            call,
        )
    _told(found, notes)
    return Network._of(network)


def read(
    path: PathName, *, format: Format | None = None, **options: Unpack[ReadOptions]
) -> Network:
    """Read a network from a file of any format, also one compressed by gzip or zstd.

    Parameters
    ----------
    format
        By default seen from the content; the suffix only breaks ties.
    directed : bool, optional
        Whether a list of edges is directed, where it does not say so itself.
    ids_are_indices : bool
        Takes the integers of a list for indices, instead of keeping them as a column "Id".
    strict : bool
        Makes the first thing that would be repaired or left out an error.
    keep_weights : bool
        Keeps weights that a 32-bit float does not hold in an edge column "Weight".
    most_vertices, most_bytes : int, optional
        Limits, for files of strangers.
    notes : list, optional
        Gets what there is to say; without it, what was repaired or left out is a `ReadWarning`.
    progress
        As of all long calls.

    Raises
    ------
    FileNotFoundError, PermissionError, IsADirectoryError
        As `open` does.
    FormatError
        With ``line`` and ``column``.

    Examples
    --------
    >>> import tempfile
    >>> with tempfile.TemporaryDirectory() as folder:
    ...     veq.Network([0, 1], [1, 2]).save(folder + "/path.net")
    ...     veq.read(folder + "/path.net").num_edges
    2
    """
    name = os.fsencode(path)
    try:
        return _read(name, False, format, **options)
    except OSError:
        with open(path, "rb"):  # Which knows the error's own class and number.
            raise


def reads(
    text: str | bytes, format: Format | None = None, **options: Unpack[ReadOptions]
) -> Network:
    """Read a network from the text, or the bytes, of a file; as `read`, with its options.

    Examples
    --------
    >>> veq.reads("Ada Bob\\nBob Eve\\n").names
    ['Ada', 'Bob', 'Eve']
    """
    if isinstance(text, str):
        source = text.encode("utf-8", "surrogateescape")
    else:
        source = bytes(memoryview(text))
    return _read(source, True, format, **options)


def save(
    self: Network,
    path: PathName,
    *,
    format: Format | None = None,
    progress: Progress = "auto",
) -> None:
    """Write the network to a file, atomically, in the format of its suffix or the one given.

    GraphML and the archive (".veqa") keep everything.

    Raises
    ------
    OSError, ValueError
        Why the file could not be written, or what the format cannot hold.

    Examples
    --------
    >>> import os, tempfile
    >>> with tempfile.TemporaryDirectory() as folder:
    ...     veq.Network([0], [1]).save(os.path.join(folder, "network.graphml"))
    ...     os.listdir(folder)
    ['network.graphml']
    """
    name = os.fsencode(path)
    if b"\0" in name:
        raise ValueError("embedded null byte")
    with following(progress, "bytes") as call:
        try:
            _core.write(self, name, format, call)
        except OSError as error:
            raise _with_path(error, os.fsdecode(path)) from None


def _with_path(error: OSError, path: str) -> OSError:
    """The class that Python itself would raise for what is in the way of a file."""
    if error.errno is not None:
        return error
    folder = os.path.dirname(path) or "."
    if os.path.isdir(path):
        return IsADirectoryError(21, os.strerror(21), path)
    if not os.path.isdir(folder):
        return FileNotFoundError(2, os.strerror(2), path)
    if not os.access(folder, os.W_OK):
        return PermissionError(13, os.strerror(13), path)
    return OSError(f"{path}: {error}")


def dumps(self: Network, format: Format = "xnet") -> str:
    """The text of a file of that format.

    Examples
    --------
    >>> print(veq.Network([0, 1], [1, 2]).dumps("matrix-market").splitlines()[0])
    %%MatrixMarket matrix coordinate pattern symmetric
    """
    return _core.text(self, format).decode("utf-8", "surrogateescape")


def vertex_table(self: Network) -> str:
    """The vertices as a CSV table to go with the edges of a CSV file.

    Examples
    --------
    >>> network = veq.Network([0], [1])
    >>> network.vertex_data["Age"] = [31, 45]
    >>> print(network.vertex_table().splitlines()[0])
    Id,Age
    """
    return _core.vertex_table(self).decode("utf-8", "surrogateescape")

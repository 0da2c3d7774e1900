"""Networks for walks alone."""

from __future__ import annotations

import os
from collections.abc import Callable, Iterable, Iterator
from typing import TYPE_CHECKING, Any, NamedTuple, Self

from numpy.typing import ArrayLike

from . import _arrays, _core, _io
from ._derive import IntArray
from ._network import Network
from ._parallelism import of_threads
from ._progress import Progress, following

Edges = Callable[[], Iterable[tuple[ArrayLike, ArrayLike]]]


class WalkNetworkSize(NamedTuple):
    """How large a walk-only network is, told before memory for its lists is taken.

    Examples
    --------
    >>> sizes = []
    >>> rows = veq.WalkNetwork(veq.lattice([5]), announce=sizes.append)
    >>> sizes[0].nbytes == 8 * (5 + 1) + 4 * 8
    True
    """

    num_vertices: int
    num_edges: int
    num_entries: int
    nbytes: int


def _announcing(
    announce: Callable[[WalkNetworkSize], object] | None,
) -> Callable[[int, int, int, int], object] | None:
    if announce is None:
        return None
    return lambda *size: announce(WalkNetworkSize(*size))


def _limit(most: int | None, what: str) -> int | None:
    return None if most is None else _arrays.count(most, what)


class WalkNetwork(_core.WalkNetwork):
    """A network that keeps rows and neighbours alone, which is all that a walk reads.

    It takes 8 bytes a vertex and 4 an entry of its lists, a fifth of what a `Network` takes, and is
    built in two passes over edges that are never held. `Walkers` on it walk bit by bit as on the
    network of the same edges, and keep where they stand, totals and, on request, first arrivals. It
    has up to 2**32 - 1 vertices and entries, and nothing else of a network: asking for it says so.

    Parameters
    ----------
    edges : Network, or callable
        A callable is called twice, and gives the same edges in the same order both times: pairs of
        arrays, sources and targets, some hundred thousand at a time.
    n : int, optional
        How many vertices there are; by default as many as the largest end asks for.
    directed : bool
        Whether edges lead from source to target alone; those of a network are as it has them.
    most_bytes : int, optional
        What it may take; by default what this machine has.
    announce : callable, optional
        Told its `WalkNetworkSize` after the first pass, before memory for the lists is taken.
    threads : int, optional
        As of `Walkers.walk`.

    Raises
    ------
    ValueError
        "edge 7: target 12 of 10 vertices"; "the source gave other edges when it was asked again".
    MemoryError
        "5 vertices and 8 list entries take 80 bytes, and there are 64".

    Examples
    --------
    >>> import numpy as np
    >>> def ring():
    ...     for first in range(0, 1_000_000, 100_000):
    ...         sources = np.arange(first, first + 100_000)
    ...         yield sources, (sources + 1) % 1_000_000
    >>> rows = veq.WalkNetwork(ring, directed=True)
    >>> rows
    <veq.WalkNetwork: 1000000 vertices, 1000000 edges, directed, 12000008 bytes>
    >>> walkers = veq.Walkers(rows, [0, 999_990])
    >>> walkers.walk(20, seed=1).end, walkers.positions.tolist()
    ('steps', [20, 10])
    """

    __slots__ = ()

    def __init__(
        self,
        edges: Network | Edges,
        *,
        n: int | None = None,
        directed: bool = False,
        most_bytes: int | None = None,
        announce: Callable[[WalkNetworkSize], object] | None = None,
        progress: Progress = "auto",
        threads: int | None = None,
    ) -> None:
        most = _limit(most_bytes, "most_bytes")
        told = _announcing(announce)
        many = None if threads is None else of_threads(threads)
        with following(progress, "edges") as call:
            if isinstance(edges, Network):
                if n is not None or directed:
                    raise ValueError("n and directed are as the network has them")
                super().__init__(_core.walk_network_of(edges, most, told, call, many))
                return
            source = edges

            def blocks() -> Iterator[tuple[Any, Any]]:
                for sources, targets in source():
                    yield _arrays.indices(sources, "source"), _arrays.indices(targets, "target")

            vertices = _limit(n, "n")
            super().__init__(
                _core.walk_network_from(blocks, vertices, bool(directed), most, told, call, many)
            )

    @classmethod
    def read(
        cls,
        path: _io.PathName,
        *,
        format: _io.Format | None = None,
        directed: bool | None = None,
        strict: bool = False,
        most_vertices: int | None = None,
        most_text: int | None = None,
        most_bytes: int | None = None,
        spool_folder: _io.PathName = "",
        announce: Callable[[WalkNetworkSize], object] | None = None,
        notes: list[_io.Note] | None = None,
        progress: Progress = "auto",
    ) -> Self:
        """Read one from a list of integers, a matrix in Matrix Market form, or an archive.

        The integers are indices, as with ``ids_are_indices`` of `read`. The file, also one
        compressed by gzip or zstd, is read twice and never held; what comes through a pipe goes
        into a temporary file without a name, whose folder and size a note tells. Weights and
        properties are left out.

        Parameters
        ----------
        most_vertices, most_text : int, optional
            Limits, for files of strangers; the second of the text once it is unpacked.
        most_bytes, announce
            As of `WalkNetwork`.
        spool_folder
            Where the bytes of a pipe go, by default the system's folder for temporary files.
        format, directed, strict, notes, progress
            As of `read`.

        Raises
        ------
        UnsupportedError
            What only a whole network holds, as names of vertices.

        Examples
        --------
        >>> import tempfile
        >>> with tempfile.TemporaryDirectory() as folder:
        ...     with open(folder + "/links.txt", "w") as file:
        ...         print("0 1", "1 2", sep="\\n", file=file)
        ...     veq.WalkNetwork.read(folder + "/links.txt").neighbors(1).tolist()
        [0, 2]
        """
        name = os.fsencode(path)
        with following(progress, "bytes") as call:
            try:
                core, found = _core.read_walk_network(
                    name,
                    format,
                    None if directed is None else bool(directed),
                    bool(strict),
                    _limit(most_vertices, "most_vertices"),
                    _limit(most_text, "most_text"),
                    _limit(most_bytes, "most_bytes"),
                    os.fsencode(spool_folder),
                    _announcing(announce),
                    call,
                )
            except OSError:
                if os.fspath(path) not in ("-", b"-"):
                    with open(path, "rb"):  # Which knows the error's own class and number.
                        pass
                raise
        _io._told(found, notes)
        made = cls.__new__(cls)
        _core.WalkNetwork.__init__(made, core)
        return made

    def degree(self, v: int) -> int:
        """How long the list of a vertex is: its edges, or those that leave it.

        Examples
        --------
        >>> veq.WalkNetwork(veq.Network([0, 0], [1, 2])).degree(0)
        2
        """
        return self._degree(_arrays.single(v, "vertex"))

    def neighbors(self, v: int) -> IntArray:
        """The list of a vertex, in the order of the edges; a copy.

        Examples
        --------
        >>> veq.WalkNetwork(veq.Network([0, 0], [1, 2])).neighbors(0).tolist()
        [1, 2]
        """
        return self._neighbors(_arrays.single(v, "vertex"))

    def bytes_to_walk(
        self, agents: int, *, first_arrivals: bool = False, until: bool = False
    ) -> int:
        """What agents that walk take beside it: 8 bytes a vertex, and what is asked for.

        A copy of the totals, as of `Walkers.visits`, takes 8 a vertex more.

        Examples
        --------
        >>> veq.WalkNetwork(veq.lattice([1000])).bytes_to_walk(10, first_arrivals=True)
        16640
        """
        return self._bytes_to_walk(
            _arrays.count(agents, "agents"), bool(first_arrivals), bool(until)
        )

    if not TYPE_CHECKING:

        def __getattr__(self, name: str) -> Any:
            if hasattr(Network, name):
                raise AttributeError(
                    f"a walk-only network has no '{name}': it keeps rows and neighbours alone, "
                    "which walks read; build a Network for all else",
                    name=name,
                    obj=self,
                )
            raise AttributeError(f"'WalkNetwork' object has no attribute '{name}'")

    def __len__(self) -> int:
        return self.num_vertices

    def __repr__(self) -> str:
        kind = "directed" if self.directed else "undirected"
        return (
            f"<veq.WalkNetwork: {self.num_vertices} vertices, {self.num_edges} edges, {kind}, "
            f"{self.nbytes} bytes>"
        )

    def __reduce__(self) -> Any:
        raise TypeError("walk-only networks cannot be pickled: send what they are built from")

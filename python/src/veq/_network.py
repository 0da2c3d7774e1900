"""The network."""

from __future__ import annotations

from collections.abc import Callable, Iterable, Iterator, Sequence
from typing import Any, NamedTuple, Self

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _core, _display, _drawing, _io, _pickle
from ._ask import FloatArray
from ._columns import Columns
from ._convert import Converting
from ._derive import IntArray, Mode

IndexArray = NDArray[np.uint32] | NDArray[np.uint64]


class Adjacency(NamedTuple):
    """The lists of all vertices one behind the other: compressed sparse rows.

    The neighbours of vertex v are ``indices[indptr[v]:indptr[v + 1]]``, and the edges that lead
    there ``edges[indptr[v]:indptr[v + 1]]``.

    Examples
    --------
    >>> lists = veq.Network([0, 1], [1, 2]).adjacency()
    >>> lists.indices[lists.indptr[1] : lists.indptr[2]].tolist()
    [0, 2]
    """

    indptr: IndexArray
    indices: IndexArray
    edges: IndexArray


class Network(Converting):
    """A network of vertices 0 to n - 1 and of edges, in the order in which they were given.

    Edge i runs from ``source[i]`` to ``target[i]``. Loops and parallel edges are kept; in an
    undirected network a loop stands twice in the list of its vertex and counts twice.

    Parameters
    ----------
    source, target : array_like of integers, of shape (m,)
        Of any width, signed or not, strided or in the other byte order; lists, pandas, polars and
        Arrow columns, too.
    n : int, optional
        How many vertices there are; by default as many as the largest end asks for.
    directed : bool
        Whether edges lead from source to target alone.
    vertex_weights, edge_weights : array_like, optional
        One number for each, kept as a float of 32 bits.
    keep_exact_weights : bool
        Keeps the given weights as they are, too, in columns "Weight".

    Raises
    ------
    ValueError
        "3 sources for 2 targets"; "edge 7: target -1"; "edge 7: target 12 of 10 vertices, and 3
        more"; "4 weights for 5 edges"; "source 2: 0.5 is no integer".

    Examples
    --------
    >>> network = veq.Network([0, 1, 2], [1, 2, 0], edge_weights=[1, 0.5, 2])
    >>> network
    <veq.Network: 3 vertices, 3 edges, undirected, edge-weighted>
    >>> network.neighbors(1)
    array([0, 2], dtype=uint32)
    """

    __slots__ = ()

    def __init__(
        self,
        source: ArrayLike,
        target: ArrayLike,
        *,
        n: int | None = None,
        directed: bool = False,
        vertex_weights: ArrayLike | None = None,
        edge_weights: ArrayLike | None = None,
        keep_exact_weights: bool = False,
    ) -> None:
        super().__init__(
            _core.build(
                _arrays.indices(source, "source"),
                _arrays.indices(target, "target"),
                None if n is None else _arrays.count(n, "n"),
                bool(directed),
                _arrays.optional_numbers(vertex_weights, "vertex_weights"),
                _arrays.optional_numbers(edge_weights, "edge_weights"),
                bool(keep_exact_weights),
            )
        )

    @classmethod
    def from_names(
        cls,
        edges: Iterable[tuple[str, str]],
        *,
        names: Sequence[str] | None = None,
        directed: bool = False,
        edge_weights: ArrayLike | None = None,
    ) -> Self:
        """Edges between names, which become the column "Name".

        Vertices are numbered by first appearance, source before target; or as in ``names``.

        Examples
        --------
        >>> veq.Network.from_names([("Ada", "Bob"), ("Eve", "Ada")]).names
        ['Ada', 'Bob', 'Eve']
        """
        pairs = list(edges)
        try:
            sides = list(zip(*pairs, strict=True)) or [(), ()]
        except (TypeError, ValueError):
            sides = []
        if len(sides) != 2:
            _arrays.refuse_other_than_pairs(pairs)
        sources = _arrays.texts(sides[0], "source")
        targets = _arrays.texts(sides[1], "target")
        every = None if names is None else _arrays.texts(names, "name")
        weights = _arrays.optional_numbers(edge_weights, "edge_weights")
        return cls._of(_core.from_names(sources, targets, every, bool(directed), weights))

    @property
    def sources(self) -> IndexArray:
        """The sources of all edges, of shape (m,): the network's own memory, read-only.

        As all such arrays it stays as it is, and valid, whatever becomes of the network.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2]).sources.tolist()
        [0, 1]
        """
        return _core.ends(self, False)

    @property
    def targets(self) -> IndexArray:
        """The targets of all edges, of shape (m,), as `sources`.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2]).targets.tolist()
        [1, 2]
        """
        return _core.ends(self, True)

    @property
    def edges(self) -> IntArray:
        """Source and target of all edges, of shape (m, 2). O(m): a copy.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2]).edges.tolist()
        [[0, 1], [1, 2]]
        """
        return _core.edges(self)

    def neighbors(self, v: object, mode: Mode = "out") -> IndexArray | IntArray:
        """The neighbours of a vertex (an index or a name), in the order of the edges.

        The network's own memory, read-only, except for ``mode="all"`` of a directed network: what
        the vertex leads to, then what leads to it.

        Raises
        ------
        IndexError
            "vertex 7 of 5".

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).neighbors(2).tolist()
        [1, 0, 3]
        """
        return _core.list_of(self, self._vertex(v), mode, False)

    def edges_of(self, v: object, mode: Mode = "out") -> IndexArray | IntArray:
        """The edges that lead to the `neighbors`.

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).edges_of(2).tolist()
        [1, 2, 3]
        """
        return _core.list_of(self, self._vertex(v), mode, True)

    def ends_of(self, edge: int) -> tuple[int, int]:
        """Source and target of an edge.

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).ends_of(3)
        (2, 3)
        """
        return _core.ends_of(self, _arrays.single(edge, "edge"))

    def edges_between(self, source: object, target: object) -> IntArray:
        """All edges from one vertex to another; undirected, in either order.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 0]).edges_between(0, 1).tolist()
        [0, 1]
        """
        return _core.edges_between(self, self._vertex(source), self._vertex(target))

    def has_edge(self, source: object, target: object) -> bool:
        """Whether an edge leads from one vertex to another; undirected, in either order.

        Examples
        --------
        >>> veq.Network([0], [1]).has_edge(1, 0)
        True
        """
        return len(self.edges_between(source, target)) > 0

    def adjacency(self, mode: Mode = "out") -> Adjacency:
        """The lists of all vertices, for loops of one's own. Made once in O(n + m), then kept.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2]).adjacency().indptr.tolist()
        [0, 1, 3, 4]
        """
        return Adjacency(*_core.adjacency(self, mode))

    def degree(self, v: object, mode: Mode = "out") -> int:
        """How many entries the vertex's list has.

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).degree(2)
        3
        """
        return _core.degree(self, self._vertex(v), mode)

    def degrees(self, mode: Mode = "out") -> IntArray:
        """The degrees of all vertices, of shape (n,).

        Examples
        --------
        >>> veq.Network([0, 0], [1, 2], directed=True).degrees("in")
        array([0, 1, 1])
        """
        return _core.degrees(self, mode)

    def strength(self, v: object, mode: Mode = "out") -> float:
        """The sum of the weights of the edges in the vertex's list, each 1 where there are none.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2], edge_weights=[1, 0.5]).strength(1)
        1.5
        """
        return _core.strength(self, self._vertex(v), mode)

    def strengths(self, mode: Mode = "out") -> FloatArray:
        """The strengths of all vertices, of shape (n,).

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2], edge_weights=[1, 0.5]).strengths().tolist()
        [1.0, 1.5, 0.5]
        """
        return _core.strengths(self, mode)

    @property
    def vertex_weights(self) -> NDArray[np.float32] | None:
        """One weight for each vertex, a copy; None where there are none. Set as a whole.

        Examples
        --------
        >>> network = veq.Network([0], [1])
        >>> network.vertex_weights = [1, 2]
        >>> network.vertex_weights.tolist()
        [1.0, 2.0]
        """
        return _core.weights(self, False)

    @vertex_weights.setter
    def vertex_weights(self, weights: ArrayLike) -> None:
        _core.set_weights(self, _arrays.numbers(weights, "vertex_weights"), False)

    @property
    def edge_weights(self) -> NDArray[np.float32] | None:
        """One weight for each edge, a copy; None where there are none. Set as a whole.

        Examples
        --------
        >>> network = veq.Network([0], [1])
        >>> network.edge_weights = [0.5]
        >>> network.edge_weights.tolist()
        [0.5]
        """
        return _core.weights(self, True)

    @edge_weights.setter
    def edge_weights(self, weights: ArrayLike) -> None:
        _core.set_weights(self, _arrays.numbers(weights, "edge_weights"), True)

    def add_edges(
        self, source: ArrayLike, target: ArrayLike, *, weights: ArrayLike | None = None
    ) -> range:
        """Add edges to this very network, and give their indices.

        Columns of edges are not set for the new ones. Arrays that were given out before stay as
        they are.

        Raises
        ------
        RuntimeError
            "the network is in use: a walk or another call reads it".

        Examples
        --------
        >>> network = veq.Network([0], [1])
        >>> network.add_edges([1, 1], [0, 1])
        range(1, 3)
        """
        first, count = _core.add_edges(
            self,
            _arrays.indices(source, "source"),
            _arrays.indices(target, "target"),
            _arrays.optional_numbers(weights, "weights"),
        )
        return range(first, first + count)

    @property
    def names(self) -> list[str]:
        """The texts of the column "Name"; without that column the indices in decimal digits.

        Examples
        --------
        >>> veq.Network([0], [1]).names
        ['0', '1']
        """
        return _core.names(self)

    def indices(self, names: Iterable[str]) -> IntArray:
        """The lowest vertex of each name; KeyError for one that there is not. O(n).

        Examples
        --------
        >>> veq.Network.from_names([("Ada", "Bob")]).indices(["Bob", "Ada"]).tolist()
        [1, 0]
        """
        every = self.names
        every.reverse()
        known = dict(zip(every, range(len(every) - 1, -1, -1), strict=True))
        return np.fromiter(map(known.__getitem__, names), np.int64)

    @property
    def vertex_data(self) -> Columns:
        """The columns of the vertices, by their keys.

        Examples
        --------
        >>> network = veq.Network([0], [1])
        >>> network.vertex_data["Age"] = [31, 45]
        >>> list(network.vertex_data)
        ['Age']
        """
        return Columns(self, False)

    @property
    def edge_data(self) -> Columns:
        """The columns of the edges, by their keys.

        Examples
        --------
        >>> network = veq.Network([0], [1])
        >>> network.edge_data["Length"] = [2.5]
        >>> network.edge_data["Length"].tolist()
        [2.5]
        """
        return Columns(self, True)

    def vertex(self, v: object) -> Vertex:
        """One vertex, by its index or name.

        Examples
        --------
        >>> veq.Network.from_names([("Ada", "Bob")]).vertex("Bob").index
        1
        """
        index = self._vertex(v)
        if not 0 <= index < self.num_vertices:
            raise IndexError(f"vertex {index} of {self.num_vertices}")
        return Vertex(self, index)

    def edge(self, i: int) -> Edge:
        """One edge, by its index.

        Examples
        --------
        >>> veq.Network([0], [1]).edge(0).target
        1
        """
        self.ends_of(i)
        return Edge(self, _arrays.single(i, "edge"))

    def __iter__(self) -> Iterator[int]:
        raise TypeError("a network is no sequence: its vertices are range(len(network))")

    save = _io.save
    dumps = _io.dumps
    vertex_table = _io.vertex_table
    plot = _display.plot
    show = _drawing.show
    force_layout = _drawing.force_layout

    def __repr__(self) -> str:
        return _display.line(self)

    def _repr_html_(self) -> str:
        return _display.table(self)

    def __reduce_ex__(self, protocol: Any) -> tuple[Callable[..., Any], tuple[Any, ...]]:
        return _pickle.reduced(self, protocol)


class _Element:
    __slots__ = ("index", "network")

    def __init__(self, network: Network, index: int) -> None:
        self.network = network
        self.index = index

    def __index__(self) -> int:
        return self.index

    def __eq__(self, other: object) -> bool:
        return (
            type(other) is type(self)
            and isinstance(other, _Element)
            and other.network is self.network
            and other.index == self.index
        )

    def __hash__(self) -> int:
        return hash((id(self.network), self.index))

    def __repr__(self) -> str:
        return f"<veq.{type(self).__name__} {self.index}>"


class Vertex(_Element):
    """A vertex of a network, which it keeps alive. For single looks: arrays are for many.

    Examples
    --------
    >>> vertex = veq.Network.from_names([("Ada", "Bob")]).vertex("Bob")
    >>> vertex.index, vertex["Name"]
    (1, 'Bob')
    """

    __slots__ = ()

    @property
    def name(self) -> str:
        """The text of the column "Name", or the index in digits. O(n).

        Examples
        --------
        >>> veq.Network.from_names([("Ada", "Bob")]).vertex(1).name
        'Bob'
        """
        return self.network.names[self.index]

    @property
    def degree(self) -> int:
        """How many edges leave it, or are at it.

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).vertex(2).degree
        3
        """
        return self.network.degree(self.index)

    @property
    def neighbors(self) -> IndexArray | IntArray:
        """The neighbours, as `Network.neighbors`.

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).vertex(2).neighbors.tolist()
        [1, 0, 3]
        """
        return self.network.neighbors(self.index)

    def __getitem__(self, key: str) -> Any:
        return self.network.vertex_data[key][self.index]


class Edge(_Element):
    """An edge of a network, which it keeps alive. For single looks: arrays are for many.

    Examples
    --------
    >>> edge = veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).edge(3)
    >>> edge.source, edge.target
    (2, 3)
    """

    __slots__ = ()

    @property
    def source(self) -> int:
        """Where it begins.

        Examples
        --------
        >>> veq.Network([5], [7]).edge(0).source
        5
        """
        return self.network.ends_of(self.index)[0]

    @property
    def target(self) -> int:
        """Where it ends.

        Examples
        --------
        >>> veq.Network([5], [7]).edge(0).target
        7
        """
        return self.network.ends_of(self.index)[1]

    def __getitem__(self, key: str) -> Any:
        return self.network.edge_data[key][self.index]

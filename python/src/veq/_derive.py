"""Networks made of networks."""

from __future__ import annotations

from collections.abc import Iterable
from typing import Generic, Literal, NamedTuple, Self, TypeVar

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _core
from ._progress import Progress, following

Mode = Literal["out", "in", "all"]
Connection = Literal["weak", "strong"]
IntArray = NDArray[np.int64]
N = TypeVar("N")


class Part(NamedTuple, Generic[N]):
    """A network made of another, and for each of its vertices and edges the index there.

    Examples
    --------
    >>> part = veq.Network([0, 1], [1, 2]).subnetwork([2])
    >>> part.network.num_vertices, part.vertices.tolist()
    (1, [2])
    """

    network: N
    vertices: IntArray
    edges: IntArray


class United(NamedTuple, Generic[N]):
    """A network made of several: the new index of each of their vertices and of each edge 0.

    Examples
    --------
    >>> one = veq.Network([0], [1])
    >>> veq.Network.united([one, one]).vertices[1].tolist()
    [2, 3]
    """

    network: N
    vertices: list[IntArray]
    first_edges: IntArray


class Deriving(_core.Network):
    """The rooms of the network's face that make new networks. The network stays as it is."""

    __slots__ = ("__weakref__",)

    @classmethod
    def _of(cls, core: _core.Network) -> Self:
        self = cls.__new__(cls)
        _core.Network.__init__(self, core)
        return self

    def _part(self, made: tuple[_core.Network, IntArray, IntArray]) -> Part[Self]:
        return Part(self._of(made[0]), made[1], made[2])

    def index(self, name: str) -> int:
        """The lowest vertex of that name, compared exactly; KeyError if there is none. O(n).

        Examples
        --------
        >>> veq.Network.from_names([("Ada", "Bob")]).index("Bob")
        1
        """
        found = _core.vertex_named(self, name)
        if found is None:
            raise KeyError(name)
        return found

    def _vertex(self, v: object) -> int:
        if type(v) is int and -1 <= v < 2**62:
            return v
        return self.index(v) if isinstance(v, str) else _arrays.single(v, "vertex")

    def copy(self) -> Self:
        """A network of its own, with weights and columns; nothing is shared. O(n + m).

        Examples
        --------
        >>> network = veq.Network([0], [1])
        >>> network.copy().add_edges([0], [0])
        range(1, 2)
        >>> network.num_edges
        1
        """
        return self._of(_core.copy(self))

    def __copy__(self) -> Self:
        return self.copy()

    def __deepcopy__(self, memo: object) -> Self:
        return self.copy()

    def reversed(self) -> Self:
        """Every edge the other way round; a copy of an undirected network.

        Examples
        --------
        >>> veq.Network([0], [1], directed=True).reversed().edges.tolist()
        [[1, 0]]
        """
        return self._of(_core.reversed(self))

    def as_directed(self) -> Self:
        """Two edges for each undirected one: edge e becomes 2 e, and the way back 2 e + 1.

        Examples
        --------
        >>> veq.Network([0], [1]).as_directed().edges.tolist()
        [[0, 1], [1, 0]]
        """
        return self._of(_core.as_directed(self))

    def as_undirected(self) -> Self:
        """One edge for each directed one; parallel ones stay.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 0], directed=True).as_undirected().num_edges
        2
        """
        return self._of(_core.as_undirected(self))

    def with_more_vertices(self, count: int) -> Self:
        """With so many vertices behind the others; they weigh 1.0, their columns are not set.

        Examples
        --------
        >>> veq.Network([0], [1]).with_more_vertices(2).num_vertices
        4
        """
        return self._of(_core.with_more_vertices(self, _arrays.count(count, "count")))

    def simplified(
        self,
        parallels: Literal["sum", "keep", "least", "greatest", "first"] = "sum",
        *,
        loops: bool = False,
    ) -> Part[Self]:
        """Without parallel edges, and without loops unless these are to stay.

        Parameters
        ----------
        parallels
            What becomes of parallel edges: one edge with the ``"sum"`` of their weights (1 each
            where there are none), the one that weighs ``"least"`` or is the ``"greatest"``, the
            ``"first"``, or all, ``"keep"``.

        Examples
        --------
        >>> veq.Network([0, 0, 1], [1, 1, 1]).simplified().network.edge_weights
        array([2.], dtype=float32)
        """
        return self._part(_core.simplified(self, parallels, not loops))

    def subnetwork(self, vertices: ArrayLike) -> Part[Self]:
        """The chosen vertices, in the given order, and all edges among them.

        Raises
        ------
        ValueError
            "place 4: vertex 12 of 10"; "place 4: vertex 3 for the second time".

        Examples
        --------
        >>> veq.Network([0, 1, 2], [1, 2, 3]).subnetwork([2, 1]).network.edges.tolist()
        [[1, 0]]
        """
        return self._part(_core.subnetwork(self, _arrays.indices(vertices, "vertices")))

    def subnetwork_of_edges(self, edges: ArrayLike, *, keep_vertices: bool = False) -> Part[Self]:
        """The chosen edges, in the given order, and their ends, or all vertices.

        Raises
        ------
        ValueError
            "place 4: edge 12 of 10"; "place 4: edge 3 for the second time".

        Examples
        --------
        >>> veq.Network([0, 1, 2], [1, 2, 3]).subnetwork_of_edges([1]).vertices.tolist()
        [1, 2]
        """
        chosen = _arrays.indices(edges, "edges")
        return self._part(_core.subnetwork_of_edges(self, chosen, keep_vertices))

    def neighborhood(self, v: object, distance: int = 1, mode: Mode = "all") -> Part[Self]:
        """The vertices at most so many edges away, the nearest first, and all edges among them.

        Examples
        --------
        >>> veq.lattice([5]).neighborhood(0, 2).vertices.tolist()
        [0, 1, 2]
        """
        reach = _arrays.count(distance, "distance")
        return self._part(_core.neighborhood(self, self._vertex(v), reach, mode))

    def components(
        self, connection: Connection = "weak", *, progress: Progress = "auto"
    ) -> IntArray:
        """For each vertex the number of its component, of shape (n,).

        Components are numbered by their lowest vertex, from 0. ``connection`` matters in directed
        networks alone. O(n + m).

        Examples
        --------
        >>> veq.Network([0, 2], [1, 3]).components()
        array([0, 0, 1, 1])
        """
        with following(progress, "vertices") as call:
            return _core.components(self, connection, call)[0]

    def component_sizes(
        self, connection: Connection = "weak", *, progress: Progress = "auto"
    ) -> IntArray:
        """The number of vertices of each component.

        Examples
        --------
        >>> veq.Network([0, 2, 3], [1, 3, 4]).component_sizes().tolist()
        [2, 3]
        """
        with following(progress, "vertices") as call:
            return _core.components(self, connection, call)[1]

    def split(self, connection: Connection = "weak") -> list[Part[Self]]:
        """The components as networks of their own, with weights and columns. O(n + m).

        Examples
        --------
        >>> [part.vertices.tolist() for part in veq.Network([0, 2, 3], [1, 3, 4]).split()]
        [[0, 1], [2, 3, 4]]
        """
        return [self._part(made) for made in _core.split(self, connection)]

    def largest_component(self, connection: Connection = "weak") -> Part[Self]:
        """The component with the most vertices, the first of equals. O(n + m).

        Examples
        --------
        >>> veq.Network([0, 2, 3], [1, 3, 4]).largest_component().vertices.tolist()
        [2, 3, 4]
        """
        return self._part(_core.largest_component(self, connection))

    @classmethod
    def united(
        cls, networks: Iterable[Self], by: Literal["nothing", "index", "name"] = "nothing"
    ) -> United[Self]:
        """One network of several, in which all edges stay.

        Parameters
        ----------
        by
            Which vertices become one: none, those of one index, or those of one name.

        Examples
        --------
        >>> one = veq.Network([0], [1])
        >>> veq.Network.united([one, one], by="index").network.edges.tolist()
        [[0, 1], [0, 1]]
        """
        every = list(networks)
        for place, one in enumerate(every):
            if not isinstance(one, _core.Network):
                raise TypeError(f"network {place}: {one!r} is no network")
        network, vertices, first_edges = _core.united(every, by)
        return United(cls._of(network), vertices, first_edges)

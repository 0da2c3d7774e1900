"""Questions about networks."""

from __future__ import annotations

from typing import Literal, NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _core
from ._derive import Deriving, IntArray, Mode
from ._progress import Progress, following
from ._random import Seed, seed_of

FloatArray = NDArray[np.float64]
_MOST_VISITS = 10_000_000_000


class Path(NamedTuple):
    """A way from one vertex to another, and the sum of its weights or its number of edges.

    Examples
    --------
    >>> veq.lattice([3]).shortest_path(0, 2).length
    2.0
    """

    vertices: IntArray
    edges: IntArray
    length: float


class PageRank(NamedTuple):
    """The ranks, how they were found, and a bound of the sum of their absolute errors.

    Examples
    --------
    >>> veq.Network([0], [1]).page_rank().ranks.round(6).tolist()
    [0.5, 0.5]
    """

    ranks: FloatArray
    sweeps: int
    error: float
    converged: bool


class DistanceHistogram(NamedTuple):
    """How many pairs of a source and a vertex are at distance 0, 1, 2, ...

    Examples
    --------
    >>> veq.lattice([3]).distance_histogram().pairs.tolist()
    [3, 4, 2]
    """

    pairs: IntArray
    unreachable_pairs: int
    sources: int
    sampled: bool
    mean_distance: float


class Diameter(NamedTuple):
    """The largest distance lies between ``least`` and ``most``, mostly the same.

    Examples
    --------
    >>> found = veq.lattice([4]).diameter()
    >>> found.least, found.most
    (3, 3)
    """

    least: int
    most: int
    source: int
    target: int
    searches: int


class Asking(Deriving):
    """The rooms of the network's face that answer questions."""

    __slots__ = ()

    def triangles(self, *, progress: Progress = "auto") -> IntArray:
        """For each vertex the triangles that it is a corner of, of shape (n,).

        This and the other questions about triangles ignore directions, loops and parallel edges.

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).triangles()
        array([1, 1, 1, 0])
        """
        with following(progress, "vertices") as call:
            return _core.triangles(self, call)

    def count_triangles(self, *, progress: Progress = "auto") -> int:
        """All triangles, each once.

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).count_triangles()
        1
        """
        with following(progress, "vertices") as call:
            return _core.count_triangles(self, call)

    def local_clustering(self, *, progress: Progress = "auto") -> FloatArray:
        """For each vertex the share of pairs of its neighbours that are neighbours, of shape (n,).

        0 for a vertex with fewer than two.

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).local_clustering().round(2).tolist()
        [1.0, 1.0, 0.33, 0.0]
        """
        with following(progress, "vertices") as call:
            return _core.local_clustering(self, call)

    def average_clustering(
        self,
        without_pairs: Literal["zero", "left out"] = "zero",
        *,
        progress: Progress = "auto",
    ) -> float:
        """The mean of the local clustering; vertices without pairs count 0 or are left out.

        Examples
        --------
        >>> round(veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).average_clustering("left out"), 2)
        0.78
        """
        with following(progress, "vertices") as call:
            return _core.average_clustering(self, without_pairs, call)

    def transitivity(self, *, progress: Progress = "auto") -> float:
        """Three times the number of triangles over that of pairs of neighbours of any vertex.

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).transitivity()
        0.6
        """
        with following(progress, "vertices") as call:
            return _core.transitivity(self, call)

    def core_numbers(self, mode: Mode = "all", *, progress: Progress = "auto") -> IntArray:
        """For each vertex the largest k for which it is in the k-core, of shape (n,).

        Examples
        --------
        >>> veq.Network([0, 1, 2, 2], [1, 2, 0, 3]).core_numbers()
        array([2, 2, 2, 1])
        """
        with following(progress, "vertices") as call:
            return _core.core_numbers(self, mode, call)

    def degree_distribution(self, mode: Mode = "out") -> IntArray:
        """How many vertices have degree 0, 1, 2, ... up to the largest.

        Examples
        --------
        >>> veq.Network([0, 0, 0], [1, 2, 3]).degree_distribution()
        array([0, 3, 0, 1])
        """
        return _core.degree_distribution(self, mode)

    def strength_distribution(self, mode: Mode = "out") -> tuple[FloatArray, IntArray]:
        """All strengths that occur, the least first, and how many vertices have each.

        Examples
        --------
        >>> strengths, vertices = veq.Network([0, 1], [1, 2]).strength_distribution()
        >>> strengths.tolist(), vertices.tolist()
        ([1.0, 2.0], [2, 1])
        """
        return _core.strength_distribution(self, mode)

    def density(self) -> float:
        """The number of edges over that of pairs of different vertices.

        Examples
        --------
        >>> round(veq.Network([0, 1], [1, 2]).density(), 2)
        0.67
        """
        return _core.density(self)

    def reciprocity(self) -> float:
        """Of the edges that are no loops, the share of those with an edge the other way.

        Examples
        --------
        >>> round(veq.Network([0, 1, 0], [1, 0, 2], directed=True).reciprocity(), 2)
        0.67
        """
        return _core.reciprocity(self)

    def average_neighbor_degree(
        self, neighbors: Mode = "out", degrees: Mode = "out", *, weighted: bool = False
    ) -> FloatArray:
        """For each vertex the mean degree of its neighbours, of shape (n,).

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2]).average_neighbor_degree().tolist()
        [2.0, 1.0, 2.0]
        """
        return _core.average_neighbor_degree(self, neighbors, degrees, weighted)

    def degree_assortativity(self, source: Mode = "out", target: Mode = "in") -> float:
        """The correlation of the degrees at both ends of an edge, from -1 to 1, or NaN.

        Examples
        --------
        >>> round(veq.Network([0, 1], [1, 2]).degree_assortativity(), 6)
        -1.0
        """
        return _core.degree_assortativity(self, source, target)

    def distances_from(self, source: object, mode: Mode = "out") -> IntArray:
        """The number of edges to each vertex, of shape (n,); -1 for what cannot be reached.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2], n=4).distances_from(0)
        array([ 0,  1,  2, -1])
        """
        return _core.distances_from(self, self._vertex(source), mode)

    def weighted_distances_from(self, source: object, mode: Mode = "out") -> FloatArray:
        """The least sums of weights, of shape (n,); infinity for what cannot be reached.

        Raises
        ------
        ValueError
            "edge 7: weight -1, and 2 more", if a weight is negative, infinite or NaN.

        Examples
        --------
        >>> network = veq.Network([0, 1], [1, 2], edge_weights=[1, 0.5])
        >>> network.weighted_distances_from(0).tolist()
        [0.0, 1.0, 1.5]
        """
        return _core.weighted_distances_from(self, self._vertex(source), mode)

    def shortest_path(
        self, source: object, target: object, mode: Mode = "out", *, weighted: bool = False
    ) -> Path | None:
        """One of the shortest paths, always the same one; None where there is none.

        Examples
        --------
        >>> veq.Network([0, 1, 0], [1, 2, 3]).shortest_path(0, 2).vertices
        array([0, 1, 2])
        """
        ends = self._vertex(source), self._vertex(target)
        found = _core.shortest_path(self, *ends, mode, weighted)
        return None if found is None else Path(*found)

    def distance_histogram(
        self,
        mode: Mode = "out",
        *,
        most_visits: int = _MOST_VISITS,
        seed: Seed = 1,
        progress: Progress = "auto",
    ) -> DistanceHistogram:
        """How many pairs of vertices are how far apart.

        From every vertex while that takes at most ``most_visits`` visits, and otherwise from as
        many as that allows, drawn with ``seed``; for a `RandomState` or None by a seed of which
        its next draw decides.

        Examples
        --------
        >>> veq.lattice([3]).distance_histogram().pairs.tolist()
        [3, 4, 2]
        """
        most = _arrays.count(most_visits, "most_visits")
        number = seed_of(seed)
        with following(progress, "vertices") as call:
            return DistanceHistogram(*_core.distance_histogram(self, mode, most, number, call))

    def diameter(
        self,
        mode: Mode = "out",
        *,
        most_visits: int = _MOST_VISITS,
        progress: Progress = "auto",
    ) -> Diameter:
        """The largest distance between two vertices of which one can be reached from the other.

        Examples
        --------
        >>> veq.Network([0, 1, 2], [1, 2, 3]).diameter().most
        3
        """
        most = _arrays.count(most_visits, "most_visits")
        with following(progress, "vertices") as call:
            return Diameter(*_core.diameter(self, mode, most, call))

    def page_rank(
        self,
        *,
        restart: float = 0.15,
        personalisation: ArrayLike | None = None,
        weighted: bool = True,
        tolerance: float = 1e-10,
        most_sweeps: int = 1000,
        progress: Progress = "auto",
    ) -> PageRank:
        """The shares of time that a walk with restarts spends on each vertex.

        Parameters
        ----------
        restart
            The probability of a restart before each step, above 0 and at most 1: one minus what
            others call the damping factor.
        personalisation
            Where a restart leads: one number for each vertex; all alike by default.
        weighted
            Whether edges are chosen by their weights, where there are any.
        tolerance
            The sum of the absolute errors of all ranks to come below.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2]).page_rank().ranks.round(4)
        array([0.2568, 0.4865, 0.2568])
        """
        shares = _arrays.optional_numbers(personalisation, "personalisation")
        most = _arrays.count(most_sweeps, "most_sweeps")
        with following(progress, "sweeps") as call:
            return PageRank(
                *_core.page_rank(self, restart, shares, weighted, tolerance, most, call)
            )

"""Agents that walk at random."""

from __future__ import annotations

import operator
from collections.abc import Sequence
from typing import Any, Literal, NamedTuple, Self, cast

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _core
from ._ask import FloatArray
from ._derive import IntArray
from ._errors import UnsupportedError
from ._network import Network
from ._parallelism import of_threads
from ._progress import Progress, following
from ._random import RandomState, Seed, drawn_from
from ._walk_network import WalkNetwork

Choice = Literal["published", "even", "weighted"]
End = Literal["steps", "target", "stopped", "stuck", "draws"]


class Paths:
    """Where agents arrived, step by step. It outlives agents and network.

    Examples
    --------
    >>> one_way = veq.Network([0, 1], [1, 2], directed=True)
    >>> paths = veq.Walkers(one_way, [0]).walk(3, paths=True, seed=1).paths
    >>> paths.filled().tolist()
    [[1, 2, 2]]
    """

    __slots__ = ("moves", "starts")

    def __init__(self, moves: NDArray[Any], starts: IntArray) -> None:
        self.moves = moves
        """Of shape (steps, agents): the walk's own memory, read-only; `stayed` where one stayed."""
        self.starts = starts
        """Where each agent began, of shape (agents,)."""

    @property
    def stayed(self) -> int:
        """What stands for an agent that could not move: all bits set.

        Examples
        --------
        >>> alone = veq.Network([], [], n=1)
        >>> paths = veq.Walkers(alone, [0]).walk(1, paths=True, seed=1).paths
        >>> paths.moves.tolist() == [[paths.stayed]]
        True
        """
        return int(np.iinfo(self.moves.dtype).max)

    @property
    def shape(self) -> tuple[int, int]:
        """(agents, steps)

        Examples
        --------
        >>> veq.Walkers(veq.lattice([3]), [0, 1]).walk(5, paths=True, seed=1).paths.shape
        (2, 5)
        """
        return self.moves.shape[1], self.moves.shape[0]

    def filled(self, *, start: bool = False) -> NDArray[Any]:
        """Where each agent stood after each step, of shape (agents, steps).

        With ``start`` the first column is where it began. One that could not move stands where it
        was.

        Examples
        --------
        >>> one_way = veq.Network([0, 1], [1, 2], directed=True)
        >>> paths = veq.Walkers(one_way, [0]).walk(3, paths=True, seed=1).paths
        >>> paths.filled(start=True).tolist()
        [[0, 1, 2, 2]]
        """
        steps = np.vstack([self.starts.astype(self.moves.dtype)[np.newaxis], self.moves])
        moved = steps != self.stayed
        moved[0] = True
        last = np.where(moved, np.arange(len(steps))[:, np.newaxis], 0)
        np.maximum.accumulate(last, axis=0, out=last)
        standing = np.take_along_axis(steps, last, axis=0).T
        return np.ascontiguousarray(standing if start else standing[:, 1:])

    def masked(self) -> np.ma.MaskedArray[Any, Any]:
        """The arrivals, of shape (agents, steps), masked where an agent stayed. No copy of them.

        Examples
        --------
        >>> one_way = veq.Network([0, 1], [1, 2], directed=True)
        >>> paths = veq.Walkers(one_way, [0]).walk(3, paths=True, seed=1).paths
        >>> paths.masked().tolist()
        [[1, 2, None]]
        """
        return np.ma.MaskedArray(self.moves.T, self.moves.T == self.stayed)

    def ragged(self) -> tuple[IntArray, NDArray[Any]]:
        """Offsets and arrivals, agent by agent, without the steps in which one stayed.

        Examples
        --------
        >>> one_way = veq.Network([0, 1], [1, 2], directed=True)
        >>> paths = veq.Walkers(one_way, [0, 1]).walk(3, paths=True, seed=1).paths
        >>> offsets, arrivals = paths.ragged()
        >>> offsets.tolist(), arrivals.tolist()
        ([0, 2, 3], [1, 2, 2])
        """
        moved = self.moves.T != self.stayed
        offsets = np.concatenate([[0], moved.sum(axis=1).cumsum()]).astype(np.int64)
        return offsets, self.moves.T[moved]

    def __len__(self) -> int:
        return int(self.moves.shape[1])

    def __array__(self, dtype: Any = None, copy: bool | None = None) -> NDArray[Any]:
        if copy is False:
            raise ValueError("paths are made when they are asked for; `moves` is without a copy")
        made = self.filled()
        return made if dtype is None else made.astype(dtype)

    def __repr__(self) -> str:
        return f"<veq.Paths: {self.shape[0]} agents, {self.shape[1]} steps>"


class Coverage(NamedTuple):
    """The steps that first arrived at some vertex, and how many had been arrived at by then.

    Examples
    --------
    >>> walk = veq.Walkers(veq.lattice([3]), [0]).walk(1, first_arrivals=True, seed=1)
    >>> walk.coverage.steps.tolist(), walk.coverage.vertices.tolist()
    ([1], [1])
    """

    steps: IntArray
    vertices: IntArray


class Walk(NamedTuple):
    """What a walk has led to.

    Examples
    --------
    >>> walk = veq.Walkers(veq.lattice([3]), [0]).walk(5, seed=1)
    >>> walk.end, walk.steps
    ('steps', 5)
    """

    end: End
    """All steps were made, the target was met, ``progress`` returned False, nobody can ever move
    again, or the substream has too few draws left."""
    steps: int
    paths: Paths | None
    first_arrivals: IntArray | None
    """For each vertex the step, from 1, in which one first arrived; -1 for never."""
    coverage: Coverage | None


def _walk_of(told: tuple[str, int, Any, Any, Any]) -> Walk:
    end, steps, moves, first, coverage = told
    return Walk(
        cast(End, end),
        steps,
        None if moves is None else Paths(*moves),
        first,
        None if coverage is None else Coverage(*coverage),
    )


class WalkRecord:
    """A walk that can be walked again, as `Network.show` does; from `Walkers.record`.

    Examples
    --------
    >>> record = veq.Walkers(veq.lattice([5], periodic=True), [0, 0]).record(100, seed=1)
    >>> record
    <veq.WalkRecord: 2 agents, 100 steps>
    >>> record.num_agents, record.steps, record.seed, record.walk.end
    (2, 100, 1, 'steps')
    """

    __slots__ = ("_core", "seed", "walk")

    def __init__(self, core: _core.WalkRecord, walk: Walk, seed: int | None) -> None:
        self._core = core
        self.walk = walk
        """What the walk has led to."""
        self.seed = seed
        """Its seed, if it was a number."""

    @property
    def steps(self) -> int:
        """How many steps all agents have made.

        Examples
        --------
        >>> veq.Walkers(veq.Network([0], [1]), [0]).record(7, seed=1).steps
        7
        """
        return self._core.steps

    @property
    def num_agents(self) -> int:
        """How many agents have walked.

        Examples
        --------
        >>> veq.Walkers(veq.Network([0], [1]), [0, 1]).record(7, seed=1).num_agents
        2
        """
        return self._core.num_agents

    def __repr__(self) -> str:
        return f"<veq.WalkRecord: {self.num_agents} agents, {self.steps} steps>"


class Walkers(_core.Walkers):
    """Agents on the vertices of a network, which walk at random.

    Parameters
    ----------
    network : Network or WalkNetwork
        On a walk-only one they keep where they stand, totals and, on request, first arrivals; what
        needs more raises an `UnsupportedError`.
    starts : array_like of integers, or of names
        Where the agents stand, one for each.
    memory : int or array_like of integers, optional
        How many visits each remembers, and avoids where it can; at least 1.
    errors : float or array_like of floats
        The probability of remembering a wrong vertex.
    listeners : Network, optional
        In it vertex i stands for agent i, which passes on what it remembers along its links.

    Raises
    ------
    ValueError
        "start 2: vertex 7 of 5"; "agent 1: memory size 0"; "agent 1: error 1.5, not 0 to 1".

    Examples
    --------
    >>> ring = veq.lattice([5], periodic=True)
    >>> walkers = veq.Walkers(ring, [0, 0])
    >>> walkers.walk(100, seed=1).end
    'steps'
    >>> int(walkers.visits().sum())
    200
    """

    __slots__ = ("__weakref__", "network")

    network: Network | WalkNetwork

    def __init__(
        self,
        network: Network | WalkNetwork,
        starts: ArrayLike | Sequence[str],
        *,
        memory: ArrayLike | None = None,
        errors: ArrayLike | None = None,
        listeners: Network | None = None,
    ) -> None:
        if memory is None and (errors is not None or listeners is not None):
            raise ValueError("errors and listeners need a memory")
        where: Any = [starts] if isinstance(starts, str) else _arrays.given(starts)
        if not isinstance(where, list):
            where = np.asarray(where)
        if isinstance(network, WalkNetwork):
            if memory is not None:
                raise UnsupportedError(
                    "what agents remember is a history of each, which is not kept on a walk-only "
                    "network"
                )
            super().__init__(network, _arrays.counts(where, "start"))
            self.network = network
            return
        if isinstance(where, list) or where.dtype.kind in "UO":
            where = [network.index(v) if isinstance(v, str) else v for v in where]
        super().__init__(
            network,
            _arrays.counts(where, "start"),
            None if memory is None else _arrays.counts(np.atleast_1d(memory), "memory"),
            None if errors is None else _arrays.numbers(np.atleast_1d(errors), "errors"),
            listeners,
        )
        self.network = network

    @classmethod
    def uniform(
        cls, network: Network | WalkNetwork, agents: int, *, seed: Seed = None, **more: Any
    ) -> Self:
        """So many agents at vertices drawn each alike.

        Examples
        --------
        >>> len(veq.Walkers.uniform(veq.lattice([3]), 5, seed=1))
        5
        """
        count = _arrays.count(agents, "agents")
        return cls(network, _core.starts(network, count, False, drawn_from(seed)), **more)

    @classmethod
    def by_degree(
        cls, network: Network | WalkNetwork, agents: int, *, seed: Seed = None, **more: Any
    ) -> Self:
        """So many agents at vertices drawn by the lengths of their lists.

        Examples
        --------
        >>> walkers = veq.Walkers.by_degree(veq.Network([1], [2], n=9), 5, seed=1)
        >>> set(walkers.positions.tolist()) <= {1, 2}
        True
        """
        count = _arrays.count(agents, "agents")
        return cls(network, _core.starts(network, count, True, drawn_from(seed)), **more)

    def walk(
        self,
        steps: int | None = None,
        *,
        until: float | None = None,
        paths: bool = False,
        first_arrivals: bool = False,
        choice: Choice = "published",
        restart: float = 0.0,
        seed: Seed = None,
        progress: Progress = "auto",
        threads: int | None = None,
    ) -> Walk:
        """Walk, every agent one edge in each step.

        An interrupt, or what ``progress`` raises, ends the walk after a whole step, with everything
        consistent, and then is raised. Other threads run on.

        Parameters
        ----------
        steps
            How many at most; without it the walk goes on until its target is met.
        until
            Above 0 and up to 1: the walk ends when that share of the vertices was arrived at.
        paths, first_arrivals
            Whether to tell the paths; when each vertex was first arrived at, and the coverage.
        choice
            ``"even"``: each entry of a list alike; ``"weighted"``: by the weights of the edges;
            ``"published"``: the first and the last entry half as often as each other.
        restart
            The probability with which a step leads the agent back to where it was put.
        seed
            An integer, a `RandomState`, which is moved, or None for the process's sequence.
        progress
            ``"auto"`` shows a bar of tqdm after 1.5 s where somebody looks; a callable gets the
            steps done and all, every 50 ms, and ends the walk by returning False.
        threads
            How many threads walk, 0 being one for each processor that may be used; by default as
            many as `parallelism` says. The walk is the same for any number. Agents with listeners
            walk on one.

        Examples
        --------
        >>> one_way = veq.Network([0, 1], [1, 2], directed=True)
        >>> walk = veq.Walkers(one_way, [0]).walk(2, paths=True, seed=1)
        >>> walk.paths.filled().tolist()
        [[1, 2]]
        """
        with following(progress, "steps") as call:
            told = self._walk(
                None if steps is None else _arrays.count(steps, "steps"),
                None if until is None else float(until),
                bool(paths),
                bool(first_arrivals),
                choice,
                float(restart),
                drawn_from(seed),
                call,
                None if threads is None else of_threads(threads),
            )
        return _walk_of(told)

    def record(
        self,
        steps: int | None = None,
        *,
        until: float | None = None,
        paths: bool = False,
        first_arrivals: bool = False,
        choice: Choice = "published",
        restart: float = 0.0,
        seed: Seed = None,
        progress: Progress = "auto",
        threads: int | None = None,
    ) -> WalkRecord:
        """Walk as `walk` does, and keep what `Network.show` needs to walk the same way again.

        Agents with memory need a number of steps, and make 4,000,000 moves at most.

        Examples
        --------
        >>> ring = veq.lattice([5], periodic=True)
        >>> record = veq.Walkers(ring, [0, 0]).record(100, seed=1)
        >>> record.walk.end, record.steps
        ('steps', 100)
        """
        with following(progress, "steps") as call:
            core, told = self._record(
                None if steps is None else _arrays.count(steps, "steps"),
                None if until is None else float(until),
                bool(paths),
                bool(first_arrivals),
                choice,
                float(restart),
                drawn_from(seed),
                call,
                None if threads is None else of_threads(threads),
            )
        number = None if seed is None or isinstance(seed, RandomState) else operator.index(seed)
        return WalkRecord(core, _walk_of(told), number)

    @property
    def positions(self) -> IntArray:
        """Where the agents stand, of shape (agents,); a copy.

        Examples
        --------
        >>> veq.Walkers(veq.lattice([3]), [0, 2]).positions.tolist()
        [0, 2]
        """
        return self._positions()

    def visits(self, agent: int | None = None, *, live: bool = False) -> IntArray:
        """How often one agent, or all together, arrived at each vertex, of shape (n,).

        A snapshot; with ``live`` the agent's own array, which later walks change, until `forget`.

        Examples
        --------
        >>> walkers = veq.Walkers(veq.lattice([3]), [0, 2])
        >>> walk = walkers.walk(1, seed=1)
        >>> walkers.visits().tolist(), walkers.visits(0).tolist()
        ([0, 2, 0], [0, 1, 0])
        """
        if not live:
            return self._visits(None if agent is None else _arrays.single(agent, "agent"))
        if agent is None:
            raise ValueError("live visits are those of one agent")
        return self._live_visits(_arrays.single(agent, "agent"))

    def remembered(self, agent: int) -> IntArray:
        """What the agent remembers, the oldest first; empty for one without memory.

        Examples
        --------
        >>> one_way = veq.Network([0, 1, 2], [1, 2, 3], directed=True)
        >>> walkers = veq.Walkers(one_way, [0], memory=2)
        >>> walk = walkers.walk(3, seed=1)
        >>> walkers.remembered(0).tolist()
        [2, 3]
        """
        return self._remembered(_arrays.single(agent, "agent"))

    def forget(self) -> None:
        """Forget all visits and what has been reached; positions stay.

        Examples
        --------
        >>> walkers = veq.Walkers(veq.lattice([3]), [0])
        >>> walk = walkers.walk(10, seed=1)
        >>> walkers.forget()
        >>> walkers.visits().tolist()
        [0, 0, 0]
        """
        self._forget()

    def __len__(self) -> int:
        return self.num_agents

    def __repr__(self) -> str:
        return f"<veq.Walkers: {self.num_agents} agents on {self.network!r}>"

    def __reduce__(self) -> Any:
        raise TypeError("agents cannot be pickled: send the network, their starts and a seed")


class HittingTimes(NamedTuple):
    """Mean numbers of steps, of shape (n,), and how wrong they may be, relatively.

    Examples
    --------
    >>> veq.WalkLaw(veq.lattice([2])).hitting_times(1).steps.tolist()
    [1.0, 2.0]
    """

    steps: FloatArray
    relative_error: float


class WalkLaw(_core.WalkLaw):
    """The transition probabilities of a walk of one agent without memory, and what follows.

    Examples
    --------
    >>> law = veq.WalkLaw(veq.Network([0, 1], [1, 2]), choice="even")
    >>> law.stationary().tolist()
    [0.25, 0.5, 0.25]
    >>> law.hitting_times(2).steps.tolist()
    [4.0, 3.0, 4.0]
    """

    __slots__ = ("_solving",)

    def __init__(
        self,
        network: Network,
        *,
        choice: Choice = "published",
        restart: float = 0.0,
        start: object = 0,
        solved_up_to: int = 1500,
        precision: float = 1e-10,
        most_rounds: int = 100_000,
    ) -> None:
        super().__init__(network, choice, float(restart), network._vertex(start))
        self._solving = (solved_up_to, float(precision), most_rounds)

    def matrix(self) -> tuple[NDArray[Any], NDArray[Any], FloatArray]:
        """Row starts, targets and shares (compressed sparse rows); read-only, no copies.

        Examples
        --------
        >>> starts, targets, shares = veq.WalkLaw(veq.lattice([2])).matrix()
        >>> starts.tolist(), targets.tolist(), shares.tolist()
        ([0, 1, 2], [1, 0], [1.0, 1.0])
        """
        return self._matrix()

    def dead_ends(self) -> NDArray[Any]:
        """The vertices where a walk stays for want of edges.

        Examples
        --------
        >>> veq.WalkLaw(veq.Network([0], [1], directed=True)).dead_ends().tolist()
        [1]
        """
        return self._dead_ends()

    def stationary(self, *, progress: Progress = "auto") -> FloatArray:
        """The share of its steps that a walk spends at each vertex in the long run.

        Examples
        --------
        >>> veq.WalkLaw(veq.lattice([2])).stationary().round(6).tolist()
        [0.5, 0.5]
        """
        with following(progress, "rounds") as call:
            return self._stationary(*self._solving, call)[0]

    def hitting_times(self, target: int, *, progress: Progress = "auto") -> HittingTimes:
        """The mean number of steps from each vertex to the first arrival at the target.

        Examples
        --------
        >>> veq.WalkLaw(veq.lattice([2])).hitting_times(1).steps.round(6).tolist()
        [1.0, 2.0]
        """
        with following(progress, "rounds") as call:
            return HittingTimes(
                *self._hitting_times(_arrays.single(target, "vertex"), *self._solving, call)
            )

    def cover_time(
        self, start: int, *, start_counts: bool = False, progress: Progress = "auto"
    ) -> tuple[float, float]:
        """Bounds of the mean number of steps until a walk has been everywhere.

        Examples
        --------
        >>> low, high = veq.WalkLaw(veq.lattice([2])).cover_time(0, start_counts=True)
        >>> round(low, 6), round(high, 6)
        (1.0, 1.0)
        """
        with following(progress, "sets") as call:
            return self._cover_time(_arrays.single(start, "vertex"), bool(start_counts), call)

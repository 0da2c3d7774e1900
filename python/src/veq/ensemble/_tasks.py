"""Tasks that are there, whose numbers of draws are known, and lists of parameters."""

from __future__ import annotations

import itertools
from collections.abc import Callable, Iterable, Sequence
from dataclasses import dataclass, fields, replace
from typing import Any, ClassVar, Literal, Protocol, runtime_checkable

from .. import _arrays
from .._models import preferential_attachment, random_network
from .._network import Network
from .._walkers import Choice, Walk, Walkers
from ._context import Context, Stopped


def grid(**axes: Iterable[Any]) -> list[dict[str, Any]]:
    """The product of the axes, in their order, the last fastest.

    Examples
    --------
    >>> veq.ensemble.grid(memory=[1, 2], errors=[0.0, 0.5])[1]
    {'memory': 1, 'errors': 0.5}
    """
    each = [list(values) for values in axes.values()]
    return [dict(zip(axes, values, strict=True)) for values in itertools.product(*each)]


@runtime_checkable
class Counting(Protocol):
    """A task that knows how many numbers it draws, which ``mode="row"`` asks for."""

    def draws(self, **parameters: Any) -> int | None:
        """How many, or None where that is not known before."""


class _Prepared:
    """A task whose fields are what parameters of the same names replace."""

    def _with(self, changes: dict[str, Any]) -> Any:
        if not changes:
            return self
        try:
            return replace(self, **changes)  # type: ignore[type-var]
        except TypeError:
            known = [field.name for field in fields(self)]  # type: ignore[arg-type]
            odd = [key for key in changes if key not in known]
            if not odd:
                raise
            name = type(self).__name__
            raise TypeError(
                f"{name} has no parameter {odd[0]!r}: give {', '.join(known)}"
            ) from None

    def _check(self, collect: Sequence[str], known: Iterable[str]) -> None:
        if isinstance(collect, str):
            raise ValueError(f"collect {collect!r}: give a tuple of names")
        for name in collect:
            if name not in known:
                raise ValueError(f"collect {name!r}: give some of {', '.join(known)}")


Collected = Literal["visits", "coverage", "steps", "end", "positions", "paths"]


@dataclass(frozen=True)
class WalkTask(_Prepared):
    """A walk on one of the ensemble's networks, as `veq.Walkers` makes it.

    A task's parameters replace the fields of their names. The result is a dictionary of what is
    to be collected.

    Examples
    --------
    >>> walk = veq.ensemble.WalkTask(starts=[0], steps=100, collect=("steps", "end"))
    >>> study = veq.ensemble.Ensemble(walk, [{}], seed=1, networks=veq.lattice([5]))
    >>> study.run()[0]
    {'steps': 100, 'end': 'steps'}
    """

    starts: Any = None
    """Where the agents stand: vertices or names, one for each agent."""
    steps: int | None = None
    """How many at most; without it the walk goes on until its target is met."""
    agents: int | None = None
    """Instead of starts: so many agents at places that are drawn."""
    placed: Literal["uniform", "degree"] = "uniform"
    """How places are drawn: each vertex alike, or by the length of its list."""
    until: float | None = None
    """The share of the vertices whose arrival ends the walk."""
    memory: Any = None
    """How many visits each agent remembers."""
    errors: Any = None
    """With memory: the probability of remembering a wrong vertex."""
    listeners: str | None = None
    """With memory: the name of the network along which agents pass on what they remember."""
    choice: Choice = "published"
    restart: float = 0.0
    network: str | None = None
    """The name of the network to walk on, where there are several."""
    collect: Sequence[Collected] = ("visits",)
    """Some of "visits" (how often all together arrived at each vertex), "coverage" (the step of
    each vertex's first arrival, -1 for never), "steps", "end", "positions" and "paths" (where each
    agent stood after each step)."""
    paths_limit: int = 64 * 2**20
    """Paths that take more bytes are refused."""
    repetition: int = 0
    """Means nothing, but tells tasks apart that differ in their numbers alone."""

    _KNOWN: ClassVar[dict[str, Callable[[Walkers, Walk], Any]]] = {
        "visits": lambda walkers, walk: walkers.visits(),
        "coverage": lambda walkers, walk: walk.first_arrivals,
        "steps": lambda walkers, walk: walk.steps,
        "end": lambda walkers, walk: walk.end,
        "positions": lambda walkers, walk: walkers.positions,
        "paths": lambda walkers, walk: walk.paths and walk.paths.filled(),
    }

    def __call__(self, context: Context, **parameters: Any) -> dict[str, Any]:
        task: WalkTask = self._with(parameters)
        return task.on(context.named(task.network), context)

    def on(self, network: Network, context: Context) -> dict[str, Any]:
        """The same on any network.

        Examples
        --------
        >>> walk = veq.ensemble.WalkTask(starts=[0], steps=10, collect=("steps",))
        >>> def task(context, n):
        ...     return walk.on(veq.lattice([n]), context)
        >>> list(veq.ensemble.Ensemble(task, [{"n": 9}], seed=1).run())
        [{'steps': 10}]
        """
        self._check(self.collect, self._KNOWN)
        walkers = self._walkers(network, context)
        if "paths" in self.collect:
            self._check_paths(len(walkers))
        walk = walkers.walk(
            self.steps,
            until=self.until,
            paths="paths" in self.collect,
            first_arrivals="coverage" in self.collect,
            choice=self.choice,
            restart=self.restart,
            seed=context.state,
            progress=lambda done, all: not context.stop(),
        )
        if walk.end == "stopped":
            raise Stopped
        return {name: self._KNOWN[name](walkers, walk) for name in self.collect}

    def draws(self, **parameters: Any) -> int | None:
        """How many numbers the walk draws; None where it has no number of steps.

        Examples
        --------
        >>> veq.ensemble.WalkTask(starts=[0, 1], steps=10, memory=3).draws()
        60
        """
        task: WalkTask = self._with(parameters)
        if task.steps is None:
            return None
        purposes = (1 if task.memory is None else 3) + (task.restart > 0)
        return task._count() * task.steps * purposes + 2 * (task.agents or 0)

    def _count(self) -> int:
        if (self.starts is None) == (self.agents is None):
            raise ValueError("a walk needs starts or agents, and not both")
        if self.agents is not None:
            return _arrays.count(self.agents, "agents")
        return 1 if isinstance(self.starts, str) else len(self.starts)

    def _walkers(self, network: Network, context: Context) -> Walkers:
        self._count()
        more = {
            "memory": self.memory,
            "errors": self.errors,
            "listeners": None if self.listeners is None else context.named(self.listeners),
        }
        if self.agents is None:
            return Walkers(network, self.starts, **more)
        if self.placed not in ("uniform", "degree"):
            raise ValueError(f"placed {self.placed!r}: give one of 'uniform', 'degree'")
        place = Walkers.uniform if self.placed == "uniform" else Walkers.by_degree
        return place(network, self.agents, seed=context.state, **more)

    def _check_paths(self, agents: int) -> None:
        if self.steps is None:
            raise ValueError("paths need a number of steps")
        size = 4 * agents * self.steps
        if size > self.paths_limit:
            raise ValueError(
                f"paths of {size} bytes, more than paths_limit={self.paths_limit} for each task"
            )


ModelCollected = Literal["network", "vertices", "edges", "degrees"]


class _Model(_Prepared):
    """A task that grows a network."""

    collect: Sequence[ModelCollected]

    _KNOWN: ClassVar[dict[str, Callable[[Network], Any]]] = {
        "network": lambda network: network,
        "vertices": lambda network: network.num_vertices,
        "edges": lambda network: network.num_edges,
        "degrees": lambda network: network.degrees(),
    }

    def __call__(self, context: Context, **parameters: Any) -> dict[str, Any]:
        model = self._with(parameters)
        self._check(model.collect, self._KNOWN)
        network = model.grown(context)
        return {name: self._KNOWN[name](network) for name in model.collect}


@dataclass(frozen=True)
class RandomNetwork(_Model):
    """A network by `veq.random_network`.

    The result is a dictionary of what is to be collected: some of "network", "vertices", "edges"
    and "degrees".

    Examples
    --------
    >>> model = veq.ensemble.RandomNetwork(degree=4.0, collect=("vertices", "edges"))
    >>> list(veq.ensemble.Ensemble(model, [{"n": 4}], seed=1).run())
    [{'vertices': 4, 'edges': 6}]
    """

    n: int = 0
    degree: float = 0.0
    collect: Sequence[ModelCollected] = ("network",)
    repetition: int = 0

    def grown(self, context: Context) -> Network:
        """The network alone.

        Examples
        --------
        >>> model = veq.ensemble.RandomNetwork(n=30, degree=4.0)
        >>> def task(context):
        ...     return len(model.grown(context)) <= 30
        >>> list(veq.ensemble.Ensemble(task, [{}] * 3, seed=1).run())
        [True, True, True]
        """
        return random_network(self.n, self.degree, seed=context.state)

    def draws(self, **parameters: Any) -> int | None:
        """How many numbers are drawn: for every pair, in whole batches.

        Examples
        --------
        >>> veq.ensemble.RandomNetwork(n=5, degree=1.0).draws()
        12
        """
        model: RandomNetwork = self._with(parameters)
        batch = float(model.n) * model.degree + 1.0
        if not 0.0 <= batch < 2.0**63:
            return None
        pairs = model.n * (model.n - 1) // 2
        return int(batch) * (pairs // int(batch) + 1) if int(batch) else 0


@dataclass(frozen=True)
class PreferentialAttachment(_Model):
    """A network by `veq.preferential_attachment`. Nobody knows before how many numbers it draws.

    Examples
    --------
    >>> model = veq.ensemble.PreferentialAttachment(n=10, degree=4, collect=("edges",))
    >>> veq.ensemble.Ensemble(model, [{}], seed=1).one(0)
    {'edges': 16}
    """

    n: int = 0
    degree: int = 0
    collect: Sequence[ModelCollected] = ("network",)
    repetition: int = 0

    def grown(self, context: Context) -> Network:
        """The network alone.

        Examples
        --------
        >>> model = veq.ensemble.PreferentialAttachment(n=30, degree=4)
        >>> def task(context):
        ...     return model.grown(context).num_edges
        >>> list(veq.ensemble.Ensemble(task, [{}], seed=1).run())
        [56]
        """
        return preferential_attachment(self.n, self.degree, seed=context.state)

    def draws(self, **parameters: Any) -> int | None:
        """None, as drawn targets may be drawn again.

        Examples
        --------
        >>> veq.ensemble.PreferentialAttachment(n=10, degree=4).draws() is None
        True
        """
        return None


@dataclass(frozen=True)
class Chain:
    """A walk on a network that a model grows for it, both with the numbers of the task.

    Parameters go to the walk if it has a field of that name, and to the model otherwise.

    Examples
    --------
    >>> chain = veq.ensemble.Chain(
    ...     veq.ensemble.PreferentialAttachment(degree=4),
    ...     veq.ensemble.WalkTask(starts=[0], until=1.0, choice="even", collect=("end",)),
    ... )
    >>> study = veq.ensemble.Ensemble(chain, veq.ensemble.grid(n=[10, 20]), seed=1)
    >>> list(study.run())
    [{'end': 'target'}, {'end': 'target'}]
    """

    model: RandomNetwork | PreferentialAttachment
    walk: WalkTask

    def __call__(self, context: Context, **parameters: Any) -> dict[str, Any]:
        model, walk = self._with(parameters)
        return walk.on(model.grown(context), context)

    def draws(self, **parameters: Any) -> int | None:
        """How many numbers are drawn by both, if both know.

        Examples
        --------
        >>> model = veq.ensemble.RandomNetwork(n=5, degree=1.0)
        >>> veq.ensemble.Chain(model, veq.ensemble.WalkTask(starts=[0], steps=7)).draws()
        19
        """
        model, walk = self._with(parameters)
        by_model, by_walk = model.draws(), walk.draws()
        return None if by_model is None or by_walk is None else by_model + by_walk

    def _with(
        self, parameters: dict[str, Any]
    ) -> tuple[RandomNetwork | PreferentialAttachment, WalkTask]:
        own = {field.name for field in fields(self.walk)}
        for_walk = {key: value for key, value in parameters.items() if key in own}
        for_model = {key: value for key, value in parameters.items() if key not in own}
        return self.model._with(for_model), self.walk._with(for_walk)

"""What a task gets, and what becomes of one that fails."""

from __future__ import annotations

from collections.abc import Callable, Mapping
from dataclasses import dataclass
from typing import Any

import numpy as np

from .._network import Network
from .._random import RandomState


@dataclass(frozen=True, slots=True)
class Context:
    """What a task may use: everything else would make its result depend on more than its number.

    Networks are shared by all tasks of a process: they are for reading.

    Examples
    --------
    >>> def throw(context, sides):
    ...     return 1 + context.state.below(sides)
    >>> dice = veq.ensemble.Ensemble(throw, veq.ensemble.grid(sides=[1, 6, 20]), seed=1).run()
    >>> dice[0], dice[2] == 1 + veq.RandomState(1).substream(2).below(20)
    (1, True)
    """

    index: int
    """The number of the task in the list."""
    seed: int
    """The seed of the ensemble."""
    state: RandomState
    """Where the task draws. Nothing else may be drawn from."""
    networks: Mapping[str, Network]
    """The networks of the ensemble, by name; a single one is called "network"."""
    stop: Callable[[], bool]
    """Whether the task shall end, since nobody wants its result any more."""

    @property
    def network(self) -> Network:
        """The only network; ValueError where there are others, or none.

        Examples
        --------
        >>> def task(context):
        ...     return context.network.num_edges
        >>> list(veq.ensemble.Ensemble(task, [{}], seed=1, networks=veq.lattice([4])).run())
        [3]
        """
        return self.named(None)

    def named(self, name: str | None) -> Network:
        """The network of that name, or the only one.

        Examples
        --------
        >>> def task(context, network):
        ...     return len(context.named(network))
        >>> networks = {"short": veq.lattice([4]), "long": veq.lattice([40])}
        >>> tasks = veq.ensemble.grid(network=networks)
        >>> list(veq.ensemble.Ensemble(task, tasks, seed=1, networks=networks).run())
        [4, 40]
        """
        if name is None:
            if len(self.networks) == 1:
                return next(iter(self.networks.values()))
            known = ", ".join(map(repr, self.networks)) or "none"
            raise ValueError(f"which network? There are {known}: give network=")
        if name not in self.networks:
            known = ", ".join(map(repr, self.networks)) or "none"
            raise ValueError(f"network {name!r}: there are {known}")
        return self.networks[name]

    def numpy(self) -> np.random.Generator:
        """A generator of NumPy's that follows from seed and number.

        Its numbers are NumPy's promise, and not this library's.

        Examples
        --------
        >>> def task(context):
        ...     return context.numpy().normal(size=3)
        >>> study = veq.ensemble.Ensemble(task, [{}] * 2, seed=1)
        >>> bool((study.one(1) == study.run()[1]).all())
        True
        """
        return np.random.Generator(np.random.Philox(key=self.seed << 64 | self.index))


class TaskError(RuntimeError):
    """A task has failed: ``index`` and ``parameters`` say which, ``__cause__`` why.

    Examples
    --------
    >>> def task(context, a):
    ...     return 1 / a
    >>> veq.ensemble.Ensemble(task, [{"a": 1}, {"a": 0}], seed=1).run()
    Traceback (most recent call last):
    ...
    veq.ensemble._context.TaskError: task 1 (a=0): ZeroDivisionError: division by zero
    """

    def __init__(self, index: int, parameters: Mapping[str, Any], why: str) -> None:
        super().__init__(index, parameters, why)
        self.index = index
        self.parameters = parameters
        self.why = why

    def __str__(self) -> str:
        shown = ", ".join(f"{key}={value!r:.60}" for key, value in self.parameters.items())
        return f"task {self.index} ({shown}): {self.why}"


class Stopped(Exception):
    """What a task raises that was told to stop."""

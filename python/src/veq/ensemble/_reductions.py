"""Results added up while they come, instead of kept."""

from __future__ import annotations

import operator
from collections.abc import Callable, Mapping, Sequence
from dataclasses import dataclass
from functools import reduce
from typing import Any

import numpy as np
from numpy.typing import ArrayLike


@dataclass(frozen=True)
class _Field:
    """One of a dictionary, or the result itself."""

    name: str | None

    def __call__(self, result: Any) -> Any:
        if self.name is None:
            return result
        if not isinstance(result, Mapping) or self.name not in result:
            raise KeyError(f"the result has no {self.name!r}")
        return result[self.name]


@dataclass(frozen=True)
class Reduction:
    """How results become one.

    ``add`` takes two of what ``of`` gives for single results, and gives a third. If the order and
    the grouping of additions mean nothing, as with integers, maxima and histograms, the reduction
    is ``exact``: workers add what they have. Sums of floats are not exact; there the results come
    to the coordinator, which adds them in the order of the tasks.

    Examples
    --------
    >>> walk = veq.ensemble.WalkTask(starts=[0], steps=10, collect=("steps",))
    >>> total = veq.ensemble.summed("steps")
    >>> study = veq.ensemble.Ensemble(
    ...     walk, [{}] * 7, seed=1, networks=veq.lattice([5]), reduce=total
    ... )
    >>> study.run().reduced
    70
    """

    add: Callable[[Any, Any], Any]
    exact: bool
    of: Callable[[Any], Any] = _Field(None)

    def all(self, parts: Sequence[Any]) -> Any:
        """Of at least one part.

        Examples
        --------
        >>> veq.ensemble.summed("steps").all([1, 2, 3])
        6
        """
        return reduce(self.add, parts)


@dataclass(frozen=True)
class _Integers(_Field):
    def __call__(self, result: Any) -> Any:
        value = _Field.__call__(self, result)
        if isinstance(value, int):
            return int(value)
        kind = value.dtype.kind if isinstance(value, np.ndarray | np.generic) else ""
        if kind not in ("i", "u", "b"):
            raise TypeError(f"{self.name or 'a result'} is no integer: add it with exact=False")
        return value.astype(np.uint64 if kind == "u" else np.int64)


@dataclass(frozen=True)
class _Counted(_Field):
    edges: tuple[float, ...]

    def __call__(self, result: Any) -> Any:
        values = np.atleast_1d(np.asarray(_Field.__call__(self, result)))
        return np.histogram(values, np.asarray(self.edges))[0].astype(np.int64)


def _least(a: Any, b: Any) -> Any:
    return np.minimum(a, b) + 0  # Not -0.0, for which it would matter which zero came first.


def _greatest(a: Any, b: Any) -> Any:
    return np.maximum(a, b) + 0


def summed(field: str | None = None, *, exact: bool = True) -> Reduction:
    """The sum of integers or arrays of them; of floats with ``exact=False``.

    Examples
    --------
    >>> def task(context):
    ...     return context.index / 2
    >>> halves = veq.ensemble.summed(exact=False)
    >>> veq.ensemble.Ensemble(task, [{}] * 4, seed=1, reduce=halves).run().reduced
    3.0
    """
    return Reduction(operator.add, exact, _Integers(field) if exact else _Field(field))


def minimum(field: str | None = None) -> Reduction:
    """The least, element by element of arrays.

    Examples
    --------
    >>> def task(context):
    ...     return 10 - context.index
    >>> least = veq.ensemble.minimum()
    >>> int(veq.ensemble.Ensemble(task, [{}] * 4, seed=1, reduce=least).run().reduced)
    7
    """
    return Reduction(_least, True, _Field(field))


def maximum(field: str | None = None) -> Reduction:
    """The greatest, element by element of arrays.

    Examples
    --------
    >>> def task(context):
    ...     return {"index": context.index}
    >>> last = veq.ensemble.maximum("index")
    >>> int(veq.ensemble.Ensemble(task, [{}] * 4, seed=1, reduce=last).run().reduced)
    3
    """
    return Reduction(_greatest, True, _Field(field))


def histogram(field: str | None, edges: ArrayLike) -> Reduction:
    """How many values lie between each two of the edges, as ``numpy.histogram`` has it.

    Examples
    --------
    >>> def task(context):
    ...     return context.index
    >>> counts = veq.ensemble.histogram(None, [0, 5, 20])
    >>> veq.ensemble.Ensemble(task, [{}] * 12, seed=1, reduce=counts).run().reduced.tolist()
    [5, 7]
    """
    return Reduction(operator.add, True, _Counted(field, tuple(np.asarray(edges).tolist())))

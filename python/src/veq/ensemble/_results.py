"""What an ensemble has led to."""

from __future__ import annotations

from collections.abc import Mapping, Sequence
from typing import Any, Generic, TypeVar, overload

import numpy as np
from numpy.typing import NDArray

from ._checkpoint import Checkpoint
from ._context import TaskError
from ._reductions import Reduction
from ._values import sha256
from ._work import Outcome

R = TypeVar("R")


class Results(Sequence[R], Generic[R]):
    """The results of all tasks, in the order of the list.

    Where results are reduced there is nothing but `reduced`, and the sequence is empty.

    Examples
    --------
    >>> def task(context, n):
    ...     return n**2
    >>> results = veq.ensemble.Ensemble(task, veq.ensemble.grid(n=[3, 4]), seed=1).run()
    >>> results[1], list(results), results.errors, results.seconds.shape
    (16, [9, 16], [], (2,))
    """

    def __init__(
        self,
        parameters: Sequence[Mapping[str, Any]],
        values: list[R],
        seconds: NDArray[np.float64],
        errors: list[TaskError],
        reduced: Any,
    ) -> None:
        self._parameters = parameters
        self._values = values
        self.seconds = seconds
        """How long each task took, of shape (tasks,); NaN where that is not known."""
        self.errors = errors
        """With ``on_error="collect"``: what failed, in order. Its results are None."""
        self.reduced = reduced
        """What the reduction made of all results; None without one, or without any result."""

    @overload
    def __getitem__(self, index: int) -> R: ...
    @overload
    def __getitem__(self, index: slice) -> list[R]: ...
    def __getitem__(self, index: int | slice) -> R | list[R]:
        return self._values[index]

    def __len__(self) -> int:
        return len(self._values)

    def __repr__(self) -> str:
        failed = f", {len(self.errors)} failed" if self.errors else ""
        return f"<veq.ensemble.Results: {len(self)} results{failed}>"

    def sha256(self) -> str:
        """The SHA-256 of all results: equal wherever, and by whomever, they were computed.

        Examples
        --------
        >>> study = veq.ensemble.Ensemble(veq.ensemble.RandomNetwork(n=9, degree=3.0), [{}], seed=1)
        >>> study.run(workers=0).sha256() == study.run(workers=2).sha256()
        True
        """
        return sha256([self._values, self.reduced])

    def columns(self) -> dict[str, list[Any]]:
        """The numbers of the tasks, their parameters and what they gave, by name.

        A result that has the name of a parameter gets "_result" behind it. What a task does not
        have is None.

        Examples
        --------
        >>> def task(context, n):
        ...     return {"square": n**2}
        >>> veq.ensemble.Ensemble(task, veq.ensemble.grid(n=[3, 4]), seed=1).run().columns()
        {'task': [0, 1], 'n': [3, 4], 'square': [9, 16]}
        """
        tasks = [{"task": k, **self._parameters[k]} for k in range(len(self))]
        names = dict.fromkeys(key for task in tasks for key in task) or {"task": None}
        given = [v if isinstance(v, Mapping) else {"result": v} for v in self._values]
        keys = dict.fromkeys(key for result in given for key in result)
        made = {name: [task.get(name) for task in tasks] for name in names}
        for key in keys:
            name = f"{key}_result" if key in names else str(key)
            made[name] = [result.get(key) for result in given]
        return made

    def to_frame(self) -> Any:
        """The `columns` as a data frame of pandas, a row for each task.

        Examples
        --------
        >>> def task(context, n):
        ...     return n**2
        >>> veq.ensemble.Ensemble(task, veq.ensemble.grid(n=[3, 4]), seed=1).run().to_frame()
           task  n  result
        0     0  3       9
        1     1  4      16
        """
        import pandas

        return pandas.DataFrame(self.columns())


class Kept:
    """Results while they come, of the tasks that there are."""

    def __init__(
        self, count: int, reduction: Reduction | None, checkpoint: Checkpoint | None
    ) -> None:
        self.reduction = reduction
        self.seconds = np.full(count, np.nan)
        self.done = np.zeros(count, np.bool_)
        self._values: dict[int, Any] = {}
        # The total of those that were added, and the tasks that came last into it: together, for
        # an interrupt may come between any two statements.
        self._total: tuple[list[Any], list[int]] = [], []
        self._next = 0
        self._checkpoint = checkpoint
        self._resume()

    @property
    def _adds(self) -> bool:
        return self.reduction is not None and self.reduction.exact

    def _resume(self) -> None:
        if self._checkpoint is None:
            return
        if self._adds:
            there = self._checkpoint.total()
            if there is not None:
                self.done, self._total = there[0], ([there[1]], [])
            return
        for outcome in self._checkpoint.records():
            if not self.done[outcome.index]:
                self._place(outcome)

    def keep(self, outcomes: Sequence[Outcome], total: object) -> None:
        """Of tasks that have succeeded, with their total if workers add."""
        if self._adds:
            self._add(total, [outcome.index for outcome in outcomes])
            for outcome in outcomes:
                self.seconds[outcome.index] = outcome.seconds
            if self._checkpoint is not None:
                self._checkpoint.keep_total(self._settled)
            return
        fresh = [outcome for outcome in outcomes if not self.done[outcome.index]]
        if self._checkpoint is not None:
            self._checkpoint.append(fresh)
        for outcome in fresh:
            self._place(outcome)

    def tick(self) -> None:
        """Let the checkpoint do what is due."""
        if self._checkpoint is not None:
            self._checkpoint.tick()

    def _place(self, outcome: Outcome) -> None:
        self.done[outcome.index] = True
        self.seconds[outcome.index] = outcome.seconds
        self._values[outcome.index] = outcome.value
        if self.reduction is not None:
            self._add_in_order()

    def _add(self, part: Any, indices: list[int]) -> None:
        assert self.reduction is not None
        self._settled()
        self._total = [self.reduction.all([*self._total[0], part])], indices
        self._settled()

    def _settled(self) -> tuple[NDArray[np.bool_], Any]:
        """Which tasks are in the total, and the total."""
        self.done[self._total[1]] = True
        return self.done, self._total[0][0] if self._total[0] else None

    def _add_in_order(self) -> None:
        while self._next in self._values:
            self._add(self._values.pop(self._next), [self._next])
            self._next += 1

    def results(
        self, parameters: Sequence[Mapping[str, Any]], errors: list[TaskError]
    ) -> Results[Any]:
        """All of them."""
        if self.reduction is not None:
            # Those behind one that has failed.
            for index in sorted(self._values):
                self._add(self._values.pop(index), [index])
            return Results(parameters, [], self.seconds, errors, self._settled()[1])
        values = [self._values.get(index) for index in range(len(parameters))]
        return Results(parameters, values, self.seconds, errors, None)

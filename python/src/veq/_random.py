"""Random numbers."""

from __future__ import annotations

import operator
from collections.abc import Callable
from typing import Any

import numpy as np

from . import _core
from ._arrays import count as number_of
from ._arrays import indices


def _checked(seed: int) -> int:
    number = operator.index(seed)
    if isinstance(seed, bool) or not 0 < number < 2**32:
        raise ValueError(f"seed {seed!r}: give an integer from 1 to 4294967295")
    return number


class RandomState(_core.RandomState):
    """A place in the sequence of random numbers, to draw from without touching that of the process.

    Calls that are given one draw from it and move it. The same seed gives the same numbers on every
    machine, here, in C++ and in the program.

    Parameters
    ----------
    seed : int
        From 1 to 2**32 - 1.

    Examples
    --------
    >>> state = veq.RandomState(1)
    >>> state.draw()
    1804289383
    >>> state.copy().double() == state.draw() / 2**31
    True
    """

    __slots__ = ()

    def __init__(self, seed: int) -> None:
        super().__init__(_checked(seed))

    @classmethod
    def _of(cls, core: _core.RandomState) -> RandomState:
        self = cls.__new__(cls)
        _core.RandomState.__init__(self, 1)
        self._assign(core)
        return self

    @classmethod
    def from_words(cls, words: Any) -> RandomState:
        """The state of 31 words, as ``words`` gives them.

        Examples
        --------
        >>> state = veq.RandomState(7).after(1000)
        >>> veq.RandomState.from_words(state.words) == state
        True
        """
        array = indices(words, "word")
        if ((array < 0) | (array >= 2**32)).any():
            place = int(np.argmax((array < 0) | (array >= 2**32)))
            raise ValueError(f"word {place}: {array[place]} has more than 32 bits")
        return cls._of(_core.random_from_words(np.ascontiguousarray(array, np.uint32)))

    def copy(self) -> RandomState:
        """Another state at the same place.

        Examples
        --------
        >>> state = veq.RandomState(1)
        >>> state.copy().draw() == state.draw()
        True
        """
        return self._of(self._copy())

    __copy__ = copy

    def __deepcopy__(self, memo: object) -> RandomState:
        return self.copy()

    def draws(self, count: int) -> np.ndarray[Any, np.dtype[np.uint32]]:
        """The next so many draws, of shape (count,).

        Examples
        --------
        >>> veq.RandomState(1).draws(2).tolist()
        [1804289383, 846930886]
        """
        return super().draws(number_of(count, "count"))

    def after(self, draws: int) -> RandomState:
        """The state after so many draws, in microseconds whatever their number.

        Examples
        --------
        >>> veq.RandomState(1).after(1).draw()
        846930886
        """
        number = operator.index(draws)
        if not 0 <= number < 2**128:
            raise ValueError(f"draws = {number}: give 0 to 2**128 - 1")
        return self._of(self._after(number))

    def substream(self, k: int) -> RandomState:
        """Stream ``k`` of 2**22, with 2**40 - 87 draws of its own, for task ``k`` of many.

        Examples
        --------
        >>> veq.RandomState(1).substream(3).draws_left == 2**40 - 87
        True
        """
        number = operator.index(k)
        if not 0 <= number < 2**22:
            raise IndexError(f"substream {number} of {2**22}")
        return self._of(self._substream(number))

    def __reduce__(self) -> tuple[Callable[..., RandomState], tuple[Any]]:
        if self.draws_left is not None:
            raise TypeError("a substream cannot be pickled: send the state and the number k")
        return RandomState.from_words, (self.words.tolist(),)

    def __repr__(self) -> str:
        left = self.draws_left
        return "<veq.RandomState" + ("" if left is None else f": {left} draws left") + ">"

    __hash__ = None  # type: ignore[assignment]


Seed = int | RandomState | None
"""A seed from 1 to 2**32 - 1, a state that the call moves, or None for the process's sequence."""


def drawn_from(seed: Seed) -> RandomState | None:
    """Where a call draws."""
    if seed is None or isinstance(seed, RandomState):
        return seed
    return RandomState(seed)


def seed_of(seed: Seed) -> int:
    """For a call that wants a seed and no state: of a state the next draw, which it moves."""
    if seed is None:
        return _core.shared_draw() or 1
    return (seed.draw() or 1) if isinstance(seed, RandomState) else _checked(seed)


def seed(number: int) -> None:
    """Start the process's own sequence anew, which calls without ``seed=`` draw from.

    Examples
    --------
    >>> veq.seed(1)
    >>> veq.gnp(100, 0.5).num_edges == veq.gnp(100, 0.5, seed=1).num_edges
    True
    """
    _core.set_random_state(RandomState(number))


def random_state() -> RandomState:
    """Where the process's own sequence is.

    Examples
    --------
    >>> veq.seed(1)
    >>> veq.random_state() == veq.RandomState(1)
    True
    """
    return RandomState._of(_core.random_state())


def set_random_state(state: RandomState) -> None:
    """Put the process's own sequence there.

    Examples
    --------
    >>> veq.set_random_state(veq.RandomState(1).after(5))
    >>> veq.random_state() == veq.RandomState(1).after(5)
    True
    """
    _core.set_random_state(state)

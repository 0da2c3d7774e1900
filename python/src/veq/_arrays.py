"""Arrays of the caller's, whatever they are, for the library to read."""

from __future__ import annotations

import operator
from collections.abc import Sequence
from numbers import Integral
from typing import Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

Array = NDArray[Any]


def flat(values: ArrayLike, what: str) -> Array:
    """An array of one dimension."""
    array: Array = np.asarray(values)
    if array.ndim != 1:
        raise ValueError(f"{what}: an array of {array.ndim} dimensions, not one")
    return array


def indices(values: ArrayLike, what: str) -> Array:
    """Integers of 32 or 64 bits in the machine's order; ValueError naming what is none."""
    array = flat(values, what)
    if array.dtype.kind in "iu":
        if array.dtype.itemsize < 4 or not array.dtype.isnative:
            return array.astype(np.int64)
        return array if array.flags.aligned and array.strides[0] >= 0 else array.copy()
    if array.size == 0:
        return np.zeros(0, np.int64)
    if array.dtype.kind == "f":
        # A fraction or NaN is the reason why, where there is one.
        place = int(np.argmax(~(np.floor(array) == array)))
        raise ValueError(f"{what} {place}: {array[place].item()!r} is no integer")
    for place, value in enumerate(array.tolist()):
        if not isinstance(value, Integral) or isinstance(value, bool):
            raise ValueError(f"{what} {place}: {value!r} is no integer")
        if not -(2**63) <= int(value) < 2**64:
            raise ValueError(f"{what} {place}: {value!r} has more than 64 bits")
    return array.astype(np.int64 if (array < 2**63).all() else np.uint64)


def optional_numbers(values: ArrayLike | None, what: str) -> Array | None:
    """As `numbers`, but None stays what it is."""
    return None if values is None else numbers(values, what)


def numbers(values: ArrayLike, what: str) -> Array:
    """Contiguous floats of 32 or 64 bits; ValueError naming what is no number."""
    array = flat(values, what)
    if array.dtype.kind not in "fiub":
        for place, value in enumerate(array.tolist()):
            try:
                float(value)
            except (TypeError, ValueError):
                raise ValueError(f"{what} {place}: {value!r} is no number") from None
    wanted = np.float32 if array.dtype in (np.float32, np.float16) else np.float64
    return np.ascontiguousarray(array, dtype=wanted)


def single(value: object, what: str) -> int:
    """An integer that the library can take; IndexError for one with more bits."""
    index = operator.index(value)  # type: ignore[arg-type]
    if -(2**63) <= index < 2**63:
        return index
    raise IndexError(f"{what} {index}: no such index")


def count(value: object, what: str) -> int:
    """An integer from 0 to 2^64 - 1."""
    number = operator.index(value)  # type: ignore[arg-type]
    if 0 <= number < 2**64:
        return number
    raise ValueError(f"{what} = {number}: give 0 to 2**64 - 1")


def texts(values: Sequence[object] | Array, what: str) -> list[str]:
    """A list of strings."""
    made: list[str] = []
    for place, value in enumerate(values.tolist() if isinstance(values, np.ndarray) else values):
        if not isinstance(value, str):
            raise ValueError(f"{what} {place}: {value!r} is no string")
        made.append(value)
    return made

"""Arrays of the caller's, whatever they are, for the library to read."""

from __future__ import annotations

import operator
from collections.abc import Sequence
from typing import Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

Array = NDArray[Any]


def given(values: Any) -> Any:
    """The same, or where some are missing a list with None for these.

    By itself NumPy makes NaN of what is missing, and floats of the integers beside it; of a masked
    array it takes what the mask hides.
    """
    if isinstance(values, np.ma.MaskedArray):
        return values.tolist() if values.mask.any() else values.data
    null_count = getattr(values, "null_count", None)
    if null_count is not None:
        if callable(null_count):  # polars
            return values.to_list() if null_count() else values
        return values.to_pylist() if null_count else values  # Arrow
    dtype = getattr(values, "dtype", None)
    if hasattr(values, "isna") and not (isinstance(dtype, np.dtype) and dtype.kind in "iufb"):
        missing = values.isna()  # pandas
        if getattr(missing, "ndim", 0) == 1 and missing.any():
            return [None if no else value for value, no in zip(values, missing, strict=True)]
    return values


def flat(values: ArrayLike, what: str) -> Array:
    """An array of one dimension."""
    array: Array = np.asarray(given(values))
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
    made: list[int] = []
    for place, value in enumerate(array.tolist()):
        if isinstance(value, bool) or not hasattr(value, "__index__"):
            raise ValueError(f"{what} {place}: {value!r} is no integer")
        made.append(operator.index(value))
        if not -(2**63) <= made[-1] < 2**64:
            raise ValueError(f"{what} {place}: {value!r} has more than 64 bits")
    return np.array(made, np.int64 if max(made) < 2**63 else np.uint64)


def counts(values: ArrayLike, what: str) -> Array:
    """Indices that are no lower than 0; ValueError naming one that is."""
    array = indices(values, what)
    if array.dtype.kind == "i" and (array < 0).any():
        place = int(np.argmax(array < 0))
        raise ValueError(f"{what} {place}: {array[place]} is below 0")
    return array


def optional_numbers(values: ArrayLike | None, what: str) -> Array | None:
    """As `numbers`, but None stays what it is."""
    return None if values is None else numbers(values, what)


def numbers(values: ArrayLike, what: str) -> Array:
    """Contiguous floats of 32 or 64 bits; ValueError naming what is no number."""
    array = flat(values, what)
    if array.dtype.kind not in "fiub":
        made: list[float] = []
        for place, value in enumerate(array.tolist()):
            try:
                # What is a text may look like a number; the integers of a date are none either.
                if isinstance(value, (str, bytes)) or array.dtype.kind in "mM":
                    raise TypeError
                made.append(float(value))
            except (TypeError, ValueError, OverflowError):
                raise ValueError(f"{what} {place}: {value!r} is no number") from None
        return np.array(made, np.float64)
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
    listed: list[Any] = values.tolist() if isinstance(values, np.ndarray) else list(values)
    if not set(map(type, listed)) <= {str}:
        for place, value in enumerate(listed):
            if not isinstance(value, str):
                raise ValueError(f"{what} {place}: {value!r} is no string")
    return listed


def refuse_other_than_pairs(edges: Sequence[Any]) -> None:
    """Names the first edge that has not two ends."""
    for place, edge in enumerate(edges):
        if not hasattr(edge, "__len__") or len(edge) != 2:
            raise ValueError(f"edge {place}: {edge!r} is no pair of names")

"""The columns of vertices or edges as a mapping."""

from __future__ import annotations

from collections.abc import Iterator, MutableMapping, Sequence
from typing import TYPE_CHECKING, Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _arrays, _core

if TYPE_CHECKING:
    from ._network import Network

Column = NDArray[Any]
_ALL = 2**64 - 1


_READY = {type(None), str, float}
"""What the binding takes as it is, whatever the value."""


def _element(value: object, what: str, place: int) -> object:
    """A single value, as the binding wants it."""
    if value is None or isinstance(value, (str, np.float32, np.uint64)):  # pyright: ignore[reportArgumentType]
        return value if not isinstance(value, np.str_) else str(value)
    if isinstance(value, (bool, np.bool_)):
        return int(value)
    if isinstance(value, (int, np.integer)):
        number = int(value)
        if -(2**63) <= number < 2**63:
            return number
        if number < 2**64 and number > 0:
            return np.uint64(number)
        raise ValueError(f"{what}: value {place} has more than 64 bits")
    if isinstance(value, (float, np.floating)):
        return float(value)
    if isinstance(value, (tuple, list, np.ndarray)) and len(value) in (2, 3):
        try:
            return tuple(float(part) for part in value)
        except (TypeError, ValueError):
            pass
    raise ValueError(
        f"{what}: value {place} is a {type(value).__name__}, not None, a string, a number or a "
        "vector of 2 or 3 numbers"
    )


def _alike(values: list[Any]) -> Column | None:
    """The array of values that are all integers, all floats or all vectors of one length."""
    kinds = set(map(type, values))
    if kinds == {int} and -(2**63) <= min(values) and max(values) < 2**63:
        return np.array(values, np.int64)
    if kinds == {float}:
        return np.array(values, np.float64)
    if kinds == {tuple} and len(set(map(len, values))) == 1:
        return np.array(values, np.float64)
    return None


def prepared(values: ArrayLike | Sequence[object], what: str) -> Column | list[object]:
    """An array of numbers or vectors, or a list of values of any kind."""
    listed: list[object]
    values = _arrays.given(values)
    if isinstance(values, (list, tuple)):
        listed = list(values)
    else:
        array: Column = np.asarray(values)
        if array.dtype.kind in "iufb" and array.ndim == 1:
            return _numbers(array)
        if array.dtype.kind in "iufb" and array.ndim == 2 and array.shape[1] in (2, 3):
            return np.ascontiguousarray(array, np.float64)
        if array.ndim != 1:
            raise ValueError(f"{what}: an array of shape {array.shape}")
        # As an object it is no integer, which its list may have it be.
        listed = list(array) if array.dtype.kind in "mM" else array.tolist()
    kinds = set(map(type, listed))
    numbers = _alike(listed) if kinds == {int} else None
    if numbers is not None:
        return numbers
    if not kinds <= _READY:
        listed = [_element(value, what, place) for place, value in enumerate(listed)]
    alike = _alike(listed)
    return listed if alike is None else alike


def _numbers(array: Column) -> Column:
    if array.dtype.kind == "f":
        wanted: type = np.float32 if array.dtype.itemsize <= 4 else np.float64
    else:
        wanted = np.uint64 if array.dtype == np.uint64 else np.int64
    # In the machine's own byte order.
    return np.ascontiguousarray(array, np.dtype(wanted))


class Columns(MutableMapping[str, Column]):
    """The columns of a network's vertices or edges, by their keys.

    Numbers come as the column's own memory: what is written to the array is written to the network.
    Vectors come as an array of shape (n, 2) or (n, 3), and values of any kind as an array of
    objects, None where nothing is set; both are copies. A column is set as a whole, from anything
    that NumPy takes.

    Examples
    --------
    >>> network = veq.Network([0, 1], [1, 2])
    >>> network.vertex_data["Age"] = [31, 45, 27]
    >>> network.vertex_data["Age"] += 1
    >>> network.vertex_data["Age"]
    array([32, 46, 28])
    >>> list(network.vertex_data)
    ['Age']
    """

    __slots__ = ("_edges", "_network")

    def __init__(self, network: Network, edges: bool) -> None:
        self._network = network
        self._edges = edges

    def __getitem__(self, key: str) -> Column:
        return self.head(key, _ALL)

    def head(self, key: str, most: int) -> Column:
        """The column, or its first elements without making all: of a column of numbers it is all.

        Examples
        --------
        >>> network = veq.Network.from_names([("Ada", "Bob"), ("Eve", "Ada")])
        >>> network.vertex_data.head("Name", 2).tolist()
        ['Ada', 'Bob']
        """
        if not isinstance(key, str):
            raise KeyError(key)
        found = _core.column(self._network, key, self._edges, most)
        if not isinstance(found, list):
            return found
        objects = np.empty(len(found), dtype=object)
        objects[:] = found
        return objects

    def __setitem__(self, key: str, values: ArrayLike | Sequence[object]) -> None:
        if not isinstance(key, str):
            raise TypeError(f"column {key!r}: keys are strings")
        made = prepared(values, f"column {key}")
        if isinstance(made, list):
            _core.set_values(self._network, key, made, self._edges)
        elif made.ndim == 1:
            # What was read from this very column and changed in place is there already.
            _core.set_numbers(self._network, key, made, self._edges)
        else:
            _core.set_vectors(self._network, key, made, self._edges)

    def __delitem__(self, key: str) -> None:
        if not isinstance(key, str):
            raise KeyError(key)
        _core.remove_column(self._network, key, self._edges)

    def __iter__(self) -> Iterator[str]:
        return iter(_core.column_keys(self._network, self._edges))

    def __len__(self) -> int:
        return len(_core.column_keys(self._network, self._edges))

    def __contains__(self, key: object) -> bool:
        return isinstance(key, str) and key in _core.column_keys(self._network, self._edges)

    def texts(self, key: str) -> list[str]:
        """The column as texts: numbers in their shortest form, "" where nothing is set.

        Examples
        --------
        >>> network = veq.Network([0], [1])
        >>> network.vertex_data["Age"] = [31, None]
        >>> network.vertex_data.texts("Age")
        ['31', '']
        """
        return _core.column_texts(self._network, key, self._edges)

    def __eq__(self, other: object) -> bool:
        """Whether these are the same network's columns of the same elements."""
        return (
            isinstance(other, Columns)
            and other._network is self._network
            and other._edges == self._edges
        )

    def __hash__(self) -> int:
        return hash((id(self._network), self._edges))

    def __repr__(self) -> str:
        whose = "edges" if self._edges else "vertices"
        return f"<columns of {whose}: {', '.join(self) or 'none'}>"

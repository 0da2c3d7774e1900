"""Columns as lists of attributes, and back."""

from __future__ import annotations

from collections.abc import Mapping, Sequence
from itertools import chain, repeat
from operator import itemgetter
from typing import TYPE_CHECKING, Any, Literal

import numpy as np
from numpy.typing import ArrayLike

from .._columns import Columns

if TYPE_CHECKING:
    from .._network import Network

Other = Literal["error", "text"]
WEIGHT = "weight"
EXACT = "Weight"
"""The column of weights that a float of 32 bits does not hold."""


def listed(column: np.ndarray[Any, Any]) -> list[Any]:
    """Python's own values; vectors are tuples, and what is not set is None."""
    values = column.tolist()
    return [tuple(value) for value in values] if column.ndim == 2 else values


def weights_of(network: Network, edges: bool) -> np.ndarray[Any, Any] | None:
    """As exact as they are known."""
    data = network.edge_data if edges else network.vertex_data
    weights = network.edge_weights if edges else network.vertex_weights
    if weights is not None and EXACT in data:
        exact = data[EXACT]
        if exact.dtype.kind == "f" and np.array_equal(exact.astype(np.float32), weights):
            return exact
    return weights


def attributes(network: Network, edges: bool) -> dict[str, list[Any]]:
    """All columns of vertices or edges by their keys, weights among them as "weight"."""
    data = network.edge_data if edges else network.vertex_data
    made: dict[str, list[Any]] = {}
    weights = weights_of(network, edges)
    if weights is not None:
        made[WEIGHT] = weights.tolist()
    for key, column in data.items():
        if key == EXACT and weights is not None and weights.dtype == np.float64:
            continue
        if key in made:
            raise ValueError(f"column {key}: the weights are called so there")
        made[key] = listed(column)
    return made


def records(columns: Mapping[str, Sequence[Any]], count: int) -> list[dict[str, Any]]:
    """A mapping for each element; what is not set is left out."""
    if not columns:
        return [{} for _ in range(count)]
    keys = list(columns)
    rows = zip(*columns.values(), strict=True)
    if not any(None in values for values in columns.values()):
        # A dictionary that is written out is made in a third of the time.
        if len(keys) == 1:
            return [{keys[0]: a} for (a,) in rows]
        if len(keys) == 2:
            first, second = keys
            return [{first: a, second: b} for a, b in rows]
        return list(map(dict, map(zip, repeat(keys), rows)))
    return [
        {key: value for key, value in zip(keys, row, strict=True) if value is not None}
        for row in rows
    ]


def columns_of(rows: Sequence[Mapping[Any, Any]]) -> dict[str, list[Any]]:
    """The other way round; None where an element has no such key."""
    made: dict[str, list[Any]] = {}
    for key in dict.fromkeys(chain.from_iterable(rows)):
        if str(key) in made:
            raise ValueError(f"attribute {key!r}: another is called so as a text")
        made[str(key)] = _values(rows, key)
    return made


def _values(rows: Sequence[Mapping[Any, Any]], key: Any) -> list[Any]:
    try:
        return list(map(itemgetter(key), rows))
    except KeyError:
        return [row.get(key) for row in rows]


def taken_weights(columns: dict[str, Any]) -> Any:
    """Takes "weight" out of the columns, if all are numbers; 1 where there is none."""
    found = columns.get(WEIGHT)
    if found is None:
        return None
    if isinstance(found, np.ndarray):
        return columns.pop(WEIGHT)
    kinds = set(map(type, found))
    if not all(
        kind is type(None) or (issubclass(kind, (int, float)) and kind is not bool)
        for kind in kinds
    ):
        return None
    del columns[WEIGHT]
    return [1.0 if value is None else value for value in found] if type(None) in kinds else found


_PLAIN = {type(None), str, int, float}


def _storable(value: Any, other: Other) -> Any:
    if value is None or isinstance(value, (str, int, float)):
        return value
    if isinstance(value, np.generic) and value.dtype.kind not in "mM":
        return value
    if (
        isinstance(value, (tuple, list))
        and len(value) in (2, 3)
        and all(isinstance(part, (int, float)) for part in value)
    ):
        return tuple(value)
    return str(value) if other == "text" else value


def install(data: Columns, columns: Mapping[str, Any], other: Other) -> None:
    """Sets all columns; what no column can hold is an error, or becomes text."""
    for key, values in columns.items():
        plain = isinstance(values, np.ndarray) or set(map(type, values)) <= _PLAIN
        data[key] = values if plain else [_storable(value, other) for value in values]


def inexact(weights: ArrayLike | None) -> bool:
    """Whether floats of 32 bits do not hold them all."""
    if weights is None:
        return False
    exact = np.asarray(weights, dtype=np.float64)
    with np.errstate(over="ignore"):
        rounded = exact.astype(np.float32).astype(np.float64)
    return not np.array_equal(rounded, exact, equal_nan=True)


def built(
    cls: type[Network],
    ends: tuple[Any, Any],
    n: int,
    directed: bool,
    vertices: dict[str, Any],
    edges: dict[str, Any],
    other: Other,
) -> Network:
    """The network of ends and columns, among which are the weights."""
    vertex_weights = taken_weights(vertices)
    edge_weights = taken_weights(edges)
    network = cls(
        *ends,
        n=n,
        directed=directed,
        vertex_weights=vertex_weights,
        edge_weights=edge_weights,
    )
    for data, weights, columns in (
        (network.vertex_data, vertex_weights, vertices),
        (network.edge_data, edge_weights, edges),
    ):
        if inexact(weights):
            data[EXACT] = np.asarray(weights, dtype=np.float64)
        install(data, columns, other)
    return network

"""Tables of pandas, polars and Arrow: one of edges, one of vertices."""

from __future__ import annotations

from collections.abc import Callable
from typing import TYPE_CHECKING, Any

import numpy as np

from .._arrays import given
from . import _columns
from ._columns import Other

if TYPE_CHECKING:
    from .._network import Network

_ENDS = ("source", "target")
_INDEX = "index"


def _texts(key: str, values: list[Any], other: Other) -> list[Any]:
    """Values of any kind, for a library whose columns are of one: the same, or all texts."""
    kinds = {type(value) for value in values if value is not None}
    if len(kinds) < 2 or kinds <= {int, float}:
        return values
    if other == "text":
        return [None if value is None else str(value) for value in values]
    found = ", ".join(sorted(kind.__name__ for kind in kinds))
    raise ValueError(f"column {key}: values of several kinds ({found}): give other='text'")


def tables(
    network: Network, stored: Callable[[str, list[Any]], Any]
) -> tuple[dict[str, Any], dict[str, Any]]:
    """The columns of the edges and of the vertices; ``stored`` takes those that are lists."""
    edges: dict[str, Any] = {"source": network.sources, "target": network.targets}
    vertices: dict[str, Any] = {}
    for made, data, ofEdges in (
        (edges, network.edge_data, True),
        (vertices, network.vertex_data, False),
    ):
        weights = _columns.weights_of(network, ofEdges)
        if weights is not None:
            made[_columns.WEIGHT] = weights
        for key, column in data.items():
            if key in made or (key == _INDEX and not ofEdges):
                raise ValueError(f"column {key}: the table has a column of that name")
            if key == _columns.EXACT and weights is not None and weights.dtype == np.float64:
                continue
            listed = column.ndim == 2 or column.dtype == object
            made[key] = stored(key, _columns.listed(column)) if listed else column
    return edges, vertices


def to_pandas(network: Network) -> tuple[Any, Any]:
    import pandas

    def stored(_: str, values: list[Any]) -> Any:
        # By itself pandas makes floats of integers beside what is not set.
        texts = set(map(type, values)) <= {str, type(None)}
        return values if texts else pandas.Series(values, dtype=object)

    edges, vertices = tables(network, stored)
    return (
        pandas.DataFrame(edges),
        pandas.DataFrame(vertices, index=pandas.RangeIndex(network.num_vertices)),
    )


def to_polars(network: Network, other: Other) -> tuple[Any, Any]:
    import polars

    edges, vertices = (
        {key: polars.Series(key, value, strict=False) for key, value in table.items()}
        for table in tables(network, lambda key, values: _texts(key, values, other))
    )
    index = polars.Series(_INDEX, np.arange(network.num_vertices))
    return polars.DataFrame(edges), polars.DataFrame({_INDEX: index, **vertices})


def to_arrow(network: Network, other: Other) -> tuple[Any, Any]:
    import pyarrow

    edges, vertices = tables(network, lambda key, values: _texts(key, values, other))
    index = np.arange(network.num_vertices)
    return pyarrow.table(edges), pyarrow.table({_INDEX: index, **vertices})


def _read(table: Any, column: Any) -> Any:
    """A column as NumPy has it; lists of lists are vectors, and null is None."""
    values = given(table[column])
    return values if isinstance(values, list) else _plain(np.asarray(values))


def _weights(table: Any, columns: dict[str, Any]) -> Any:
    """Takes the weights out of the columns, if they are no texts or vectors.

    In pandas, NaN is a number that is missing.
    """
    weights = columns.get(_columns.WEIGHT)
    if weights is None or (isinstance(weights, list) and {str, tuple} & set(map(type, weights))):
        return None
    del columns[_columns.WEIGHT]
    if hasattr(table, "iloc") and np.asarray(weights).dtype.kind == "f":
        missing = np.isnan(weights)
        if missing.any():
            raise ValueError(f"weight {int(np.argmax(missing))}: nan is no number")
    return weights


def _plain(array: np.ndarray[Any, Any]) -> Any:
    if array.dtype != object:
        return array
    return [tuple(v) if isinstance(v, (list, np.ndarray)) else v for v in array.tolist()]


def _labels(table: Any) -> dict[str, Any]:
    """What the table calls its columns, by the names as texts."""
    labels: dict[str, Any] = {}
    for label in getattr(table, "column_names", None) or table.columns:
        if str(label) in labels:
            raise ValueError(f"column {label}: there are several of that name")
        labels[str(label)] = label
    return labels


def _row_of_each(vertices: Any) -> Any:
    """The rows of vertices 0, 1, 2, ..., where the table says which is which; else None."""
    told = _INDEX in _labels(vertices)
    numbers = np.asarray(given(vertices[_INDEX]) if told else getattr(vertices, _INDEX, None))
    whole = numbers.ndim == 1 and numbers.dtype.kind in "iu"
    if numbers.size == 0 or not (told or whole):
        return None
    rows = np.argsort(numbers, kind="stable") if whole else None
    if rows is None or not np.array_equal(numbers[rows], np.arange(len(rows))):
        raise ValueError(f"the index of vertices is not 0 to {len(vertices) - 1} in some order")
    return rows


def from_frames(
    cls: type[Network], edges: Any, vertices: Any, directed: bool, other: Other
) -> Network:
    sources, targets = (_read(edges, end) for end in _ENDS)
    n = None if vertices is None else len(vertices)
    edge_columns = {
        key: _read(edges, label) for key, label in _labels(edges).items() if key not in _ENDS
    }
    vertex_columns: dict[str, Any] = {}
    if vertices is not None:
        rows = _row_of_each(vertices)
        for key, label in _labels(vertices).items():
            if key != _INDEX:
                values = _read(vertices, label)
                vertex_columns[key] = values if rows is None else _reordered(values, rows)
    edge_weights = _weights(edges, edge_columns)
    vertex_weights = _weights(vertices, vertex_columns)
    network = cls(
        sources,
        targets,
        n=n,
        directed=directed,
        edge_weights=edge_weights,
        vertex_weights=vertex_weights,
    )
    for data, weights, columns in (
        (network.edge_data, edge_weights, edge_columns),
        (network.vertex_data, vertex_weights, vertex_columns),
    ):
        if _columns.inexact(weights):
            data[_columns.EXACT] = np.asarray(weights, dtype=np.float64)
        for key, values in columns.items():
            data[key] = _stored(values, other)
    return network


def _reordered(values: Any, rows: Any) -> Any:
    return values[rows] if isinstance(values, np.ndarray) else [values[row] for row in rows]


def _stored(values: Any, other: Other) -> Any:
    if isinstance(values, np.ndarray) and values.dtype.kind not in "mM":
        return values
    return [_columns._storable(value, other) for value in values]

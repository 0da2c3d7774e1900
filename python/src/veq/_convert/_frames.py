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
            if key in made:
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
    index = polars.Series("index", np.arange(network.num_vertices))
    return polars.DataFrame(edges), polars.DataFrame({"index": index, **vertices})


def to_arrow(network: Network, other: Other) -> tuple[Any, Any]:
    import pyarrow

    edges, vertices = tables(network, lambda key, values: _texts(key, values, other))
    index = np.arange(network.num_vertices)
    return pyarrow.table(edges), pyarrow.table({"index": index, **vertices})


def _read(table: Any, column: str) -> Any:
    """A column as NumPy has it; lists of lists are vectors, and null is None."""
    values = given(table[column])
    return values if isinstance(values, list) else _plain(np.asarray(values))


def _weights(table: Any, columns: dict[str, Any]) -> Any:
    """Takes the weights out of the columns. In pandas, NaN is a number that is missing."""
    weights = columns.pop(_columns.WEIGHT, None)
    if weights is not None and hasattr(table, "iloc") and np.asarray(weights).dtype.kind == "f":
        missing = np.isnan(weights)
        if missing.any():
            raise ValueError(f"weight {int(np.argmax(missing))}: nan is no number")
    return weights


def _plain(array: np.ndarray[Any, Any]) -> Any:
    if array.dtype != object:
        return array
    return [tuple(v) if isinstance(v, (list, np.ndarray)) else v for v in array.tolist()]


def _names(table: Any) -> list[str]:
    return [str(name) for name in getattr(table, "column_names", None) or table.columns]


def from_frames(
    cls: type[Network], edges: Any, vertices: Any, directed: bool, other: Other
) -> Network:
    sources, targets = (_read(edges, end) for end in _ENDS)
    n = None if vertices is None else len(vertices)
    edge_columns = {key: _read(edges, key) for key in _names(edges) if key not in _ENDS}
    vertex_columns: dict[str, Any] = {}
    if vertices is not None:
        vertex_columns = {key: _read(vertices, key) for key in _names(vertices) if key != "index"}
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
            data[key] = values if isinstance(values, np.ndarray) else _stored(values, other)
    return network


def _stored(values: Any, other: Other) -> list[Any]:
    return [_columns._storable(value, other) for value in values]

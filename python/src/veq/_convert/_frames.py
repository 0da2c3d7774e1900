"""Tables of pandas, polars and Arrow: one of edges, one of vertices."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

from . import _columns
from ._columns import Other

if TYPE_CHECKING:
    from .._network import Network

_ENDS = ("source", "target")


def _column(column: np.ndarray[Any, Any]) -> Any:
    return _columns.listed(column) if column.ndim == 2 or column.dtype == object else column


def tables(network: Network) -> tuple[dict[str, Any], dict[str, Any]]:
    """The columns of the edges and of the vertices."""
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
            made[key] = _column(column)
    return edges, vertices


def to_pandas(network: Network) -> tuple[Any, Any]:
    import pandas

    edges, vertices = tables(network)
    return (
        pandas.DataFrame(edges),
        pandas.DataFrame(vertices, index=pandas.RangeIndex(network.num_vertices)),
    )


def to_polars(network: Network) -> tuple[Any, Any]:
    import polars

    edges, vertices = (
        {key: polars.Series(key, value, strict=False) for key, value in table.items()}
        for table in tables(network)
    )
    index = polars.Series("index", np.arange(network.num_vertices))
    return polars.DataFrame(edges), polars.DataFrame({"index": index, **vertices})


def to_arrow(network: Network) -> tuple[Any, Any]:
    import pyarrow

    edges, vertices = tables(network)
    index = np.arange(network.num_vertices)
    return pyarrow.table(edges), pyarrow.table({"index": index, **vertices})


def _read(table: Any, column: str) -> Any:
    """A column as NumPy has it; lists of lists are vectors, and null is None."""
    values = table[column]
    if hasattr(values, "combine_chunks"):  # Arrow
        array = values.combine_chunks()
        return array.to_pylist() if array.null_count else _plain(array.to_numpy(False))
    if hasattr(values, "null_count"):  # polars
        return values.to_list() if values.null_count() else _plain(values.to_numpy())
    if values.isna().any():
        missing = values.isna()
        return [None if no else value for value, no in zip(values, missing, strict=True)]
    return _plain(values.to_numpy())


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
    edge_weights = edge_columns.pop(_columns.WEIGHT, None)
    vertex_weights = vertex_columns.pop(_columns.WEIGHT, None)
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

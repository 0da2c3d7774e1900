"""Graphs of graph-tool."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

from . import _columns
from ._columns import Other

if TYPE_CHECKING:
    from .._network import Network

_ARRAYS = {"f": "double", "i": "int64_t"}


def _set(new: Any, column: np.ndarray[Any, Any], order: Any) -> Any:
    """The property map of a column: of numbers, of vectors of doubles, of texts or of anything.

    Arrays go by the numbers of vertices or edges there, and lists in the order of its iterators.
    """
    if column.ndim == 2:
        made = new("vector<double>")
        made.set_2d_array(column.T)
        return made
    kind = _ARRAYS.get(column.dtype.kind)
    if kind is not None:
        made = new(kind)
        made.a = column
        return made
    values = column[order].tolist()
    return new("string" if set(map(type, values)) == {str} else "object", vals=values)


def to_graph_tool(network: Network) -> Any:
    import graph_tool  # pyright: ignore[reportMissingImports]

    graph = graph_tool.Graph(directed=network.directed)
    graph.add_vertex(network.num_vertices)
    graph.add_edge_list(network.edges)
    for edges, maps, new, order in (
        (False, graph.vertex_properties, graph.new_vertex_property, graph.get_vertices()),
        (
            True,
            graph.edge_properties,
            graph.new_edge_property,
            graph.get_edges([graph.edge_index])[:, 2],
        ),
    ):
        data = network.edge_data if edges else network.vertex_data
        weights = _columns.weights_of(network, edges)
        if weights is not None:
            maps[_columns.WEIGHT] = _set(new, weights, order)
        for key, column in data.items():
            if key == _columns.EXACT and weights is not None and weights.dtype == np.float64:
                continue
            if key in maps:
                raise ValueError(f"column {key}: the weights are called so there")
            maps[key] = _set(new, column, order)
    return graph


def _read(values: Any, numbers: Any) -> Any:
    """The values of the elements of these numbers, which for edges need not be 0, 1, 2, ..."""
    if values.a is not None:
        return np.array(values.a)[numbers]
    listed = list(values)
    return list(map(tuple, listed)) if values.value_type().startswith("vector<") else listed


def from_graph_tool(cls: type[Network], graph: Any, other: Other) -> Network:
    import graph_tool  # pyright: ignore[reportMissingImports]

    if any(kept is not None for kept, *_ in (graph.get_vertex_filter(), graph.get_edge_filter())):
        graph = graph_tool.Graph(graph, prune=True)
    # The edges come vertex by vertex, each with its number; so do values that are no arrays.
    table = graph.get_edges([graph.edge_index])
    order = np.argsort(table[:, 2], kind="stable")
    sources, targets, numbers = table[order].T
    vertices = {
        key: _read(values, np.arange(graph.num_vertices()))
        for key, values in graph.vertex_properties.items()
    }
    edges = {key: _read(values, numbers) for key, values in graph.edge_properties.items()}
    for key, values in edges.items():
        if isinstance(values, list):
            edges[key] = [values[place] for place in order]
    return _columns.built(
        cls,
        (sources, targets),
        graph.num_vertices(),
        graph.is_directed(),
        vertices,
        edges,
        other,
    )

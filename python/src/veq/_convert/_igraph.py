"""Graphs of igraph."""

from __future__ import annotations

from itertools import chain
from typing import TYPE_CHECKING, Any

import numpy as np

from . import _columns
from ._columns import Other

if TYPE_CHECKING:
    from .._network import Network

_NAME = "name"


def to_igraph(network: Network) -> Any:
    import igraph

    graph = igraph.Graph(n=network.num_vertices, edges=network.edges, directed=network.directed)
    for edges, sequence in ((False, graph.vs), (True, graph.es)):
        for key, values in _columns.attributes(network, edges).items():
            name = _NAME if key == "Name" and not edges else key
            if name in sequence.attributes():
                raise ValueError(f"column {key}: another is called {name!r} there")
            sequence[name] = values
    return graph


def from_igraph(cls: type[Network], graph: Any, other: Other) -> Network:
    flat = chain.from_iterable(graph.get_edgelist())
    ends = np.fromiter(flat, np.int64, 2 * graph.ecount()).reshape(-1, 2)
    keys = graph.vs.attributes()
    if _NAME in keys and "Name" in keys:
        raise ValueError("vertices have attributes 'name' and 'Name': rename one of them")
    vertices = {"Name" if key == _NAME else key: list(graph.vs[key]) for key in keys}
    edges = {key: list(graph.es[key]) for key in graph.es.attributes()}
    return _columns.built(
        cls, (ends[:, 0], ends[:, 1]), graph.vcount(), graph.is_directed(), vertices, edges, other
    )

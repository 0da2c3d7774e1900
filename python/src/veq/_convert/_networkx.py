"""NetworkX graphs."""

from __future__ import annotations

from operator import itemgetter
from typing import TYPE_CHECKING, Any, Literal

import numpy as np

from . import _columns
from ._columns import Other

if TYPE_CHECKING:
    from .._network import Network

Labels = Literal["index", "name"]


def labels_of(network: Network, labels: Labels) -> list[Any]:
    """What vertices are called elsewhere."""
    if labels == "index":
        return list(range(network.num_vertices))
    if labels != "name":
        raise ValueError(f"labels {labels!r}: give 'index' or 'name'")
    names = network.names
    if len(set(names)) != len(names):
        raise ValueError("several vertices have one name: give labels='index'")
    return list(names)


def _has_parallels(network: Network) -> bool:
    first, second = network.sources, network.targets
    if not network.directed:
        first, second = np.minimum(first, second), np.maximum(first, second)
    keys = np.sort(first * np.uint64(max(network.num_vertices, 1)) + second)
    return bool((keys[1:] == keys[:-1]).any())


def to_networkx(network: Network, labels: Labels, multigraph: bool | Literal["auto"]) -> Any:
    import networkx as nx

    if multigraph == "auto":
        multigraph = _has_parallels(network)
    kinds = ((nx.Graph, nx.DiGraph), (nx.MultiGraph, nx.MultiDiGraph))
    graph = kinds[bool(multigraph)][network.directed]()
    vertices = _columns.attributes(network, False)
    edges = _columns.attributes(network, True)
    names = labels_of(network, labels)
    if labels == "name":
        vertices.pop("Name", None)
    if vertices:
        records = _columns.records(vertices, network.num_vertices)
        graph.add_nodes_from(zip(names, records, strict=True))
    else:
        graph.add_nodes_from(names)
    sources: Any = network.sources.tolist()
    targets: Any = network.targets.tolist()
    if labels == "name":
        sources, targets = map(names.__getitem__, sources), map(names.__getitem__, targets)
    if list(edges) == [_columns.WEIGHT] and not multigraph:
        graph.add_weighted_edges_from(zip(sources, targets, edges[_columns.WEIGHT], strict=True))
    elif edges:
        graph.add_edges_from(
            zip(sources, targets, _columns.records(edges, network.num_edges), strict=True)
        )
    else:
        graph.add_edges_from(zip(sources, targets, strict=True))
    return graph


def from_networkx(cls: type[Network], graph: Any, other: Other) -> Network:
    nodes = list(graph)
    number = {node: index for index, node in enumerate(nodes)}
    vertices = _columns.columns_of([graph.nodes[node] for node in nodes])
    if nodes != list(range(len(nodes))):
        key = "Label" if "Name" in vertices else "Name"
        if key in vertices:
            raise ValueError("nodes have attributes 'Name' and 'Label': rename one of them")
        vertices = {key: [str(node) for node in nodes], **vertices}
    ends = list(graph.edges(data=True))
    sources, targets = (
        np.fromiter(map(number.__getitem__, map(itemgetter(end), ends)), np.int64, len(ends))
        for end in (0, 1)
    )
    edges = _columns.columns_of(list(map(itemgetter(2), ends)))
    return _columns.built(
        cls, (sources, targets), len(nodes), graph.is_directed(), vertices, edges, other
    )

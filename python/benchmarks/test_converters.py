"""Converters, each beside the other library's own fastest way, from arrays at hand."""

import numpy as np
import pytest

import veq

from .conftest import VERTICES


def to_scipy(weighted, ends):
    from scipy import sparse

    # Each edge both ways.
    source, target = ends.astype(np.int32)
    rows, columns = np.concatenate([source, target]), np.concatenate([target, source])
    values = np.tile(weighted.edge_weights.astype(float), 2)
    shape = (VERTICES, VERTICES)
    return weighted.to_scipy, lambda: sparse.csr_array((values, (rows, columns)), shape=shape)


def to_pandas(weighted, ends):
    import pandas as pd

    def own():
        edges = pd.DataFrame(
            {
                "source": weighted.sources,
                "target": weighted.targets,
                "weight": weighted.edge_weights,
                "length": weighted.edge_data["length"],
            }
        )
        return edges, pd.DataFrame({"age": weighted.vertex_data["age"]})

    return weighted.to_pandas, own


def to_networkx(weighted, ends):
    import networkx as nx

    source, target = ends.tolist()
    weights = weighted.edge_weights.tolist()
    lengths = weighted.edge_data["length"].tolist()
    ages = weighted.vertex_data["age"].tolist()

    def own():
        graph = nx.Graph()
        graph.add_nodes_from((v, {"age": age}) for v, age in enumerate(ages))
        graph.add_edges_from(
            (a, b, {"weight": weight, "length": length})
            for a, b, weight, length in zip(source, target, weights, lengths, strict=True)
        )
        return graph

    return weighted.to_networkx, own


def from_networkx(weighted, ends):
    graph = weighted.to_networkx()

    def own():
        number = {node: i for i, node in enumerate(graph)}
        ages = [age for _, age in graph.nodes(data="age")]
        pairs, weights, lengths = [], [], []
        for a, b, data in graph.edges(data=True):
            pairs.append((number[a], number[b]))
            weights.append(data["weight"])
            lengths.append(data["length"])
        return np.array(pairs), np.array(weights), np.array(lengths), np.array(ages)

    return lambda: veq.Network.from_networkx(graph), own


def to_igraph(weighted, ends):
    import igraph as ig

    def own():
        graph = ig.Graph(n=VERTICES, edges=np.column_stack([weighted.sources, weighted.targets]))
        graph.es["weight"] = weighted.edge_weights.tolist()
        graph.es["length"] = weighted.edge_data["length"].tolist()
        graph.vs["age"] = weighted.vertex_data["age"].tolist()
        return graph

    return weighted.to_igraph, own


def from_igraph(weighted, ends):
    graph = weighted.to_igraph()

    def own():
        pairs = np.array(graph.get_edgelist())
        columns = [np.array(graph.es[key]) for key in ("weight", "length")]
        return pairs, columns, np.array(graph.vs["age"])

    return lambda: veq.Network.from_igraph(graph), own


CONVERTERS = {
    function.__name__.replace("_", " "): (function, rounds)
    for function, rounds in (
        (to_scipy, 9),
        (to_pandas, 9),
        (to_networkx, 3),
        (from_networkx, 3),
        (to_igraph, 3),
        (from_igraph, 3),
    )
}


@pytest.mark.parametrize("whose", ["veq", "own"])
@pytest.mark.parametrize("converter", CONVERTERS)
def test_converter(timed, weighted, ends, converter, whose):
    make, rounds = CONVERTERS[converter]
    ours, own = make(weighted, ends)
    timed(ours if whose == "veq" else own, rounds, task=converter)


@pytest.mark.parametrize("dtype", [np.int64, np.int32])
def test_build_from(timed, ends, dtype):
    narrow = ends.astype(dtype)
    timed(lambda: veq.Network(*narrow, n=VERTICES), 9)


def test_pickle(timed, weighted):
    import pickle

    timed(lambda: pickle.loads(pickle.dumps(weighted, 5)), 5)

"""Converters, each beside the other library's own fastest way, from arrays at hand."""

import numpy as np
import pytest

import veq

from .conftest import EDGES, VERTICES

BOTH = pytest.mark.parametrize("whose", ["veq", "own"])


@BOTH
def test_to_scipy(timed, weighted, whose):
    from scipy import sparse

    # Each edge both ways.
    source, target = weighted.edges.T.astype(np.int32)
    rows, columns = np.concatenate([source, target]), np.concatenate([target, source])
    values = np.tile(weighted.edge_weights.astype(float), 2)

    def own():
        return sparse.csr_array((values, (rows, columns)), shape=(VERTICES, VERTICES))

    timed(weighted.to_scipy if whose == "veq" else own, 9)


@BOTH
def test_to_pandas(timed, weighted, whose):
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

    timed(weighted.to_pandas if whose == "veq" else own, 9)


@BOTH
def test_to_networkx(timed, weighted, ends, whose):
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

    timed(weighted.to_networkx if whose == "veq" else own, 3)


@BOTH
def test_from_networkx(timed, weighted, whose):
    graph = weighted.to_networkx()

    def own():
        number = {node: i for i, node in enumerate(graph)}
        ages = [age for _, age in graph.nodes(data="age")]
        ends, weights, lengths = [], [], []
        for a, b, data in graph.edges(data=True):
            ends.append((number[a], number[b]))
            weights.append(data["weight"])
            lengths.append(data["length"])
        return np.array(ends), np.array(weights), np.array(lengths), np.array(ages)

    timed(lambda: veq.Network.from_networkx(graph) if whose == "veq" else own(), 3)


@BOTH
def test_to_igraph(timed, weighted, whose):
    import igraph as ig

    def own():
        graph = ig.Graph(n=VERTICES, edges=np.column_stack([weighted.sources, weighted.targets]))
        graph.es["weight"] = weighted.edge_weights.tolist()
        graph.es["length"] = weighted.edge_data["length"].tolist()
        graph.vs["age"] = weighted.vertex_data["age"].tolist()
        return graph

    timed(weighted.to_igraph if whose == "veq" else own, 3)


@BOTH
def test_from_igraph(timed, weighted, whose):
    graph = weighted.to_igraph()

    def own():
        ends = np.array(graph.get_edgelist())
        columns = [np.array(graph.es[key]) for key in ("weight", "length")]
        return ends, columns, np.array(graph.vs["age"])

    timed(lambda: veq.Network.from_igraph(graph) if whose == "veq" else own(), 3)


@pytest.mark.parametrize("dtype", [np.int64, np.int32])
def test_build_from(timed, ends, dtype):
    narrow = ends.astype(dtype)
    timed(lambda: veq.Network(*narrow, n=VERTICES), 9)


def test_pickle(timed, weighted):
    import pickle

    timed(lambda: pickle.loads(pickle.dumps(weighted, 5)), 5, edges=EDGES)

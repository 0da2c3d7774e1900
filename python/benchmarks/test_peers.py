"""The same tasks by the fastest call that each library has for them, one thread each."""

import random

import numpy as np
import pytest

import veq

from .conftest import EDGES, VERTICES

igraph = pytest.importorskip("igraph")
networkx = pytest.importorskip("networkx")
rustworkx = pytest.importorskip("rustworkx")
networkit = pytest.importorskip("networkit")
networkit.setNumberOfThreads(1)

AGENTS, STEPS = 100, EDGES // 100


def _networkx(ends):
    graph = networkx.Graph()
    graph.add_nodes_from(range(VERTICES))
    graph.add_edges_from(zip(*ends.tolist(), strict=True))
    return graph


def _rustworkx(ends, kind=rustworkx.PyGraph):
    graph = kind()
    graph.add_nodes_from([None] * VERTICES)
    graph.add_edges_from_no_data(list(zip(*ends.tolist(), strict=True)))
    return graph


def _both_ways(ends):
    """For what rustworkx has for directed graphs alone."""
    return _rustworkx(np.hstack([ends, ends[::-1]]), rustworkx.PyDiGraph)


def _indexed(ends):
    graph = BUILD["NetworKit"](ends)
    graph.indexEdges()
    return graph


def _walked(network):
    walkers = veq.Walkers(network, np.arange(AGENTS))
    walkers.walk(STEPS, choice="even", seed=1)
    return walkers.visits()


def _loop(graph):
    """The walk as one writes it, as NetworkX has none that counts visits."""
    visits = [0] * VERTICES
    neighbors = {v: list(graph.adj[v]) for v in graph}
    for agent in range(AGENTS):
        v = agent
        for _ in range(STEPS):
            if neighbors[v]:
                v = random.choice(neighbors[v])
            visits[v] += 1
    return visits


BUILD = {
    "veq": lambda ends: veq.Network(*ends, n=VERTICES),
    "igraph": lambda ends: igraph.Graph(n=VERTICES, edges=ends.T),
    "NetworkX": _networkx,
    "rustworkx": _rustworkx,
    "NetworKit": lambda ends: networkit.GraphFromCoo((ends[0], ends[1]), n=VERTICES),
}
READ = {
    "veq": lambda path: veq.read(path, ids_are_indices=True),
    "igraph": lambda path: igraph.Graph.Read_Edgelist(path, directed=False),
    "NetworkX": lambda path: networkx.read_edgelist(path, nodetype=int),
    "rustworkx": lambda path: rustworkx.PyGraph.read_edge_list(path),
    "NetworKit": lambda path: networkit.readGraph(path, networkit.Format.EdgeListSpaceZero),
}
# Of a graph that was built, by the task and the library.
QUESTIONS = {
    "walk": {
        "veq": _walked,
        "igraph": lambda graph: np.bincount(
            np.concatenate([graph.random_walk(a, STEPS, stuck="return") for a in range(AGENTS)])
        ),
        "NetworkX": _loop,
    },
    "components": {
        "veq": lambda graph: graph.components(),
        "igraph": lambda graph: graph.connected_components().membership,
        "NetworkX": lambda graph: list(networkx.connected_components(graph)),
        "rustworkx": lambda graph: rustworkx.connected_components(graph),
        "NetworKit": lambda graph: networkit.components.ConnectedComponents(graph).run(),
    },
    "clustering": {
        "veq": lambda graph: graph.local_clustering(),
        "igraph": lambda graph: graph.transitivity_local_undirected(mode="zero"),
        "NetworkX": networkx.clustering,
        "NetworKit": lambda g: networkit.centrality.LocalClusteringCoefficient(g, True).run(),
    },
    "page rank": {
        "veq": lambda graph: graph.page_rank(tolerance=1e-8).ranks,
        "igraph": lambda graph: graph.pagerank(),
        "NetworkX": lambda graph: networkx.pagerank(graph, tol=1e-8 / VERTICES),
        "rustworkx": lambda graph: rustworkx.pagerank(graph, tol=1e-8),
        "NetworKit": lambda graph: networkit.centrality.PageRank(graph, 0.85, 1e-8).run(),
    },
}
# Where a question wants another graph than a plain one.
OTHERWISE = {("clustering", "NetworKit"): _indexed, ("page rank", "rustworkx"): _both_ways}


@pytest.fixture(scope="session")
def built(ends):
    made = {}

    def get(library, build):
        if (library, build) not in made:
            made[library, build] = build(ends)
        return made[library, build]

    return get


def rounds(library):
    return 1 if library == "NetworkX" else 5


@pytest.mark.parametrize("library", BUILD)
def test_build(timed, ends, library):
    timed(lambda: BUILD[library](ends), rounds(library), task="build, from arrays of int64")


@pytest.mark.parametrize("library", READ)
def test_read(timed, ends, library, tmp_path):
    path = str(tmp_path / "edges.txt")
    np.savetxt(path, ends.T, fmt="%d")
    timed(lambda: READ[library](path), rounds(library), task="read a list of edges")


@pytest.mark.parametrize(
    ("library", "task"), [(library, task) for task in QUESTIONS for library in QUESTIONS[task]]
)
def test_question(timed, built, library, task):
    graph = built(library, OTHERWISE.get((task, library), BUILD[library]))
    timed(lambda: QUESTIONS[task][library](graph), rounds(library), task=task)

"""How long arrays live: each keeps its memory, whatever becomes of what it was taken from.

These tests run under the address sanitizer, too, by `scripts/python --asan`.
"""

import gc

import numpy as np
import pytest

import veq
import veq.ensemble

N = 1000


def ring():
    network = veq.Network(np.arange(N), np.roll(np.arange(N), -1), directed=True)
    network.edge_weights = np.ones(N)
    network.vertex_data["x"] = np.arange(N, dtype=float)
    network.edge_data["y"] = np.arange(N)
    network.vertex_data["place"] = np.zeros((N, 2))
    return network


def walked():
    walkers = veq.Walkers(ring(), [0, 500])
    return walkers, walkers.walk(50, paths=True, first_arrivals=True, seed=1)


def walked_on_rows():
    walkers = veq.Walkers(veq.WalkNetwork(ring()), [0, 500])
    walkers.walk(50, seed=1)
    return walkers


def sealed():
    return veq.ensemble.SealedNetwork(ring()).network


def law():
    return veq.WalkLaw(ring(), choice="even")


# By hand: edge i of the ring leads from i to i + 1; both agents go one vertex on in each step.
KINDS = {
    "sources": (lambda: ring().sources, np.arange(N)),
    "targets": (lambda: ring().targets, (np.arange(N) + 1) % N),
    "edges": (lambda: ring().edges[:, 1], (np.arange(N) + 1) % N),
    "neighbors": (lambda: ring().neighbors(5), [6]),
    "neighbors in": (lambda: ring().neighbors(5, "in"), [4]),
    "neighbors all": (lambda: ring().neighbors(5, "all"), [6, 4]),
    "edges_of": (lambda: ring().edges_of(5), [5]),
    "indptr": (lambda: ring().adjacency().indptr, np.arange(N + 1)),
    "indices": (lambda: ring().adjacency().indices, (np.arange(N) + 1) % N),
    "edges of lists": (lambda: ring().adjacency("in").edges, (np.arange(N) - 1) % N),
    "degrees": (lambda: ring().degrees(), np.ones(N)),
    # One vertex is in the middle.
    "force_layout": (lambda: veq.Network([], [], n=1).force_layout(), [[0, 0]]),
    "strengths": (lambda: ring().strengths("in"), np.ones(N)),
    "weights": (lambda: ring().edge_weights, np.ones(N)),
    "column of vertices": (lambda: ring().vertex_data["x"], np.arange(N)),
    "column of edges": (lambda: ring().edge_data["y"], np.arange(N)),
    "vectors": (lambda: ring().vertex_data["place"][:, 0], np.zeros(N)),
    "part": (lambda: ring().subnetwork([3, 2]).edges, [2]),
    "components": (lambda: ring().components(), np.zeros(N)),
    "visits": (lambda: walked()[0].visits()[:52], [0, *[1] * 50, 0]),
    "live visits": (lambda: walked()[0].visits(0, live=True)[:52], [0, *[1] * 50, 0]),
    "positions": (lambda: walked()[0].positions, [50, 550]),
    "moves": (lambda: walked()[1].paths.moves[:, 1], np.arange(501, 551)),
    "starts": (lambda: walked()[1].paths.starts, [0, 500]),
    "first arrivals": (lambda: walked()[1].first_arrivals[1:51], np.arange(1, 51)),
    "coverage": (lambda: walked()[1].coverage.vertices, np.arange(2, 101, 2)),
    "neighbors of rows": (lambda: veq.WalkNetwork(ring()).neighbors(5), [6]),
    "visits on rows": (lambda: walked_on_rows().visits()[:52], [0, *[1] * 50, 0]),
    "rows of a law": (lambda: law().matrix()[0], np.arange(N + 1)),
    "targets of a law": (lambda: law().matrix()[1], (np.arange(N) + 1) % N),
    "shares of a law": (lambda: law().matrix()[2], np.ones(N)),
    "sealed targets": (lambda: sealed().targets, (np.arange(N) + 1) % N),
    "sealed column": (lambda: sealed().vertex_data["x"], np.arange(N)),
    "words": (lambda: veq.RandomState(1).words, veq.RandomState(1).words),
    "draws": (lambda: veq.RandomState(1).draws(2), [1804289383, 846930886]),
}


def churn():
    """Memory that was given back is used again."""
    gc.collect()
    for _ in range(20):
        other = ring()
        other.vertex_data["x"][:] = -1
        veq.Walkers(other, [0, 500]).walk(50, paths=True, seed=3)
        np.full(N, 7)


@pytest.mark.parametrize("kind", KINDS)
def test_arrays_outlive_what_they_came_from(kind):
    make, expected = KINDS[kind]
    array = make()
    churn()
    assert array.tolist() == np.asarray(expected).tolist()
    assert array.base is not None


@pytest.mark.parametrize("kind", ["sources", "neighbors", "indptr", "moves", "shares of a law"])
def test_parts_of_arrays_keep_them(kind):
    make, expected = KINDS[kind]
    part = make()[::-1][:1]
    churn()
    assert part.tolist() == [np.asarray(expected).tolist()[-1]]


def test_edits_leave_arrays_as_they_were():
    network = ring()
    taken = [
        network.sources,
        network.targets,
        network.neighbors(5),
        *network.adjacency(),
        *network.adjacency("in"),
        network.edge_data["y"],
    ]
    before = [array.copy() for array in taken]
    for round_ in range(50):
        network.add_edges(np.arange(N), np.full(N, round_))
    churn()
    assert all(np.array_equal(a, b) for a, b in zip(taken, before, strict=True))
    assert network.num_edges == 51 * N
    assert network.neighbors(5).tolist() == [6, *range(50)]


def test_a_column_of_vertices_is_live_after_edits():
    network = ring()
    ages = network.vertex_data["x"]
    network.add_edges([0], [5])
    ages[3] = 99
    assert network.vertex_data["x"][3] == 99
    network.vertex_data["x"] = np.zeros(N)
    ages[3] = 7
    assert network.vertex_data["x"][3] == 0
    del network.vertex_data["x"]
    churn()
    assert ages[3] == 7


def test_a_column_is_set_from_its_own_array():
    network = ring()
    for _ in range(3):
        network.vertex_data["x"] = network.vertex_data["x"][::-1]
        network.vertex_data["x"] += 1
    # Reversed three times is reversed once, and each time 1 is added.
    assert network.vertex_data["x"].tolist() == [N - 1 - i + 3 for i in range(N)]


def test_live_visits_outlive_agents_and_forgetting():
    walkers, _ = walked()
    live = walkers.visits(0, live=True)
    walkers.forget()
    walkers.walk(50, seed=1)
    assert live[:52].tolist() == [0, *[1] * 50, 0]
    del walkers
    churn()
    assert live.sum() == 50


def test_input_is_copied():
    source, target = np.arange(N), np.roll(np.arange(N), -1)
    weights, column = np.ones(N), np.arange(N)
    network = veq.Network(source, target, edge_weights=weights, directed=True)
    network.vertex_data["x"] = column
    source[:], target[:], weights[:], column[:] = 0, 0, 5, 0
    assert network.edges.tolist() == ring().edges.tolist()
    assert network.edge_weights.tolist() == [1] * N
    assert network.vertex_data["x"].tolist() == list(range(N))


def test_agents_keep_their_networks():
    walkers = veq.Walkers(ring(), [0, 1], memory=3, listeners=veq.Network([0], [1]))
    churn()
    assert walkers.walk(100, seed=2).steps == 100
    assert walkers.visits().sum() == 200


def test_handles_keep_their_network():
    vertex, edge = ring().vertex(5), ring().edge(7)
    churn()
    assert (vertex.neighbors.tolist(), edge.source, edge.target) == ([6], 7, 8)

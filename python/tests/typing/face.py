"""What type checkers make of the face. It is checked by them, and runs, too."""

from typing import Any, assert_type

import numpy as np
from numpy.typing import NDArray

import veq

network = veq.Network([0, 1, 2], [1, 2, 0], edge_weights=[1.0, 0.5, 2.0])
assert_type(network.num_vertices, int)
assert_type(network.edges, NDArray[np.int64])
assert_type(network.sources, NDArray[np.uint32] | NDArray[np.uint64])
assert_type(network.edge_weights, NDArray[np.float32] | None)
assert_type(network.degrees("in"), NDArray[np.int64])
assert_type(network.strengths(), NDArray[np.float64])
assert_type(network.names, list[str])
assert_type(network.index("0"), int)
assert_type(network.vertex(0), veq.Vertex)
assert_type(network.edge(0).source, int)
assert_type(network.copy(), veq.Network)
assert_type(network.subnetwork([0, 1]).network, veq.Network)
assert_type(network.components(), NDArray[np.int64])
assert_type(network.page_rank().ranks, NDArray[np.float64])
assert_type(network.shortest_path(0, 2), veq.Path | None)
assert_type(network.add_edges([0], [2]), range)
network.edge_weights = [1, 2, 3, 4]
network.vertex_data["Age"] = [31, 45, 27]
assert_type(network.vertex_data["Age"], NDArray[Any])
assert_type(veq.reads("0 1", ids_are_indices=True), veq.Network)
assert_type(veq.gnp(5, 0.5, seed=1), veq.Network)

walkers = veq.Walkers(network, [0], memory=3)
walk = walkers.walk(10, paths=True, seed=veq.RandomState(1), progress=lambda done, all: None)
assert_type(walk.steps, int)
assert_type(walk.paths, veq.Paths | None)
assert_type(walkers.visits(), NDArray[np.int64])
assert_type(veq.WalkLaw(network).stationary(), NDArray[np.float64])

"""Building networks, and what they are made of. Values are worked out by hand."""

import subprocess
import sys
import threading

import numpy as np
import pytest

import veq


def test_edges_neighbours_and_degrees(triangle):
    assert (triangle.num_vertices, triangle.num_edges, triangle.directed) == (4, 4, False)
    assert len(triangle) == 4
    assert triangle.edges.tolist() == [[0, 1], [1, 2], [2, 0], [2, 3]]
    assert triangle.edges.dtype == np.int64
    assert triangle.sources.tolist() == [0, 1, 2, 2]
    assert triangle.targets.tolist() == [1, 2, 0, 3]
    assert triangle.neighbors(2).tolist() == [1, 0, 3]
    assert triangle.edges_of(2).tolist() == [1, 2, 3]
    assert triangle.degrees().tolist() == [2, 2, 3, 1]
    assert triangle.degree(2) == 3
    assert triangle.ends_of(3) == (2, 3)
    assert triangle.has_edge(3, 2)
    assert not triangle.has_edge(3, 1)


def test_directions():
    network = veq.Network([0, 1, 0], [1, 0, 2], directed=True)
    assert network.neighbors(0).tolist() == [1, 2]
    assert network.neighbors(0, "in").tolist() == [1]
    assert network.neighbors(0, "all").tolist() == [1, 2, 1]
    assert network.edges_of(0, "all").tolist() == [0, 2, 1]
    assert network.degrees("in").tolist() == [1, 1, 1]
    assert network.degrees("all").tolist() == [3, 2, 1]
    with pytest.raises(ValueError, match="^mode 'both': give one of 'out', 'in', 'all'$"):
        network.neighbors(0, "both")


def test_an_undirected_loop_stands_twice():
    network = veq.Network([0], [0])
    assert network.neighbors(0).tolist() == [0, 0]
    assert network.degrees().tolist() == [2]


def test_adjacency_has_all_lists(triangle):
    indptr, indices, edges = triangle.adjacency()
    assert indptr.tolist() == [0, 2, 4, 7, 8]
    assert indices.tolist() == [1, 2, 0, 2, 1, 0, 3, 2]
    assert edges.tolist() == [0, 2, 0, 1, 1, 2, 3, 3]


@pytest.mark.parametrize(
    "dtype", ["i1", "u1", "i2", "u2", "i4", "u4", "i8", "u8", ">i2", ">i4", ">u8"]
)
def test_integers_of_every_width_and_byte_order(dtype):
    network = veq.Network(np.array([0, 3], dtype), np.array([1, 2], dtype))
    assert network.edges.tolist() == [[0, 1], [3, 2]]


def test_strides_read_only_empty_and_lists():
    pairs = np.array([[0, 1], [3, 2]])
    assert veq.Network(pairs[:, 0], pairs[:, 1]).edges.tolist() == pairs.tolist()
    assert veq.Network(pairs[::-1, 0], pairs[::-1, 1]).edges.tolist() == [[3, 2], [0, 1]]
    pairs.flags.writeable = False
    assert veq.Network(pairs[:, 0], pairs[:, 1]).num_edges == 2
    assert veq.Network([], []).num_vertices == 0
    assert veq.Network([], [], n=3).num_vertices == 3
    assert veq.Network((0, 1), range(1, 3)).num_vertices == 3


@pytest.mark.parametrize(
    ("arguments", "text"),
    [
        (dict(source=[0, 1, 2], target=[1, 2]), "3 sources for 2 targets"),
        (dict(source=[0, -1], target=[1, 2]), "edge 1: source -1"),
        (dict(source=[0], target=[12], n=10), "edge 0: target 12 of 10 vertices"),
        (dict(source=[0, 0.5], target=[1, 2]), "source 1: 0.5 is no integer"),
        (dict(source=[0, 1], target=[1, np.nan]), "target 1: nan is no integer"),
        (dict(source=[1.0], target=[1]), "source 0: 1.0 is no integer"),
        (dict(source=[True], target=[1]), "source 0: True is no integer"),
        (dict(source=["0"], target=[1]), "source 0: '0' is no integer"),
        (dict(source=[0, None], target=[1, 2]), "source 1: None is no integer"),
        (
            dict(source=np.ma.array([0, 5], mask=[0, 1]), target=[1, 2]),
            "source 1: None is no integer",
        ),
        (dict(source=[0], target=[1], edge_weights=["1"]), "edge_weights 0: '1' is no number"),
        (dict(source=[0], target=[1], edge_weights=[None]), "edge_weights 0: None is no number"),
        (
            dict(source=[0], target=[1], edge_weights=np.array([3], "M8[ns]")),
            "edge_weights 0: 3 is no number",
        ),
        (dict(source=[1, 2**64], target=[1, 1]), f"source 1: {2**64} has more than 64 bits"),
        (dict(source=[[0]], target=[1]), "source: an array of 2 dimensions, not one"),
        (dict(source=[0], target=[1], edge_weights=[1, 2]), "2 weights for 1 edge"),
        (dict(source=[0], target=[1], edge_weights=["x"]), "edge_weights 0: 'x' is no number"),
        (dict(source=[0], target=[1], n=-1), "n = -1: give 0 to 2**64 - 1"),
    ],
)
def test_bad_input_is_named(arguments, text):
    with pytest.raises(ValueError) as raised:
        veq.Network(**arguments)
    assert str(raised.value) == text


def test_whatever_is_an_index_or_a_truth(triangle):
    network = veq.Network([triangle.vertex(1)], [np.uint8(2)], directed=np.True_)
    assert (network.edges.tolist(), network.directed) == ([[1, 2]], True)


def test_what_is_not_initialised_has_no_properties():
    for kind, name in ((veq.Network, "num_edges"), (veq.Walkers, "num_agents")):
        with pytest.raises(TypeError, match="^the object was not initialised$"):
            getattr(kind.__new__(kind), name)


def test_properties_are_read_only(triangle):
    for name in ("num_vertices", "num_edges", "directed", "edge_weighted", "vertex_weighted"):
        with pytest.raises(AttributeError):
            setattr(triangle, name, 1)
    assert (triangle.edge_weighted, triangle.vertex_weighted) == (False, False)
    triangle.edge_weights = [1, 2, 3, 4]
    triangle.vertex_weights = [1, 2, 3, 4]
    assert (triangle.edge_weighted, triangle.vertex_weighted) == (True, True)


@pytest.mark.parametrize("vertex", [4, -1, 2**63 - 1, 2**64, -(2**70)])
def test_there_is_no_such_vertex(triangle, vertex):
    with pytest.raises(IndexError, match=f"^vertex {vertex}"):
        triangle.neighbors(vertex)


def test_weights_are_copies_both_ways(triangle):
    assert triangle.edge_weights is None
    triangle.edge_weights = [1, 2, 4, 8]
    taken = triangle.edge_weights
    taken[0] = 100
    assert triangle.edge_weights.tolist() == [1, 2, 4, 8]
    # Edges 1, 2 and 3 are at vertex 2.
    assert triangle.strengths().tolist() == [5, 3, 14, 8]
    assert triangle.strength(2) == 14
    triangle.vertex_weights = np.array([1, 2, 3, 4], np.int8)
    assert triangle.vertex_weights.tolist() == [1, 2, 3, 4]
    with pytest.raises(ValueError, match="^4 weights for 5 edges$"):
        triangle.add_edges([0], [1])
        triangle.edge_weights = [1, 2, 3, 4]


def test_names():
    network = veq.Network.from_names([("Ada", "Bob"), ("Eve", "Ada")])
    assert network.names == ["Ada", "Bob", "Eve"]
    assert network.index("Eve") == 2
    assert network.indices(["Eve", "Ada"]).tolist() == [2, 0]
    assert network.neighbors("Ada").tolist() == [1, 2]
    with pytest.raises(KeyError, match="Zoe"):
        network.index("Zoe")
    with pytest.raises(KeyError, match="Zoe"):
        network.indices(["Ada", "Zoe"])
    with pytest.raises(ValueError, match='^edge 0: target "Eve" is not among the names$'):
        veq.Network.from_names([("Ada", "Eve")], names=["Ada"])
    with pytest.raises(ValueError, match="^target 0: 7 is no string$"):
        veq.Network.from_names([("Ada", 7)])
    for edge in (("Ada",), ("Ada", "Bob", "Eve"), 7):
        with pytest.raises(ValueError) as raised:
            veq.Network.from_names([("Ada", "Bob"), edge])
        assert str(raised.value) == f"edge 1: {edge!r} is no pair of names"


def test_names_that_are_no_utf8_go_round():
    name = b"M\xfcller".decode("utf-8", "surrogateescape")
    network = veq.Network.from_names([(name, "Ada")])
    assert network.names == [name, "Ada"]
    assert network.index(name) == 0


def test_the_lowest_vertex_of_a_name():
    network = veq.Network([0], [1])
    network.vertex_data["Name"] = ["Ada", "Ada"]
    assert network.index("Ada") == 0
    assert network.indices(["Ada"]).tolist() == [0]


def test_columns_of_numbers_are_live(triangle):
    triangle.vertex_data["Age"] = [31, 45, 27, 8]
    ages = triangle.vertex_data["Age"]
    assert ages.dtype == np.int64
    ages[0] = 32
    assert triangle.vertex_data["Age"].tolist() == [32, 45, 27, 8]
    for dtype in ("f4", "f8", "i8", "u8"):
        triangle.vertex_data["x"] = np.arange(4, dtype=dtype)
        assert triangle.vertex_data["x"].dtype == dtype
    assert list(triangle.vertex_data) == ["Age", "x"]
    del triangle.vertex_data["x"]
    assert "x" not in triangle.vertex_data
    with pytest.raises(KeyError):
        triangle.vertex_data["x"]
    with pytest.raises(KeyError):
        del triangle.vertex_data["x"]
    with pytest.raises(ValueError, match="^column Age: 3 values for 4 vertices$"):
        triangle.vertex_data["Age"] = [1, 2, 3]


def test_columns_of_vectors_and_of_any_kind(triangle):
    triangle.vertex_data["Position"] = [[0, 1], [2, 3], [4, 5], [6, 7]]
    assert triangle.vertex_data["Position"].tolist() == [[0, 1], [2, 3], [4, 5], [6, 7]]
    triangle.vertex_data["Place"] = np.arange(12).reshape(4, 3)
    assert triangle.vertex_data["Place"].shape == (4, 3)
    values = [None, "Ada", 1, 2.5]
    triangle.vertex_data["Any"] = values
    assert triangle.vertex_data["Any"].tolist() == values
    assert triangle.vertex_data.texts("Any") == ["", "Ada", "1", "2.5"]
    triangle.vertex_data["Other"] = [np.float32(0.1), np.uint64(2**63), (1.0, 2.0), True]
    kept = triangle.vertex_data["Other"]
    assert [type(value) for value in kept] == [np.float32, np.uint64, tuple, int]
    with pytest.raises(ValueError, match="^column Bad: value 1 is a dict, not None, a string"):
        triangle.vertex_data["Bad"] = [1, {}, 2, 3]


def test_keys_are_strings(triangle):
    assert triangle.vertex_data.get(1) is None
    for call in (triangle.vertex_data.__getitem__, triangle.vertex_data.__delitem__):
        with pytest.raises(KeyError, match="^1$"):
            call(1)
    with pytest.raises(TypeError, match="^column 1: keys are strings$"):
        triangle.vertex_data[1] = [1, 2, 3, 4]


def test_dates_are_no_numbers(triangle):
    with pytest.raises(
        ValueError, match="^column When: value 0 is a datetime64, not None, a string"
    ):
        triangle.vertex_data["When"] = np.arange(4).astype("M8[ns]")


def test_what_a_mask_hides_is_not_set(triangle):
    triangle.vertex_data["Age"] = np.ma.array([31, 99, 27, 8], mask=[0, 1, 0, 0])
    assert triangle.vertex_data["Age"].tolist() == [31, None, 27, 8]


def test_columns_are_compared_by_whose_they_are(triangle):
    triangle.vertex_data["Age"] = [1, 2, 3, 4]
    assert triangle.vertex_data == triangle.vertex_data
    assert triangle.vertex_data != triangle.edge_data
    assert triangle.vertex_data != triangle.copy().vertex_data
    assert len({triangle.vertex_data, triangle.vertex_data}) == 1


def test_adding_edges_leaves_arrays_as_they_were(triangle):
    triangle.edge_data["Year"] = [1, 2, 3, 4]
    sources, neighbours = triangle.sources, triangle.neighbors(3)
    years, lists = triangle.edge_data["Year"], triangle.adjacency()
    assert triangle.add_edges([3, 3], [0, 1]) == range(4, 6)
    assert sources.tolist() == [0, 1, 2, 2]
    assert neighbours.tolist() == [2]
    assert lists.indices.tolist() == [1, 2, 0, 2, 1, 0, 3, 2]
    assert triangle.neighbors(3).tolist() == [2, 0, 1]
    assert years.tolist() == [1, 2, 3, 4]
    # The network's column has grown, and is another now.
    assert triangle.edge_data["Year"].tolist() == [1, 2, 3, 4, 0, 0]
    years[0] = 99
    assert triangle.edge_data["Year"][0] == 1


def test_what_must_not_be_written_is_read_only(triangle):
    for array in (triangle.sources, triangle.neighbors(0), *triangle.adjacency()):
        with pytest.raises(ValueError, match="read-only"):
            array[0] = 1


def test_an_edit_during_a_walk_is_refused(triangle):
    told = []

    def edit(done, everything):
        with pytest.raises(RuntimeError, match="^the network is in use: a walk"):
            triangle.add_edges([0], [1])
        told.append(triangle.num_edges)
        return False

    walkers = veq.Walkers(triangle, [0] * 100)
    walk = walkers.walk(10**9, seed=1, progress=edit)
    assert (walk.end, told) == ("stopped", [4])
    assert triangle.add_edges([0], [1]) == range(4, 5)


def test_threads_read_and_walk_at_once():
    network = veq.gnm(1000, 5000, seed=1)
    degrees = network.degrees()
    errors = []

    def read():
        for _ in range(200):
            if not np.array_equal(network.degrees(), degrees):
                errors.append("degrees")
            network.neighbors(1).sum()

    def walk(number):
        walkers = veq.Walkers(network, np.arange(50))
        walkers.walk(2000, seed=7)
        visits.append(walkers.visits())

    visits = []
    threads = [threading.Thread(target=read) for _ in range(4)]
    threads += [threading.Thread(target=walk, args=(k,)) for k in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert errors == []
    assert all(np.array_equal(visits[0], other) for other in visits[1:])


def test_handles(triangle):
    triangle.vertex_data["Name"] = ["Ada", "Bob", "Eve", "Zoe"]
    vertex = triangle.vertex("Eve")
    assert (vertex.index, vertex.name, vertex.degree) == (2, "Eve", 3)
    assert vertex["Name"] == "Eve"
    assert triangle.vertex(2) == vertex
    assert len({triangle.vertex(2), vertex}) == 1
    assert triangle.neighbors(vertex).tolist() == [1, 0, 3]
    edge = triangle.edge(3)
    assert (edge.source, edge.target) == (2, 3)
    with pytest.raises(IndexError, match="^vertex 4 of 4$"):
        triangle.vertex(4)
    with pytest.raises(IndexError, match="^edge 4 of 4$"):
        triangle.edge(4)
    with pytest.raises(TypeError, match="no sequence"):
        iter(triangle)


def test_derived_networks(triangle):
    triangle.vertex_data["Age"] = [1, 2, 3, 4]
    copy = triangle.copy()
    copy.vertex_data["Age"][0] = 9
    assert triangle.vertex_data["Age"][0] == 1
    part = triangle.subnetwork([3, 2, 1])
    # Edges 1 (1 - 2) and 3 (2 - 3) are among them.
    assert part.network.edges.tolist() == [[2, 1], [1, 0]]
    assert part.vertices.tolist() == [3, 2, 1]
    assert part.edges.tolist() == [1, 3]
    assert part.network.vertex_data["Age"].tolist() == [4, 3, 2]
    assert triangle.subnetwork_of_edges([3]).vertices.tolist() == [2, 3]
    assert triangle.neighborhood(3).vertices.tolist() == [3, 2]
    assert triangle.with_more_vertices(2).num_vertices == 6
    directed = triangle.as_directed()
    assert directed.edges.tolist()[:2] == [[0, 1], [1, 0]]
    assert directed.reversed().edges.tolist()[0] == [1, 0]
    assert directed.as_undirected().num_edges == 8
    assert directed.as_undirected().simplified().network.num_edges == 4
    united = veq.Network.united([triangle, triangle], by="index")
    assert (united.network.num_vertices, united.network.num_edges) == (4, 8)
    assert united.first_edges.tolist() == [0, 4]
    with pytest.raises(ValueError, match="^place 1: vertex 12 of 4$"):
        triangle.subnetwork([0, 12])


def test_components():
    network = veq.Network([0, 2, 3], [1, 3, 4])
    assert network.components().tolist() == [0, 0, 1, 1, 1]
    assert network.component_sizes().tolist() == [2, 3]
    assert [part.vertices.tolist() for part in network.split()] == [[0, 1], [2, 3, 4]]
    assert network.largest_component().vertices.tolist() == [2, 3, 4]


def test_questions(triangle):
    assert triangle.triangles().tolist() == [1, 1, 1, 0]
    assert triangle.count_triangles() == 1
    # Of the three pairs of neighbours of vertex 2 one is linked.
    assert triangle.local_clustering().tolist() == [1, 1, 1 / 3, 0]
    assert triangle.average_clustering("left out") == pytest.approx(7 / 9)
    # Three of the 1 + 1 + 3 pairs.
    assert triangle.transitivity() == pytest.approx(3 / 5)
    assert triangle.core_numbers().tolist() == [2, 2, 2, 1]
    assert triangle.degree_distribution().tolist() == [0, 1, 2, 1]
    strengths, vertices = triangle.strength_distribution()
    assert (strengths.tolist(), vertices.tolist()) == ([1, 2, 3], [1, 2, 1])
    assert triangle.density() == pytest.approx(4 / 6)
    assert triangle.reciprocity() == 1
    assert triangle.average_neighbor_degree().tolist() == pytest.approx([2.5, 2.5, 5 / 3, 3])
    assert triangle.distances_from(3).tolist() == [2, 2, 1, 0]
    assert triangle.weighted_distances_from(3).tolist() == [2, 2, 1, 0]
    path = triangle.shortest_path(0, 3)
    assert (path.vertices.tolist(), path.edges.tolist(), path.length) == ([0, 2, 3], [2, 3], 2)
    histogram = triangle.distance_histogram()
    # Two pairs are two edges apart, each counted both ways.
    assert histogram.pairs.tolist() == [4, 8, 4]
    assert triangle.diameter().least == triangle.diameter().most == 2
    assert triangle.page_rank().ranks.sum() == pytest.approx(1)
    assert veq.Network([], [], n=2).shortest_path(0, 1) is None


FOLLOWED = {
    "components": [0, 0, 1, 1, 1],
    "component_sizes": [2, 3],
    "triangles": [0, 0, 1, 1, 1],
    "count_triangles": 1,
    "local_clustering": [0, 0, 1, 1, 1],
    "average_clustering": 0.6,
    "transitivity": 1,
    "core_numbers": [1, 1, 2, 2, 2],
}


@pytest.mark.parametrize("question", FOLLOWED)
def test_questions_are_followed(question):
    # An edge, and a triangle beside it.
    network = veq.Network([0, 2, 3, 4], [1, 3, 4, 2])
    told = []
    answer = getattr(network, question)(progress=lambda done, all: told.append((done, all)))
    assert np.asarray(answer).tolist() == FOLLOWED[question]
    assert all(done <= all for done, all in told)
    # Nobody is told before 50 ms are over, and then the answer is "no".
    for edges in (2_000_000, 8_000_000, 32_000_000):
        large = veq.gnm(edges // 10, edges, seed=1)
        try:
            getattr(large, question)(progress=lambda *_: False)
        except veq.StoppedError:
            return
    pytest.fail("the callable was never asked")


def test_networks_alone_are_united(triangle):
    with pytest.raises(TypeError, match="^network 1: 7 is no network$"):
        veq.Network.united([triangle, 7])


EDITED_AND_READ = """
import threading
import numpy as np
import veq
network = veq.Network([0], [1], n=100)
ends = np.arange(100)
over = False
def glance():
    while not over:
        network.num_edges
        network.neighbors(1)
threads = [threading.Thread(target=glance) for _ in range(2)]
for thread in threads:
    thread.start()
added = 0
for _ in range(3000):
    try:
        added += len(network.add_edges(ends, ends[::-1]))
    except RuntimeError:  # Somebody was just looking.
        pass
over = True
for thread in threads:
    thread.join()
assert network.num_edges == 1 + added > 1
"""


def test_edits_and_glances_do_not_wait_for_each_other():
    # In a process of its own, for what waits for ever can only be ended from outside.
    subprocess.run([sys.executable, "-c", EDITED_AND_READ], check=True, timeout=120)

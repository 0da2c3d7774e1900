"""Other libraries' graphs, there and back, and NetworkX as a judge."""

import os

import networkx as nx
import numpy as np
import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st

import veq

# Fewer under an emulator, which is slow at all of it.
SHARE = int(os.environ.get("VEQ_TEST_SHARE", "1"))
settings.register_profile(
    "veq",
    deadline=None,
    max_examples=max(60 // SHARE, 2),
    suppress_health_check=[HealthCheck.too_slow],
)
settings.load_profile("veq")

KEYS = st.sampled_from(["Age", "x", "Some words", "Größe"])


@st.composite
def networks(draw, columns=True):
    """Multigraphs with loops, isolated vertices, weights and columns."""
    n = draw(st.integers(0, 8))
    vertex = st.integers(0, n - 1)
    ends = draw(st.lists(st.tuples(vertex, vertex), max_size=14)) if n else []
    m = len(ends)
    weights = st.floats(0, 2**20, width=32)
    network = veq.Network(
        [a for a, _ in ends],
        [b for _, b in ends],
        n=n,
        directed=draw(st.booleans()),
        edge_weights=draw(st.none() | st.lists(weights, min_size=m, max_size=m)),
        vertex_weights=draw(st.none() | st.lists(weights, min_size=n, max_size=n)),
    )
    if columns:
        for data, count in ((network.vertex_data, n), (network.edge_data, m)):
            for key in draw(st.sets(KEYS)):
                data[key] = draw(values(count))
    return network


def values(count):
    """One column: of integers, of doubles, of vectors, or of texts of which some are not set."""
    whole = st.integers(-(2**63), 2**63 - 1)
    numbers = st.floats(allow_nan=False)
    text = st.text(st.characters(exclude_categories=["Cs"], exclude_characters="\0"), max_size=5)
    kinds = [whole, numbers, st.tuples(numbers, numbers), st.tuples(*[numbers] * 3)]
    return st.one_of([st.lists(kind, min_size=count, max_size=count) for kind in kinds]) | st.lists(
        st.none() | text, min_size=count, max_size=count
    )


def same_columns(a, b):
    for one, other in ((a.vertex_data, b.vertex_data), (a.edge_data, b.edge_data)):
        for key in set(one) | set(other):
            if key not in other:
                # Nothing was set in it, or there was nothing to set.
                assert all(value is None for value in one[key].tolist())
                continue
            assert one[key].tolist() == other[key].tolist(), key


def same(a, b, ends_in_order=True):
    assert (a.num_vertices, a.directed) == (b.num_vertices, b.directed)
    if ends_in_order or a.directed:
        assert np.array_equal(a.edges, b.edges)
    else:
        assert np.array_equal(np.sort(a.edges, axis=1), np.sort(b.edges, axis=1))
    for one, other in ((a.vertex_weights, b.vertex_weights), (a.edge_weights, b.edge_weights)):
        if one is None or len(one) == 0:
            assert other is None or len(other) == 0
        else:
            assert np.array_equal(one, other)
    same_columns(a, b)


def in_their_order(network):
    """NetworkX tells undirected edges from the end that it met first."""
    return sorted(map(tuple, np.sort(network.edges, axis=1).tolist()))


@given(networks())
def test_networkx_there_and_back(network):
    graph = network.to_networkx(multigraph=True)
    again = veq.Network.from_networkx(graph)
    assert (again.num_vertices, again.directed) == (network.num_vertices, network.directed)
    assert in_their_order(again) == in_their_order(network)
    assert sum(again.strengths()) == pytest.approx(sum(network.strengths()))
    same_columns_of_vertices = {
        key: network.vertex_data[key].tolist() for key in network.vertex_data
    }
    for key, column in same_columns_of_vertices.items():
        if key in again.vertex_data:
            assert again.vertex_data[key].tolist() == column
        else:
            assert all(value is None for value in column)
    if network.directed:
        # NetworkX has them source by source and target by target, parallel ones in their order.
        ours, theirs = (np.lexsort((one.targets, one.sources)) for one in (network, again))
        for key in again.edge_data:
            columns = network.edge_data[key].tolist(), again.edge_data[key].tolist()
            assert [columns[0][e] for e in ours] == [columns[1][e] for e in theirs]


@given(networks(columns=False))
def test_networkx_judges_degrees_components_and_matrices(network):
    graph = network.to_networkx(multigraph=True)
    n = network.num_vertices
    degrees = dict(graph.degree())
    assert network.degrees("all").tolist() == [degrees[v] for v in range(n)]
    if network.directed:
        assert network.degrees("in").tolist() == [graph.in_degree(v) for v in range(n)]
        components = nx.weakly_connected_components(graph)
    else:
        components = nx.connected_components(graph)
    labels = network.components()
    ours = {frozenset(np.flatnonzero(labels == k).tolist()) for k in set(labels.tolist())}
    assert ours == set(map(frozenset, components))
    strengths = dict(graph.degree(weight="weight"))
    assert network.strengths("all").tolist() == pytest.approx([strengths[v] for v in range(n)])
    if n:
        theirs = nx.to_scipy_sparse_array(graph, nodelist=range(n), dtype=float, weight="weight")
        assert np.allclose(network.to_scipy().toarray(), theirs.toarray())


def test_parallel_edges_ask_for_a_multigraph():
    assert not veq.Network([0, 1], [1, 2]).to_networkx().is_multigraph()
    assert veq.Network([0, 1], [1, 0]).to_networkx().is_multigraph()
    assert not veq.Network([0, 1], [1, 0], directed=True).to_networkx().is_multigraph()


def test_labels():
    network = veq.Network.from_names([("Ada", "Bob")])
    assert list(network.to_networkx(labels="name")) == ["Ada", "Bob"]
    assert list(network.to_networkx()) == [0, 1]
    assert veq.Network.from_networkx(network.to_networkx(labels="name")).names == ["Ada", "Bob"]
    assert veq.Network.from_networkx(network.to_networkx()).names == ["Ada", "Bob"]


def test_exact_weights_survive():
    graph = nx.Graph()
    graph.add_edge(0, 1, weight=0.1)
    network = veq.Network.from_networkx(graph)
    assert network.edge_weights.tolist() == [np.float32(0.1)]
    assert network.to_networkx().edges[0, 1] == {"weight": 0.1}


def test_nothing_takes_the_place_of_something_else():
    network = veq.Network([0], [1], edge_weights=[2])
    network.edge_data["weight"] = [7.0]
    for library in ("networkx", "igraph"):
        with pytest.raises(ValueError, match="^column weight: the weights are called so there$"):
            getattr(network, f"to_{library}")()
    with pytest.raises(ValueError, match="^column weight: the table has a column of that name$"):
        network.to_pandas()
    network = veq.Network([0], [1])
    network.vertex_data["Name"] = network.vertex_data["name"] = ["Ada", "Bob"]
    with pytest.raises(ValueError, match="^column name: another is called 'name' there$"):
        network.to_igraph()
    graph = network.to_networkx()
    assert veq.Network.from_networkx(graph).vertex_data["name"].tolist() == ["Ada", "Bob"]
    graph = nx.relabel_nodes(graph, {0: "a", 1: "b"})
    assert veq.Network.from_networkx(graph).vertex_data["Label"].tolist() == ["a", "b"]
    nx.set_node_attributes(graph, 1, "Label")
    with pytest.raises(ValueError, match="^nodes have attributes 'Name' and 'Label': rename one"):
        veq.Network.from_networkx(graph)
    graph = nx.Graph()
    graph.add_edge(0, 1, **{"1": 5})
    graph.edges[0, 1][1] = 6
    with pytest.raises(ValueError, match="^attribute 1: another is called so as a text$"):
        veq.Network.from_networkx(graph)


def test_igraph_has_name_and_another_name():
    igraph = pytest.importorskip("igraph")
    graph = igraph.Graph(n=1)
    graph.vs["name"] = graph.vs["Name"] = ["Ada"]
    with pytest.raises(ValueError, match="^vertices have attributes 'name' and 'Name': rename one"):
        veq.Network.from_igraph(graph)


def test_attributes_that_no_column_holds():
    graph = nx.Graph()
    graph.add_node(0, tags={"a"})
    with pytest.raises(ValueError, match="^column tags: value 0 is a set, not None"):
        veq.Network.from_networkx(graph)
    assert veq.Network.from_networkx(graph, other="text").vertex_data["tags"].tolist() == ["{'a'}"]


@given(networks())
def test_igraph_there_and_back(network):
    pytest.importorskip("igraph")
    # Which end of an undirected edge came first is not kept there.
    same(veq.Network.from_igraph(network.to_igraph()), network, ends_in_order=False)


@given(networks(columns=False))
def test_scipy_there_and_back(network):
    again = veq.Network.from_scipy(network.to_scipy(), directed=network.directed)
    assert np.allclose(again.to_scipy().toarray(), network.to_scipy().toarray())
    assert again.num_vertices == network.num_vertices


def test_scipy_refuses():
    with pytest.raises(ValueError, match="^the matrix is not symmetric: give directed=True$"):
        veq.Network.from_scipy([[0, 1], [0, 0]])
    with pytest.raises(ValueError, match=r"^a matrix of shape \(1, 2\): as many columns as rows$"):
        veq.Network.from_scipy([[0, 1]])


@pytest.mark.parametrize("library", ["pandas", "polars", "arrow"])
@given(network=networks())
def test_tables_there_and_back(library, network):
    pytest.importorskip("pyarrow" if library == "arrow" else library)
    edges, vertices = getattr(network, f"to_{library}")()
    same(veq.Network.from_frames(edges, vertices, directed=network.directed), network)


def test_tables_of_others():
    pandas = pytest.importorskip("pandas")
    table = pandas.DataFrame({"source": [0, 1], "target": [1, 2], "weight": [1.5, 2.0]})
    network = veq.Network.from_frames(table)
    assert network.edge_weights.tolist() == [1.5, 2]
    assert veq.Network(table["source"], table["target"]).num_edges == 2


@pytest.mark.parametrize("library", ["pandas", "polars", "pyarrow"])
def test_columns_of_every_library_go_in(library):
    module = pytest.importorskip(library)
    column = module.array if library == "pyarrow" else module.Series
    network = veq.Network(column([0, 1]), column([1, 2]), edge_weights=column([0.5, 2.0]))
    network.vertex_data["Age"] = column([31, 45, 27])
    network.vertex_data["Name"] = column(["Ada", None, "Bob"])
    assert network.edges.tolist() == [[0, 1], [1, 2]]
    assert network.edge_weights.tolist() == [0.5, 2]
    assert network.vertex_data["Age"].tolist() == [31, 45, 27]
    assert network.vertex_data["Name"].tolist() == ["Ada", None, "Bob"]
    with pytest.raises(ValueError, match="^edge 1: source -1$"):
        veq.Network(column([0, -1]), column([1, 2]))


@pytest.mark.parametrize("library", ["pandas", "polars", "pyarrow"])
def test_what_is_missing_in_columns_of_every_library(library):
    module = pytest.importorskip(library)
    kind = {"dtype": "Int64"} if library == "pandas" else {}
    column = (module.array if library == "pyarrow" else module.Series)([0, None, 2**60 + 1], **kind)
    for name, arguments in (("source", (column, [1, 2, 3])), ("target", ([1, 2, 3], column))):
        with pytest.raises(ValueError, match=f"^{name} 1: None is no integer$"):
            veq.Network(*arguments)
    with pytest.raises(ValueError, match="^edge_weights 1: None is no number$"):
        veq.Network([0, 1, 2], [1, 2, 0], edge_weights=column)
    network = veq.Network([0], [1], n=3)
    network.vertex_data["x"] = column
    assert network.vertex_data["x"].tolist() == [0, None, 2**60 + 1]


@pytest.mark.parametrize("library", ["pandas", "polars", "arrow"])
def test_tables_keep_what_is_not_set(library):
    pytest.importorskip("pyarrow" if library == "arrow" else library)
    network = veq.Network([0, 1], [1, 2])
    # The integer beside what is not set is none that a double holds.
    values = {"whole": [2**60 + 1, None, 3], "real": [0.5, None, 3.0], "nan": [0.5, np.nan, 3.0]}
    for key, column in values.items():
        network.vertex_data[key] = column
    edges, vertices = getattr(network, f"to_{library}")()
    again = veq.Network.from_frames(edges, vertices)
    assert again.vertex_data["whole"].tolist() == values["whole"]
    assert again.vertex_data["real"].tolist() == values["real"]
    assert again.vertex_data["nan"].dtype == np.float64
    assert np.isnan(again.vertex_data["nan"]).tolist() == [False, True, False]


@pytest.mark.parametrize("library", ["pandas", "polars", "arrow"])
def test_rows_of_vertices_are_told_by_their_index(library):
    pytest.importorskip("pyarrow" if library == "arrow" else library)
    network = veq.Network([0, 0], [1, 2])
    network.vertex_data["Age"] = [31, 45, 27]
    network.vertex_data["Town"] = ["Rome", None, "Oslo"]
    edges, vertices = getattr(network, f"to_{library}")()
    by_age = {"pandas": "sort_values", "polars": "sort", "arrow": "sort_by"}[library]
    vertices = getattr(vertices, by_age)("Age")
    again = veq.Network.from_frames(edges, vertices)
    assert again.vertex_data["Age"].tolist() == [31, 45, 27]
    assert again.vertex_data["Town"].tolist() == ["Rome", None, "Oslo"]
    with pytest.raises(ValueError, match="^the index of vertices is not 0 to 1 in some order$"):
        veq.Network.from_frames(edges, vertices[:2])


def test_columns_of_tables_keep_their_names():
    pandas = pytest.importorskip("pandas")
    ends = {"source": [0], "target": [1]}
    network = veq.Network.from_frames(pandas.DataFrame({**ends, 3: [5], "weight": ["heavy"]}))
    assert network.edge_data["3"].tolist() == [5]
    assert network.edge_data["weight"].tolist() == ["heavy"]
    twice = pandas.DataFrame([[0, 1, 2, 3]], columns=["source", "target", "a", "a"])
    with pytest.raises(ValueError, match="^column a: there are several of that name$"):
        veq.Network.from_frames(twice)
    network.vertex_data["index"] = [1, 2]
    with pytest.raises(ValueError, match="^column index: the table has a column of that name$"):
        network.to_pandas()


def test_dates_of_tables_become_texts_where_asked():
    pandas = pytest.importorskip("pandas")
    table = pandas.DataFrame({"source": [0], "target": [1]})
    table["when"] = pandas.to_datetime(["2020-02-01"])
    with pytest.raises(ValueError, match="^column when: value 0 is a datetime64, not None"):
        veq.Network.from_frames(table)
    (text,) = veq.Network.from_frames(table, other="text").edge_data["when"]
    assert text.startswith("2020-02-01")


@pytest.mark.parametrize("library", ["polars", "arrow"])
def test_tables_of_one_kind_refuse_several(library):
    pytest.importorskip("pyarrow" if library == "arrow" else library)
    network = veq.Network([0], [1])
    network.vertex_data["x"] = [1, "one"]
    with pytest.raises(ValueError) as raised:
        getattr(network, f"to_{library}")()
    assert str(raised.value) == "column x: values of several kinds (int, str): give other='text'"
    _, vertices = getattr(network, f"to_{library}")(other="text")
    assert list(vertices["x"].to_pylist() if library == "arrow" else vertices["x"]) == ["1", "one"]


def test_weights_that_are_missing_in_a_table():
    pandas = pytest.importorskip("pandas")
    table = pandas.DataFrame({"source": [0, 1], "target": [1, 2], "weight": [1.5, None]})
    with pytest.raises(ValueError, match="^weight 1: nan is no number$"):
        veq.Network.from_frames(table)


@given(networks())
def test_graph_tool_there_and_back(network):
    pytest.importorskip("graph_tool")
    same(veq.Network.from_graph_tool(network.to_graph_tool()), network)


def test_what_filters_of_graph_tool_leave():
    graph_tool = pytest.importorskip("graph_tool")
    graph = graph_tool.Graph(directed=False)
    graph.add_vertex(4)
    # Its own order is by vertices: the edges 1 and 3, which are alike, then 0, then 2.
    graph.add_edge_list(np.array([[2, 0], [0, 1], [2, 3], [0, 1]]))
    graph.edge_properties["text"] = graph.new_edge_property("string", vals=["b", "d", "a", "c"])
    graph.vertex_properties["short"] = graph.new_vertex_property("int16_t", vals=[5, 6, 7, 8])
    network = veq.Network.from_graph_tool(graph)
    assert network.edges.tolist() == [[2, 0], [0, 1], [2, 3], [0, 1]]
    assert network.edge_data["text"].tolist() == [
        graph.edge_properties["text"][edge]
        for edge in sorted(graph.edges(), key=lambda edge: graph.edge_index[edge])
    ]
    graph.remove_edge(graph.edge(2, 0))
    part = graph_tool.GraphView(graph, vfilt=lambda v: int(v) != 3)
    network = veq.Network.from_graph_tool(part)
    assert network.edges.tolist() == [[0, 1], [0, 1]]
    assert network.vertex_data["short"].tolist() == [5, 6, 7]


def test_plot():
    matplotlib = pytest.importorskip("matplotlib")
    pytest.importorskip("matplotlib.figure")
    matplotlib.use("Agg")
    network = veq.geometric(30, 0.3, seed=1)
    network.vertex_data["Visits"] = np.arange(30)
    # Axes that nobody else draws on.
    axes = matplotlib.figure.Figure().subplots()
    assert network.plot(axes, color="Visits", names=True) is axes
    (points,) = [one for one in axes.collections if len(one.get_offsets()) == 30]
    assert np.allclose(points.get_offsets(), network.vertex_data["Position"][:, :2])
    assert points.get_array().tolist() == list(range(30))
    network.vertex_data["Group"] = ["b", "a", "b"] + [None] * 27
    points = network.plot(axes, color="Group").collections[-1]
    # "" comes first, then "a" and "b".
    assert points.get_array().tolist() == [2, 1, 2] + [0] * 27
    with pytest.raises(ValueError, match="^column Position: vectors are no colours$"):
        network.plot(axes, color="Position")
    assert len(network.plot(axes, max_edges=0).collections[-2].get_segments()) == 0
    lines = axes.collections[0]
    assert len(lines.get_segments()) == network.num_edges
    with pytest.raises(ValueError, match=r"^positions of shape \(2,\) for 30 vertices: \(n, 2\)$"):
        network.plot(axes, positions=[1, 2])

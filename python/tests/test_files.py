"""Files, pickles, and the same bits as the program's."""

import copy
import gzip
import os
import pickle
import shutil
import subprocess
import sysconfig
from pathlib import Path

import numpy as np
import pytest

import veq

PICKLES = Path(__file__).parent / "pickles"


def rich():
    """A network with everything that files and pickles are to keep."""
    network = veq.Network(
        [0, 1, 1, 1, 3],
        [1, 2, 2, 1, 0],
        n=6,
        directed=True,
        vertex_weights=[1, 2, 3, 4, 5, 0.1],
        edge_weights=[0.1, 2, 3, 4, 5],
    )
    network.vertex_data["Name"] = ["Ada", "Bob", None, "Müller", "", "Zoe"]
    network.vertex_data["Age"] = [1, 2, 3, 4, 5, 6]
    network.vertex_data["Position"] = np.arange(12.0).reshape(6, 2)
    network.vertex_data["Place"] = np.arange(18.0).reshape(6, 3)
    network.edge_data["Length"] = np.array([0.1, 0.2, 0.3, 0.4, 0.5])
    network.edge_data["Count"] = np.array([1, 2, 3, 4, 2**63], np.uint64)
    network.edge_data["Any"] = [1, 2, 3, 4, 5]
    network.edge_data["Mixed"] = [None, 1, 2.5, "x", (1.0, 2.0)]
    return network


def assert_same(a, b):
    assert (a.num_vertices, a.directed) == (b.num_vertices, b.directed)
    assert np.array_equal(a.edges, b.edges)
    for one, other in ((a.vertex_weights, b.vertex_weights), (a.edge_weights, b.edge_weights)):
        assert (one is None) == (other is None)
        assert one is None or np.array_equal(one, other)
    for one, other in ((a.vertex_data, b.vertex_data), (a.edge_data, b.edge_data)):
        assert list(one) == list(other)
        for key in one:
            assert one[key].dtype == other[key].dtype, key
            assert one[key].tolist() == other[key].tolist(), key


@pytest.mark.parametrize("protocol", range(2, pickle.HIGHEST_PROTOCOL + 1))
def test_pickles_keep_everything(protocol):
    assert_same(pickle.loads(pickle.dumps(rich(), protocol)), rich())


def test_pickles_are_out_of_band():
    network = veq.Network(np.arange(10_000), np.arange(1, 10_001))
    buffers = []
    data = pickle.dumps(network, 5, buffer_callback=buffers.append)
    assert len(data) < 1000
    # Two arrays of 10,000 indices of 32 bits.
    assert sum(len(buffer.raw()) for buffer in buffers) == 80_000
    assert_same(pickle.loads(data, buffers=buffers), network)


def test_a_list_of_numbers_stays_a_list():
    network = veq.Network([0], [1])
    pickled = pickle.loads(pickle.dumps(network))
    assert_same(pickled, network)
    # Set as values of any kind, of which one is removed again.
    network.vertex_data["x"] = [1, None]
    assert pickle.loads(pickle.dumps(network)).vertex_data["x"].dtype == object


def test_a_pickle_of_a_later_release_says_so(monkeypatch):
    monkeypatch.setattr("veq._pickle._VERSION", 2)
    data = pickle.dumps(veq.Network([0], [1]))
    monkeypatch.setattr("veq._pickle._VERSION", 1)
    with pytest.raises(pickle.UnpicklingError, match="^a network of version 2, written by a later"):
        pickle.loads(data)


@pytest.mark.parametrize("path", sorted(PICKLES.glob("*.pickle")), ids=lambda path: path.stem)
def test_pickles_of_every_release_are_read(path):
    # Each release adds its own: pickle.dumps([rich(), veq.RandomState(7).after(1000)], 5).
    network, state = pickle.loads(path.read_bytes())
    assert_same(network, rich())
    assert state == veq.RandomState(7).after(1000)


@pytest.mark.parametrize("protocol", range(2, pickle.HIGHEST_PROTOCOL + 1))
def test_pickles_are_for_any_numpy(protocol):
    # Its own pickles of arrays name modules that have moved since.
    assert b"numpy" not in pickle.dumps([rich(), veq.RandomState(7)], protocol)


def test_this_release_has_its_pickle():
    assert (PICKLES / f"{veq.__version__}.pickle").exists()


def test_a_pickled_network_walks_alike():
    network = veq.gnm(50, 200, seed=1)
    again = pickle.loads(pickle.dumps(network))
    walks = []
    for one in (network, again):
        walkers = veq.Walkers(one, [0, 1])
        walkers.walk(100, seed=5)
        walks.append(walkers.visits().tolist())
    assert walks[0] == walks[1]


def test_copies_share_nothing():
    network = rich()
    for other in (copy.copy(network), copy.deepcopy(network), network.copy()):
        assert_same(other, network)
        other.vertex_data["Age"][0] = 99
        other.add_edges([0], [0])
    assert network.vertex_data["Age"][0] == 1
    assert network.num_edges == 5


def test_random_states_are_pickled():
    state = veq.RandomState(7).after(1000)
    assert pickle.loads(pickle.dumps(state)) == state
    assert copy.copy(state) == copy.deepcopy(state) == state
    with pytest.raises(TypeError, match="^a substream cannot be pickled"):
        pickle.dumps(state.substream(1))
    with pytest.raises(TypeError, match="^agents cannot be pickled"):
        pickle.dumps(veq.Walkers(veq.Network([0], [1]), [0]))


def test_graphml_keeps_everything(tmp_path):
    network = rich()
    path = tmp_path / "Müller network.graphml"
    network.save(path)
    again = veq.read(path)
    assert np.array_equal(again.edges, network.edges)
    assert again.vertex_data["Age"].tolist() == [1, 2, 3, 4, 5, 6]
    assert again.vertex_data["Position"].tolist() == network.vertex_data["Position"].tolist()
    (tmp_path / "x.gz").write_bytes(gzip.compress(path.read_bytes()))
    assert veq.read(os.fsencode(tmp_path / "x.gz")).num_edges == 5


@pytest.mark.parametrize("format", ["xnet", "pajek", "matrix-market", "gml", "graphml", "csv"])
def test_texts_go_round(format):
    network = veq.Network([0, 1], [1, 2], directed=True)
    again = veq.reads(network.dumps(format), ids_are_indices=format == "csv", directed=True)
    assert again.edges.tolist() == [[0, 1], [1, 2]]


def test_what_is_wrong_with_files(tmp_path):
    with pytest.raises(FileNotFoundError) as raised:
        veq.read(tmp_path / "none.xnet")
    assert raised.value.errno == 2
    assert raised.value.filename == str(tmp_path / "none.xnet")
    with pytest.raises(IsADirectoryError):
        veq.read(tmp_path)
    with pytest.raises(veq.FormatError) as raised:
        veq.reads("<graphml><graph>")
    assert isinstance(raised.value, ValueError)
    with pytest.raises(ValueError, match="^format 'word': give one of 'xnet', 'pajek'"):
        veq.reads("0 1", "word")
    with pytest.raises(FileNotFoundError):
        veq.Network([0], [1]).save(tmp_path / "no" / "folder.xnet")
    with pytest.raises(ValueError):
        veq.Network([0], [1]).save(tmp_path / "name.unknown")


def test_what_is_no_file(tmp_path):
    network = veq.Network([0], [1])
    with pytest.raises(TypeError):
        veq.reads(3)
    for call in (veq.read, network.save):
        with pytest.raises(ValueError, match="^embedded null byte$"):
            call("a\0b.xnet")
    with pytest.raises(ValueError, match=r"^most_vertices = -1: give 0 to 2\*\*64 - 1$"):
        veq.reads("0 1", most_vertices=-1)
    assert veq.reads(bytearray(b"0 1"), ids_are_indices=True).num_edges == 1


def test_the_place_of_a_mistake():
    text = "*Vertices 2\n*Edges\n1 x\n"
    with pytest.raises(veq.FormatError) as raised:
        veq.reads(text, "pajek", strict=True)
    assert raised.value.line == 3


def test_what_was_left_out_is_warned_of():
    text = "%%MatrixMarket matrix coordinate pattern general\n2 2 1\n1 2 and more\n"
    notes = []
    network = veq.reads(text, notes=notes)
    assert network.num_edges == 1
    assert [note.line for note in notes if note.kind == "left out"] == [3]
    with pytest.warns(veq.ReadWarning, match="^line 3: "):
        veq.reads(text)


def program():
    """The console script that lies beside the interpreter."""
    found = shutil.which("veq", path=sysconfig.get_path("scripts"))
    assert found is not None, "the console script veq is not installed"
    return found


def shown_by_program(*arguments):
    done = subprocess.run([program(), *map(str, arguments)], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    return done.stdout


def test_the_program_is_the_same_release():
    assert shown_by_program("--version").split()[:2] == ["veq", veq.__version__]


def test_the_program_has_its_data_and_all_readers(tmp_path):
    # Of the 34 members and 78 ties that Zachary told of.
    assert "34" in shown_by_program("info", "karate", "--format", "csv")
    path = tmp_path / "network.graphml.gz"
    plain = tmp_path / "network.graphml"
    rich().save(plain)
    path.write_bytes(gzip.compress(plain.read_bytes()))
    again = tmp_path / "again.veqa"
    shown_by_program("convert", path, again)
    assert veq.read(again).num_edges == 5


def test_the_program_says_what_is_wrong():
    done = subprocess.run([program(), "info", "no such file"], capture_output=True, text=True)
    assert done.returncode != 0
    assert "no such file" in done.stderr


def test_the_program_grows_the_same_networks(tmp_path):
    path = tmp_path / "grown.xnet"
    options = ["--vertices", "200", "--degree", "6", "--seed", "11"]
    models = {"barabasi": veq.preferential_attachment, "random": veq.random_network}
    for name, model in models.items():
        shown_by_program("generate", name, *options, path)
        grown = veq.read(path).edges
        veq.seed(5)
        before = veq.random_state()
        assert np.array_equal(grown, model(200, 6, seed=11).edges)
        assert np.array_equal(grown, model(200, 6, seed=veq.RandomState(11)).edges)
        # The process's own sequence was left alone, and gives the same.
        assert veq.random_state() == before
        veq.seed(11)
        assert np.array_equal(grown, model(200, 6).edges)
        assert veq.random_state() != veq.RandomState(11)


@pytest.mark.parametrize("suffix", ["xnet", "net", "edges", "mtx", "gml", "graphml", "veqa", "csv"])
def test_the_program_writes_the_same_files(tmp_path, suffix):
    shown_by_program(
        *("generate", "random", "--vertices", "200", "--degree", "6", "--seed", "11"),
        tmp_path / "grown.xnet",
    )
    # Lists of edges lose vertices that have none.
    shown_by_program("convert", "--lossy", tmp_path / "grown.xnet", tmp_path / f"program.{suffix}")
    for name, network in (
        ("read", veq.read(tmp_path / "grown.xnet")),
        ("grown", veq.random_network(200, 6, seed=11)),
    ):
        network.save(tmp_path / f"{name}.{suffix}")
        written = (tmp_path / f"{name}.{suffix}").read_bytes()
        assert written == (tmp_path / f"program.{suffix}").read_bytes()
        assert len(written) > 1000


def test_a_state_goes_on_through_the_published_models():
    state = veq.RandomState(11)
    first, second = veq.random_network(50, 4, seed=state), veq.random_network(50, 4, seed=state)
    # 201 draws a batch, and 50 x 49 / 2 = 1225 pairs: seven batches each.
    assert state == veq.RandomState(11).after(2 * 7 * 201)
    assert first.edges.tolist() != second.edges.tolist()
    assert np.array_equal(first.edges, veq.random_network(50, 4, seed=11).edges)


@pytest.mark.parametrize("choice", ["published", "even", "weighted"])
def test_the_program_walks_the_same_ways(tmp_path, choice):
    network = veq.gnm(60, 200, seed=3)
    network.edge_weights = np.arange(1, 201) / 8
    path, paths = tmp_path / "network.xnet", tmp_path / "paths.csv"
    network.save(path)
    options = ["--agents", "3", "--steps", "40", "--seed", "12", "--choice", choice]
    options += ["--restart", "0.125", "--paths", str(paths)]
    subprocess.run([program(), "walk", path, *options], check=True, stdout=subprocess.DEVNULL)
    rows = np.loadtxt(paths, delimiter=",", skiprows=1, usecols=(0, 1, 2), dtype=np.int64)
    walkers = veq.Walkers(network, [0, 1, 2])
    walk = walkers.walk(40, paths=True, choice=choice, restart=0.125, seed=12)
    standing = walk.paths.filled(start=True)
    expected = [
        (agent, step, standing[agent, step])
        for agent in range(3)
        for step in range(standing.shape[1])
    ]
    told = {(agent, step): vertex for agent, step, vertex in rows.tolist()}
    compared = [(a, s, v) for a, s, v in expected if (a, s) in told]
    assert len(compared) >= 3 * 40
    assert all(told[a, s] == v for a, s, v in compared)


def test_display():
    network = rich()
    assert repr(network) == (
        "<veq.Network: 6 vertices, 5 edges, directed, vertex-weighted, edge-weighted, columns "
        "Name, Age, Position, Place, Length, Count, Any, Mixed>"
    )
    assert repr(veq.Network([0], [1])) == "<veq.Network: 2 vertices, 1 edge, undirected>"
    network.vertex_data["<b>"] = ["<script>"] * 6
    shown = network._repr_html_()
    assert "<script>" not in shown
    assert "&lt;script&gt;" in shown
    for k in range(200):
        network.vertex_data[f"column {k}"] = ["x" * 1000] * 6
    assert len(network._repr_html_()) <= 4096


def test_the_types_are_told():
    assert (Path(veq.__file__).parent / "py.typed").exists()

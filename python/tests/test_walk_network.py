"""Walk-only networks: their lists by hand, walks on them beside those on whole networks."""

import gzip
import os
import pickle
import threading

import numpy as np
import pytest

import veq

SOURCES = [3, 0, 3, 1, 0]
TARGETS = [0, 1, 3, 3, 1]


def blocks():
    yield SOURCES[:2], np.array(TARGETS[:2], dtype=np.uint32)
    yield np.array(SOURCES[2:], dtype=np.int32), np.array(TARGETS[2:] * 2)[:3]


def lists(network):
    return [network.neighbors(v).tolist() for v in range(len(network))]


def test_lists_are_in_the_order_of_the_edges():
    rows = veq.WalkNetwork(blocks, n=5, directed=True)
    assert lists(rows) == [[1, 1], [3], [], [0, 3], []]
    assert (rows.num_vertices, rows.num_edges, rows.num_entries) == (5, 5, 5)
    assert rows.nbytes == 8 * 6 + 4 * 5
    assert rows.directed
    assert rows.degree(3) == 2
    both = veq.WalkNetwork(blocks)
    assert lists(both) == [[3, 1, 1], [0, 3, 0], [], [0, 3, 3, 1]]
    assert not both.directed
    assert lists(veq.WalkNetwork(veq.Network(SOURCES, TARGETS))) == lists(both)


def test_the_size_is_told_before_memory_is_taken():
    told = []
    veq.WalkNetwork(blocks, announce=told.append)
    assert told == [veq.WalkNetworkSize(4, 5, 10, 80)]
    with pytest.raises(
        MemoryError, match="4 vertices and 10 list entries take 80 bytes, and there"
    ):
        veq.WalkNetwork(blocks, most_bytes=79)
    with pytest.raises(ZeroDivisionError):
        veq.WalkNetwork(blocks, announce=lambda size: 1 / 0)
    assert veq.WalkNetwork(blocks).bytes_to_walk(2, first_arrivals=True, until=True) == 17 * 4 + 128


def test_what_is_wrong_with_the_edges_is_said():
    with pytest.raises(ValueError, match="edge 0: source 3 of 3 vertices"):
        veq.WalkNetwork(blocks, n=3)
    with pytest.raises(ValueError, match="1 sources for 2 targets"):
        veq.WalkNetwork(lambda: [([0], [1, 2])])
    with pytest.raises(ValueError, match="target 1: 0.5 is no integer"):
        veq.WalkNetwork(lambda: [([0, 1], [1, 0.5])])
    once = iter([([0], [1])])
    with pytest.raises(ValueError, match="the source gave other edges when it was asked again"):
        veq.WalkNetwork(lambda: once)
    with pytest.raises(TypeError):
        veq.WalkNetwork(lambda: 7)
    with pytest.raises(ValueError, match="as the network has them"):
        veq.WalkNetwork(veq.lattice([3]), directed=True)
    with pytest.raises(IndexError, match="vertex 4 of 4"):
        veq.WalkNetwork(blocks).neighbors(4)


def walked(network, **how):
    random = veq.RandomState(5)
    walkers = veq.Walkers.by_degree(network, 100, seed=random)
    uniform = veq.Walkers.uniform(network, 50, seed=random)
    told = []
    for group in (walkers, uniform):
        walk = group.walk(first_arrivals=True, seed=random, **how)
        told += [walk.end, walk.steps, walk.first_arrivals.tolist(), walk.coverage.steps.tolist()]
        told += [group.visits().tolist(), group.positions.tolist()]
    return told, random.words.tolist()


@pytest.mark.parametrize("directed", [False, True])
@pytest.mark.parametrize(
    "how",
    [
        {"steps": 2000},
        {"steps": 2000, "choice": "even", "restart": 0.1},
        {"steps": 2000, "until": 0.5},
        {"until": 0.2, "restart": 0.05},
    ],
)
def test_walks_are_those_on_the_whole_network(directed, how):
    whole = veq.gnm(1000, 5000, directed=directed, seed=3)
    rows = veq.WalkNetwork(whole)
    expected = walked(whole, **how)
    for threads in (1, 2, 3):
        assert walked(rows, threads=threads, **how) == expected


def test_what_it_lacks_is_said():
    rows = veq.WalkNetwork(blocks)
    walkers = veq.Walkers(rows, [0, 1])
    lacking = [
        lambda: walkers.walk(1, paths=True),
        lambda: walkers.walk(1, choice="weighted"),
        lambda: walkers.record(1),
        lambda: walkers.visits(0),
        lambda: walkers.visits(0, live=True),
        lambda: veq.Walkers(rows, [0], memory=3),
    ]
    for ask in lacking:
        with pytest.raises(veq.UnsupportedError, match="walk-only"):
            ask()
    with pytest.raises(AttributeError, match="a walk-only network has no 'distance_histogram': it"):
        rows.distance_histogram()
    with pytest.raises(AttributeError, match="has no attribute 'never'"):
        rows.never  # noqa: B018
    with pytest.raises(TypeError, match="send what they are built from"):
        pickle.dumps(rows)
    assert walkers.remembered(0).tolist() == []
    walkers.walk(10, seed=1)
    walkers.forget()
    assert walkers.visits().tolist() == [0, 0, 0, 0]


def test_lists_matrices_and_archives_are_read(tmp_path):
    whole = veq.Network(SOURCES, TARGETS, directed=True)
    notes = []
    for name in ("network.mtx", "network.veqa"):
        whole.save(tmp_path / name)
        assert lists(veq.WalkNetwork.read(tmp_path / name, notes=notes)) == lists(whole)
    assert [note.kind for note in notes] == ["taken"]
    text = "".join(f"{s} {t} 0.5\n" for s, t in zip(SOURCES, TARGETS, strict=True))
    (tmp_path / "list.gz").write_bytes(gzip.compress(text.encode()))
    with pytest.warns(veq.ReadWarning, match="the weights are left out"):
        rows = veq.WalkNetwork.read(tmp_path / "list.gz", directed=True)
    assert lists(rows) == lists(whole)
    (tmp_path / "names").write_text("Ada Bob\n")
    with pytest.raises(veq.UnsupportedError, match='"Ada Bob" is not two integers') as raised:
        veq.WalkNetwork.read(tmp_path / "names")
    assert raised.value.line == 1
    with pytest.raises(FileNotFoundError):
        veq.WalkNetwork.read(tmp_path / "nothing")


@pytest.mark.skipif(not hasattr(os, "mkfifo"), reason="no pipes")
def test_what_comes_through_a_pipe_is_spooled(tmp_path):
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)
    writer = threading.Thread(target=pipe.write_text, args=("0 1\n1 2\n",))
    writer.start()
    notes = []
    rows = veq.WalkNetwork.read(pipe, spool_folder=tmp_path, notes=notes)
    writer.join()
    assert lists(rows) == [[1], [0, 2], [1]]
    assert notes[0].text == (
        f"8 bytes of a pipe are spooled to a file without a name in {tmp_path}"
    )
    assert os.listdir(tmp_path) == ["pipe"]

"""Layouts and pages: a page is read by its description, and its walk walked by the rule alone."""

import base64
import json
import os
import re
import struct
import webbrowser
import zlib
from pathlib import Path

import numpy as np
import pytest

import veq


def block_of(page):
    data = re.search(
        r'<script id="data" type="application/octet-stream">([^<]*)</script>', page.html
    )
    return base64.b64decode(data[1], validate=True)


class Bytes:
    def __init__(self, data):
        self.data = data
        self.at = 0

    def take(self, count):
        assert self.at + count <= len(self.data)
        self.at += count
        return self.data[self.at - count : self.at]

    def varint(self):
        value = shift = 0
        while True:
            byte = self.take(1)[0]
            value |= (byte & 127) << shift
            shift += 7
            if byte < 128:
                return value

    def varints(self, count):
        return [self.varint() for _ in range(count)]


def sections_of(page):
    data = Bytes(block_of(page))
    assert data.take(5) == b"VEQP\x01"
    found = {}
    while data.at < len(data.data):
        before = data.at
        tag = data.take(1)[0]
        payload = data.take(data.varint())
        found.setdefault(tag, []).append(payload)
    assert found[127] == [struct.pack("<I", zlib.crc32(data.data[:before]))]
    return found


def meta_of(page):
    return json.loads(sections_of(page)[1][0])


def walked_again(network, section, choose):
    """Arrivals and ends of a walk without restarts."""
    data = Bytes(section)
    _, moves, _, restarts = data.take(4)
    assert (moves, restarts) == (0, 0)
    data.take(4)
    words = list(struct.unpack("<31I", data.take(124)))
    agents = data.varint()
    steps = data.varint()
    data.varint()
    data.take(8)
    at = data.varints(agents)
    arrivals = [0] * network.num_vertices
    for _ in range(steps):
        for a in range(agents):
            words.append((words[-3] + words[-31]) % 2**32)
            neighbors = network.neighbors(at[a])
            if len(neighbors):
                at[a] = int(neighbors[choose(len(neighbors), words[-1] >> 1)])
                arrivals[at[a]] += 1
    ends = struct.unpack("<2I", data.take(8))
    assert data.at == len(data.data)
    assert ends == tuple(zlib.crc32(struct.pack(f"<{len(v)}Q", *v)) for v in (arrivals, at))
    return arrivals, at


@pytest.mark.parametrize(
    ("choice", "choose"),
    [
        ("published", lambda k, draw: ((k - 1) * draw + 2**30) >> 31),
        ("even", lambda k, draw: k * draw >> 31),
    ],
)
def test_a_page_walks_again(choice, choose):
    network = veq.barabasi_albert(40, 2, seed=1)
    walkers = veq.Walkers(network, [0, 7, 7])
    walkers.walk(10, seed=3)
    before = walkers.visits()
    record = walkers.record(200, choice=choice, seed=7)
    page = network.show(walk=record)
    arrivals, ends = walked_again(network, sections_of(page)[6][0], choose)
    np.testing.assert_array_equal(arrivals, walkers.visits() - before)
    np.testing.assert_array_equal(ends, walkers.positions)
    assert meta_of(page)["walk"]["seed"] == 7


def test_a_record_is_the_walk():
    network = veq.barabasi_albert(40, 2, seed=1)
    recorded, walked = veq.Walkers(network, [0, 7]), veq.Walkers(network, [0, 7])
    state = veq.RandomState(5)
    record = recorded.record(until=0.5, paths=True, first_arrivals=True, seed=state.copy())
    walk = walked.walk(until=0.5, paths=True, first_arrivals=True, seed=state)
    assert record.walk.end == walk.end == "target"
    assert record.steps == walk.steps
    assert record.num_agents == 2
    assert record.seed is None
    np.testing.assert_array_equal(record.walk.paths.moves, walk.paths.moves)
    np.testing.assert_array_equal(record.walk.coverage.vertices, walk.coverage.vertices)
    np.testing.assert_array_equal(recorded.visits(), walked.visits())
    assert repr(record) == f"<veq.WalkRecord: 2 agents, {walk.steps} steps>"


def test_records_of_agents_with_memory():
    network = veq.lattice([6], periodic=True)
    walkers = veq.Walkers(network, [0, 3], memory=2)
    with pytest.raises(ValueError, match="a record of agents with memory needs a number of steps"):
        walkers.record(until=0.5)
    with pytest.raises(ValueError, match="4000002 moves of agents with memory are more than"):
        walkers.record(2_000_001)
    record = walkers.record(20, seed=1)
    assert record.walk.paths is None
    found = sections_of(network.show(walk=record))
    # Each agent goes on round the ring, as it remembers where it came from.
    assert {6, 7, 9, 10} <= set(found)
    assert found[10] == [bytes([2, 2, 0, 0, 0])]


def test_what_a_page_is_told():
    network = veq.Network([0, 1, 2], [1, 2, 0], edge_weights=[1, 2, 0.5])
    network.vertex_data["Age"] = [1.5, 2.5, 3.5]
    network.vertex_data["Town"] = ["a", None, "</script>"]
    page = network.show(title="<T>", layout="circle", color="Town", size="Age", columns=["Age"])
    meta = meta_of(page)
    assert meta["title"] == "<T>"
    assert (meta["n"], meta["m"], meta["edgeWeighted"]) == (3, 3, True)
    assert [column["key"] for column in meta["columns"]] == ["Age", "Town"]
    assert meta["color"] == {"by": "column", "column": 1}
    assert meta["size"] == {"by": "column", "column": 0}
    assert meta["call"] == "veq.Network.show()"
    assert "<title>&lt;T&gt;</title>" in page.html
    assert meta_of(network.show())["title"] == "A network of 3 vertices"
    for wrong, text in [
        ({"color": "Height"}, "no column Height"),
        ({"size": "Town"}, "column Town: sizes need numbers"),
        ({"layout": "given"}, "no column Position"),
        ({"layout": "round"}, "layout 'round'"),
        ({"columns": [1]}, "column 0: 1 is no string"),
    ]:
        with pytest.raises(ValueError, match=re.escape(text)):
            network.show(**wrong)
    other = veq.Network([0], [1])
    record = veq.Walkers(other, [0]).record(1)
    with pytest.raises(ValueError, match="the walk was on a network of 2 vertices and 1 edges"):
        network.show(walk=record)
    large = veq.Network([], [], n=200_001)
    with pytest.raises(ValueError, match="200001 vertices are more than a page can draw"):
        large.show()


def test_pages_in_notebooks():
    page = veq.Network([0], [1]).show(title='"', height=300)
    frame = page._repr_html_()
    opening = '<iframe sandbox="allow-scripts allow-downloads" width="100%" height="300" '
    assert frame.startswith(opening)
    assert frame.count('"') == 5 * 2
    assert frame.count("<") == 2
    large = veq.Page("x" * 10_000_001)
    assert large._repr_html_().startswith("<p>This page has 10 MB, too much for a notebook: ")
    assert repr(large) == "<veq.Page: 10000001 bytes>"


def test_pages_in_files(tmp_path, monkeypatch):
    page = veq.Network([0], [1]).show()
    page.save(tmp_path / "a.html")
    assert (tmp_path / "a.html").read_bytes() == page.html.encode()
    with pytest.raises(FileNotFoundError):
        page.save(tmp_path / "none" / "a.html")
    with pytest.raises(IsADirectoryError):
        page.save(tmp_path)
    assert os.listdir(tmp_path) == ["a.html"]
    shown: list[str] = []
    monkeypatch.setattr(webbrowser, "open", shown.append)
    monkeypatch.setattr("tempfile.tempdir", str(tmp_path))
    name = page.open()
    assert shown == [f"file://{name}"]
    assert Path(name).read_text(encoding="utf-8") == page.html


def test_force_layout():
    network = veq.lattice([10, 10])
    places = network.force_layout()
    assert places.shape == (100, 2)
    assert np.abs(places).max() == 1.0
    np.testing.assert_array_equal(places, network.force_layout(seed=1))
    assert (places != network.force_layout(seed=2)).any()
    ends = network.edges
    edges = np.linalg.norm(places[ends[:, 0]] - places[ends[:, 1]], axis=1)
    pairs = np.linalg.norm(places[:, None] - places[None], axis=2)
    assert edges.mean() < pairs.mean() / 3
    assert network.force_layout(iterations=3).shape == (100, 2)
    assert veq.Network([], []).force_layout().shape == (0, 2)
    with pytest.raises(ValueError, match="seed -1: give 0 to 4294967295"):
        network.force_layout(seed=-1)
    network.edge_weights = -np.ones(network.num_edges)
    with pytest.raises(ValueError, match="edge 0: weight -1"):
        network.force_layout(weights=True)


def test_force_layout_can_be_stopped():
    network = veq.barabasi_albert(20_000, 3, seed=1)
    with pytest.raises(veq.StoppedError):
        network.force_layout(progress=lambda done, everything: False)


def test_plots_are_laid_out_alike():
    matplotlib = pytest.importorskip("matplotlib")
    matplotlib.use("Agg")
    from matplotlib import pyplot

    network = veq.lattice([5, 5])
    figure, axes = pyplot.subplots()
    network.plot(axes)
    np.testing.assert_array_equal(axes.collections[1].get_offsets(), network.force_layout())
    pyplot.close(figure)

"""quality.py LAYOUT_POINTS [--large]: how good and how quick layouts are, beside graphology's ForceAtlas2 and
those of igraph, as a table.

stress: the mean over pairs at distance d in the network and s on paper, in the unit for which it is least, of
((s - d) / d)^2, with the distances from at most 200 vertices (all pairs of smaller networks). crossings:
pairs of edges that cross, of networks of at most 3000 edges, among the edges' pairs without a common end.
Less is better in both. Every figure comes from this run.
"""

import argparse
import os
import random
import subprocess
import sys
import tempfile
import time

import igraph
import numpy as np
from scipy.sparse import coo_array
from scipy.sparse.csgraph import shortest_path

HERE = os.path.dirname(os.path.abspath(__file__))


def networks(large):
    random.seed(1)
    data = os.path.join(HERE, "..", "..", "data")
    yield "karate", xnet(os.path.join(data, "karate.xnet"))
    yield "lesmis", xnet(os.path.join(data, "lesmis.xnet"))
    yield "lattice 20 x 20", igraph.Graph.Lattice([20, 20], circular=False)
    yield "tree 3^6", igraph.Graph.Tree(1093, 3)
    yield "ring 500", igraph.Graph.Ring(500)
    yield "blocks 4 x 100", igraph.Graph.SBM(
        400, [[0.08 if i == j else 0.004 for j in range(4)] for i in range(4)], [100] * 4
    )
    yield "grown 1000, m 2", igraph.Graph.Barabasi(1000, 2)
    yield "small world 1000", igraph.Graph.Watts_Strogatz(1, 1000, 3, 0.02)
    if large:
        yield "grown 10^4, m 3", igraph.Graph.Barabasi(10_000, 3)
        yield "lattice 100 x 100", igraph.Graph.Lattice([100, 100], circular=False)
        yield "grown 10^5, m 3", igraph.Graph.Barabasi(100_000, 3)


def xnet(path):
    edges, reading = [], False
    with open(path, encoding="utf-8") as file:
        for line in file:
            if line.startswith("#"):
                reading = line.startswith("#edges")
            elif reading and line.strip():
                edges.append(tuple(int(word) for word in line.split()[:2]))
    return igraph.Graph(edges=edges)


def stress(graph, points):
    n = graph.vcount()
    edges = np.array(graph.get_edgelist())
    matrix = coo_array((np.ones(len(edges)), (edges[:, 0], edges[:, 1])), (n, n)).tocsr()
    sources = np.arange(n) if n <= 200 else np.random.default_rng(1).choice(n, 200, replace=False)
    near = shortest_path(matrix, directed=False, unweighted=True, indices=sources)
    far = np.linalg.norm(points[sources][:, None, :] - points[None, :, :], axis=2)
    counted = np.isfinite(near) & (near > 0)
    ratio = far[counted] / near[counted]
    scale = ratio.sum() / (ratio * ratio).sum()
    return float(np.mean((scale * ratio - 1) ** 2))


def crossings(graph, points):
    edges = np.array([edge for edge in graph.get_edgelist() if edge[0] != edge[1]])
    if len(edges) > 3000:
        return None
    a, b = points[edges[:, 0]], points[edges[:, 1]]

    def side(p, q, r):
        return np.sign((q[..., 0] - p[..., 0]) * (r[..., 1] - p[..., 1])
                       - (q[..., 1] - p[..., 1]) * (r[..., 0] - p[..., 0]))

    crossing = 0
    for i in range(len(edges)):
        others = edges[i + 1:]
        apart = ~np.isin(others, edges[i]).any(axis=1)
        c, d = a[i + 1:][apart], b[i + 1:][apart]
        crossing += int(np.count_nonzero((side(a[i], b[i], c) != side(a[i], b[i], d))
                                         & (side(c, d, a[i]) != side(c, d, b[i]))))
    return crossing


def run(command):
    """The seconds and points that a program prints."""
    lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout.split("\n")
    return float(lines[0]), np.array([[float(word) for word in line.split()] for line in lines[1:] if line])


def timed(layout):
    begin = time.perf_counter()
    points = np.array(layout().coords)
    return time.perf_counter() - begin, points


def layouts(program, graph, edges):
    n = graph.vcount()
    yield "veq", run([program, edges, str(n)])
    if n <= 20_000:
        rounds = "500" if n <= 2000 else "100"
        yield f"ForceAtlas2 ({rounds})", run(
            ["node", os.path.join(HERE, "forceatlas2.mjs"), edges, str(n), rounds])
    if n <= 2000:
        yield "igraph Kamada-Kawai", timed(lambda: graph.layout_kamada_kawai())
    if n <= 20_000:
        yield "igraph Fruchterman-Reingold", timed(lambda: graph.layout_fruchterman_reingold())
    yield "igraph DrL", timed(lambda: graph.layout_drl())


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("--large", action="store_true")
    arguments = parser.parse_args()
    print("| network | layout | seconds | stress | crossings |")
    print("|---|---|---:|---:|---:|")
    for name, graph in networks(arguments.large):
        graph.simplify()
        with tempfile.NamedTemporaryFile("w", suffix=".edges") as file:
            file.writelines(f"{a} {b}\n" for a, b in graph.get_edgelist())
            file.flush()
            for layout, (seconds, points) in layouts(arguments.program, graph, file.name):
                crossing = crossings(graph, points)
                print(f"| {name} | {layout} | {seconds:.3f} | {stress(graph, points):.4f} | "
                      f"{'' if crossing is None else crossing} |")
                sys.stdout.flush()


if __name__ == "__main__":
    main()

"""Compares the answers to all questions with NetworkX and, where that defines something otherwise or
not at all, with the definitions themselves, spelt out slowly.

Usage: judge_questions.py PROGRAM, where PROGRAM is questions_sample. Needs networkx, in Debian the
package python3-networkx.
"""

import collections
import itertools
import math
import random
import subprocess
import sys

import networkx as nx
from networkx.algorithms.link_analysis.pagerank_alg import _pagerank_python

WAYS = ("out", "in", "all")


class Case:
    """A network: its edges with weights, and the lists that follow from them."""

    def __init__(self, n, edges, directed, weighted):
        self.n, self.edges, self.directed, self.weighted = n, edges, directed, weighted
        self.lists = {way: [[] for _ in range(n)] for way in WAYS}
        for e, (a, b, w) in enumerate(edges):
            self.lists["out"][a].append((b, e))
            (self.lists["in"] if directed else self.lists["out"])[b].append((a, e))
        if not directed:
            self.lists["in"] = self.lists["out"]
        for v in range(n):
            both = self.lists["out"][v] + (self.lists["in"][v] if directed else [])
            self.lists["all"][v] = both
        pairs = [(a, b) if directed else (min(a, b), max(a, b)) for a, b, _ in edges]
        self.loops = any(a == b for a, b in pairs)
        self.simple = not self.loops and len(set(pairs)) == len(pairs)

    def weight(self, e):
        return self.edges[e][2] if self.weighted else 1.0

    def text(self):
        lines = [f"{self.n} {len(self.edges)} {int(self.directed)} {int(self.weighted)}"]
        lines += [f"{a} {b} {w}" for a, b, w in self.edges]
        return "\n".join(lines) + "\n"

    def graph(self, directed=None):
        if directed is None:
            directed = self.directed
        graph = nx.MultiDiGraph() if directed else nx.MultiGraph()
        graph.add_nodes_from(range(self.n))
        for e in range(len(self.edges)):
            a, b, _ = self.edges[e]
            graph.add_edge(a, b, weight=self.weight(e))
        return graph

    def toward(self, way):
        """The graph in which paths are those of the direction."""
        if not self.directed or way == "all":
            return self.graph(directed=False)
        return self.graph().reverse() if way == "in" else self.graph()

    def neighbours(self):
        """Who is whose neighbour, and nothing else."""
        graph = nx.Graph()
        graph.add_nodes_from(range(self.n))
        graph.add_edges_from((a, b) for a, b, _ in self.edges if a != b)
        return graph

    def walk(self):
        """Every list entry as an edge."""
        graph = nx.MultiDiGraph()
        graph.add_nodes_from(range(self.n))
        for v in range(self.n):
            for u, e in self.lists["out"][v]:
                graph.add_edge(v, u, weight=self.weight(e))
        return graph


def cases(count):
    draw = random.Random(20260101)
    yield Case(0, [], False, False)
    yield Case(0, [], True, True)
    yield Case(1, [], False, True)
    yield Case(1, [(0, 0, 2.5)], True, True)
    yield Case(1, [(0, 0, 2.5), (0, 0, 0.5)], False, True)
    yield Case(5, [], True, False)
    for i in range(count - 6):
        n = draw.randrange(1, 26)
        m = draw.randrange(0, 3 * n)
        # Some in two halves without an edge between them, some without loops and parallel edges.
        halves = draw.randrange(4) == 0
        simple = draw.randrange(3) == 0
        directed = i % 2 == 1
        seen = set()
        edges = []
        for _ in range(m):
            a, b = draw.randrange(n), draw.randrange(n)
            if halves and (a < n // 2) != (b < n // 2):
                continue
            pair = (a, b) if directed else (min(a, b), max(a, b))
            if simple and (a == b or pair in seen):
                continue
            seen.add(pair)
            # Multiples of 1/4 are floats, and their sums are exact.
            edges.append((a, b, draw.randrange(0, 20) / 4))
        yield Case(n, edges, directed, draw.randrange(2) == 0)


class Judge:
    def __init__(self, case, answers, number):
        self.case, self.answers, self.number = case, answers, number

    def fail(self, name, found, expected):
        sys.exit(f"network {self.number}: {name}: found {found}, expected {expected}\n"
                 + self.case.text())

    def expect(self, name, expected, tolerance=0.0):
        found = self.answers[name].pop(0)
        expected = [float(x) for x in expected]
        alike = len(found) == len(expected) and all(
            x == y or (math.isnan(x) and math.isnan(y)) or abs(x - y) <= tolerance
            for x, y in zip(found, expected))
        if not alike:
            self.fail(name, found, expected)

    def finish(self):
        left = [name for name, lines in self.answers.items() if lines]
        if left:
            sys.exit(f"network {self.number}: nobody judged {left}")


def pearson(pairs):
    if not pairs:
        return math.nan
    xs, ys = [x for x, _ in pairs], [y for _, y in pairs]
    if len(set(xs)) == 1 or len(set(ys)) == 1:
        return math.nan
    mx, my = sum(xs) / len(xs), sum(ys) / len(ys)
    cov = sum((x - mx) * (y - my) for x, y in pairs)
    return cov / math.sqrt(sum((x - mx) ** 2 for x in xs) * sum((y - my) ** 2 for y in ys))


def judge_degrees(judge):
    case = judge.case
    n, graph = case.n, case.graph()
    degrees, strengths = {}, {}
    if case.directed:
        degrees = {"out": dict(graph.out_degree()), "in": dict(graph.in_degree())}
        strengths = {"out": dict(graph.out_degree(weight="weight")),
                     "in": dict(graph.in_degree(weight="weight"))}
    else:
        degrees = {"out": dict(graph.degree()), "in": dict(graph.degree())}
        strengths = {way: dict(graph.degree(weight="weight")) for way in ("out", "in")}
    degrees["all"], strengths["all"] = dict(graph.degree()), dict(graph.degree(weight="weight"))
    for way in WAYS:
        of, weights = degrees[way], strengths[way]
        judge.expect(f"degrees.{way}", [of[v] for v in range(n)])
        judge.expect(f"strengths.{way}", [weights[v] for v in range(n)])
        counts = collections.Counter(of.values())
        judge.expect(f"distribution.{way}", [counts[k] for k in range(max(of.values(), default=-1) + 1)])
        counts = sorted(collections.Counter(float(w) for w in weights.values()).items())
        judge.expect(f"strengthDistribution.{way}", list(itertools.chain.from_iterable(counts)))
        judge_neighbour_degrees(judge, way, degrees["in"])
    judge.expect("density", [nx.density(graph)], 1e-15)
    ends = [(a, b) for a, b, _ in case.edges]
    pairs = [(degrees["out"][a], degrees["in"][b]) for a, b in ends]
    both = [(degrees["all"][a], degrees["all"][b]) for a, b in ends]
    if not case.directed:
        pairs += [(y, x) for x, y in pairs]
        both += [(y, x) for x, y in both]
    judge.expect("assortativity", [pearson(pairs)], 1e-12)
    judge.expect("assortativity.all", [pearson(both)], 1e-12)
    if not case.loops and not math.isnan(pearson(pairs)):
        peer = nx.degree_assortativity_coefficient(graph)
        if abs(peer - pearson(pairs)) > 1e-9:
            judge.fail("assortativity of the peer", peer, pearson(pairs))


def judge_neighbour_degrees(judge, way, degrees):
    case = judge.case
    plain, weighted = [], []
    for v in range(case.n):
        entries = case.lists[way][v]
        plain.append(sum(degrees[u] for u, _ in entries) / max(1, len(entries)))
        total = sum(case.weight(e) for _, e in entries)
        weighted.append(sum(case.weight(e) * degrees[u] for u, e in entries) / total if total else 0)
    judge.expect(f"neighbourDegree.{way}", plain, 1e-12)
    judge.expect(f"weightedNeighbourDegree.{way}", weighted, 1e-12)
    if case.simple and way != "all":
        if case.directed:
            peer = nx.average_neighbor_degree(nx.DiGraph(case.graph()), source=way, target="in")
        else:
            peer = nx.average_neighbor_degree(nx.Graph(case.graph()))
        if any(abs(peer[v] - plain[v]) > 1e-9 for v in range(case.n)):
            judge.fail("neighbour degree of the peer", peer, plain)


def peeled(case, way):
    """Core numbers by taking away one vertex after the other."""
    cores = [0] * case.n
    left = set(range(case.n))

    def degree(v):
        return sum(1 for u, _ in case.lists[way][v] if u in left and u != v)

    k = 0
    while left:
        v = min(left, key=degree)
        k = max(k, degree(v))
        cores[v] = k
        left.remove(v)
    return cores


def judge_cores(judge):
    case = judge.case
    for way in WAYS:
        judge.expect(f"cores.{way}", peeled(case, way))
    if case.simple and not case.directed:
        peer = nx.core_number(nx.Graph(case.graph()))
        if [peer[v] for v in range(case.n)] != peeled(case, "all"):
            judge.fail("cores of the peer", peer, peeled(case, "all"))


def judge_reciprocity(judge):
    case = judge.case
    ends = [(a, b) for a, b, _ in case.edges if a != b]
    if not case.directed:
        ends += [(b, a) for a, b in ends]
    exists = set(ends)
    share = sum((b, a) in exists for a, b in ends) / len(ends) if ends else math.nan
    judge.expect("reciprocity", [share], 1e-15)
    if case.simple and case.directed and ends:
        peer = nx.overall_reciprocity(nx.DiGraph(case.graph()))
        if abs(peer - share) > 1e-12:
            judge.fail("reciprocity of the peer", peer, share)


def judge_clustering(judge):
    n, graph = judge.case.n, judge.case.neighbours()
    triangles, local = nx.triangles(graph), nx.clustering(graph)
    judge.expect("triangles", [triangles[v] for v in range(n)])
    judge.expect("countTriangles", [sum(triangles.values()) / 3])
    judge.expect("localClustering", [local[v] for v in range(n)], 1e-12)
    judge.expect("averageClustering", [nx.average_clustering(graph) if n else math.nan], 1e-12)
    paired = [local[v] for v in range(n) if graph.degree(v) > 1]
    judge.expect("averageClustering.leftOut",
                 [sum(paired) / len(paired) if paired else math.nan], 1e-12)
    judge.expect("transitivity", [nx.transitivity(graph)], 1e-12)


def judge_path(judge, name, way, length, weigh):
    """That it leads from the first to the last vertex along edges, and is as long as it should be."""
    case = judge.case
    vertices = [int(v) for v in judge.answers[f"{name}.{way}.vertices"].pop(0)]
    edges = [int(e) for e in judge.answers[f"{name}.{way}.edges"].pop(0)]
    found = judge.answers[f"{name}.{way}.length"].pop(0)
    if length is None:
        if vertices or edges or found != [-1.0]:
            judge.fail(name, vertices, "no path")
        return
    steps = list(zip(vertices, edges, vertices[1:]))
    good = (vertices and vertices[0] == 0 and vertices[-1] == case.n - 1
            and len(edges) == len(vertices) - 1
            and all((w, e) in case.lists[way][v] for v, e, w in steps)
            and sum(weigh(e) for e in edges) == length and found == [length])
    if not good:
        judge.fail(f"{name}.{way}", (vertices, edges, found), length)


def judge_distances(judge):
    case = judge.case
    n = case.n
    for way in WAYS:
        graph = case.toward(way)
        all_pairs = dict(nx.all_pairs_shortest_path_length(graph))
        if n:
            hops = all_pairs[0]
            judge.expect(f"distances.{way}", [hops.get(v, -1) for v in range(n)])
            lengths = nx.single_source_dijkstra_path_length(graph, 0)
            judge.expect(f"weightedDistances.{way}", [lengths.get(v, math.inf) for v in range(n)])
            judge_path(judge, "path", way, hops.get(n - 1), lambda e: 1)
            judge_path(judge, "weightedPath", way, lengths.get(n - 1), case.weight)
        counts = collections.Counter(d for of in all_pairs.values() for d in of.values())
        longest = max(counts, default=0)
        judge.expect(f"histogram.{way}", [counts[d] for d in range(longest + 1)] if n else [])
        judge.expect(f"unreachable.{way}", [n * n - sum(counts.values())])
        paths = sum(c for d, c in counts.items() if d)
        mean = sum(d * c for d, c in counts.items()) / paths if paths else math.nan
        judge.expect(f"mean.{way}", [mean], 1e-12)
        least, most, start, end = (int(x) for x in judge.answers[f"diameter.{way}"].pop(0))
        if least != longest or most != longest or (n and all_pairs[start].get(end) != longest):
            judge.fail(f"diameter.{way}", (least, most, start, end), longest)


def judge_components(judge):
    case = judge.case
    graph = case.graph()
    for name in ("weak", "strong"):
        if not case.directed:
            parts = nx.connected_components(graph)
        elif name == "weak":
            parts = nx.weakly_connected_components(graph)
        else:
            parts = nx.strongly_connected_components(graph)
        parts = sorted((sorted(part) for part in parts), key=lambda part: part[0])
        labels = {v: c for c, part in enumerate(parts) for v in part}
        judge.expect(f"{name}.labels", [labels[v] for v in range(case.n)])
        judge.expect(f"{name}.sizes", [len(part) for part in parts])
        judge.expect(f"{name}.largest", max(parts, key=len, default=[]))
        for c, part in enumerate(parts):
            within = [e for e, (a, b, _) in enumerate(case.edges) if labels[a] == labels[b] == c]
            judge.expect(f"{name}.part.vertices", part)
            judge.expect(f"{name}.part.edges", within)
            judge.expect(f"{name}.part.sources", [part.index(case.edges[e][0]) for e in within])
            judge.expect(f"{name}.part.targets", [part.index(case.edges[e][1]) for e in within])
            judge.expect(f"{name}.part.strengths", [
                sum(case.weight(e) for _, e in case.lists["out"][v] if e in within) for v in part])


def judge_ranks(judge):
    case = judge.case
    n, graph = case.n, case.walk()
    peer = _pagerank_python(graph, tol=1e-15, max_iter=10000)
    judge.expect("pageRank", [peer[v] for v in range(n)], 1e-10)
    for _, _, data in graph.edges(data=True):
        data["weight"] = 1.0
    personal = {v: (v + 1) % 3 for v in range(n)}
    peer = _pagerank_python(graph, alpha=0.6, personalization=personal, tol=1e-15,
                            max_iter=10000) if n else {}
    judge.expect("pageRank.personal", [peer[v] for v in range(n)], 1e-12)


def main():
    networks = list(cases(300))
    out = subprocess.run([sys.argv[1]], input="".join(case.text() for case in networks),
                         capture_output=True, text=True, check=True).stdout
    blocks = out.split("end\n")[:-1]
    if len(blocks) != len(networks):
        sys.exit(f"{len(blocks)} answers to {len(networks)} networks")
    for number, (case, block) in enumerate(zip(networks, blocks)):
        answers = collections.defaultdict(list)
        for line in block.splitlines():
            name, *values = line.split(" ")
            answers[name].append([float(value) for value in values])
        judge = Judge(case, answers, number)
        judge_degrees(judge)
        judge_cores(judge)
        judge_reciprocity(judge)
        judge_clustering(judge)
        judge_distances(judge)
        judge_components(judge)
        judge_ranks(judge)
        judge.finish()
    kinds = collections.Counter((case.directed, case.simple) for case in networks)
    print(f"{len(networks)} networks judged: {dict(kinds)} (directed, simple)")


if __name__ == "__main__":
    main()

"""Random networks, the same on every machine: written by NetworkX and igraph in each format and read
by us, and written by us in each format and read by them. What comes out must be what went in.

Usage: judge_reading.py PROGRAM, where PROGRAM is reading_sample.
"""

import csv
import os
import random
import subprocess
import sys
import tempfile
import warnings

import igraph
import networkx as nx
import numpy
import scipy.io
import scipy.sparse

import peers

warnings.filterwarnings("ignore")

LETTERS = "abcXYZ019_ -.,;:'&<>#%/äßłΩ漢😀"
NETWORKS = 40


def random_name(draw, letters=LETTERS):
    return "v" + "".join(draw.choice(letters) for _ in range(draw.randrange(8)))


def random_graph(draw, letters=LETTERS, parallel=True):
    """With names, attributes of each kind, loops, and vertices without edges."""
    directed, weighted = draw.random() < 0.5, draw.random() < 0.5
    count = draw.randrange(1, 15)
    names = []
    while len(names) < count:
        name = random_name(draw, letters)
        if name not in names and name.strip() == name:
            names.append(name)
    graph = (nx.MultiDiGraph if directed else nx.MultiGraph)()
    for name in names:
        graph.add_node(name, size=draw.randrange(-5, 100), share=draw.randrange(1, 99) / 7,
                       note=random_name(draw, letters))
    for _ in range(draw.randrange(1, 3 * count)):
        a, b = draw.choice(names), draw.choice(names)
        if not parallel and graph.has_edge(a, b):
            continue
        data = {"weight": draw.choice([0.5, -2.0, 1e-3, 12345.0, draw.random()])} if weighted else {}
        graph.add_edge(a, b, **data)
    return graph


def form_of(graph):
    return peers.form_of_networkx(graph)


def without_attributes(form):
    return form._replace(attributes={})


def without_lonely(form):
    """As a list has it."""
    ends = sorted({end for (pair, _) in form.edges for end in pair})
    return form._replace(vertices=ends, attributes={})


def undirected(form):
    edges = sorted((tuple(sorted(pair)), weight) for pair, weight in form.edges)
    return form._replace(directed=False, edges=edges)


def igraph_of(graph):
    """The same with the names as attributes."""
    names = list(graph.nodes)
    index = {name: i for i, name in enumerate(names)}
    result = igraph.Graph(n=len(names), directed=graph.is_directed(),
                          edges=[(index[a], index[b]) for a, b in graph.edges(keys=False)]
                          if not graph.is_multigraph() else
                          [(index[a], index[b]) for a, b, _ in graph.edges(keys=True)])
    result.vs["name"] = names
    result.vs["size"] = [graph.nodes[name]["size"] for name in names]
    if any("weight" in data for _, _, data in graph.edges(data=True)):
        result.es["weight"] = [data["weight"] for _, _, data in graph.edges(data=True)]
    return result


def matrix_of(graph):
    names = list(graph.nodes)
    matrix = scipy.sparse.lil_matrix((len(names), len(names)))
    for a, b, data in graph.edges(data=True):
        matrix[names.index(a), names.index(b)] = data.get("weight", 1.0)
    return matrix.tocoo()


# Each writer: what it writes, and what must be read of it.

def write_networkx_pajek(graph, path):
    plain = nx.MultiDiGraph() if graph.is_directed() else nx.MultiGraph()
    plain.add_nodes_from(graph.nodes)
    plain.add_edges_from(graph.edges(data=True))
    nx.write_pajek(plain, path)
    return without_attributes(form_of(plain)), {}


def write_networkx_gml(graph, path):
    nx.write_gml(graph, path)
    return form_of(graph), {"drop": ("Id", "Name", "name")}


def write_networkx_graphml(graph, path):
    nx.write_graphml_xml(graph, path)
    return form_of(graph), {"drop": ("Name",)}


def write_networkx_weighted(graph, path):
    for _, _, data in graph.edges(data=True):
        data.setdefault("weight", 1.0)
    nx.write_weighted_edgelist(graph, path, delimiter="\t")
    return undirected(without_lonely(form_of(graph))), {}


def write_networkx_edgelist(graph, path):
    nx.write_edgelist(graph, path, data=False, delimiter="\t")
    for _, _, data in graph.edges(data=True):
        data.pop("weight", None)
    return undirected(without_lonely(form_of(graph))), {}


def write_scipy_matrix(graph, path):
    matrix = matrix_of(graph)
    scipy.io.mmwrite(path, matrix, symmetry="general")
    edges = [(int(i), int(j), float(v)) for i, j, v in zip(matrix.row, matrix.col, matrix.data)]
    return peers.form(True, range(matrix.shape[0]), edges)._replace(attributes={}), {"names": ()}


def write_igraph_pajek(graph, path):
    other = igraph_of(graph)
    other.vs["id"] = other.vs["name"]
    del other.vs["name"], other.vs["size"]
    other.write_pajek(path)
    return without_attributes(form_of(graph)), {}


def write_igraph_gml(graph, path):
    other = igraph_of(graph)
    other.vs["label"] = other.vs["name"]
    other.write_gml(path)
    return without_attributes(form_of(graph)), {}


def write_igraph_graphml(graph, path):
    other = igraph_of(graph)
    other.vs["Name"] = other.vs["name"]
    other.write_graphml(path)
    return without_attributes(form_of(graph)), {}


def write_igraph_ncol(graph, path):
    igraph_of(graph).write_ncol(path, names="name", weights="weight" if any(
        "weight" in data for _, _, data in graph.edges(data=True)) else None)
    return undirected(without_lonely(form_of(graph))), {}


def write_igraph_edgelist(graph, path):
    other = igraph_of(graph)
    other.write_edgelist(path)
    last = max((max(edge.tuple) for edge in other.es), default=0)
    edges = [(edge.source, edge.target, 1.0) for edge in other.es]
    return (undirected(without_attributes(peers.form(False, range(last + 1), edges))),
            {"names": (), "options": ["--indices"]})


# Names that the writer itself does not escape are no test of a reader. igraph has refused letters beyond
# ASCII in NCOL since 0.11, and took them before.
PLAIN = "abcXYZ019äßłΩ漢"
WORDS = "abcXYZ019_-."
NCOL = PLAIN if peers.version_of("igraph") < (0, 11) else "abcXYZ019"
WRITERS = {
    "networkx.net": (write_networkx_pajek, PLAIN),
    "networkx.gml": (write_networkx_gml, LETTERS),
    "networkx.graphml": (write_networkx_graphml, LETTERS),
    "networkx-weighted.el": (write_networkx_weighted, PLAIN),
    "networkx.el": (write_networkx_edgelist, PLAIN),
    "scipy.mtx": (write_scipy_matrix, WORDS),
    "igraph.net": (write_igraph_pajek, PLAIN),
    "igraph.gml": (write_igraph_gml, WORDS),
    "igraph.graphml": (write_igraph_graphml, LETTERS),
    "igraph.ncol": (write_igraph_ncol, NCOL),
    "igraph.edges": (write_igraph_edgelist, WORDS),
}


def drop(form, keys):
    return form._replace(attributes={
        name: {key: value for key, value in values.items() if key not in keys}
        for name, values in form.attributes.items()})


def differs(what, expected, found):
    if expected == found:
        return 0
    print(f"{what}:\n  expected {expected}\n  found    {found}")
    return 1


def judge_readers(program, folder):
    """What others write, we read."""
    wrong = 0
    for suffix, (write, letters) in WRITERS.items():
        draw = random.Random(suffix)
        parallel = suffix != "scipy.mtx"
        written = []
        for number in range(NETWORKS):
            path = os.path.join(folder, f"{number}-{suffix}")
            written.append((path, *write(random_graph(draw, letters, parallel), path)))
        texts = peers.dumps_of(program, [path for path, _, _ in written],
                               written[0][2].get("options", ()))
        for (path, expected, how), text in zip(written, texts):
            try:
                found = peers.form_of_dump(text, how.get("names", ("Name", "Id")))
            except peers.Refused as error:
                found = error
            else:
                found = drop(found, how.get("drop", ())) if expected.attributes \
                    else without_attributes(found)
            wrong += differs(f"{path} as {write.__name__} wrote it", expected, found)
    return wrong


# What we write, others read.

def form_of_tables(path):
    """CSV, in the eyes of Python's own reader."""
    with open(path + ".vertices", encoding="utf-8", newline="") as file:
        vertices = list(csv.DictReader(file))
    with open(path, encoding="utf-8", newline="") as file:
        edges = list(csv.DictReader(file))
    names = [row["Id"] for row in vertices]
    directed = any(row["Type"] == "Directed" for row in edges)
    graph = (nx.MultiDiGraph if directed else nx.MultiGraph)()
    graph.add_nodes_from(names)
    for row in edges:
        graph.add_edge(row["Source"], row["Target"], weight=float(row.get("Weight", 1.0)))
    attributes = {row["Id"]: {key: row[key] for key in row if key not in ("Id", "Label")}
                  for row in vertices}
    return form_of(graph)._replace(attributes=attributes)


def form_of_our_graphml(path):
    """Whose names are attributes."""
    graph = nx.read_graphml(path, force_multigraph=True)
    return peers.form_of_networkx(graph, {node: graph.nodes[node]["Name"] for node in graph})


READ_BACK = {
    "networkx.gml": (".gml", peers.networkx_gml),
    "networkx.graphml": (".graphml", form_of_our_graphml),
    "igraph.gml": (".gml", peers.igraph_gml),
    "igraph.graphml": (".graphml", lambda path: peers.form_of_igraph(
        igraph.Graph.Read_GraphML(path), ("Name", "name"))),
    "scipy": (".mtx", peers.networkx_matrix),
    "csv": (".csv", form_of_tables),
}


def judge_writers(program, folder):
    wrong = 0
    for reader, (suffix, read) in READ_BACK.items():
        draw = random.Random("writing for " + reader)
        # igraph decodes no numbers of characters in GML.
        letters = WORDS if reader == "igraph.gml" else LETTERS
        for number in range(NETWORKS):
            graph = random_graph(draw, letters, parallel=reader != "scipy")
            source = os.path.join(folder, f"{number}-{reader}.graphml")
            target = os.path.join(folder, f"{number}-{reader}-out{suffix}")
            nx.write_graphml_xml(graph, source)
            subprocess.run([program, "convert", source, target], check=True)
            try:
                found = peers.guarded(read, target)
            except peers.Refused as error:
                wrong += differs(f"{target} for {reader}", form_of(graph), error)
                continue
            expected = form_of(graph)
            if suffix == ".mtx":
                names = list(graph.nodes)
                edges = [(names.index(a), names.index(b), data.get("weight", 1.0))
                         for a, b, data in graph.edges(data=True)]
                expected = peers.form(graph.is_directed(), range(len(names)), edges)
            wrong += differs(f"{target} for {reader}", without_attributes(expected),
                             without_attributes(found))
            if suffix == ".csv":
                for name in graph.nodes:
                    row = found.attributes[name]
                    data = graph.nodes[name]
                    wrong += differs(f"{target}, vertex {name}",
                                     (data["size"], data["share"], data["note"]),
                                     (int(row["size"]), float(row["share"]), row["note"]))
            if reader in ("networkx.gml", "networkx.graphml"):
                wrong += differs(f"{target}, attributes",
                                 expected.attributes,
                                 drop(found, ("id", "label", "Name", "name")).attributes)
    return wrong


def main(program):
    numpy.random.seed(1)
    with tempfile.TemporaryDirectory() as folder:
        wrong = judge_readers(program, folder) + judge_writers(program, folder)
    print(f"{NETWORKS} networks for each of {len(WRITERS)} writers and {len(READ_BACK)} readers, "
          f"{wrong} differences")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

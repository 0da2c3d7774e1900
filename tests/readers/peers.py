"""Networks as three readers see them, in one form that can be compared: ours, by the dumps of
reading_sample, NetworkX's and igraph's. Needs networkx, scipy and igraph, in Debian the packages
python3-networkx, python3-scipy and python3-igraph.
"""

import collections
import json
import math
import os
import pickle
import re
import struct
import subprocess

import igraph
import networkx as nx
import scipy.io

Form = collections.namedtuple("Form", "directed vertices edges attributes")


class Refused(Exception):
    """A reader does not read the file."""


def version_of(peer):
    """(0, 10, 2), of "igraph" or "networkx"."""
    version = {"igraph": igraph, "networkx": nx}[peer].__version__
    return tuple(int(number) for number in re.findall("[0-9]+", version))


def single(value):
    """The nearest 32-bit float, which is what our weights are."""
    try:
        return struct.unpack("<f", struct.pack("<f", value))[0]
    except OverflowError:
        return math.copysign(math.inf, value)


def plain(value):
    """Values that formats write alike: 1 and 1.0, True and 1."""
    if isinstance(value, bool):
        return str(value).lower()
    if isinstance(value, float) and value.is_integer():
        return str(int(value))
    if isinstance(value, float) and math.isnan(value):
        return "nan"
    return repr(value) if isinstance(value, float) else str(value)


def form(directed, names, edges, attributes=None):
    """Vertices by their names, edges in any order, the ends of undirected ones too."""
    names = [str(name) for name in names]
    seen = []
    for a, b, weight in edges:
        ends = (names[a], names[b])
        seen.append((ends if directed else tuple(sorted(ends)), single(float(weight))))
    kept = {}
    for name, values in zip(names, attributes or [{}] * len(names)):
        kept[name] = {key: plain(value) for key, value in values.items()
                      if value is not None and value != ""}
    return Form(bool(directed), sorted(names), sorted(seen), kept)


# Ours -----------------------------------------------------------------------------------------------

def dumps_of(program, files, options=()):
    """What reading_sample says of each file, read by these options, as text."""
    each = [word for file in files for word in (*options, file)]
    text = subprocess.run([program, "dump", *each], check=True, capture_output=True).stdout
    parts = text.decode("utf-8", "surrogateescape").split("}\n{")
    assert len(parts) == len(files), (len(parts), len(files))
    return [("" if i == 0 else "{") + part + ("" if i == len(parts) - 1 else "}\n")
            for i, part in enumerate(parts)]


def form_of_dump(text, names_from=("Name", "Id"), first=0):
    dump = collections.OrderedDict()
    for key, value in json.loads(text, object_pairs_hook=list):
        dump.setdefault(key, value)
    if "error" in dump:
        raise Refused(dump["error"])
    count = dump["vertices"]
    columns = {key.split(" ", 1)[1].rsplit(" (", 1)[0]: values for key, values in dump.items()
               if key.startswith("vertex ") and key != "vertex weights"}
    names = list(range(first, first + count))
    for key in names_from:
        if key in columns and None not in columns[key]:
            names = columns[key]
            break
    weights = dump.get("edge weights", [1.0] * len(dump["edges"]))
    edges = [(a, b, float(w)) for (a, b), w in zip(dump["edges"], weights)]
    attributes = [{key: values[i] for key, values in columns.items() if i < len(values)}
                  for i in range(count)]
    return form(dump["directed"], names, edges, attributes)


def format_of_dump(text):
    return dict(json.loads(text, object_pairs_hook=list))["format"]


# NetworkX -------------------------------------------------------------------------------------------

def form_of_networkx(graph, names=None, attribute_of=lambda node, data: data):
    nodes = list(graph.nodes)
    index = {node: i for i, node in enumerate(nodes)}
    names = names or {node: node for node in nodes}
    edges = [(index[a], index[b], data.get("weight", 1.0)) for a, b, data in graph.edges(data=True)]
    return form(graph.is_directed(), [names[node] for node in nodes], edges,
                [attribute_of(node, graph.nodes[node]) for node in nodes])


def networkx_pajek(path):
    return form_of_networkx(nx.read_pajek(path), attribute_of=lambda node, data: {})


def networkx_gml(path):
    graph = nx.read_gml(path, label=None)
    names = {node: graph.nodes[node].get("label", node) for node in graph}
    return form_of_networkx(graph, names)


def networkx_graphml(path):
    return form_of_networkx(nx.read_graphml(path, force_multigraph=True))


def networkx_list(path):
    delimiter = "," if path.endswith(".csv") else None
    columns = max(len(line.split("#")[0].split(delimiter)) for line in open(path, encoding="utf-8"))
    read = nx.read_weighted_edgelist if columns > 2 else nx.read_edgelist
    return form_of_networkx(read(path, create_using=nx.MultiGraph, delimiter=delimiter))


def networkx_matrix(path):
    matrix = scipy.io.mmread(path)
    if matrix.shape[0] != matrix.shape[1]:
        raise Refused("not a square matrix")
    kind = scipy.io.mminfo(path)[5]
    directed = kind in ("general", "skew-symmetric")
    # scipy has both halves of a symmetric matrix; one of them is all that there is.
    entries = list(zip(*map(lambda a: a.tolist(), (matrix.row, matrix.col, matrix.data)))) \
        if hasattr(matrix, "row") else \
        [(i, j, v) for i, row in enumerate(matrix.tolist()) for j, v in enumerate(row) if v != 0]
    if not directed:
        entries = [(i, j, v) for i, j, v in entries if i >= j]
    graph = (nx.MultiDiGraph if directed else nx.MultiGraph)()
    graph.add_nodes_from(range(matrix.shape[0]))
    graph.add_weighted_edges_from(entries)
    return form_of_networkx(graph)


# igraph ---------------------------------------------------------------------------------------------

def form_of_igraph(graph, name_keys=("name", "label", "id"), attributes=True):
    keys = graph.vs.attributes()
    names = list(range(graph.vcount()))
    for key in name_keys:
        if key in keys:
            names = [int(name) if isinstance(name, float) and name.is_integer() else name
                     for name in graph.vs[key]]
            break
    weights = graph.es["weight"] if "weight" in graph.es.attributes() else [1.0] * graph.ecount()
    weights = [1.0 if math.isnan(weight) else weight for weight in weights]
    edges = [(edge.source, edge.target, weight) for edge, weight in zip(graph.es, weights)]
    return form(graph.is_directed(), names, edges,
                [vertex.attributes() if attributes else {} for vertex in graph.vs])


def igraph_pajek(path):
    return form_of_igraph(igraph.Graph.Read_Pajek(path), ("name", "id"), attributes=False)


def igraph_gml(path):
    return form_of_igraph(igraph.Graph.Read_GML(path), ("label", "id"))


def igraph_graphml(path):
    return form_of_igraph(igraph.Graph.Read_GraphML(path), ("id",))


def igraph_ncol(path):
    return form_of_igraph(igraph.Graph.Read_Ncol(path, directed=False), ("name",), attributes=False)


def guarded(read, path):
    """In a process of its own, since a reader may end the one that it runs in."""
    receiver, sender = os.pipe()
    child = os.fork()
    if child == 0:
        try:
            os.dup2(os.open(os.devnull, os.O_WRONLY), 2)
            answer = pickle.dumps(tuple(read(path)))
        except BaseException as error:
            answer = pickle.dumps(f"{type(error).__name__}: {error}")
        with os.fdopen(sender, "wb") as pipe:
            pipe.write(answer)
        os._exit(0)
    os.close(sender)
    with os.fdopen(receiver, "rb") as pipe:
        answer = pipe.read()
    os.waitpid(child, 0)
    if not answer:
        raise Refused("the reader has ended its process")
    result = pickle.loads(answer)
    if isinstance(result, str):
        raise Refused(result)
    return Form(*result)


# What reads which format.
READERS = {
    "pajek": {"networkx": networkx_pajek, "igraph": igraph_pajek},
    "gml": {"networkx": networkx_gml, "igraph": igraph_gml},
    "graphml": {"networkx": networkx_graphml, "igraph": igraph_graphml},
    "list": {"networkx": networkx_list, "igraph": igraph_ncol},
    "matrix-market": {"networkx": networkx_matrix},
}

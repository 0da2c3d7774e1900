"""What calls cost, and the same tasks beside the libraries that are there.

Run it by the interpreter of an environment that has veq. It prints processor seconds of this process,
the least of some runs.
"""

import importlib.util
import time
import timeit

import numpy as np

import veq

VERTICES, EDGES = 200_000, 1_000_000


def least(call, runs=5):
    """Of processor seconds."""
    times = []
    for _ in range(runs):
        begun = time.process_time()
        call()
        times.append(time.process_time() - begun)
    return min(times)


def show(what, seconds, unit="ms"):
    scale = {"ms": 1e3, "ns": 1e9, "us": 1e6}[unit]
    print(f"{what:48} {seconds * scale:10.1f} {unit}", flush=True)


def overheads(network):
    for what in ("network.num_vertices", "network.num_edges", "network.directed"):
        seconds = min(
            timeit.repeat(
                what,
                globals={"network": network},
                number=200_000,
                repeat=5,
                timer=time.process_time,
            )
        )
        show(what, seconds / 200_000, "ns")
    for what in ("network.neighbors(7)", "network.degree(7)", "network.sources"):
        seconds = min(
            timeit.repeat(
                what, globals={"network": network}, number=20_000, repeat=5, timer=time.process_time
            )
        )
        show(what, seconds / 20_000, "ns")


def beside(library, call, ours, what):
    if importlib.util.find_spec(library) is None:
        print(f"{library} is not here")
        return
    theirs, own = least(call, 3), least(ours, 3)
    show(f"{what}: {library}'s own", theirs)
    show(f"{what}: ours", own)
    print(f"{'':48} {own / theirs:10.2f} times")


def main():
    rng = np.random.default_rng(1)
    source = rng.integers(0, VERTICES, EDGES)
    target = rng.integers(0, VERTICES, EDGES)
    narrow = source.astype(np.int32), target.astype(np.int32)
    network = veq.Network(source, target, n=VERTICES)
    overheads(network)
    show("build from int64", least(lambda: veq.Network(source, target, n=VERTICES)))
    show("build from int32", least(lambda: veq.Network(*narrow, n=VERTICES)))
    show("adjacency, made anew", least(lambda: veq.Network(*narrow, n=VERTICES).adjacency()))
    show("degrees", least(network.degrees))
    show("components", least(network.components))
    walkers = veq.Walkers(network, np.arange(1000))
    show("walk, 10^7 moves, with paths", least(lambda: walkers.walk(10_000, paths=True, seed=1)))

    def scipy():
        from scipy import sparse

        indptr, indices, _ = network.adjacency()
        ready = np.ones(len(indices)), indices.astype(np.int32), indptr.astype(np.int32)
        made = sparse.csr_array(ready, shape=(VERTICES, VERTICES))
        made.sum_duplicates()

    def pandas():
        import pandas as pd

        pd.DataFrame({"source": network.sources, "target": network.targets})

    def networkx():
        import networkx as nx

        graph = nx.MultiGraph()
        graph.add_nodes_from(range(VERTICES))
        graph.add_edges_from(zip(source.tolist(), target.tolist(), strict=True))

    def igraph():
        import igraph as ig

        ig.Graph(n=VERTICES, edges=np.column_stack([source, target]))

    beside("scipy", scipy, network.to_scipy, "to SciPy")
    beside("pandas", pandas, network.to_pandas, "to pandas")
    beside("networkx", networkx, lambda: network.to_networkx(multigraph=True), "to NetworkX")
    beside("igraph", igraph, network.to_igraph, "to igraph")


if __name__ == "__main__":
    main()

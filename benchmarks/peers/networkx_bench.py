#!/usr/bin/python3
"""NetworkX: a row like those of the other programs, for the models and files that are compared with it."""
import sys
import time

import networkx


def degrees(n, k):
    given = [1 + v % (2 * k - 1) for v in range(n)]
    given[0] += sum(given) % 2
    return given


TASKS = {
    "model_gnp": lambda n, k, p, m: networkx.fast_gnp_random_graph(n, k / n, seed=7),
    "model_gnm": lambda n, k, p, m: networkx.gnm_random_graph(n, n * k // 2, seed=7),
    "model_ba": lambda n, k, p, m: networkx.barabasi_albert_graph(n, m, seed=7),
    "model_configuration": lambda n, k, p, m: networkx.configuration_model(degrees(n, k), seed=7),
    "model_ws": lambda n, k, p, m: networkx.watts_strogatz_graph(n, k, p, seed=7),
}


READERS = {
    "read_edges": networkx.read_weighted_edgelist,
    "read_graphml": lambda path: networkx.read_graphml(path, force_multigraph=True),
    "read_gml": lambda path: networkx.read_gml(path, label="id"),
}


def main():
    task = sys.argv[1] if len(sys.argv) > 1 else ""
    if task not in TASKS and task not in READERS:
        return 3
    given = dict(argument.split("=", 1) for argument in sys.argv[2:])
    n, k, m = (int(float(given.get(key, otherwise))) for key, otherwise in
               (("n", 1e5), ("k", 10), ("m", 4)))
    begin = time.process_time()
    if task in READERS:
        graph = READERS[task](given["file"])
    else:
        graph = TASKS[task](n, k, float(given.get("p", 0.1)), m)
    seconds = time.process_time() - begin
    echo = ";".join(argument for argument in sys.argv[2:] if not argument.startswith("reps="))
    print(f"{task},{echo},{seconds:.9f},{seconds:.9f},{seconds:.9f},0,{graph.number_of_edges()}")
    return 0


if __name__ == "__main__":
    sys.exit(main())

"""threads.py [EDGES [ROUNDS]]: the same work on one thread and on two, beside NetworKit.

Prints the table of docs/performance.md, of times by the clock on the wall. Whether results are the
same is asked of their bytes: of a graph the lists of every hundredth vertex in their order, of
components the number of each vertex. Of this library they must be.
"""

import hashlib
import sys
import tempfile
import time
from pathlib import Path

import networkit
import numpy as np

import veq

EDGES = int(sys.argv[1]) if len(sys.argv) > 1 else 1_000_000
ROUNDS = int(sys.argv[2]) if len(sys.argv) > 2 else 5
VERTICES = EDGES // 5
AGENTS, STEPS = 1000, 1000
SHOWN = range(0, VERTICES, 100)
THREADS = (1, 2)

ends = veq.gnm(VERTICES, EDGES, seed=1).edges.T.copy()
folder = tempfile.TemporaryDirectory()  # goes when the program ends, in whatever way
path = Path(folder.name) / "edges.txt"
np.savetxt(path, ends.T, "%d")


def their_build():
    return networkit.GraphFromCoo((ends[0], ends[1]), n=VERTICES)


network = veq.Network(*ends, n=VERTICES)
graph = their_build()
without_lonely = networkit.components.ConnectedComponents.extractLargestConnectedComponent(
    graph, True
)


def their_components():
    found = networkit.components.ParallelConnectedComponents(graph)
    found.run()
    return found


def our_walk():
    walkers = veq.Walkers(network, np.arange(AGENTS))
    walkers.walk(STEPS, choice="even", seed=1)
    return walkers


def their_walk():
    """What it has of walks: some steps from each vertex, with what is learnt of them."""
    steps = max(2, AGENTS * STEPS // VERTICES)
    features = networkit.embedding.Node2Vec(without_lonely, 1.0, 1.0, steps, 1, 2)
    features.run()
    return features


def our_lists(made):
    return np.concatenate([np.asarray(made.neighbors(v), np.int64) for v in SHOWN])


def their_lists(made):
    return np.array([w for v in SHOWN for w in made.iterNeighbors(v)], np.int64)


# For each task what each library calls, and what its result is known by.
TASKS = {
    "build from arrays": (
        (lambda: veq.Network(*ends, n=VERTICES), our_lists),
        (their_build, their_lists),
    ),
    "read an edge list": (
        (lambda: veq.read(path, ids_are_indices=True), our_lists),
        (lambda: networkit.readGraph(str(path), networkit.Format.EdgeListSpaceZero), their_lists),
    ),
    "components": (
        (lambda: network.components(), lambda labels: labels),
        (their_components, lambda found: np.array(found.getPartition().getVector())),
    ),
    "random network": (
        (lambda: veq.gnp(VERTICES, 2 * EDGES / VERTICES**2, seed=1), our_lists),
        (
            lambda: networkit.generators.ErdosRenyiGenerator(
                VERTICES, 2 * EDGES / VERTICES**2
            ).generate(),
            their_lists,
        ),
    ),
    "walk": (
        (our_walk, lambda walkers: walkers.visits()),
        (their_walk, lambda features: np.array(features.getFeatures())),
    ),
}
if EDGES > 100_000:  # of which learning takes all the time
    TASKS["walk"] = (TASKS["walk"][0], None)
SET = (veq.set_parallelism, networkit.setNumberOfThreads)


def measured(call, known_by):
    """Seconds, and what the result is known by."""
    networkit.setSeed(1, True)
    start = time.perf_counter()
    result = call()
    seconds = time.perf_counter() - start
    return seconds, hashlib.sha256(np.ascontiguousarray(known_by(result)).tobytes()).hexdigest()


def row(*cells):
    print("| " + " | ".join(cells) + " |", flush=True)


def same(alone, shared):
    """Whether results are the same each time, and whether on one thread and on two."""
    twice = "yes" if len(alone) == len(shared) == 1 else "on 1" if len(alone) == 1 else "no"
    return twice, "yes" if len(alone | shared) == 1 else "no"


HEAD = "task|veq, 1 thread|2|ratio|NetworKit, 1|2|ratio|the same twice|on 1 and 2"
row(*HEAD.split("|"))
row("---", *["---:"] * 6, "---", "---")
for name, libraries in TASKS.items():
    sides = [side for side in (0, 1) if libraries[side]]
    seconds = {(side, threads): [] for side in sides for threads in THREADS}
    results = {where: set() for where in seconds}
    for number in range(ROUNDS):
        # Whoever comes after another finds warm memory.
        for side, threads in list(seconds)[:: -1 if number % 2 else 1]:
            SET[side](threads)
            took, known = measured(*libraries[side])
            seconds[side, threads].append(took)
            results[side, threads].add(known)
    if len(results[0, 1] | results[0, 2]) != 1:
        raise SystemExit(f"{name}: veq's results differ")
    cells = []
    for side in sides:
        one, two = (min(seconds[side, threads]) for threads in THREADS)
        cells += [f"{one * 1e3:.1f} ms", f"{two * 1e3:.1f} ms", f"{two / one:.2f}"]
    cells += same(results[1, 1], results[1, 2]) if 1 in sides else ["-"] * 5
    row(name, *cells)

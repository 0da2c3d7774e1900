"""What all benchmarks share: one network of a million edges, as every library has it."""

import os

import numpy as np
import pytest

import veq

# Fewer for a quick look.
EDGES = int(os.environ.get("VEQ_BENCH_EDGES", "1_000_000"))
VERTICES = EDGES // 5


@pytest.fixture(scope="session")
def ends():
    """Uniform pairs, without loops and parallel edges, which not all libraries keep."""
    return veq.gnm(VERTICES, EDGES, seed=1).edges.T.copy()


@pytest.fixture(scope="session")
def network(ends):
    return veq.Network(*ends, n=VERTICES)


@pytest.fixture(scope="session")
def weighted(ends):
    """With a column of numbers and weights."""
    made = veq.Network(*ends, n=VERTICES, edge_weights=np.arange(EDGES) % 64)
    made.edge_data["length"] = np.arange(EDGES) / 8
    made.vertex_data["age"] = np.arange(VERTICES)
    return made


@pytest.fixture
def timed(benchmark):
    """Calls it some times, with all that is said of the benchmark as keywords."""

    def time_it(call, rounds=5, setup=None, **extra):
        benchmark.extra_info.update(extra)
        return benchmark.pedantic(
            call, setup=setup, rounds=rounds, iterations=1, warmup_rounds=int(rounds > 1)
        )

    return time_it

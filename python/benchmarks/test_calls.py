"""What a call costs beside what it does, and beside the same call in C++ (calls.cpp)."""

import ctypes
import math
import os
import subprocess
import sys
import time

import numpy as np
import pytest

import veq

from .conftest import EDGES, VERTICES

CALLS = {
    "num_vertices": "network.num_vertices",
    "num_edges": "network.num_edges",
    "directed": "network.directed",
    "degree": "network.degree(7)",
    "neighbors": "network.neighbors(7)",
    "sources": "network.sources",
}


@pytest.mark.parametrize("call", CALLS)
def test_call(benchmark, network, call):
    code = f"def calls():\n for _ in range(100_000): {CALLS[call]}"
    space = {"network": network}
    exec(code, space)
    benchmark.extra_info["calls"] = 100_000
    benchmark.pedantic(space["calls"], rounds=9, iterations=1, warmup_rounds=1)


ROUNDS = {"build": 40, "walk": 60}


@pytest.fixture(scope="session")
def beside_cpp(ends, network):
    """The least processor seconds of the task here and in C++, which take turns."""
    library = os.environ.get("VEQ_CALLS")
    if library is None:
        pytest.skip("VEQ_CALLS does not name the library of calls.cpp")
    there = ctypes.PyDLL(library)
    pointers = [ctypes.c_void_p(end.ctypes.data) for end in ends]
    edges = (*pointers, ctypes.c_size_t(EDGES), ctypes.c_uint64(VERTICES))
    there.prepare(*edges)
    starts = np.arange(1000)

    def walk():
        walkers = veq.Walkers(network, starts)
        walkers.walk(1000, seed=1)
        walkers.visits()

    def build():
        veq.Network(*ends, n=VERTICES)

    calls = {
        "build": (build, lambda: there.build(*edges)),
        "walk": (walk, lambda: there.walk(ctypes.c_uint64(1000), ctypes.c_uint64(1000))),
    }
    found = {}

    def seconds(task):
        if task not in found:
            found[task] = [math.inf, math.inf]
            for round_ in range(ROUNDS[task]):
                for whose in ((0, 1), (1, 0))[round_ % 2]:
                    begun = time.process_time()
                    calls[task][whose]()
                    found[task][whose] = min(found[task][whose], time.process_time() - begun)
        return found[task]

    return seconds


@pytest.mark.parametrize("whose", ["veq", "C++"])
@pytest.mark.parametrize("task", ["build", "walk"])
def test_beside(benchmark, beside_cpp, task, whose):
    benchmark.extra_info["seconds"] = beside_cpp(task)[whose == "C++"]
    benchmark.pedantic(lambda: None, rounds=1)


# What is imported before, so that the package's own share is told.
IMPORTS = {"numpy": "pass", "veq": "import numpy"}


@pytest.mark.parametrize("what", IMPORTS)
def test_import(benchmark, what):
    code = f"import time\n{IMPORTS[what]}\nbegun = time.process_time()\n"
    code += f"import {what}\nprint(time.process_time() - begun)"
    benchmark.extra_info["seconds"] = min(
        float(subprocess.check_output([sys.executable, "-c", code], text=True)) for _ in range(9)
    )
    benchmark.pedantic(lambda: None, rounds=1)

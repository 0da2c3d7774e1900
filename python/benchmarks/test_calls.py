"""What a call costs beside what it does, and beside the same call in C++ (calls.cpp)."""

import os
import subprocess
import sys

import numpy as np
import pytest

import veq

from .conftest import VERTICES

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


def in_cpp(*arguments):
    """Processor seconds by the program that VEQ_CALLS names."""
    program = os.environ.get("VEQ_CALLS")
    if program is None:
        pytest.skip("VEQ_CALLS does not name the program of calls.cpp")
    return float(subprocess.check_output([program, *map(str, arguments)], text=True))


@pytest.mark.parametrize("whose", ["veq", "C++"])
def test_build(benchmark, ends, whose, tmp_path):
    ends.tofile(tmp_path / "ends")
    if whose == "veq":
        benchmark.pedantic(lambda: veq.Network(*ends, n=VERTICES), rounds=9, warmup_rounds=1)
        return
    benchmark.extra_info["seconds"] = in_cpp("build", tmp_path / "ends", VERTICES)
    benchmark.pedantic(lambda: None, rounds=1)


@pytest.mark.parametrize("whose", ["veq", "C++"])
def test_walk(benchmark, ends, network, whose, tmp_path):
    ends.tofile(tmp_path / "ends")
    if whose == "veq":

        def walk():
            walkers = veq.Walkers(network, np.arange(1000))
            walkers.walk(10_000, seed=1)
            return walkers.visits()

        benchmark.pedantic(walk, rounds=5, warmup_rounds=1)
        return
    benchmark.extra_info["seconds"] = in_cpp("walk", tmp_path / "ends", VERTICES)
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

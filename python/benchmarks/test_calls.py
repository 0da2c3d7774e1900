"""What a call costs beside what it does, and beside the same call in C++ (calls.cpp, calls.py)."""

import math
import os
import subprocess
import sys
from pathlib import Path

import pytest

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


# Large blocks come from the system and go back to it, there and here. By itself glibc keeps
# some, as its heap happens to lie, for which one of two programs takes half as long again.
MEMORY = {"MALLOC_MMAP_THRESHOLD_": "131072"}
ROUNDS = 5


@pytest.fixture(scope="session")
def beside_cpp(ends, tmp_path_factory):
    """The least processor seconds of the task here and in C++, which take turns."""
    program = os.environ.get("VEQ_CALLS")
    if program is None:
        pytest.skip("VEQ_CALLS does not name the program of calls.cpp")
    path = tmp_path_factory.mktemp("ends") / "ends"
    ends.tofile(path)
    commands = {
        "veq": [sys.executable, str(Path(__file__).with_name("calls.py"))],
        "C++": [program],
    }
    found = {}

    def seconds(task):
        if task not in found:
            found[task] = dict.fromkeys(commands, math.inf)
            for whose, command in list(commands.items()) * ROUNDS:
                line = [*command, task, str(path), str(VERTICES)]
                shown = subprocess.check_output(line, text=True, env=os.environ | MEMORY)
                found[task][whose] = min(found[task][whose], float(shown))
        return found[task]

    return seconds


@pytest.mark.parametrize("whose", ["veq", "C++"])
@pytest.mark.parametrize("task", ["build", "walk"])
def test_beside(benchmark, beside_cpp, task, whose):
    benchmark.extra_info["seconds"] = beside_cpp(task)[whose]
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

"""What holds of the whole face."""

import inspect
import itertools
import re
import subprocess
import sys
import threading
import time
from pathlib import Path

import numpy as np
import pytest

import veq
from veq import _core

ROOMS = Path(__file__).parents[1] / "src" / "core"


def test_everything_public_is_documented():
    missing = []
    for name in veq.__all__:
        thing = getattr(veq, name)
        if not inspect.getdoc(thing):
            missing.append(name)
        if inspect.isclass(thing):
            for key, member in vars(thing).items():
                member = getattr(member, "__func__", member)
                shown = inspect.isfunction(member) or isinstance(member, property)
                if shown and not key.startswith("_") and not inspect.getdoc(member):
                    missing.append(f"{name}.{key}")
    assert missing == []


def test_importing_is_light():
    heavy = ("networkx", "scipy", "pandas", "igraph", "polars", "pyarrow", "matplotlib", "tqdm")
    heavy += ("importlib.metadata", "email", "html")
    code = f"import sys, veq; print(*[m for m in {heavy} if m in sys.modules])"
    shown = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True)
    assert shown.stdout.strip() == ""


def test_nothing_leaks_and_nothing_is_said_at_exit():
    code = (
        "import veq; g = veq.gnm(9, 9, seed=1); w = veq.Walkers(g, [0]); w.walk(3); a = g.sources"
    )
    shown = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True)
    assert shown.stderr == ""


def bindings():
    """Python name, and the C++ text behind it, of everything that is bound."""
    text = "\n".join(path.read_text() for path in sorted(ROOMS.glob("*.cpp")))
    for name, function in re.findall(r'def\w*\(\s*"(\w+)",\s*&(\w+)', text):
        bodies = re.findall(rf"\n[^\n;]*\b{function}\([^;{{]*\) \{{\n(.*?)\n\}}", text, re.DOTALL)
        assert bodies, function
        yield name, "".join(bodies)
    for name, body in re.findall(r'def\w*\(\s*"(\w+)",\s*(\[.*?\}\s*)[,)]', text, re.DOTALL):
        yield name, body
    # Properties that are slots of the types.
    for name in re.findall(r'(?:shown|property)<[^"]*?>\(\s*"(\w+)"', text):
        yield name, ""


def test_functions_release_the_interpreters_lock_or_are_fast():
    fast = {
        # O(1), of one vertex or edge, or about Python's own objects.
        *("ends", "list_of", "ends_of", "degree", "strength", "column_keys", "column"),
        *("set_numbers", "set_vectors", "set_values", "remove_column", "random_from_words"),
        *("random_state", "set_random_state", "num_vertices", "num_edges", "directed", "__len__"),
        *(
            "vertex_weighted",
            "edge_weighted",
            "num_agents",
            "descriptor",
            "bytes",
            "_forget",
            "_matrix",
            "_dead_ends",
        ),
        # Of random numbers: microseconds at most.
        *("_copy", "_assign", "_after", "_substream", "draws_left", "words", "draw", "double"),
        *("below", "shared_draw", "__eq__"),
        # Two numbers of the process, of which one may be in a file of some bytes.
        *("parallelism", "set_parallelism"),
        # O(1), of a walk-only network.
        *("_degree", "_bytes_to_walk", "num_entries", "nbytes"),
        # Of a walk that was made.
        "steps",
    }
    releasing = ("gil_scoped_release", "reading(", "editing(", "following(", "modelled(")
    releasing += ("resting(", "walked(", "solved(", "followed(")
    held, seen = [], set()
    for name, body in bindings():
        seen.add(name)
        # `__init__` of random states; those of agents and laws release it.
        init_of_state = name == "__init__" and "RandomState::seeded" in body
        if name not in fast and not init_of_state and not any(word in body for word in releasing):
            held.append(name)
    assert held == []
    assert len(seen) > 70
    assert seen >= fast
    bound = {name for name in vars(_core) if not name.startswith("_")} - {"version"}
    classes = {"Network", "RandomState", "SharedNetwork", "Walkers", "WalkLaw", "WalkRecord"}
    classes.add("WalkNetwork")
    assert bound <= seen | classes


LONG = {
    "build": "veq.Network(ends, ends)",
    "components": "network.components()",
    "page rank": "network.page_rank(tolerance=1e-14)",
    "clustering": "network.local_clustering()",
    "copy": "network.copy()",
    "model": "veq.gnm(100_000, 1_000_000, seed=1)",
    "text": "network.dumps()",
}


def longest_gap(code, space):
    """The share of a call, in its processor time, during which another thread got no turn."""
    own = time.pthread_getcpuclockid(threading.get_ident())
    over = threading.Event()
    turns = []

    def take_turns():
        while not over.is_set():
            turns.append(time.clock_gettime(own))

    thread = threading.Thread(target=take_turns)
    thread.start()
    while not turns:
        time.sleep(0.001)
    begun = time.clock_gettime(own)
    eval(code, space)
    ended = time.clock_gettime(own)
    over.set()
    thread.join()
    seen = [begun, *(t for t in turns if begun <= t <= ended), ended]
    return max(b - a for a, b in itertools.pairwise(seen)) / (ended - begun)


@pytest.mark.parametrize("what", LONG)
def test_other_threads_run_during(what):
    ends = np.arange(1_000_000) % 99_991
    network = veq.Network(ends, ends[::-1])
    code = compile(LONG[what], "call", "eval")
    space = {"veq": veq, "ends": ends, "network": network}
    # A call that holds the lock has a gap of all its time; a busy machine now and then makes one.
    assert any(longest_gap(code, space) < 0.9 for _ in range(10))

"""What holds of the whole face."""

import inspect
import re
import subprocess
import sys
from pathlib import Path

import pytest

import veq
from veq import _core

# What takes no longer than giving the interpreter's lock away would, or must have it: everything
# else that the binding defines releases it, in `reading`, `editing` or by itself.
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
    code = "import sys, veq; print(*[m for m in ('networkx', 'scipy', 'pandas', 'igraph', " \
        "'polars', 'pyarrow', 'matplotlib', 'tqdm') if m in sys.modules])"
    shown = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True)
    assert shown.stdout.strip() == ""


def test_nothing_leaks_and_nothing_is_said_at_exit():
    code = "import veq; g = veq.gnm(9, 9, seed=1); w = veq.Walkers(g, [0]); w.walk(3); a = g.sources"
    shown = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True)
    assert shown.stderr == ""


@pytest.mark.skipif(not ROOMS.exists(), reason="the sources are not here")
def test_functions_release_the_interpreters_lock_or_are_fast():
    fast = {
        # O(1), of one vertex or edge, or about Python's own objects.
        *("ends", "list_of", "ends_of", "degree", "strength", "column_keys", "column"),
        *("set_numbers", "set_vectors", "set_values", "remove_column", "random_from_words"),
        *("random_state", "set_random_state"),
    }
    text = "\n".join(path.read_text() for path in sorted(ROOMS.glob("*.cpp")))
    bound = re.findall(r'm\.def\(\s*"(\w+)",\s*&(\w+)', text)
    releasing = ("gil_scoped_release", "reading(", "editing(", "following(", "modelled(", "published(")
    held = []
    for python, function in bound:
        bodies = re.findall(rf"\n[^\n;]*\b{function}\([^;{{]*\) \{{\n(.*?)\n\}}", text, re.DOTALL)
        if python not in fast and not any(word in body for body in bodies for word in releasing):
            held.append(python)
    # Questions without arguments are made by two templates, each of which reads.
    templates = {"triangles", "count_triangles", "local_clustering", "transitivity", "density",
                 "reciprocity", "copy", "reversed", "as_directed", "as_undirected"}
    assert set(held) - templates == set()
    assert len(bound) > 50
    assert {name for name in vars(_core) if not name.startswith("_")} >= fast

"""table.py RESULTS.json...: the tables of docs/performance.md, out of what pytest-benchmark wrote.

All are the least processor times of some rounds, which what else a machine does disturbs least; a
ratio is that of the other library to veq's own.
"""

import json
import sys
from collections import defaultdict
from pathlib import Path

LIBRARIES = ["veq", "igraph", "NetworkX", "rustworkx", "NetworKit", "own"]
results = [
    result for path in sys.argv[1:] for result in json.loads(Path(path).read_text())["benchmarks"]
]


def least(result):
    return result["extra_info"].get("seconds", result["stats"]["min"])


def of(module):
    found = defaultdict(dict)
    for result in results:
        if f"{module}.py" in result["fullname"]:
            name, _, variant = result["name"].removeprefix("test_").partition("[")
            task = result["extra_info"].get("task")
            if task is not None:
                name = task
                variant = next(
                    one for one in LIBRARIES if one in variant.removesuffix("]").split("-")
                )
            found[name][variant.removesuffix("]")] = result
    return found


def row(*cells):
    print("| " + " | ".join(cells) + " |")


row("task", *LIBRARIES[:-1])
row(*["---"] + ["---:"] * (len(LIBRARIES) - 1))
for name, variants in of("test_peers").items():
    own = least(variants["veq"])
    cells = [f"{own * 1e3:.1f} ms"]
    for library in LIBRARIES[1:-1]:
        there = variants.get(library)
        cells.append(f"{least(there) / own:.1f}" if there else "-")
    row(name, *cells)

print()
row("converter", "veq", "by hand", "ratio")
row("---", "---:", "---:", "---:")
for name, variants in of("test_converters").items():
    if "own" in variants:
        own, theirs = least(variants["veq"]), least(variants["own"])
        row(
            name,
            f"{own * 1e3:.1f} ms",
            f"{theirs * 1e3:.1f} ms",
            f"{own / theirs:.2f}",
        )

print()
row("call", "time")
row("---", "---:")
for name, variants in of("test_calls").items():
    for variant, result in variants.items():
        calls = result["extra_info"].get("calls")
        time = f"{least(result) / calls * 1e9:.0f} ns" if calls else f"{least(result) * 1e3:.1f} ms"
        row(f"{name} {variant}", time)

"""How much memory a network of 10^7 edges takes, whoever walks on it: one thread, eight of them, or
four processes. Proportional set sizes, without those of the interpreters, while tasks run whose
results are single numbers. Each part is a process of its own: memory.py threads 8."""

import json
import os
import re
import subprocess
import sys
import threading
import time
from pathlib import Path

import veq
import veq.ensemble as ve
from veq.ensemble._engines import loky_pool

EDGES = int(os.environ.get("VEQ_PROOF_EDGES", "10000000"))
BARS = {"threads 8": 1.1, "processes 4": 1.3}


def proportional(processes):
    """The sum of their proportional set sizes, in bytes, without memory files: of these, only what
    somebody has looked at counts there."""
    total, counts = 0, True
    for process in processes:
        for line in Path(f"/proc/{process}/smaps").read_text().splitlines():
            if re.match("[0-9a-f]+-[0-9a-f]+ ", line):
                counts = "/memfd:" not in line
            elif counts and line.startswith("Pss:"):
                total += int(line.split()[1]) * 1024
    return total


class Watch(threading.Thread):
    """The largest size of some processes from time to time."""

    def __init__(self, processes):
        super().__init__()
        self.processes, self.over, self.most = processes, threading.Event(), 0

    def run(self):
        while not self.over.wait(0.1):
            try:
                self.most = max(self.most, proportional(self.processes()))
            except OSError:
                continue

    def __exit__(self, *raised):
        self.over.set()
        self.join()

    def __enter__(self):
        self.start()
        return self


def most_while_running(run, processes, networks, tasks, **fields):
    walk = ve.WalkTask(starts=[0], collect=("steps",), **fields)
    study = ve.Ensemble(walk, tasks, seed=1, networks=networks)
    with Watch(processes) as watch:
        begun = time.monotonic()
        run(study)
        assert time.monotonic() - begun > 1
    return watch.most


def part(kind, workers):
    """The memory for the network alone."""
    os.environ["PYTHONPATH"] = str(Path(__file__).parent)
    pool = loky_pool(workers) if kind == "processes" else None

    def run(study):
        study.run(pool or "threads", workers=workers, progress=False)

    def processes():
        return [os.getpid(), *(pool._processes if pool else [])]

    # The same on nearly nothing, for long enough that every worker has been at work.
    small = veq.lattice([10], periodic=True)
    tasks = [{}] * (100 * workers)
    without = most_while_running(run, processes, small, tasks, steps=2_000_000)
    network = veq.gnm(EDGES // 10, EDGES, seed=1)
    if pool:
        network = ve.SealedNetwork(network)
    tasks = [{}] * (40 * workers)
    size = most_while_running(run, processes, network, tasks, steps=200_000) - without
    if pool:
        size += network.bytes
        pool.shutdown()
    return size


def main():
    if len(sys.argv) > 1:
        print(json.dumps(part(sys.argv[1], int(sys.argv[2]))))
        return 0
    sizes = {}
    for name in ("threads 1", *BARS):
        shown = subprocess.run(
            [sys.executable, __file__, *name.split()], check=True, capture_output=True, text=True
        )
        sizes[name] = json.loads(shown.stdout)
    missed = 0
    for name, bar in BARS.items():
        ratio = sizes[name] / sizes["threads 1"]
        missed += ratio > bar
        print(f"{name}: {sizes[name] / 2**20:.0f} MiB, {ratio:.3f} times one thread's; bar {bar}")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())

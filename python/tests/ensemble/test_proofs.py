"""Long comparisons with real processes. VEQ_TEST_SHARE=10 makes a tenth of the rounds, drawn by a
seed; scripts/ensembles makes all of them."""

import contextlib
import os
import random
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

import pytest
from engines import dask, engines, environment, mpi, processes
from lists import KINDS, ensemble, plain_loop, random_list

import veq
import veq.ensemble as ve
from veq.ensemble._values import sha256

SHARE = int(os.environ.get("VEQ_TEST_SHARE", "1"))
HEAD = 28  # Of a record: task, length and seconds of 8 bytes each, and the CRC-32.


def rounds(count):
    return max(1, count // SHARE)


NUMBERS = sorted(random.Random(1).sample(range(200), rounds(200)))


@pytest.fixture(scope="module")
def plain():
    """What the lists give by loops that know no ensemble."""
    return {number: sha256([plain_loop(number), None]) for number in NUMBERS}


@pytest.mark.parametrize(
    "name",
    [
        *("serial", "threads 1", "threads 2", "threads 3", "threads 7", "shuffled"),
        *("processes 2", "dask 1", "dask 3"),
    ],
)
def test_lists_give_the_same_by_everyone(plain, name):
    with engines([name]) as made:
        seen = {number: made[name](ensemble(number)).sha256() for number in NUMBERS}
    assert seen == plain


def test_lists_give_the_same_by_mpi_s_ranks(plain):
    seen = mpi(3, "mpi_lists.py", *NUMBERS).split()
    assert dict(zip(NUMBERS, seen, strict=True)) == plain


def test_the_lists_are_of_every_kind():
    lists = [random_list(number) for number in NUMBERS]
    assert {said["mode"] for said in lists} == {"row", "substream"}
    tasks = [task for said in lists for task in said["tasks"]]
    assert {task["kind"] for task in tasks} == set(KINDS)
    assert any("memory" in task for task in tasks)
    assert any("until" in task for task in tasks)


def slow(context, **parameters):
    time.sleep(0.02)
    walk = ve.WalkTask(starts=[0], steps=200)
    return walk(context)


def slow_study(count=100):
    return ve.Ensemble(slow, [{}] * count, seed=9, networks=veq.lattice([50]))


class Killer(threading.Thread):
    """Kills a process of those that it is told of, at random moments."""

    def __init__(self, victims, kills, slowest):
        super().__init__()
        self.victims, self.left, self.slowest = victims, kills, slowest
        self.draw = random.Random(2)

    def run(self):
        while self.left > 0:
            time.sleep(self.draw.uniform(0.05, self.slowest))
            victims = self.victims()
            if victims:
                try:
                    os.kill(self.draw.choice(victims), signal.SIGKILL)
                except ProcessLookupError:
                    continue
                self.left -= 1


def run_under_fire(run, victims, slowest):
    """How many runs it took."""
    expected = slow_study().run(workers=0).sha256()
    killer = Killer(victims, rounds(50), slowest)
    killer.start()
    runs = 0
    try:
        while killer.is_alive():
            assert run(slow_study()).sha256() == expected
            runs += 1
    finally:
        killer.left = 0
        killer.join()
    return runs


def test_workers_may_be_killed():
    pools = []

    def pool():
        pools.append(stack.enter_context(processes(2)))
        return pools[-1]

    def victims():
        return list(pools[-1]._processes) if pools else []

    with contextlib.ExitStack() as stack:
        assert run_under_fire(
            lambda study: study.run(pool, retries=10_000, progress=False), victims, 0.6
        )


# Dask takes seconds to replace a worker, so this is no part of a share.
if SHARE == 1:

    def test_workers_of_dask_may_be_killed():
        with dask(2) as client:

            def victims():
                # Dask does not replace a worker that is killed while it starts.
                workers = [nanny.process for nanny in client.cluster.workers.values()]
                return [
                    worker.pid for worker in workers if worker and worker.status.name == "running"
                ]

            assert run_under_fire(
                lambda study: study.run(client, retries=10_000, progress=False), victims, 5.0
            )


COORDINATOR = """
import sys, time
import veq.ensemble as ve
from test_proofs import slow, slow_study

class Logged:
    def __call__(self, context):
        result = slow(context)
        with open(sys.argv[2], "a") as log:
            log.write(f"{context.index} {time.time()}\\n")
        return result

study = slow_study()
if __name__ == "__main__":
    study.task = Logged()
    print(study.run(sys.argv[3], workers=2, checkpoint=sys.argv[1], progress=False).sha256())
"""


def processes_with(word):
    """The processes in whose environment a word stands."""
    found = []
    for path in Path("/proc").glob("[0-9]*/environ"):
        try:
            if word.encode() in path.read_bytes():
                found.append(int(path.parent.name))
        except OSError:
            continue
    return found


def kept_tasks(folder):
    """The tasks whose records are whole."""
    content = (folder / "results.bin").read_bytes()
    place, found = 0, set()
    while place + HEAD <= len(content):
        size = HEAD + int.from_bytes(content[place + 8 : place + 16], "little")
        if place + size <= len(content):
            found.add(int.from_bytes(content[place : place + 8], "little"))
        place += size
    return found


@pytest.mark.parametrize("engine", ["threads", "processes"])
def test_the_coordinator_may_be_killed(tmp_path, engine):
    expected = slow_study().run(workers=0).sha256()
    (tmp_path / "coordinator.py").write_text(COORDINATOR)
    draw, kills, folder = random.Random(3), 0, 0
    word = f"VEQ_PROOF={tmp_path}"

    def coordinator(folder):
        kept, log = tmp_path / f"kept{folder}", tmp_path / f"log{folder}"
        log.touch()
        process = subprocess.Popen(
            [sys.executable, tmp_path / "coordinator.py", kept, log, engine],
            env={**environment(), "VEQ_PROOF": str(tmp_path)},
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
            text=True,
        )
        return process, kept, log

    # Moments within a run, however long this machine takes for one.
    begun = time.monotonic()
    assert coordinator("-undisturbed")[0].communicate()[0].strip() == expected
    whole = time.monotonic() - begun
    while kills < rounds(50):
        process, kept, log = coordinator(folder)
        try:
            shown, _ = process.communicate(timeout=draw.uniform(0.1, 1.2) * whole)
        except subprocess.TimeoutExpired:
            killed = time.time()
            process.kill()
            process.communicate()
            kills += 1
            done = [line.split() for line in log.read_text().splitlines() if " " in line]
            early = {int(index) for index, when in done if float(when) < killed - 2}
            assert early <= (kept_tasks(kept) if (kept / "results.bin").exists() else set())
        else:
            assert shown.strip() == expected
            folder += 1
    # Nobody goes on for a coordinator that is gone.
    deadline = time.monotonic() + 60
    while processes_with(word) and time.monotonic() < deadline:
        time.sleep(0.5)
    assert processes_with(word) == []
    assert folder > 0 or SHARE > 1

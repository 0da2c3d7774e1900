"""Threads, processes, Dask and MPI: who runs the tasks shows in nothing."""

import os
import signal
import subprocess
import sys
import textwrap
import threading
import time
from concurrent.futures import BrokenExecutor, Executor, Future, ProcessPoolExecutor
from pathlib import Path

import numpy as np
import pytest
from engines import engines, environment, mpi
from lists import ensemble

import veq
import veq.ensemble as ve

WALK = ve.WalkTask(starts=[0, 1], steps=500, collect=("visits", "positions"))


def study(count=30, **more):
    return ve.Ensemble(WALK, [{}] * count, seed=3, networks=veq.lattice([40]), **more)


@pytest.fixture(scope="module")
def everyone():
    names = ["serial", "threads 1", "threads 3", "pool", "processes 2", "dask 1"]
    with engines(names) as made:
        yield made


@pytest.fixture(scope="module")
def expected():
    return study().run(workers=0).sha256()


@pytest.mark.parametrize("name", ["threads 1", "threads 3", "pool", "processes 2", "dask 1"])
def test_the_result_is_that_of_the_loop(everyone, expected, name):
    assert everyone[name](study()).sha256() == expected
    total = everyone[name](study(reduce=ve.summed("visits"))).reduced
    # Two agents who can always move, in each of 30 tasks.
    assert total.sum() == 30 * 2 * 500


def slow_draws(context):
    time.sleep(0.05)
    return context.network.num_edges, context.state.draw()


def test_workers_of_a_cluster_come_and_go():
    from distributed import Client, LocalCluster

    slow = ve.Ensemble(slow_draws, [{}] * 120, seed=9, networks=veq.lattice([40]))
    expected = slow.run(workers=0).sha256()
    cluster = LocalCluster(
        n_workers=0, threads_per_worker=1, processes=True, dashboard_address=":0"
    )
    with cluster, Client(cluster, set_as_default=False) as client:
        # As many workers as are to make what waits in so short a time.
        cluster.adapt(minimum=0, maximum=3, interval="100ms", wait_count=2, target_duration="100ms")
        seen = []
        for _ in range(2):
            seen.clear()
            results = slow.run(client, progress=lambda *_: seen.append(len(client.nthreads())))
            assert results.sha256() == expected
            assert max(seen) > 1
            patience = time.monotonic() + 30
            while client.nthreads() and time.monotonic() < patience:
                time.sleep(0.05)
            assert not client.nthreads()


def test_mpi_s_ranks_have_the_same_result():
    assert mpi(3, "mpi_lists.py", 5).split() == [ensemble(5).run(workers=0).sha256()]


def test_an_executor_may_be_made_by_a_function(expected):
    assert study().run(lambda: ProcessPoolExecutor(2), progress=False).sha256() == expected
    assert study().run("processes", workers=2).sha256() == expected


class Now(Executor):
    """Runs what it gets, at once, and remembers how much waits."""

    def __init__(self, loses=()):
        self.loses = list(loses)
        self.asked = 0

    def submit(self, function, /, *arguments, **more):
        future = Future()
        number, self.asked = self.asked, self.asked + 1
        if number in self.loses:
            future.set_exception(BrokenExecutor("gone"))
        else:
            future.set_result(function(*arguments, **more))
        return future


def test_any_executor_will_do(expected):
    executor = Now()
    assert study().run(executor, progress=False).sha256() == expected


def test_who_is_lost_is_replaced(expected):
    lost = Now(loses=[0, 3])
    assert study().run(lambda: lost, progress=False).sha256() == expected
    with pytest.raises(ve.TaskError, match=r"^task 0 \(\): worker lost, and the executor is brok"):
        study().run(Now(loses=[0]), progress=False)


def killing(context, number):
    if number == 1:
        os.kill(os.getpid(), signal.SIGKILL)
    return number


def test_a_task_that_kills_its_worker_is_named_and_no_other():
    killers = ve.Ensemble(killing, ve.grid(number=[0, 1, 2, 3, 4, 5]), seed=1)
    results = killers.run("processes", workers=2, on_error="collect", progress=False)
    assert list(results) == [0, None, 2, 3, 4, 5]
    assert [str(error) for error in results.errors] == ["task 1 (number=1): worker lost 3 times"]


class Short:
    """Is short of something now and then."""

    def __init__(self, error, times):
        self.error, self.times = error, times

    def __call__(self, context):
        if self.times:
            self.times -= 1
            raise self.error
        return context.state.draw()


@pytest.mark.parametrize("error", [MemoryError(), OSError("no files")])
def test_what_may_work_later_is_tried_again(error):
    first = veq.RandomState(1).draw()
    assert list(ve.Ensemble(Short(error, 2), [{}], seed=1).run(workers=0)) == [first]
    with pytest.raises(ve.TaskError):
        ve.Ensemble(Short(error, 3), [{}], seed=1).run(workers=0)
    with pytest.raises(ve.TaskError):
        ve.Ensemble(Short(ValueError("wrong"), 1), [{}], seed=1).run(workers=0)


def test_errors_of_processes_tell_where():
    with pytest.raises(ve.TaskError) as raised:
        ve.Ensemble(Short(ValueError("wrong"), 1), [{}], seed=1).run("processes", workers=1)
    assert str(raised.value) == "task 0 (): ValueError: wrong"
    notes = raised.value.__cause__.__notes__
    assert "On the worker:" in notes[0]
    assert "in __call__" in notes[0]


def unsendable(context):
    return threading.Lock()


def test_what_cannot_be_sent_is_told():
    with pytest.raises(ve.TaskError, match="it cannot be sent, or not received"):
        ve.Ensemble(unsendable, [{}], seed=1).run("processes", workers=1)


class Watched(Executor):
    """Counts what has been handed to it and is not done."""

    def __init__(self, inner):
        self.inner = inner
        self._max_workers = inner._max_workers
        self.open = self.most = 0
        self.lock = threading.Lock()

    def submit(self, function, /, *arguments, **more):
        with self.lock:
            self.open += 1
            self.most = max(self.most, self.open)
        future = self.inner.submit(function, *arguments, **more)
        future.add_done_callback(self._landed)
        return future

    def _landed(self, future):
        with self.lock:
            self.open -= 1


def test_few_packs_wait_at_once():
    with ProcessPoolExecutor(2) as inner:
        watched = Watched(inner)
        study(300).run(watched, progress=False)
    # Twice as many as workers.
    assert 2 <= watched.most <= 4


def test_workers_take_networks_that_they_cannot_find(monkeypatch, expected):
    # As on another machine: there is no memory file to open.
    monkeypatch.setattr("veq.ensemble._shared.MemoryPath.of", classmethod(lambda cls, fd: None))
    monkeypatch.setattr("veq.ensemble._engines.preload", lambda networks: None)
    with engines(["processes 2"]) as made:
        assert made["processes 2"](study()).sha256() == expected


def test_another_release_is_refused(monkeypatch):
    monkeypatch.setattr("veq.ensemble._ensemble.__version__", "0.0.1")
    with pytest.raises(RuntimeError) as raised:
        study().run("processes", workers=1)
    assert str(raised.value) == f"a worker runs veq {veq.__version__}, and this is veq 0.0.1"


def test_progress_counts_tasks_and_can_end_the_run():
    seen = []
    study(20).run(workers=0, progress=lambda done, all: seen.append((done, all)))
    assert seen == [(k, 20) for k in range(1, 21)]

    with pytest.raises(RuntimeError, match=r"^the ensemble was stopped after 5 tasks$"):
        study(20).run(workers=0, progress=lambda done, all: done < 5)


# A shell that runs tests in the background has them ignore interrupts.
INTERRUPTED = """
import os, signal, sys, threading, time
import veq, veq.ensemble as ve
signal.signal(signal.SIGINT, signal.default_int_handler)
walk = ve.WalkTask(starts=[0], steps=10**12, collect=("steps",))
study = ve.Ensemble(walk, [{"steps": 5}] + [{}] * 3, seed=1, networks=veq.lattice([9]))
threading.Timer(1.5, lambda: os.kill(os.getpid(), signal.SIGINT)).start()
begun = time.monotonic()
try:
    study.run(ENGINE, workers=WORKERS, checkpoint=sys.argv[1])
except KeyboardInterrupt:
    print("interrupted")
assert time.monotonic() - begun < 30
"""


@pytest.mark.parametrize(("engine", "workers"), [(None, 0), ("threads", 2), ("processes", 2)])
def test_an_interrupt_ends_the_run_after_a_whole_step(tmp_path, engine, workers):
    code = INTERRUPTED.replace("ENGINE", repr(engine)).replace("WORKERS", str(workers))
    command = [sys.executable, "-c", textwrap.dedent(code), tmp_path / "kept"]
    # A group of its own, as a terminal has it.
    shown = subprocess.run(
        command,
        capture_output=True,
        text=True,
        env=environment(),
        start_new_session=True,
        timeout=120,
    )
    assert (shown.stdout, shown.stderr) == ("interrupted\n", "")
    # A record: 28 bytes before the payload; the first task has been kept.
    assert (tmp_path / "kept" / "results.bin").stat().st_size > 28


def stopping(context, **parameters):
    while not context.stop():
        time.sleep(0.01)
    return 1


@pytest.mark.parametrize("name", ["threads 3", "processes 2", "dask 1"])
def test_tasks_see_that_they_shall_stop(everyone, name):
    stopped = ve.Ensemble(stopping, [{}] * 2, seed=1)

    begun = time.monotonic()

    # Raised in the main thread, which waits for results.
    previous = signal.signal(signal.SIGALRM, signal.default_int_handler)
    signal.setitimer(signal.ITIMER_REAL, 1.0)
    try:
        with pytest.raises(KeyboardInterrupt):
            everyone[name](stopped)
    finally:
        signal.signal(signal.SIGALRM, previous)
    assert time.monotonic() - begun < 30


def test_seconds_are_those_of_the_tasks():
    def sleeping(context, seconds):
        time.sleep(seconds)

    results = ve.Ensemble(sleeping, ve.grid(seconds=[0.0, 0.05]), seed=1).run(workers=1)
    assert results.seconds[1] >= 0.05
    assert np.isfinite(results.seconds).all()


def test_the_page_s_executor_of_ray_does_it(expected):
    pytest.importorskip("ray")
    page = (Path(__file__).parents[3] / "docs" / "ensembles.md").read_text()
    recipe = next(part for part in page.split("```") if "RayExecutor" in part)
    code = "import veq, veq.ensemble as ve\nfrom test_engines import study\nstudy = study()\n"
    code += recipe.removeprefix("python\n").replace("ray.init()", "ray.init(num_cpus=2)")
    code = code.replace("study.run(RayExecutor())", "results = study.run(RayExecutor())")
    code += "print(results.sha256())\n"
    shown = subprocess.run(
        [sys.executable, "-W", "ignore", "-c", code],
        capture_output=True,
        text=True,
        env={**environment(), "RAY_USAGE_STATS_ENABLED": "0"},
    )
    assert shown.stdout.split() == [expected], shown.stderr

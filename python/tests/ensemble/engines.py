"""The ways to run an ensemble, by name, each started once and used for many."""

import contextlib
import os
import random
import shutil
import subprocess
import sys
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import pytest

HERE = Path(__file__).parent


def run_here(workers):
    return lambda ensemble, **more: ensemble.run(workers=workers, progress=False, **more)


def run_by(executor):
    return lambda ensemble, **more: ensemble.run(executor, progress=False, **more)


def environment():
    """For processes that are to find what lies beside this file."""
    paths = [str(HERE), os.environ.get("PYTHONPATH", "")]
    return {**os.environ, "PYTHONPATH": os.pathsep.join(path for path in paths if path)}


class Shuffling(ThreadPoolExecutor):
    """Threads that finish in any order."""

    def __init__(self):
        super().__init__(4)
        self._draw = random.Random(4)

    def submit(self, function, /, *arguments, **more):
        return super().submit(self._late, self._draw.uniform(0, 0.01), function, *arguments, **more)

    @staticmethod
    def _late(seconds, function, *arguments, **more):
        time.sleep(seconds)
        return function(*arguments, **more)


@contextlib.contextmanager
def dask(workers):
    from distributed import Client, LocalCluster

    cluster = LocalCluster(
        n_workers=workers, threads_per_worker=2, processes=True, dashboard_address=":0"
    )
    with cluster, Client(cluster, set_as_default=False) as client:
        client.run(sys.path.append, str(HERE))
        yield client


@contextlib.contextmanager
def processes(workers):
    from veq.ensemble._engines import loky_pool

    os.environ["PYTHONPATH"] = environment()["PYTHONPATH"]
    pool = loky_pool(workers)
    yield pool
    pool.shutdown(wait=True)


@contextlib.contextmanager
def engines(names):
    """The functions that run an ensemble, by their names."""
    with contextlib.ExitStack() as stack:
        made = {}
        for name in names:
            if name == "serial":
                made[name] = run_here(0)
            elif name.startswith("threads"):
                made[name] = run_here(int(name.split()[1]))
            elif name.startswith("processes"):
                made[name] = run_by(stack.enter_context(processes(int(name.split()[1]))))
            elif name.startswith("dask"):
                made[name] = run_by(stack.enter_context(dask(int(name.split()[1]))))
            elif name == "shuffled":
                made[name] = run_by(stack.enter_context(Shuffling()))
            elif name == "pool":
                made[name] = run_by(stack.enter_context(ThreadPoolExecutor(2)))
        yield made


def mpi(ranks, program, *arguments):
    """What a program prints that MPI runs, with a coordinator among its ranks."""
    if shutil.which("mpiexec") is None:
        pytest.skip("there is no mpiexec")
    command = ["mpiexec", "-n", str(ranks), "--oversubscribe", sys.executable, "-m"]
    command += ["mpi4py.futures", str(HERE / program), *map(str, arguments)]
    more = {"OMPI_ALLOW_RUN_AS_ROOT": "1", "OMPI_ALLOW_RUN_AS_ROOT_CONFIRM": "1"}
    more["OMPI_MCA_btl_vader_single_copy_mechanism"] = "none"
    shown = subprocess.run(
        command, env={**environment(), **more}, capture_output=True, text=True, timeout=600
    )
    assert shown.returncode == 0, shown.stderr
    return shown.stdout

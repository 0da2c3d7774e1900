"""What a task of an ensemble costs beyond its work, by each engine, and what two threads are worth.

build/venv-VERSION/bin/python python/benchmarks/ensembles.py    # nothing else may run
"""

import argparse
import sys
import time
import timeit

import veq
import veq.ensemble as ve

BARS = {
    "jump": (30e-6, "s"),
    "threads, no work": (50e-6, "s"),
    "threads, 25 ms": (50e-6, "s"),
    "processes, no work": (1e-3, "s"),
    "processes, 25 ms": (1e-3, "s"),
    "dask, no work": (3e-3, "s"),
    "dask, 25 ms": (3e-3, "s"),
    "two threads": (1.85, "times"),
    "scatter": (1.5, "s"),
}


def nothing(context):
    return context.index


def working(context):
    """25 ms of this thread's own time."""
    ends = time.perf_counter() + 0.025
    while time.perf_counter() < ends:
        pass


def jump():
    state = veq.RandomState(1)
    return min(timeit.repeat(lambda: state.substream(4_000_000), number=2000, repeat=5)) / 2000


def overhead(task, count, executor, workers):
    """Of a task, in seconds: what is left of the elapsed time of all workers."""
    study = ve.Ensemble(task, [{}] * count, seed=1)
    study.run(executor, workers=workers, progress=False)
    best = float("inf")
    for _ in range(3):
        begun = time.perf_counter()
        results = study.run(executor, workers=workers, progress=False)
        elapsed = time.perf_counter() - begun
        best = min(best, (elapsed * workers - results.seconds.sum()) / count)
    return best


def two_threads():
    """How much faster two threads are than one, with tasks of some 50 ms."""
    network = veq.gnm(100_000, 1_000_000, seed=1)
    walk = ve.WalkTask(starts=list(range(256)), steps=10_000, collect=("steps",))
    steps = 10_000
    one = ve.Ensemble(walk, [{}], seed=1, networks=network)
    for _ in range(3):
        seconds = one.run(workers=1, progress=False).seconds[0]
        steps = max(1, int(steps * 0.05 / seconds))
        one = ve.Ensemble(walk, [{"steps": steps}], seed=1, networks=network)
    tasks = [{"steps": steps}] * 60
    study = ve.Ensemble(walk, tasks, seed=1, networks=network)
    times = {1: [], 2: []}
    for _ in range(5):
        for workers, seen in times.items():
            begun = time.perf_counter()
            study.run(workers=workers, progress=False)
            seen.append(time.perf_counter() - begun)
    print(f"  a task takes {min(times[1]) / 60 * 1000:.1f} ms", file=sys.stderr)
    return min(times[1]) / min(times[2])


def scatter(client):
    network = veq.gnm(1_000_000, 10_000_000, seed=1)
    begun = time.perf_counter()
    kept = client.scatter([network], broadcast=True, hash=False)
    elapsed = time.perf_counter() - begun
    del kept
    return elapsed


def measured(only):
    """Name and figure, one after the other."""
    yield "jump", jump()
    yield "threads, no work", overhead(nothing, 20_000, "threads", 1)
    yield "threads, 25 ms", overhead(working, 60, "threads", 1)
    yield "two threads", two_threads()
    if only == "threads":
        return
    from veq.ensemble._engines import loky_pool

    pool = loky_pool(1)
    yield "processes, no work", overhead(nothing, 20_000, pool, 1)
    yield "processes, 25 ms", overhead(working, 60, pool, 1)
    pool.shutdown()
    from distributed import Client, LocalCluster

    cluster = LocalCluster(1, threads_per_worker=1, dashboard_address=None)
    with cluster, Client(cluster, set_as_default=False) as client:
        yield "dask, no work", overhead(nothing, 20_000, client, 1)
        yield "dask, 25 ms", overhead(working, 60, client, 1)
        yield "scatter", scatter(client)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--only", choices=["threads"])
    print("| what | measured | bar | |")
    print("|---|---:|---:|---|")
    for name, figure in measured(parser.parse_args().only):
        bar, unit = BARS[name]
        kept = figure >= bar if unit == "times" else figure <= bar
        shown = [
            f"{value:.3g}" if unit == "times" else f"{value * 1e3:.3g} ms"
            for value in (figure, bar)
        ]
        print(f"| {name} | {shown[0]} | {shown[1]} | {'' if kept else 'missed'} |", flush=True)


if __name__ == "__main__":
    main()

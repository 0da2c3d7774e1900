"""Many tasks, each with a random state that follows from the seed and its number."""

from __future__ import annotations

import os
from collections.abc import Callable, Iterable, Mapping
from concurrent.futures import Executor, ThreadPoolExecutor
from contextlib import nullcontext
from functools import partial
from typing import Any, Generic, Literal, TypeVar, cast

from .. import __version__
from .._errors import UnsupportedError
from .._network import Network
from .._progress import Progress, following
from .._random import RandomState
from ._checkpoint import Checkpoint
from ._coordinator import Coordinator, OnError
from ._dask import Dask, client_in, client_of
from ._engines import (
    Elsewhere,
    Engine,
    Networks,
    Threads,
    fingerprint_of,
    loky_pool,
    plain,
    processors,
)
from ._reductions import Reduction
from ._results import Kept, Results
from ._shared import SealedNetwork
from ._tasks import Counting, grid
from ._values import sha256
from ._work import Job, Work, performed

R = TypeVar("R")
Mode = Literal["substream", "row"]
_SUBSTREAMS = 2**22


class Ensemble(Generic[R]):
    """A list of tasks, to be run by threads, processes or machines, as many as there are.

    The result of a task follows from the seed, its number and its parameters: not from who runs it,
    in which order, how often it is tried again, or what other tasks there are.

    Parameters
    ----------
    task : callable
        Called with a `Context` and the parameters of each task. It may draw from
        ``context.state`` alone. `WalkTask`, `RandomNetwork`, `PreferentialAttachment` and `Chain`
        are there; a function of a module will do.
    tasks : iterable of mappings
        The parameters, a mapping for each task, such as `grid` makes them.
    seed : int
        From 1 to 2**32 - 1.
    networks : Network, SealedNetwork or mapping of names to them, optional
        What the tasks ask, which nobody may edit meanwhile.
    mode : {"substream", "row"}
        ``"substream"``: task k draws from ``RandomState(seed).substream(k)``. ``"row"``: where the
        tasks before it end, so that all draws are those of a plain loop after ``veq.seed(seed)``;
        for tasks that know how many numbers they draw.
    reduce : Reduction, optional
        Adds the results up instead of keeping them.

    Raises
    ------
    ValueError
        "task 17 (PreferentialAttachment) draws a number of times that is not known before: use
        mode='substream'"; "4194305 tasks: a seed has 4194304 substreams".

    Examples
    --------
    >>> network = veq.preferential_attachment(100, 4, seed=1)
    >>> walk = veq.ensemble.WalkTask(starts=[0], steps=1000, collect=("visits",))
    >>> study = veq.ensemble.Ensemble(
    ...     walk, veq.ensemble.grid(memory=[1, 5], repetition=range(3)), seed=7, networks=network
    ... )
    >>> results = study.run(workers=2)
    >>> [int(result["visits"].sum()) for result in results]
    [1000, 1000, 1000, 1000, 1000, 1000]
    >>> bool((study.one(4)["visits"] == results[4]["visits"]).all())
    True
    """

    def __init__(
        self,
        task: Callable[..., R],
        tasks: Iterable[Mapping[str, Any]],
        *,
        seed: int,
        networks: Network | SealedNetwork | Mapping[str, Network | SealedNetwork] | None = None,
        mode: Mode = "substream",
        reduce: Reduction | None = None,
    ) -> None:
        RandomState(seed)  # Refuses what is no seed.
        if mode not in ("substream", "row"):
            raise ValueError(f"mode {mode!r}: give one of 'substream', 'row'")
        self.task = task
        self.tasks = [dict(parameters) for parameters in tasks]
        self.seed = seed
        self.mode = mode
        self.reduce = reduce
        if networks is None:
            networks = {}
        elif isinstance(networks, Network | SealedNetwork):
            networks = {"network": networks}
        self.networks: Networks = dict(networks)
        self._before = self._draws_before() if mode == "row" else None
        if mode == "substream" and len(self.tasks) > _SUBSTREAMS:
            raise ValueError(f"{len(self.tasks)} tasks: a seed has {_SUBSTREAMS} substreams")

    def _draws_before(self) -> list[int]:
        before = [0]
        for index, parameters in enumerate(self.tasks):
            counts = self.task.draws(**parameters) if isinstance(self.task, Counting) else None
            if counts is None:
                name = getattr(self.task, "__name__", type(self.task).__name__)
                raise ValueError(
                    f"task {index} ({name}) draws a number of times that is not known before: "
                    "use mode='substream'"
                )
            before.append(before[-1] + counts)
        return before

    @staticmethod
    def grid(**axes: Iterable[Any]) -> list[dict[str, Any]]:
        """As `veq.ensemble.grid`.

        Examples
        --------
        >>> veq.ensemble.Ensemble.grid(memory=[1, 2])
        [{'memory': 1}, {'memory': 2}]
        """
        return grid(**axes)

    def __len__(self) -> int:
        return len(self.tasks)

    def __repr__(self) -> str:
        return f"<veq.ensemble.Ensemble: {len(self)} tasks, seed {self.seed}>"

    def one(self, index: int) -> R:
        """The result of one task, here and now: the same bits as among all.

        What it raises is raised as it is. With a reduction it is what would be added.

        Examples
        --------
        >>> def task(context):
        ...     return context.state.draw()
        >>> study = veq.ensemble.Ensemble(task, [{}] * 5000, seed=1)
        >>> study.one(4711) == veq.RandomState(1).substream(4711).draw()
        True
        """
        if not -len(self) <= index < len(self):
            raise IndexError(f"task {index} of {len(self)}")
        job = self._job(index % len(self))
        result: R = performed(
            self._work(), job, RandomState(self.seed), plain(self.networks), lambda: False
        )
        return result

    def run(
        self,
        executor: Executor | Callable[[], Executor] | str | Any | None = None,
        *,
        workers: int | None = None,
        checkpoint: str | os.PathLike[str] | None = None,
        retries: int = 2,
        progress: Progress = "auto",
        on_error: OnError = "raise",
    ) -> Results[R]:
        """Run all tasks that the checkpoint does not have.

        An interrupt cancels what waits, ends running walks after a whole step, closes the
        checkpoint and is raised.

        Parameters
        ----------
        executor
            None or ``"threads"``: threads of this process, which share its networks.
            ``"processes"``: processes by loky. ``"tcp://HOST:8786"``: a scheduler of Dask's.
            Otherwise an executor or a client of Dask's; or a function that makes an executor, and
            another one when that has broken.
        workers
            How many threads or processes, by default one for each processor; 0 runs the tasks one
            after the other in this thread.
        checkpoint
            A folder, made if it is not there, that keeps results while they come. A run that was
            killed goes on from there, and so does one with an error.
        retries
            How often a task is tried again whose worker was lost, or had no memory or files left.
        progress
            ``"auto"`` shows a bar of tqdm after 1.5 s where somebody looks; a callable gets the
            tasks done and all, and ends the run by returning False.
        on_error
            ``"raise"`` ends the run with the first task that fails; ``"collect"`` goes on.

        Raises
        ------
        TaskError
            "task 17 (n=10): ValueError: ..."; "task 3 (n=10): worker lost 3 times".

        Examples
        --------
        >>> walk = veq.ensemble.WalkTask(starts=[0], steps=100, collect=("positions",))
        >>> study = veq.ensemble.Ensemble(walk, [{}] * 9, seed=1, networks=veq.lattice([5]))
        >>> by_threads = study.run(workers=3)
        >>> by_threads.sha256() == study.run("processes", workers=1).sha256()
        True
        """
        if on_error not in ("raise", "collect"):
            raise ValueError(f"on_error {on_error!r}: give one of 'raise', 'collect'")
        opened = None if checkpoint is None else Checkpoint(checkpoint, self._manifest())
        with opened or nullcontext():
            kept = Kept(len(self), self.reduce, opened)
            there = int(kept.done.sum())
            errors = []
            if there < len(self):
                engine = self._engine(executor, workers)
                try:
                    coordinator = Coordinator(engine, self._job, kept, retries, on_error)
                    indices = (~kept.done).nonzero()[0].tolist()
                    with following(progress, "tasks") as call:
                        report = call and partial(_report, call, there, len(self))
                        coordinator.run(indices, report)
                    errors = sorted(coordinator.errors, key=lambda error: error.index)
                finally:
                    engine.close()
        return kept.results(self.tasks, errors)

    def _work(self) -> Work:
        return Work(self.task, self.seed, self.reduce, __version__)

    def _job(self, index: int) -> Job:
        before = None if self._before is None else self._before[index]
        return Job(index, self.tasks[index], before)

    def _manifest(self) -> dict[str, Any]:
        """What decides the results, for a checkpoint to compare."""
        networks = {name: fingerprint_of(network) for name, network in self.networks.items()}
        return {
            "veq": __version__,
            "seed": self.seed,
            "mode": self.mode,
            "count": len(self),
            "task": sha256(self.task),
            "tasks": sha256(self.tasks),
            "networks": networks,
            "reduction": None if self.reduce is None else sha256(self.reduce),
        }

    def _engine(self, executor: Any, workers: int | None) -> Engine:
        work, networks = self._work(), self.networks
        count = processors() if workers is None else workers
        if count < 0:
            raise ValueError(f"workers = {count}: give 0 or more")
        client = client_in(executor)
        if client is not None:
            return Dask(work, networks, client, own=False)
        if isinstance(executor, str) and "://" in executor:
            return Dask(work, networks, client_of(executor), own=True)
        if executor == "processes":
            return Elsewhere(work, networks, partial(loky_pool, max(count, 1)), own=True)
        if executor is None or executor == "threads":
            if count == 0:
                return Engine(work, networks)
            return Threads(work, networks, count, None)
        if isinstance(executor, ThreadPoolExecutor):
            return Threads(work, networks, count, executor)
        if isinstance(executor, str):
            raise ValueError(
                f"executor {executor!r}: give 'threads', 'processes' or the address of a scheduler"
            )
        if hasattr(executor, "submit"):
            return Elsewhere(work, networks, lambda: executor, own=False)
        if callable(executor):
            make = cast("Callable[[], Executor]", executor)
            return Elsewhere(work, networks, make, own=True)
        raise UnsupportedError(f"{executor!r} is no executor")


def _report(call: Callable[[int, int], object], there: int, count: int, done: int) -> object:
    return call(there + done, count)

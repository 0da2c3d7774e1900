"""The coordinator: hands out packs of tasks, as many as the workers need, and takes what comes."""

from __future__ import annotations

import math
import time
from collections import Counter, deque
from collections.abc import Callable, Iterator, Sequence
from concurrent.futures import BrokenExecutor, CancelledError, Future
from contextlib import suppress
from dataclasses import dataclass
from queue import Empty, SimpleQueue
from typing import Literal, Protocol

from .._errors import StoppedError, UnsupportedError
from ._context import TaskError
from ._engines import Engine, Pack
from ._work import Done, Job, Outcome

OnError = Literal["raise", "collect"]

_PACK_SECONDS = 0.02
"""Shorter tasks are packed, so that handing them over costs little. No result shows it."""
_PATIENCE = 0.5
"""How often the coordinator looks after the rest while nothing comes."""


class Keeper(Protocol):
    """Where results go."""

    def keep(self, outcomes: Sequence[Outcome], total: object) -> None:
        """Keep what tasks gave, or the total of it where workers add."""

    def tick(self) -> None:
        """A moment has passed."""


@dataclass(frozen=True)
class Flight:
    """A pack that is under way."""

    pack: Pack
    generation: int
    with_networks: bool
    alone: bool


class Coordinator:
    """Runs the tasks of given numbers by an engine."""

    def __init__(
        self,
        engine: Engine,
        job: Callable[[int], Job],
        keeper: Keeper,
        retries: int,
        on_error: OnError,
    ) -> None:
        self.errors: list[TaskError] = []
        self._engine = engine
        self._job = job
        self._keeper = keeper
        self._retries = retries
        self._on_error = on_error
        self._landed: SimpleQueue[Future[Done]] = SimpleQueue()
        self._flights: dict[Future[Done], Flight] = {}
        self._again: deque[Job] = deque()
        self._losses: Counter[int] = Counter()
        self._generation = 0
        self._done = 0
        self._seconds = 0.0
        self._left = 0

    def run(self, indices: Sequence[int], report: Callable[[int], object] | None) -> None:
        """Do all; ``report`` gets how many are done, and ends the run by returning False."""
        waiting = iter(indices)
        self._left = len(indices)
        try:
            while self._fill(waiting):
                self._take()
                self._keeper.tick()
                if report is not None and report(self._done) is False:
                    raise StoppedError(f"the ensemble was stopped after {self._done} tasks")
        except BaseException:
            self._abandon()
            raise

    def _fill(self, waiting: Iterator[int]) -> bool:
        while len(self._flights) < self._window():
            alone = bool(self._again) and self._is_last_try(self._again[0])
            if alone and self._flights:
                break
            pack = self._next_pack(waiting)
            if not pack:
                break
            self._submit(pack, alone=alone)
        return bool(self._flights)

    def _window(self) -> int:
        if any(flight.alone for flight in self._flights.values()):
            return 1
        workers = self._engine.workers()
        return max(1, workers if self._losses else 2 * workers)

    def _is_last_try(self, job: Job) -> bool:
        # Alone, so that it is known whose fault the next loss is.
        return 0 < self._retries <= self._losses[job.index]

    def _next_pack(self, waiting: Iterator[int]) -> Pack:
        if self._again:
            return [self._again.popleft()]
        size = 1 if self._losses else self._pack_size()
        pack = [self._job(index) for _, index in zip(range(size), waiting, strict=False)]
        self._left -= len(pack)
        return pack

    def _pack_size(self) -> int:
        workers = self._engine.workers()
        if workers == 0 or self._done == 0:
            return 1
        mean = self._seconds / self._done
        wanted = math.ceil(_PACK_SECONDS / max(mean, 1e-6))
        return max(1, min(wanted, 1000, self._left // (2 * workers)))

    def _submit(self, pack: Pack, with_networks: bool = False, alone: bool = False) -> None:
        future = self._submitted(pack, with_networks)
        self._flights[future] = Flight(pack, self._generation, with_networks, alone)
        future.add_done_callback(self._landed.put)

    def _submitted(self, pack: Pack, with_networks: bool) -> Future[Done]:
        attempts = self._retries
        while True:
            try:
                return self._engine.submit(pack, with_networks)
            except BrokenExecutor as error:
                if self._engine.on_loss is not None or attempts == 0:
                    raise self._lost_for_good(pack, error) from error
            attempts -= 1
            self._renew(self._generation)

    def _take(self) -> None:
        try:
            future = self._landed.get(timeout=_PATIENCE)
        except Empty:
            return
        while True:
            self._land(future, self._flights.pop(future))
            try:
                future = self._landed.get_nowait()
            except Empty:
                return

    def _land(self, future: Future[Done], flight: Flight) -> None:
        try:
            done = future.result()
        except BaseException as error:
            if isinstance(error, KeyboardInterrupt | SystemExit):
                raise
            return self._not_landed(flight, error)
        if done.version != self._engine.work.version:
            raise UnsupportedError(
                f"a worker runs veq {done.version}, and this is veq {self._engine.work.version}"
            )
        if done.missing:
            if flight.with_networks:
                raise UnsupportedError(f"a worker cannot take network {done.missing[0]!r}")
            return self._submit(flight.pack, True, flight.alone)
        self._keep(done, flight)

    def _keep(self, done: Done, flight: Flight) -> None:
        good = [outcome for outcome in done.outcomes if outcome.error is None]
        if good:
            self._keeper.keep(good, done.total)
        self._done += len(good)
        self._seconds += sum(outcome.seconds for outcome in good)
        jobs = {job.index: job for job in flight.pack}
        for outcome in done.outcomes:
            job = jobs.pop(outcome.index)
            if outcome.error is not None:
                self._failed(job, outcome.error)
        # A worker was told to stop, and not by this run.
        for job in jobs.values():
            self._try_again(job, None)

    def _failed(self, job: Job, error: BaseException) -> None:
        """The same happens again, unless the machine was short of something."""
        if isinstance(error, MemoryError | OSError) and self._losses[job.index] < self._retries:
            self._losses[job.index] += 1
            self._again.append(job)
        else:
            self._give_up(job, f"{type(error).__name__}: {error}", error)

    def _not_landed(self, flight: Flight, error: BaseException) -> None:
        if not _is_loss(error):
            why = f"it cannot be sent, or not received: {type(error).__name__}: {error}"
            for job in flight.pack:
                self._give_up(job, why, error)
            return
        if self._engine.on_loss is not None:
            raise self._lost_for_good(flight.pack, error) from error
        self._renew(flight.generation)
        for job in flight.pack:
            self._try_again(job, error)

    def _try_again(self, job: Job, error: BaseException | None) -> None:
        self._losses[job.index] += 1
        if self._losses[job.index] <= self._retries:
            self._again.append(job)
        else:
            self._give_up(job, f"worker lost {self._losses[job.index]} times", error)

    def _give_up(self, job: Job, why: str, error: BaseException | None) -> None:
        made = TaskError(job.index, job.parameters, why)
        made.__cause__ = error
        if self._on_error == "raise":
            raise made
        self.errors.append(made)
        self._done += 1

    def _lost_for_good(self, pack: Pack, error: BaseException) -> TaskError:
        why = f"worker lost, and {self._engine.on_loss}: {error}"
        return TaskError(pack[0].index, pack[0].parameters, why)

    def _renew(self, generation: int) -> None:
        if generation == self._generation:
            self._generation += 1
            self._engine.renew()

    def _abandon(self) -> None:
        """Cancel what waits, stop what runs after a whole step, and keep what came."""
        with suppress(Exception):  # A cluster that is gone cannot be told.
            self._engine.stop()
        for future in list(self._flights):
            future.cancel()
        ends = time.monotonic() + 60
        while self._flights and time.monotonic() < ends:
            try:
                future = self._landed.get(timeout=_PATIENCE)
            except Empty:
                continue
            self._flights.pop(future, None)
            if not future.cancelled() and future.exception() is None:
                done = future.result()
                good = [outcome for outcome in done.outcomes if outcome.error is None]
                if good:
                    self._keeper.keep(good, done.total)


def _is_loss(error: BaseException) -> bool:
    """Whether a worker was lost, and not a task wrong."""
    named = {cls.__name__ for cls in type(error).__mro__}
    return isinstance(error, BrokenExecutor | CancelledError | OSError) or bool(
        named & {"KilledWorker", "FutureCancelledError", "CancelledError"}
    )

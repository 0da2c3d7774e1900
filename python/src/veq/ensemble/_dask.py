"""Dask distributed as an engine: each worker process gets the networks once."""

from __future__ import annotations

import asyncio
import math
import time
from collections.abc import Sequence
from concurrent.futures import BrokenExecutor, CancelledError, Future
from functools import partial
from typing import Any
from uuid import uuid4

from .._network import Network
from ._engines import Engine, Networks, Pack, plain
from ._work import Done, Job, Work, perform

_stopped: set[str] = set()
"""The runs whose tasks on this worker shall stop."""


def _stop(run: str) -> None:
    _stopped.add(run)


def _nothing() -> None:
    pass


def _perform(
    work: Work, run: str, pack: Sequence[Job], names: Sequence[str], *networks: Network
) -> Done:
    from .. import __version__

    if work.version != __version__:
        return Done(__version__, [])
    there = dict(zip(names, networks, strict=True))
    return perform(work, pack, there, lambda: run in _stopped)


def _settle(here: Future[Done], there: Any) -> None:
    """Hands on what came of a future of Dask's.

    Its own executors do not hear of one whose result, or network, was lost with its worker.
    """
    if not here.set_running_or_notify_cancel():
        return
    try:
        here.set_result(there.result())
    except (asyncio.CancelledError, CancelledError) as error:
        here.set_exception(BrokenExecutor(f"{type(error).__name__}: {error}"))
    except BaseException as error:
        here.set_exception(error)


class Dask(Engine):
    """A cluster of Dask's, however it grows and shrinks."""

    on_loss = None

    def __init__(self, work: Work, networks: Networks, client: Any, own: bool) -> None:
        super().__init__(work, networks)
        self._client = client
        self._own = own
        self._run = uuid4().hex
        self._names = list(networks)
        self._asked = -math.inf
        self._workers = 0
        self._scattered: list[Any] = []

    def workers(self) -> int:
        if time.monotonic() - self._asked > 1:
            self._workers, self._asked = self._count(), time.monotonic()
        return self._workers

    def _count(self) -> int:
        # A cluster that grows on demand has to see some.
        threads: dict[str, int] = self._client.nthreads()
        return max(4, sum(threads.values()))

    def submit(self, pack: Pack, with_networks: bool) -> Future[Done]:
        if self._names and not self._scattered:
            try:
                self._scatter()
            except Exception as error:  # As many kinds as there are ways to lose a worker.
                raise BrokenExecutor(f"{type(error).__name__}: {error}") from error
        there = self._client.submit(
            _perform,
            *(self.work, self._run, list(pack), self._names, *self._scattered),
            pure=False,
            retries=0,
        )
        here: Future[Done] = Future()
        here.add_done_callback(lambda future: there.cancel() if future.cancelled() else None)
        there.add_done_callback(partial(_settle, here))
        return here

    def renew(self) -> None:
        self._scattered = []

    def stop(self) -> None:
        super().stop()
        self._client.run(_stop, self._run, on_error="ignore")

    def close(self) -> None:
        self._scattered = []
        if self._own:
            self._client.close()
        super().close()

    def _scatter(self) -> None:
        # To somebody: a cluster without workers makes one for the first task.
        self._client.submit(_nothing, pure=False).result()
        networks = list(plain(self.networks).values())
        self._scattered = self._client.scatter(networks, broadcast=True, hash=False)


def client_of(address: str) -> Any:
    """A client of the scheduler at an address."""
    try:
        from distributed import Client
    except ImportError as error:
        raise ImportError(
            'a scheduler needs Dask: install it with pip install "veq[dask]"'
        ) from error
    return Client(address, set_as_default=False)  # type: ignore[no-untyped-call]


def client_in(executor: object) -> Any:
    """The client of Dask's, if that is what it is, or what it is made of."""
    if type(executor).__module__.split(".")[0] != "distributed":
        return None
    return getattr(executor, "_client", executor)

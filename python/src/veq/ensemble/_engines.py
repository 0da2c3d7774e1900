"""Who does the work: threads, processes, Dask, or any other executor.

An engine is what the coordinator sees of an executor: how many workers there are, and a future for
each pack that is handed to it.
"""

from __future__ import annotations

import ctypes
import os
import signal
import sys
from collections.abc import Callable, Mapping, Sequence
from concurrent.futures import Executor, Future, ThreadPoolExecutor
from dataclasses import replace
from typing import Any

from .._network import Network
from ._shared import NetworkRef, SealedNetwork, StopFlag, forget, preload, sealed_or_not
from ._values import sha256
from ._work import Done, Job, Work, perform, perform_elsewhere

Networks = Mapping[str, Network | SealedNetwork]
Pack = Sequence[Job]


def plain(networks: Networks) -> dict[str, Network]:
    """The networks, wherever they lie."""
    return {
        name: network.network if isinstance(network, SealedNetwork) else network
        for name, network in networks.items()
    }


def fingerprint_of(network: Network | SealedNetwork) -> str:
    """The SHA-256 of all that a network holds."""
    return network.fingerprint if isinstance(network, SealedNetwork) else sha256(network)


def processors() -> int:
    """How many this process may use."""
    if hasattr(os, "sched_getaffinity"):
        return len(os.sched_getaffinity(0))
    return os.cpu_count() or 1


class Engine:
    """An executor, as the coordinator sees it. This one runs packs at once, where it is asked."""

    on_loss: str | None = "the executor is broken"
    """Why what was lost cannot be done again; None where it can."""

    def __init__(self, work: Work, networks: Networks) -> None:
        self.work = work
        self.networks = networks
        self.flag = StopFlag()

    def workers(self) -> int:
        """How many packs can run at once; for engines that run them at once it is 0."""
        return 0

    def submit(self, pack: Pack, with_networks: bool) -> Future[Done]:
        """Hand over a pack; with the networks, if a worker lacks them."""
        future: Future[Done] = Future()
        future.set_result(perform(self.work, pack, plain(self.networks), self.flag))
        return future

    def renew(self) -> None:
        """Make ready again after a loss."""

    def stop(self) -> None:
        """Tell the tasks that run to stop."""
        self.flag.set()

    def close(self) -> None:
        """Give back what the engine has made, when no pack runs any more."""
        self.flag.close()


class Threads(Engine):
    """Threads of this process, which share its networks."""

    def __init__(
        self, work: Work, networks: Networks, workers: int, executor: ThreadPoolExecutor | None
    ) -> None:
        super().__init__(work, networks)
        self._own = executor is None
        self._executor = executor or ThreadPoolExecutor(workers, "veq-ensemble")
        self._plain = plain(networks)

    def workers(self) -> int:
        return self._executor._max_workers

    def submit(self, pack: Pack, with_networks: bool) -> Future[Done]:
        return self._executor.submit(perform, self.work, pack, self._plain, self.flag)

    def close(self) -> None:
        if self._own:
            self._executor.shutdown(wait=True)
        super().close()


class Elsewhere(Engine):
    """Any executor whose workers may be other processes, here or on other machines."""

    def __init__(
        self, work: Work, networks: Networks, make: Callable[[], Executor], own: bool
    ) -> None:
        sealed = {name: sealed_or_not(network) for name, network in networks.items()}
        found = {name: kept or networks[name] for name, kept in sealed.items()}
        super().__init__(work, found)
        refs = {
            name: NetworkRef(fingerprint_of(network), kept.path if kept else None)
            for (name, network), kept in zip(found.items(), sealed.values(), strict=True)
        }
        # A worker may be this very process.
        preload({refs[name].fingerprint: network for name, network in plain(found).items()})
        self.work = replace(work, networks=refs, stop=self.flag.path)
        self._make = make
        self._own = own
        self._executor = make()
        if own:
            self.on_loss = None

    def workers(self) -> int:
        executor: Any = self._executor
        for name in ("_max_workers", "num_workers"):
            number = getattr(executor, name, None)
            if isinstance(number, int) and number > 0:
                return number
        return processors()

    def submit(self, pack: Pack, with_networks: bool) -> Future[Done]:
        sent = plain(self.networks) if with_networks else {}
        return self._executor.submit(perform_elsewhere, self.work, pack, sent)

    def renew(self) -> None:
        if self._own:
            self._executor.shutdown(wait=False)
        self._executor = self._make()

    def close(self) -> None:
        if self._own:
            self._executor.shutdown(wait=True)
        forget()
        super().close()


_END_WITH_PARENT = 1  # PR_SET_PDEATHSIG of prctl(2).


def _begin(coordinator: int) -> None:
    # Interrupts are the coordinator's: it tells the workers to stop.
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    # Nobody else tells a worker that the coordinator was killed.
    if sys.platform == "linux":
        ctypes.CDLL(None).prctl(_END_WITH_PARENT, int(signal.SIGKILL))
        if os.getppid() != coordinator:
            os._exit(1)


def loky_pool(workers: int) -> Executor:
    """Processes of this machine, which also take tasks that were written in a notebook."""
    try:
        from loky import ProcessPoolExecutor
    except ImportError as error:
        raise ImportError(
            'processes need loky: install it with pip install "veq[processes]"'
        ) from error
    pool: Executor = ProcessPoolExecutor(workers, initializer=_begin, initargs=(os.getpid(),))
    return pool

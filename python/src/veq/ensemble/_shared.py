"""What processes of one machine share: networks, and the word to stop.

Both lie in memory files of the coordinator's, which other processes of the same user open by its
number and theirs. Where that is not possible, on another machine above all, there is nothing, and
who asks does without.
"""

from __future__ import annotations

import mmap
import os
from collections.abc import Container, Mapping
from dataclasses import dataclass
from functools import cache, cached_property
from pathlib import Path
from typing import Any

from .. import _core
from .._errors import UnsupportedError
from .._network import Network
from ._values import sha256


@cache
def _place() -> tuple[str, str] | None:
    """The machine since it was started, and the processes that know each other by numbers."""
    try:
        boot = Path("/proc/sys/kernel/random/boot_id").read_text()
        return boot, os.readlink("/proc/self/ns/pid")
    except OSError:
        return None


@dataclass(frozen=True)
class MemoryPath:
    """A memory file of one process, for others to open."""

    place: tuple[str, str] | None
    process: int
    descriptor: int
    inode: int
    """Tells it from a later file that has the same number."""

    @classmethod
    def of(cls, descriptor: int) -> MemoryPath:
        """Of this process's."""
        return cls(_place(), os.getpid(), descriptor, os.fstat(descriptor).st_ino)

    @property
    def is_near(self) -> bool:
        """Whether this process is on the same machine."""
        return self.place is not None and self.place == _place()

    def opened(self) -> int | None:
        """A descriptor of one's own; None where the file cannot be had."""
        if not self.is_near:
            return None
        path = f"/proc/{self.process}/fd/{self.descriptor}"
        try:
            descriptor = os.open(path, os.O_RDONLY | os.O_CLOEXEC)
        except OSError:
            return None
        if os.fstat(descriptor).st_ino == self.inode:
            return descriptor
        os.close(descriptor)
        return None


class SealedNetwork:
    """A network in sealed memory, which all processes of the machine read where it lies.

    An ensemble that is run by processes makes one of each of its networks. Who hands over one, and
    keeps no network beside it, has it in memory once.

    Raises
    ------
    veq.UnsupportedError
        Where the system has no such memory: on Linux alone.

    Examples
    --------
    >>> sealed = veq.ensemble.SealedNetwork(veq.lattice([3]))
    >>> sealed.network
    <veq.Network: 3 vertices, 2 edges, undirected>
    """

    def __init__(self, network: Network) -> None:
        self._shared = _core.SharedNetwork(network)
        self.network = Network._of(_core.attach(self._shared.descriptor, True))
        """The network, over that memory. It is for reading: an edit copies."""

    @property
    def bytes(self) -> int:
        """How much memory it takes.

        Examples
        --------
        >>> veq.ensemble.SealedNetwork(veq.gnm(100, 1000, seed=1)).bytes < 30_000
        True
        """
        return self._shared.bytes

    @property
    def path(self) -> MemoryPath:
        """Where other processes find it.

        Examples
        --------
        >>> veq.ensemble.SealedNetwork(veq.lattice([3])).path.is_near
        True
        """
        return MemoryPath.of(self._shared.descriptor)

    @cached_property
    def fingerprint(self) -> str:
        """The SHA-256 of all that the network holds.

        Examples
        --------
        >>> line, ring = veq.lattice([3]), veq.lattice([3], periodic=True)
        >>> sealed = veq.ensemble.SealedNetwork
        >>> sealed(line).fingerprint == sealed(ring).fingerprint
        False
        """
        return sha256(self.network)

    def __reduce__(self) -> Any:
        raise TypeError("sealed memory cannot be pickled: send the network")


@dataclass(frozen=True)
class NetworkRef:
    """A network, for another process to find."""

    fingerprint: str
    path: MemoryPath | None


_known: dict[str, Network] = {}


def preload(networks: Mapping[str, Network]) -> None:
    """Let this process know networks, by their fingerprints."""
    _known.update(networks)


def forget(besides: Container[str] = ()) -> None:
    """Let go of all networks but some, which take memory."""
    for fingerprint in list(_known):
        if fingerprint not in besides:
            _known.pop(fingerprint, None)


def found(ref: NetworkRef) -> Network | None:
    """The network of a reference: one that this process knows, or that it can attach."""
    network = _known.get(ref.fingerprint)
    if network is None and ref.path is not None:
        descriptor = ref.path.opened()
        if descriptor is not None:
            try:
                network = Network._of(_core.attach(descriptor, True))
            except (ValueError, OSError, RuntimeError):  # Another file has that number now.
                return None
            finally:
                os.close(descriptor)
            _known[ref.fingerprint] = network
    return network


def sealed_or_not(network: Network | SealedNetwork) -> SealedNetwork | None:
    """The network in sealed memory, where there is such."""
    if isinstance(network, SealedNetwork):
        return network
    try:
        return SealedNetwork(network)
    except (UnsupportedError, ValueError):  # A value may mean nothing to another process.
        return None


class StopFlag:
    """A word to tasks on this machine that they shall stop. A lost coordinator says it, too."""

    def __init__(self) -> None:
        self._stopped = False
        self._memory: mmap.mmap | None = None
        self._descriptor: int | None = None
        if hasattr(os, "memfd_create"):
            self._descriptor = os.memfd_create("veq ensemble")
            os.ftruncate(self._descriptor, 1)
            self._memory = mmap.mmap(self._descriptor, 1)

    def set(self) -> None:
        """Say it."""
        self._stopped = True
        if self._memory is not None:
            self._memory[0] = 1

    def __call__(self) -> bool:
        return self._stopped

    @property
    def path(self) -> MemoryPath | None:
        """Where other processes find it."""
        return None if self._descriptor is None else MemoryPath.of(self._descriptor)

    def close(self) -> None:
        """Forget it."""
        if self._memory is not None and self._descriptor is not None:
            self._memory.close()
            os.close(self._descriptor)
            self._memory = self._descriptor = None


class SeenFlag:
    """Such a flag of another process's."""

    def __init__(self, path: MemoryPath | None) -> None:
        self._path = path
        descriptor = None if path is None else path.opened()
        self._memory: mmap.mmap | None = None
        if descriptor is not None:
            self._memory = mmap.mmap(descriptor, 1, prot=mmap.PROT_READ)
            os.close(descriptor)

    def __call__(self) -> bool:
        if self._memory is not None and self._memory[0]:
            return True
        if self._path is None or not self._path.is_near:
            return False
        return not os.path.exists(f"/proc/{self._path.process}")

"""Results on the disk, from which a run goes on that was killed.

A folder holds the manifest, which says whose results these are, and what has come so far: a record
for each result, appended; or, where workers add, the total and which tasks are in it, in a file
that is written beside the old one and put in its place.
"""

from __future__ import annotations

import fcntl
import json
import os
import pickle
import struct
import time
import zlib
from collections.abc import Callable, Iterator, Mapping, Sequence
from pathlib import Path
from typing import Any, Self

import numpy as np
from numpy.typing import NDArray

from .._errors import FormatError
from ._work import Outcome

Total = tuple[NDArray[np.bool_], Any]
"""Which tasks are in a total, and the total."""

_FORMAT = 1
_HEAD = struct.Struct("<QQdI")
"""Of a record: the task, the length of the payload, seconds, and the CRC-32 of all but itself."""
_SYNC_SECONDS = 10.0
_SAVE_SECONDS = 2.0


class Checkpoint:
    """The folder of one study, which one run at a time may use.

    Raises
    ------
    ValueError
        "checkpoint DIR is of another study: seed is 7 there and 8 here".
    RuntimeError
        "checkpoint DIR is in use by another run".
    """

    def __init__(self, folder: str | os.PathLike[str], study: Mapping[str, Any]) -> None:
        self.folder = Path(folder)
        self.folder.mkdir(parents=True, exist_ok=True)
        self._lock = open(self.folder / "lock", "ab")  # noqa: SIM115
        try:
            self._claim()
            self._compare({"format": _FORMAT, **study})
            self._records = open(self.folder / "results.bin", "a+b", buffering=0)  # noqa: SIM115
        except BaseException:
            self._lock.close()
            raise
        self._end = 0
        self._synced = self._saved = time.monotonic()
        self._saving = 0.0
        self._unsaved: Callable[[], Total] | None = None

    def _claim(self) -> None:
        try:
            fcntl.flock(self._lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            raise RuntimeError(f"checkpoint {self.folder} is in use by another run") from None

    def _compare(self, study: dict[str, Any]) -> None:
        path = self.folder / "manifest.json"
        if not path.exists():
            return _replace(path, json.dumps(study, indent=1).encode() + b"\n")
        try:
            there = json.loads(path.read_bytes())
            fields = {**there, **study}
        except (ValueError, TypeError):
            raise FormatError(f"{path}: no manifest of a study") from None
        for key in fields:
            if there.get(key) != study.get(key):
                raise ValueError(
                    f"checkpoint {self.folder} is of another study: {key} is "
                    f"{there.get(key)} there and {study.get(key)} here"
                )

    def records(self) -> Iterator[Outcome]:
        """The results that are there. A torn record at the end is cut off."""
        size = os.fstat(self._records.fileno()).st_size
        self._records.seek(0)
        while self._end < size:
            head = self._records.read(_HEAD.size)
            if len(head) < _HEAD.size:
                break
            index, length, seconds, crc = _HEAD.unpack(head)
            if length > size - self._end - _HEAD.size:
                break
            payload = self._records.read(length)
            if len(payload) < length or crc != _crc(head, payload):
                break
            self._end += _HEAD.size + length
            yield Outcome(index, pickle.loads(payload), None, seconds)
        self._records.truncate(self._end)

    def append(self, outcomes: Sequence[Outcome]) -> None:
        """Write results; one that does not fit on the disk leaves the file as it was."""
        try:
            for outcome in outcomes:
                payload = pickle.dumps(outcome.value, 5)
                head = _HEAD.pack(outcome.index, len(payload), outcome.seconds, 0)
                self._write(head[:-4] + _crc(head, payload).to_bytes(4, "little") + payload)
        except BaseException:
            self._records.truncate(self._end)
            raise

    def _write(self, record: bytes) -> None:
        left = memoryview(record)
        while left:
            left = left[self._records.write(left) :]
        self._end += len(record)

    def total(self) -> Total | None:
        """What was kept last."""
        path = self.folder / "total.bin"
        if not path.exists():
            return None
        content = path.read_bytes()
        if len(content) < 4 or zlib.crc32(content[4:]) != int.from_bytes(content[:4], "little"):
            raise FormatError(f"{path}: damaged")
        total: Total = pickle.loads(content[4:])
        return total

    def keep_total(self, total: Callable[[], Total]) -> None:
        """Write the total, at once or soon: no later than after two seconds."""
        self._unsaved = total
        # Long tasks are saved one by one; short ones must not be slowed down by it.
        if time.monotonic() - self._saved >= min(_SAVE_SECONDS, 20 * self._saving):
            self._save_total()

    def _save_total(self) -> None:
        if self._unsaved is None:
            return
        begun = time.monotonic()
        content = pickle.dumps(self._unsaved(), 5)
        crc = zlib.crc32(content).to_bytes(4, "little")
        _replace(self.folder / "total.bin", crc + content)
        self._unsaved = None
        self._saved = time.monotonic()
        self._saving = self._saved - begun

    def tick(self) -> None:
        """Write what has waited for two seconds, and ask the disk for it every ten."""
        now = time.monotonic()
        if now - self._saved >= _SAVE_SECONDS - 0.5:
            self._save_total()
        if now - self._synced >= _SYNC_SECONDS:
            os.fsync(self._records.fileno())
            self._synced = now

    def close(self) -> None:
        """Write all of it, and let others use the folder."""
        try:
            self._save_total()
            os.fsync(self._records.fileno())
        finally:
            self._records.close()
            self._lock.close()

    def __enter__(self) -> Self:
        return self

    def __exit__(self, *raised: object) -> None:
        self.close()


def _crc(head: bytes, payload: bytes) -> int:
    return zlib.crc32(payload, zlib.crc32(head[:-4]))


def _replace(path: Path, content: bytes) -> None:
    beside = path.with_suffix(".new")
    with open(beside, "wb") as file:
        file.write(content)
        file.flush()
        os.fsync(file.fileno())
    os.replace(beside, path)

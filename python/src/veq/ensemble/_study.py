"""Study files: an ensemble as a text, in TOML."""

from __future__ import annotations

import csv
import io
import os
import tomllib
from collections.abc import Mapping, Sequence
from pathlib import Path
from typing import Any

import numpy as np

from .._io import read
from .._network import Network
from .._progress import Progress
from ._ensemble import Ensemble
from ._results import Results
from ._shared import SealedNetwork
from ._tasks import Chain, PreferentialAttachment, RandomNetwork, WalkTask, grid

_KEYS = ("seed", "mode", "engine", "workers", "checkpoint", "output")
_TABLES = ("networks", "task", "grid", "tasks")
_KINDS: dict[str, Any] = {
    "walk": WalkTask,
    "random_network": RandomNetwork,
    "preferential_attachment": PreferentialAttachment,
}


class StudyError(ValueError):
    """A study file says something that cannot be."""


class Study:
    """A study file, whose paths begin in its folder.

    Parameters
    ----------
    path : path
        The file.
    changes : mapping, optional
        Instead of what the file says: "engine", "workers", "checkpoint", "output".
    """

    def __init__(
        self, path: str | os.PathLike[str], changes: Mapping[str, Any] | None = None
    ) -> None:
        self.path = Path(path)
        try:
            self._said = tomllib.loads(self.path.read_text("utf-8"))
        except (tomllib.TOMLDecodeError, UnicodeDecodeError) as error:
            raise StudyError(str(error)) from None
        _check_keys(self._said, (*_KEYS, *_TABLES), "the study")
        self._given = {key: value for key, value in (changes or {}).items() if value is not None}
        self.output = self._path_of("output")
        if self.output is None:
            raise StudyError('there is no output: say output = "results.csv"')
        if self.output.suffix not in (".csv", ".parquet"):
            raise StudyError(f"output {self.output}: a table is .csv or .parquet")
        if "seed" not in self._said:
            raise StudyError("there is no seed: say seed = 1")

    def _path_of(self, key: str) -> Path | None:
        if key in self._given:
            return Path(self._given[key])
        return self.path.parent / self._text(key) if key in self._said else None

    def _text(self, key: str) -> str:
        if not isinstance(self._said[key], str):
            raise StudyError(f"{key} = {self._said[key]!r}: give a text")
        return str(self._said[key])

    def networks(self) -> dict[str, Network]:
        """The networks, read from their files."""
        files = _table(self._said.get("networks", {}), "networks")
        return {name: read(self.path.parent / file) for name, file in files.items()}

    def ensemble(self) -> Ensemble[Any]:
        """What the file describes."""
        networks = self.networks()
        sealed: dict[str, Network | SealedNetwork] = dict(networks)
        if self._engine() == "processes":
            # So that the networks are in memory once.
            sealed = {name: SealedNetwork(networks.pop(name)) for name in list(networks)}
        return Ensemble(
            _task(_table(self._said.get("task", {}), "task")),
            self._tasks(),
            seed=self._said["seed"],
            networks=sealed,
            mode=self._said.get("mode", "substream"),
        )

    def _tasks(self) -> list[dict[str, Any]]:
        if "tasks" in self._said and "grid" in self._said:
            raise StudyError("there are both tasks and a grid: give one of them")
        if "tasks" in self._said:
            tasks: list[dict[str, Any]] = self._said["tasks"]
            return tasks
        axes = _table(self._said.get("grid", {}), "grid")
        return grid(**{key: _axis(key, values) for key, values in axes.items()})

    def _engine(self) -> Any:
        return self._given.get("engine", self._said.get("engine"))

    def run(self, progress: Progress = "auto") -> Results[Any]:
        """Run it, and write the table."""
        results = self.ensemble().run(
            self._engine(),
            workers=self._given.get("workers", self._said.get("workers")),
            checkpoint=self._path_of("checkpoint"),
            progress=progress,
        )
        assert self.output is not None
        write_table(results, self.output)
        return results


def _check_keys(said: Mapping[str, Any], known: Sequence[str], where: str) -> None:
    for key in said:
        if key not in known:
            raise StudyError(f"{where} has no {key!r}: give {', '.join(known)}")


def _table(value: Any, what: str) -> dict[str, Any]:
    if not isinstance(value, dict):
        raise StudyError(f"{what}: give a table")
    return value


def _axis(key: str, values: Any) -> list[Any]:
    """A number stands for so many repetitions."""
    if key == "repetition" and isinstance(values, int) and not isinstance(values, bool):
        return list(range(values))
    if not isinstance(values, list):
        raise StudyError(f"grid: {key} = {values!r} is no list")
    return values


def _task(said: dict[str, Any]) -> Any:
    fields = {key: value for key, value in said.items() if key not in ("kind", "model")}
    kind = said.get("kind", "walk")
    if kind not in _KINDS:
        raise StudyError(f"task: kind {kind!r}: give one of {', '.join(map(repr, _KINDS))}")
    try:
        task = _KINDS[kind](**fields)
        if "model" not in said:
            return task
        model = _task({"kind": "random_network", **_table(said["model"], "task.model")})
    except TypeError as error:
        raise StudyError(f"task: {error}") from None
    if kind != "walk" or isinstance(model, WalkTask | Chain):
        raise StudyError("task: a model grows the network of a walk")
    return Chain(model, task)


def _listed(value: Any) -> Any:
    if isinstance(value, Network):
        raise StudyError("a network fits into no table: collect something else of it")
    return value.tolist() if isinstance(value, np.ndarray) else value


def _cell(value: Any) -> Any:
    if isinstance(_listed(value), list | tuple):
        return " ".join(str(part) for part in np.asarray(value).ravel().tolist())
    if isinstance(value, bool):
        return str(value).lower()
    return value


def _written_csv(columns: Mapping[str, list[Any]]) -> bytes:
    text = io.StringIO(newline="")
    table = csv.writer(text, lineterminator="\n")
    table.writerow(columns)
    table.writerows(map(_cell, row) for row in zip(*columns.values(), strict=True))
    return text.getvalue().encode()


def _written_parquet(columns: Mapping[str, list[Any]]) -> bytes:
    try:
        import pyarrow
        from pyarrow import parquet
    except ImportError:
        raise StudyError('Parquet needs pyarrow: pip install "veq[arrow]"') from None
    listed = {key: [_listed(value) for value in values] for key, values in columns.items()}
    sink = pyarrow.BufferOutputStream()
    parquet.write_table(pyarrow.table(listed), sink)
    return bytes(sink.getvalue())


def write_table(results: Results[Any], path: Path) -> None:
    """A row for each task, in CSV, or in Parquet by the suffix; arrays as numbers with spaces."""
    write = _written_parquet if path.suffix == ".parquet" else _written_csv
    content = write(results.columns())
    beside = path.with_name(path.name + ".new")
    beside.write_bytes(content)
    beside.replace(path)

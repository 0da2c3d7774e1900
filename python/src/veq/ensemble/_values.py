"""Values as bytes that are the same on every machine, to tell whether two are alike.

Pickles are not: they tell whether two strings are one object.
"""

from __future__ import annotations

import dataclasses
import hashlib
import pickle
from collections.abc import Callable, Mapping, Sequence, Set
from functools import partial
from typing import Any

import numpy as np

from .._network import Network

Sink = Callable[[bytes | memoryview], object]


def _part(sink: Sink, kind: bytes, content: bytes) -> None:
    sink(kind + len(content).to_bytes(8, "little"))
    sink(content)


def _array(sink: Sink, array: np.ndarray[Any, Any]) -> None:
    if array.dtype == object:
        return _each(sink, b"O", [array.shape, *array.ravel().tolist()])
    little = np.ascontiguousarray(array.astype(array.dtype.newbyteorder("<"), copy=False))
    _part(sink, b"A", f"{little.dtype.str}{array.shape}".encode())
    sink(little.data.cast("B") if little.size else b"")


def _each(sink: Sink, kind: bytes, values: Sequence[Any]) -> None:
    sink(kind + len(values).to_bytes(8, "little"))
    for value in values:
        encode(value, sink)


def _network(sink: Sink, network: Network) -> None:
    arrays = (network.sources, network.targets, network.vertex_weights, network.edge_weights)
    columns = [sorted(data.items()) for data in (network.vertex_data, network.edge_data)]
    _each(sink, b"G", [network.num_vertices, network.directed, *arrays, *columns])


def _named(sink: Sink, thing: Any) -> bool:
    name = getattr(thing, "__qualname__", None)
    if not callable(thing) or name is None:
        return False
    _part(sink, b"C", f"{thing.__module__}.{name}".encode())
    if "<" in name:  # One of many in the same place: what it does tells it from the others.
        code = thing.__code__
        _each(sink, b"K", [code.co_code, [c for c in code.co_consts if not hasattr(c, "co_code")]])
        _each(sink, b"E", [cell.cell_contents for cell in thing.__closure__ or ()])
    return True


def encode(value: Any, sink: Sink) -> None:
    """Hand the bytes of a value to a function, piece by piece."""
    if isinstance(value, np.generic):
        value = value.item() if value.dtype.kind in "biuf" else np.asarray(value)
    if value is None or isinstance(value, bool | int | float):
        number = value.hex() if isinstance(value, float) else repr(value)
        _part(sink, b"N", number.encode())
    elif isinstance(value, str):
        _part(sink, b"S", value.encode("utf-8", "surrogatepass"))
    elif isinstance(value, bytes | bytearray | memoryview):
        _part(sink, b"B", bytes(value))
    elif isinstance(value, np.ndarray):
        _array(sink, value)
    elif isinstance(value, Network):
        _network(sink, value)
    elif isinstance(value, Mapping):
        _each(sink, b"M", [part for item in value.items() for part in item])
    elif isinstance(value, Set):
        _each(sink, b"U", sorted(sha256(member) for member in value))
    elif dataclasses.is_dataclass(value) and not isinstance(value, type):
        fields = {field.name: getattr(value, field.name) for field in dataclasses.fields(value)}
        _each(sink, b"D", [type(value).__qualname__, fields])
    elif isinstance(value, partial):
        _each(sink, b"P", [value.func, value.args, value.keywords])
    elif isinstance(value, range | list | tuple):
        _each(sink, b"L", value)
    elif not _named(sink, value):
        _part(sink, b"Q", pickle.dumps(value, 4))


def sha256(value: Any) -> str:
    """The SHA-256 of a value's bytes, in hexadecimal digits."""
    made = hashlib.sha256()
    encode(value, made.update)
    return made.hexdigest()

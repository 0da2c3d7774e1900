"""What a network is when it is pickled: arrays, out of band where the protocol can."""

from __future__ import annotations

import pickle
from collections.abc import Callable
from typing import TYPE_CHECKING, Any

import numpy as np

from . import _core

if TYPE_CHECKING:
    from ._columns import Columns
    from ._network import Network

_VERSION = 1


# Of an array: the type of its elements, its shape and its bytes. NumPy's own pickles of arrays name
# modules that not every NumPy has.
Saved = tuple[str, tuple[int, ...], Any]


def _saved(array: np.ndarray[Any, Any] | None, protocol: int) -> Saved | None:
    if array is None:
        return None
    array = np.ascontiguousarray(array)
    data = pickle.PickleBuffer(array.data) if protocol >= 5 else array.tobytes()
    return array.dtype.str, array.shape, data


def _array(saved: Saved) -> np.ndarray[Any, Any]:
    kind, shape, data = saved
    return np.ndarray(shape, kind, data)


def _saved_columns(columns: Columns, protocol: int) -> list[tuple[str, Any]]:
    saved: list[tuple[str, Any]] = []
    for key, column in columns.items():
        kept = column.tolist() if column.dtype == object else _saved(column, protocol)
        saved.append((key, kept))
    return saved


def reduced(network: Network, protocol: int) -> tuple[Callable[..., Any], tuple[Any, ...]]:
    """For ``Network.__reduce_ex__``."""
    header = {"version": _VERSION, "n": network.num_vertices, "directed": network.directed}
    return rebuilt, (
        type(network),
        header,
        _saved(network.sources, protocol),
        _saved(network.targets, protocol),
        _saved(network.vertex_weights, protocol),
        _saved(network.edge_weights, protocol),
        _saved_columns(network.vertex_data, protocol),
        _saved_columns(network.edge_data, protocol),
    )


def rebuilt(
    cls: type[Network],
    header: dict[str, Any],
    sources: Saved,
    targets: Saved,
    vertex_weights: Saved | None,
    edge_weights: Saved | None,
    vertex_columns: list[tuple[str, Saved | list[Any]]],
    edge_columns: list[tuple[str, Saved | list[Any]]],
) -> Network:
    """The network of a pickle of this or an earlier release."""
    if header["version"] > _VERSION:
        raise pickle.UnpicklingError(
            f"a network of version {header['version']}, written by a later veq"
        )
    network = cls(
        _array(sources),
        _array(targets),
        n=header["n"],
        directed=header["directed"],
        vertex_weights=None if vertex_weights is None else _array(vertex_weights),
        edge_weights=None if edge_weights is None else _array(edge_weights),
    )
    for edges, columns in enumerate((vertex_columns, edge_columns)):
        data = network.edge_data if edges else network.vertex_data
        for key, column in columns:
            # As it was: a list of numbers alone would become a column of numbers.
            if isinstance(column, list):
                _core.set_values(network, key, column, bool(edges))
            else:
                data[key] = _array(column)
    return network

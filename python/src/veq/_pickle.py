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


def _saved(columns: Columns) -> list[tuple[str, Any]]:
    saved: list[tuple[str, Any]] = []
    for key, column in columns.items():
        kept = column.tolist() if column.dtype == object else _buffer(column)
        saved.append((key, kept))
    return saved


def _buffer(array: np.ndarray[Any, Any] | None) -> Any:
    """NumPy pickles arrays out of band by itself, if they are contiguous."""
    return None if array is None else np.ascontiguousarray(array)


def reduced(network: Network, protocol: int) -> tuple[Callable[..., Any], tuple[Any, ...]]:
    """For ``Network.__reduce_ex__``."""
    header = {"version": _VERSION, "n": network.num_vertices, "directed": network.directed}
    return rebuilt, (
        type(network),
        header,
        _buffer(network.sources),
        _buffer(network.targets),
        _buffer(network.vertex_weights),
        _buffer(network.edge_weights),
        _saved(network.vertex_data),
        _saved(network.edge_data),
    )


def rebuilt(
    cls: type[Network],
    header: dict[str, Any],
    sources: Any,
    targets: Any,
    vertex_weights: Any,
    edge_weights: Any,
    vertex_columns: list[tuple[str, Any]],
    edge_columns: list[tuple[str, Any]],
) -> Network:
    """The network of a pickle of this or an earlier release."""
    if header["version"] > _VERSION:
        raise pickle.UnpicklingError(
            f"a network of version {header['version']}, written by a later veq"
        )
    network = cls(
        sources,
        targets,
        n=header["n"],
        directed=header["directed"],
        vertex_weights=vertex_weights,
        edge_weights=edge_weights,
    )
    for edges, columns in enumerate((vertex_columns, edge_columns)):
        data = network.edge_data if edges else network.vertex_data
        for key, column in columns:
            # As it was: a list of numbers alone would become a column of numbers.
            if isinstance(column, list):
                _core.set_values(network, key, column, bool(edges))
            else:
                data[key] = column
    return network

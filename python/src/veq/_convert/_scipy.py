"""Sparse arrays of SciPy."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np

from . import _columns

if TYPE_CHECKING:
    from .._network import Network


def to_scipy(network: Network, dtype: Any) -> Any:
    from scipy import sparse

    n = network.num_vertices
    weights = _columns.weights_of(network, True)
    values = np.ones(network.num_edges) if weights is None else weights
    values = values.astype(np.float64 if dtype is None else dtype)
    index = np.int32 if max(n, 2 * network.num_edges) < 2**31 else np.int64
    sources, targets = network.sources, network.targets
    if network.directed or not (sources == targets).any():
        indptr, indices, edges = network.adjacency()
        made = sparse.csr_array(
            (values[edges], indices.astype(index), indptr.astype(index)), shape=(n, n)
        )
    else:
        other = sources != targets
        rows: Any = np.concatenate([sources, targets[other]]).astype(index)
        columns: Any = np.concatenate([targets, sources[other]]).astype(index)
        entries = np.concatenate([values, values[other]])
        made = sparse.coo_array((entries, (rows, columns)), shape=(n, n)).tocsr()
    made.sum_duplicates()
    return made


def from_scipy(cls: type[Network], matrix: Any, directed: bool) -> Network:
    from scipy import sparse

    entries: Any = sparse.coo_array(matrix)
    rows, columns = entries.coords
    if entries.shape[0] != entries.shape[1]:
        raise ValueError(f"a matrix of shape {entries.shape}: as many columns as rows")
    values = entries.data
    if not directed:
        if abs(entries - entries.T).sum() != 0:
            raise ValueError("the matrix is not symmetric: give directed=True")
        upper = rows <= columns
        rows, columns, values = rows[upper], columns[upper], values[upper]
    network = cls(rows, columns, n=entries.shape[0], directed=directed, edge_weights=values)
    if _columns.inexact(values):
        network.edge_data[_columns.EXACT] = values.astype(np.float64)
    return network

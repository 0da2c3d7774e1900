"""Model networks.

All draw from ``seed``: an integer from 1 to 2**32 - 1, a `RandomState`, which is moved, or None for
the process's own sequence. The same seed gives the same network as in C++, on every machine.
"""

from __future__ import annotations

from collections.abc import Callable
from typing import Any, Literal

import numpy as np
from numpy.typing import ArrayLike

from . import _arrays, _core
from ._network import Network
from ._progress import Progress, following
from ._random import Seed, drawn_from


def _made(
    make: Callable[..., _core.Network], progress: Progress, *arguments: Any, seed: Seed
) -> Network:
    random = drawn_from(seed)
    with following(progress, "draws") as call:
        return Network._of(make(*arguments, random, call))


def gnp(
    n: int, p: float, *, directed: bool = False, seed: Seed = None, progress: Progress = "auto"
) -> Network:
    """Each pair of different vertices is linked with probability ``p``. Expected O(n + m).

    Examples
    --------
    >>> veq.gnp(4, 1.0, seed=1).num_edges
    6
    """
    return _made(_core.gnp, progress, _arrays.count(n, "n"), float(p), bool(directed), seed=seed)


def gnm(
    n: int, m: int, *, directed: bool = False, seed: Seed = None, progress: Progress = "auto"
) -> Network:
    """``m`` edges between different pairs of different vertices, every such set alike.

    Examples
    --------
    >>> veq.gnm(4, 6, seed=1).num_edges
    6
    """
    counts = _arrays.count(n, "n"), _arrays.count(m, "m")
    return _made(_core.gnm, progress, *counts, bool(directed), seed=seed)


def barabasi_albert(n: int, m: int, *, seed: Seed = None, progress: Progress = "auto") -> Network:
    """Preferential attachment: each vertex from ``m`` on links to ``m`` different older ones.

    Examples
    --------
    >>> veq.barabasi_albert(10, 2, seed=1).num_edges
    16
    """
    counts = _arrays.count(n, "n"), _arrays.count(m, "m")
    return _made(_core.barabasi_albert, progress, *counts, seed=seed)


def configuration(
    degrees: ArrayLike,
    law: Literal["pairing", "simple"] = "pairing",
    *,
    seed: Seed = None,
    progress: Progress = "auto",
) -> Network:
    """A network with the given degrees; ``"simple"`` without loops and parallel edges.

    Examples
    --------
    >>> veq.configuration([2, 1, 1], seed=1).degrees().tolist()
    [2, 1, 1]
    """
    if law not in ("pairing", "simple"):
        raise ValueError(f"law {law!r}: give one of 'pairing', 'simple'")
    each = _arrays.counts(degrees, "degrees")
    return _made(_core.configuration, progress, each, law == "simple", seed=seed)


def watts_strogatz(
    n: int, k: int, p: float, *, seed: Seed = None, progress: Progress = "auto"
) -> Network:
    """A ring linked to the ``k`` next vertices on each side, each edge redrawn with ``p``.

    Examples
    --------
    >>> veq.watts_strogatz(6, 1, 0.0, seed=1).degrees().tolist()
    [2, 2, 2, 2, 2, 2]
    """
    counts = _arrays.count(n, "n"), _arrays.count(k, "k")
    return _made(_core.watts_strogatz, progress, *counts, float(p), seed=seed)


def lattice(sizes: ArrayLike, *, periodic: bool = False, progress: Progress = "auto") -> Network:
    """The grid of any number of dimensions; vertex x + sizes[0] y + ... is at (x, y, ...).

    Examples
    --------
    >>> veq.lattice([3, 2]).num_edges
    7
    """
    each = _arrays.counts(sizes, "sizes")
    with following(progress, "edges") as call:
        return Network._of(_core.lattice(each, bool(periodic), call))


def geometric(
    n: int,
    radius: float,
    *,
    dimensions: int = 2,
    seed: Seed = None,
    progress: Progress = "auto",
) -> Network:
    """Vertices anywhere in the unit square or cube, linked where they are near; "Position".

    Examples
    --------
    >>> veq.geometric(5, 2.0, seed=1).num_edges
    10
    """
    numbers = _arrays.count(n, "n"), float(radius), _arrays.count(dimensions, "dimensions")
    return _made(_core.geometric, progress, *numbers, seed=seed)


def block_model(
    sizes: ArrayLike,
    probabilities: ArrayLike,
    *,
    directed: bool = False,
    seed: Seed = None,
    progress: Progress = "auto",
) -> Network:
    """The stochastic block model; ``probabilities`` has shape (blocks, blocks).

    Examples
    --------
    >>> veq.block_model([2, 2], [[1, 0], [0, 1]], seed=1).edges.tolist()
    [[0, 1], [2, 3]]
    """
    shares = np.ascontiguousarray(probabilities, dtype=np.float64).ravel()
    each = _arrays.counts(sizes, "sizes")
    return _made(_core.block, progress, each, shares, bool(directed), seed=seed)


def rewired(
    network: Network, tries: int, *, seed: Seed = None, progress: Progress = "auto"
) -> Network:
    """Pairs of edges exchange their targets: all degrees stay, and no loops or parallels come.

    Examples
    --------
    >>> veq.rewired(veq.lattice([4]), 10, seed=1).degrees().tolist()
    [1, 2, 2, 1]
    """
    return _made(_core.rewired, progress, network, _arrays.count(tries, "tries"), seed=seed)


def preferential_attachment(
    n: int, degree: int, *, seed: Seed = None, progress: Progress = "auto"
) -> Network:
    """What ``veq generate barabasi`` grows: half of ``degree`` links from each new vertex.

    Examples
    --------
    >>> veq.preferential_attachment(10, 4, seed=1).num_edges
    16
    """
    counts = _arrays.count(n, "n"), _arrays.count(degree, "degree")
    return _made(_core.preferential_attachment, progress, *counts, seed=seed)


def random_network(
    n: int, degree: float, *, seed: Seed = None, progress: Progress = "auto"
) -> Network:
    """What ``veq generate random`` grows: each pair is linked with probability ``degree / n``.

    Vertices after the last one with an edge are left out.

    Examples
    --------
    >>> veq.random_network(4, 4, seed=1).num_edges
    6
    """
    number = _arrays.count(n, "n")
    return _made(_core.random_network, progress, number, float(degree), seed=seed)

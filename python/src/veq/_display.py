"""How a network shows itself."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

import numpy as np
from numpy.typing import ArrayLike

from . import _arrays
from ._drawing import force_layout

if TYPE_CHECKING:
    from ._network import Network

_ROWS = 5
_LENGTH = 4096
_CELL = 32


def _counted(number: int, one: str, more: str) -> str:
    return f"{number} {one if number == 1 else more}"


def _kind(network: Network) -> list[str]:
    words = [
        _counted(network.num_vertices, "vertex", "vertices"),
        _counted(network.num_edges, "edge", "edges"),
        "directed" if network.directed else "undirected",
    ]
    if network.vertex_weighted:
        words.append("vertex-weighted")
    if network.edge_weighted:
        words.append("edge-weighted")
    return words


def line(network: Network) -> str:
    """For ``repr``."""
    words = _kind(network)
    keys = [*network.vertex_data, *network.edge_data]
    if keys:
        words.append("columns " + ", ".join(keys))
    return f"<veq.Network: {', '.join(words)}>"


def _escaped(text: str) -> str:
    from html import escape  # Not at the top, for it takes its time.

    return escape(text)


def _cell(value: object) -> str:
    text = "" if value is None else str(value)
    return _escaped(text if len(text) <= _CELL else text[: _CELL - 1] + "…")


def table(network: Network) -> str:
    """For notebooks: what it is, and the first rows of its columns; at most 4 kB, no script."""
    head = "".join(("<p>", _escaped(f"veq.Network: {', '.join(_kind(network))}"), "</p>"))
    rows: list[str] = []
    room = _LENGTH - len(head) - 100
    for whose, columns in (("vertex", network.vertex_data), ("edge", network.edge_data)):
        for key in columns:
            first = columns.head(key, _ROWS)[:_ROWS].tolist()
            cells = "".join(f"<td>{_cell(value)}</td>" for value in first)
            row = f"<tr><th>{whose}</th><th>{_cell(key)}</th>{cells}</tr>"
            if sum(map(len, rows)) + len(row) > room:
                break
            rows.append(row)
    return head + (f"<table>{''.join(rows)}</table>" if rows else "")


def _positions(network: Network, positions: ArrayLike | None) -> np.ndarray[Any, Any]:
    if positions is None and "Position" in network.vertex_data:
        positions = network.vertex_data["Position"]
    if positions is None:
        return force_layout(network)
    places = np.asarray(positions, dtype=float)
    if places.ndim != 2 or places.shape[0] != network.num_vertices or places.shape[1] < 2:
        raise ValueError(
            f"positions of shape {places.shape} for {network.num_vertices} vertices: (n, 2)"
        )
    return places[:, :2]


def _shades(network: Network, key: str) -> np.ndarray[Any, Any]:
    """A number for each vertex: of a column of texts, the place of the text among them."""
    column = network.vertex_data[key]
    if column.ndim == 2:
        raise ValueError(f"column {key}: vectors are no colours")
    if column.dtype != object:
        return column
    if all(value is None or isinstance(value, (int, float, np.number)) for value in column):
        return column.astype(float)
    return np.unique(network.vertex_data.texts(key), return_inverse=True)[1]


def plot(
    self: Network,
    ax: Any = None,
    *,
    positions: ArrayLike | None = None,
    color: str | ArrayLike | None = None,
    size: ArrayLike = 30.0,
    names: bool = False,
    max_edges: int = 50_000,
) -> Any:
    """Draw the network by matplotlib, and give the axes.

    Parameters
    ----------
    positions : array_like of shape (n, 2), optional
        By default the column "Position", else as `force_layout` places them.
    color
        A colour, the key of a column, or one number for each vertex, such as visits. Texts that
        are alike have one colour.
    names
        Whether to write the names beside the vertices.
    max_edges
        Of more edges than these an evenly spaced part is drawn.

    Examples
    --------
    >>> import matplotlib
    >>> matplotlib.use("Agg")
    >>> axes = veq.geometric(20, 0.3, seed=1).plot(color="red")
    >>> len(axes.collections)  # Edges and vertices.
    2
    """
    try:
        from matplotlib import pyplot
        from matplotlib.collections import LineCollection
    except ImportError as error:
        raise ImportError("plot() needs matplotlib: pip install 'veq[plot]'") from error
    axes = pyplot.gca() if ax is None else ax
    places = _positions(self, positions)
    most = _arrays.count(max_edges, "max_edges")
    edges = self.edges[:: max(1, -(-self.num_edges // most))] if most else self.edges[:0]
    axes.add_collection(
        LineCollection(places[edges], colors="0.6", linewidths=0.5, zorder=1)  # type: ignore[arg-type]
    )
    is_key = isinstance(color, str) and color in self.vertex_data
    shade = _shades(self, color) if is_key else color  # type: ignore[arg-type]
    axes.scatter(places[:, 0], places[:, 1], c=shade, s=size, zorder=2)
    if names:
        for place, name in zip(places, self.names, strict=True):
            axes.annotate(name, place, xytext=(3, 3), textcoords="offset points")
    axes.set_aspect("equal")
    axes.set_axis_off()
    return axes

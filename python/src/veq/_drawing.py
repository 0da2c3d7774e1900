"""Layouts, and pages that show a network and replay a walk."""

from __future__ import annotations

import operator
import os
from collections.abc import Sequence
from typing import TYPE_CHECKING, Literal

from . import _arrays, _core, _io
from ._ask import FloatArray
from ._progress import Progress, following

if TYPE_CHECKING:
    from ._network import Network
    from ._walkers import WalkRecord

Layout = Literal["auto", "force", "given", "circle"]

_MOST_SHOWN = 10_000_000
"""Bytes of a page that a notebook is given."""


class Page:
    """One file of HTML that shows a network and replays a walk in any browser; from `Network.show`.

    A notebook shows it in a frame of its own, which reaches neither the notebook nor the network.

    Examples
    --------
    >>> veq.Network([0, 1], [1, 2]).show(title="Three").html.count("<title>Three</title>")
    1
    """

    __slots__ = ("height", "html")

    def __init__(self, html: str, height: int = 600) -> None:
        self.html = html
        """All of it: nothing else is needed, and nothing is fetched."""
        self.height = height
        """How many pixels it gets in a notebook."""

    def save(self, path: _io.PathName) -> None:
        """Write the page to a file, atomically.

        Raises
        ------
        OSError
            Why it could not be written.

        Examples
        --------
        >>> import os, tempfile
        >>> with tempfile.TemporaryDirectory() as folder:
        ...     veq.Network([0, 1], [1, 2]).show().save(folder + "/path.html")
        ...     os.listdir(folder)
        ['path.html']
        """
        try:
            _core.save_bytes(os.fsencode(path), self.html.encode())
        except OSError as error:
            raise _io._with_path(error, os.fsdecode(path)) from None

    def open(self) -> str:
        """Show the page in the browser, and give the name of the temporary file that it is in.

        Examples
        --------
        >>> import os, webbrowser
        >>> webbrowser.open = print  # for this example, instead of a browser
        >>> name = veq.Network([0, 1], [1, 2]).show().open()  # doctest: +ELLIPSIS
        file://...veq-...html
        >>> os.remove(name)
        """
        import tempfile
        import webbrowser

        handle, name = tempfile.mkstemp(prefix="veq-", suffix=".html")
        with os.fdopen(handle, "w", encoding="utf-8") as file:
            file.write(self.html)
        webbrowser.open(f"file://{name}")
        return name

    def _repr_html_(self) -> str:
        from html import escape

        size = len(self.html)
        if size > _MOST_SHOWN:
            return (
                f"<p>This page has {size / 1e6:.0f} MB, too much for a notebook: "
                "<code>page.save('network.html')</code> writes it to a file, and "
                "<code>page.open()</code> shows it in a browser.</p>"
            )
        return (
            '<iframe sandbox="allow-scripts allow-downloads" width="100%" '
            f'height="{self.height}" style="border:0" srcdoc="{escape(self.html)}"></iframe>'
        )

    def __repr__(self) -> str:
        return f"<veq.Page: {len(self.html)} bytes>"


def force_layout(
    self: Network,
    *,
    seed: int = 1,
    weights: bool = False,
    iterations: int | None = None,
    progress: Progress = "auto",
) -> FloatArray:
    """Where neighbours are near each other and all others apart, of shape (n, 2), within -1 and 1.

    The same on every machine. The process's sequence of random numbers is left alone.

    Parameters
    ----------
    seed
        Another number gives another drawing of the same kind.
    weights
        Whether edges of more weight draw their ends closer together.
    iterations
        How often all vertices are moved on each level; by default as often as the size allows.

    Examples
    --------
    >>> network = veq.lattice([4, 4])
    >>> network.force_layout().shape
    (16, 2)
    """
    number = operator.index(seed)
    if not 0 <= number < 2**32:
        raise ValueError(f"seed {seed}: give 0 to 4294967295")
    rounds = 0 if iterations is None else _arrays.count(iterations, "iterations")
    with following(progress, "moves") as call:
        return _core.force_layout(self, rounds, number, weights, call)


def show(
    self: Network,
    *,
    walk: WalkRecord | None = None,
    title: str | None = None,
    layout: Layout = "auto",
    color: str | None = None,
    size: str | None = None,
    columns: Sequence[str] | None = None,
    height: int = 600,
    progress: Progress = "auto",
) -> Page:
    """A page that shows the network, and walks a recorded walk again; up to 200,000 vertices.

    Parameters
    ----------
    walk
        From `Walkers.record`, on this network.
    layout
        ``"force"``, ``"given"`` for the column "Position", or ``"circle"``; by default what the
        column says, and by force where there is none.
    color
        What to colour by at first: ``"degree"``, ``"visits"`` or the key of a column.
    size
        Likewise, also ``"constant"`` and ``"strength"``; a column of numbers.
    columns
        The keys of the columns that can be looked at; by default the first eight.
    height
        How many pixels a notebook gives the page.

    Raises
    ------
    ValueError
        What is too large, and what to do; a column that is not there.

    Examples
    --------
    >>> network = veq.Network([0, 1, 2], [1, 2, 0])
    >>> record = veq.Walkers(network, [0]).record(10, seed=1)
    >>> page = network.show(walk=record, title="A triangle")
    >>> page.html.count("<title>A triangle</title>")
    1
    """
    name = title or f"A network of {self.num_vertices} vertices"
    with following(progress, "moves") as call:
        made = _core.page(
            self,
            None if walk is None else walk._core,
            name,
            layout,
            None if columns is None else _arrays.texts(columns, "column"),
            color or "",
            size or "",
            "veq.Network.show()",
            None if walk is None else walk.seed,
            call,
        )
    return Page(made.decode(), _arrays.count(height, "height"))

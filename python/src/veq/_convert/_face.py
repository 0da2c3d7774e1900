"""The converters as the network has them."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, Literal, cast

from .._ask import Asking
from . import _frames, _graph_tool, _igraph, _networkx, _scipy
from ._columns import Other
from ._networkx import Labels

if TYPE_CHECKING:
    from .._network import Network


class Converting(Asking):
    """Other libraries' graphs. They are imported when they are asked for, and not before.

    The order of vertices and edges stays, and so do all columns. Weights are "weight" there; those
    that a float of 32 bits does not hold are kept, in a column "Weight", too. Vectors are tuples,
    and what is not set is left out, or None.
    """

    __slots__ = ()

    def to_networkx(
        self, *, labels: Labels = "index", multigraph: bool | Literal["auto"] = "auto"
    ) -> Any:
        """A graph of NetworkX; a ``Multi*`` one if there are parallel edges.

        Nodes are the indices, or the names with ``labels="name"``.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2]).to_networkx().number_of_edges()
        2
        """
        return _networkx.to_networkx(cast("Network", self), labels, multigraph)

    @classmethod
    def from_networkx(cls, graph: Any, *, other: Other = "error") -> Network:
        """The network of a graph of NetworkX.

        Nodes that are not 0, 1, 2, ... become the column "Name", as texts, or "Label" where they
        have an attribute "Name". Edges come in NetworkX's own order. Attributes that no column can
        hold are an error, or become texts with ``other="text"``.

        Examples
        --------
        >>> import networkx
        >>> veq.Network.from_networkx(networkx.path_graph(4)).num_edges
        3
        """
        return _networkx.from_networkx(cast("type[Network]", cls), graph, other)

    def to_igraph(self) -> Any:
        """A graph of igraph; the column "Name" is its "name".

        Which end of an undirected edge comes first is not kept there.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2]).to_igraph().ecount()
        2
        """
        return _igraph.to_igraph(cast("Network", self))

    @classmethod
    def from_igraph(cls, graph: Any, *, other: Other = "error") -> Network:
        """The network of a graph of igraph.

        Examples
        --------
        >>> import igraph
        >>> veq.Network.from_igraph(igraph.Graph.Ring(5)).num_edges
        5
        """
        return _igraph.from_igraph(cast("type[Network]", cls), graph, other)

    def to_graph_tool(self) -> Any:
        """A graph of graph-tool, with a property map for each column.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2]).to_graph_tool().num_edges()  # doctest: +SKIP
        2
        """
        return _graph_tool.to_graph_tool(cast("Network", self))

    @classmethod
    def from_graph_tool(cls, graph: Any, *, other: Other = "error") -> Network:
        """The network of a graph of graph-tool, or of what its filters leave of one.

        Edges come by their numbers there. Small integers and floats become those of 64 bits.

        Examples
        --------
        >>> veq.Network.from_graph_tool(graph_tool.Graph(3)).num_vertices  # doctest: +SKIP
        3
        """
        return _graph_tool.from_graph_tool(cast("type[Network]", cls), graph, other)

    def to_scipy(self, dtype: Any = None) -> Any:
        """The sparse matrix (CSR) of the weights, of shape (n, n), or of the numbers of edges.

        A loop counts once, as with NetworkX; parallel edges are summed. Columns do not go along.

        Examples
        --------
        >>> veq.Network([0, 1], [1, 2]).to_scipy().toarray().tolist()
        [[0.0, 1.0, 0.0], [1.0, 0.0, 1.0], [0.0, 1.0, 0.0]]
        """
        return _scipy.to_scipy(cast("Network", self), dtype)

    @classmethod
    def from_scipy(cls, matrix: Any, *, directed: bool = False) -> Network:
        """An edge for each stored entry; of an undirected network for those at i <= j.

        Examples
        --------
        >>> veq.Network.from_scipy([[0, 1], [1, 0]]).num_edges
        1
        """
        return _scipy.from_scipy(cast("type[Network]", cls), matrix, directed)

    def to_pandas(self) -> tuple[Any, Any]:
        """The data frames of the edges ("source", "target", ...) and of the vertices.

        Examples
        --------
        >>> edges, vertices = veq.Network([0, 1], [1, 2]).to_pandas()
        >>> list(edges.columns), len(vertices)
        (['source', 'target'], 3)
        """
        return _frames.to_pandas(cast("Network", self))

    def to_polars(self, *, other: Other = "error") -> tuple[Any, Any]:
        """The data frames of the edges and of the vertices ("index", ...).

        A column of values of several kinds is an error, or becomes texts with ``other="text"``.

        Examples
        --------
        >>> edges, vertices = veq.Network([0, 1], [1, 2]).to_polars()
        >>> edges.columns, len(vertices)
        (['source', 'target'], 3)
        """
        return _frames.to_polars(cast("Network", self), other)

    def to_arrow(self, *, other: Other = "error") -> tuple[Any, Any]:
        """The Arrow tables of the edges and of the vertices ("index", ...), as `to_polars`.

        Examples
        --------
        >>> edges, vertices = veq.Network([0, 1], [1, 2]).to_arrow()
        >>> edges.column_names, len(vertices)
        (['source', 'target'], 3)
        """
        return _frames.to_arrow(cast("Network", self), other)

    @classmethod
    def from_frames(
        cls, edges: Any, vertices: Any = None, *, directed: bool = False, other: Other = "error"
    ) -> Network:
        """The network of tables of pandas, polars or Arrow with columns "source" and "target".

        The rows of vertices are in their order, unless they have a column "index" or, in pandas,
        an index of integers: then these say which is which.

        Examples
        --------
        >>> import pandas
        >>> edges = pandas.DataFrame({"source": [0, 1], "target": [1, 2], "weight": [0.5, 2]})
        >>> veq.Network.from_frames(edges).edge_weights.tolist()
        [0.5, 2.0]
        """
        return _frames.from_frames(cast("type[Network]", cls), edges, vertices, directed, other)

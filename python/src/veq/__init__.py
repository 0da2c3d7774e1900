"""Complex networks: build, question, edit, generate, and walk them at random.

Vertices and edges are numbers from 0 on, and what there is of them are NumPy arrays.

Examples
--------
>>> import veq
>>> network = veq.Network([0, 0, 1], [1, 2, 2])
>>> network.degrees()
array([2, 2, 2])
>>> walkers = veq.Walkers(network, [0])
>>> walkers.walk(30, choice="even", seed=1).steps
30
"""

from . import _core
from ._ask import Diameter, DistanceHistogram, PageRank, Path
from ._columns import Columns
from ._derive import Part, United
from ._drawing import Page
from ._errors import FormatError, ReadWarning, StoppedError, UnsupportedError
from ._io import Note, read, reads
from ._models import (
    barabasi_albert,
    block_model,
    configuration,
    geometric,
    gnm,
    gnp,
    lattice,
    preferential_attachment,
    random_network,
    rewired,
    watts_strogatz,
)
from ._network import Adjacency, Edge, Network, Vertex
from ._parallelism import parallelism, set_parallelism
from ._random import RandomState, random_state, seed, set_random_state
from ._walk_network import WalkNetwork, WalkNetworkSize
from ._walkers import Coverage, HittingTimes, Paths, Walk, Walkers, WalkLaw, WalkRecord

__version__ = _core.version

__all__ = [
    "Adjacency",
    "Columns",
    "Coverage",
    "Diameter",
    "DistanceHistogram",
    "Edge",
    "FormatError",
    "HittingTimes",
    "Network",
    "Note",
    "Page",
    "PageRank",
    "Part",
    "Path",
    "Paths",
    "RandomState",
    "ReadWarning",
    "StoppedError",
    "United",
    "UnsupportedError",
    "Vertex",
    "Walk",
    "WalkLaw",
    "WalkNetwork",
    "WalkNetworkSize",
    "WalkRecord",
    "Walkers",
    "barabasi_albert",
    "block_model",
    "configuration",
    "geometric",
    "gnm",
    "gnp",
    "lattice",
    "parallelism",
    "preferential_attachment",
    "random_network",
    "random_state",
    "read",
    "reads",
    "rewired",
    "seed",
    "set_parallelism",
    "set_random_state",
    "watts_strogatz",
]

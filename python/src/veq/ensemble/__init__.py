"""Many runs, many machines, one sequence: ensembles of walks and networks.

Each task of an ensemble draws numbers that follow from the seed and its number alone. So the result
depends on the list of tasks, and not on how many workers there are, in which order they finish, or
which of them are lost.

Examples
--------
>>> import veq.ensemble
>>> walk = veq.ensemble.WalkTask(starts=[0], until=1.0, choice="even", collect=("steps",))
>>> tasks = veq.ensemble.grid(memory=[1, 2, 4], repetition=range(10))
>>> study = veq.ensemble.Ensemble(walk, tasks, seed=1, networks=veq.lattice([9], periodic=True))
>>> results = study.run(workers=2)
>>> results.sha256() == study.run(workers=0).sha256()
True
"""

from ._context import Context, TaskError
from ._ensemble import Ensemble
from ._reductions import Reduction, histogram, maximum, minimum, summed
from ._results import Results
from ._shared import SealedNetwork
from ._tasks import Chain, PreferentialAttachment, RandomNetwork, WalkTask, grid

__all__ = [
    "Chain",
    "Context",
    "Ensemble",
    "PreferentialAttachment",
    "RandomNetwork",
    "Reduction",
    "Results",
    "SealedNetwork",
    "TaskError",
    "WalkTask",
    "grid",
    "histogram",
    "maximum",
    "minimum",
    "summed",
]

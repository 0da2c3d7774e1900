"""What workers do: packs of tasks, one after the other, each with a random state of its own."""

from __future__ import annotations

import pickle
import time
import traceback
from collections.abc import Callable, Mapping, Sequence
from dataclasses import dataclass, field, replace
from functools import lru_cache
from typing import Any, NamedTuple

from .. import __version__
from .._network import Network
from .._random import RandomState
from ._context import Context, Stopped
from ._reductions import Reduction
from ._shared import MemoryPath, NetworkRef, SeenFlag, forget, found, preload
from ._tasks import Counting


@dataclass(frozen=True, slots=True)
class Job:
    """One task of the list."""

    index: int
    parameters: Mapping[str, Any]
    draws_before: int | None
    """Where it begins in the seed's one sequence; None for a substream of its own."""


@dataclass(frozen=True)
class Work:
    """What all tasks of a run have in common."""

    task: Callable[..., Any]
    seed: int
    reduction: Reduction | None
    version: str
    networks: Mapping[str, NetworkRef] = field(default_factory=dict)
    stop: MemoryPath | None = None

    @property
    def adds(self) -> bool:
        """Whether workers add results up."""
        return self.reduction is not None and self.reduction.exact


@dataclass(frozen=True, slots=True)
class Outcome:
    """What became of a task."""

    index: int
    value: Any
    error: BaseException | None
    seconds: float


class Done(NamedTuple):
    """What became of a pack: a tuple that every release of the package can read."""

    version: str
    outcomes: list[Outcome]
    total: Any = None
    """The sum of the values of all that succeeded, where workers add, and nothing else."""
    missing: tuple[str, ...] = ()
    """The networks that this worker does not have, for want of which nothing was done."""


def state_of(seed: RandomState, job: Job) -> RandomState:
    """Where a task draws."""
    if job.draws_before is None:
        return seed.substream(job.index)
    return seed.after(job.draws_before)


def performed(
    work: Work,
    job: Job,
    seed: RandomState,
    networks: Mapping[str, Network],
    stop: Callable[[], bool],
) -> Any:
    """The result of one task."""
    state = state_of(seed, job)
    result = work.task(Context(job.index, work.seed, state, networks, stop), **job.parameters)
    if job.draws_before is not None:
        check_draws(work, job, seed, state)
    return result if work.reduction is None else work.reduction.of(result)


def check_draws(work: Work, job: Job, seed: RandomState, after: RandomState) -> None:
    """ValueError for a task that drew another number of times than it had said."""
    assert isinstance(work.task, Counting)
    assert job.draws_before is not None
    said = work.task.draws(**job.parameters)
    if said is None or after != seed.after(job.draws_before + said):
        raise ValueError(f"it did not draw {said} times, as its draws() says")


def perform(
    work: Work, pack: Sequence[Job], networks: Mapping[str, Network], stop: Callable[[], bool]
) -> Done:
    """Do a pack of tasks; those that are left when `stop` says so are left out."""
    seed = RandomState(work.seed)
    outcomes: list[Outcome] = []
    values: list[Any] = []
    for job in pack:
        if stop():
            break
        begun = time.perf_counter()
        value, error = None, None
        try:
            value = performed(work, job, seed, networks, stop)
            if work.adds:
                values = [work.reduction.all([*values, value])]  # type: ignore[union-attr]
                value = None
        except Stopped:
            break
        except Exception as raised:
            error = raised
        outcomes.append(Outcome(job.index, value, error, time.perf_counter() - begun))
    return Done(work.version, outcomes, values[0] if values else None)


@lru_cache(4)
def _flag(path: MemoryPath | None) -> SeenFlag:
    return SeenFlag(path)


def perform_elsewhere(work: Work, pack: Sequence[Job], sent: Mapping[str, Network]) -> Done:
    """The same in another process, with networks that were sent along or can be found there."""
    if work.version != __version__:
        return Done(__version__, [])
    forget(besides={ref.fingerprint for ref in work.networks.values()})
    preload({work.networks[name].fingerprint: network for name, network in sent.items()})
    networks = {name: found(ref) for name, ref in work.networks.items()}
    missing = tuple(name for name, network in networks.items() if network is None)
    if missing:
        return Done(work.version, [], None, missing)
    there = {name: network for name, network in networks.items() if network is not None}
    done = perform(work, pack, there, _flag(work.stop))
    return done._replace(outcomes=[_sendable(outcome) for outcome in done.outcomes])


def _sendable(outcome: Outcome) -> Outcome:
    """Errors know where they were raised, and any of them can be sent."""
    if outcome.error is None:
        return outcome
    text = "".join(traceback.format_exception(outcome.error))
    error = outcome.error
    try:
        pickle.loads(pickle.dumps(error))
    except Exception:
        error = RuntimeError(f"{type(error).__name__}: {error}")
    error.add_note(f"On the worker:\n{text}")
    return replace(outcome, error=error)

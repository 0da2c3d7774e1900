"""How many threads long work may use."""

from . import _arrays, _core


def parallelism() -> int:
    """How many threads long work of this process may use: 1 until somebody sets it.

    Examples
    --------
    >>> veq.parallelism()
    1
    """
    return _core.parallelism()


def set_parallelism(threads: int) -> None:
    """Let long work of this process use so many threads.

    Whatever is made, counted or drawn is the same bit for bit for any number. Small work stays on
    the calling thread. Tasks of an ensemble that run in threads count each by itself: leave it at 1
    where there are as many of these as processors.

    Parameters
    ----------
    threads
        0 is one for each processor that the process may use; more than 1024 count as so many.

    Examples
    --------
    >>> veq.set_parallelism(2)
    >>> veq.parallelism()
    2
    >>> veq.set_parallelism(1)
    """
    _core.set_parallelism(of_threads(threads))


def of_threads(threads: int) -> int:
    """What the core takes for a number of threads, of which it has 1024 at most."""
    return min(_arrays.count(threads, "threads"), 1024)

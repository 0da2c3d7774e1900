"""``python -m veq.ensemble STUDY.toml`` runs a study file, and so does ``veq ensemble``."""

from __future__ import annotations

import argparse
import sys
from collections.abc import Sequence

from ._context import TaskError
from ._study import Study, StudyError

_FAILED = 1
_WRONG_USAGE = 2
_INTERRUPTED = 130


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog="veq ensemble", description="Run a study file.")
    parser.add_argument("study", metavar="STUDY.toml", help="what to run")
    parser.add_argument("--engine", help="threads, processes, or the address of a Dask scheduler")
    parser.add_argument("--workers", type=int, metavar="N", help="how many; 0: no threads at all")
    parser.add_argument("--checkpoint", metavar="DIR", help="keep results there, and go on there")
    parser.add_argument("--output", metavar="FILE", help="the table, .csv or .parquet")
    parser.add_argument("--quiet", action="store_true", help="show nothing")
    return parser


def main(arguments: Sequence[str] | None = None) -> int:
    """Run it; the exit code."""
    options = vars(_parser().parse_args(arguments))
    path, quiet = options.pop("study"), options.pop("quiet")
    try:
        study = Study(path, options)
        results = study.run(progress=False if quiet else "auto")
    except KeyboardInterrupt:
        return _INTERRUPTED
    except StudyError as error:
        print(f"veq: {path}: {error}", file=sys.stderr)
        return _WRONG_USAGE
    except (OSError, ValueError, RuntimeError, ImportError, MemoryError) as error:
        cause = f"{path}: {error}" if isinstance(error, TaskError | ValueError) else str(error)
        print(f"veq: {cause or 'not enough memory'}", file=sys.stderr)
        return _FAILED
    if not quiet:
        print(f"{study.output}: {len(results)} tasks, SHA-256 {results.sha256()}")
    return 0


if __name__ == "__main__":
    sys.exit(main())

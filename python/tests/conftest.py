"""What all tests share. A test that is skipped fails the run, unless skips.txt names it."""

import signal
from pathlib import Path

import pytest

import veq

ALLOWED = [
    line.split(": ", 1)
    for line in (Path(__file__).parent / "skips.txt").read_text().splitlines()
    if line and not line.startswith("#")
]
skipped: list[str] = []

# A shell that runs the tests in the background has them ignore interrupts, which some of them send.
signal.signal(signal.SIGINT, signal.default_int_handler)


def pytest_runtest_logreport(report):
    if report.skipped and not hasattr(report, "wasxfail"):
        skipped.append(report.nodeid)


def pytest_collectreport(report):
    if report.skipped:
        skipped.append(report.nodeid)


def not_allowed():
    names = [name for name, _ in ALLOWED]
    return [one for one in skipped if not any(one.endswith(name) for name in names)]


@pytest.hookimpl(trylast=True)
def pytest_sessionfinish(session):
    if not_allowed():
        session.exitstatus = pytest.ExitCode.TESTS_FAILED


def pytest_unconfigure():
    for one in skipped:
        why = [why for name, why in ALLOWED if one.endswith(name)]
        print(f"skipped: {one}: {why[0] if why else 'this is not in tests/skips.txt'}")


@pytest.fixture
def triangle():
    """0 - 1 - 2 - 0, and 3 hanging at 2."""
    return veq.Network([0, 1, 2, 2], [1, 2, 0, 3])

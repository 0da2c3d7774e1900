"""Tests with many processes fail where they would hang."""

import signal

import pytest

MOST_SECONDS = 900


def hung(*_):
    raise TimeoutError(f"nothing came of it within {MOST_SECONDS} s")


@pytest.fixture(autouse=True)
def patience():
    previous = signal.signal(signal.SIGALRM, hung)
    signal.alarm(MOST_SECONDS)
    yield
    signal.alarm(0)
    signal.signal(signal.SIGALRM, previous)

"""Walks, their paths, random states, and interrupts."""

import _thread
import io
import os
import select
import signal
import subprocess
import sys
import threading
import time
import types

import numpy as np
import pytest

import veq
from veq._progress import following


def ring(n):
    return veq.lattice([n], periodic=True)


def line(n):
    return veq.lattice([n])


def test_the_sequence_is_that_of_every_machine():
    # The first numbers of the additive generator of 31 words after seed 1.
    state = veq.RandomState(1)
    assert [state.draw() for _ in range(3)] == [1804289383, 846930886, 1681692777]
    state = veq.RandomState(1)
    assert state.draws(3).tolist() == [1804289383, 846930886, 1681692777]
    assert state == veq.RandomState(1).after(3)
    assert veq.RandomState(1).double() == 1804289383 / 2**31


@pytest.mark.parametrize("seed", [0, -1, 2**32, True, 2**70])
def test_seeds_have_limits(seed):
    with pytest.raises(ValueError, match="give an integer from 1 to 4294967295$"):
        veq.gnp(3, 0.5, seed=seed)


def test_seeds_are_integers():
    with pytest.raises(TypeError):
        veq.gnp(3, 0.5, seed="1")


def test_a_seeded_call_leaves_the_shared_sequence_alone():
    veq.seed(5)
    before = veq.random_state()
    network = veq.gnp(50, 0.2, seed=3)
    veq.Walkers(network, [0]).walk(10, seed=4)
    assert veq.random_state() == before
    veq.Walkers(network, [0]).walk(10)
    # One draw for each agent and step.
    assert veq.random_state() == before.after(10)
    veq.set_random_state(before)
    assert veq.random_state() == before


def test_a_state_is_moved():
    state = veq.RandomState(9)
    veq.Walkers(ring(5), [0, 1]).walk(10, seed=state)
    assert state == veq.RandomState(9).after(20)


def test_sampled_distances_draw_as_all_calls_do():
    network = veq.gnm(200, 1000, seed=1)

    def sampled(seed):
        # So few visits that a part of the vertices is drawn.
        return network.distance_histogram(most_visits=1000, seed=seed).pairs.tolist()

    veq.seed(5)
    before = veq.random_state()
    assert sampled(3) == sampled(3)
    assert veq.random_state() == before
    state = veq.RandomState(9)
    found = sampled(state)
    assert state == veq.RandomState(9).after(1)
    assert found == sampled(veq.RandomState(9).draw())
    assert sampled(None) == sampled(before.draw())
    with pytest.raises(ValueError, match="^seed 0: give an integer from 1 to 4294967295$"):
        sampled(0)
    with pytest.raises(ValueError, match=r"^most_visits = -1: give 0 to 2\*\*64 - 1$"):
        network.distance_histogram(most_visits=-1)


def test_draws_and_words_are_counted():
    with pytest.raises(ValueError, match=r"^count = -1: give 0 to 2\*\*64 - 1$"):
        veq.RandomState(1).draws(-1)
    with pytest.raises(ValueError, match="^2 words, not 31$"):
        veq.RandomState.from_words([1, 2])
    with pytest.raises(ValueError, match="^word 1: -1 has more than 32 bits$"):
        veq.RandomState.from_words([1, -1])


def test_substreams():
    state = veq.RandomState(1)
    part = state.substream(2)
    assert part.draws_left == 2**40 - 87
    assert part == state.after(2 * (2**40 - 87))
    assert state.draws_left is None
    with pytest.raises(IndexError, match="^substream 4194304 of 4194304$"):
        state.substream(2**22)
    with pytest.raises(IndexError, match="has no substreams"):
        part.substream(0)


def test_a_walk_that_can_go_one_way_only():
    # 0 -> 1 -> 2 -> 3, where it ends.
    network = veq.Network([0, 1, 2], [1, 2, 3], directed=True)
    walkers = veq.Walkers(network, [0, 2])
    walk = walkers.walk(4, paths=True, first_arrivals=True, seed=1)
    stayed = walk.paths.stayed
    assert (walk.end, walk.steps) == ("steps", 4)
    assert walk.paths.shape == (2, 4)
    assert walk.paths.moves.tolist() == [[1, 3], [2, stayed], [3, stayed], [stayed, stayed]]
    assert walk.paths.filled().tolist() == [[1, 2, 3, 3], [3, 3, 3, 3]]
    assert walk.paths.filled(start=True).tolist() == [[0, 1, 2, 3, 3], [2, 3, 3, 3, 3]]
    assert np.asarray(walk.paths).tolist() == [[1, 2, 3, 3], [3, 3, 3, 3]]
    assert walk.paths.masked().tolist() == [[1, 2, 3, None], [3, None, None, None]]
    offsets, arrivals = walk.paths.ragged()
    assert (offsets.tolist(), arrivals.tolist()) == ([0, 3, 4], [1, 2, 3, 3])
    assert walk.first_arrivals.tolist() == [-1, 1, 2, 1]
    assert walk.coverage.steps.tolist() == [1, 2]
    assert walk.coverage.vertices.tolist() == [2, 3]
    assert walkers.positions.tolist() == [3, 3]
    assert walkers.visits().tolist() == [0, 1, 1, 2]
    assert walkers.visits(1).tolist() == [0, 0, 0, 1]


def test_visits_are_snapshots_unless_live():
    walkers = veq.Walkers(ring(5), [0])
    live = walkers.visits(0, live=True)
    snapshot = walkers.visits(0)
    walkers.walk(10, seed=1)
    assert (snapshot.sum(), live.sum()) == (0, 10)
    with pytest.raises(ValueError, match="read-only"):
        live[0] = 1
    walkers.forget()
    assert walkers.visits().sum() == 0
    assert live.sum() == 10
    with pytest.raises(ValueError, match="^live visits are those of one agent$"):
        walkers.visits(live=True)


def test_truths_and_seeds_of_numpy():
    walkers = veq.Walkers(ring(5), [0])
    assert walkers.walk(2, paths=np.True_, first_arrivals=np.False_, seed=1).paths.shape == (1, 2)
    assert walkers.record(2, seed=np.uint32(7)).seed == 7
    assert walkers.record(2, seed=veq.RandomState(7)).seed is None


def test_a_target_ends_a_walk():
    walk = veq.Walkers(ring(6), [0]).walk(until=1.0, first_arrivals=True, seed=3)
    assert walk.end == "target"
    assert (walk.first_arrivals > 0).all()
    assert walk.coverage.vertices[-1] == 6


def test_agents_remember():
    walkers = veq.Walkers(ring(6), [0], memory=3)
    walkers.walk(6, seed=1)
    # Who avoids the last three on a ring of six goes round.
    assert walkers.visits().tolist() == [1] * 6
    assert len(walkers.remembered(0)) == 3


def test_starts():
    network = line(4)
    assert veq.Walkers(network, ["3", 0]).positions.tolist() == [3, 0]
    assert veq.Walkers(network, np.array(["3", "0"])).positions.tolist() == [3, 0]
    assert veq.Walkers(network, [network.vertex(2)]).positions.tolist() == [2]
    assert len(veq.Walkers.uniform(network, 7, seed=1)) == 7
    assert veq.Walkers.by_degree(veq.Network([1], [2], n=9), 5, seed=1).positions.min() >= 1


@pytest.mark.parametrize(
    ("call", "text"),
    [
        (lambda g: veq.Walkers(g, [0, 7]), "start 1: vertex 7 of 4"),
        (lambda g: veq.Walkers(g, [0, -1]), "start 1: -1 is below 0"),
        (lambda g: veq.Walkers(g, [0], memory=-1), "memory 0: -1 is below 0"),
        (lambda g: veq.Walkers(g, 0), "start: an array of 0 dimensions, not one"),
        (lambda g: veq.Walkers(g, [0], memory=0), "agent 0: memory size 0"),
        (lambda g: veq.Walkers(g, [0], memory=2, errors=1.5), "agent 0: error 1.5, not 0 to 1"),
        (lambda g: veq.Walkers(g, [0], errors=0.5), "errors and listeners need a memory"),
        (lambda g: veq.Walkers(g, [0]).walk(), "neither steps nor target"),
        (lambda g: veq.Walkers(g, [0]).walk(1, restart=1.5), "restart 1.5: give 0 to 1"),
        (lambda g: veq.Walkers(g, [0]).walk(-1), "steps = -1: give 0 to 2**64 - 1"),
        (
            lambda g: veq.Walkers(g, [0]).walk(1, choice="fair"),
            "choice 'fair': give one of 'published', 'even', 'weighted'",
        ),
        (
            lambda g: veq.Walkers(g, [0]).walk(1, progress="never"),
            "progress 'never': give True, False, 'auto' or a callable",
        ),
    ],
)
def test_bad_walks_are_named(call, text):
    with pytest.raises(ValueError) as raised:
        call(line(4))
    assert str(raised.value) == text


def test_no_such_agent():
    with pytest.raises(IndexError, match="^agent 1 of 1$"):
        veq.Walkers(line(4), [0]).visits(1)


def test_progress_is_told_and_its_errors_pass():
    class Enough(Exception):
        pass

    told = []

    def follow(done, everything):
        told.append((done, everything))
        raise Enough

    walkers = veq.Walkers(ring(1000), np.arange(500))
    with pytest.raises(Enough):
        walkers.walk(10**8, seed=1, progress=follow)
    ((_, everything),) = told
    assert everything == 10**8
    visits = walkers.visits()
    # All agents have made the same whole steps, and a further walk goes on from there.
    assert visits.sum() % 500 == 0
    assert 0 < visits.sum() < 500 * 10**8
    steps = int(visits.sum()) // 500
    again = veq.Walkers(ring(1000), np.arange(500))
    again.walk(steps, seed=1)
    assert again.positions.tolist() == walkers.positions.tolist() or steps > 10**6
    assert walkers.walk(3, seed=2).steps == 3


def test_false_ends_a_walk():
    walk = veq.Walkers(ring(10), [0]).walk(10**12, seed=1, progress=lambda done, all: False)
    assert walk.end == "stopped"


def test_false_ends_a_model():
    with pytest.raises(veq.StoppedError):
        veq.rewired(veq.gnm(1000, 5000, seed=1), 10**10, seed=1, progress=lambda *_: False)


def test_agents_that_walk_are_left_alone():
    walkers = veq.Walkers(ring(10), [0])
    refused = []

    def ask(done, everything):
        for call in (
            walkers.visits,
            walkers.forget,
            lambda: walkers.walk(1),
            lambda: walkers.positions,
        ):
            with pytest.raises(RuntimeError, match="^the agents are walking$"):
                call()
            refused.append(call)
        return False

    walkers.walk(10**12, seed=1, progress=ask)
    assert len(refused) == 4


def test_other_threads_run_meanwhile():
    walkers = veq.Walkers(ring(1000), np.arange(1000))
    counted = []
    over = threading.Event()

    def count():
        n = 0
        while not over.is_set():
            n += 1
        counted.append(n)

    thread = threading.Thread(target=count)
    thread.start()
    end = time.monotonic() + 0.5
    walkers.walk(10**9, seed=1, progress=lambda *_: time.monotonic() < end)
    over.set()
    thread.join()
    # A thread that got its turn at the observer's calls alone would count some ten times less.
    assert counted[0] > 10_000


INTERRUPTED = """
import os, random, signal, sys, threading, time
import numpy as np
import veq

# A shell that runs tests in the background has them ignore interrupts.
signal.signal(signal.SIGINT, signal.default_int_handler)
# What the walking thread does between the signal and the error, in processor time, which does not
# depend on what else the machine has to do.
clock = time.pthread_getcpuclockid(threading.main_thread().ident)
sent = []

def interrupt(after):
    time.sleep(after)
    sent.append(time.clock_gettime(clock))
    os.kill(os.getpid(), signal.SIGINT)

network = veq.lattice([1000], periodic=True)
for seed in range(1, 31):
    walkers = veq.Walkers(network, np.arange(100))
    thread = threading.Thread(target=interrupt, args=(random.Random(seed).random() / 10,))
    try:
        thread.start()
        walkers.walk(10**12, seed=seed)
        assert False, "not interrupted"
    except KeyboardInterrupt:
        took = time.clock_gettime(clock) - sent[-1]
    thread.join()
    visits = walkers.visits()
    steps, rest = divmod(int(visits.sum()), 100)
    assert rest == 0, "not a whole step"
    again = veq.Walkers(network, np.arange(100))
    again.walk(steps, seed=seed)
    assert again.positions.tolist() == walkers.positions.tolist()
    assert again.visits().tolist() == visits.tolist()
    assert walkers.walk(3, seed=1).steps == 3
    print(took)
"""


def test_an_interrupt_ends_a_walk_within_100_ms():
    shown = subprocess.run(
        [sys.executable, "-c", INTERRUPTED], capture_output=True, text=True, timeout=300
    )
    assert shown.returncode == 0, shown.stderr
    took = [float(line) for line in shown.stdout.split()]
    assert len(took) == 30
    assert max(took) < 0.1


ENDLESS = """
import signal, sys, threading
import veq
signal.signal(signal.SIGINT, signal.default_int_handler)
walkers = veq.Walkers(veq.lattice([100], periodic=True), [0])
if len(sys.argv) > 1:
    threading.Timer(float(sys.argv[1]), signal.raise_signal, (signal.SIGINT,)).start()
try:
    walkers.walk(10**12, seed=1)
except KeyboardInterrupt:
    pass
"""


@pytest.mark.parametrize("memory", [None, 4])
def test_threads_change_nothing(memory):
    network = veq.gnm(2000, 6000, seed=3)

    def walked(**more):
        walkers = veq.Walkers(network, range(200), memory=memory)
        walk = walkers.walk(1500, first_arrivals=True, seed=5, **more)
        return walkers.positions, walkers.visits(), walkers.visits(199), walk.first_arrivals

    alone = walked()
    for threads in (0, 1, 2, 5, 2**63):
        for one, other in zip(walked(threads=threads), alone, strict=True):
            assert np.array_equal(one, other)
    veq.set_parallelism(3)
    try:
        for one, other in zip(walked(), alone, strict=True):
            assert np.array_equal(one, other)
    finally:
        veq.set_parallelism(1)


def test_numbers_of_threads():
    for threads, meant in ((7, 7), (2**64 - 1, 1024), (np.int64(2), 2), (1, 1)):
        veq.set_parallelism(threads)
        assert veq.parallelism() == meant
    with pytest.raises(ValueError, match=r"threads = -1: give 0 to 2\*\*64 - 1"):
        veq.set_parallelism(-1)
    with pytest.raises(TypeError):
        veq.Walkers(veq.lattice([3]), [0]).walk(1, threads=1.5)
    assert veq.parallelism() == 1


def test_a_bar_shows_after_a_while_where_somebody_looks():
    pytest.importorskip("tqdm")
    import termios  # Which not every system has.

    ours, theirs = os.openpty()
    termios.tcsetwinsize(theirs, (24, 80))
    with subprocess.Popen([sys.executable, "-c", ENDLESS], stderr=theirs) as process:
        shown, end = b"", time.monotonic() + 120
        while b"steps" not in shown and time.monotonic() < end:
            if select.select([ours], [], [], 1)[0]:
                shown += os.read(ours, 4096)
        process.send_signal(signal.SIGINT)
    os.close(theirs)
    os.close(ours)
    assert b"steps" in shown
    assert process.returncode == 0


def test_no_bar_shows_where_nobody_looks():
    pytest.importorskip("tqdm")
    code = [sys.executable, "-c", ENDLESS, "3"]
    assert subprocess.run(code, stderr=subprocess.PIPE, check=True, timeout=120).stderr == b""


def test_a_bar_waits_for_a_while(monkeypatch):
    pytest.importorskip("tqdm")
    made = []
    monkeypatch.setattr("tqdm.auto.tqdm", lambda **options: made.append(options) or Bar())

    class Bar:
        n = 0

        def update(self, more):
            self.n += more

        def close(self):
            made.append(self.n)

    now = [100.0]
    monkeypatch.setattr("time.monotonic", lambda: now[0])
    monkeypatch.setattr("sys.stderr", types.SimpleNamespace(isatty=lambda: True))
    with following("auto", "steps") as call:
        now[0] = 101.4
        call(10, 50)
        assert made == []
        now[0] = 101.5
        call(20, 50)
        call(30, 50)
    assert made == [{"total": 50, "unit": "steps", "leave": False}, 30]


def test_a_bar_that_is_asked_for(monkeypatch):
    pytest.importorskip("tqdm")
    shown = io.StringIO()
    monkeypatch.setattr("sys.stderr", shown)

    def interrupt():
        end = time.monotonic() + 120
        while "steps" not in shown.getvalue() and time.monotonic() < end:
            time.sleep(0.01)
        _thread.interrupt_main()

    thread = threading.Thread(target=interrupt)
    thread.start()
    with pytest.raises(KeyboardInterrupt):
        veq.Walkers(ring(100), [0]).walk(10**12, seed=1, progress=True)
    thread.join()
    assert "steps" in shown.getvalue()


def test_the_law_of_a_walk():
    law = veq.WalkLaw(line(3), choice="even")
    starts, targets, shares = law.matrix()
    assert starts.tolist() == [0, 1, 3, 4]
    assert targets.tolist() == [1, 0, 2, 1]
    assert shares.tolist() == [1, 0.5, 0.5, 1]
    assert law.stationary().tolist() == pytest.approx([0.25, 0.5, 0.25])
    # From the middle: 1 + half of what the other end takes, which is 1 more: h = 1 + (1 + h) / 2.
    assert law.hitting_times(2).steps.tolist() == pytest.approx([4, 3, 4])
    low, high = law.cover_time(0, start_counts=True)
    # From one end to the other end.
    assert (low, high) == (pytest.approx(4), pytest.approx(4))
    assert law.dead_ends().tolist() == []

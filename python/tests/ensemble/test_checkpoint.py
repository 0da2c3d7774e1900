"""Runs that are killed go on, and their results are those of runs that were not."""

import gc
import itertools
import json
import os
import resource
import signal
import subprocess
import sys
import textwrap
import time

import pytest
from engines import environment

import veq
import veq.ensemble as ve

WALK = ve.WalkTask(starts=[0, 1], steps=50, collect=("visits", "end"))
HEAD = 28  # Task, length, seconds: 8 bytes each; the CRC-32: 4.


def study(seed=3, count=12, **more):
    more = {"networks": veq.lattice([9]), **more}
    return ve.Ensemble(WALK, [{}] * count, seed=seed, **more)


@pytest.fixture(scope="module")
def expected():
    return study().run(workers=0).sha256()


def run_some(folder, count, ensemble=None):
    """Stop after so many tasks."""
    with pytest.raises(RuntimeError, match="was stopped after"):
        (ensemble or study()).run(
            workers=0, checkpoint=folder, progress=lambda done, all: done < count
        )


def test_a_run_goes_on_where_another_was_stopped(tmp_path, expected):
    run_some(tmp_path, 5)
    assert ran(tmp_path) == 12 - 5
    assert study().run(workers=2, checkpoint=tmp_path).sha256() == expected
    # All of it is there now.
    assert ran(tmp_path) == 0


def ran(folder):
    """How many tasks a run goes on with, which is not stopped."""
    seen = []
    study().run(workers=0, checkpoint=folder, progress=lambda done, all: seen.append(done))
    return len(seen)


def test_seconds_are_kept_too(tmp_path):
    first = study().run(workers=0, checkpoint=tmp_path)
    again = study().run(workers=0, checkpoint=tmp_path)
    assert again.seconds.tolist() == first.seconds.tolist()


def test_a_torn_record_is_cut_wherever_it_is_torn(tmp_path, expected):
    run_some(tmp_path, 3)
    path = tmp_path / "results.bin"
    whole = path.read_bytes()
    length = int.from_bytes(whole[8:16], "little")
    last = 2 * (HEAD + length)
    assert len(whole) == 3 * (HEAD + length)
    for size in range(last, len(whole) + 1):
        path.write_bytes(whole[:size])
        assert study().run(workers=0, checkpoint=tmp_path).sha256() == expected
        # What was torn is there again, and the rest behind it.
        assert path.read_bytes()[:last] == whole[:last]
        assert len(path.read_bytes()) == 12 * (HEAD + length)


def test_what_is_damaged_is_done_again(tmp_path, expected):
    run_some(tmp_path, 3)
    path = tmp_path / "results.bin"
    whole = bytearray(path.read_bytes())
    for place in range(0, len(whole), 7):
        damaged = bytearray(whole)
        damaged[place] ^= 0x10
        path.write_bytes(damaged)
        assert study().run(workers=0, checkpoint=tmp_path).sha256() == expected


@pytest.mark.parametrize(
    ("other", "field"),
    [
        (lambda: study(seed=4), "seed is 3 there and 4 here"),
        (lambda: study(count=13), "count is 12 there and 13 here"),
        (lambda: study(mode="row"), "mode is substream there and row here"),
    ],
)
def test_another_study_is_refused(tmp_path, other, field):
    study().run(workers=0, checkpoint=tmp_path)
    with pytest.raises(ValueError) as raised:
        other().run(workers=0, checkpoint=tmp_path)
    assert str(raised.value) == f"checkpoint {tmp_path} is of another study: {field}"


def test_other_networks_tasks_and_parameters_are_refused(tmp_path):
    study().run(workers=0, checkpoint=tmp_path)

    def refused(text, **changes):
        said = {"task": WALK, "tasks": [{}] * 12, "seed": 3, "networks": veq.lattice([9])}
        said.update(changes)
        with pytest.raises(ValueError, match=f"is of another study: {text} is "):
            ve.Ensemble(said.pop("task"), said.pop("tasks"), **said).run(checkpoint=tmp_path)

    refused("networks", networks=veq.lattice([9], periodic=True))
    refused("networks", networks={"ring": veq.lattice([9])})
    refused("task", task=ve.WalkTask(starts=[0, 1], steps=51, collect=("visits", "end")))
    refused("tasks", tasks=[{}] * 11 + [{"steps": 50}])
    refused("reduction", reduce=ve.summed("visits"))


def test_another_release_is_refused(tmp_path):
    study().run(workers=0, checkpoint=tmp_path)
    path = tmp_path / "manifest.json"
    said = json.loads(path.read_text())
    path.write_text(json.dumps({**said, "veq": "0.0.1"}))
    with pytest.raises(ValueError, match=f"veq is 0.0.1 there and {veq.__version__} here$"):
        study().run(checkpoint=tmp_path)
    path.write_text("{")
    with pytest.raises(veq.FormatError, match="manifest.json: no manifest of a study$"):
        study().run(checkpoint=tmp_path)
    path.write_text("[]")
    with pytest.raises(veq.FormatError, match="manifest.json: no manifest of a study$"):
        study().run(checkpoint=tmp_path)


def test_one_run_at_a_time(tmp_path):
    def inner(done, all):
        with pytest.raises(RuntimeError) as raised:
            study().run(workers=0, checkpoint=tmp_path)
        assert str(raised.value) == f"checkpoint {tmp_path} is in use by another run"
        return False

    with pytest.raises(RuntimeError, match="stopped after 1 tasks"):
        study().run(workers=0, checkpoint=tmp_path, progress=inner)


def test_a_file_is_no_folder(tmp_path):
    (tmp_path / "file").write_text("")
    with pytest.raises(FileExistsError):
        study().run(checkpoint=tmp_path / "file")


def test_totals_are_kept_instead_of_results(tmp_path):
    summed = study(reduce=ve.summed("visits"))
    expected = summed.run(workers=0).sha256()
    run_some(tmp_path, 5, summed)
    # No file of single results grows.
    assert (tmp_path / "results.bin").stat().st_size == 0
    size = (tmp_path / "total.bin").stat().st_size
    seen = []
    results = summed.run(
        workers=0, checkpoint=tmp_path, progress=lambda done, all: seen.append(done)
    )
    assert results.sha256() == expected
    assert seen == list(range(6, 13))
    # As large with twelve tasks as with five.
    assert (tmp_path / "total.bin").stat().st_size == size
    content = bytearray((tmp_path / "total.bin").read_bytes())
    content[-1] ^= 1
    (tmp_path / "total.bin").write_bytes(content)
    with pytest.raises(veq.FormatError, match=r"total\.bin: damaged$"):
        summed.run(workers=0, checkpoint=tmp_path)


def test_floats_that_were_kept_are_added_in_order(tmp_path):
    def share(context):
        return 10.0 ** (context.index % 17)

    def made():
        return ve.Ensemble(share, [{}] * 12, seed=1, reduce=ve.summed(exact=False))

    expected = made().run(workers=0).reduced
    run_some(tmp_path, 7, made())
    assert made().run(workers=3, checkpoint=tmp_path).reduced == expected


def test_what_failed_is_tried_by_the_next_run(tmp_path):
    (tmp_path / "file").write_text("")

    def opening(context):
        if context.index == 2:
            (tmp_path / "file").read_text("ascii") or 1 / 0
        return context.index

    def made():
        return ve.Ensemble(opening, [{}] * 5, seed=1)

    results = made().run(workers=0, checkpoint=tmp_path / "kept", on_error="collect")
    assert list(results) == [0, 1, None, 3, 4]
    (tmp_path / "file").write_text("x")
    results = made().run(workers=0, checkpoint=tmp_path / "kept", on_error="collect")
    assert list(results) == [0, 1, 2, 3, 4]
    assert results.errors == []


def test_a_full_disk_is_an_error_and_nothing_is_lost(tmp_path, expected):
    # Files may not grow beyond 1000 bytes, which is an error like a full disk in the same call.
    code = """
    import resource, signal, sys
    sys.path.insert(0, sys.argv[2])
    from test_checkpoint import study
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (1000, resource.RLIM_INFINITY))
    try:
        study().run(workers=2, checkpoint=sys.argv[1])
    except OSError as error:
        print(error.strerror)
    """
    command = [sys.executable, "-c", textwrap.dedent(code), tmp_path / "kept"]
    shown = subprocess.run(
        [*command, os.path.dirname(__file__)], capture_output=True, text=True, env=environment()
    )
    assert (shown.stdout, shown.stderr) == ("File too large\n", "")
    path = tmp_path / "kept" / "results.bin"
    length = HEAD + int.from_bytes(path.read_bytes()[8:16], "little")
    # Whole records alone, as many as had room.
    assert path.stat().st_size == 1000 // length * length > 0
    assert study().run(workers=0, checkpoint=tmp_path / "kept").sha256() == expected
    assert resource.RLIMIT_FSIZE  # Of that process alone.


KILLED = """
import sys, time
import veq, veq.ensemble as ve

def slow(context):
    time.sleep(0.05)
    return context.state.draw()

study = ve.Ensemble(slow, [{}] * 40, seed=5)
study.run(workers=WORKERS, checkpoint=sys.argv[1])
"""


@pytest.mark.parametrize("workers", [0, 2])
def test_who_is_killed_loses_little(tmp_path, workers):
    code = KILLED.replace("WORKERS", str(workers))
    process = subprocess.Popen([sys.executable, "-c", code, tmp_path], env=environment())
    path = tmp_path / "results.bin"
    deadline = time.monotonic() + 600
    while time.monotonic() < deadline and not (path.exists() and path.stat().st_size > 300):
        time.sleep(0.01)
    process.send_signal(signal.SIGKILL)
    process.wait()
    # A record has 28 bytes and a pickle of an integer, less than 20; so there are at least six.
    kept = path.stat().st_size
    assert 300 < kept < 40 * 48
    subprocess.run([sys.executable, "-c", code, tmp_path], env=environment(), check=True)
    assert path.stat().st_size > kept


# An interrupt of the end itself leaves files open until they are collected.
@pytest.mark.filterwarnings("ignore::pytest.PytestUnraisableExceptionWarning")
@pytest.mark.parametrize("reduce", [None, ve.summed("visits")])
def test_an_interrupt_at_any_line_loses_and_doubles_nothing(tmp_path, reduce):
    import veq.ensemble._checkpoint as checkpoint
    import veq.ensemble._results as results

    def made():
        return study(count=3, reduce=reduce)

    expected = made().run(workers=0).sha256()
    files = {checkpoint.__file__, results.__file__}
    for number in itertools.count(1):
        left = [number]

        def trace(frame, event, argument, left=left):
            if frame.f_code.co_filename in files and event == "line":
                left[0] -= 1
                if left[0] == 0:
                    raise KeyboardInterrupt
            return trace

        folder = tmp_path / str(number)
        sys.settrace(trace)
        try:
            made().run(workers=0, checkpoint=folder)
            break
        except KeyboardInterrupt:
            pass
        finally:
            sys.settrace(None)
        gc.collect()
        assert made().run(workers=0, checkpoint=folder).sha256() == expected
    assert number > 50

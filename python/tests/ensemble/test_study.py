"""Study files, and the program that runs them."""

import os
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

import veq
import veq.ensemble as ve
from veq.ensemble.__main__ import main

STUDY = """
seed = 7
workers = 2
output = "made.csv"

[networks]
ring = "ring.xnet"

[task]
starts = [0]
steps = 20
collect = ["positions", "end"]

[grid]
memory = [1, 3]
repetition = 2
"""


@pytest.fixture
def folder(tmp_path):
    veq.lattice([6], periodic=True).save(tmp_path / "ring.xnet")
    (tmp_path / "study.toml").write_text(STUDY)
    return tmp_path


def expected_rows():
    """As text, by the functions that the study stands for."""
    rows = []
    for k, (memory, repetition) in enumerate([(1, 0), (1, 1), (3, 0), (3, 1)]):
        walkers = veq.Walkers(veq.lattice([6], periodic=True), [0], memory=memory)
        walkers.walk(20, seed=veq.RandomState(7).substream(k))
        rows.append(f"{k},{memory},{repetition},{walkers.positions[0]},steps\n")
    return "task,memory,repetition,positions,end\n" + "".join(rows)


def program():
    return Path(sys.executable).with_name("veq")


@pytest.mark.parametrize("options", [[], ["--workers", "0"], ["--engine", "processes"]])
def test_the_program_runs_a_study(folder, options):
    command = [program(), "ensemble", folder / "study.toml", *options]
    shown = subprocess.run(command, capture_output=True, text=True, cwd=folder)
    assert shown.stderr == ""
    assert (folder / "made.csv").read_text() == expected_rows()
    assert shown.stdout.startswith(f"{folder / 'made.csv'}: 4 tasks, SHA-256 ")
    assert sorted(path.name for path in folder.iterdir()) == ["made.csv", "ring.xnet", "study.toml"]


def test_a_checkpoint_and_another_output_may_be_named(folder):
    options = ["--checkpoint", str(folder / "kept"), "--output", str(folder / "other.csv")]
    for _ in range(2):
        assert main([str(folder / "study.toml"), "--quiet", *options]) == 0
        assert (folder / "other.csv").read_text() == expected_rows()
    assert (folder / "kept" / "manifest.json").exists()
    assert not (folder / "made.csv").exists()


def test_parquet_has_the_same(folder):
    import pandas

    path = folder / "made.parquet"
    assert main([str(folder / "study.toml"), "--quiet", "--output", str(path)]) == 0
    frame = pandas.read_parquet(path)
    assert list(frame.columns) == ["task", "memory", "repetition", "positions", "end"]
    cells = frame.apply(
        lambda row: ",".join(
            str(cell[0]) if hasattr(cell, "shape") and cell.shape else str(cell) for cell in row
        ),
        axis=1,
    )
    assert "\n".join(cells) + "\n" == expected_rows().split("\n", 1)[1]


def test_task_i_is_the_program_s_substream_i(folder):
    (folder / "study.toml").write_text(STUDY.replace("positions", "visits"))
    assert main([str(folder / "study.toml"), "--quiet"]) == 0
    visits = (folder / "made.csv").read_text().splitlines()[3].split(",")[3]
    command = [program(), "walk", folder / "ring.xnet", "--agents", "1", "--start", "0"]
    command += ["--steps", "20", "--memory", "3", "--seed", "7", "--substream", "2"]
    subprocess.run([*command, "--output", folder / "walked.xnet"], check=True, capture_output=True)
    walked = veq.read(folder / "walked.xnet").vertex_data["Visits"]
    assert " ".join(str(int(number)) for number in walked) == visits
    # What the program generates is the same, too.
    command = [program(), "generate", "random", "--vertices", "30", "--degree", "4"]
    command += ["--seed", "7", "--substream", "5", folder / "grown.xnet"]
    subprocess.run(command, check=True, capture_output=True)
    model = ve.RandomNetwork(n=30, degree=4.0, collect=("network",))
    grown = ve.Ensemble(model, [{}] * 6, seed=7).one(5)["network"]
    assert veq.read(folder / "grown.xnet").edges.tolist() == grown.edges.tolist()


def test_models_chains_and_lists_of_tasks(folder):
    (folder / "study.toml").write_text(
        """
        seed = 3
        output = "made.csv"
        [task]
        steps = 10
        starts = [0]
        collect = ["end", "steps"]
        model = { kind = "preferential_attachment", degree = 4 }
        [[tasks]]
        n = 10
        [[tasks]]
        n = 20
        steps = 5
        """
    )
    assert main([str(folder / "study.toml"), "--quiet"]) == 0
    assert (folder / "made.csv").read_text() == (
        "task,n,steps,end,steps_result\n0,10,,steps,10\n1,20,5,steps,5\n"
    )


@pytest.mark.parametrize(
    ("old", "new", "text"),
    [
        ("seed = 7", "", "there is no seed: say seed = 1"),
        ("seed = 7", "seed = ", "Invalid value (at line 2, column 8)"),
        ("workers", "wrokers", "the study has no 'wrokers': give seed, mode, engine, workers, "),
        ('output = "made.csv"', "", 'there is no output: say output = "results.csv"'),
        ("made.csv", "made.txt", "made.txt: a table is .csv or .parquet"),
        ('output = "made.csv"', "output = 3", "output = 3: give a text"),
        ("starts = [0]", "begin = [0]", "task: WalkTask.__init__() got an unexpected keyword"),
        ("memory = [1, 3]", "memory = 3", "grid: memory = 3 is no list"),
        ("[task]", '[task]\nkind = "run"', "task: kind 'run': give one of 'walk', 'random_netwo"),
        ("[task]", "[[tasks]]\nsteps = 1\n[task]", "there are both tasks and a grid: give one"),
        ("[task]", '[task]\nmodel = {kind = "walk"}', "task: a model grows the network of a walk"),
    ],
)
def test_what_is_wrong_is_told(folder, capsys, old, new, text):
    path = folder / "study.toml"
    path.write_text(STUDY.replace(old, new, 1))
    assert main([str(path)]) == 2
    shown = capsys.readouterr()
    assert shown.out == ""
    assert shown.err.startswith(f"veq: {path}: ")
    assert text in shown.err
    assert not (folder / "made.csv").exists()


def test_what_cannot_be_done_is_told(folder, capsys):
    path = folder / "study.toml"
    path.write_text(STUDY.replace("[0]", "[9]"))
    assert main([str(path), "--workers", "0"]) == 1
    assert "task 0 (memory=1, repetition=0): ValueError: start 0: vertex 9 of 6" in (
        capsys.readouterr().err
    )
    path.write_text(STUDY.replace("ring.xnet", "none.xnet"))
    assert main([str(path)]) == 1
    assert "none.xnet" in capsys.readouterr().err
    assert main([str(folder / "none.toml")]) == 1
    assert "No such file or directory" in capsys.readouterr().err
    path.write_text(
        'seed = 1\noutput = "a.csv"\n[task]\nkind = "random_network"\nn = 5\ndegree = 2.0\n'
    )
    assert main([str(path)]) == 2
    assert "a network fits into no table: collect something else of it" in capsys.readouterr().err


def test_a_table_is_written_whole_or_not_at_all(folder):
    (folder / "made.csv").mkdir()
    assert main([str(folder / "study.toml"), "--quiet"]) == 1
    shutil.rmtree(folder / "made.csv")
    assert os.listdir(folder).count("made.csv") == 0

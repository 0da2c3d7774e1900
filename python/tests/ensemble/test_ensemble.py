"""Tasks, their random states, results and reductions."""

import gc
import inspect
import pickle
import subprocess
import sys

import numpy as np
import pytest

import veq
import veq.ensemble as ve
from veq.ensemble._shared import NetworkRef, forget, found
from veq.ensemble._values import sha256


def drawn(context, count=1):
    return [context.state.draw() for _ in range(count)]


def index_of(context, **parameters):
    return context.index


class Drawing:
    """Draws as often as it says, or not."""

    def __call__(self, context, count, said=None):
        return [context.state.draw() for _ in range(count)]

    def draws(self, count, said=None):
        return count if said is None else said


def failing(context, number):
    if number == 3:
        raise KeyError("three")
    return number


def ring(n=5):
    return veq.lattice([n], periodic=True)


def test_everything_public_is_documented():
    missing = []
    for name in ve.__all__:
        thing = getattr(ve, name)
        members = vars(thing).items() if inspect.isclass(thing) else []
        shown = [(name, thing)] + [
            (f"{name}.{key}", getattr(member, "__func__", member))
            for key, member in members
            if not key.startswith("_")
            and (inspect.isfunction(member) or isinstance(member, property | staticmethod))
        ]
        missing += [key for key, one in shown if not inspect.getdoc(one)]
    assert missing == []


def test_importing_is_light():
    heavy = ("loky", "cloudpickle", "distributed", "dask", "mpi4py", "pandas", "pyarrow", "tqdm")
    code = f"import sys, veq.ensemble; print(*[m for m in {heavy} if m in sys.modules])"
    shown = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True)
    assert shown.stdout.strip() == ""


def test_a_grid_is_the_product_with_the_last_axis_fastest():
    assert ve.grid(a=[1, 2], b="xy") == [
        {"a": 1, "b": "x"},
        {"a": 1, "b": "y"},
        {"a": 2, "b": "x"},
        {"a": 2, "b": "y"},
    ]
    assert ve.grid() == [{}]
    assert ve.grid(a=[1], b=[]) == []
    assert ve.Ensemble.grid(a=[7]) == [{"a": 7}]


def test_task_k_draws_from_substream_k():
    results = ve.Ensemble(drawn, [{"count": 2}] * 3, seed=9).run(workers=0)
    # Substream k begins k x (2^40 - 87) draws behind the seed.
    state = veq.RandomState(9)
    expected = [state.after(k * (2**40 - 87)).draws(2).tolist() for k in range(3)]
    assert list(results) == expected


def test_in_a_row_tasks_draw_one_after_the_other():
    tasks = [{"count": 3}, {"count": 0}, {"count": 2}]
    results = ve.Ensemble(Drawing(), tasks, seed=1, mode="row").run(workers=2)
    # The first draws after seed 1, as every machine gives them.
    first = veq.RandomState(1).draws(5).tolist()
    assert first[:3] == [1804289383, 846930886, 1681692777]
    assert list(results) == [first[:3], [], first[3:]]


def test_a_row_is_the_loop_after_veq_seed():
    walk = ve.WalkTask(starts=[0, 2], steps=50, collect=("positions",))
    tasks = ve.grid(memory=[None, 3], repetition=range(3))
    study = ve.Ensemble(walk, tasks, seed=77, mode="row", networks=ring(9))
    veq.seed(77)
    loop = []
    for task in tasks:
        walkers = veq.Walkers(ring(9), [0, 2], memory=task["memory"])
        walkers.walk(50)
        loop.append(walkers.positions.tolist())
    assert [result["positions"].tolist() for result in study.run(workers=3)] == loop


def test_a_row_needs_to_know_how_often_tasks_draw():
    grown = ve.PreferentialAttachment(n=10, degree=4)
    with pytest.raises(ValueError) as raised:
        ve.Ensemble(grown, [{}, {}], seed=1, mode="row")
    assert str(raised.value) == (
        "task 0 (PreferentialAttachment) draws a number of times that is not known before: "
        "use mode='substream'"
    )
    with pytest.raises(ValueError, match=r"^task 0 \(drawn\) draws a number of times"):
        ve.Ensemble(drawn, [{}], seed=1, mode="row")
    endless = ve.WalkTask(starts=[0], until=1.0)
    with pytest.raises(ValueError, match=r"^task 1 \(WalkTask\) draws"):
        ve.Ensemble(endless, [{"steps": 5}, {}], seed=1, mode="row", networks=ring())


@pytest.mark.parametrize("said", [1, 3])
def test_a_task_that_draws_otherwise_than_it_says_is_an_error(said):
    study = ve.Ensemble(Drawing(), [{"count": 2, "said": said}], seed=1, mode="row")
    with pytest.raises(ve.TaskError, match=f"it did not draw {said} times, as its draws"):
        study.run(workers=0)


@pytest.mark.parametrize("seed", [0, -1, 2**32])
def test_seeds_have_limits(seed):
    with pytest.raises(ValueError, match="give an integer from 1 to 4294967295$"):
        ve.Ensemble(drawn, [], seed=seed)


def test_a_seed_has_so_many_substreams():
    with pytest.raises(ValueError, match=r"^4194305 tasks: a seed has 4194304 substreams$"):
        ve.Ensemble(drawn, [{}] * (2**22 + 1), seed=1)


def test_wrong_words_are_told():
    with pytest.raises(ValueError, match=r"^mode 'rows': give one of 'substream', 'row'$"):
        ve.Ensemble(drawn, [], seed=1, mode="rows")
    study = ve.Ensemble(drawn, [{}], seed=1)
    with pytest.raises(ValueError, match=r"^on_error 'stop': give one of 'raise', 'collect'$"):
        study.run(on_error="stop")
    with pytest.raises(ValueError, match=r"^executor 'thread': give 'threads', 'processes' or"):
        study.run("thread")
    with pytest.raises(ValueError, match=r"^workers = -1: give 0 or more$"):
        study.run(workers=-1)
    with pytest.raises(RuntimeError, match=r"^7 is no executor$"):
        study.run(7)


def test_an_empty_list_has_an_empty_result():
    results = ve.Ensemble(drawn, [], seed=1).run()
    assert list(results) == []
    assert results.seconds.shape == (0,)
    assert ve.Ensemble(drawn, [], seed=1, reduce=ve.summed()).run().reduced is None


def test_one_is_the_same_as_among_all():
    study = ve.Ensemble(drawn, [{"count": 3}] * 20, seed=5)
    results = study.run(workers=3)
    assert [study.one(k) for k in range(20)] == list(results)
    assert study.one(-1) == results[19]
    with pytest.raises(IndexError, match=r"^task 20 of 20$"):
        study.one(20)


def test_other_tasks_change_nothing():
    some = ve.Ensemble(drawn, [{}] * 3, seed=5).run(workers=0)
    more = ve.Ensemble(drawn, [{}] * 8, seed=5).run(workers=0)
    assert list(more)[:3] == list(some)


def test_the_process_s_sequence_is_left_alone():
    veq.seed(3)
    before = veq.random_state()
    ve.Ensemble(ve.WalkTask(starts=[0], steps=9), [{}] * 4, seed=5, networks=ring()).run(workers=2)
    assert veq.random_state() == before


def test_results_are_a_sequence_in_order():
    results = ve.Ensemble(index_of, [{}] * 50, seed=1).run(workers=7)
    assert list(results) == list(range(50))
    assert results[7] == 7
    assert results[-2:] == [48, 49]
    assert len(results) == 50
    assert repr(results) == "<veq.ensemble.Results: 50 results>"
    assert (results.seconds >= 0).all()


def test_a_task_that_fails_says_which_and_why():
    study = ve.Ensemble(failing, ve.grid(number=[1, 2, 3]), seed=1)
    with pytest.raises(ve.TaskError) as raised:
        study.run(workers=0)
    assert str(raised.value) == "task 2 (number=3): KeyError: 'three'"
    assert raised.value.index == 2
    assert raised.value.parameters == {"number": 3}
    assert isinstance(raised.value.__cause__, KeyError)
    again = pickle.loads(pickle.dumps(raised.value))
    assert str(again) == str(raised.value)


def test_errors_can_be_collected():
    study = ve.Ensemble(failing, ve.grid(number=[3, 1, 3, 2]), seed=1)
    results = study.run(workers=2, on_error="collect")
    assert list(results) == [None, 1, None, 2]
    assert [error.index for error in results.errors] == [0, 2]
    assert repr(results) == "<veq.ensemble.Results: 4 results, 2 failed>"
    with pytest.raises(KeyError):
        study.one(0)


def test_walk_tasks_collect_what_walkers_know():
    collect = ("visits", "coverage", "steps", "end", "positions", "paths")
    walk = ve.WalkTask(starts=[0, 2], steps=6, collect=collect)
    # 0 -> 1 -> 2 -> 3, where it ends.
    network = veq.Network([0, 1, 2], [1, 2, 3], directed=True)
    result = ve.Ensemble(walk, [{}], seed=1, networks=network).one(0)
    assert list(result) == list(collect)
    # Agent 0 arrives at 1, 2 and 3, agent 1 at 3; nobody at 0.
    assert result["visits"].tolist() == [0, 1, 1, 2]
    assert result["coverage"].tolist() == [-1, 1, 2, 1]
    assert (result["steps"], result["end"]) == (6, "steps")
    assert result["positions"].tolist() == [3, 3]
    assert result["paths"].tolist() == [[1, 2, 3, 3, 3, 3], [3, 3, 3, 3, 3, 3]]


def test_walk_tasks_refuse_what_cannot_be():
    def refused(text, networks=None, **parameters):
        study = ve.Ensemble(
            ve.WalkTask(), [parameters], seed=1, networks=ring() if networks is None else networks
        )
        with pytest.raises((ValueError, TypeError)) as raised:
            study.one(0)
        assert str(raised.value) == text

    refused("a walk needs starts or agents, and not both", steps=3)
    refused("a walk needs starts or agents, and not both", steps=3, starts=[0], agents=1)
    refused(
        "collect 'visit': give some of visits, coverage, steps, end, positions, paths",
        starts=[0],
        steps=1,
        collect=("visit",),
    )
    refused("collect 'visits': give a tuple of names", starts=[0], steps=1, collect="visits")
    refused("placed 'even': give one of 'uniform', 'degree'", agents=1, steps=1, placed="even")
    # 4 bytes for each of two agents and 2^23 + 1 steps.
    refused(
        "paths of 67108872 bytes, more than paths_limit=67108864 for each task",
        starts=[0, 1],
        steps=2**23 + 1,
        collect=("paths",),
    )
    refused("paths need a number of steps", starts=[0], until=1.0, collect=("paths",))
    two = {"a": ring(), "b": ring()}
    refused("which network? There are 'a', 'b': give network=", two, starts=[0], steps=1)
    refused("network 'c': there are 'a', 'b'", two, starts=[0], steps=1, network="c")
    with pytest.raises(TypeError, match=r"^WalkTask has no parameter 'stops': give starts, steps"):
        ve.Ensemble(ve.WalkTask(), [{"stops": 3}], seed=1, networks=ring()).one(0)


def test_agents_without_starts_are_placed_by_the_state():
    walk = ve.WalkTask(agents=3, steps=0, collect=("positions",))
    network = ring(100)
    study = ve.Ensemble(walk, ve.grid(placed=["uniform", "degree"]), seed=8, networks=network)
    uniform, by_degree = (result["positions"].tolist() for result in study.run(workers=0))
    state = veq.RandomState(8)
    assert uniform == veq.Walkers.uniform(network, 3, seed=state.substream(0)).positions.tolist()
    placed = veq.Walkers.by_degree(network, 3, seed=state.substream(1))
    assert by_degree == placed.positions.tolist()


def test_listeners_are_a_network_by_name():
    heard = {"ring": ring(9), "who": veq.Network([0], [1], directed=True)}
    walk = ve.WalkTask(
        starts=[0, 4], steps=40, memory=3, network="ring", listeners="who", collect=("positions",)
    )
    walkers = veq.Walkers(heard["ring"], [0, 4], memory=3, listeners=heard["who"])
    walkers.walk(40, seed=veq.RandomState(4).substream(0))
    result = ve.Ensemble(walk, [{}], seed=4, networks=heard).one(0)
    assert result["positions"].tolist() == walkers.positions.tolist()


def test_models_and_chains_are_what_they_stand_for():
    state = veq.RandomState(6)
    grown = veq.random_network(30, 4.0, seed=state.substream(0))
    model = ve.RandomNetwork(n=30, degree=4.0, collect=("vertices", "edges", "degrees"))
    result = ve.Ensemble(model, [{}], seed=6).one(0)
    assert (result["vertices"], result["edges"]) == (len(grown), grown.num_edges)
    assert result["degrees"].tolist() == grown.degrees().tolist()

    chain = ve.Chain(ve.PreferentialAttachment(degree=4), ve.WalkTask(starts=[0], steps=100))
    draws = state.substream(1)
    network = veq.preferential_attachment(25, 4, seed=draws)
    walkers = veq.Walkers(network, [0])
    walkers.walk(100, seed=draws)
    result = ve.Ensemble(chain, ve.grid(n=[20, 25]), seed=6).one(1)
    assert result["visits"].tolist() == walkers.visits().tolist()


@pytest.mark.parametrize(
    "task",
    [
        ve.WalkTask(starts=[0, 3], steps=70),
        ve.WalkTask(starts=[0, 3], steps=70, until=0.5),
        ve.WalkTask(starts=[0, 3], steps=70, memory=2, errors=0.2),
        ve.WalkTask(starts=[0, 3], steps=70, memory=2, restart=0.1),
        ve.WalkTask(agents=4, steps=9, restart=1e-12),
        ve.RandomNetwork(n=40, degree=3.7),
        ve.RandomNetwork(n=1, degree=3.0),
        ve.RandomNetwork(n=0, degree=3.0),
        ve.RandomNetwork(n=12, degree=30.0),
        ve.Chain(ve.RandomNetwork(n=40, degree=3.7), ve.WalkTask(starts=[0], steps=8)),
    ],
)
def test_draws_are_as_many_as_said(task):
    class Seen:
        def __call__(self, context):
            task(context)
            return context.state.words.tolist()

    after = ve.Ensemble(Seen(), [{}], seed=31, networks=ring(9)).one(0)
    assert after == veq.RandomState(31).after(task.draws()).words.tolist()


def test_what_is_exact_is_reduced_by_whom_it_pleases():
    walk = ve.WalkTask(starts=[0], steps=30, collect=("visits", "steps"))
    tasks = [{}] * 40
    singles = ve.Ensemble(walk, tasks, seed=2, networks=ring()).run(workers=0)
    every = np.array([result["visits"] for result in singles])

    def reduced(reduction, workers):
        study = ve.Ensemble(walk, tasks, seed=2, networks=ring(), reduce=reduction)
        results = study.run(workers=workers)
        assert list(results) == []
        return results.reduced

    for workers in (0, 3):
        assert reduced(ve.summed("visits"), workers).tolist() == every.sum(axis=0).tolist()
        assert reduced(ve.minimum("visits"), workers).tolist() == every.min(axis=0).tolist()
        assert reduced(ve.maximum("visits"), workers).tolist() == every.max(axis=0).tolist()
        assert reduced(ve.summed("steps"), workers) == 40 * 30
        counts = reduced(ve.histogram("visits", [0, 5, 10, 40]), workers)
        assert counts.tolist() == np.histogram(every, [0, 5, 10, 40])[0].tolist()


def share(context, **parameters):
    return 10.0 ** (context.index % 17)


def test_floats_are_added_in_the_order_of_the_list():
    study = ve.Ensemble(share, [{}] * 100, seed=1, reduce=ve.summed(exact=False))
    expected = 0.0
    for k in range(100):
        expected = expected + 10.0 ** (k % 17) if k else 1.0
    assert all(study.run(workers=w).reduced == expected for w in (0, 1, 5))


def test_sums_of_floats_are_not_exact():
    with pytest.raises(ve.TaskError, match="a result is no integer: add it with exact=False"):
        ve.Ensemble(share, [{}], seed=1, reduce=ve.summed()).run(workers=0)
    with pytest.raises(ve.TaskError, match="the result has no 'x'"):
        ve.Ensemble(share, [{}], seed=1, reduce=ve.summed("x")).run(workers=0)


def test_frames_have_a_column_for_each_parameter_and_result():
    walk = ve.WalkTask(starts=[0], collect=("steps", "end"))
    study = ve.Ensemble(walk, ve.grid(memory=[1, 2], steps=[3, 4]), seed=1, networks=ring())
    frame = study.run(workers=0).to_frame()
    assert list(frame.columns) == ["task", "memory", "steps", "steps_result", "end"]
    assert frame["memory"].tolist() == [1, 1, 2, 2]
    assert frame["steps_result"].tolist() == [3, 4, 3, 4]
    assert ve.Ensemble(index_of, [{}] * 2, seed=1).run().to_frame()["result"].tolist() == [0, 1]


def philox(context):
    return context.numpy().integers(0, 2**32, 3).tolist()


def test_numpy_has_a_generator_for_each_task():
    results = ve.Ensemble(philox, [{}] * 2, seed=3).run(workers=2)
    key = [1, 3]  # The words of the key, the lower one first: the number of the task, the seed.
    other = np.random.Generator(np.random.Philox(key=np.array(key, np.uint64)))
    assert results[1] == other.integers(0, 2**32, 3).tolist()
    assert results[0] != results[1]


def test_values_are_alike_whatever_objects_they_are():
    text = "".join(["st", "eps"])
    assert sha256(["steps", "steps"]) == sha256(["steps", text])
    assert sha256({"a": np.arange(3)}) == sha256({"a": np.arange(3).astype(">i8")})
    assert sha256(np.arange(3)) != sha256(np.arange(3, dtype=np.int32))
    assert sha256([1, 2]) != sha256([12])
    assert sha256([[1], 2]) != sha256([[1, 2]])
    assert sha256(0.0) != sha256(-0.0)
    assert sha256(1) != sha256(True)
    assert sha256({1, 2}) == sha256({2, 1})
    assert sha256(ring(3)) == sha256(ring(3).copy())
    weighted = ring(3)
    weighted.edge_data["Length"] = [1.0, 2.0, 3.0]
    assert sha256(ring(3)) != sha256(weighted)
    assert sha256(lambda: 1) != sha256(lambda: 2)
    assert sha256(ve.WalkTask(steps=1)) != sha256(ve.WalkTask(steps=2))


def test_sealed_networks_are_the_network():
    network = veq.Network([0, 1], [1, 2], edge_weights=[0.5, 2.0])
    network.vertex_data["Name"] = ["a", "b", "c"]
    sealed = ve.SealedNetwork(network)
    assert sealed.network.names == ["a", "b", "c"]
    assert sealed.network.edge_weights.tolist() == [0.5, 2.0]
    assert sealed.fingerprint == sha256(network)
    # The head, and the lists and weights, each from a multiple of 64 bytes on.
    assert sealed.bytes >= 64 + 5 * 64
    with pytest.raises(TypeError, match="^sealed memory cannot be pickled: send the network$"):
        pickle.dumps(sealed)
    walk = ve.WalkTask(starts=["a"], steps=9)
    plain = ve.Ensemble(walk, [{}], seed=1, networks=network).run(workers=0)
    kept = ve.Ensemble(walk, [{}], seed=1, networks={"network": sealed}).run(workers=0)
    assert plain.sha256() == kept.sha256()


def test_a_path_to_sealed_memory_leads_to_no_other():
    first = ve.SealedNetwork(ring(5))
    path = first.path
    ref = NetworkRef(first.fingerprint, path)
    assert found(ref).edges.tolist() == ring(5).edges.tolist()
    forget()
    del first
    gc.collect()
    other = ve.SealedNetwork(ring(7))
    assert other.path.descriptor == path.descriptor
    assert path.opened() is None
    assert found(ref) is None

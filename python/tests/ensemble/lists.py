"""Random lists of tasks, and their results by plain loops over the package's own functions."""

import random

import veq
import veq.ensemble as ve

SIMPLE = {"steps", "end", "visits", "positions"}


KINDS = {
    "walk": ve.WalkTask(),
    "random": ve.RandomNetwork(),
    "attachment": ve.PreferentialAttachment(),
    "random, then walk": ve.Chain(ve.RandomNetwork(), ve.WalkTask()),
    "attachment, then walk": ve.Chain(ve.PreferentialAttachment(), ve.WalkTask()),
}


class Mixed:
    """A task of any kind."""

    def __call__(self, context, kind, **parameters):
        return KINDS[kind](context, **parameters)

    def draws(self, kind, **parameters):
        return KINDS[kind].draws(**parameters)


def networks():
    return {
        "ring": veq.lattice([30], periodic=True),
        "grown": veq.preferential_attachment(60, 4, seed=11),
        "directed": veq.gnm(40, 160, directed=True, seed=12),
    }


def random_walk(draw, vertices, counted):
    walk = {"collect": tuple(draw.sample(["visits", "coverage", "steps", "end", "positions"], 3))}
    agents = draw.randint(1, 4)
    if draw.random() < 0.3:
        walk.update(agents=agents, placed=draw.choice(["uniform", "degree"]))
    else:
        walk["starts"] = [draw.randrange(vertices) for _ in range(agents)]
    walk["choice"] = draw.choice(["published", "even"])
    if draw.random() < 0.5:
        walk.update(memory=draw.randint(1, 6), errors=draw.choice([0.0, 0.1]))
    if draw.random() < 0.3:
        walk["restart"] = 0.05
    # Without a number of steps a target may be out of reach.
    walk["steps"] = draw.randint(0, 2000)
    if draw.random() < 0.4:
        walk["until"] = draw.choice([0.2, 0.9])
    return walk


def random_task(draw, counted):
    kinds = ["walk", "walk", "random", "random, then walk"]
    kind = draw.choice(kinds if counted else [*kinds, "attachment", "attachment, then walk"])
    if kind == "walk":
        name = draw.choice(["ring", "grown", "directed"])
        return {"kind": kind, "network": name, **random_walk(draw, 30, counted)}
    model = {"n": draw.randint(8, 40)}
    model["degree"] = draw.choice([4, 6]) if kind.startswith("att") else draw.uniform(2, 5)
    if "walk" not in kind:
        collect = draw.choice([("network",), ("edges", "degrees")])
        return {"kind": kind, **model, "collect": collect}
    # The last vertices of a random network may be left out.
    return {"kind": kind, **model, **random_walk(draw, 1, counted)}


def random_list(number):
    """Seed, mode and tasks of list `number`."""
    draw = random.Random(number)
    mode = draw.choice(["substream", "substream", "row"])
    tasks = [random_task(draw, mode == "row") for _ in range(draw.randint(1, 25))]
    return {"seed": draw.randint(1, 2**32 - 1), "mode": mode, "tasks": tasks}


def ensemble(number):
    return ve.Ensemble(Mixed(), networks=networks(), **random_list(number))


def walked(network, walk, seed):
    more = {key: walk[key] for key in ("memory", "errors") if key in walk}
    if "agents" in walk:
        place = {"uniform": veq.Walkers.uniform, "degree": veq.Walkers.by_degree}[walk["placed"]]
        walkers = place(network, walk["agents"], seed=seed, **more)
    else:
        walkers = veq.Walkers(network, walk["starts"], **more)
    walk_options = {key: walk[key] for key in ("until", "choice", "restart") if key in walk}
    made = walkers.walk(walk["steps"], first_arrivals=True, seed=seed, **walk_options)
    everything = {
        "visits": walkers.visits(),
        "coverage": made.first_arrivals,
        "steps": made.steps,
        "end": made.end,
        "positions": walkers.positions,
    }
    return {key: everything[key] for key in walk["collect"]}


def plainly(task, every, seed):
    """What a task gives, by the functions that it stands for."""
    kind = task["kind"]
    if kind == "walk":
        return walked(every[task["network"]], task, seed)
    grow = veq.random_network if kind.startswith("random") else veq.preferential_attachment
    network = grow(task["n"], task["degree"], seed=seed)
    if "walk" in kind:
        return walked(network, task, seed)
    everything = {
        "network": network,
        "edges": network.num_edges,
        "degrees": network.degrees(),
    }
    return {key: everything[key] for key in task["collect"]}


def plain_loop(number):
    """The results of list `number` without the ensemble."""
    said = random_list(number)
    every = networks()
    if said["mode"] == "row":
        veq.seed(said["seed"])
        return [plainly(task, every, None) for task in said["tasks"]]
    state = veq.RandomState(said["seed"])
    return [plainly(task, every, state.substream(k)) for k, task in enumerate(said["tasks"])]

#!/usr/bin/env python3
"""Measures the library beside the peers that were built, and prints one table of ratios.

    run.py DIRECTORY [--only TASK[,TASK]] [--smallest SIZE] [--largest SIZE] [--rounds N] [--quick]
           [--cpu N] [--work DIRECTORY] [--markdown] [--against PROGRAM] [--threads 1,2]

DIRECTORY holds the programs. --against compares with this library's own program of another revision alone,
in the lines that it offers: results must be equal, and the bar is 1.02. --threads 1,2 compares two threads
with one, where work is shared. --largest leaves out the lines with more vertices, edges or numbers,
--smallest those with fewer, --quick those with more than 1e5, for a look. Every line of the table compares medians of one run:
the programs of a line take turns, `rounds` times, on one core. A bar is the largest ratio of our
figure to the peer's that is good enough. Where results must be equal, the checksums are compared.
"""
import argparse
import dataclasses
import os
import re
import statistics
import subprocess
import sys
import tempfile
import time

# Peers take seconds for a call of this size, so that fewer repetitions do.
LARGE = 1e7
# What a program ends with that does not offer a task.
NOT_OFFERED = 3
# A heap that keeps what is freed. Otherwise the C library gives its top back to the system, or does not,
# by what happens to lie there, and whoever repeats a task waits for some 10,000 pages again.
KEPT_HEAP = {"MALLOC_TRIM_THRESHOLD_": str(2**40), "MALLOC_MMAP_THRESHOLD_": str(2**40)}


@dataclasses.dataclass
class Peer:
    program: str
    call: str  # "TASK key=value ..."
    bar: float  # of our figure as a multiple of the peer's
    note: str = ""
    same: bool = False  # the checksums must agree


@dataclasses.dataclass
class Line:
    group: str
    name: str
    call: str
    peers: list = dataclasses.field(default_factory=list)
    figure: str = ""  # an extra of the row instead of the time
    limit: float = 0  # on our figure itself, or the least where negative

    @property
    def size(self):
        return size_of(self.call)


def size_of(call):
    """The most vertices, edges or numbers that a call speaks of."""
    sizes = re.findall(r"\b[mn]=([0-9.e]+)|/([0-9.e]+)\.(?:net|xnet|edges|el|graphml|gml|mtx|veqa)\b", call)
    return max((float(a or b) for a, b in sizes), default=0)


def building():
    for size, igraph, boost, base in (("1e4", 0.25, 0.3, 1.6), ("1e6", 0.25, 0.3, 1.6),
                                      ("1e7", 0.12, 0.3, 1.6)):
        call = f"build m={size}"
        yield Line("build", f"undirected, {size} edges", call,
                   [Peer("igraph", call, igraph), Peer("boost", call, boost, "adjacency_list"),
                    Peer("base", call, base, "part32")])
    for size, igraph in (("1e6", 0.25), ("1e7", 0.12)):
        call = f"build m={size} dir=1"
        yield Line("build", f"directed, {size} edges", call, [Peer("igraph", call, igraph)])
    yield Line("build", "bytes an edge, undirected, 1e7", "build m=1e7 reps=1",
               figure="bytes_per_edge", limit=42)
    yield Line("build", "bytes an edge, directed, 1e7", "build m=1e7 dir=1 reps=1",
               figure="bytes_per_edge", limit=45)
    yield Line("insert", "1e6 single edges", "insert m=1e6",
               [Peer("boost", "insert m=1e6", 1.5, "add_edge")])
    yield Line("insert", "1e6 single edges, a view after each 1000", "insert m=1e6 batch=1000",
               [Peer("boost", "insert m=1e6", 1.5, "add_edge")])


def questions():
    for size in ("1e6", "1e7"):
        call = f"degrees m={size}"
        yield Line("degrees", f"{size} edges", call, [Peer("boost", call, 2, "rows")])
        call = f"strengths m={size}"
        yield Line("strengths", f"{size} edges", call, [Peer("igraph", call, 0.2)])
    call = "adjmat n=5000 m=1e5"
    yield Line("matrix", "n = 5000, caller's buffer", call, [Peer("igraph", call, 0.5, same=True)])


def structure():
    """What takes long to ask; igraph counts loops into cores, and adds in another order."""
    for kind, n in (("pl", "2e5"), ("un", "2e5")):
        where = f"kind={kind} n={n} m=1e6"
        for name, task, bar, same in (("distances from 100", "distances", 1, True),
                                      ("PageRank to 1e-10", "pagerank", 1, False),
                                      ("transitivity", "transitivity", 1, True),
                                      ("core numbers", "cores", 0.5, False),
                                      ("weak components", "labels", 0.5, True)):
            call = f"{task} {where}"
            yield Line("questions", f"{name}, {kind}, 1e6 edges", call,
                       [Peer("igraph", call, bar, same=same)])


def components():
    for n, m in (("1e4", "6e3"), ("1e5", "6e4"), ("1e6", "6e5")):
        call = f"decompose kind=un n={n} m={m}"
        yield Line("components", f"full split, n = {n}", call,
                   [Peer("igraph", call, 0.3, same=True)])
    for kind, n, m in (("un", "1e6", "1e6"), ("pl", "2e5", "1e6"), ("pl", "2e6", "1e7")):
        call = f"largest kind={kind} n={n} m={m}"
        yield Line("components", f"largest, {kind}, n = {n}, m = {m}", call,
                   [Peer("igraph", call, 0.3, same=True)])


def models():
    for size, times in (("1e4", "100"), ("1e5", "100"), ("1e6", "10")):
        call = f"doubles n={size} times={times}"
        yield Line("doubles", f"{size} in order", call, [Peer("base", call, 1 / 12, "random()")])
    yield Line("doubles", "1e7, memory touched before", "doubles n=1e7 touched=1",
               [Peer("base", "doubles n=1e7", 1 / 12, "random()")])
    call = "gnp n=2e4 k=10"
    yield Line("random network", "every pair of 2e4 drawn", call,
               [Peer("base", call + " reps=1", 1 / 60, "random()", True),
                Peer("igraph", call, 2.5, "skips pairs")])
    for n in ("1e5", "1e6"):
        for m in (2, 4, 8):
            call = f"ba n={n} m={m}"
            yield Line("preferential attachment", f"n = {n}, m = {m}", call,
                       [Peer("igraph", call + " algo=bag", 0.45, "bag, its fastest"),
                        Peer("base", call, 1.4, "part32", True)])
    for n in ("1e5", "1e6"):
        for name, task, theirs, bar, note in (
                ("G(n, p), mean degree 10", f"model_gnp n={n} k=10", "", 0.5, ""),
                ("G(n, m), mean degree 10", f"model_gnm n={n} k=10", "", 1.0, ""),
                ("Barabasi-Albert, m = 4", f"model_ba n={n} m=4", f"ba n={n} m=4 algo=bag", 0.5,
                 "bag, its fastest"),
                ("configuration, mean degree 10", f"model_configuration n={n} k=10", "", 0.5, ""),
                ("Watts-Strogatz, 10, p = 0.1", f"model_ws n={n} k=10 p=0.1", "", 1.0,
                 "without parallel edges"),
                ("Watts-Strogatz, 10, p = 0.1", f"model_ws n={n} k=10 p=0.1",
                 f"model_ws n={n} k=10 p=0.1 multiple=1", 1.0, "with parallel edges")):
            yield Line("models", f"{name}, n = {n}", task,
                       [Peer("igraph", theirs or task, bar, note),
                        Peer("networkx", task + " reps=1", 0.1)])


def walks():
    for size in ("1e4", "1e5", "1e6", "1e7"):
        for agents in (1, 16, 256, 1024):
            call = f"walk m={size} A={agents} S={4000000 // agents}"
            fewer = f"walk m={size} A={agents} S={1000000 // agents} reps=3"
            peers = [Peer("base", call, 1.15 if agents == 1 else 1.5, "positions only", True),
                     Peer("igraph", fewer, 1)]
            if agents > 1 or size != "1e4":
                peers.append(Peer("boost", call, 1))
            yield Line("walk", f"A = {agents}, {size} edges", call, peers, figure="ns_per_step")
    call = "walk m=1e6 A=256 S=15625"
    yield Line("walk", "reach target 2.0", call + " reach=2", [Peer("veq", call, 1.3, "without")])
    yield Line("walk", "with paths", call + " paths=1", [Peer("veq", call, 1.3, "without")])
    yield Line("walk", "one-step calls, ns", "single_steps m=5e5 n=1e5 A=1000 S=1000",
               figure="ns_per_step", limit=20)
    yield Line("walk", "MB above the network, S = 1e4",
               "walk_memory m=4e6 n=2e6 A=1024 S=1e4 reps=1", figure="peak_MB", limit=100)
    yield Line("walk", "bytes a move with paths",
               "walk_memory m=1e6 A=256 S=15625 paths=1 reps=1", figure="bytes_per_move", limit=8)


def texts(work):
    for size in ("1e4", "1e6", "1e7"):
        net, xnet = f"{work}/{size}.net", f"{work}/{size}.xnet"
        few = " reps=1" if size == "1e7" else ""  # igraph takes long
        yield Line("Pajek", f"read, {size} edges", f"read_pajek file={net}",
                   [Peer("igraph", f"read_pajek file={net}" + few, 0.15, same=True)])
        write = f"write_pajek m={size} out={work}/written"
        yield Line("Pajek", f"write, {size} edges", write,
                   [Peer("igraph", write + few, 0.15)])
        yield Line("xnet", f"read, {size} edges", f"read_xnet file={xnet}",
                   [Peer("veq", f"read_pajek file={net}", 1, "Pajek")])
        yield Line("xnet", f"write, {size} edges", f"write_xnet m={size} out={work}/written",
                   [Peer("veq", write, 1, "Pajek")])
        if size == "1e6":
            yield Line("xnet", "read, MB/s", f"read_xnet file={xnet}", figure="MB_per_s",
                       limit=-200)
            yield Line("xnet", "write, MB/s", f"write_xnet m={size} out={work}/written",
                       figure="MB_per_s", limit=-200)
        if size != "1e4":
            read = f"read_edges file={work}/{size}.edges"
            yield Line("edge list", f"read, {size} edges", read,
                       [Peer("igraph", read + few, 0.6, "ncol", True)])
            write = f"write_edges m={size} out={work}/written"
            yield Line("edge list", f"write, {size} edges", write,
                       [Peer("igraph", write + few, 0.15, "ncol")])


def any_file(work):
    """The reader that takes any file, beside the published ones and those of others. igraph's fastest reader
    of lists takes indices alone."""
    for size in ("1e4", "1e6"):
        def file(suffix):
            return f"{work}/{size}.{suffix}"
        few = " reps=3" if size == "1e6" else ""
        for name, suffix in (("Pajek", "net"), ("xnet", "xnet"), ("edges", "edges")):
            read = f"read_any file={file(suffix)}"
            yield Line("any file", f"{name}, {size} edges", read,
                       [Peer("veq", f"read_{name.lower()} file={file(suffix)}", 1.1, "published")])
        archive = f"read_archive_file file={file('veqa')}"
        yield Line("any file", f"archive, {size} edges", f"read_any file={file('veqa')}",
                   [Peer("veq", archive, 1.1, "published")])
        indices = f"read_indices file={file('el')}" + few
        yield Line("any file", f"list, {size} edges", f"read_any file={file('el')}",
                   [Peer("igraph", indices, 0.15, "edgelist, its fastest")])
        edges = f"read_edges file={file('edges')}"
        yield Line("any file", f"list with names and weights, {size} edges",
                   f"read_any file={file('edges')}",
                   [Peer("igraph", edges + few, 0.6, "ncol"), Peer("networkx", edges, 0.1)])
        yield Line("any file", f"Matrix Market, {size} edges", f"read_any file={file('mtx')}",
                   [Peer("igraph", indices, 0.15, "edgelist, its fastest")])
        for name, task, suffix in (("GraphML", "read_graphml", "graphml"), ("GML", "read_gml", "gml")):
            call = f"{task} file={file(suffix)}"
            yield Line("any file", f"{name}, {size} edges", f"read_any file={file(suffix)}",
                       [Peer("igraph", call + few, 0.3), Peer("networkx", call, 0.1)])


def archives():
    for task in ("encode_numbers", "decode_numbers"):
        yield Line("archive", f"{task.replace('_', ' ')}, 1e7", task + " n=1e7",
                   [Peer("base", "copy n=1e7", 3, "memcpy, warm")])
    yield Line("archive", "read, 1e7 edges", "read_archive m=1e7",
               [Peer("veq", "build m=1e7", 1.2, "build")])


def shared(work, threads):
    """What several threads share, by the clock on the wall, beside one of them: the bar is what two are to
    gain."""
    def line(name, call, gain):
        one = Peer("veq", call + f" threads={threads[0]}", 1 / gain, f"{threads[0]} thread", True)
        return Line("threads", f"{name}, {threads[1]} threads", call + f" threads={threads[1]}", [one])
    for size in ("1e6", "1e7"):
        for agents, steps in ((256, 15625), (1024, 3906)):
            yield line(f"walk, A = {agents}, {size}", f"walk m={size} A={agents} S={steps}", 1.7)
    walk = "walk m=1e6 A=256 S=15625"
    yield line("walk to a target, 1e6", walk + " reach=2", 1.3)
    yield line("walk with paths, 1e6", walk + " paths=1", 1.7)
    yield line("walk beyond the log, 1e4", "walk m=1e4 A=1024 S=39060", 1.7)
    yield line("walk with memory, 1e6", "walk m=1e6 A=256 S=2000 memory=10", 1.7)
    for n in ("2e4", "1e5"):
        yield line(f"random network, n = {n}", f"gnp n={n} k=10", 1.8)
    for size in ("1e6", "1e7"):
        yield line(f"build, {size}", f"build m={size}", 1.5)
    yield line("weak components, 1e6", "labels kind=un n=1e6 m=1e6", 1.4)
    yield line("read Pajek, 1e7", f"read_pajek file={work}/1e7.net", 1.6)
    yield line("read xnet, 1e7", f"read_xnet file={work}/1e7.xnet", 1.6)
    yield line("read any Pajek, 1e7", f"read_any file={work}/1e7.net", 1.6)
    yield line("read any list, 1e7", f"read_any file={work}/1e7.el", 1.4)
    yield line("write Pajek, 1e7", f"write_pajek m=1e7 out={work}/written", 1.6)
    yield line("write xnet, 1e7", f"write_xnet m=1e7 out={work}/written", 1.6)


def files(runner, work, lines):
    for size in ("1e4", "1e6", "1e7"):
        if not any(f"{work}/{size}." in line.call for line in lines):
            continue
        runner.once("base", f"write_file format=net m={size} out={work}/{size}.net reps=1")
        runner.once("base", f"write_file format=edges m={size} out={work}/{size}.edges reps=1")
        runner.once("veq", f"write_xnet m={size} out={work}/{size}.xnet reps=1")
        runner.once("veq", f"write_archive_file m={size} out={work}/{size}.veqa reps=1")
        for suffix in ("el", "graphml", "gml", "mtx"):
            named = int(suffix in ("graphml", "gml"))
            if any(f"{work}/{size}.{suffix}" in line.call for line in lines):
                runner.once("veq", f"write_any m={size} named={named} out={work}/{size}.{suffix} reps=1")


class Runner:
    def __init__(self, directory, cpu, against):
        self.pin = ["taskset", "-c", cpu]
        names = ("veq", "base", "igraph", "boost", "networkx")
        programs = {name: os.path.join(directory, name + "_bench") for name in names}
        programs["before"] = against
        self.programs = {n: p for n, p in programs.items() if os.path.exists(p)}
        for name in names:
            if name not in self.programs:
                print(f"{name} is not here and left out.", file=sys.stderr)

    def once(self, program, call):
        """One process: (figures by name, checksum). The time is in seconds."""
        command = [*self.pin, self.programs[program], *call.split()]
        if program not in ("veq", "before") and "reps=" not in call and size_of(call) >= LARGE:
            command.append("reps=3")
        # What is done once does not wait for itself, and may be asked what memory it takes.
        environment = os.environ if "reps=1" in call.split() else os.environ | KEPT_HEAP
        row = subprocess.run(command, check=True, capture_output=True, text=True,
                             env=environment).stdout
        _, parameters, median, _, _, _, checksum = row.strip().split(",")
        figures = dict(p.split("=", 1) for p in parameters.split(";") if "=" in p)
        figures["seconds"] = median
        return figures, checksum

    def line(self, line, rounds):
        peers = [p for p in line.peers if p.program in self.programs]
        calls = [("veq", line.call)] + [(p.program, p.call) for p in peers]
        figure = line.figure or "seconds"
        measured = [[] for _ in calls]
        checksums = [None for _ in calls]
        for round in range(rounds):
            turns = list(enumerate(calls))
            for i, (program, call) in turns if round % 2 == 0 else reversed(turns):
                figures, checksums[i] = self.once(program, call)
                measured[i].append(float(figures[figure]))
        medians = [statistics.median(m) for m in measured]
        for peer, checksum in zip(peers, checksums[1:]):
            if peer.same and checksum != checksums[0]:
                raise SystemExit(f"{line.name}: {peer.program} has another result: "
                                 f"{checksum} instead of {checksums[0]}")
        return medians[0], list(zip(peers, medians[1:]))


    def offers(self, program, line):
        command = [*self.pin, self.programs[program], *line.call.split(), "reps=1"]
        return subprocess.run(command, capture_output=True).returncode != NOT_OFFERED


def against(runner, lines):
    """The lines that the other revision offers, with it alone beside them. What is good when it is large, such
    as a speed, is a time in another line."""
    for line in lines:
        if line.limit >= 0 and runner.offers("before", line):
            same = "write" not in line.call  # what is written may be said in other words
            yield dataclasses.replace(line, limit=0, peers=[Peer("before", line.call, 1.02, same=same)])


def shown(value, figure):
    if figure:
        return f"{value:.3g}"
    for factor, unit in ((1, "s"), (1e3, "ms"), (1e6, "us")):
        if value * factor >= 1:
            return f"{value * factor:.3g} {unit}"
    return f"{value * 1e9:.3g} ns"


def main():
    options = argparse.ArgumentParser()
    options.add_argument("directory")
    options.add_argument("--only", default="")
    options.add_argument("--smallest", type=float, default=0)
    options.add_argument("--largest", type=float, default=float("inf"))
    options.add_argument("--rounds", type=int, default=1)
    options.add_argument("--quick", action="store_true")
    options.add_argument("--cpu", default="1")
    options.add_argument("--work", default="")
    options.add_argument("--markdown", action="store_true")
    options.add_argument("--against", default="")
    options.add_argument("--threads", default="")
    options = options.parse_args()
    if options.quick:
        options.largest = min(options.largest, 1e5)
    begin = time.monotonic()
    only = [name for name in options.only.split(",") if name]
    runner = Runner(options.directory, options.cpu, options.against)

    with tempfile.TemporaryDirectory() as temporary:
        work = options.work or temporary
        os.makedirs(work, exist_ok=True)
        if options.threads:
            runner.pin = []
            lines = [*shared(work, options.threads.split(","))]
        else:
            lines = [*building(), *questions(), *components(), *structure(), *models(), *walks(),
                     *texts(work), *any_file(work), *archives()]
        lines = [l for l in lines if not only or l.group in only]
        lines = [l for l in lines if options.smallest <= l.size <= options.largest]
        files(runner, work, lines)
        if options.against:
            lines = against(runner, lines)
        table = (lambda *cells: print("| " + " | ".join(cells) + " |", flush=True)) \
            if options.markdown else \
            (lambda *cells: print("%-24s %-32s %10s  %-28s %10s %8s %7s %s" % cells, flush=True))
        table("task", "size", "ours", "beside", "theirs", "ratio", "bar", "")
        if options.markdown:
            table(*["---"] * 8)
        missed = 0
        for line in lines:
            ours, peers = runner.line(line, options.rounds)
            if line.limit:
                good = ours <= line.limit if line.limit > 0 else ours >= -line.limit
                missed += not good
                table(line.group, line.name, shown(ours, line.figure), "", "", "",
                      f"{abs(line.limit):g}", "" if good else "missed")
            for peer, theirs in peers:
                ratio = ours / theirs
                missed += ratio > peer.bar
                beside = peer.program + (f" ({peer.note})" if peer.note else "")
                table(line.group, line.name, shown(ours, line.figure), beside,
                      shown(theirs, line.figure), f"{ratio:.3f}", f"{peer.bar:.3g}",
                      "" if ratio <= peer.bar else "missed")
    minutes = (time.monotonic() - begin) / 60
    print(f"{missed} bars missed; {minutes:.1f} minutes", file=sys.stderr)


if __name__ == "__main__":
    main()

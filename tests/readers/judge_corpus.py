"""Reads the corpus of tests/data/reading and holds it against two things: the dump beside each file,
and what NetworkX and igraph make of it. Where these do not read a file, or see another network, the
file `peers` there says so with the reason, and each of its lines must still be true.

Usage: judge_corpus.py PROGRAM FOLDER [--write], where PROGRAM is reading_sample; --write makes the
dumps anew, for somebody to look at.
"""

import pathlib
import re
import sys
import warnings

import peers

warnings.filterwarnings("ignore")


def verdicts_in(path):
    """FILE PEER VERDICT REASON, of which the verdict is "differs" or "refuses". The peer may be one of
    older or newer versions alone: igraph<0.11, igraph>=0.11."""
    verdicts = {}
    for line in path.read_text("utf-8").splitlines():
        if line and not line.startswith("#"):
            file, peer, verdict, reason = line.split(None, 3)
            assert verdict in ("differs", "refuses") and reason, line
            name, order, bound = re.fullmatch(r"([a-z]+)(?:(<|>=)([0-9.]+))?", peer).groups()
            older = order and peers.version_of(name) < tuple(map(int, bound.split(".")))
            if not order or older == (order == "<"):
                assert (file, name) not in verdicts, line
                verdicts[file, name] = verdict
    return verdicts


def part(form):
    """What both sides can be asked for: none keep attributes alike."""
    return form._replace(attributes={})


def verdict_of(ours, read, path):
    try:
        theirs = peers.guarded(read, str(path))
    except peers.Refused as error:
        return "refuses", str(error)
    if part(theirs) == part(ours):
        return "agrees", ""
    return "differs", f"\n  ours   {part(ours)}\n  theirs {part(theirs)}"


def readers_of(path, format_name):
    """Nobody is asked about makes of lists that have only a header in common with theirs."""
    lists = (".el", ".edgelist", ".txt", ".tsv", ".ncol", ".csv", "")
    if format_name == "list" and path.suffix not in lists:
        return []
    if path.suffix == ".csv" and path.name != "commas.csv" or path.name.startswith("konect"):
        return []
    readers = peers.READERS.get(format_name, {})
    return [(peer, read) for peer, read in readers.items()
            if not (peer == "igraph" and path.suffix == ".csv")]


def main(program, folder, *options):
    folder = pathlib.Path(folder)
    files = sorted(path for path in folder.iterdir()
                   if path.suffix != ".dump" and path.name != "peers")
    expected = verdicts_in(folder / "peers")
    dumps = dict(zip(files, peers.dumps_of(program, [str(path) for path in files])))
    wrong = 0
    judged = 0
    for path, dump in dumps.items():
        beside = path.with_name(path.name + ".dump")
        if "--write" in options:
            beside.write_text(dump, "utf-8")
        elif not beside.exists() or beside.read_text("utf-8") != dump:
            print(f"{path.name}: not what {beside.name} says:\n{dump}")
            wrong += 1
        try:
            ours = peers.form_of_dump(dump)
        except peers.Refused:
            continue
        format_name = peers.format_of_dump(dump)
        for peer, read in readers_of(path, format_name):
            found, why = verdict_of(ours, read, path)
            judged += 1
            if found != expected.pop((path.name, peer), "agrees"):
                print(f"{path.name}: {peer} {found} {why}")
                wrong += 1
    for file, peer in expected:
        print(f"peers: {file} {peer}: nobody was asked")
        wrong += 1
    print(f"{len(files)} files, {judged} judgements of peers, {wrong} wrong")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

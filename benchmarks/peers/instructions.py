#!/usr/bin/env python3
"""Counts the instructions of small tasks under callgrind, and compares them with a table.

    instructions.py PROGRAM COMPILER [--update]

A number of instructions is the same in every run, so that little is enough to notice: a task that takes
over 3 % more than the table says fails. The table counts what one compiler made; what another made is
shown and fails nothing. --update writes the table, for a commit that says why.
"""
import os
import re
import subprocess
import sys
import tempfile

TABLE = os.path.join(os.path.dirname(__file__), "instructions.tsv")
MOST = 1.03
# One call of the task is counted, with nothing bound late.
COUNTED = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", "--collect-atstart=no",
           "--toggle-collect=*measuredWork*"]


def table():
    with open(TABLE, encoding="utf-8") as lines:
        compiler = next(lines).removeprefix("# ").strip()
        rows = [line.rstrip("\n").split("\t") for line in lines]
    return compiler, [(call, int(count)) for call, count in rows]


def files(program, work):
    """The files that tasks read; what they write lies beside them."""
    for suffix in ("xnet", "net", "el", "mtx", "gml"):
        subprocess.run([program, "write_any", "m=1e4", f"out={work}/1e4.{suffix}", "reps=1"], check=True,
                       capture_output=True)


def count(program, call, work):
    command = [*COUNTED, program, *call.replace("WORK", work).split(), "reps=1"]
    environment = {**os.environ, "LD_BIND_NOW": "1"}
    ended = subprocess.run(command, capture_output=True, text=True, env=environment)
    found = re.search(r"Collected : (\d+)", ended.stderr)
    if ended.returncode != 0 or not found or int(found.group(1)) == 0:
        sys.exit(f"{call}: nothing was counted\n{ended.stderr}")
    return int(found.group(1))


def main():
    program, compiler = sys.argv[1:3]
    update = sys.argv[3:] == ["--update"]
    counted_by, rows = table()
    comparable = compiler == counted_by
    if not comparable and not update:
        print(f"The table counts what {counted_by} made, so what {compiler} made is only shown.")
    failed = 0
    counts = []
    with tempfile.TemporaryDirectory() as work:
        files(program, work)
        for call, before in rows:
            now = count(program, call, work)
            counts.append((call, now))
            worse = comparable and not update and now > MOST * before
            failed += worse
            print(f"{call:44} {now:12} {100 * (now / before - 1):+7.2f} %{'  too many' if worse else ''}",
                  flush=True)
    if update:
        with open(TABLE, "w", encoding="utf-8") as lines:
            lines.write(f"# {compiler}\n")
            lines.writelines(f"{call}\t{now}\n" for call, now in counts)
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

"""calls.py build|walk ENDS VERTICES: the same as calls.cpp, by Python."""

import gc
import sys
import time

import numpy as np

import veq


def least(rounds, call):
    times = []
    for _ in range(rounds + 1):
        begun = time.process_time()
        call()
        times.append(time.process_time() - begun)
    return min(times)


def main():
    task, path, vertices = sys.argv[1:]
    ends = np.fromfile(path, np.int64).reshape(2, -1)
    gc.disable()

    def build():
        return veq.Network(*ends, n=int(vertices))

    def build_and_give_up():
        build()

    if task == "build":
        print(least(20, build_and_give_up))
        return
    network = build()
    starts = np.arange(1000)

    def walk():
        walkers = veq.Walkers(network, starts)
        walkers.walk(1000, seed=1)
        walkers.visits()

    print(least(40, walk))


if __name__ == "__main__":
    main()

"""Run by hosts.sh: an ensemble by the workers of a scheduler, compared with a loop."""

import sys
import time

from distributed import Client
from test_proofs import slow_study


def main(address, what):
    study = slow_study(1500)
    with Client(address, set_as_default=False, timeout=60) as client:
        client.wait_for_workers(2 if "both" in what else 1, timeout=120)
        begun = time.monotonic()
        results = study.run(client, retries=100, progress=False)
        elapsed = time.monotonic() - begun
        hosts = {worker.split(":")[1] for worker in client.scheduler_info()["workers"]}
    if results.sha256() != study.run(workers=8).sha256():
        raise SystemExit(f"{what}: another result")
    print(f"{what}: the same result, in {elapsed:.0f} s, with {len(hosts)} workers in the end")


if __name__ == "__main__":
    main(*sys.argv[1:])

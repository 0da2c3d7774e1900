#!/usr/bin/env bash
# hosts.sh PYTHON: three hosts, each a network namespace, on one bridge: a scheduler of Dask's with the
# coordinator, and two workers. An ensemble gives the result of a plain loop while all is well, while the
# link of a worker is cut for 30 seconds, and when that of the other is cut for good. This wants to be root.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
python=$1 name=veq$$
scratch=$(mktemp -d)
started=()

tidy() {
  for process in "${started[@]}"; do kill "$process" 2>/dev/null || true; done
  wait || true
  for host in 0 1 2; do ip netns delete "$name-$host" 2>/dev/null || true; done
  ip link delete "$name" 2>/dev/null || true
  rm -rf "$scratch"
}
trap tidy EXIT

ip link add "$name" type bridge
ip link set "$name" up
for host in 0 1 2; do
  ip netns add "$name-$host"
  ip link add "$name$host" type veth peer name eth0 netns "$name-$host"
  ip link set "$name$host" master "$name" up
  ip -n "$name-$host" address add "10.77.0.1$host/24" dev eth0
  ip -n "$name-$host" link set eth0 up
  ip -n "$name-$host" link set lo up
done

# on HOST COMMAND...: starts it there.
on() {
  local host=$1
  shift
  PYTHONPATH=$here ip netns exec "$name-$host" "$python" -m "$@" >>"$scratch/host$host.log" 2>&1 &
  started+=($!)
}
export DASK_DISTRIBUTED__WORKER__MEMORY__TERMINATE=false
on 0 distributed.cli.dask_scheduler --host 10.77.0.10 --port 8786 --no-dashboard

# A worker that has lost its scheduler ends, and whoever looks after the host starts another one.
look_after() {
  trap 'kill "$!" 2>/dev/null; exit' TERM
  while true; do
    PYTHONPATH=$here ip netns exec "$name-$1" "$python" -m distributed.cli.dask_worker \
      tcp://10.77.0.10:8786 --host "10.77.0.1$1" --nthreads 1 --no-dashboard >>"$scratch/host$1.log" 2>&1 &
    wait "$!" || true
    sleep 1
  done
}
for host in 1 2; do
  look_after "$host" &
  started+=($!)
done

# cut HOST SECONDS: takes its link away while tasks run there, for good without a number.
cut() {
  sleep 8
  ip link set "$name$1" down
  echo "  the link of host $1 is cut"
  [[ $# -eq 1 ]] || { sleep "$2" && ip link set "$name$1" up && echo "  it is back"; }
}

# run WHAT: an ensemble from host 0.
run() {
  PYTHONPATH=$here ip netns exec "$name-0" "$python" "$here/hosts.py" tcp://10.77.0.10:8786 "$1" ||
    { tail -n 30 "$scratch"/*.log >&2; exit 1; }
}

run "both hosts"
cut 1 30 &
started+=($!)
run "one of them gone for 30 seconds"
cut 2 &
started+=($!)
run "the other one gone for good"

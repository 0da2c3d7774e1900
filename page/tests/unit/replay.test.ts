import assert from "node:assert/strict";
import { test } from "node:test";
import { outLists } from "../../src/lists.ts";
import { Course, Replay } from "../../src/replay.ts";
import { LawMover } from "../../src/walk.ts";
import { network, seeded } from "../support/networks.ts";

function course(steps: number, agents: number, trail = 64): Course {
  const content = network("karate");
  const sources = Uint32Array.from(content.edges, ([source]) => source);
  const targets = Uint32Array.from(content.edges, ([, target]) => target);
  const lists = outLists(content.n, sources, targets, false);
  const starts = Uint32Array.from({ length: agents }, (_, a) => a % content.n);
  const law = { lists, sums: null, choice: "published", words: seeded(11), restarts: null } as const;
  return new Course(content.n, starts, steps, () => new LawMover(law, agents), trail);
}

/** What is shown at a step, after walking straight to it. */
function straight(step: number, steps: number, agents: number) {
  const replay = new Replay(course(steps, agents));
  replay.seek(step);
  return shownBy(replay);
}

function shownBy(replay: Replay) {
  const trail = Array.from({ length: 20 }, (_, ago) => replay.trailOf(0, ago));
  return {
    step: replay.step,
    positions: [...replay.positions],
    arrivals: [...replay.arrivals],
    latest: [...replay.latest],
    trail,
  };
}

test("a step is the same, sought from before or from behind, as walked to", () => {
  const steps = 20_000;
  const replay = new Replay(course(steps, 5));
  replay.seek(steps);
  let seed = 1;
  for (let i = 0; i < 60; ++i) {
    seed = (seed * 48271) % 2147483647;
    const step = seed % (steps + 1);
    assert.equal(replay.seek(step), true);
    assert.deepEqual(shownBy(replay), straight(step, steps, 5));
  }
  for (const step of [0, 1, 63, 64, 65, steps - 1, steps]) {
    replay.seek(step);
    assert.deepEqual(shownBy(replay), straight(step, steps, 5));
  }
});

test("a seek that is cut short goes on where it was", () => {
  const replay = new Replay(course(50_000, 3));
  let calls = 0;
  while (!replay.seek(50_000, 0, () => 1)) ++calls;
  assert.ok(calls > 10);
  assert.deepEqual(shownBy(replay), straight(50_000, 50_000, 3));
});

test("coverage counts each vertex at its first arrival, whoever walks there first", () => {
  const known = course(5000, 2);
  const first = new Replay(known);
  const second = new Replay(known);
  first.seek(100);
  second.seek(3000);
  first.seek(5000);
  const arrived = new Set<number>();
  const slow = new Replay(course(5000, 2));
  for (const step of [1, 2, 3, 10, 50, 100, 500, 5000]) {
    while (slow.step < step) {
      slow.seek(slow.step + 1);
      slow.positions.forEach((v) => arrived.add(v));
    }
    assert.equal(known.reachedBy(step), arrived.size);
  }
  assert.equal(known.frontier, 5000);
});

test("a walk of no steps is shown at its beginning", () => {
  const replay = new Replay(course(0, 2));
  assert.equal(replay.seek(0), true);
  assert.deepEqual([...replay.positions], [0, 1]);
  assert.equal(replay.trailOf(0, 1), undefined);
});

test("a trail is no longer than it may be", () => {
  const replay = new Replay(course(100, 1, 4));
  replay.seek(50);
  assert.notEqual(replay.trailOf(0, 4), undefined);
  assert.equal(replay.trailOf(0, 5), undefined);
});

import assert from "node:assert/strict";
import { test } from "node:test";
import { outLists, weightSums } from "../../src/lists.ts";
import { LawMover, STAYED } from "../../src/walk.ts";
import type { Choice, Law, Restarts } from "../../src/walk.ts";
import type { Content } from "../support/encode.ts";
import { after, network, pathsOf, seeded } from "../support/networks.ts";

function lawOf(content: Content, choice: Choice, words: Uint32Array, restarts: Restarts | null): Law {
  const sources = Uint32Array.from(content.edges, ([source]) => source);
  const targets = Uint32Array.from(content.edges, ([, target]) => target);
  const lists = outLists(content.n, sources, targets, content.directed ?? false);
  const sums = content.weights ? weightSums(lists, Float32Array.from(content.weights)) : null;
  return { lists, sums, choice, words, restarts };
}

function walk(law: Law, starts: number[], steps: number): number[][] {
  const mover = new LawMover(law, starts.length);
  const positions = Uint32Array.from(starts);
  const moves = new Int32Array(starts.length);
  const paths = starts.map((start) => [start]);
  for (let s = 0; s < steps; ++s) {
    mover.step(positions, moves);
    moves.forEach((to, a) => {
      if (to !== STAYED) positions[a] = to;
      paths[a].push(positions[a]);
    });
  }
  return paths;
}

const starts = (agents: number, n: number): number[] =>
  Array.from({ length: agents }, (_, a) => a % n);

for (const [name, choice, agents, steps, seed] of [
  ["karate", "published", 3, 5000, 1],
  ["karate", "published", 100, 500, 7],
  ["lesmis", "published", 1, 20000, 4294967295],
  ["lesmis", "published", 5, 20000, 2147483648],
  ["karate", "even", 7, 5000, 12],
  ["lesmis", "even", 40, 1000, 99],
  ["lesmis", "weighted", 3, 10000, 5],
  ["lesmis", "weighted", 60, 1000, 31],
] as const) {
  test(`${name}: ${agents} agents, ${steps} steps, ${choice}, seed ${seed}, as the program walks`, () => {
    const content = network(name);
    const expected = pathsOf(
      `data/${name}.xnet`, "--agents", String(agents), "--steps", String(steps),
      "--seed", String(seed), "--choice", choice,
    );
    const paths = walk(lawOf(content, choice, seeded(seed), null), starts(agents, content.n), steps);
    assert.equal(expected.length, agents);
    assert.deepEqual(paths, expected);
  });
}

test("restarts draw after all choices, where the number of steps is known", () => {
  const content = network("lesmis");
  const [agents, steps, seed] = [6, 3000, 8];
  const expected = pathsOf(
    "data/lesmis.xnet", "--agents", "6", "--steps", "3000", "--seed", "8", "--choice", "even",
    "--restart", "0.25",
  );
  const homes = Uint32Array.from(starts(agents, content.n));
  const words = seeded(seed);
  const restarts = { threshold: 2 ** 29, homes, words: after(words, agents * steps) };
  assert.deepEqual(walk(lawOf(content, "even", words, restarts), [...homes], steps), expected);
});

test("restarts draw step by step, where it is not", () => {
  const content = network("karate");
  const expected = pathsOf(
    "data/karate.xnet", "--agents", "3", "--until-reach", "1", "--seed", "4", "--restart", "0.5",
  );
  const homes = Uint32Array.from(starts(3, content.n));
  const law = lawOf(content, "published", seeded(4), { threshold: 2 ** 30, homes, words: null });
  const steps = expected[0].length - 1;
  assert.ok(steps > 10);
  assert.deepEqual(walk(law, [...homes], steps), expected);
});

test("agents without a way stay", () => {
  const content: Content = { n: 2, edges: [[0, 1]], directed: true };
  assert.deepEqual(walk(lawOf(content, "published", seeded(1), null), [0, 1], 3), [
    [0, 1, 1, 1],
    [1, 1, 1, 1],
  ]);
});

test("an edge of weight 0 is never taken, and where all are 0 agents stay", () => {
  const star: Content = { n: 3, edges: [[0, 1], [0, 2]], directed: true, weights: [0, 2] };
  assert.deepEqual(walk(lawOf(star, "weighted", seeded(1), null), [0], 1), [[0, 2]]);
  // Without weights each is 1: the sums are 1 and 2, of which draws below 2^30 choose the first.
  const plain = lawOf({ ...star, weights: [1, 1] }, "weighted", seeded(1), null);
  const { lists } = plain;
  assert.deepEqual([...weightSums(lists, null)], [1, 2]);
  const none: Content = { ...star, weights: [0, 0] };
  assert.deepEqual(walk(lawOf(none, "weighted", seeded(1), null), [0], 2), [[0, 0, 0]]);
});

test("a loop stands twice in the list of its vertex, and an edge of a directed network once", () => {
  const lists = outLists(2, Uint32Array.of(0, 0), Uint32Array.of(0, 1), false);
  assert.deepEqual([...lists.start], [0, 3, 4]);
  assert.deepEqual([...lists.neighbours], [0, 0, 1, 0]);
  const directed = outLists(2, Uint32Array.of(0, 0), Uint32Array.of(0, 1), true);
  assert.deepEqual([...directed.start], [0, 2, 2]);
  assert.deepEqual([...directed.neighbours], [0, 1]);
});

import assert from "node:assert/strict";
import { test } from "node:test";
import { RandomStream } from "../../src/random.ts";
import { seeded } from "../support/networks.ts";

test("seed 1 begins with the draws that the library promises", () => {
  const stream = new RandomStream(seeded(1));
  assert.deepEqual([stream.next(), stream.next(), stream.next()], [1804289383, 846930886, 1681692777]);
});

test("a million draws are those of the recurrence, one after the other", () => {
  for (const seed of [1, 7, 2 ** 32 - 1]) {
    const stream = new RandomStream(seeded(seed));
    const words = Array.from(seeded(seed), BigInt);
    let different = 0;
    for (let i = 0; i < 1_000_000; ++i) {
      const next = (words[(i + 28) % 31] + words[i % 31]) & 0xffffffffn;
      words[i % 31] = next;
      if (stream.next() !== Number(next >> 1n)) ++different;
    }
    assert.equal(different, 0);
  }
});

test("a stream goes on from its words, wherever it was", () => {
  const stream = new RandomStream(seeded(3));
  for (const draws of [0, 1, 30, 31, 1023, 1024, 1025]) {
    for (let i = 0; i < draws; ++i) stream.next();
    const other = new RandomStream(stream.words());
    const expected = Array.from({ length: 100 }, () => stream.next());
    assert.deepEqual(Array.from({ length: 100 }, () => other.next()), expected);
  }
});

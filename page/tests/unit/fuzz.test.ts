import assert from "node:assert/strict";
import { test } from "node:test";
import { PageError, crc32 } from "../../src/bytes.ts";
import { decode } from "../../src/data.ts";
import { encode } from "../support/encode.ts";
import type { Content } from "../support/encode.ts";
import { smallSamples, walked } from "../support/samples.ts";

const INPUTS = Number(process.env["VEQ_FUZZ_INPUTS"] ?? 1_000_000);

/** A generator of numbers for this test alone. */
class Dice {
  constructor(private state: number) {}

  below(n: number): number {
    this.state = (this.state * 48271) % 2147483647;
    return this.state % n;
  }
}

const square: Content = { n: 4, edges: [[0, 1], [1, 2], [2, 3], [3, 0]], names: ["a", "b", "c", "d"] };
const restarting = walked(square, 2, 20);
if (restarting.walk) {
  Object.assign(restarting.walk, { restarts: 2, threshold: 2 ** 29, homes: [0, 1] });
}
const seeds = [
  ...Object.values(smallSamples),
  walked(square, 2, 20),
  restarting,
  walked({ ...square, weights: [1, 2, 3, 4], directed: true }, 1, 5),
].map(encode);

const telling = [0, 1, 2, 127, 128, 129, 255];

/** Changes, cuts, doubles or inserts some bytes, and mostly mends the check, so that more is read. */
function mutate(dice: Dice, seed: Uint8Array): Uint8Array {
  let bytes = Array.from(seed);
  for (let changes = 1 + dice.below(4); changes > 0 && bytes.length > 12; --changes) {
    const at = 5 + dice.below(bytes.length - 11);
    const byte = dice.below(2) === 0 ? telling[dice.below(telling.length)] : dice.below(256);
    const what = dice.below(8);
    if (what < 4) bytes[at] = byte;
    else if (what === 4) bytes.splice(at, 1 + dice.below(6));
    else if (what === 5) bytes.splice(at, 0, byte);
    else if (what === 6) bytes.splice(at, 0, ...bytes.slice(at, at + dice.below(20)));
    else bytes = bytes.slice(0, at);
  }
  const block = Uint8Array.from(bytes);
  if (block.length > 4 && dice.below(10) > 0) {
    new DataView(block.buffer).setUint32(block.length - 4, crc32(block.subarray(0, -6)), true);
  }
  return block;
}

test(`a block is read or refused in one sentence: ${INPUTS} damaged ones`, () => {
  const dice = new Dice(20260101);
  const met = new Map<string, number>();
  let read = 0;
  for (let i = 0; i < INPUTS; ++i) {
    const block = mutate(dice, seeds[i % seeds.length]);
    try {
      const data = decode(block);
      ++read;
      walkSome(data.walk, data.meta.n);
    } catch (error) {
      if (!(error instanceof PageError)) throw error;
      assert.match(error.message, /^[A-Z][^\n]{10,200}\.$/);
      const kind = error.message.replace(/-?\d+/g, "N");
      met.set(kind, (met.get(kind) ?? 0) + 1);
    }
  }
  // Both happen often, and refusals for many reasons; else the inputs would test nothing.
  assert.ok(read > INPUTS / 100, `${read} were read`);
  assert.ok(met.size > 40, `${met.size} kinds of refusal`);
});

/** What was read can be walked: no position leaves the network. */
function walkSome(walk: ReturnType<typeof decode>["walk"], n: number): void {
  if (!walk) return;
  const mover = walk.mover();
  const positions = walk.starts.slice();
  const moves = new Int32Array(positions.length);
  for (let step = 0; step < Math.min(walk.steps, 20); ++step) {
    mover.step(positions, moves);
    moves.forEach((to, a) => {
      assert.ok(to < n, `a move to ${to} of ${n}`);
      if (to >= 0) positions[a] = to;
    });
  }
}

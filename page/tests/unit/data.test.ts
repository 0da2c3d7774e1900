import assert from "node:assert/strict";
import { test } from "node:test";
import { PageError, crc32, crc32OfNumbers, fromBase64 } from "../../src/bytes.ts";
import { decode } from "../../src/data.ts";
import { RecordMover } from "../../src/recorded.ts";
import { Course, Replay } from "../../src/replay.ts";
import { blockOf, encode, sectionsOf } from "../support/encode.ts";
import type { Content } from "../support/encode.ts";
import { network } from "../support/networks.ts";
import { karateBlock, remembered, smallSamples, walked } from "../support/samples.ts";

const bytesOf = (hex: string): Uint8Array => Uint8Array.from(Buffer.from(hex.replaceAll(" ", ""), "hex"));

function messageOf(block: Uint8Array): string {
  try {
    decode(block);
  } catch (error) {
    assert.ok(error instanceof PageError, String(error));
    return error.message;
  }
  return "";
}

function recordOf(replay: Replay): RecordMover {
  assert.ok(replay.mover instanceof RecordMover);
  return replay.mover;
}

test("the CRC-32 of the digits is the known one", () => {
  assert.equal(crc32(new TextEncoder().encode("123456789")), 0xcbf43926);
  // Of 1 and 2^32 + 2 as words of eight bytes.
  const words = bytesOf("0100000000000000 0200000001000000");
  assert.equal(crc32OfNumbers([1, 2 ** 32 + 2]), crc32(words));
});

test("the example of the format, byte for byte", () => {
  const json =
    '{"title":"T","veq":"0.9.0","n":2,"m":1,"directed":false,"edgeWeighted":false,"call":"",' +
    '"layout":"circle","columns":[],"color":null,"size":null}';
  const block = Uint8Array.from([
    ...bytesOf("56 45 51 50 01 01 8f 01"),
    ...new TextEncoder().encode(json),
    ...bytesOf("02 02 00 01 03 08 ff ff 00 80 00 00 00 80 04 04 01 61 01 62 7f 04 69 63 4d 6b"),
  ]);
  const data = decode(block);
  assert.equal(data.meta.title, "T");
  assert.deepEqual([...data.sources, ...data.targets], [0, 1]);
  assert.deepEqual(data.names, ["a", "b"]);
  assert.deepEqual([...data.x], [1, 0]);
  assert.ok(Math.abs(data.y[0] - 0.5) < 1e-4 && data.y[0] === data.y[1]);
  assert.equal(data.walk, null);
});

test("what is written is read", () => {
  const data = decode(encode(smallSamples["columns"]));
  assert.deepEqual(data.names, ["x", "y", "ž"]);
  assert.deepEqual(data.columns.map((column) => [column.key, column.kind, [...column.values]]), [
    ["Age", "number", [3, NaN, -1.5]],
    ["Wealth", "number", [1e300, -Infinity, 7]],
    ["Town", "text", [1, 0, 2]],
  ]);
  assert.deepEqual(data.columns[2].kind === "text" && data.columns[2].texts, ["Ulm", "Bern"]);
  const parallel = decode(encode(smallSamples["parallel"]));
  assert.deepEqual([...(parallel.weights ?? [])], [1, 2, 0.5]);
  assert.deepEqual([...parallel.sources], [0, 0, 1]);
  const { walk } = decode(karateBlock());
  assert.ok(walk);
  assert.deepEqual([walk.steps, walk.target, [...walk.starts]], [500, 0.99, [0, 1, 2]]);
  assert.equal(walk.arrivals.reduce((sum, count) => sum + count, 0), 1500);
});

test("recorded moves are made again, with what agents remember", () => {
  const { walk, meta } = decode(encode(remembered()));
  assert.ok(walk);
  const replay = new Replay(new Course(meta.n, walk.starts, walk.steps, walk.mover));
  const at = (step: number) => {
    replay.seek(step);
    const { rings } = recordOf(replay);
    return [[...replay.positions], rings.of(0), rings.of(1)];
  };
  assert.deepEqual(at(1), [[1, 0], [1], [0]]);
  assert.deepEqual(at(2), [[0, 3], [1, 0], [0, 3]]);
  assert.deepEqual(at(3), [[2, 3], [0, 2], [0, 3]]);
  assert.deepEqual(at(1), [[1, 0], [1], [0]]);
  assert.deepEqual([...replay.arrivals], [0 + 1, 1, 0, 0]);
});

test("agents tell each other what they remember", () => {
  const content = remembered();
  // Agent 0 tells agent 1, who tells nobody.
  if (content.walk) content.walk.memories = { sizes: [2, 3], listeners: [[1], []] };
  const { walk, meta } = decode(encode(content));
  assert.ok(walk);
  const replay = new Replay(new Course(meta.n, walk.starts, walk.steps, walk.mover));
  const { rings } = recordOf(replay);
  // Step 1: agent 0 remembers 1 in its slot 1, agent 1 remembers 0. Agent 0 offers slot 0, which is
  // empty, then slot 1: agent 1 learns 1.
  replay.seek(1);
  assert.deepEqual([rings.of(0), rings.of(1)], [[1], [0, 1]]);
  // Step 2: agent 0 remembers 0 in slot 0 and agent 1 remembers 3 as its third. Agent 0 offers 1
  // again, which is known, then 0, which is known.
  replay.seek(2);
  assert.deepEqual([rings.of(0), rings.of(1)], [[1, 0], [0, 1, 3]]);
  // Step 3: agent 0 remembers 2, and agent 1 stays. What waits at slot 0 is known, 2 is new.
  replay.seek(3);
  assert.deepEqual([rings.of(0), rings.of(1)], [[0, 2], [1, 3, 2]]);
});

test("small pages of every kind are read", () => {
  for (const [name, content] of Object.entries(smallSamples)) {
    assert.equal(messageOf(encode(content)), "", name);
  }
});

test("each damage has its sentence", () => {
  const content: Content = { n: 2, edges: [[0, 1]], names: ["a", "b"] };
  const sections = sectionsOf(content);
  const good = encode(content);
  const damage = (text: string): string => `The data of this page is damaged: ${text}.`;
  const replaced = (tag: number, payload: number[]): string =>
    messageOf(blockOf(sections.map(([each, old]) => [each, each === tag ? payload : old])));
  assert.equal(messageOf(new Uint8Array()), damage("the block ends too early"));
  assert.equal(messageOf(bytesOf("56 45 51 51 01")), damage("the block does not begin as one"));
  assert.equal(
    messageOf(bytesOf("56 45 51 50 02")),
    "This page cannot read data of version 2, only of version 1.",
  );
  assert.equal(messageOf(good.slice(0, -1)), damage("the block ends too early"));
  assert.equal(messageOf(Uint8Array.of(...good, 0)), damage("the block is longer than it should be"));
  const flipped = good.slice();
  flipped[40] ^= 1;
  assert.equal(messageOf(flipped), damage("its check does not agree"));
  assert.equal(messageOf(blockOf(sections.slice(1))), damage("the description is missing"));
  assert.equal(messageOf(blockOf([sections[1], sections[0]])), damage("the block has sections out of order"));
  assert.equal(replaced(1, [123]), damage("the description is no JSON"));
  assert.equal(replaced(1, [91, 93]), damage("the description is no object"));
  assert.equal(replaced(1, [123, 125]), damage('the description has no usable "columns"'));
  assert.equal(replaced(2, [0]), damage("the list of edges ends too early"));
  assert.equal(replaced(2, [0, 2]), damage("the list of edges names vertex 2 of 2"));
  assert.equal(replaced(2, [1, 0]), damage("the list of edges names vertex -1 of 2"));
  assert.equal(replaced(2, [0, 1, 0]), damage("the list of edges is longer than it should be"));
  assert.equal(replaced(2, [0, 128, 0]), damage("the list of edges has a number that is none"));
  assert.equal(replaced(4, [1, 255, 0]), damage("the list of names has a text that is not UTF-8"));
});

test("a walk must be one that can be made", () => {
  const good = walked(network("karate"), 2, 10);
  const broken = (change: Partial<NonNullable<Content["walk"]>>): string => {
    assert.ok(good.walk);
    return messageOf(encode({ ...good, walk: { ...good.walk, ...change } }));
  };
  const damage = (text: string): string => `The data of this page is damaged: the walk ${text}.`;
  assert.equal(broken({}), "");
  assert.equal(broken({ starts: [] }), damage("has 0 agents"));
  assert.equal(broken({ starts: [0, 34] }), damage("names vertex 34 of 34"));
  assert.equal(broken({ steps: 2 ** 52 }), damage("has too many steps"));
  assert.equal(broken({ end: 5 }), damage("ends in no known way"));
  assert.equal(broken({ target: 2 }), damage("has a target that is none"));
  assert.equal(broken({ choice: 2 }), "");
});

test("a record must hold moves that can be made", () => {
  const broken = (moves: number[]): string => {
    const content = remembered();
    if (content.walk) content.walk.moves = moves;
    return messageOf(encode(content));
  };
  const damage = (text: string): string =>
    `The data of this page is damaged: the record of moves ${text}.`;
  assert.equal(broken([0, 0, 0, 0, 0, 0, 0]), "");
  assert.equal(broken([0, 0, 0, 0, 0]), damage("ends too early"));
  assert.equal(broken([5, 0, 0, 0, 0, 0, 0]), damage("has a move that cannot be made"));
  assert.equal(broken([1, 4, 0, 0, 0, 0, 0, 0]), damage("names vertex 4 of 4"));
  assert.equal(broken([0, 0, 0, 0, 0, 0, 1, 6, 0]), damage("names a move beyond the last"));
  assert.equal(broken([0, 0, 0, 0, 0, 0, 2, 1, 0, 0, 0]), damage("names a move twice"));
  assert.equal(broken([0, 0, 0, 0, 0, 0, 0, 0]), damage("is longer than it should be"));
});

test("base64 that is none is a damage", () => {
  assert.throws(() => fromBase64("§§"), /^Error: The data of this page is damaged: it is not base64\.$/);
  assert.deepEqual([...fromBase64(" AQID\n")], [1, 2, 3]);
});

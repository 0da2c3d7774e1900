import { ByteReader, PageError, crc32 } from "./bytes.ts";
import { outLists, weightSums } from "./lists.ts";
import type { Lists } from "./lists.ts";
import { limits, readMeta } from "./meta.ts";
import type { Meta } from "./meta.ts";
import { RandomStream } from "./random.ts";
import { RecordMover, readRecord } from "./recorded.ts";
import type { Memories, SavedRing } from "./rings.ts";
import { LawMover } from "./walk.ts";
import type { Choice, Mover, Restarts } from "./walk.ts";

/** A column of vertices. */
export type Column =
  | { readonly key: string; readonly kind: "number"; readonly values: Float64Array }
  | {
      readonly key: string;
      readonly kind: "text";
      readonly texts: readonly string[];
      /** 0 where nothing is set, else the number of the text, from 1. */
      readonly values: Uint32Array;
    };

const ends = ["all", "target", "stopped", "stuck", "draws"] as const;

/** A walk that can be made again. */
export interface Walk {
  readonly choice: Choice;
  readonly isRecorded: boolean;
  readonly end: (typeof ends)[number];
  readonly steps: number;
  readonly asked: number;
  readonly target: number;
  readonly starts: Uint32Array;
  /** How often each vertex was arrived at in all of it. */
  readonly arrivals: Float64Array;
  readonly arrivalsCheck: number;
  readonly endsCheck: number;
  readonly mover: () => Mover;
}

export interface Data {
  readonly meta: Meta;
  readonly sources: Uint32Array;
  readonly targets: Uint32Array;
  readonly lists: Lists;
  /** From left to right and from bottom to top of a square of side 1. */
  readonly x: Float32Array;
  readonly y: Float32Array;
  readonly names: readonly string[] | null;
  readonly columns: readonly Column[];
  readonly weights: Float32Array | null;
  readonly walk: Walk | null;
}

const tags = {
  meta: 1,
  edges: 2,
  positions: 3,
  names: 4,
  column: 5,
  walk: 6,
  moves: 7,
  weights: 8,
  arrivals: 9,
  memories: 10,
  check: 127,
};

const sectionNames = new Map<number, string>([
  [tags.meta, "the description"],
  [tags.edges, "the list of edges"],
  [tags.positions, "the list of positions"],
  [tags.names, "the list of names"],
  [tags.walk, "the walk"],
  [tags.moves, "the record of moves"],
  [tags.weights, "the list of weights"],
  [tags.arrivals, "the list of arrivals"],
  [tags.memories, "the list of memories"],
  [tags.check, "the check"],
]);

/** The sections of a block. */
class Sections {
  private readonly payloads = new Map<number, Uint8Array>();
  readonly columns: Uint8Array[] = [];

  constructor(block: Uint8Array) {
    const reader = new ByteReader(block, "the block");
    if (String.fromCharCode(...reader.take(4)) !== "VEQP") reader.fail("does not begin as one");
    const version = reader.u8();
    if (version !== 1) {
      throw new PageError(`This page cannot read data of version ${version}, only of version 1.`);
    }
    let before = 0;
    while (before !== tags.check) {
      const begin = reader.position;
      const tag = reader.u8();
      if (tag < before || (tag === before && tag !== tags.column)) {
        reader.fail("has sections out of order");
      }
      const payload = reader.take(reader.varint());
      if (tag === tags.column) this.columns.push(payload);
      else this.payloads.set(tag, payload);
      if (tag === tags.check) this.verify(block.subarray(0, begin));
      before = tag;
    }
    reader.end();
  }

  has(tag: number): boolean {
    return this.payloads.has(tag);
  }

  open(tag: number): ByteReader {
    const name = sectionNames.get(tag) ?? "a section";
    const payload = this.payloads.get(tag);
    if (!payload) throw new PageError(`The data of this page is damaged: ${name} is missing.`);
    return new ByteReader(payload, name);
  }

  payload(tag: number): Uint8Array {
    const reader = this.open(tag);
    return reader.take(reader.left);
  }

  /** What `read` makes of all of the section. */
  read<T>(tag: number, read: (reader: ByteReader) => T): T {
    return whole(this.open(tag), read);
  }

  private verify(checked: Uint8Array): void {
    if (this.read(tags.check, (reader) => reader.u32()) !== crc32(checked)) {
      throw new PageError("The data of this page is damaged: its check does not agree.");
    }
  }
}

function whole<T>(reader: ByteReader, read: (reader: ByteReader) => T): T {
  const result = read(reader);
  reader.end();
  return result;
}

function readEdges(reader: ByteReader, meta: Meta): { sources: Uint32Array; targets: Uint32Array } {
  if (reader.left < 2 * meta.m) reader.fail("ends too early");
  const sources = new Uint32Array(meta.m);
  const targets = new Uint32Array(meta.m);
  let source = 0;
  for (let e = 0; e < meta.m; ++e) {
    const zigzag = reader.varint();
    source += zigzag % 2 === 0 ? zigzag / 2 : -(zigzag + 1) / 2;
    if (source < 0 || source >= meta.n) reader.fail(`names vertex ${source} of ${meta.n}`);
    sources[e] = source;
  }
  for (let e = 0; e < meta.m; ++e) targets[e] = reader.below(meta.n, "vertex");
  return { sources, targets };
}

function readPositions(reader: ByteReader, n: number): { x: Float32Array; y: Float32Array } {
  if (reader.left < 4 * n) reader.fail("ends too early");
  const x = new Float32Array(n);
  const y = new Float32Array(n);
  for (let v = 0; v < n; ++v) {
    x[v] = reader.u16() / 65535;
    y[v] = reader.u16() / 65535;
  }
  return { x, y };
}

function readTexts(reader: ByteReader, count: number): string[] {
  if (reader.left < count) reader.fail("ends too early");
  return Array.from({ length: count }, () => reader.text());
}

function numbers(reader: ByteReader, n: number, bytes: number, next: () => number): Float64Array {
  if (reader.left < bytes * n) reader.fail("ends too early");
  return Float64Array.from({ length: n }, next);
}

function readColumn(reader: ByteReader, n: number, key: string, kind: string): Column {
  const code = reader.u8();
  if ((code === 3) !== (kind === "text")) reader.fail("is of another kind than was said");
  switch (code) {
    case 1:
      return { key, kind: "number", values: numbers(reader, n, 4, () => reader.f32()) };
    case 2: {
      const values = numbers(reader, n, 1, () => reader.below(2 ** 32, "number"));
      return { key, kind: "number", values };
    }
    case 3: {
      const texts = readTexts(reader, reader.count(1));
      if (reader.left < n) reader.fail("ends too early");
      const number = (): number => reader.below(texts.length + 1, "text");
      return { key, kind: "text", texts, values: Uint32Array.from({ length: n }, number) };
    }
    case 4:
      return { key, kind: "number", values: numbers(reader, n, 8, () => reader.f64()) };
    default:
      return reader.fail("is of no known kind");
  }
}

function readVertices(reader: ByteReader, count: number, n: number): Uint32Array {
  if (reader.left < count) reader.fail("ends too early");
  return Uint32Array.from({ length: count }, () => reader.below(n, "vertex"));
}

function readWords(reader: ByteReader): Uint32Array {
  return Uint32Array.from({ length: RandomStream.words }, () => reader.u32());
}

const choices: readonly Choice[] = ["published", "even", "weighted"];

function readWalk(reader: ByteReader, n: number) {
  const choice = choices[reader.u8()] ?? reader.fail("chooses in no known way");
  const recorded = reader.u8();
  const end = ends[reader.u8()] ?? reader.fail("ends in no known way");
  const restarts = reader.u8();
  if (recorded > 1 || restarts > 2) reader.fail("is of no known kind");
  const threshold = reader.u32();
  if (threshold > 2 ** 31) reader.fail("has a threshold that is none");
  const words = readWords(reader);
  const restartWords = restarts === 1 ? readWords(reader) : null;
  const agents = reader.varint();
  if (agents < 1 || agents > limits.agents) reader.fail(`has ${agents} agents`);
  const steps = reader.varint();
  if (agents * steps > Number.MAX_SAFE_INTEGER) reader.fail("has too many steps");
  const asked = reader.varint();
  const target = reader.f64();
  if (!(target >= 0 && target <= 1)) reader.fail("has a target that is none");
  const starts = readVertices(reader, agents, n);
  const homes = restarts > 0 ? readVertices(reader, agents, n) : null;
  const back: Restarts | null = homes && { threshold, homes, words: restartWords };
  const arrivalsCheck = reader.u32();
  const endsCheck = reader.u32();
  const isRecorded = recorded === 1;
  return { choice, isRecorded, end, steps, asked, target, starts, words, back, arrivalsCheck, endsCheck };
}

/** How a ring is at the beginning; null where it is empty. */
function readRing(reader: ByteReader, size: number, n: number): SavedRing | null {
  const begun = reader.u8();
  if (begun === 0) return null;
  if (begun > 1) reader.fail("is of no known kind");
  const current = reader.below(size, "slot");
  const last = reader.below(size, "slot");
  const transfer = reader.below(size, "slot");
  if (reader.left < size) reader.fail("ends too early");
  const slots = Uint32Array.from({ length: size }, () => reader.below(n + 1, "vertex"));
  return { current, last, transfer, slots };
}

function readMemories(reader: ByteReader, agents: number, n: number): Memories {
  if (reader.left < agents) reader.fail("ends too early");
  const sizes = Float64Array.from({ length: agents }, () => {
    const size = reader.varint();
    return size > 0 ? size : reader.fail("has a ring without slots");
  });
  const telling = reader.u8();
  if (telling > 1) reader.fail("is of no known kind");
  const link = (): number => reader.below(agents, "agent");
  const links = (): Uint32Array => Uint32Array.from({ length: reader.count(1) }, link);
  const listeners = telling === 1 ? Array.from({ length: agents }, links) : null;
  if ((listeners ?? []).reduce((sum, each) => sum + each.length, 0) > limits.links) {
    reader.fail("has too many links");
  }
  return { sizes, listeners, begun: Array.from(sizes, (size) => readRing(reader, size, n)) };
}

function makeWalk(sections: Sections, n: number, lists: Lists, weights: Float32Array | null): Walk {
  const { words, back, ...walk } = sections.read(tags.walk, (reader) => readWalk(reader, n));
  const arrivals = sections.read(tags.arrivals, (reader) =>
    numbers(reader, n, 1, () => reader.varint()),
  );
  const agents = walk.starts.length;
  if (walk.isRecorded) {
    const memories = sections.has(tags.memories)
      ? sections.read(tags.memories, (reader) => readMemories(reader, agents, n))
      : sections.open(tags.memories).fail("is missing");
    const record = readRecord(sections.payload(tags.moves), lists, walk.starts, walk.steps);
    return { ...walk, arrivals, mover: () => new RecordMover(lists, record, memories) };
  }
  const sums = walk.choice === "weighted" ? weightSums(lists, weights) : null;
  const law = { lists, sums, choice: walk.choice, words, restarts: back };
  return { ...walk, arrivals, mover: () => new LawMover(law, agents) };
}

/** What a block says; a PageError with one sentence where it is none. */
export function decode(block: Uint8Array): Data {
  const sections = new Sections(block);
  const meta = sections.read(tags.meta, readMeta);
  const { n, m, directed } = meta;
  const edges = sections.read(tags.edges, (reader) => readEdges(reader, meta));
  const positions = sections.read(tags.positions, (reader) => readPositions(reader, n));
  const names = sections.has(tags.names)
    ? sections.read(tags.names, (reader) => readTexts(reader, n))
    : null;
  if (sections.columns.length !== meta.columns.length) {
    throw new PageError("The data of this page is damaged: a column is missing.");
  }
  const columns = sections.columns.map((payload, i) =>
    whole(new ByteReader(payload, "a column"), (reader) =>
      readColumn(reader, n, meta.columns[i].key, meta.columns[i].kind),
    ),
  );
  const weights = meta.edgeWeighted
    ? sections.read(tags.weights, (reader) => {
        if (reader.left < 4 * m) reader.fail("ends too early");
        return Float32Array.from({ length: m }, () => reader.f32());
      })
    : null;
  const lists = outLists(n, edges.sources, edges.targets, directed);
  const walk = sections.has(tags.walk) ? makeWalk(sections, n, lists, weights) : null;
  return { meta, ...edges, ...positions, lists, names, columns, weights, walk };
}

/** Writes blocks as docs/formats/page.md says, apart from the library's own writer. */
import { crc32, crc32OfNumbers } from "../../src/bytes.ts";

export class Writer {
  readonly bytes: number[] = [];

  u8(value: number): this {
    this.bytes.push(value & 255);
    return this;
  }

  u16(value: number): this {
    return this.u8(value).u8(value >>> 8);
  }

  u32(value: number): this {
    return this.u16(value & 65535).u16(value >>> 16);
  }

  f32(value: number): this {
    this.bytes.push(...new Uint8Array(Float32Array.of(value).buffer));
    return this;
  }

  f64(value: number): this {
    this.bytes.push(...new Uint8Array(Float64Array.of(value).buffer));
    return this;
  }

  varint(value: number): this {
    let left = value;
    while (left >= 128) {
      this.u8(128 + (left % 128));
      left = Math.floor(left / 128);
    }
    return this.u8(left);
  }

  text(value: string): this {
    const bytes = new TextEncoder().encode(value);
    this.varint(bytes.length);
    for (const byte of bytes) this.u8(byte);
    return this;
  }

  all(values: Iterable<number>, put: (writer: this, value: number) => void): this {
    for (const value of values) put(this, value);
    return this;
  }

  varints(values: Iterable<number>): this {
    return this.all(values, (writer, value) => writer.varint(value));
  }
}

export interface WalkSpec {
  choice?: 0 | 1 | 2;
  end?: number;
  restarts?: 0 | 1 | 2;
  threshold?: number;
  words: ArrayLike<number>;
  restartWords?: ArrayLike<number>;
  steps: number;
  asked?: number;
  target?: number;
  starts: number[];
  homes?: number[];
  arrivals: number[];
  ends: number[];
  /** The bytes of section 7. */
  moves?: number[];
  memories?: { sizes: number[]; listeners?: number[][] };
  seed?: number;
}

export interface Content {
  title?: string;
  version?: string;
  n: number;
  edges: [number, number][];
  directed?: boolean;
  call?: string;
  positions?: [number, number][];
  names?: string[];
  numbers?: Record<string, number[]>;
  texts?: Record<string, string[]>;
  weights?: number[];
  color?: object | null;
  size?: object | null;
  walk?: WalkSpec;
}

type Section = [number, number[]];

function meta(content: Content): number[] {
  const walk = content.walk && {
    seed: content.walk.seed ?? null,
    substream: null,
    starts: "",
    restart: (content.walk.threshold ?? 0) / 2 ** 31,
    errors: [],
  };
  const columns = [
    ...Object.keys(content.numbers ?? {}).map((key) => ({ key, kind: "number" })),
    ...Object.keys(content.texts ?? {}).map((key) => ({ key, kind: "text" })),
  ];
  const json = {
    title: content.title ?? "",
    veq: content.version ?? "0.9.0",
    n: content.n,
    m: content.edges.length,
    directed: content.directed ?? false,
    edgeWeighted: !!content.weights,
    call: content.call ?? "",
    layout: "given",
    columns,
    color: content.color ?? null,
    size: content.size ?? null,
    ...(walk ? { walk } : {}),
  };
  return [...new TextEncoder().encode(JSON.stringify(json))];
}

function edgeBytes(content: Content): number[] {
  const writer = new Writer();
  let before = 0;
  for (const [source] of content.edges) {
    const d = source - before;
    writer.varint(d >= 0 ? 2 * d : -2 * d - 1);
    before = source;
  }
  return writer.varints(content.edges.map(([, target]) => target)).bytes;
}

function positionBytes(content: Content): number[] {
  const writer = new Writer();
  for (let v = 0; v < content.n; ++v) {
    const turn = (2 * Math.PI * v) / Math.max(1, content.n);
    const [x, y] = content.positions?.[v] ?? [0.5 + 0.5 * Math.cos(turn), 0.5 + 0.5 * Math.sin(turn)];
    writer.u16(Math.round(x * 65535)).u16(Math.round(y * 65535));
  }
  return writer.bytes;
}

function columnSections(content: Content): Section[] {
  const numbers = Object.values(content.numbers ?? {}).map((values): Section => {
    return [5, new Writer().u8(4).all(values, (writer, value) => writer.f64(value)).bytes];
  });
  const texts = Object.values(content.texts ?? {}).map((values): Section => {
    const different = [...new Set(values.filter((value) => value !== ""))];
    const writer = new Writer().u8(3).varint(different.length);
    for (const text of different) writer.text(text);
    return [5, writer.varints(values.map((value) => different.indexOf(value) + 1)).bytes];
  });
  return [...numbers, ...texts];
}

function walkSections(walk: WalkSpec): Section[] {
  const writer = new Writer().u8(walk.choice ?? 0).u8(walk.moves ? 1 : 0).u8(walk.end ?? 0);
  writer.u8(walk.restarts ?? 0).u32(walk.threshold ?? 0);
  writer.all(Array.from(walk.words), (w, word) => w.u32(word));
  if (walk.restarts === 1) writer.all(Array.from(walk.restartWords ?? []), (w, word) => w.u32(word));
  writer.varint(walk.starts.length).varint(walk.steps).varint(walk.asked ?? walk.steps);
  writer.f64(walk.target ?? 0).varints(walk.starts);
  if (walk.restarts) writer.varints(walk.homes ?? walk.starts);
  writer.u32(crc32OfNumbers(walk.arrivals)).u32(crc32OfNumbers(walk.ends));
  const sections: Section[] = [[6, writer.bytes]];
  if (walk.moves) sections.push([7, walk.moves]);
  sections.push([9, new Writer().varints(walk.arrivals).bytes]);
  if (walk.memories) {
    const { sizes, listeners } = walk.memories;
    const memories = new Writer().varints(sizes).u8(listeners ? 1 : 0);
    for (const links of listeners ?? []) memories.varint(links.length).varints(links);
    memories.all(sizes, (writer) => writer.u8(0));
    sections.push([10, memories.bytes]);
  }
  return sections;
}

/** Sections in the order of their tags, with the check. */
export function blockOf(sections: Section[]): Uint8Array {
  const writer = new Writer();
  for (const character of "VEQP") writer.u8(character.charCodeAt(0));
  writer.u8(1);
  for (const [tag, payload] of sections) {
    writer.u8(tag).varint(payload.length);
    for (const byte of payload) writer.u8(byte);
  }
  const check = crc32(Uint8Array.from(writer.bytes));
  return Uint8Array.from(writer.u8(127).varint(4).u32(check).bytes);
}

export function sectionsOf(content: Content): Section[] {
  const sections: Section[] = [[1, meta(content)], [2, edgeBytes(content)], [3, positionBytes(content)]];
  if (content.names) {
    const writer = new Writer();
    for (const name of content.names) writer.text(name);
    sections.push([4, writer.bytes]);
  }
  sections.push(...columnSections(content));
  if (content.walk) sections.push(...walkSections(content.walk));
  if (content.weights) {
    sections.push([8, new Writer().all(content.weights, (writer, value) => writer.f32(value)).bytes]);
  }
  return sections.sort((a, b) => a[0] - b[0]);
}

export function encode(content: Content): Uint8Array {
  return blockOf(sectionsOf(content));
}

import type { ByteReader } from "./bytes.ts";

/** What a picture may be coloured or sized by at first. */
export interface First {
  readonly by: string;
  readonly column: number;
}

export interface WalkFacts {
  readonly seed: number | null;
  readonly substream: number | null;
  readonly starts: string;
  readonly restart: number;
  /** Of agents with memory: the probabilities of remembering a wrong vertex, one for all or one for each. */
  readonly errors: readonly number[];
}

/** The first section of a block. */
export interface Meta {
  readonly title: string;
  readonly version: string;
  readonly n: number;
  readonly m: number;
  readonly directed: boolean;
  readonly edgeWeighted: boolean;
  readonly call: string;
  readonly layout: string;
  readonly columns: readonly { key: string; kind: "number" | "text" }[];
  readonly color: First | null;
  readonly size: First | null;
  readonly walk: WalkFacts | null;
}

export const limits = {
  vertices: 200_000,
  edges: 1_000_000,
  agents: 100_000,
  columns: 64,
  links: 1_000_000,
};

type Fields = Record<string, unknown>;

/** Takes parts of JSON that are what they should be, and fails for all others. */
class Part {
  constructor(
    private readonly reader: ByteReader,
    private readonly fields: Fields,
  ) {}

  private fail(key: string): never {
    return this.reader.fail(`has no usable "${key}"`);
  }

  text(key: string): string {
    const value = this.fields[key];
    return typeof value === "string" ? value : this.fail(key);
  }

  truth(key: string): boolean {
    const value = this.fields[key];
    return typeof value === "boolean" ? value : this.fail(key);
  }

  number(key: string): number {
    const value = this.fields[key];
    return typeof value === "number" && value >= 0 ? value : this.fail(key);
  }

  whole(key: string, most: number): number {
    const value = this.number(key);
    return Number.isInteger(value) && value <= most ? value : this.fail(key);
  }

  numbers(key: string): number[] {
    const value = this.fields[key];
    if (!Array.isArray(value)) return this.fail(key);
    return value.map((each: unknown) => (typeof each === "number" ? each : this.fail(key)));
  }

  wholeOrNull(key: string, most: number): number | null {
    return (this.fields[key] ?? null) === null ? null : this.whole(key, most);
  }

  part(key: string): Part | null {
    const value = this.fields[key] ?? null;
    if (value === null) return null;
    return isFields(value) ? new Part(this.reader, value) : this.fail(key);
  }

  parts(key: string): Part[] {
    const value = this.fields[key];
    if (!Array.isArray(value)) return this.fail(key);
    return value.map((each: unknown) =>
      isFields(each) ? new Part(this.reader, each) : this.fail(key),
    );
  }

  first(key: string): First | null {
    const part = this.part(key);
    if (!part) return null;
    const by = part.text("by");
    return { by, column: by === "column" ? part.whole("column", limits.columns - 1) : 0 };
  }
}

function isFields(value: unknown): value is Fields {
  return typeof value === "object" && value !== null && !Array.isArray(value);
}

function readWalk(walk: Part | null): WalkFacts | null {
  if (!walk) return null;
  return {
    seed: walk.wholeOrNull("seed", 2 ** 32 - 1),
    substream: walk.wholeOrNull("substream", 2 ** 22 - 1),
    starts: walk.text("starts"),
    restart: walk.number("restart"),
    errors: walk.numbers("errors"),
  };
}

export function readMeta(reader: ByteReader): Meta {
  let json: unknown;
  try {
    json = JSON.parse(new TextDecoder("utf-8", { fatal: true }).decode(reader.take(reader.left)));
  } catch {
    reader.fail("is no JSON");
  }
  if (!isFields(json)) return reader.fail("is no object");
  const fields = new Part(reader, json);
  const columns = fields.parts("columns").map((column) => {
    const kind = column.text("kind");
    if (kind !== "number" && kind !== "text") return reader.fail("has a column of no known kind");
    return { key: column.text("key"), kind } as const;
  });
  if (columns.length > limits.columns) reader.fail("has too many columns");
  return {
    title: fields.text("title"),
    version: fields.text("veq"),
    n: fields.whole("n", limits.vertices),
    m: fields.whole("m", limits.edges),
    directed: fields.truth("directed"),
    edgeWeighted: fields.truth("edgeWeighted"),
    call: fields.text("call"),
    layout: fields.text("layout"),
    columns,
    color: fields.first("color"),
    size: fields.first("size"),
    walk: readWalk(fields.part("walk")),
  };
}

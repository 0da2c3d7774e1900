import { ByteReader } from "./bytes.ts";
import type { Lists } from "./lists.ts";
import { Rings } from "./rings.ts";
import type { Memories } from "./rings.ts";
import { STAYED } from "./walk.ts";
import type { Mover } from "./walk.ts";

/** Moves of agents with memory, as they happened. */
export interface Record {
  readonly bytes: Uint8Array;
  /** Numbers of moves (agents x step + agent), ascending, and what was remembered in place of their vertex. */
  readonly wrongMoves: Float64Array;
  readonly wrongVertices: Uint32Array;
}

const PLAIN = 2;

/** Reads one varint after the other from bytes that were checked before. */
class Varints {
  at = 0;

  constructor(private readonly bytes: Uint8Array) {}

  next(): number {
    let byte = this.bytes[this.at++];
    if (byte < 128) return byte;
    let value = byte & 127;
    for (let factor = 128; byte >= 128; factor *= 128) {
      byte = this.bytes[this.at++];
      value += (byte & 127) * factor;
    }
    return value;
  }
}

/** Moves agents as it was recorded, while `rings` follows what they remember. */
export class RecordMover implements Mover {
  readonly rings: Rings;
  private readonly moves: Varints;
  private number = 0;
  private wrong = 0;

  constructor(
    private readonly lists: Lists,
    private readonly record: Record,
    memories: Memories,
  ) {
    this.moves = new Varints(record.bytes);
    this.rings = new Rings(memories);
  }

  step(positions: Uint32Array, moves: Int32Array): void {
    for (let a = 0; a < positions.length; ++a, ++this.number) {
      const to = this.next(positions[a]);
      moves[a] = to;
      if (to !== STAYED) this.rings.remember(a, this.remembered(to));
    }
    this.rings.share();
  }

  save(): Uint32Array {
    return Uint32Array.from([this.moves.at, this.number, this.wrong, ...this.rings.save()]);
  }

  restore(saved: Uint32Array): void {
    [this.moves.at, this.number, this.wrong] = saved;
    this.rings.restore(saved, 3);
  }

  private next(vertex: number): number {
    const value = this.moves.next();
    if (value === 0) return STAYED;
    return value === 1
      ? this.moves.next()
      : this.lists.neighbours[this.lists.start[vertex] + value - PLAIN];
  }

  private remembered(vertex: number): number {
    if (this.record.wrongMoves[this.wrong] !== this.number) return vertex;
    return this.record.wrongVertices[this.wrong++];
  }
}

/** The record of a walk from these starts, of which every move is one that can be made. */
export function readRecord(
  payload: Uint8Array,
  lists: Lists,
  starts: Uint32Array,
  steps: number,
): Record {
  const reader = new ByteReader(payload, "the record of moves");
  const n = lists.start.length - 1;
  const positions = starts.slice();
  if (steps * starts.length > payload.length) reader.fail("ends too early");
  for (let step = 0; step < steps; ++step) {
    for (let a = 0; a < positions.length; ++a) {
      const value = reader.varint();
      if (value === 1) positions[a] = reader.below(n, "vertex");
      if (value < PLAIN) continue;
      const place = lists.start[positions[a]] + value - PLAIN;
      if (place >= lists.start[positions[a] + 1]) reader.fail("has a move that cannot be made");
      positions[a] = lists.neighbours[place];
    }
  }
  const bytes = payload.subarray(0, reader.position);
  const wrongs = reader.count(2);
  const wrongMoves = new Float64Array(wrongs);
  const wrongVertices = new Uint32Array(wrongs);
  for (let i = 0; i < wrongs; ++i) {
    const before = i > 0 ? wrongMoves[i - 1] : 0;
    const step = reader.varint();
    if (i > 0 && step === 0) reader.fail("names a move twice");
    wrongMoves[i] = before + step;
    if (wrongMoves[i] >= steps * starts.length) reader.fail("names a move beyond the last");
    wrongVertices[i] = reader.below(n, "vertex");
  }
  reader.end();
  return { bytes, wrongMoves, wrongVertices };
}

import { crc32OfNumbers } from "./bytes.ts";
import type { Walk } from "./data.ts";
import { Replay } from "./replay.ts";
import type { Course } from "./replay.ts";

/** Walks longer than that are walked again only when asked. */
export const MOVES_UNASKED = 2e7;
const SLICE_MS = 8;

export type Finding =
  | { readonly agrees: true }
  /** A vertex with another count, or -1 where only the agents' ends differ. */
  | { readonly agrees: false; readonly vertex: number; readonly here: number; readonly there: number };

/** Walks to the end and compares it with what was written into the page. */
export class Check {
  private readonly replay: Replay;

  constructor(
    course: Course,
    private readonly walk: Walk,
  ) {
    this.replay = new Replay(course);
  }

  get share(): number {
    return this.walk.steps === 0 ? 1 : this.replay.step / this.walk.steps;
  }

  /** Goes on for some milliseconds; null until it is done. */
  advance(now = (): number => performance.now()): Finding | null {
    return this.replay.seek(this.walk.steps, now() + SLICE_MS, now) ? this.compare() : null;
  }

  private compare(): Finding {
    const { arrivals, positions } = this.replay;
    const { walk } = this;
    for (let v = 0; v < arrivals.length; ++v) {
      if (arrivals[v] !== walk.arrivals[v]) {
        return { agrees: false, vertex: v, here: arrivals[v], there: walk.arrivals[v] };
      }
    }
    const isSame =
      crc32OfNumbers(arrivals) === walk.arrivalsCheck &&
      crc32OfNumbers(positions) === walk.endsCheck;
    return isSame ? { agrees: true } : { agrees: false, vertex: -1, here: 0, there: 0 };
  }
}

import type { Mover } from "./walk.ts";
import { STAYED } from "./walk.ts";

/** Numbers that may go beyond 32 bits only where a walk is that long. */
export type Counts = Uint32Array | Float64Array;

/** A walk as it was at a step. */
interface Keyframe {
  readonly step: number;
  readonly mover: Uint32Array;
  readonly positions: Uint32Array;
  readonly arrivals: Counts;
  readonly latest: Counts;
}

const MOST_KEYFRAMES = 64;
const MOST_BYTES = 64 * 2 ** 20;
/** Trails beyond it cost more memory than they are worth. */
const MOST_TRAIL_CELLS = 2 ** 22;
/** How often the clock is looked at, in moves. */
const MOVES_BETWEEN_LOOKS = 4096;

function counts(n: number, largest: number): Counts {
  return largest < 2 ** 32 ? new Uint32Array(n) : new Float64Array(n);
}

/** The first place whose entry is above the value. */
export function upperBound(sorted: readonly number[], value: number): number {
  let low = 0;
  let high = sorted.length;
  while (low < high) {
    const middle = (low + high) >>> 1;
    if (sorted[middle] <= value) low = middle + 1;
    else high = middle;
  }
  return low;
}

/** What is known of a walk by all who follow it: keyframes, and when vertices were first arrived at. */
export class Course {
  readonly steps: number;
  readonly agents: number;
  readonly n: number;
  /** The step of the first arrival at each vertex that was arrived at, in their order. */
  readonly reachedAt: number[] = [];
  /** Up to here first arrivals are known. */
  frontier = 0;
  readonly trailLength: number;
  private readonly spacing: number;
  private kept = 0;
  private readonly keyframes: (Keyframe | undefined)[] = [];

  constructor(
    n: number,
    readonly starts: Uint32Array,
    steps: number,
    readonly mover: () => Mover,
    trail = 64,
  ) {
    this.n = n;
    this.steps = steps;
    this.agents = starts.length;
    this.trailLength = Math.max(1, Math.min(trail, Math.floor(MOST_TRAIL_CELLS / this.agents)));
    const frames = Math.min(MOST_KEYFRAMES, Math.floor(MOST_BYTES / this.bytesOf(0)) + 1);
    let spacing = 64;
    while (steps / spacing > frames) spacing *= 2;
    this.spacing = spacing;
  }

  get moves(): number {
    return this.agents * this.steps;
  }

  /** How many vertices had been arrived at by the step, which lies within the frontier. */
  reachedBy(step: number): number {
    return upperBound(this.reachedAt, step);
  }

  newCounts(): Counts {
    return counts(this.n, this.moves);
  }

  newSteps(): Counts {
    return counts(this.n, this.steps);
  }

  wantsKeyframe(step: number): boolean {
    return this.kept < MOST_BYTES && step % this.spacing === 0 && this.keyframes[step / this.spacing] === undefined;
  }

  /** How many steps there are from one to the next at which a keyframe may be wanted. */
  untilKeyframe(step: number): number {
    return this.spacing - (step % this.spacing);
  }

  keep(keyframe: Keyframe): void {
    this.keyframes[keyframe.step / this.spacing] = keyframe;
    this.kept += this.bytesOf(keyframe.mover.length);
  }

  private bytesOf(words: number): number {
    return 8 * this.n + 4 * this.agents + 4 * words + 256;
  }

  /** The latest keyframe up to the step. */
  before(step: number): Keyframe | undefined {
    for (let i = Math.floor(step / this.spacing); i >= 0; --i) {
      const keyframe = this.keyframes[i];
      if (keyframe) return keyframe;
    }
    return undefined;
  }
}

/** A walk at a step that moves to any other. */
export class Replay {
  step = 0;
  readonly positions: Uint32Array;
  /** How often each vertex was arrived at. */
  readonly arrivals: Counts;
  /** The step of the latest arrival at each vertex, 0 where there was none. */
  readonly latest: Counts;
  readonly mover: Mover;
  private readonly moves: Int32Array;
  // Positions after the latest steps: those of step s in row s modulo the rows.
  private readonly trail: Uint32Array;
  private readonly rows: number;
  private trailFrom = 0;

  constructor(readonly course: Course) {
    this.mover = course.mover();
    this.positions = course.starts.slice();
    this.arrivals = course.newCounts();
    this.latest = course.newSteps();
    this.moves = new Int32Array(course.agents);
    this.rows = course.trailLength + 1;
    this.trail = new Uint32Array(this.rows * course.agents);
    this.trail.set(this.positions, 0);
    if (course.wantsKeyframe(0)) this.keep();
  }

  /** Walks or goes back towards the step until the deadline, and tells whether it got there. */
  seek(target: number, deadline = Infinity, now = (): number => performance.now()): boolean {
    if (target !== this.step) this.jump(target);
    const batch = Math.max(1, Math.floor(MOVES_BETWEEN_LOOKS / this.course.agents));
    while (this.step < target) {
      this.walk(Math.min(batch, target - this.step));
      if (now() >= deadline) break;
    }
    return this.step === target;
  }

  /** Where the agent stood that many steps ago; nothing where that is before the beginning. */
  trailOf(agent: number, ago: number): number | undefined {
    const step = this.step - ago;
    if (step < this.trailFrom || ago > this.course.trailLength) return undefined;
    return this.trail[(step % this.rows) * this.course.agents + agent];
  }

  // A keyframe well before the step, so that the trail is whole there.
  private jump(target: number): void {
    const keyframe = this.course.before(Math.max(0, target - this.course.trailLength));
    if (!keyframe) return;
    const isNear = target > this.step && target - this.step <= target - keyframe.step;
    if (isNear) return;
    this.step = keyframe.step;
    this.positions.set(keyframe.positions);
    this.arrivals.set(keyframe.arrivals);
    this.latest.set(keyframe.latest);
    this.mover.restore(keyframe.mover);
    this.trailFrom = this.step;
    this.trail.set(this.positions, (this.step % this.rows) * this.course.agents);
  }

  // In runs that end where a keyframe may be wanted.
  private walk(steps: number): void {
    for (let left = steps; left > 0; ) {
      const run = Math.min(left, this.course.untilKeyframe(this.step));
      this.run(run);
      left -= run;
      if (this.course.wantsKeyframe(this.step)) this.keep();
    }
    // Steps before this one were written over.
    this.trailFrom = Math.max(this.trailFrom, this.step - this.course.trailLength);
  }

  private run(steps: number): void {
    const { course, positions, moves, arrivals, latest, mover, trail, rows } = this;
    const agents = positions.length;
    const last = this.step + steps;
    let row = (this.step % rows) * agents;
    for (let step = this.step + 1; step <= last; ++step) {
      mover.step(positions, moves);
      row = row + agents < trail.length ? row + agents : 0;
      const isNew = step > course.frontier;
      for (let a = 0; a < agents; ++a) {
        const to = moves[a];
        if (to !== STAYED) {
          positions[a] = to;
          latest[to] = step;
          if (arrivals[to]++ === 0 && isNew) course.reachedAt.push(step);
        }
        trail[row + a] = positions[a];
      }
    }
    this.step = last;
    course.frontier = Math.max(course.frontier, last);
  }

  private keep(): void {
    this.course.keep({
      step: this.step,
      mover: this.mover.save(),
      positions: this.positions.slice(),
      arrivals: this.arrivals.slice(),
      latest: this.latest.slice(),
    });
  }
}

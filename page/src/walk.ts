import type { Lists } from "./lists.ts";
import { RandomStream } from "./random.ts";

/** In place of a vertex: the agent did not move. */
export const STAYED = -1;

export type Choice = "published" | "even" | "weighted";

/** What moves agents: a walk's law, or a record of what happened. */
export interface Mover {
  /** One step: where each agent arrives, or STAYED. */
  step(positions: Uint32Array, moves: Int32Array): void;
  /** What restore() brings back at this step. */
  save(): Uint32Array;
  restore(saved: Uint32Array): void;
}

export interface Law {
  readonly lists: Lists;
  /** Sums of weights, where these choose. */
  readonly sums: Float64Array | null;
  readonly choice: Choice;
  readonly words: Uint32Array;
  readonly restarts: Restarts | null;
}

export interface Restarts {
  /** A draw below this leads home. */
  readonly threshold: number;
  readonly homes: Uint32Array;
  /** A generator of their own; without it they draw from the walk's, after the choices of a step. */
  readonly words: Uint32Array | null;
}

const HALF = 2 ** 30;
const ALL = 2 ** 31;

function publishedPlace(k: number, draw: number): number {
  return Math.floor(((k - 1) * draw + HALF) / ALL);
}

/** The law of plain agents. All products stay below 2^53 and hence exact. */
export class LawMover implements Mover {
  private readonly choices: RandomStream;
  private readonly returns: RandomStream | null;
  private readonly draws: Uint32Array;
  private readonly returning: Uint8Array;

  constructor(
    private readonly law: Law,
    agents: number,
  ) {
    this.choices = new RandomStream(law.words);
    const restarts = law.restarts;
    this.returns = restarts?.words ? new RandomStream(restarts.words) : null;
    this.draws = new Uint32Array(restarts ? agents : 0);
    this.returning = new Uint8Array(restarts ? agents : 0);
  }

  step(positions: Uint32Array, moves: Int32Array): void {
    const restarts = this.law.restarts;
    if (restarts) {
      this.drawWithRestarts(restarts);
      for (let a = 0; a < positions.length; ++a) {
        moves[a] = this.returning[a]
          ? restarts.homes[a]
          : this.next(positions[a], this.draws[a]);
      }
      return;
    }
    if (this.law.choice === "published") {
      this.stepPublished(positions, moves);
      return;
    }
    for (let a = 0; a < positions.length; ++a) {
      moves[a] = this.next(positions[a], this.choices.next());
    }
  }

  // What most walks do. All places are found before any neighbour is looked up, so that a processor waits for
  // many of them at once.
  private stepPublished(positions: Uint32Array, moves: Int32Array): void {
    const { choices } = this;
    const { start, neighbours } = this.law.lists;
    for (let a = 0; a < positions.length; ++a) {
      const draw = choices.next();
      const from = start[positions[a]];
      const k = start[positions[a] + 1] - from;
      moves[a] = k === 0 ? STAYED : from + publishedPlace(k, draw);
    }
    for (let a = 0; a < positions.length; ++a) {
      if (moves[a] !== STAYED) moves[a] = neighbours[moves[a]];
    }
  }

  save(): Uint32Array {
    const words = [...this.choices.words(), ...(this.returns?.words() ?? [])];
    return Uint32Array.from(words);
  }

  restore(saved: Uint32Array): void {
    this.choices.restore(saved.subarray(0, RandomStream.words));
    this.returns?.restore(saved.subarray(RandomStream.words));
  }

  private drawWithRestarts(restarts: Restarts): void {
    const agents = this.draws.length;
    for (let a = 0; a < agents; ++a) this.draws[a] = this.choices.next();
    const returns = this.returns ?? this.choices;
    for (let a = 0; a < agents; ++a) {
      this.returning[a] = returns.next() < restarts.threshold ? 1 : 0;
    }
  }

  private next(vertex: number, draw: number): number {
    const { lists, sums, choice } = this.law;
    const from = lists.start[vertex];
    const k = lists.start[vertex + 1] - from;
    if (k === 0) return STAYED;
    if (choice === "published") return lists.neighbours[from + publishedPlace(k, draw)];
    if (choice === "even") return lists.neighbours[from + Math.floor((k * draw) / ALL)];
    return sums ? weighted(lists, sums, from, k, draw) : STAYED;
  }
}

/** The first entry whose sum is above the draw's share of the sum of all. */
function weighted(
  lists: Lists,
  sums: Float64Array,
  from: number,
  k: number,
  draw: number,
): number {
  const total = sums[from + k - 1];
  if (!(total > 0)) return STAYED;
  const limit = total * (draw / ALL);
  let low = from;
  let high = from + k - 1;
  while (low < high) {
    const middle = (low + high) >>> 1;
    if (sums[middle] > limit) high = middle;
    else low = middle + 1;
  }
  return lists.neighbours[low];
}

/** Small pages of every kind. */
import { outLists } from "../../src/lists.ts";
import { LawMover, STAYED } from "../../src/walk.ts";
import { network, seeded } from "./networks.ts";
import { Writer, encode } from "./encode.ts";
import type { Content } from "./encode.ts";

/** The same network with a walk, which the page's own law makes. */
export function walked(content: Content, agents: number, steps: number, seed = 1, target = 0): Content {
  const sources = Uint32Array.from(content.edges, ([source]) => source);
  const targets = Uint32Array.from(content.edges, ([, end]) => end);
  const lists = outLists(content.n, sources, targets, content.directed ?? false);
  const words = seeded(seed);
  const mover = new LawMover({ lists, sums: null, choice: "published", words, restarts: null }, agents);
  const starts = Array.from({ length: agents }, (_, a) => a % content.n);
  const positions = Uint32Array.from(starts);
  const arrivals = new Array<number>(content.n).fill(0);
  const moves = new Int32Array(agents);
  for (let s = 0; s < steps; ++s) {
    mover.step(positions, moves);
    moves.forEach((to, a) => {
      if (to === STAYED) return;
      positions[a] = to;
      ++arrivals[to];
    });
  }
  return { ...content, walk: { words, steps, starts, arrivals, ends: [...positions], seed, target } };
}

/** A star of three rays, on which two agents with memory were seen to walk. */
export function remembered(): Content {
  const edges: [number, number][] = [[0, 1], [0, 2], [0, 3]];
  // Agent 0: 0 to 1, back, to 2. Agent 1 begins at 3: to 0, to 3 as a vertex, stays.
  const moves = new Writer().varints([2, 2, 2, 1, 3, 3, 0, 1, 2, 0]).bytes;
  return {
    n: 4,
    edges,
    names: ["hub", "a", "b", "c"],
    walk: {
      words: seeded(1),
      steps: 3,
      starts: [0, 3],
      arrivals: [2, 1, 1, 1],
      ends: [2, 3],
      moves,
      memories: { sizes: [2, 3] },
    },
  };
}


/** A network of random edges in a row of clusters, for sizes. */
export function large(n: number, m: number): Content {
  let state = 1;
  const next = (below: number): number => {
    state = (state * 48271) % 2147483647;
    return state % below;
  };
  const edges = Array.from({ length: m }, (): [number, number] => [next(n), next(n)]);
  const positions = Array.from({ length: n }, (): [number, number] => {
    return [next(65536) / 65535, next(65536) / 65535];
  });
  return { title: `${n} vertices`, n, edges, positions };
}

export const smallSamples: Record<string, Content> = {
  empty: { n: 0, edges: [] },
  one: { n: 1, edges: [] },
  loops: { n: 3, edges: [[0, 0], [1, 1], [2, 2], [2, 2]], title: "All loops" },
  parallel: { n: 2, edges: [[0, 1], [0, 1], [1, 0]], directed: true, weights: [1, 2, 0.5] },
  coincident: { n: 3, edges: [[0, 1]], positions: [[0.5, 0.5], [0.5, 0.5], [0.5, 0.5]] },
  columns: {
    n: 3,
    edges: [[0, 1], [1, 2]],
    names: ["x", "y", "ž"],
    numbers: { Age: [3, NaN, -1.5], Wealth: [1e300, -Infinity, 7] },
    texts: { Town: ["Ulm", "", "Bern"] },
    color: { by: "column", column: 2 },
  },
  remembered: remembered(),
};

export function karateBlock(): Uint8Array {
  return encode(walked(network("karate"), 3, 500, 1, 0.99));
}

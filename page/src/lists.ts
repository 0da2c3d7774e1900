/** The lists of a network in edge order: those of vertex v are the places from start[v] to start[v + 1]. */
export interface Lists {
  readonly start: Uint32Array;
  readonly neighbours: Uint32Array;
  readonly edges: Uint32Array;
}

/**
 * The lists that agents choose from. Of an undirected network both ends have an edge in their lists, a
 * loop twice in a row in its vertex's; of a directed one only the source has it.
 */
export function outLists(
  n: number,
  sources: Uint32Array,
  targets: Uint32Array,
  directed: boolean,
): Lists {
  const start = new Uint32Array(n + 1);
  for (let e = 0; e < sources.length; ++e) {
    ++start[sources[e] + 1];
    if (!directed) ++start[targets[e] + 1];
  }
  for (let v = 0; v < n; ++v) start[v + 1] += start[v];
  const neighbours = new Uint32Array(start[n]);
  const edges = new Uint32Array(start[n]);
  const free = start.slice(0, n);
  for (let e = 0; e < sources.length; ++e) {
    const source = sources[e];
    const target = targets[e];
    edges[free[source]] = e;
    neighbours[free[source]++] = target;
    if (directed) continue;
    edges[free[target]] = e;
    neighbours[free[target]++] = source;
  }
  return { start, neighbours, edges };
}

/** For each place the sum of the weights of its list from the first entry to it; without weights each is 1. */
export function weightSums(lists: Lists, weights: Float32Array | null): Float64Array {
  const sums = new Float64Array(lists.neighbours.length);
  for (let v = 0; v + 1 < lists.start.length; ++v) {
    let sum = 0;
    for (let place = lists.start[v]; place < lists.start[v + 1]; ++place) {
      sum += weights ? weights[lists.edges[place]] : 1;
      sums[place] = sum;
    }
  }
  return sums;
}

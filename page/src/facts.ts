import type { Data } from "./data.ts";
import type { Replay } from "./replay.ts";
import { columnOf } from "./settings.ts";
import type { Source } from "./settings.ts";
import { number, shown, shownWhole, whole } from "./text.ts";

/** What the page knows of each vertex: names, and numbers by where they come from. */
export class Facts {
  readonly degree: Float64Array;
  readonly inDegree: Float64Array;
  readonly strength: Float64Array | null;

  constructor(
    readonly data: Data,
    readonly replay: Replay | null,
  ) {
    const { sources, targets, weights, meta } = data;
    this.degree = new Float64Array(meta.n);
    this.inDegree = new Float64Array(meta.n);
    this.strength = weights && new Float64Array(meta.n);
    for (let e = 0; e < meta.m; ++e) {
      ++this.degree[sources[e]];
      ++(meta.directed ? this.inDegree : this.degree)[targets[e]];
      if (!this.strength || !weights) continue;
      this.strength[sources[e]] += weights[e];
      if (!meta.directed) this.strength[targets[e]] += weights[e];
    }
  }

  get n(): number {
    return this.data.meta.n;
  }

  rawName(v: number): string {
    return this.data.names ? this.data.names[v] : String(v);
  }

  /** What may be shown, cut where it is very long. */
  name(v: number): string {
    return shown(this.rawName(v));
  }

  wholeName(v: number): string {
    return shownWhole(this.rawName(v));
  }

  /** The numbers of a source; NaN where a vertex has none. Null for what is no number. */
  numbers(source: Source): ArrayLike<number> | null {
    switch (source) {
      case "visits":
        return this.replay?.arrivals ?? null;
      case "latest":
        return this.replay?.latest ?? null;
      case "degree":
        return this.degree;
      case "indegree":
        return this.inDegree;
      case "strength":
        return this.strength;
      default: {
        const column = this.data.columns[columnOf(source)] as Data["columns"][number] | undefined;
        return column?.kind === "number" ? column.values : null;
      }
    }
  }

  /** How a source is called. */
  title(source: Source): string {
    const titles: Record<string, string> = {
      visits: "visits so far",
      latest: "latest visit",
      degree: this.data.meta.directed ? "out-degree" : "degree",
      indegree: "in-degree",
      strength: this.data.meta.directed ? "out-strength" : "strength",
      none: "nothing",
      constant: "nothing",
    };
    const column = columnOf(source);
    return column >= 0 ? shown(this.data.columns[column].key) : titles[source];
  }

  /** The sources of numbers and texts that are listed of a vertex. */
  listed(): Source[] {
    const { data } = this;
    return [
      "degree",
      ...(data.meta.directed ? ["indegree"] : []),
      ...(data.weights ? ["strength"] : []),
      ...(data.walk ? ["visits", "latest"] : []),
      ...data.columns.map((_, i) => `column${i}`),
    ];
  }

  /** What is said of a vertex under a source. */
  text(source: Source, v: number): string {
    const column = columnOf(source);
    if (column >= 0) {
      const { kind, values } = this.data.columns[column];
      if (kind === "number") return number(values[v]);
      const of = this.data.columns[column] as { texts: readonly string[] };
      return values[v] === 0 ? "none" : shown(of.texts[values[v] - 1]);
    }
    const value = this.numbers(source)?.[v] ?? NaN;
    if (source === "latest") return value > 0 ? `step ${whole(value)}` : "never";
    return number(value);
  }
}

import { MOST_KINDS, SCALE_STEPS, kindsOf, scaleOf, shadesOf } from "./color.ts";
import type { Color, Theme } from "./color.ts";
import type { Facts } from "./facts.ts";
import type { Scene } from "./scene.ts";
import type { ScaleKind, Settings } from "./settings.ts";
import { columnOf } from "./settings.ts";
import { shown } from "./text.ts";

/** What colours mean. */
export interface Legend {
  readonly title: string;
  /** Colours from low to high, and the numbers at their beginning, middle and end. */
  readonly scale: { readonly colors: Uint32Array; readonly ticks: readonly number[] } | null;
  readonly kinds: readonly { readonly color: Color; readonly text: string }[];
  /** What the colour of vertices without a number says, where there are such. */
  readonly none: { readonly color: Color; readonly text: string } | null;
}

const NONE = 0;
const SCALE_FROM = 1;
const KINDS_FROM = SCALE_FROM + SCALE_STEPS;

export function paletteOf(theme: Theme): Uint32Array {
  const palette = new Uint32Array(KINDS_FROM + MOST_KINDS);
  palette[NONE] = shadesOf(theme).none;
  palette.set(scaleOf(theme), SCALE_FROM);
  palette.set(kindsOf(theme), KINDS_FROM);
  return palette;
}

/** Whether 0 of a source says that nothing happened, rather than a number like others. */
function isEvent(source: string): boolean {
  return source === "visits" || source === "latest";
}

function isNone(value: number, event: boolean): boolean {
  return Number.isNaN(value) || (event && value === 0);
}

/** The least and largest of the finite numbers; from 0 to 1 where there are none. */
export function extent(values: ArrayLike<number>, event: boolean): [number, number] {
  let [low, high] = [Infinity, -Infinity];
  for (let v = 0; v < values.length; ++v) {
    const value = values[v];
    if (isNone(value, event) || !Number.isFinite(value)) continue;
    if (value < low) low = value;
    if (value > high) high = value;
  }
  return low <= high ? [low, high] : [0, 1];
}

/** For each value its place among all, equal ones alike, from 0 to 1. */
function rankShares(values: ArrayLike<number>, event: boolean): (value: number) => number {
  const sorted = Float64Array.from(values).filter((value) => !isNone(value, event)).sort();
  const first = (value: number): number => {
    let low = 0;
    let high = sorted.length;
    while (low < high) {
      const middle = (low + high) >>> 1;
      if (sorted[middle] < value) low = middle + 1;
      else high = middle;
    }
    return low;
  };
  const last = sorted.length > 0 ? first(sorted[sorted.length - 1]) : 0;
  return (value) => (last > 0 ? first(value) / last : 1);
}

/** From 0 at the low end to 1 at the high one. */
export function shareOf(kind: ScaleKind, low: number, high: number): (value: number) => number {
  if (!(high > low)) return (value) => (value >= high ? 1 : 0);
  if (kind !== "log") return (value) => (value - low) / (high - low);
  // Of numbers from 0 on the logarithm of one more, so that 0 has a place.
  const shift = low > 0 ? 0 : 1 - low;
  const from = Math.log(low + shift);
  const over = Math.log(high + shift) - from;
  return (value) => (Math.log(Math.max(value, low) + shift) - from) / over;
}

/** The value at a share of a scale. */
function valueAt(kind: ScaleKind, low: number, high: number, share: number): number {
  if (kind !== "log") return low + share * (high - low);
  const shift = low > 0 ? 0 : 1 - low;
  return (low + shift) * ((high + shift) / (low + shift)) ** share - shift;
}

/** Gives every vertex its colour, and says what colours mean. */
export function paint(scene: Scene, facts: Facts, settings: Settings, theme: Theme): Legend | null {
  const source = settings.color;
  const column = columnOf(source);
  const of = column >= 0 ? facts.data.columns[column] : null;
  const palette = scene.palette;
  if (of?.kind === "text") {
    let hasNone = false;
    for (let v = 0; v < scene.n; ++v) {
      scene.tint[v] = of.values[v] === 0 ? NONE : KINDS_FROM + of.values[v] - 1;
      hasNone ||= of.values[v] === 0;
    }
    const kinds = of.texts.map((text, i) => ({ color: palette[KINDS_FROM + i], text: shown(text) }));
    const none = hasNone ? { color: palette[NONE], text: "none" } : null;
    return { title: facts.title(source), scale: null, kinds, none };
  }
  const values = facts.numbers(source);
  if (!values) {
    scene.tint.fill(SCALE_FROM + (theme === "light" ? 150 : 160));
    return null;
  }
  return paintNumbers(scene, facts, settings, theme, values);
}

function paintNumbers(
  scene: Scene,
  facts: Facts,
  settings: Settings,
  theme: Theme,
  values: ArrayLike<number>,
): Legend {
  const { color: source, scale } = settings;
  const event = isEvent(source);
  const [least, largest] = extent(values, event);
  const low = settings.low ?? least;
  const high = settings.high ?? largest;
  const isRank = scale === "rank";
  const share = isRank ? rankShares(values, event) : shareOf(scale, low, high);
  let nones = 0;
  for (let v = 0; v < scene.n; ++v) {
    const value = values[v];
    if (isNone(value, event)) {
      scene.tint[v] = NONE;
      ++nones;
      continue;
    }
    const at = Math.min(1, Math.max(0, share(value)));
    scene.tint[v] = SCALE_FROM + Math.round(at * (SCALE_STEPS - 1));
  }
  const isOne = nones < scene.n && !(high > low) && !isRank;
  const ticks = isOne ? [high] : [0, 0.5, 1].map((at) => valueAt(scale, low, high, at));
  const colors = isOne ? scaleOf(theme).slice(-1) : scaleOf(theme);
  return {
    title: facts.title(source) + (isRank ? ", by rank" : ""),
    scale: nones === scene.n ? null : { colors, ticks: isRank ? [] : ticks },
    kinds: [],
    // An entry that went away once all are visited would have the legend jump.
    none: nones > 0 || event ? { color: scene.palette[NONE], text: event ? "not visited yet" : "none" } : null,
  };
}

/** The least and the largest radius, by how many vertices there are. */
export function radii(n: number): [number, number] {
  const most = Math.max(2.2, Math.min(15, 110 / Math.sqrt(Math.max(1, n))));
  return [Math.max(0.8, most * 0.32), most];
}

/** Gives every vertex its radius: its area grows in proportion to the number. */
export function measure(scene: Scene, facts: Facts, settings: Settings): void {
  const [least, most] = radii(scene.n);
  const values = facts.numbers(settings.size);
  if (!values) {
    scene.radius.fill((least + most) / 2.4);
    return;
  }
  const [, high] = extent(values, false);
  for (let v = 0; v < scene.n; ++v) {
    const share = high > 0 ? Math.min(1, Math.max(0, values[v] / high)) : 0;
    scene.radius[v] = Number.isNaN(share) ? least : least + (most - least) * Math.sqrt(share);
  }
}

/** Lets all but a vertex and its neighbours stand back. */
export function mark(scene: Scene, vertex: number): void {
  scene.marked = vertex;
  scene.hasFaded = vertex >= 0;
  scene.faded.fill(vertex >= 0 ? 1 : 0);
  if (vertex < 0) return;
  scene.faded[vertex] = 0;
  for (let e = 0; e < scene.sources.length; ++e) {
    if (scene.sources[e] === vertex) scene.faded[scene.targets[e]] = 0;
    if (scene.targets[e] === vertex) scene.faded[scene.sources[e]] = 0;
  }
}

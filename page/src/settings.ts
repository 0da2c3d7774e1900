import type { Data } from "./data.ts";

export type ScaleKind = "linear" | "log" | "rank";
/** visits, latest, degree, none; constant, degree, strength, visits; or a column by its number. */
export type Source = string;

/** Everything that a reader chose. It is the page's address, too. */
export interface Settings {
  step: number;
  /** Steps a second. */
  speed: number;
  loop: boolean;
  color: Source;
  scale: ScaleKind;
  low: number | null;
  high: number | null;
  size: Source;
  /** "all", "none" or numbers: "0, 3-5". */
  agents: string;
  trail: number;
  follow: number;
  vertex: number;
  table: boolean;
  theme: "auto" | "light" | "dark";
  view: "auto" | "canvas" | "webgl";
}

/** In place of a step: nobody chose one, so that the page plays the walk by itself. */
export const BY_ITSELF = -1;
export const MOST_SPEED = 1e6;
export const MOST_TRAIL = 64;

export function columnSource(index: number): Source {
  return `column${index}`;
}

export function columnOf(source: Source): number {
  return source.startsWith("column") ? Number(source.slice("column".length)) : -1;
}

/** What can be chosen on this page. */
export interface Offers {
  readonly colors: readonly Source[];
  readonly sizes: readonly Source[];
}

export function offersOf(data: Data, mostKinds: number): Offers {
  const numbers: Source[] = [];
  const texts: Source[] = [];
  data.columns.forEach((column, i) => {
    if (column.kind === "number") numbers.push(columnSource(i));
    else if (column.texts.length <= mostKinds) texts.push(columnSource(i));
  });
  const walked = data.walk ? ["visits", "latest"] : [];
  const strength = data.weights ? ["strength"] : [];
  return {
    colors: [...walked, "degree", ...strength, ...numbers, ...texts, "none"],
    sizes: ["degree", ...strength, ...(data.walk ? ["visits"] : []), ...numbers, "constant"],
  };
}

export function defaults(data: Data, offers: Offers): Settings {
  const wanted = (first: Data["meta"]["color"]): Source =>
    first ? (first.by === "column" ? columnSource(first.column) : first.by) : "";
  const color = wanted(data.meta.color);
  const size = wanted(data.meta.size);
  return {
    step: data.walk ? BY_ITSELF : 0,
    speed: data.walk ? firstSpeed(data.walk.steps) : 1,
    loop: false,
    color: offers.colors.includes(color) ? color : offers.colors[0],
    scale: "linear",
    low: null,
    high: null,
    size: offers.sizes.includes(size) ? size : "degree",
    agents: "all",
    trail: usualTrail(data.walk?.starts.length ?? 0),
    follow: -1,
    vertex: -1,
    table: false,
    theme: "auto",
    view: "auto",
  };
}

/** Of many agents long trails hide the network, and each other. */
export function usualTrail(agents: number): number {
  return Math.max(1, Math.min(6, Math.floor(300 / Math.max(1, agents))));
}

/** So that a walk takes some twenty seconds, where that is neither too slow nor too fast to follow. */
function firstSpeed(steps: number): number {
  return Math.min(MOST_SPEED, Math.max(2, steps / 20));
}

/** The agents that are meant, in ascending order; null where nobody can tell. */
export function agentsOf(text: string, agents: number): number[] | null {
  const words = text.trim().toLowerCase();
  if (words === "all") return Array.from({ length: agents }, (_, i) => i);
  if (words === "none" || words === "") return [];
  const chosen = new Set<number>();
  for (const part of words.split(/[\s,]+/).filter(Boolean)) {
    const match = /^(\d{1,6})(?:-(\d{1,6}))?$/.exec(part);
    if (!match) return null;
    const last = Number(match[2] || match[1]);
    if (last >= agents) return null;
    for (let agent = Number(match[1]); agent <= last; ++agent) chosen.add(agent);
  }
  return [...chosen].sort((a, b) => a - b);
}

const scales: readonly string[] = ["linear", "log", "rank"];

/** The part of an address after #, of what is not as it is by itself. */
export function addressOf(settings: Settings, base: Settings): string {
  const parts: string[] = [];
  const put = (key: string, value: string | number | boolean, usual: unknown): void => {
    if (value !== usual) parts.push(`${key}=${encodeURIComponent(String(value))}`);
  };
  put("s", settings.step, base.step);
  put("v", settings.vertex, base.vertex);
  put("speed", Number(settings.speed.toPrecision(4)), Number(base.speed.toPrecision(4)));
  put("loop", settings.loop, base.loop);
  put("color", settings.color, base.color);
  put("scale", settings.scale, base.scale);
  if (settings.low !== null) put("low", settings.low, null);
  if (settings.high !== null) put("high", settings.high, null);
  put("size", settings.size, base.size);
  put("agents", settings.agents, base.agents);
  put("trail", settings.trail, base.trail);
  put("follow", settings.follow, base.follow);
  put("table", settings.table, base.table);
  put("theme", settings.theme, base.theme);
  put("view", settings.view, base.view);
  return parts.join("&");
}

/** Settings from the part of an address after #. What makes no sense is as it is by itself. */
export function settingsFrom(hash: string, base: Settings, data: Data, offers: Offers): Settings {
  const given = new URLSearchParams(hash.replace(/^#/, ""));
  const whole = (key: string, least: number, most: number, usual: number): number => {
    const value = Number(given.get(key) ?? NaN);
    return Number.isInteger(value) && value >= least && value <= most ? value : usual;
  };
  const real = (key: string): number | null => {
    const value = Number(given.get(key) ?? NaN);
    return Number.isFinite(value) ? value : null;
  };
  const oneOf = <T extends string>(key: string, all: readonly string[], usual: T): T => {
    const value = given.get(key);
    return value !== null && all.includes(value) ? (value as T) : usual;
  };
  const agents = data.walk?.starts.length ?? 0;
  const list = given.get("agents") ?? "all";
  const speed = real("speed");
  return {
    step: whole("s", 0, data.walk?.steps ?? 0, base.step),
    speed: speed !== null && speed >= 1 && speed <= MOST_SPEED ? speed : base.speed,
    loop: given.get("loop") === "true",
    color: oneOf("color", offers.colors, base.color),
    scale: oneOf("scale", scales, base.scale),
    low: real("low"),
    high: real("high"),
    size: oneOf("size", offers.sizes, base.size),
    agents: agentsOf(list, agents) ? list : base.agents,
    trail: whole("trail", 0, MOST_TRAIL, base.trail),
    follow: whole("follow", 0, agents - 1, base.follow),
    vertex: whole("v", 0, data.meta.n - 1, base.vertex),
    table: given.get("table") === "true",
    theme: oneOf("theme", ["light", "dark"], base.theme),
    view: oneOf("view", ["canvas", "webgl"], base.view),
  };
}

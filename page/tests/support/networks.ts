/** Networks and walks for tests, from the repository's data and the program itself. */
import { execFileSync } from "node:child_process";
import { existsSync, readFileSync } from "node:fs";
import { dirname, join } from "node:path";
import type { Content } from "./encode.ts";

/** The root of the repository: the folder above that holds the file which names the library's version. */
export const root = findRoot(dirname(new URL(import.meta.url).pathname));

function findRoot(from: string): string {
  return existsSync(join(from, "CMakePresets.json")) ? from : findRoot(dirname(from));
}

/** The program, which VEQ_PROGRAM names. */
export function program(): string {
  const path = process.env["VEQ_PROGRAM"] ?? join(root, "build/demo/tools/veq/veq");
  if (!existsSync(path)) throw new Error(`There is no ${path}; VEQ_PROGRAM says where the program is.`);
  return path;
}

export function veq(...words: string[]): string {
  return execFileSync(program(), words, {
    cwd: root,
    encoding: "utf8",
    maxBuffer: 1 << 28,
    stdio: ["ignore", "pipe", "ignore"],
  });
}

/** One of the repository's networks, whose files have a line for each edge, perhaps with a weight. */
export function network(name: "karate" | "lesmis"): Content {
  const lines = readFileSync(join(root, "data", `${name}.xnet`), "utf8").split("\n");
  const head = /^#vertices (\d+)/.exec(lines[0]);
  if (!head) throw new Error(`${name} has another head`);
  const n = Number(head[1]);
  const from = lines.findIndex((line) => line.startsWith("#edges"));
  const until = lines.findIndex((line, i) => i > from && line.startsWith("#"));
  const rows = lines.slice(from + 1, until < 0 ? undefined : until).filter((line) => line !== "");
  const numbers = rows.map((row) => row.split(/\s+/).map(Number));
  const content: Content = { title: name, n, edges: numbers.map(([a, b]) => [a, b]) };
  if (lines[from].includes(" weighted")) content.weights = numbers.map(([, , weight]) => weight);
  if (from > 1) content.names = lines.slice(1, from).map((line) => line.replace(/^"|"$/g, ""));
  return content;
}

/** Where each agent stood after each step, as `veq walk --paths` tells it: paths[agent][step]. */
export function pathsOf(file: string, ...options: string[]): number[][] {
  const paths: number[][] = [];
  for (const line of veq("walk", file, ...options, "--paths", "-").split("\n").slice(1)) {
    if (line === "") continue;
    const [agent, step, index] = line.split(",", 3).map(Number);
    (paths[agent] ??= [])[step] = index;
  }
  return paths;
}

/** The 31 words drawn last before the first draw after setRandomSeed(seed). */
export function seeded(seed: number): Uint32Array {
  const r = new Uint32Array(344);
  let word = seed | 0 || 1;
  r[0] = word >>> 0;
  for (let i = 1; i < 31; ++i) {
    // 16807 times it modulo 2^31 - 1, by the division that keeps products in 31 bits.
    const high = Math.trunc(word / 127773);
    word = 16807 * (word - high * 127773) - 2836 * high;
    if (word < 0) word += 2147483647;
    r[i] = word;
  }
  // The first three words stand twice, and 310 are passed over.
  for (let i = 31; i < 34; ++i) r[i] = r[i - 31];
  for (let i = 34; i < 344; ++i) r[i] = r[i - 3] + r[i - 31];
  return r.slice(313);
}

/** The words that many draws later. */
export function after(words: ArrayLike<number>, count: number): Uint32Array {
  const r = Array.from(words);
  for (let i = 0; i < count; ++i) r.push((r[r.length - 3] + r[r.length - 31]) >>> 0);
  return Uint32Array.from(r.slice(-31));
}

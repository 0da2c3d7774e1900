/** Measures what the page promises, and prints it beside the bars. */
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { addressOf, launch, open, templateFile } from "../support/browser.ts";
import { root } from "../support/networks.ts";
import { large, walked } from "../support/samples.ts";

interface Measure {
  views(kind: string, n: number, m: number, times: number): { first: number; still: number; moving: number };
  overlay(agents: number, trail?: number): number;
  walking(n: number, agents: number): number;
}

let missed = 0;

function row(what: string, value: number, unit: string, bar?: number): void {
  const text = value >= 100 ? value.toFixed(0) : value.toFixed(1);
  const verdict = bar === undefined ? "" : value <= bar ? `within ${bar}` : `BEYOND ${bar}`;
  if (bar !== undefined && value > bar) ++missed;
  console.log(`${what.padEnd(46)}${text.padStart(9)} ${unit.padEnd(4)} ${verdict}`);
}

const browser = await launch("--js-flags=--expose-gc");
const page = await browser.newPage();
await page.addScriptTag({ content: readFileSync(join(root, "page/build/tests/inpage.js"), "utf8") });
const call = <T>(run: (measure: Measure, argument: never) => T, argument: unknown): Promise<T> =>
  page.evaluate(`(${String(run)})(window.measure, ${JSON.stringify(argument)})`);

const bars: Record<string, number> = { 1000: 20, 10000: 100, 100000: 1200 };
for (const kind of ["canvas", "webgl"]) {
  for (const n of [1000, 10_000, 100_000]) {
    if (kind === "webgl" && n === 100_000 && !process.argv.includes("--all")) continue;
    const times = n > 10_000 ? 3 : 9;
    const result = await call((measure, [k, size, t]: never[]) => measure.views(k, size, 3 * size, t), [kind, n, times]);
    const bar = kind === "canvas" ? bars[n] : undefined;
    row(`${kind}: ${n} vertices, ${3 * n} edges, still`, result.still, "ms", bar);
    row(`${kind}: the same while the camera moves`, result.moving, "ms");
    row(`${kind}: the same, first picture`, result.first, "ms");
  }
}
row("layer of 100 agents with their usual trails", await call((measure) => measure.overlay(100), null), "ms", 4);
row("the same with trails of 6 moves", await call((measure) => measure.overlay(100, 6), null), "ms");
for (const [n, agents] of [[77, 5], [10_000, 1], [100_000, 100]]) {
  const ns = await call((measure, [size, many]: never[]) => measure.walking(size, many), [n, agents]);
  row(`a move of ${agents} agents on ${n} vertices`, ns, "ns", 60);
}
await page.close();

for (const n of [10_000, 100_000]) {
  const address = addressOf(walked(large(n, 3 * n), 10, 100));
  const begun = performance.now();
  const opened = await open(browser, address);
  if (n === 100_000) row(`page of ${n} vertices, until it answers`, performance.now() - begun, "ms", 3000);
  const client = await opened.page.context().newCDPSession(opened.page);
  await client.send("HeapProfiler.collectGarbage");
  // Objects, and the arrays of numbers, which lie outside of their heap.
  const usage = (await client.send("Runtime.getHeapUsage")) as { usedSize: number; backingStorageSize: number };
  const bytes = usage.usedSize + usage.backingStorageSize;
  row(`heap for ${n} vertices, ${3 * n} edges`, bytes / 1e6, "MB", (40 * 4 * n) / 1e6 + 20);
  await opened.close();
}
row("template", readFileSync(templateFile).length / 1000, "kB", 400);
await browser.close();
console.log(missed === 0 ? "All bars hold." : `${missed} bars do not hold.`);

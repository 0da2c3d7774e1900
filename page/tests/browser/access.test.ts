/** For readers who do not see, or not all colours, or have little room. */
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { after, before, test } from "node:test";
import type { Browser, BrowserContextOptions, Page } from "playwright-core";
import { addressOf, checked, launch, open, settle } from "../support/browser.ts";
import { network, root } from "../support/networks.ts";
import { walked } from "../support/samples.ts";

let browser: Browser;
let address: string;
before(async () => {
  browser = await launch();
  address = addressOf({ ...walked(network("lesmis"), 3, 500, 1, 0.9), call: "veq walk" });
});
after(() => browser.close());

const axe = readFileSync(createRequire(join(root, "page", "package.json")).resolve("axe-core/axe.min.js"), "utf8");

interface Found {
  violations: { id: string; nodes: { html: string; failureSummary?: string }[] }[];
  passes: unknown[];
}

/** What axe-core finds; it is run outside the page's policy. */
async function findings(page: Page): Promise<string[]> {
  await page.evaluate(axe);
  const found = await page.evaluate(() => (window as unknown as { axe: { run(): Promise<Found> } }).axe.run());
  assert.ok(found.passes.length > 15, "axe looked at the page");
  return found.violations.flatMap(({ id, nodes }) => nodes.map((node) => `${id}: ${node.html.slice(0, 120)} ${node.failureSummary ?? ""}`));
}

const settings: [string, BrowserContextOptions, string][] = [
  ["light", {}, ""],
  ["dark", { colorScheme: "dark" }, ""],
  ["forced colours", { forcedColors: "active" }, ""],
  ["320 px", { viewport: { width: 320, height: 640 } }, ""],
  ["a vertex and a hit list", {}, "#v=10&follow=1&s=20"],
  ["table", {}, "#table=true&s=100"],
  ["dark table", { colorScheme: "dark" }, "#table=true&s=100&v=3"],
];

for (const [name, options, hash] of settings) {
  test(`axe finds nothing: ${name}`, async () => {
    const { page, close } = await open(browser, address + hash, { bypassCSP: true, ...options });
    await checked(page);
    if (name.includes("hit")) await page.fill("#search", "m");
    assert.deepEqual(await findings(page), []);
    await close();
  });
}

for (const [name, width, height, zoom] of [
  ["360 px wide", 360, 700, 1],
  ["320 px wide", 320, 600, 1],
  ["at 200 %", 590, 380, 2],
] as const) {
  test(`nothing is out of reach: ${name}`, async () => {
    const { page, close } = await open(browser, address, { viewport: { width, height }, deviceScaleFactor: zoom });
    await settle(page);
    const wide = await page.evaluate(() => document.documentElement.scrollWidth - window.innerWidth);
    assert.ok(wide <= 0, `${wide} px beyond the side`);
    const out = await page.evaluate(() =>
      Array.from(document.querySelectorAll("button, input, select"))
        .filter((each) => each.checkVisibility())
        .map((each) => ({ id: each.id || each.textContent, box: each.getBoundingClientRect() }))
        .filter(({ box }) => box.left < -0.5 || box.right > window.innerWidth + 0.5 || box.height < 20)
        .map(({ id }) => id),
    );
    // The slider of the trail and those of the walk are lower than buttons, as sliders are.
    assert.deepEqual(out.filter((id) => !["trail", "speed", "loop"].includes(id)), []);
    await page.click("#forward");
    await page.waitForFunction(() => document.getElementById("step-now")?.textContent === "1");
    await page.click("#save-csv");
    await close();
  });
}

test("nothing jumps while a walk is played", async () => {
  const { page, close } = await open(browser, address);
  await checked(page);
  await page.evaluate(() => {
    const shifts: number[] = [];
    (window as unknown as { shifts: number[] }).shifts = shifts;
    new PerformanceObserver((list) => {
      for (const entry of list.getEntries()) shifts.push((entry as unknown as { value: number }).value);
    }).observe({ type: "layout-shift", buffered: false });
  });
  await page.click("#play");
  await page.waitForTimeout(1200);
  await page.click("#to-end");
  await settle(page);
  const shifts = await page.evaluate(() => (window as unknown as { shifts: number[] }).shifts);
  assert.ok(shifts.reduce((sum, shift) => sum + shift, 0) < 0.005, String(shifts));
  await close();
});

test("the picture is printed, and its controls are not", async () => {
  const { page, close } = await open(browser, address);
  await page.emulateMedia({ media: "print" });
  await settle(page);
  assert.equal(await page.isVisible("#picture"), true);
  assert.equal(await page.isVisible("#legend"), true);
  assert.equal(await page.isVisible("#panel"), false);
  assert.equal(await page.isVisible("#slider"), false);
  await close();
});

test("focus is seen", async () => {
  const { page, close } = await open(browser, address);
  await page.keyboard.press("Tab");
  const outline = await page.evaluate(() => getComputedStyle(document.activeElement!).outlineStyle);
  assert.equal(outline, "solid");
  await close();
});

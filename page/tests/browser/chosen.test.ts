/** What is chosen beside the picture: looks, agents, table, search, address, files. */
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { after, before, test } from "node:test";
import type { Browser } from "playwright-core";
import { STEPS, changes, novel, step, stepIs } from "../support/acting.ts";
import { addressOf, launch, open } from "../support/browser.ts";
import { smallSamples } from "../support/samples.ts";

let browser: Browser;
let address: string;
before(async () => {
  browser = await launch();
  address = addressOf(novel());
});
after(() => browser.close());

test("colours, sizes, scales and ranges are as chosen", async () => {
  const { page, close } = await open(browser, `${address}#s=1000`);
  await stepIs(page, 1000);
  const title = () => page.textContent("#legend .of");
  assert.equal(await title(), "visits so far");
  const offered = await page.locator("#color option").allTextContents();
  assert.deepEqual(offered, ["visits so far", "latest visit", "degree", "strength", "Age", "Town", "nothing"]);
  for (const scale of ["log", "rank", "linear"]) {
    await changes(page, "base", () => page.click(`[data-scale=${scale}]`), scale);
  }
  await changes(page, "base", () => page.fill("#range-high", "20").then(() => page.keyboard.press("Enter")), "range");
  assert.equal(await page.locator("#legend .ticks span").last().textContent(), "20");
  await changes(page, "base", () => page.click("#range-auto"), "auto");
  for (const [value, called] of [["latest", "latest visit"], ["degree", "degree"], ["column0", "Age"], ["column1", "Town"]]) {
    await changes(page, "base", () => page.selectOption("#color", value), value);
    assert.equal(await title(), called);
  }
  assert.deepEqual(await page.locator("#legend li").allTextContents(), ["Digne", "Paris", "Montreuil"]);
  await changes(page, "base", () => page.selectOption("#color", "none"), "nothing");
  assert.equal(await page.isVisible("#legend"), false);
  for (const value of ["visits", "strength", "column0", "constant", "degree"]) {
    await changes(page, "base", () => page.selectOption("#size", value), value);
  }
  await close();
});

test("agents are shown, numbered, trailed and followed as chosen", async () => {
  const { page, close } = await open(browser, `${address}#s=500`);
  await stepIs(page, 500);
  const give = (id: string, text: string) => page.fill(id, text).then(() => page.keyboard.press("Enter"));
  await changes(page, "agents", () => give("#agents-shown", "0, 2-3"), "some");
  await changes(page, "agents", () => page.fill("#trail", "30"), "trail");
  await give("#agents-shown", "7");
  assert.ok((await page.textContent("#agents-help"))?.startsWith("Not understood. Give all, none, or numbers below 5: "));
  assert.equal(await page.getAttribute("#agents-shown", "aria-invalid"), "true");
  await changes(page, "agents", () => give("#agents-shown", "none"), "none");
  await give("#agents-shown", "all");
  await changes(page, "base", () => give("#follow", "3"), "follow");
  await page.waitForFunction(() => document.getElementById("agent-at")?.textContent.startsWith("Agent 3 is at "));
  await close();
});

test("the table has the same as the picture, and sorts", async () => {
  const { page, close } = await open(browser, `${address}#s=2000&table=true`);
  await stepIs(page, STEPS);
  const first = (column: number) =>
    page.locator("#table-body tr:not(.space)").first().locator("td").nth(column).textContent();
  assert.deepEqual([await first(0), await first(1)], ["0", "Napoleon"]);
  await page.click("#rows th:has-text('degree')");
  assert.deepEqual([await first(1), await first(2)], ["Valjean", "36"]);
  assert.equal(await page.getAttribute("#rows th:has-text('degree')", "aria-sort"), "descending");
  await page.click("#rows th:has-text('degree')");
  assert.equal(await first(2), "1");
  await page.click("#rows th:has-text('name')");
  assert.equal(await first(1), "Anzelma");
  await page.click("#rows th:has-text('visits so far')");
  const most = Number((await first(4))?.replaceAll(",", ""));
  await page.click("#show-picture");
  assert.equal(await page.locator("#legend .ticks span").last().textContent(), most.toLocaleString("en-GB"));
  await page.click("#show-table");
  await page.click("#table-body button >> nth=0");
  await page.waitForSelector("#vertex", { state: "visible" });
  await page.waitForFunction(() => document.querySelectorAll("#table-body tr.marked").length === 1);
  await close();
});

test("search finds names and indices, and says where there are none", async () => {
  const { page, close } = await open(browser, address);
  await page.fill("#search", "10");
  assert.deepEqual(await page.locator("#hits li span").allTextContents(), ["Valjean"]);
  await page.fill("#search", "MME");
  const hits = await page.locator("#hits li span").allTextContents();
  assert.ok(hits.length > 3 && hits.every((name) => /mme/i.test(name)));
  await page.locator("#hits li").nth(1).click();
  assert.equal(await page.textContent("#vertex-name"), hits[1]);
  await page.fill("#search", "nobody at all");
  assert.equal(await page.textContent("#hits"), "No vertex is called so");
  await close();
});

test("what was chosen survives a reload by its address", async () => {
  const { page, close } = await open(browser, address);
  await page.fill("#slider", "321");
  await page.selectOption("#color", "degree");
  await page.click("[data-scale=log]");
  await page.selectOption("#size", "visits");
  await page.fill("#trail", "11");
  await page.check("#loop");
  await page.click("#theme");
  await page.fill("#search", "Javert");
  await page.keyboard.press("Enter");
  await page.waitForFunction(() => window.location.hash.includes("v="));
  await page.click("#copy-address");
  const given = await page.inputValue("#address");
  assert.equal(new URL(given).hash, "#s=321&v=27&loop=true&color=degree&scale=log&size=visits&trail=11&theme=dark");
  await page.waitForFunction((url) => window.location.href === url, given);
  await page.reload();
  await stepIs(page, 321);
  assert.equal(await page.inputValue("#color"), "degree");
  assert.equal(await page.inputValue("#size"), "visits");
  assert.equal(await page.inputValue("#trail"), "11");
  assert.equal(await page.isChecked("#loop"), true);
  assert.equal(await page.getAttribute("[data-scale=log]", "aria-pressed"), "true");
  assert.equal(await page.textContent("#vertex-name"), "Javert");
  assert.equal(await page.evaluate(() => document.documentElement.dataset["theme"]), "dark");
  await page.evaluate(() => {
    window.location.hash = "#v=10&s=5";
  });
  await stepIs(page, 5);
  assert.equal(await page.textContent("#vertex-name"), "Valjean");
  await close();
});

test("an address that makes no sense shows the page as it is by itself", async () => {
  const { page, watch, close } = await open(browser, `${address}#s=-1&v=9999&color=__proto__&scale=x&size=&agents=9-1,x&trail=1e9&low=NaN`);
  assert.equal(await step(page), 0);
  assert.equal(await page.inputValue("#color"), "visits");
  assert.deepEqual(watch.faults, []);
  await close();
});

test("pictures and tables are saved", async () => {
  const { page, close } = await open(browser, `${address}#s=100`);
  await stepIs(page, 100);
  const saved = async (id: string) => {
    const download = page.waitForEvent("download");
    await page.click(id);
    const file = await download;
    return { name: file.suggestedFilename(), bytes: readFileSync(await file.path()) };
  };
  const png = await saved("#save-png");
  assert.equal(png.name, "lesmis.png");
  assert.equal(png.bytes.subarray(1, 4).toString(), "PNG");
  const box = (await page.locator("#picture").boundingBox())!;
  assert.deepEqual([png.bytes.readUInt32BE(16), png.bytes.readUInt32BE(20)], [2 * box.width, 2 * Math.round(box.height)]);
  const svg = (await saved("#save-svg")).bytes.toString();
  assert.equal(svg.match(/<line /g)?.length, 254);
  assert.equal(svg.match(/<circle /g)?.length, 77);
  assert.equal(svg.match(/<polygon /g)?.length, 5);
  const csv = (await saved("#save-csv")).bytes.toString().trim().split("\n");
  assert.equal(csv.length, 78);
  assert.equal(csv[0], "index,name,degree,visits,latest");
  const visits = csv.slice(1).map((line) => Number(line.split(",")[3]));
  assert.equal(visits.reduce((sum, count) => sum + count, 0), 500);
  await close();
});

test("a walk plays by itself, but not where the address names a step", async () => {
  const { page, close } = await open(browser, address, { reducedMotion: "no-preference" });
  await page.waitForFunction(() => Number(document.getElementById("step-now")?.textContent) > 5);
  await page.click("#play");
  await page.waitForFunction(() => /^#s=\d+$/.test(window.location.hash));
  const paused = await step(page);
  await page.reload();
  await stepIs(page, paused);
  await page.waitForTimeout(200);
  assert.equal(await step(page), paused);
  await close();
});

test("who asked for less motion sees none by itself", async () => {
  const { page, close } = await open(browser, address);
  await page.waitForTimeout(200);
  assert.equal(await step(page), 0);
  assert.equal(await page.getAttribute("#play", "aria-label"), "Play");
  await close();
});

test("a page without a walk has no replay, and colours by degree", async () => {
  const { page, watch, close } = await open(browser, addressOf(smallSamples["columns"]));
  assert.equal(await page.isVisible("#walk"), false);
  assert.equal(await page.isVisible("#check"), false);
  assert.equal(await page.textContent("#legend .of"), "Town");
  assert.deepEqual(await page.locator("#legend li").allTextContents(), ["Ulm", "Bern"]);
  assert.equal(await page.textContent("#legend .one"), "none");
  await page.keyboard.press(" ");
  await page.keyboard.press("ArrowRight");
  assert.deepEqual(watch.faults, []);
  await close();
});

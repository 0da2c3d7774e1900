/** Walks that the program made are made again in the browser, and agree to the last visit. */
import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, test } from "node:test";
import type { Browser, Page } from "playwright-core";
import { crc32, fromBase64 } from "../../src/bytes.ts";
import { encode } from "../support/encode.ts";
import { addressOf, checked, fileOf, folder, htmlOf, launch, open, pageOf, settle } from "../support/browser.ts";
import { network, pathsOf, veq } from "../support/networks.ts";
import { remembered, smallSamples, walked } from "../support/samples.ts";

let browser: Browser;
before(async () => {
  browser = await launch();
});
after(() => browser.close());

/** The row of a CSV of the page's: index, name, degree, visits, latest. */
function visitsOf(csv: string): number[] {
  return csv.trim().split("\n").slice(1).map((line) => Number(line.split(",").at(-2)));
}

/** What the page's own table of visits says at the end. */
async function visitsShown(page: Page, address: string): Promise<{ says: string; visits: number[] }> {
  await page.goto(address);
  const says = await checked(page);
  await page.click("#to-end");
  await page.waitForFunction(() => document.querySelector<HTMLButtonElement>("#to-end")?.disabled);
  const download = page.waitForEvent("download");
  await page.click("#save-csv");
  const csv = readFileSync(await (await download).path(), "utf8");
  return { says, visits: visitsOf(csv) };
}

interface Told {
  visits: { index: number; visits: number }[];
}

const WALKS = 100;
const lengths = [["--steps", "400"], ["--steps", "3000"], ["--until-reach", "0.5", "--steps", "5000"], ["--steps", "1"]];
const choices = ["published", "even", "weighted"];
const starts = [[], ["--start", "degree"], ["--start", "uniform"]];
const restarts = [[], ["--restart", "0.2"], [], ["--restart", "1"]];

/** Random edges, among them loops, parallel ones and vertices without any, in every second network with weights. */
function randomNetwork(name: string, next: (below: number) => number): { file: string; isWeighted: boolean } {
  const file = join(folder, name);
  const n = 2 + next(120);
  const isWeighted = next(2) === 0;
  const edges = Array.from({ length: 1 + next(4 * n) }, () => {
    const weight = isWeighted ? ` ${next(4) === 0 ? 0 : next(1000) / 8}` : "";
    return `${next(n)} ${next(n)}${weight}`;
  });
  const kind = `${isWeighted ? "weighted" : "nonweighted"} ${next(2) === 0 ? "directed" : "undirected"}`;
  writeFileSync(file, `#vertices ${n} nonweighted\n#edges ${kind}\n${edges.join("\n")}\n`);
  return { file, isWeighted };
}

test(`${WALKS} walks of the program on random networks agree`, async () => {
  const { page, close } = await open(browser, addressOf(smallSamples["one"]));
  const faults: string[] = [];
  page.on("pageerror", (error) => faults.push(error.message));
  let state = 20260102;
  const next = (below: number): number => (state = (state * 48271) % 2147483647) % below;
  const of = <T>(list: readonly T[]): T => list[next(list.length)];
  let moves = 0;
  const met = new Set<string>();
  for (let i = 0; i < WALKS; ++i) {
    const { file, isWeighted } = randomNetwork(`random${i}.xnet`, next);
    const choice = of(isWeighted ? choices : choices.slice(0, 2));
    // Those with restarts do not choose in the published way.
    const restart = choice === "published" ? [] : of(restarts);
    const options = ["--agents", String(1 + next(30)), ...of(lengths), "--seed", String(next(2 ** 31) * (1 + next(2))),
      "--choice", choice, ...of(starts), ...restart];
    met.add([choice, ...restart].join(" "));
    const out = join(folder, `walk${i}.html`);
    const told = JSON.parse(veq("walk", file, ...options, "--page", out, "--format", "json")) as Told;
    const visits: number[] = [];
    for (const row of told.visits) visits[row.index] = row.visits;
    const shown = await visitsShown(page, pageOf(out));
    assert.equal(shown.says, "recomputed in your browser: agrees", options.join(" "));
    assert.deepEqual(shown.visits, visits, options.join(" "));
    assert.deepEqual(faults, []);
    moves += visits.reduce((sum, each) => sum + each, 0);
  }
  assert.ok(moves > 100_000, `${moves} moves`);
  // Each choice, and the two that may restart in each way.
  assert.equal(met.size, 7, [...met].join(", "));
  await close();
});

test("agents with memory walk as they were recorded, and the followed one's memory is shown", async () => {
  const out = join(folder, "memory.html");
  const walk = ["data/karate.xnet", "--agents", "3", "--steps", "50", "--seed", "1", "--memory", "5"];
  const path = pathsOf(...(walk as [string, ...string[]]))[1];
  veq("walk", ...walk, "--page", out);
  const { page, close } = await open(browser, `${pageOf(out)}#follow=1&s=50`);
  assert.equal(await checked(page), "replayed in your browser: agrees");
  await page.waitForFunction(() => document.getElementById("step-now")?.textContent === "50");
  await settle(page);
  // Vertex i is called i + 1. It remembers its last five visits, and every step was one.
  const expected = path.slice(-5).reverse().map((v) => String(v + 1));
  assert.deepEqual(await page.locator("#memory-list li").allTextContents(), expected);
  await close();
});

test("agents that tell each other what they remember walk as they were recorded", async () => {
  const out = join(folder, "telling.html");
  veq("walk", "data/karate.xnet", "--agents", "34", "--steps", "50", "--seed", "1", "--memory", "5",
    "--errors", "0.05", "--agents-network", "data/karate.xnet", "--page", out);
  const { page, close } = await open(browser, `${pageOf(out)}#follow=0&s=50`);
  assert.equal(await checked(page), "replayed in your browser: agrees");
  await page.waitForFunction(() => document.querySelectorAll("#memory-list li").length > 5);
  await close();
});

test("what an agent remembers is named, the latest first", async () => {
  const { page, close } = await open(browser, `${fileOf(htmlOf(encode(remembered())))}#follow=0&s=3`);
  await page.waitForFunction(() => document.querySelectorAll("#memory-list li").length === 2);
  assert.deepEqual(await page.locator("#memory-list li").allTextContents(), ["b", "hub"]);
  assert.equal(await page.textContent("#agent-at"), "Agent 0 is at b.");
  await close();
});

test("a page one byte of whose data was changed says so", async () => {
  const html = htmlOf(encode(walked(network("karate"), 3, 200)));
  const match = /application\/octet-stream">([^<]+)</.exec(html);
  assert.ok(match);
  const block = Buffer.from(match[1], "base64");
  block[200] ^= 4;
  const { page, close } = await open(browser, fileOf(html.replace(match[1], block.toString("base64"))));
  assert.equal(await page.textContent("#failure"), "The data of this page is damaged: its check does not agree.");
  assert.equal(await page.isVisible("#app"), false);
  await close();
});

test("a page whose visits were changed, check and all, says which vertex differs", async () => {
  const content = walked(network("karate"), 3, 200);
  assert.ok(content.walk);
  const truth = content.walk.arrivals[7];
  content.walk.arrivals[7] += 2;
  const block = encode(content);
  assert.equal(new DataView(block.buffer).getUint32(block.length - 4, true), crc32(block.subarray(0, -6)));
  const { page, close } = await open(browser, fileOf(htmlOf(block)));
  const says = await checked(page);
  assert.equal(
    says,
    `recomputed in your browser: differs, first at 8 (vertex 7): ${truth} visits here, ${truth + 2} in the file`,
  );
  assert.ok(await page.evaluate(() => document.getElementById("check")?.classList.contains("bad")));
  await close();
});

test("a walk from other words is found out by where agents end, too", async () => {
  const content = walked(network("karate"), 1, 50);
  assert.ok(content.walk);
  content.walk.ends = [(content.walk.ends[0] + 1) % 34];
  const { page, close } = await open(browser, fileOf(htmlOf(encode(content))));
  assert.equal(await checked(page), "recomputed in your browser: differs in where agents end");
  await close();
});

test("the template is what the program writes around its data", () => {
  const out = join(folder, "plain.html");
  veq("page", "data/karate.xnet", out, "--title", `<b> & "' @@VEQ-DATA@@`);
  const html = readFileSync(out, "utf8");
  const data = /application\/octet-stream">([^<]*)</.exec(html)?.[1] ?? "";
  writeFileSync(join(folder, "same.html"), htmlOf(fromBase64(data), `<b> & "' @@VEQ-DATA@@`));
  assert.equal(html, readFileSync(join(folder, "same.html"), "utf8"));
});

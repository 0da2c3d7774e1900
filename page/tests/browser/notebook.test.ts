/** What Network.show() gives in a notebook: VEQ_NOTEBOOK_PYTHON names an interpreter with the package and nbclient. */
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { pathToFileURL } from "node:url";
import { folder, launch } from "../support/browser.ts";
import { root, veq } from "../support/networks.ts";

interface Told {
  visits: { index: number; visits: number }[];
}

test("a page that a notebook showed walks again in the exported notebook", async () => {
  const python = process.env["VEQ_NOTEBOOK_PYTHON"];
  assert.ok(python, "VEQ_NOTEBOOK_PYTHON names no interpreter");
  const out = join(folder, "notebook.html");
  execFileSync(python, [join(root, "page/tests/support/shown_in_notebook.py"), out], { cwd: root, stdio: "pipe" });
  const browser = await launch();
  const page = await browser.newPage({ reducedMotion: "reduce" });
  const faults: string[] = [];
  page.on("pageerror", (error) => faults.push(error.message));
  page.on("request", (request) => {
    if (!/^(file|about|blob|data):/.test(request.url())) faults.push(request.url());
  });
  await page.goto(pathToFileURL(out).href);
  const frame = page.frameLocator("iframe");
  await frame.locator("#check-text", { hasText: "recomputed in your browser: agrees" }).waitFor();
  assert.equal(await frame.locator("h1").textContent(), "In a notebook");
  await frame.locator("#to-end").click();
  await frame.locator("#step-now", { hasText: "300" }).waitFor();
  const download = page.waitForEvent("download");
  await frame.locator("#save-csv").click();
  const rows = readFileSync(await (await download).path(), "utf8").trim().split("\n").slice(1);
  const told = JSON.parse(
    veq("walk", "data/lesmis.xnet", "--agents", "5", "--steps", "300", "--seed", "1", "--format", "json"),
  ) as Told;
  const visits: number[] = [];
  for (const row of told.visits) visits[row.index] = row.visits;
  assert.deepEqual(rows.map((row) => Number(row.split(",").at(-2))), visits);
  assert.deepEqual(faults, []);
  await browser.close();
});

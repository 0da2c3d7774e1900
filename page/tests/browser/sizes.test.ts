/** From nothing to a hundred thousand vertices. */
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import type { Browser } from "playwright-core";
import { encode } from "../support/encode.ts";
import { addressOf, checked, escaped, fileOf, htmlOf, launch, open, settle } from "../support/browser.ts";
import { large, smallSamples, walked } from "../support/samples.ts";

let browser: Browser;
before(async () => {
  browser = await launch();
});
after(() => browser.close());

for (const [name, content] of Object.entries(smallSamples)) {
  for (const view of ["canvas", "webgl"]) {
    test(`${name}, ${view}`, async () => {
      const { page, watch, close } = await open(browser, `${addressOf(content)}#view=${view}`);
      await settle(page);
      assert.equal(await page.isVisible("#picture"), true);
      await page.click("#zoom-in");
      await page.click("#zoom-fit");
      await page.click("#show-table");
      // Rows come with the next picture.
      await page.waitForFunction(
        (n) => document.querySelectorAll("#table-body tr:not(.space)").length === n,
        content.n,
      );
      await page.click("#show-picture");
      if (content.walk) assert.match(await checked(page), /: agrees$/);
      assert.deepEqual(watch.faults, []);
      await close();
    });
  }
}

for (const [n, m] of [[10, 20], [1000, 3000], [10_000, 30_000], [100_000, 300_000]]) {
  test(`${n} vertices and ${m} edges`, async () => {
    const { page, watch, close } = await open(browser, addressOf(walked(large(n, m), 20, 1000)));
    assert.equal(await checked(page), "recomputed in your browser: agrees");
    await page.click("#to-end");
    await page.waitForFunction(() => document.getElementById("step-now")?.textContent === "1,000");
    await page.fill("#search", String(n - 1));
    await page.keyboard.press("Enter");
    await page.locator("#vertex-name", { hasText: new RegExp(`^${n - 1}$`) }).waitFor();
    await page.click("#show-table");
    await page.click("#rows th:has-text('degree')");
    const rows = await page.locator("#table-body tr:not(.space)").count();
    assert.ok(rows > 5 && rows < 120, `${rows} rows are made`);
    await page.click("#show-picture");
    await page.click("#save-svg");
    const note = (await page.textContent("#export-note")) ?? "";
    assert.match(note, n > 5000 ? /are more than an SVG takes \(20,000\); save a PNG\.$/ : /^Saved /);
    assert.deepEqual(watch.faults, []);
    await close();
  });
}

test("more vertices than a page may have are refused in a sentence", async () => {
  const block = encode({ n: 200_001, edges: [] });
  const { page, close } = await open(browser, fileOf(htmlOf(block)));
  assert.equal(
    await page.textContent("#failure"),
    'The data of this page is damaged: the description has no usable "n".',
  );
  await close();
});

test("a notebook's frame shows the page, with scripts and downloads and nothing else allowed", async () => {
  const inner = htmlOf(encode(walked(smallSamples["columns"], 2, 30)), "Inner");
  const outer = `<!doctype html><title>Notebook</title><p>above</p><iframe title="page" width="900" height="600"
    sandbox="allow-scripts allow-downloads" srcdoc="${escaped(inner)}"></iframe>`;
  const page = await browser.newPage({ reducedMotion: "reduce" });
  const faults: string[] = [];
  page.on("pageerror", (error) => faults.push(error.message));
  await page.goto(fileOf(outer));
  const frame = page.frameLocator("iframe");
  await frame.locator("#check-text", { hasText: "recomputed in your browser: agrees" }).waitFor();
  await frame.locator("#to-end").click();
  await frame.locator("#step-now", { hasText: "30" }).waitFor();
  const download = page.waitForEvent("download");
  await frame.locator("#save-csv").click();
  assert.equal((await download).suggestedFilename(), "network.csv");
  await frame.locator("#copy-address").click();
  assert.equal(await frame.locator("#export-note").textContent(), "A page inside another one has no address.");
  assert.deepEqual(faults, []);
  await page.close();
});

test("a long walk is recomputed when asked", async () => {
  const content = walked(smallSamples["loops"], 1, 10);
  assert.ok(content.walk);
  // Every vertex has loops alone, so that the only agent stands on vertex 0 for ever.
  content.walk.steps = 20_000_001;
  content.walk.arrivals = [20_000_001, 0, 0];
  content.walk.ends = [0];
  const { page, close } = await open(browser, addressOf(content));
  assert.equal(await page.textContent("#check-text"), "20,000,001 moves, not recomputed yet");
  await page.click("#check-run");
  assert.equal(await checked(page), "recomputed in your browser: agrees");
  await close();
});

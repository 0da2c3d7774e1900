/** The replay, by mouse, by keyboard and by touch. */
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import type { Browser, Page } from "playwright-core";
import { STEPS, changes, novel, step, stepIs } from "../support/acting.ts";
import { addressOf, checked, launch, open, settle } from "../support/browser.ts";

let browser: Browser;
let address: string;
before(async () => {
  browser = await launch();
  address = addressOf(novel());
});
after(() => browser.close());

test("the buttons and the slider go to steps", async () => {
  const { page, watch, close } = await open(browser, address);
  assert.equal(await page.textContent("#title"), "lesmis");
  assert.equal(await page.textContent("#facts"), "77 vertices · 254 edges · undirected · weighted · 5 agents");
  assert.equal(await checked(page), "recomputed in your browser: agrees");
  assert.equal(await step(page), 0);
  await page.click("#forward");
  await stepIs(page, 1);
  await page.click("#to-end");
  await stepIs(page, STEPS);
  assert.equal(await page.textContent("#moves-now"), "10,000");
  await page.click("#back");
  await stepIs(page, STEPS - 1);
  await page.click("#to-start");
  await stepIs(page, 0);
  assert.equal(await page.textContent("#reached-now"), "0");
  await page.fill("#slider", "777");
  await stepIs(page, 777);
  assert.equal(await page.isDisabled("#to-end"), false);
  assert.match((await page.getAttribute("#picture", "aria-label")) ?? "", /step 777, coloured by visits so far$/);
  assert.deepEqual(watch.faults, []);
  await close();
});

test("playing goes on, pause stops, speed keeps the step, loop begins again", async () => {
  const { page, close } = await open(browser, address);
  await page.click("#play");
  await page.waitForFunction(() => Number(document.getElementById("step-now")?.textContent) > 20);
  assert.equal(await page.getAttribute("#play", "aria-label"), "Pause");
  await page.click("#play");
  await settle(page);
  const paused = await step(page);
  await page.waitForTimeout(200);
  assert.equal(await step(page), paused);
  await page.fill("#speed", "120");
  await settle(page);
  assert.equal(await step(page), paused);
  assert.match((await page.textContent("#speed-text")) ?? "", /^1,000,000 steps\/s/);
  await page.click("#play");
  await stepIs(page, STEPS);
  await page.waitForFunction(() => document.getElementById("play")?.getAttribute("aria-label") === "Play");
  await page.check("#loop");
  await page.fill("#speed", "60");
  await page.fill("#slider", String(STEPS - 1));
  await stepIs(page, STEPS - 1);
  await page.click("#play");
  await page.waitForFunction(() => {
    const now = Number(document.getElementById("step-now")?.textContent.replace(",", ""));
    return now > 0 && now < 1500;
  });
  assert.equal(await page.getAttribute("#play", "aria-label"), "Pause");
  await close();
});

test("a whole session by keyboard alone", async () => {
  const { page, close } = await open(browser, address);
  await page.keyboard.press("ArrowRight");
  await page.keyboard.press("ArrowRight");
  await stepIs(page, 2);
  await page.keyboard.press("ArrowLeft");
  await stepIs(page, 1);
  await page.keyboard.press("End");
  await stepIs(page, STEPS);
  await page.keyboard.press("Home");
  await stepIs(page, 0);
  await page.keyboard.press(" ");
  await page.waitForFunction(() => Number(document.getElementById("step-now")?.textContent) > 5);
  await page.keyboard.press(" ");
  assert.equal(await page.getAttribute("#play", "aria-label"), "Play");
  await page.keyboard.press("/");
  await page.keyboard.type("val");
  assert.deepEqual(await page.locator("#hits li span").allTextContents(), ["Valjean"]);
  await page.keyboard.press("Enter");
  assert.equal(await page.textContent("#vertex-name"), "Valjean");
  assert.match((await page.textContent("#live")) ?? "", /^Valjean, degree 36$/);
  await page.keyboard.press("Escape");
  await page.waitForFunction(() => document.getElementById("vertex")?.hidden);
  await page.evaluate(() => {
    (document.activeElement as HTMLElement).blur();
  });
  await page.keyboard.press("t");
  assert.equal(await page.isVisible("#table"), true);
  await page.focus("#table-scroll");
  await page.keyboard.press("Tab");
  // A button of the head or the body has the focus; the first row's is reached by tabs alone.
  for (let i = 0; i < 12; ++i) {
    if (await page.evaluate(() => !!document.activeElement?.closest("#table-body"))) break;
    await page.keyboard.press("Tab");
  }
  await page.keyboard.press("Enter");
  assert.equal(await page.textContent("#vertex-name"), "Napoleon");
  await page.keyboard.press("t");
  for (const key of ["+", "-", "Shift+ArrowLeft", "Shift+ArrowRight", "Shift+ArrowUp", "Shift+ArrowDown", "0"]) {
    if (key === "0") await page.keyboard.press("+");
    await changes(page, "base", () => page.keyboard.press(key), key);
  }
  await close();
});

test("the pointer drags, zooms, points and chooses", async () => {
  const { page, close } = await open(browser, address);
  const box = (await page.locator("#picture").boundingBox())!;
  const [x, y] = [box.x + box.width / 2, box.y + box.height / 2];
  await changes(page, "base", async () => {
    await page.mouse.move(x, y);
    await page.mouse.down();
    await page.mouse.move(x + 60, y + 20, { steps: 3 });
    await page.mouse.up();
  }, "drag");
  await changes(page, "base", () => page.mouse.wheel(0, -300), "wheel");
  for (const id of ["#zoom-in", "#zoom-out", "#zoom-fit"]) {
    await changes(page, "base", () => page.click(id), id);
  }
  // Vertices are where the drawing's circle has them: vertex 0 is at its rightmost point.
  const at = await placeOf(page, 0);
  await page.mouse.move(box.x + at.x, box.y + at.y);
  await page.waitForFunction(() => !document.getElementById("tip")?.hidden);
  assert.equal(await page.textContent("#tip .name"), "Napoleon");
  await page.mouse.click(box.x + at.x, box.y + at.y);
  await page.waitForFunction(() => document.getElementById("vertex-name")?.textContent === "Napoleon");
  assert.match((await page.textContent("#vertex-facts")) ?? "", /degree1/);
  await changes(page, "base", () => page.click("#vertex-centre"), "centre");
  await page.click("#vertex-free");
  await page.waitForFunction(() => document.getElementById("vertex")?.hidden);
  await close();
});

/** Where vertex v of 77 on a circle is on the picture, when all is shown. */
async function placeOf(page: Page, v: number): Promise<{ x: number; y: number }> {
  const { width, height } = (await page.locator("#picture").boundingBox())!;
  const turn = (2 * Math.PI * v) / 77;
  // The drawing is as wide as high, but for the last vertex: its cosines reach from -0.9992 to 1.
  const across = 1 + Math.cos(Math.PI / 77);
  const scale = Math.min((width - 72) / (across / 2), (height - 72) / Math.sin((2 * Math.PI * 19) / 77));
  const middle = 0.5 + (1 - Math.cos(Math.PI / 77)) / 4;
  return {
    x: width / 2 + (0.5 + Math.cos(turn) / 2 - middle) * scale,
    y: height / 2 - (Math.sin(turn) / 2) * scale,
  };
}

test("fingers drag, pinch and choose", async () => {
  const { page, close } = await open(browser, address, { hasTouch: true });
  const box = (await page.locator("#picture").boundingBox())!;
  const at = await placeOf(page, 0);
  await page.touchscreen.tap(box.x + at.x, box.y + at.y);
  await page.waitForFunction(() => document.getElementById("vertex-name")?.textContent === "Napoleon");
  const client = await page.context().newCDPSession(page);
  const touch = (type: "touchStart" | "touchMove" | "touchEnd", points: [number, number][]) =>
    client.send("Input.dispatchTouchEvent", {
      type,
      touchPoints: points.map(([px, py], id) => ({ x: box.x + px, y: box.y + py, id })),
    });
  await changes(page, "base", async () => {
    await touch("touchStart", [[300, 200]]);
    await touch("touchMove", [[340, 240]]);
    await touch("touchMove", [[380, 260]]);
    await touch("touchEnd", []);
  }, "drag");
  await changes(page, "base", async () => {
    await touch("touchStart", [[300, 200], [400, 200]]);
    await touch("touchMove", [[280, 200], [420, 200]]);
    await touch("touchMove", [[220, 200], [480, 200]]);
    await touch("touchEnd", []);
  }, "pinch");
  await page.tap("#forward");
  await stepIs(page, 1);
  await page.tap("#show-table");
  assert.equal(await page.isVisible("#table"), true);
  await close();
});

/** What tests of the controls do and look at. */
import assert from "node:assert/strict";
import type { Page } from "playwright-core";
import { settle } from "./browser.ts";
import { network } from "./networks.ts";
import { walked } from "./samples.ts";
import type { Content } from "./encode.ts";

export const STEPS = 2000;

/** Les Misérables on a circle, with a column of each kind, after a walk of five agents. */
export function novel(): Content {
  const content = network("lesmis");
  content.numbers = { Age: Array.from({ length: content.n }, (_, v) => v) };
  content.texts = { Town: Array.from({ length: content.n }, (_, v) => ["Digne", "Paris", "Montreuil"][v % 3]) };
  return { ...walked(content, 5, STEPS, 1, 0.99), call: "veq walk" };
}

export async function step(page: Page): Promise<number> {
  return Number((await page.textContent("#step-now"))?.replaceAll(",", ""));
}

export async function stepIs(page: Page, wanted: number): Promise<void> {
  await page.waitForFunction(
    (text) => document.getElementById("step-now")?.textContent === text,
    wanted.toLocaleString("en-GB"),
  );
}

/** The colours of the picture, as a number that changes with any of them. */
function inked(page: Page, canvas: string): Promise<number> {
  return page.evaluate((id) => {
    const element = document.getElementById(id) as HTMLCanvasElement;
    const { data } = element.getContext("2d", { willReadFrequently: true })!
      .getImageData(0, 0, element.width, element.height);
    let sum = 0;
    for (let i = 0; i < data.length; ++i) sum = (sum * 31 + data[i]) % 2147483647;
    return sum;
  }, canvas);
}

export async function changes(page: Page, canvas: string, act: () => Promise<unknown>, what: string): Promise<void> {
  await settle(page);
  const before = await inked(page, canvas);
  await act();
  await page.waitForTimeout(30);
  await settle(page);
  assert.notEqual(await inked(page, canvas), before, what);
}

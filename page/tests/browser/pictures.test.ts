/** Both views show the same: at each vertex's place the colour that its number has. */
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import type { Browser, Page } from "playwright-core";
import { scaleOf, shadesOf } from "../../src/color.ts";
import type { Color, Theme } from "../../src/color.ts";
import { addressOf, checked, launch, open, settle } from "../support/browser.ts";
import type { Content } from "../support/encode.ts";
import { network } from "../support/networks.ts";
import { large, smallSamples, walked } from "../support/samples.ts";

let browser: Browser;
before(async () => {
  browser = await launch();
});
after(() => browser.close());

type Point = [number, number];

/** Where the vertices of a drawing are on a picture of that size, by the rule that it is fitted with room around it. */
function places(positions: Point[], width: number, height: number): Point[] {
  const xs = positions.map(([x]) => x);
  const ys = positions.map(([, y]) => 1 - y);
  const [left, right] = [Math.min(...xs), Math.max(...xs)];
  const [top, bottom] = [Math.min(...ys), Math.max(...ys)];
  const room = 72;
  const scale = Math.min(
    (width - room) / Math.max(right - left, 1e-3),
    (height - room) / Math.max(bottom - top, 1e-3),
    3 * Math.min(width - room, height - room),
  );
  return positions.map(([, ], v) => [
    width / 2 + (xs[v] - (left + right) / 2) * scale,
    height / 2 + (ys[v] - (top + bottom) / 2) * scale,
  ]);
}

/** The colours of a screenshot at these points. */
async function colorsAt(page: Page, points: Point[]): Promise<Color[]> {
  const png = (await page.screenshot()).toString("base64");
  const reader = await browser.newPage();
  const colors = await reader.evaluate(
    async ([text, at]) => {
      const bytes = Uint8Array.from(atob(text), (c) => c.charCodeAt(0));
      const image = await createImageBitmap(new Blob([bytes]));
      const c = new OffscreenCanvas(image.width, image.height).getContext("2d")!;
      c.drawImage(image, 0, 0);
      return at.map(([x, y]) => {
        const [r, g, b] = c.getImageData(Math.round(x), Math.round(y), 1, 1).data;
        return r * 65536 + g * 256 + b;
      });
    },
    [png, points] as const,
  );
  await reader.close();
  return colors;
}

function isNear(a: Color, b: Color): boolean {
  return [16, 8, 0].every((shift) => Math.abs(((a >> shift) & 255) - ((b >> shift) & 255)) <= 6);
}

function ring(n: number): Point[] {
  return Array.from({ length: n }, (_, v): Point => {
    const turn = (2 * Math.PI * v) / n;
    return [0.5 + 0.5 * Math.cos(turn), 0.5 + 0.5 * Math.sin(turn)];
  });
}

/** Vertices 0 to 9 in a row, whose number is their index. */
const row: Content = {
  n: 10,
  edges: [[0, 9]],
  positions: Array.from({ length: 10 }, (_, v): Point => [v / 9, 0.5]),
  numbers: { Number: Array.from({ length: 10 }, (_, v) => v) },
  color: { by: "column", column: 0 },
  size: { by: "constant" },
};

const scenes: { name: string; content: Content; positions: Point[]; hash: string; expected: (theme: Theme) => (Color | null)[] }[] = [
  {
    name: "numbers in a row",
    content: row,
    positions: row.positions ?? [],
    hash: "color=column0",
    // 255 v / 9, rounded, is the step of the scale.
    expected: (theme) => [0, 28, 57, 85, 113, 142, 170, 198, 227, 255].map((step) => scaleOf(theme)[step]),
  },
  {
    name: "not visited yet",
    content: walked(network("karate"), 2, 100),
    positions: ring(34),
    hash: "agents=none&size=constant",
    expected: (theme) => new Array<Color>(34).fill(shadesOf(theme).none),
  },
  {
    name: "visited",
    content: walked(network("karate"), 2, 300),
    positions: ring(34),
    hash: "s=300&agents=none&size=constant",
    expected: (theme) => {
      const { arrivals } = walked(network("karate"), 2, 300).walk!;
      const seen = arrivals.filter((count) => count > 0);
      const [low, high] = [Math.min(...seen), Math.max(...seen)];
      return arrivals.map((count) =>
        count === 0 ? shadesOf(theme).none : scaleOf(theme)[Math.round((255 * (count - low)) / (high - low))],
      );
    },
  },
  {
    name: "two towns",
    content: smallSamples["columns"],
    positions: ring(3),
    hash: "color=column2&size=constant",
    expected: (theme) => [null, shadesOf(theme).none, null],
  },
  {
    name: "one vertex marked",
    content: row,
    positions: row.positions ?? [],
    hash: "color=column0&v=9",
    // Vertex 0 is a neighbour; those between stand back.
    expected: (theme) => [scaleOf(theme)[0], ...new Array<null>(8).fill(null), scaleOf(theme)[255]],
  },
];

for (const view of ["canvas", "webgl"] as const) {
  for (const theme of ["light", "dark"] as const) {
    test(`${view}, ${theme}: vertices have their colours at their places`, async () => {
      for (const scene of scenes) {
        const { page, watch, close } = await open(browser, `${addressOf(scene.content)}#view=${view}&theme=${theme}&${scene.hash}`);
        if (scene.content.walk) await checked(page);
        await settle(page);
        await page.waitForTimeout(250);
        const box = (await page.locator("#picture").boundingBox())!;
        const at = places(scene.positions, box.width, box.height);
        const points = at.map(([x, y]): Point => [box.x + x, box.y + y]);
        const colors = await colorsAt(page, points);
        scene.expected(theme).forEach((color, v) => {
          const hex = (value: Color): string => value.toString(16).padStart(6, "0");
          if (color === null) assert.ok(!isNear(colors[v], shadesOf(theme).ground), `${scene.name}: vertex ${v} is there`);
          else assert.ok(isNear(colors[v], color), `${scene.name}: vertex ${v} is ${hex(colors[v])}, not ${hex(color)}`);
        });
        assert.deepEqual(watch.faults, [], scene.name);
        await close();
      }
    });
  }
}

test("a browser whose WebGL is software gets the canvas view, and a line says so", async () => {
  const { page, close } = await open(browser, addressOf(row));
  assert.match((await page.textContent("#notice")) ?? "", /^Canvas view: WebGL is only software here \(SwiftShader\)$/);
  await close();
});

test("a browser without WebGL gets the canvas view, and a line says so", async () => {
  const poor = await launch("--disable-3d-apis");
  const { page, watch, close } = await open(poor, addressOf(row));
  assert.equal(await page.textContent("#notice"), "Canvas view: there is no WebGL here");
  assert.deepEqual(watch.faults.filter((fault) => !/WebGL/i.test(fault)), []);
  await close();
  await poor.close();
});

test("a browser whose WebGL is slow gets the canvas view, and a line says so", async () => {
  const context = await browser.newContext({ reducedMotion: "reduce" });
  const page = await context.newPage();
  page.setDefaultTimeout(120_000);
  // Software that calls itself something else, and takes as long to draw on every machine.
  await page.addInitScript(() => {
    const { prototype } = WebGL2RenderingContext;
    for (const name of ["drawArrays", "drawArraysInstanced", "drawElements", "drawElementsInstanced"]) {
      const draw = Reflect.get(prototype, name) as (...values: unknown[]) => void;
      Reflect.set(prototype, name, function (this: unknown, ...values: unknown[]): void {
        const end = performance.now() + 60;
        while (performance.now() < end);
        Reflect.apply(draw, this, values);
      });
    }
    const told = Reflect.get(prototype, "getParameter") as (name: number) => unknown;
    prototype.getParameter = function (name: number): unknown {
      const answer = Reflect.apply(told, this, [name]);
      return typeof answer === "string" && answer.includes("SwiftShader") ? "Graphics 3000" : answer;
    };
  });
  await page.goto(addressOf(large(4000, 12_000)));
  await page.waitForFunction(() => document.getElementById("notice")?.textContent === "Canvas view: WebGL is slow here");
  await page.waitForFunction(() => document.querySelectorAll("#webgl canvas").length === 0);
  await context.close();
});

/** How many of the pixels of an element's place have another colour than the ground. */
async function inked(page: Page, id: string): Promise<number> {
  const box = (await page.locator(id).boundingBox())!;
  await page.evaluate((selector) => {
    document.querySelector<HTMLElement>(selector)!.style.visibility = "hidden";
  }, id);
  const points: Point[] = [];
  for (let x = Math.ceil(box.x); x < box.x + box.width; ++x) {
    for (let y = Math.ceil(box.y); y < box.y + box.height; ++y) points.push([x, y]);
  }
  const colors = await colorsAt(page, points);
  return colors.filter((color) => !isNear(color, shadesOf("light").ground)).length;
}

for (const [width, height] of [[360, 700], [700, 700], [1180, 760]]) {
  test(`nothing is drawn under the legend and the buttons at ${width} x ${height}`, async () => {
    const corners: Content = {
      ...walked({ n: 4, edges: [[0, 1], [1, 2], [2, 3]], positions: [[0, 0], [0, 1], [1, 1], [1, 0]] }, 2, 50),
      names: ["lower left", "upper left", "upper right", "lower right"],
    };
    const { page, close } = await open(browser, `${addressOf(corners)}#s=50`, { viewport: { width, height } });
    await settle(page);
    await page.waitForTimeout(250);
    assert.equal(await inked(page, "#legend"), 0);
    assert.equal(await inked(page, "#zoom"), 0);
    await close();
  });
}

test("where the browser takes WebGL away the canvas view goes on", async () => {
  const { page, close } = await open(browser, `${addressOf(row)}#view=webgl`);
  await settle(page);
  await page.evaluate(() => {
    const canvas = document.querySelector<HTMLCanvasElement>("#webgl canvas.sigma-nodes");
    canvas?.getContext("webgl2")?.getExtension("WEBGL_lose_context")?.loseContext();
  });
  await page.waitForFunction(() => document.getElementById("notice")?.textContent === "Canvas view: the browser took WebGL away");
  await settle(page);
  const box = (await page.locator("#picture").boundingBox())!;
  const [x, y] = places(row.positions ?? [], box.width, box.height)[9];
  assert.ok(isNear((await colorsAt(page, [[box.x + x, box.y + y]]))[0], scaleOf("light")[255]));
  await close();
});

test("a page out of sight gives its WebGL back and draws again when it is seen", async () => {
  const { page, close } = await open(browser, `${addressOf(row)}#view=webgl`);
  await settle(page);
  await page.click("#show-table");
  await page.waitForFunction(() => document.querySelectorAll("#webgl canvas").length === 0);
  await page.click("#show-picture");
  await page.waitForFunction(() => document.querySelectorAll("#webgl canvas").length > 0);
  await page.waitForTimeout(200);
  const box = (await page.locator("#picture").boundingBox())!;
  const [x, y] = places(row.positions ?? [], box.width, box.height)[0];
  assert.ok(isNear((await colorsAt(page, [[box.x + x, box.y + y]]))[0], scaleOf("light")[0]));
  assert.equal(await page.isVisible("#notice"), false);
  await close();
});

import assert from "node:assert/strict";
import { test } from "node:test";
import { FaintLines } from "../../src/lines.ts";

/** Opacities of the pixels of a picture of 5 x 4 after lines of 0.6. */
function drawn(...lines: [number, number, number, number][]): number[][] {
  const raster = new FaintLines();
  raster.resize(5, 4);
  raster.setInk(0x102030, 0.6);
  for (const [x0, y0, x1, y1] of lines) raster.line(x0, y0, x1, y1, 1);
  const pixels = new Uint32Array(20);
  raster.take(pixels);
  const again = new Uint32Array(20);
  raster.take(again);
  assert.ok(again.every((pixel) => pixel >>> 24 === 0), "what was taken is gone");
  assert.ok(pixels.every((pixel) => (pixel & 0xffffff) === 0x302010), "the red byte comes first");
  return Array.from({ length: 4 }, (_, y) => Array.from(pixels.subarray(5 * y, 5 * y + 5), (pixel) => pixel >>> 24));
}

const NONE = [0, 0, 0, 0, 0];

test("a line along the middle of pixels covers these alone", () => {
  // 0.6 of 255.
  assert.deepEqual(drawn([0, 1.5, 4.9, 1.5]), [NONE, [153, 153, 153, 153, 153], NONE, NONE]);
  assert.deepEqual(drawn([2.5, 0, 2.5, 3.9]), Array(4).fill([0, 0, 153, 0, 0]));
  assert.deepEqual(drawn([3.4, 1.5, 1.6, 1.5]), [NONE, [0, 153, 153, 153, 0], NONE, NONE]);
});

test("a line between pixels is shared by both", () => {
  // Half of it lets the root of 0.4 through.
  assert.deepEqual(drawn([0, 2, 4.9, 2]), [NONE, [94, 94, 94, 94, 94], [94, 94, 94, 94, 94], NONE]);
});

test("lines over one another are denser", () => {
  // 0.4 of 0.4 is let through, and of a hundred lines or 1024 nothing.
  assert.deepEqual(drawn([0, 1.5, 4.9, 1.5], [4.9, 1.5, 0, 1.5])[1], [214, 214, 214, 214, 214]);
  for (const length of [100, 1024]) {
    const lines = Array.from({ length }, (): [number, number, number, number] => [0, 1.5, 4.9, 1.5]);
    assert.deepEqual(drawn(...lines)[1], [255, 255, 255, 255, 255]);
  }
});

test("of a line that begins and ends far outside the part inside is drawn", () => {
  // A slanted line covers root 2 as much of each column: 91 of 64 parts let 0.272 through.
  const diagonal = [NONE, [0, 186, 0, 0, 0], [0, 0, 186, 0, 0], NONE];
  assert.deepEqual(drawn([-1000, -1000, 1000, 1000]), diagonal);
  assert.deepEqual(drawn([1e6, 1e6, -1e6, -1e6]), diagonal);
});

test("a line off the picture leaves nothing", () => {
  const lines: [number, number, number, number][] = [
    [-10, -5, 20, -5], [-10, 9, 20, 9], [-3, 0, -3, 4], [8, 0, 8, 4], [-9, 2, -1, 9], [6, -9, 9, 2], [7, 1, 7, 1],
  ];
  for (const line of lines) assert.deepEqual(drawn(line), [NONE, NONE, NONE, NONE], line.join());
});

test("no line leaves a row for the next one", () => {
  for (let x = -3; x < 9; x += 0.25) {
    // Between the edges and what lies beyond them.
    const [top, , , bottom] = drawn([x, -8, x + 0.1, 1.5]);
    assert.deepEqual(bottom, NONE);
    if (x < 0.4 || x > 4.4) assert.deepEqual(top, NONE);
  }
});

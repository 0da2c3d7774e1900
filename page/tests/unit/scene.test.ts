import assert from "node:assert/strict";
import { test } from "node:test";
import { outLists } from "../../src/lists.ts";
import { fit, isHome, pan, screenX, screenY } from "../../src/scene.ts";
import type { Box, Scene } from "../../src/scene.ts";

/** Two vertices on a picture, with an edge or without one. */
function sceneOf(points: [number, number][], width: number, height: number, covers: Box[], isTied = false): Scene {
  const sources = isTied ? Uint32Array.of(0) : new Uint32Array();
  const targets = isTied ? Uint32Array.of(1) : new Uint32Array();
  const scene: Scene = {
    n: points.length,
    x: Float32Array.from(points, ([x]) => x),
    y: Float32Array.from(points, ([, y]) => y),
    radius: new Float32Array(points.length).fill(5),
    tint: new Uint16Array(points.length),
    palette: new Uint32Array(1),
    faded: new Uint8Array(points.length),
    hasFaded: false,
    sources,
    targets,
    lists: outLists(points.length, sources, targets, false),
    directed: false,
    marked: -1,
    camera: { x: 0, y: 0, scale: 1 },
    fitted: 1,
    home: { x: 0, y: 0 },
    covers,
    width,
    height,
    shades: { ground: 0, ink: 0, faint: 0, edge: 0, none: 0, accent: 0 },
  };
  fit(scene);
  return scene;
}

function places(scene: Scene): [number, number][] {
  return Array.from(scene.x, (x, v): [number, number] => [
    Math.round(screenX(scene, x)),
    Math.round(screenY(scene, scene.y[v])),
  ]);
}

const legend: Box = { left: 12, top: 468, right: 250, bottom: 588 };

test("a drawing that nothing covers takes all the room", () => {
  // 600 - 2 x 36 pixels high, in the middle of 1000.
  assert.deepEqual(places(sceneOf([[0, 0], [1, 1]], 1000, 600, [legend])), [[236, 36], [764, 564]]);
});

test("a drawing gives way to what would cover a vertex", () => {
  // In the middle of what is to the right of 250.
  assert.deepEqual(places(sceneOf([[0, 1], [1, 0]], 1000, 600, [legend])), [[361, 564], [889, 36]]);
});

test("a drawing gives way to what would cover an edge", () => {
  // Both ends are outside, and the line between them is not: it goes down on the left of 250.
  const points: [number, number][] = [[0, 0.8], [0.12, 1], [1, 0]];
  const untied = sceneOf(points, 1000, 600, [{ ...legend, right: 275, left: 246, top: 520 }]);
  assert.deepEqual(places(untied)[0], [236, 458]);
  const tied = sceneOf(points, 1000, 600, [{ ...legend, right: 275, left: 246, top: 520 }], true);
  assert.notDeepEqual(places(tied)[0], [236, 458]);
});

test("on a narrow picture the drawing stands above what would cover it", () => {
  // 340 - 2 x 36 = 268 high, in the middle of 360.
  const scene = sceneOf([[0, 1], [1, 0]], 360, 440, [{ left: 12, top: 340, right: 250, bottom: 430 }]);
  assert.deepEqual(places(scene), [[46, 304], [314, 36]]);
});

test("between covers in both lower corners", () => {
  const covers = [legend, { left: 950, top: 480, right: 990, bottom: 588 }];
  // Corners of a wide drawing: 950 - 250 - 72 = 628 wide, or 468 - 72 = 396 high, which is the same as 792 wide.
  const scene = sceneOf([[0, 0.5], [1, 0.5], [0, 0], [1, 0]], 1000, 600, covers);
  assert.deepEqual(places(scene), [[104, 432], [896, 432], [104, 36], [896, 36]]);
});

test("the camera is at home until it moves", () => {
  const scene = sceneOf([[0, 0], [1, 1]], 1000, 600, []);
  assert.equal(isHome(scene), true);
  pan(scene, 3, 0);
  assert.equal(isHome(scene), false);
});

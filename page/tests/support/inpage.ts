/** Measures views inside a browser; the benchmark puts this into an empty page. */
import { CanvasView } from "../../src/canvas2d.ts";
import { kindsOf, shadesOf } from "../../src/color.ts";
import { paletteOf, radii } from "../../src/looks.ts";
import { outLists } from "../../src/lists.ts";
import { drawAgents } from "../../src/overlay.ts";
import { Course, Replay } from "../../src/replay.ts";
import { usualTrail } from "../../src/settings.ts";
import { fit, zoomAt } from "../../src/scene.ts";
import type { Scene, View } from "../../src/scene.ts";
import { SigmaView } from "../../src/sigma_view.ts";
import { LawMover } from "../../src/walk.ts";

const WIDTH = 1200;
const HEIGHT = 800;

/** What the page gives vertices of one size. */
function usualRadius(n: number): number {
  const [least, most] = radii(n);
  return (least + most) / 2.4;
}

function random(): (below: number) => number {
  let state = 1;
  return (below) => (state = (state * 48271) % 2147483647) % below;
}

function sceneOf(n: number, m: number): Scene {
  const next = random();
  const sources = Uint32Array.from({ length: m }, () => next(n));
  const targets = Uint32Array.from({ length: m }, () => next(n));
  const scene: Scene = {
    n,
    x: Float32Array.from({ length: n }, () => next(65536) / 65536),
    y: Float32Array.from({ length: n }, () => next(65536) / 65536),
    radius: new Float32Array(n).fill(usualRadius(n)),
    tint: Uint16Array.from({ length: n }, () => 1 + next(256)),
    palette: paletteOf("light"),
    faded: new Uint8Array(n),
    hasFaded: false,
    sources,
    targets,
    lists: outLists(n, sources, targets, false),
    directed: false,
    marked: -1,
    camera: { x: 0, y: 0, scale: 1 },
    fitted: 1,
    home: { x: 0, y: 0 },
    covers: [],
    width: WIDTH,
    height: HEIGHT,
    shades: shadesOf("light"),
  };
  fit(scene);
  return scene;
}

/** Has the browser draw what it was told. */
function finish(canvas: HTMLCanvasElement): void {
  const c = document.createElement("canvas").getContext("2d", { willReadFrequently: true });
  c?.drawImage(canvas, 0, 0, 1, 1);
  c?.getImageData(0, 0, 1, 1);
}

function median(values: number[]): number {
  return values.sort((a, b) => a - b)[values.length >> 1];
}

function timed(times: number, act: () => void): number {
  return median(
    Array.from({ length: times }, () => {
      const begun = performance.now();
      act();
      return performance.now() - begun;
    }),
  );
}

interface Result {
  first: number;
  still: number;
  moving: number;
}

function views(kind: string, n: number, m: number, times: number): Result {
  const scene = sceneOf(n, m);
  document.body.replaceChildren();
  const box = document.createElement("div");
  box.style.width = `${WIDTH}px`;
  box.style.height = `${HEIGHT}px`;
  box.style.position = "relative";
  const base = document.createElement("canvas");
  document.body.append(box, base);
  const view: View = kind === "canvas" ? new CanvasView(base) : new SigmaView(box, () => undefined);
  view.resize(WIDTH, HEIGHT, 1);
  const drawn = (): void => {
    if (kind === "canvas") finish(base);
    else for (const canvas of box.querySelectorAll("canvas")) finish(canvas);
  };
  const begun = performance.now();
  view.draw(scene, "still");
  drawn();
  const first = performance.now() - begun;
  const still = timed(times, () => {
    view.draw(scene, "still");
    drawn();
  });
  const moving = timed(times, () => {
    zoomAt(scene, 1.02, 500, 300);
    view.draw(scene, "moving");
    drawn();
  });
  view.dispose();
  return { first, still, moving };
}

function replayOf(n: number, m: number, agents: number, steps: number): [Scene, Replay] {
  const scene = sceneOf(n, m);
  const words = Uint32Array.from({ length: 31 }, (_, i) => i * 2654435761 + 1);
  const law = { lists: scene.lists, sums: null, choice: "published", words, restarts: null } as const;
  const starts = Uint32Array.from({ length: agents }, (_, a) => a % n);
  return [scene, new Replay(new Course(n, starts, steps, () => new LawMover(law, agents)))];
}

/** Milliseconds for the layer of agents, with trails of that length or of the usual one. */
function overlay(agents: number, trail = usualTrail(agents)): number {
  const [scene, replay] = replayOf(10_000, 30_000, agents, 100);
  replay.seek(100);
  const canvas = document.createElement("canvas");
  canvas.width = WIDTH;
  canvas.height = HEIGHT;
  const c = canvas.getContext("2d");
  if (!c) return NaN;
  const all = Array.from({ length: agents }, (_, a) => a);
  const marks = { agents: all, trail, followed: -1, colors: kindsOf("light"), progress: 1 };
  return timed(30, () => {
    drawAgents(c, 1, scene, replay, marks);
    finish(canvas);
  });
}

/** Nanoseconds a move. */
function walking(n: number, agents: number): number {
  const steps = Math.ceil(3e6 / agents);
  const times = Array.from({ length: 5 }, () => {
    const [, replay] = replayOf(n, 3 * n, agents, steps);
    replay.seek(steps / 10);
    const begun = performance.now();
    replay.seek(steps);
    return ((performance.now() - begun) * 1e6) / (0.9 * steps * agents);
  });
  return median(times);
}

Object.assign(window, { measure: { views, overlay, walking } });

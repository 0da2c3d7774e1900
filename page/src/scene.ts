import type { Color, Shades } from "./color.ts";
import type { Lists } from "./lists.ts";

/** Which part of the drawing is seen: its middle, and how many pixels a unit of the drawing takes. */
export interface Camera {
  x: number;
  y: number;
  scale: number;
}

/** In pixels of the screen, from the upper left corner of the picture. */
export interface Box {
  readonly left: number;
  readonly top: number;
  readonly right: number;
  readonly bottom: number;
}

/** All that a view draws. Positions are those of a square of side 1, with y from top to bottom. */
export interface Scene {
  readonly n: number;
  readonly x: Float32Array;
  readonly y: Float32Array;
  /** Radii in pixels where the whole drawing is seen. */
  readonly radius: Float32Array;
  /** For each vertex a number of `palette`. */
  readonly tint: Uint16Array;
  palette: Uint32Array;
  /** 1 for the vertices that stand back. */
  readonly faded: Uint8Array;
  hasFaded: boolean;
  readonly sources: Uint32Array;
  readonly targets: Uint32Array;
  readonly lists: Lists;
  readonly directed: boolean;
  /** The vertex that is looked at, with its edges; or -1. */
  marked: number;
  readonly camera: Camera;
  /** The scale at which the whole drawing is seen, and its middle then. */
  fitted: number;
  readonly home: { x: number; y: number };
  /** What stands over the lower corners of the picture. */
  covers: readonly Box[];
  width: number;
  height: number;
  shades: Shades;
}

/** Vertices grow with the root of the scale: they stay apart as one comes nearer, and stay visible. */
export function growth(scene: Pick<Scene, "camera" | "fitted">): number {
  return Math.sqrt(Math.min(64, Math.max(0.25, scene.camera.scale / scene.fitted)));
}

export function screenX(scene: Scene, x: number): number {
  return scene.width / 2 + (x - scene.camera.x) * scene.camera.scale;
}

export function screenY(scene: Scene, y: number): number {
  return scene.height / 2 + (y - scene.camera.y) * scene.camera.scale;
}

/** Room around the drawing, in pixels. */
const MARGIN = 36;

/** Shows the whole drawing, as large as it can be where nothing of it is covered. */
export function fit(scene: Scene): void {
  const { camera, home, covers, width, height } = scene;
  const bounds = boundsOf(scene);
  const [left, right] = [
    Math.max(0, ...covers.filter((cover) => cover.left < width - cover.right).map((cover) => cover.right)),
    Math.min(width, ...covers.filter((cover) => cover.left >= width - cover.right).map((cover) => cover.left)),
  ];
  const bottom = Math.min(height, ...covers.map((cover) => cover.top));
  const rooms: Box[] = [
    { left: 0, top: 0, right: width, bottom: height },
    { left, top: 0, right: width, bottom: height },
    { left: 0, top: 0, right, bottom: height },
    { left, top: 0, right, bottom: height },
    { left: 0, top: 0, right: width, bottom },
  ];
  const best = rooms
    .map((room) => cameraIn(scene, bounds, room))
    .sort((a, b) => b.scale - a.scale)
    .find((each) => isClear({ ...scene, camera: each, fitted: each.scale }));
  Object.assign(camera, best ?? cameraIn(scene, bounds, rooms[0]));
  scene.fitted = camera.scale;
  home.x = camera.x;
  home.y = camera.y;
}

export function isHome({ camera, home, fitted }: Scene): boolean {
  return camera.x === home.x && camera.y === home.y && camera.scale === fitted;
}

/** So that the drawing fills a part of the picture. */
function cameraIn(scene: Scene, bounds: ReturnType<typeof boundsOf>, room: Box): Camera {
  const across = Math.max(40, room.right - room.left - 2 * MARGIN);
  const down = Math.max(40, room.bottom - room.top - 2 * MARGIN);
  const scale = Math.min(
    across / Math.max(bounds.width, 1e-3),
    down / Math.max(bounds.height, 1e-3),
    3 * Math.min(across, down),
  );
  return {
    x: bounds.x - ((room.left + room.right - scene.width) / 2) / scale,
    y: bounds.y - ((room.top + room.bottom - scene.height) / 2) / scale,
    scale,
  };
}

function isClear(scene: Scene): boolean {
  const { covers, sources, targets, radius } = scene;
  const x = scene.x.map((each) => screenX(scene, each));
  const y = scene.y.map((each) => screenY(scene, each));
  const grown = growth(scene);
  for (const cover of covers) {
    for (let v = 0; v < scene.n; ++v) {
      const r = radius[v] * grown;
      if (x[v] + r > cover.left && x[v] - r < cover.right && y[v] + r > cover.top) return false;
    }
    for (let e = 0; e < sources.length; ++e) {
      const [a, b] = [sources[e], targets[e]];
      if (passes(cover, x[a], y[a], x[b], y[b])) return false;
    }
  }
  return true;
}

/** Whether a line goes through a box, neither end being in it. */
function passes(box: Box, x0: number, y0: number, x1: number, y1: number): boolean {
  if (Math.max(x0, x1) <= box.left || Math.min(x0, x1) >= box.right) return false;
  if (Math.max(y0, y1) <= box.top || Math.min(y0, y1) >= box.bottom) return false;
  // Then it does unless all corners are on one side of it.
  const side = (x: number, y: number): number => Math.sign((x1 - x0) * (y - y0) - (y1 - y0) * (x - x0));
  const sides = [
    side(box.left, box.top),
    side(box.right, box.top),
    side(box.left, box.bottom),
    side(box.right, box.bottom),
  ];
  return Math.min(...sides) < 1 && Math.max(...sides) > -1;
}

function boundsOf(scene: Scene): { x: number; y: number; width: number; height: number } {
  if (scene.n === 0) return { x: 0.5, y: 0.5, width: 1, height: 1 };
  let [left, right, top, bottom] = [1, 0, 1, 0];
  for (let v = 0; v < scene.n; ++v) {
    left = Math.min(left, scene.x[v]);
    right = Math.max(right, scene.x[v]);
    top = Math.min(top, scene.y[v]);
    bottom = Math.max(bottom, scene.y[v]);
  }
  return { x: (left + right) / 2, y: (top + bottom) / 2, width: right - left, height: bottom - top };
}

/** Zooms so that the point of the screen stays where it is. */
export function zoomAt(scene: Scene, factor: number, px: number, py: number): void {
  const { camera } = scene;
  const scale = Math.min(scene.fitted * 400, Math.max(scene.fitted / 4, camera.scale * factor));
  const dx = px - scene.width / 2;
  const dy = py - scene.height / 2;
  camera.x += dx / camera.scale - dx / scale;
  camera.y += dy / camera.scale - dy / scale;
  camera.scale = scale;
}

export function pan(scene: Scene, dx: number, dy: number): void {
  scene.camera.x -= dx / scene.camera.scale;
  scene.camera.y -= dy / scene.camera.scale;
}

/** Finds vertices by place: a grid of cells, each with its vertices. */
export class Picker {
  private readonly side: number;
  private readonly start: Uint32Array;
  private readonly vertices: Uint32Array;

  constructor(private readonly scene: Scene) {
    this.side = Math.max(1, Math.ceil(Math.sqrt(scene.n / 2)));
    this.start = new Uint32Array(this.side * this.side + 1);
    this.vertices = new Uint32Array(scene.n);
    for (let v = 0; v < scene.n; ++v) ++this.start[this.cell(v) + 1];
    for (let c = 0; c + 1 < this.start.length; ++c) this.start[c + 1] += this.start[c];
    const free = this.start.slice();
    for (let v = 0; v < scene.n; ++v) this.vertices[free[this.cell(v)]++] = v;
  }

  /** The vertex whose disc is nearest to the point of the screen, within so many pixels; or -1. */
  at(px: number, py: number, reach: number): number {
    const { scene } = this;
    const x = scene.camera.x + (px - scene.width / 2) / scene.camera.scale;
    const y = scene.camera.y + (py - scene.height / 2) / scene.camera.scale;
    const grown = growth(scene);
    let largest = 0;
    for (let v = 0; v < scene.n; ++v) largest = Math.max(largest, scene.radius[v]);
    const around = (largest * grown + reach) / scene.camera.scale;
    let best = -1;
    let bestGap = reach;
    this.within(x - around, y - around, x + around, y + around, (v) => {
      const gap =
        Math.hypot(scene.x[v] - x, scene.y[v] - y) * scene.camera.scale - scene.radius[v] * grown;
      if (gap > bestGap) return;
      best = v;
      bestGap = gap;
    });
    return best;
  }

  private within(x0: number, y0: number, x1: number, y1: number, see: (v: number) => void): void {
    const [left, right] = [this.row(x0), this.row(x1)];
    const [top, bottom] = [this.row(y0), this.row(y1)];
    for (let cy = top; cy <= bottom; ++cy) {
      for (let cx = left; cx <= right; ++cx) {
        const cell = cy * this.side + cx;
        for (let i = this.start[cell]; i < this.start[cell + 1]; ++i) see(this.vertices[i]);
      }
    }
  }

  private cell(v: number): number {
    return this.row(this.scene.y[v]) * this.side + this.row(this.scene.x[v]);
  }

  private row(x: number): number {
    return Math.min(this.side - 1, Math.max(0, Math.floor(x * this.side)));
  }
}

export type Detail = "moving" | "still";

/** What draws vertices and edges; agents and names are drawn above it. */
export interface View {
  /** What the page says of it where it is not the first choice. */
  readonly kind: "canvas" | "webgl";
  resize(width: number, height: number, density: number): void;
  draw(scene: Scene, detail: Detail): void;
  dispose(): void;
}

/** At most so many edges are drawn while the camera moves. */
export const EDGES_WHILE_MOVING = 30_000;

/** The opacity of vertices that stand back. */
export const FADED = 0.3;

/** The more edges, the fainter each. */
export function edgeOpacity(m: number): number {
  return Math.min(0.62, Math.max(0.06, 9 / Math.sqrt(Math.max(1, m))));
}

export function colorOf(scene: Scene, v: number): Color {
  return scene.palette[scene.tint[v]];
}

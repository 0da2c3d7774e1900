import { css } from "./color.ts";
import { EDGES_WHILE_MOVING, FADED, edgeOpacity, growth } from "./scene.ts";
import type { Detail, Scene, View } from "./scene.ts";

/** Lines of one path; longer ones take a browser more time each. */
const LINES_AT_ONCE = 400;
/** Discs smaller than this are squares, which nobody can tell from discs. */
const SQUARE_BELOW = 1.3;
const ARROWS_UP_TO = 4000;
const FULL_TURN = 2 * Math.PI;

/** Points and lines on a plain canvas: the view for browsers without a graphics processor. */
export class CanvasView implements View {
  readonly kind = "canvas";
  private readonly context: CanvasRenderingContext2D;
  private density = 1;

  constructor(private readonly canvas: HTMLCanvasElement) {
    const context = canvas.getContext("2d", { alpha: true });
    if (!context) throw new Error("This browser draws nothing.");
    this.context = context;
  }

  resize(width: number, height: number, density: number): void {
    this.canvas.width = Math.max(1, Math.round(width * density));
    this.canvas.height = Math.max(1, Math.round(height * density));
    this.density = density;
  }

  draw(scene: Scene, detail: Detail): void {
    const c = this.context;
    c.setTransform(this.density, 0, 0, this.density, 0, 0);
    c.clearRect(0, 0, scene.width, scene.height);
    drawEdges(c, scene, detail);
    drawVertices(c, scene);
  }

  dispose(): void {
    this.canvas.width = 0;
    this.canvas.height = 0;
  }
}

/** Where vertices are on the screen. */
class Places {
  private readonly dx: number;
  private readonly dy: number;
  private readonly scale: number;

  constructor(private readonly scene: Scene) {
    this.scale = scene.camera.scale;
    this.dx = scene.width / 2 - scene.camera.x * this.scale;
    this.dy = scene.height / 2 - scene.camera.y * this.scale;
  }

  x(v: number): number {
    return this.dx + this.scene.x[v] * this.scale;
  }

  y(v: number): number {
    return this.dy + this.scene.y[v] * this.scale;
  }
}

function drawEdges(c: CanvasRenderingContext2D, scene: Scene, detail: Detail): void {
  const m = scene.sources.length;
  const every = detail === "moving" ? Math.max(1, Math.ceil(m / EDGES_WHILE_MOVING)) : 1;
  const opacity = edgeOpacity(m / every) * (scene.hasFaded ? 0.35 : 1);
  c.strokeStyle = css(scene.shades.edge, opacity);
  c.lineWidth = lineWidth(scene);
  strokeLines(c, scene, every, () => true);
  if (scene.marked >= 0) {
    c.strokeStyle = css(scene.shades.ink, 0.75);
    c.lineWidth = 1.6;
    const { marked, sources, targets } = scene;
    strokeLines(c, scene, 1, (e) => sources[e] === marked || targets[e] === marked);
  }
  if (scene.directed && m <= ARROWS_UP_TO) {
    c.fillStyle = css(scene.shades.edge, Math.min(1, opacity + 0.25));
    fillArrows(c, scene);
  }
}

function lineWidth(scene: Scene): number {
  return Math.min(1.4, Math.max(0.5, 0.9 * Math.sqrt(growth(scene))));
}

function strokeLines(
  c: CanvasRenderingContext2D,
  scene: Scene,
  every: number,
  wanted: (edge: number) => boolean,
): void {
  const { sources, targets, width, height } = scene;
  const place = new Places(scene);
  let lines = 0;
  c.beginPath();
  for (let e = 0; e < sources.length; e += every) {
    if (!wanted(e)) continue;
    const x0 = place.x(sources[e]);
    const y0 = place.y(sources[e]);
    const x1 = place.x(targets[e]);
    const y1 = place.y(targets[e]);
    // What lies on one side of the screen altogether is not seen.
    if ((x0 < 0 && x1 < 0) || (x0 > width && x1 > width)) continue;
    if ((y0 < 0 && y1 < 0) || (y0 > height && y1 > height)) continue;
    c.moveTo(x0, y0);
    c.lineTo(x1, y1);
    if (++lines < LINES_AT_ONCE) continue;
    c.stroke();
    c.beginPath();
    lines = 0;
  }
  c.stroke();
}

function fillArrows(c: CanvasRenderingContext2D, scene: Scene): void {
  const place = new Places(scene);
  const grown = growth(scene);
  const length = 4.5 + 1.5 * grown;
  c.beginPath();
  for (let e = 0; e < scene.sources.length; ++e) {
    const target = scene.targets[e];
    const x1 = place.x(target);
    const y1 = place.y(target);
    const dx = x1 - place.x(scene.sources[e]);
    const dy = y1 - place.y(scene.sources[e]);
    const distance = Math.hypot(dx, dy);
    const gap = scene.radius[target] * grown + 1;
    if (distance < gap + length) continue;
    const [ux, uy] = [dx / distance, dy / distance];
    const [tx, ty] = [x1 - ux * gap, y1 - uy * gap];
    const half = length * 0.38;
    c.moveTo(tx, ty);
    c.lineTo(tx - ux * length - uy * half, ty - uy * length + ux * half);
    c.lineTo(tx - ux * length + uy * half, ty - uy * length - ux * half);
    c.closePath();
  }
  c.fill();
}

function drawVertices(c: CanvasRenderingContext2D, scene: Scene): void {
  const order = byTint(scene);
  c.lineWidth = 1;
  c.strokeStyle = css(scene.shades.ground, 0.9);
  if (scene.hasFaded) {
    c.globalAlpha = FADED;
    drawTints(c, scene, order, 1);
    c.globalAlpha = 1;
  }
  drawTints(c, scene, order, 0);
}

/** Vertices in the order of their tints, which is one of 16 bits, so that each colour is set once. */
function byTint(scene: Scene): { order: Uint32Array; start: Uint32Array } {
  const start = new Uint32Array(scene.palette.length + 1);
  for (let v = 0; v < scene.n; ++v) ++start[scene.tint[v] + 1];
  for (let t = 0; t < scene.palette.length; ++t) start[t + 1] += start[t];
  const free = start.slice();
  const order = new Uint32Array(scene.n);
  for (let v = 0; v < scene.n; ++v) order[free[scene.tint[v]]++] = v;
  return { order, start };
}

function drawTints(
  c: CanvasRenderingContext2D,
  scene: Scene,
  { order, start }: { order: Uint32Array; start: Uint32Array },
  faded: number,
): void {
  const place = new Places(scene);
  const grown = growth(scene);
  const { radius, width, height } = scene;
  for (let t = 0; t < scene.palette.length; ++t) {
    if (start[t] === start[t + 1]) continue;
    c.fillStyle = css(scene.palette[t]);
    c.beginPath();
    for (let i = start[t]; i < start[t + 1]; ++i) {
      const v = order[i];
      if (scene.faded[v] !== faded) continue;
      const x = place.x(v);
      const y = place.y(v);
      const r = radius[v] * grown;
      if (x < -r || y < -r || x > width + r || y > height + r) continue;
      if (r < SQUARE_BELOW) {
        c.fillRect(x - r, y - r, 2 * r, 2 * r);
        continue;
      }
      c.moveTo(x + r, y);
      c.arc(x, y, r, 0, FULL_TURN);
    }
    c.fill();
    if (scene.n <= 3000) c.stroke();
  }
}

import { css } from "./color.ts";
import { FaintLines } from "./lines.ts";
import { EDGES_WHILE_MOVING, FADED, edgeOpacity, growth } from "./scene.ts";
import type { Detail, Scene, View } from "./scene.ts";

/** Discs smaller than this are squares, which nobody can tell from discs. */
const SQUARE_BELOW = 1.3;
const ARROWS_UP_TO = 4000;
/** Rings in the colour of the ground keep vertices apart, where there are not too many. */
const RINGED_UP_TO = 3000;
const FULL_TURN = 2 * Math.PI;

/** Points and lines on a plain canvas: the view for browsers without a graphics processor. */
export class CanvasView implements View {
  readonly kind = "canvas";
  private readonly context: CanvasRenderingContext2D;
  private readonly lines = new FaintLines();
  private density = 1;

  constructor(private readonly canvas: HTMLCanvasElement) {
    const context = canvas.getContext("2d", { alpha: true });
    if (!context) throw new Error("This browser draws nothing.");
    this.context = context;
  }

  resize(width: number, height: number, density: number): void {
    this.canvas.width = Math.max(1, Math.round(width * density));
    this.canvas.height = Math.max(1, Math.round(height * density));
    this.lines.resize(this.canvas.width, this.canvas.height);
    this.density = density;
  }

  draw(scene: Scene, detail: Detail): void {
    const c = this.context;
    c.setTransform(this.density, 0, 0, this.density, 0, 0);
    c.clearRect(0, 0, scene.width, scene.height);
    this.drawEdges(scene, detail);
    drawVertices(c, scene);
  }

  dispose(): void {
    this.canvas.width = 0;
    this.canvas.height = 0;
    this.lines.resize(0, 0);
  }

  private drawEdges(scene: Scene, detail: Detail): void {
    const { context: c, density, lines } = this;
    const m = scene.sources.length;
    const every = detail === "moving" ? Math.max(1, Math.ceil(m / EDGES_WHILE_MOVING)) : 1;
    const opacity = edgeOpacity(m / every) * (scene.hasFaded ? 0.35 : 1);
    lines.setInk(scene.shades.edge, opacity);
    const place = new Places(scene, density);
    const thickness = lineWidth(scene) * density;
    for (let e = 0; e < m; e += every) {
      const [source, target] = [scene.sources[e], scene.targets[e]];
      lines.line(place.x(source), place.y(source), place.x(target), place.y(target), thickness);
    }
    lines.show(c);
    if (scene.marked >= 0) strokeMarked(c, scene);
    if (scene.directed && m <= ARROWS_UP_TO) {
      c.fillStyle = css(scene.shades.edge, Math.min(1, opacity + 0.25));
      fillArrows(c, scene);
    }
  }
}

/** Where vertices are on the screen, or in the canvas's own pixels by its density. */
class Places {
  private readonly dx: number;
  private readonly dy: number;
  private readonly scale: number;

  constructor(
    private readonly scene: Scene,
    density = 1,
  ) {
    this.scale = scene.camera.scale * density;
    this.dx = (scene.width / 2) * density - scene.camera.x * this.scale;
    this.dy = (scene.height / 2) * density - scene.camera.y * this.scale;
  }

  x(v: number): number {
    return this.dx + this.scene.x[v] * this.scale;
  }

  y(v: number): number {
    return this.dy + this.scene.y[v] * this.scale;
  }
}

function lineWidth(scene: Scene): number {
  return Math.min(1.4, Math.max(0.5, 0.9 * Math.sqrt(growth(scene))));
}

/** The edges of the vertex that is looked at. */
function strokeMarked(c: CanvasRenderingContext2D, scene: Scene): void {
  const { marked, sources, targets } = scene;
  const place = new Places(scene);
  c.strokeStyle = css(scene.shades.ink, 0.75);
  c.lineWidth = 1.6;
  c.beginPath();
  for (let e = 0; e < sources.length; ++e) {
    if (sources[e] !== marked && targets[e] !== marked) continue;
    c.moveTo(place.x(sources[e]), place.y(sources[e]));
    c.lineTo(place.x(targets[e]), place.y(targets[e]));
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
  const isRinged = scene.n <= RINGED_UP_TO;
  for (let t = 0; t < scene.palette.length; ++t) {
    if (start[t] === start[t + 1]) continue;
    c.fillStyle = css(scene.palette[t]);
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
      // Browsers fill a disc by itself sooner than one of many in a path.
      c.beginPath();
      c.arc(x, y, r, 0, FULL_TURN);
      c.fill();
      if (isRinged) c.stroke();
    }
  }
}

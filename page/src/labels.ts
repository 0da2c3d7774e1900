import { css } from "./color.ts";
import { growth, screenX, screenY } from "./scene.ts";
import type { Box, Scene } from "./scene.ts";

const SMALLEST_NAMED = 3;
/** So many are tried at most, the largest first. */
const MOST_TRIED = 600;
const LONGEST = 28;
/** Names keep clear of so many of the largest vertices. */
const MOST_DISCS = 300;
const APART = 4;
export const MOST_LABELS = 160;

/** Names of vertices, and loops, above the view: alike in every view. */
export class Labels {
  // Vertices from the largest to the smallest.
  private order: Uint32Array = new Uint32Array();

  constructor(
    private readonly scene: Scene,
    private readonly nameOf: (vertex: number) => string,
  ) {}

  /** After radii changed. */
  sort(): void {
    const { radius, n } = this.scene;
    this.order = Uint32Array.from({ length: n }, (_, v) => v);
    this.order.sort((a, b) => radius[b] - radius[a] || a - b);
  }

  draw(c: CanvasRenderingContext2D, density: number, always: readonly number[]): void {
    const { scene } = this;
    c.setTransform(density, 0, 0, density, 0, 0);
    c.clearRect(0, 0, scene.width, scene.height);
    this.drawLoops(c);
    c.textBaseline = "middle";
    c.lineJoin = "round";
    c.textAlign = "left";
    c.lineWidth = 3;
    c.strokeStyle = css(scene.shades.ground, 0.85);
    c.fillStyle = css(scene.shades.ink);
    for (const label of this.placed(c, always)) {
      c.font = fontOf(label.isWanted);
      c.strokeText(label.text, label.x, label.y);
      c.fillText(label.text, label.x, label.y);
    }
    if (scene.marked >= 0) this.ring(c, scene.marked);
  }

  /** The names that have room, the wanted ones and then those of the largest vertices. */
  placed(c: CanvasRenderingContext2D, always: readonly number[]): Label[] {
    const labels: Label[] = [];
    const taken = [...this.discs(), ...this.scene.covers];
    for (const v of always) this.place(c, v, true, labels, taken);
    let tried = 0;
    for (const v of this.order) {
      if (labels.length >= MOST_LABELS || ++tried > MOST_TRIED) break;
      if (!this.scene.faded[v] && !always.includes(v)) this.place(c, v, false, labels, taken);
    }
    return labels;
  }

  private drawLoops(c: CanvasRenderingContext2D): void {
    const { scene } = this;
    const grown = growth(scene);
    c.strokeStyle = css(scene.shades.edge, 0.7);
    c.lineWidth = 1;
    c.beginPath();
    for (let e = 0; e < scene.sources.length; ++e) {
      const v = scene.sources[e];
      if (v !== scene.targets[e]) continue;
      const x = screenX(scene, scene.x[v]);
      const r = 3 + scene.radius[v] * grown * 0.6;
      const y = screenY(scene, scene.y[v]) - scene.radius[v] * grown - r * 0.8;
      c.moveTo(x + r, y);
      c.arc(x, y, r, 0, 2 * Math.PI);
    }
    c.stroke();
  }

  private ring(c: CanvasRenderingContext2D, v: number): void {
    const { scene } = this;
    c.strokeStyle = css(scene.shades.accent);
    c.lineWidth = 2.5;
    c.beginPath();
    const r = scene.radius[v] * growth(scene) + 4;
    c.arc(screenX(scene, scene.x[v]), screenY(scene, scene.y[v]), r, 0, 2 * Math.PI);
    c.stroke();
  }

  // A label stands to the right of its vertex or else to the left, and gives way where others are or the picture
  // ends.
  private place(
    c: CanvasRenderingContext2D,
    v: number,
    isWanted: boolean,
    labels: Label[],
    taken: Box[],
  ): void {
    const { scene } = this;
    const r = scene.radius[v] * growth(scene);
    const middle = screenX(scene, scene.x[v]);
    const y = screenY(scene, scene.y[v]);
    if (middle < 0 || y < 0 || middle > scene.width || y > scene.height) return;
    if (!isWanted && r < SMALLEST_NAMED) return;
    const characters = Array.from(this.nameOf(v));
    const isLong = characters.length > LONGEST;
    const text = isLong ? `${characters.slice(0, LONGEST - 1).join("")}…` : characters.join("");
    c.font = fontOf(isWanted);
    const { width } = c.measureText(text);
    const right = middle + r + APART;
    const left = middle - r - APART - width;
    const boxOf = (x: number): Box => ({ left: x - 1, right: x + width + 1, top: y - 7, bottom: y + 7 });
    const isIn = (x: number): boolean => x >= 2 && x + width <= scene.width - 2;
    const isFree = (x: number): boolean => isIn(x) && !taken.some((each) => overlap(each, boxOf(x)));
    const x = isWanted ? [right, left].find(isIn) ?? right : [right, left].find(isFree);
    if (x === undefined) return;
    taken.push(boxOf(x));
    labels.push({ text, x, y, isWanted });
  }

  /** Where the largest vertices are. */
  private discs(): Box[] {
    const { scene } = this;
    const grown = growth(scene);
    return Array.from(this.order.subarray(0, MOST_DISCS), (v) => {
      const x = screenX(scene, scene.x[v]);
      const y = screenY(scene, scene.y[v]);
      const half = scene.radius[v] * grown * 0.8;
      return { left: x - half, right: x + half, top: y - half, bottom: y + half };
    });
  }
}

/** A name, the left end of its middle line, and whether it must be there. */
export interface Label {
  readonly text: string;
  readonly x: number;
  readonly y: number;
  readonly isWanted: boolean;
}

function fontOf(isWanted: boolean): string {
  return `${isWanted ? 600 : 450} 12px system-ui, sans-serif`;
}

function overlap(a: Box, b: Box): boolean {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

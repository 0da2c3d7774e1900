import { css } from "./color.ts";
import type { Color } from "./color.ts";
import type { Replay } from "./replay.ts";
import { growth, screenX, screenY } from "./scene.ts";
import type { Scene } from "./scene.ts";

/** What of the agents is shown. */
export interface Marks {
  readonly agents: readonly number[];
  readonly trail: number;
  /** The agent that the camera follows, or -1. */
  readonly followed: number;
  readonly colors: readonly Color[];
  /** How far agents are on their way from where they were a step ago, 1 for there. */
  readonly progress: number;
}

/** Numbers are written on so many agents, and their trails are broad; those of more are thin. */
const NUMBERED = 40;
/** More agents than this are specks without trails. */
const TINY_FROM = 1000;
const SIZE = 7;

/** Agents and their trails, on a layer of their own: a step costs what the agents cost. */
export function drawAgents(
  c: CanvasRenderingContext2D,
  density: number,
  scene: Scene,
  replay: Replay,
  marks: Marks,
): void {
  c.setTransform(density, 0, 0, density, 0, 0);
  c.clearRect(0, 0, scene.width, scene.height);
  c.lineJoin = "round";
  c.lineCap = "round";
  if (marks.agents.length > TINY_FROM) {
    drawTiny(c, scene, replay, marks);
    return;
  }
  for (const agent of marks.agents) drawTrail(c, scene, replay, marks, agent);
  const shared = new Map<number, number>();
  const isNumbered = marks.agents.length > 1 && marks.agents.length <= NUMBERED;
  for (const agent of marks.agents) {
    const [x, y] = placeOf(scene, replay, marks, agent, shared);
    const isFollowed = agent === marks.followed;
    stamp(c, density, spriteOf(scene, density, colorOf(marks, agent), isFollowed), x, y);
    if (isNumbered) writeNumber(c, scene, agent, x + sizeOf(isFollowed) + 2, y - sizeOf(isFollowed));
  }
}

function colorOf(marks: Marks, agent: number): Color {
  return marks.colors[agent % marks.colors.length];
}

function drawTiny(c: CanvasRenderingContext2D, scene: Scene, replay: Replay, marks: Marks): void {
  marks.colors.forEach((color, i) => {
    c.fillStyle = css(color);
    for (const agent of marks.agents) {
      if (agent % marks.colors.length !== i) continue;
      const at = replay.positions[agent];
      c.fillRect(screenX(scene, scene.x[at]) - 2, screenY(scene, scene.y[at]) - 2, 4, 4);
    }
  });
}

function drawTrail(
  c: CanvasRenderingContext2D,
  scene: Scene,
  replay: Replay,
  marks: Marks,
  agent: number,
): void {
  const color = colorOf(marks, agent);
  const isThin = marks.agents.length > NUMBERED;
  let to = replay.positions[agent];
  for (let ago = 1; ago <= marks.trail; ++ago) {
    const from = replay.trailOf(agent, ago);
    if (from === undefined) return;
    if (from === to) continue;
    c.strokeStyle = css(color, 0.85 * (1 - (ago - 1) / marks.trail));
    c.lineWidth = isThin ? 1 : 3.2 - (1.8 * (ago - 1)) / marks.trail;
    c.beginPath();
    c.moveTo(screenX(scene, scene.x[from]), screenY(scene, scene.y[from]));
    // The latest move is drawn as far as the agent is.
    const f = ago === 1 ? marks.progress : 1;
    c.lineTo(
      screenX(scene, scene.x[from] + f * (scene.x[to] - scene.x[from])),
      screenY(scene, scene.y[from] + f * (scene.y[to] - scene.y[from])),
    );
    c.stroke();
    to = from;
  }
}

/** Agents on one vertex stand around it. */
function placeOf(
  scene: Scene,
  replay: Replay,
  marks: Marks,
  agent: number,
  shared: Map<number, number>,
): [number, number] {
  const to = replay.positions[agent];
  const from = marks.progress < 1 ? (replay.trailOf(agent, 1) ?? to) : to;
  const f = marks.progress;
  const x = screenX(scene, scene.x[from] + f * (scene.x[to] - scene.x[from]));
  const y = screenY(scene, scene.y[from] + f * (scene.y[to] - scene.y[from]));
  const before = shared.get(to) ?? 0;
  shared.set(to, before + 1);
  if (before === 0) return [x, y];
  const turn = before * 2.4;
  const apart = (scene.radius[to] * growth(scene) + 5) * (1 + Math.floor(before / 8) * 0.6);
  return [x + apart * Math.cos(turn), y + apart * Math.sin(turn)];
}

function sizeOf(isFollowed: boolean): number {
  return isFollowed ? SIZE + 2.5 : SIZE;
}

/** Marks are drawn once for each look, and copied from then on. */
const sprites = new Map<string, HTMLCanvasElement>();

function spriteOf(scene: Scene, density: number, color: Color, isFollowed: boolean): HTMLCanvasElement {
  const key = [scene.shades.ground, scene.shades.ink, density, color, isFollowed].join(" ");
  let sprite = sprites.get(key);
  if (!sprite) sprites.set(key, (sprite = drawnMark(scene, density, color, isFollowed)));
  return sprite;
}

/** A square on its corner, which no vertex is. */
function drawnMark(scene: Scene, density: number, color: Color, isFollowed: boolean): HTMLCanvasElement {
  const sprite = document.createElement("canvas");
  const r = sizeOf(isFollowed);
  sprite.width = sprite.height = 2 * Math.ceil((r + 2) * density);
  const c = sprite.getContext("2d");
  if (!c) return sprite;
  c.translate(sprite.width / 2, sprite.height / 2);
  c.scale(density, density);
  c.lineJoin = "round";
  c.beginPath();
  c.moveTo(0, -r);
  c.lineTo(r, 0);
  c.lineTo(0, r);
  c.lineTo(-r, 0);
  c.closePath();
  c.fillStyle = css(color);
  c.fill();
  c.strokeStyle = css(scene.shades.ground);
  c.lineWidth = 2;
  c.stroke();
  c.strokeStyle = css(scene.shades.ink);
  c.lineWidth = isFollowed ? 2 : 1;
  c.stroke();
  return sprite;
}

/** On whole pixels, where a copy is as sharp as what it was made from. */
function stamp(c: CanvasRenderingContext2D, density: number, sprite: HTMLCanvasElement, x: number, y: number): void {
  const side = sprite.width / density;
  const onPixel = (at: number): number => Math.round(at * density - sprite.width / 2) / density;
  c.drawImage(sprite, onPixel(x), onPixel(y), side, side);
}

function writeNumber(c: CanvasRenderingContext2D, scene: Scene, agent: number, x: number, y: number): void {
  c.font = "600 10px system-ui, sans-serif";
  c.textAlign = "left";
  c.textBaseline = "middle";
  c.lineWidth = 3;
  c.strokeStyle = css(scene.shades.ground, 0.9);
  c.strokeText(String(agent), x, y);
  c.fillStyle = css(scene.shades.ink);
  c.fillText(String(agent), x, y);
}

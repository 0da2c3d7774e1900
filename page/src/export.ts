import { CanvasView } from "./canvas2d.ts";
import { css } from "./color.ts";
import { make, makeSvg } from "./dom.ts";
import type { Facts } from "./facts.ts";
import { Labels, MOST_LABELS } from "./labels.ts";
import { tickTexts } from "./legend.ts";
import type { Legend } from "./looks.ts";
import { drawAgents } from "./overlay.ts";
import type { Marks } from "./overlay.ts";
import type { Replay } from "./replay.ts";
import { colorOf, edgeOpacity, growth, screenX, screenY } from "./scene.ts";
import type { Scene } from "./scene.ts";

/** All that is on the picture. */
export interface Picture {
  readonly scene: Scene;
  readonly facts: Facts;
  readonly replay: Replay | null;
  readonly marks: Marks;
  readonly legend: Legend | null;
  readonly caption: string;
}

export const MOST_SVG_ELEMENTS = 20_000;
const DENSITY = 2;

/** Has the browser save something as a file. */
export function save(name: string, content: Blob): void {
  const link = make("a");
  const address = URL.createObjectURL(content);
  link.href = address;
  link.download = name;
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => {
    URL.revokeObjectURL(address);
  }, 60_000);
}

/** A file's name that every system takes. */
export function fileName(title: string, suffix: string): string {
  const plain = title.normalize("NFKD").replace(/\p{M}/gu, "").replace(/[^A-Za-z0-9]+/g, "-").replace(/^-+|-+$/g, "");
  return `${plain.slice(0, 60) || "network"}.${suffix}`;
}

export function picturePng(picture: Picture): Promise<Blob | null> {
  const { scene, facts, replay } = picture;
  const whole = layer(scene);
  const c = whole.getContext("2d");
  if (!c) return Promise.resolve(null);
  c.fillStyle = css(scene.shades.ground);
  c.fillRect(0, 0, whole.width, whole.height);
  const base = layer(scene);
  const view = new CanvasView(base);
  view.resize(scene.width, scene.height, DENSITY);
  view.draw(scene, "still");
  c.drawImage(base, 0, 0);
  const above = layer(scene);
  const drawing = above.getContext("2d");
  if (drawing) {
    const labels = new Labels(scene, (v) => facts.name(v));
    labels.sort();
    labels.draw(drawing, DENSITY, scene.marked >= 0 ? [scene.marked] : []);
    c.drawImage(above, 0, 0);
    if (replay) {
      drawAgents(drawing, DENSITY, scene, replay, picture.marks);
      c.drawImage(above, 0, 0);
    }
  }
  drawLegend(c, picture);
  return new Promise((resolve) => {
    whole.toBlob(resolve, "image/png");
  });
}

function layer(scene: Scene): HTMLCanvasElement {
  const canvas = document.createElement("canvas");
  canvas.width = Math.round(scene.width * DENSITY);
  canvas.height = Math.round(scene.height * DENSITY);
  return canvas;
}

function drawLegend(c: CanvasRenderingContext2D, { scene, legend, caption }: Picture): void {
  c.setTransform(DENSITY, 0, 0, DENSITY, 0, 0);
  c.textBaseline = "alphabetic";
  c.font = "12px system-ui, sans-serif";
  c.fillStyle = css(scene.shades.faint);
  c.textAlign = "right";
  c.fillText(caption, scene.width - 12, scene.height - 12, scene.width * 0.6);
  if (!legend) return;
  c.textAlign = "left";
  c.fillStyle = css(scene.shades.ink);
  const from = scene.height - 12;
  if (legend.scale) {
    const { colors } = legend.scale;
    c.fillText(legend.title, BAR.left, from - 34);
    const width = BAR.width / colors.length;
    colors.forEach((color, i) => {
      c.fillStyle = css(color);
      c.fillRect(BAR.left + i * width, from - 26, width + 0.5, BAR.height);
    });
    c.fillStyle = css(scene.shades.ink);
    const texts = tickTexts(legend);
    texts.forEach((text, i) => {
      const at = texts.length > 1 ? i / (texts.length - 1) : 0;
      c.textAlign = at === 0 ? "left" : at === 1 ? "right" : "center";
      c.fillText(text, BAR.left + BAR.width * at, from);
    });
    return;
  }
  legend.kinds.forEach((kind, i) => {
    const y = from - 16 * (legend.kinds.length - 1 - i);
    c.fillStyle = css(kind.color);
    c.fillRect(BAR.left, y - 9, 10, 10);
    c.fillStyle = css(scene.shades.ink);
    c.fillText(kind.text, BAR.left + 16, y, 240);
  });
}

/** The elements that a drawing as SVG would have. */
export function svgElements({ scene, marks }: Picture): number {
  return 2 * scene.n + scene.sources.length + marks.agents.length + MOST_LABELS + 100;
}

/** What is shown as SVG, made of nodes and written by the browser; null where it would be too much. */
export function pictureSvg(picture: Picture): string | null {
  if (svgElements(picture) > MOST_SVG_ELEMENTS) return null;
  const { scene, facts, replay, marks } = picture;
  const { width, height, shades } = scene;
  const root = makeSvg("svg", { width, height, viewBox: `0 0 ${width} ${height}` });
  root.append(makeSvg("title", {}, picture.caption));
  root.append(makeSvg("rect", { width, height, fill: css(shades.ground) }));
  root.append(svgEdges(scene), svgVertices(scene, facts), svgLabels(scene, facts));
  if (replay) root.append(svgAgents(scene, replay, marks));
  root.append(svgLegend(picture));
  return new XMLSerializer().serializeToString(root);
}

function round(x: number): string {
  return x.toFixed(2);
}

function svgEdges(scene: Scene): SVGElement {
  const opacity = edgeOpacity(scene.sources.length).toFixed(2);
  const edges = makeSvg("g", { stroke: css(scene.shades.edge), "stroke-opacity": opacity });
  for (let e = 0; e < scene.sources.length; ++e) {
    const [source, target] = [scene.sources[e], scene.targets[e]];
    const x1 = round(screenX(scene, scene.x[source]));
    const y1 = round(screenY(scene, scene.y[source]));
    if (source === target) {
      const r = 3 + scene.radius[source] * growth(scene);
      const cy = round(screenY(scene, scene.y[source]) - r);
      edges.append(makeSvg("circle", { cx: x1, cy, r: round(r), fill: "none" }));
      continue;
    }
    const x2 = round(screenX(scene, scene.x[target]));
    const y2 = round(screenY(scene, scene.y[target]));
    edges.append(makeSvg("line", { x1, y1, x2, y2 }));
  }
  return edges;
}

function svgVertices(scene: Scene, facts: Facts): SVGElement {
  const ground = css(scene.shades.ground);
  const vertices = makeSvg("g", { stroke: ground, "stroke-width": 1 });
  for (let v = 0; v < scene.n; ++v) {
    const circle = makeSvg("circle", {
      cx: round(screenX(scene, scene.x[v])),
      cy: round(screenY(scene, scene.y[v])),
      r: round(scene.radius[v] * growth(scene)),
      fill: css(colorOf(scene, v)),
    });
    circle.append(makeSvg("title", {}, facts.name(v)));
    vertices.append(circle);
  }
  return vertices;
}

function svgAgents(scene: Scene, replay: Replay, marks: Marks): SVGElement {
  const agents = makeSvg("g", { stroke: css(scene.shades.ink) });
  for (const agent of marks.agents) {
    const at = replay.positions[agent];
    const x = screenX(scene, scene.x[at]);
    const y = screenY(scene, scene.y[at]);
    const points = [[x, y - 7], [x + 7, y], [x, y + 7], [x - 7, y]];
    const text = points.map(([px, py]) => `${round(px)},${round(py)}`).join(" ");
    agents.append(makeSvg("polygon", { points: text, fill: css(marks.colors[agent % marks.colors.length]) }));
  }
  return agents;
}

function svgLabels(scene: Scene, facts: Facts): SVGElement {
  const group = makeSvg("g", {
    "font-family": "system-ui, sans-serif",
    "font-size": 12,
    "dominant-baseline": "central",
    fill: css(scene.shades.ink),
    stroke: css(scene.shades.ground),
    "stroke-width": 3,
    "stroke-linejoin": "round",
    "paint-order": "stroke",
  });
  const c = document.createElement("canvas").getContext("2d");
  if (!c) return group;
  const labels = new Labels(scene, (v) => facts.name(v));
  labels.sort();
  for (const label of labels.placed(c, scene.marked >= 0 ? [scene.marked] : [])) {
    group.append(makeSvg("text", { x: round(label.x), y: round(label.y) }, label.text));
  }
  return group;
}

const BAR = { left: 14, width: 180, height: 9, pieces: 64 };

function svgLegend({ scene, legend }: Picture): SVGElement {
  const group = makeSvg("g", {
    "font-family": "system-ui, sans-serif",
    "font-size": 12,
    fill: css(scene.shades.ink),
  });
  const bottom = scene.height - 12;
  if (!legend) return group;
  legend.kinds.forEach((kind, i) => {
    const y = bottom - 16 * (legend.kinds.length - 1 - i);
    group.append(makeSvg("rect", { x: BAR.left, y: y - 9, width: 10, height: 10, fill: css(kind.color) }));
    group.append(makeSvg("text", { x: BAR.left + 16, y }, kind.text));
  });
  if (!legend.scale) return group;
  const { colors } = legend.scale;
  const width = BAR.width / BAR.pieces;
  for (let i = 0; i < BAR.pieces; ++i) {
    const color = colors[Math.floor((i * colors.length) / BAR.pieces)];
    const x = round(BAR.left + i * width);
    group.append(makeSvg("rect", { x, y: bottom - 26, width: round(width + 0.3), height: BAR.height, fill: css(color) }));
  }
  group.append(makeSvg("text", { x: BAR.left, y: bottom - 34 }, legend.title));
  const texts = tickTexts(legend);
  texts.forEach((text, i) => {
    const at = texts.length > 1 ? i / (texts.length - 1) : 0;
    const anchor = at === 0 ? "start" : at === 1 ? "end" : "middle";
    group.append(makeSvg("text", { x: BAR.left + BAR.width * at, y: bottom, "text-anchor": anchor }, text));
  });
  return group;
}

/** A field that no spreadsheet takes for a formula. */
export function csvField(text: string): string {
  const safe = /^[=+\-@\t\r]/.test(text) ? `'${text}` : text;
  return /[",\r\n]/.test(safe) ? `"${safe.replaceAll('"', '""')}"` : safe;
}

/** All vertices with their visits up to the shown step. */
export function tableCsv(facts: Facts): string {
  const { replay, n } = facts;
  const lines = [replay ? "index,name,degree,visits,latest" : "index,name,degree"];
  for (let v = 0; v < n; ++v) {
    const parts = [String(v), csvField(facts.rawName(v)), String(facts.degree[v])];
    if (replay) parts.push(String(replay.arrivals[v]), String(replay.latest[v]));
    lines.push(parts.join(","));
  }
  return `${lines.join("\n")}\n`;
}

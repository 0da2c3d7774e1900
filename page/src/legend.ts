import { css } from "./color.ts";
import type { Color } from "./color.ts";
import { make } from "./dom.ts";
import type { Legend } from "./looks.ts";
import { number } from "./text.ts";

function dot(color: Color): HTMLCanvasElement {
  const canvas = make("canvas", { class: "dot", "aria-hidden": "true" });
  canvas.width = canvas.height = 22;
  const c = canvas.getContext("2d");
  if (!c) return canvas;
  c.fillStyle = css(color);
  c.arc(11, 11, 10, 0, 2 * Math.PI);
  c.fill();
  return canvas;
}

function bar(colors: Uint32Array): HTMLCanvasElement {
  const canvas = make("canvas", { "aria-hidden": "true" });
  canvas.width = colors.length;
  canvas.height = 1;
  const c = canvas.getContext("2d");
  colors.forEach((color, i) => {
    if (!c) return;
    c.fillStyle = css(color);
    c.fillRect(i, 0, 1, 1);
  });
  return canvas;
}

export function tickTexts(legend: Legend): string[] {
  if (!legend.scale) return [];
  return legend.scale.ticks.length > 0 ? legend.scale.ticks.map(number) : ["lowest", "highest"];
}

/** What colours mean, in colours and in words. */
export function showLegend(box: HTMLElement, legend: Legend | null): void {
  box.replaceChildren();
  if (!legend) return;
  box.append(make("p", { class: "of" }, legend.title));
  if (legend.scale) {
    const ticks = tickTexts(legend).map((text) => make("span", {}, text));
    box.append(bar(legend.scale.colors), make("div", { class: "ticks" }, ...ticks));
  }
  if (legend.kinds.length > 0) {
    box.append(make("ul", {}, ...legend.kinds.map((kind) => make("li", {}, dot(kind.color), kind.text))));
  }
  if (legend.none) box.append(make("p", { class: "one" }, dot(legend.none.color), legend.none.text));
}

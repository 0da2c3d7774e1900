import { makeSvg } from "./dom.ts";
import type { Course } from "./replay.ts";
import { counted, percent, whole } from "./text.ts";

const WIDTH = 1000;
const HEIGHT = 100;
const MOST_POINTS = 500;

/** The share of vertices reached, over the steps, above the slider. */
export class Curve {
  private readonly area = makeSvg("path", { class: "area" });
  private readonly line = makeSvg("path", { class: "line" });
  private readonly now = makeSvg("line", { class: "now", y1: 0, y2: HEIGHT });
  private drawnTo = -1;

  constructor(
    private readonly svg: SVGSVGElement,
    private readonly course: Course,
    target: number,
  ) {
    svg.setAttribute("viewBox", `0 0 ${WIDTH} ${HEIGHT}`);
    svg.append(this.area, this.line);
    if (target > 0) {
      const y = HEIGHT * (1 - target);
      svg.append(makeSvg("line", { class: "goal", x1: 0, x2: WIDTH, y1: y, y2: y }));
    }
    svg.append(this.now);
  }

  /** The curve as far as the walk is known, and a line at the step. */
  draw(step: number): void {
    const x = this.x(step).toFixed(2);
    this.now.setAttribute("x1", x);
    this.now.setAttribute("x2", x);
    const { frontier } = this.course;
    // While much is still unknown the curve is drawn a hundred times at most.
    const isDue = frontier - this.drawnTo >= this.course.steps / 100 || frontier === this.course.steps;
    if (frontier === this.drawnTo || !isDue) return;
    this.drawnTo = frontier;
    this.redraw();
  }

  private x(step: number): number {
    return this.course.steps > 0 ? (WIDTH * step) / this.course.steps : 0;
  }

  private redraw(): void {
    const { course } = this;
    const points = course.reachedAt.length;
    const every = Math.max(1, Math.ceil(points / MOST_POINTS));
    const parts = [`M0 ${HEIGHT}`];
    for (let i = every - 1; i < points; i += every) {
      const y = HEIGHT * (1 - (i + 1) / Math.max(1, course.n));
      parts.push(`H${this.x(course.reachedAt[i]).toFixed(2)}V${y.toFixed(2)}`);
    }
    const end = this.x(course.frontier).toFixed(2);
    const last = HEIGHT * (1 - points / Math.max(1, course.n));
    parts.push(`V${last.toFixed(2)}H${end}`);
    const path = parts.join("");
    this.line.setAttribute("d", path);
    this.area.setAttribute("d", `${path}V${HEIGHT}Z`);
    const share = points / Math.max(1, course.n);
    this.svg.setAttribute(
      "aria-label",
      `Coverage: ${counted(points, "vertex", "vertices")} of ${whole(course.n)} ` +
        `reached by step ${whole(course.frontier)}, ${percent(share)}`,
    );
  }
}

import { CanvasView } from "./canvas2d.ts";
import { block, byId } from "./dom.ts";
import { graphicsHere, softwareOf } from "./graphics.ts";
import { Labels } from "./labels.ts";
import { drawAgents } from "./overlay.ts";
import type { Marks } from "./overlay.ts";
import type { Replay } from "./replay.ts";
import { EDGES_WHILE_MOVING, fit, isHome } from "./scene.ts";
import type { Box, Detail, Scene, View } from "./scene.ts";
import type { Settings } from "./settings.ts";
import { SigmaView } from "./sigma_view.ts";

/** After the camera rested for so long everything is drawn again. */
const REST_MS = 150;
/** Three pictures that take longer than this say that WebGL is no help here. */
const SLOW_PICTURES_MS = 150;
const PICTURES_TIMED = 3;

/** The layers of the picture, and when each is drawn. */
export class Stage {
  readonly picture = block("picture");
  readonly labels: Labels;
  private view: View;
  private readonly base = byId("base", HTMLCanvasElement);
  private readonly names = byId("names", HTMLCanvasElement);
  private readonly agents = byId("agents", HTMLCanvasElement);
  private readonly notice = block("notice");
  private readonly corners = [block("legend"), block("zoom")];
  private density = 1;
  private moved = false;
  private stale = true;
  private restTimer = 0;
  private isAsleep = false;
  private isTimed = false;
  /** What the latest picture of the base took, in milliseconds. */
  cost = 0;
  /** How many times the base was drawn. */
  drawn = 0;

  constructor(
    readonly scene: Scene,
    nameOf: (vertex: number) => string,
    private readonly replay: Replay | null,
    private readonly marks: () => Marks,
    private readonly wanted: Settings["view"],
    private readonly request: () => void,
  ) {
    this.labels = new Labels(scene, nameOf);
    this.view = this.choose();
    new ResizeObserver(() => {
      this.resize();
    }).observe(this.picture);
    // A browser has few WebGL contexts for all pages of a notebook: one out of sight gives its back.
    new IntersectionObserver((entries) => {
      this.sleep(!entries.some((entry) => entry.isIntersecting));
    }).observe(this.picture);
  }

  get kind(): View["kind"] {
    return this.view.kind;
  }

  /** The camera moved. */
  move(): void {
    this.moved = true;
    this.request();
  }

  /** Colours or sizes changed. */
  restyle(): void {
    this.stale = true;
    this.request();
  }

  /** The legend is another, or smaller or larger than it was. */
  refit(): void {
    const { scene } = this;
    const covers = this.covers();
    if (scene.width === 0 || JSON.stringify(covers) === JSON.stringify(scene.covers)) return;
    scene.covers = covers;
    if (!isHome(scene)) return;
    fit(scene);
    this.restyle();
  }

  /** Draws what is due; agents always. */
  frame(always: readonly number[]): void {
    if (this.isAsleep || this.scene.width === 0) return;
    this.timePictures();
    if (this.stale) this.paint("still", always);
    else if (this.moved) this.paint("moving", always);
    const c = this.agents.getContext("2d");
    if (c && this.replay) drawAgents(c, this.density, this.scene, this.replay, this.marks());
  }

  private paint(detail: Detail, always: readonly number[]): void {
    const begun = performance.now();
    this.drawBase(detail);
    const c = this.names.getContext("2d");
    if (c) this.labels.draw(c, this.density, always);
    this.cost = performance.now() - begun;
    ++this.drawn;
    this.moved = false;
    this.stale = false;
    const isWhole = detail === "still" || this.scene.sources.length <= EDGES_WHILE_MOVING;
    window.clearTimeout(this.restTimer);
    if (isWhole) return;
    this.restTimer = window.setTimeout(() => {
      this.restyle();
    }, REST_MS);
  }

  private drawBase(detail: Detail): void {
    try {
      this.view.draw(this.scene, detail);
    } catch (error) {
      if (this.view.kind === "canvas") throw error;
      this.fallBack("Canvas view: WebGL failed here");
      this.view.draw(this.scene, "still");
    }
  }

  private resize(): void {
    const { clientWidth: width, clientHeight: height } = this.picture;
    if (width === 0 || height === 0) return;
    const { scene } = this;
    const wasFitted = scene.width === 0 || isHome(scene);
    const before = scene.fitted;
    const { x, y, scale } = scene.camera;
    scene.width = width;
    scene.height = height;
    this.density = Math.min(3, window.devicePixelRatio || 1);
    scene.covers = this.covers();
    fit(scene);
    if (!wasFitted) {
      scene.camera.x = x;
      scene.camera.y = y;
      scene.camera.scale = (scale * scene.fitted) / before;
    }
    this.view.resize(width, height, this.density);
    for (const canvas of [this.names, this.agents]) {
      canvas.width = Math.round(width * this.density);
      canvas.height = Math.round(height * this.density);
    }
    this.restyle();
  }

  private covers(): Box[] {
    const { left, top } = this.picture.getBoundingClientRect();
    return this.corners
      .map((corner) => corner.getBoundingClientRect())
      .filter((box) => box.width > 0)
      .map((box) => ({ left: box.left - left, top: box.top - top, right: box.right - left, bottom: box.bottom - top }));
  }

  private choose(): View {
    if (this.wanted === "canvas") return new CanvasView(this.base);
    if (this.wanted === "webgl") return this.openSigma();
    const graphics = graphicsHere();
    if (graphics.kind === "hardware") return this.openSigma();
    this.tell(
      graphics.kind === "none"
        ? "Canvas view: there is no WebGL here"
        : `Canvas view: WebGL is only software here (${softwareOf(graphics.name)})`,
    );
    return new CanvasView(this.base);
  }

  private openSigma(): View {
    const sigma = new SigmaView(block("webgl"), () => {
      this.fallBack("Canvas view: the browser took WebGL away");
    });
    this.base.hidden = true;
    return sigma;
  }

  /** Draws some pictures and leaves WebGL where they take too long. */
  private timePictures(): void {
    if (this.isTimed || this.wanted !== "auto" || this.view.kind !== "webgl") return;
    this.isTimed = true;
    this.drawBase("still");
    const begun = performance.now();
    for (let i = 0; i < PICTURES_TIMED; ++i) this.drawBase("still");
    if (performance.now() - begun > SLOW_PICTURES_MS) this.fallBack("Canvas view: WebGL is slow here");
  }

  private fallBack(why: string): void {
    if (this.view.kind === "canvas") return;
    this.view.dispose();
    this.base.hidden = false;
    this.view = new CanvasView(this.base);
    this.view.resize(this.scene.width, this.scene.height, this.density);
    this.tell(why);
    this.restyle();
  }

  private tell(text: string): void {
    this.notice.textContent = text;
    this.notice.hidden = false;
  }

  private sleep(isOut: boolean): void {
    if (isOut === this.isAsleep) return;
    this.isAsleep = isOut;
    if (isOut && this.view.kind === "webgl") this.view.dispose();
    if (!isOut) this.restyle();
  }
}

import { Check, MOVES_UNASKED } from "./check.ts";
import type { Finding } from "./check.ts";
import { MOST_KINDS, kindsOf, shadesOf } from "./color.ts";
import type { Theme } from "./color.ts";
import { Curve } from "./curve.ts";
import type { Data } from "./data.ts";
import { block, button, byId, say } from "./dom.ts";
import type { Picture } from "./export.ts";
import { Facts } from "./facts.ts";
import { listen } from "./gestures.ts";
import { showLegend } from "./legend.ts";
import { mark, measure, paint, paletteOf } from "./looks.ts";
import type { Legend } from "./looks.ts";
import type { Marks } from "./overlay.ts";
import { Player } from "./player.ts";
import { Course, Replay } from "./replay.ts";
import { Picker, growth, pan, screenX, screenY } from "./scene.ts";
import type { Scene } from "./scene.ts";
import { BY_ITSELF, addressOf, agentsOf, defaults, offersOf, settingsFrom } from "./settings.ts";
import type { Offers, Settings } from "./settings.ts";
import { Stage } from "./stage.ts";
import { Table } from "./table.ts";
import { counted, shown, whole } from "./text.ts";
import { Tip } from "./tip.ts";

/** Colours of a walk that goes on are renewed this often, and never take more than a fifth of the time. */
const RESTYLE_MS = 250;
const ADDRESS_MS = 300;

/** What a change asks to be drawn anew. */
export type Change = "colors" | "sizes" | "agents" | "vertex" | "step" | "theme";

/** The page: what is known, what was chosen, and what draws it. */
export class App {
  readonly facts: Facts;
  readonly offers: Offers;
  readonly base: Settings;
  settings: Settings;
  readonly replay: Replay | null;
  readonly player: Player | null;
  readonly stage: Stage;
  readonly scene: Scene;
  legend: Legend | null = null;
  private readonly course: Course | null;
  private readonly curve: Curve | null;
  private readonly table: Table;
  private readonly tip: Tip;
  private readonly live = block("live");
  private readonly reduced = window.matchMedia("(prefers-reduced-motion: reduce)");
  private readonly dark = window.matchMedia("(prefers-color-scheme: dark)");
  private shownAgents: readonly number[] = [];
  private frameAsked = false;
  private restyledAt = -Infinity;
  private restyledStep = -1;
  private looksChanged = true;
  private addressTimer = 0;
  private readonly watchers: (() => void)[] = [];

  constructor(readonly data: Data) {
    this.offers = offersOf(data, MOST_KINDS);
    this.base = defaults(data, this.offers);
    this.settings = settingsFrom(window.location.hash, this.base, data, this.offers);
    const { walk, meta } = data;
    this.course = walk && new Course(meta.n, walk.starts, walk.steps, walk.mover);
    this.replay = this.course && new Replay(this.course);
    this.facts = new Facts(data, this.replay);
    this.scene = sceneOf(data, this.theme);
    const glides = (): boolean => !this.reduced.matches;
    this.player = this.replay && new Player(this.replay, this.settings, glides);
    this.applyTheme();
    block("app").hidden = false;
    this.tip = new Tip(block("tip"), this.facts);
    const nameOf = (v: number): string => this.facts.name(v);
    const marks = (): Marks => this.marks();
    const ask = (): void => {
      this.ask();
    };
    this.stage = new Stage(this.scene, nameOf, this.replay, marks, this.settings.view, ask);
    const svg = byId("curve", SVGSVGElement);
    this.curve = this.course && walk ? new Curve(svg, this.course, walk.target) : null;
    this.table = new Table(
      block("table-scroll"),
      byId("rows", HTMLTableElement),
      block("table-head"),
      block("table-body"),
      this.facts,
      (v) => {
        this.chooseVertex(v, false);
      },
      (v) => v === this.settings.vertex,
    );
    this.begin();
    this.shownAgents = agentsOf(this.settings.agents, this.course?.agents ?? 0) ?? [];
    this.measure();
    mark(this.scene, this.settings.vertex);
    this.listen();
    this.startCheck();
  }

  get theme(): Theme {
    if (this.settings.theme !== "auto") return this.settings.theme;
    return this.dark.matches ? "dark" : "light";
  }

  /** Called after every frame's work. */
  watch(watcher: () => void): void {
    this.watchers.push(watcher);
  }

  announce(text: string): void {
    say(this.live, text);
  }

  /** After settings were changed. */
  changed(change: Change): void {
    if (change === "sizes") this.measure();
    if (change === "vertex") mark(this.scene, this.settings.vertex);
    if (change === "theme") this.applyTheme();
    if (change === "agents") {
      this.shownAgents = agentsOf(this.settings.agents, this.course?.agents ?? 0) ?? [];
    } else {
      this.looksChanged = true;
    }
    this.rememberSoon();
    this.ask();
  }

  chooseVertex(v: number, isCentred: boolean): void {
    this.settings.vertex = v;
    if (isCentred && v >= 0) this.centre(v);
    if (v >= 0) {
      const degree = whole(this.facts.degree[v]);
      this.announce(`${this.facts.name(v)}, ${this.facts.title("degree")} ${degree}`);
    }
    this.changed("vertex");
  }

  centre(v: number): void {
    const { camera, fitted, x, y } = this.scene;
    camera.x = x[v];
    camera.y = y[v];
    camera.scale = Math.max(camera.scale, fitted * 1.6);
    this.stage.move();
  }

  seek(step: number): void {
    if (!this.player) return;
    this.player.pause();
    this.player.seek(step);
    this.changed("step");
  }

  playOrPause(): void {
    if (!this.player) return;
    if (this.player.isPlaying) this.player.pause();
    else this.player.play(performance.now());
    this.changed("step");
  }

  showTable(isTable: boolean): void {
    this.settings.table = isTable;
    block("table").hidden = !isTable;
    block("stage").hidden = isTable;
    this.changed("step");
  }

  picture(): Picture {
    const { scene, facts, replay, legend } = this;
    return { scene, facts, replay, marks: this.marks(), legend, caption: this.caption() };
  }

  /** Asks for one more frame. */
  ask(): void {
    if (this.frameAsked) return;
    this.frameAsked = true;
    requestAnimationFrame((now) => {
      this.frameAsked = false;
      this.frame(now);
    });
  }

  address(): string {
    const hash = addressOf(this.settings, this.base);
    return `${window.location.href.replace(/#.*$/, "")}${hash === "" ? "" : `#${hash}`}`;
  }

  // A walk plays by itself, unless the address names a step or the reader wants no motion.
  private begin(): void {
    this.player?.seek(this.settings.step);
    if (this.settings.step === BY_ITSELF && !this.reduced.matches) {
      this.player?.play(performance.now());
    }
  }

  private caption(): string {
    const { title, n, m } = this.data.meta;
    const step = this.replay ? `, step ${whole(this.replay.step)}` : "";
    return `${shown(title) || "Network"}: ${counted(n, "vertex", "vertices")}, ${counted(m, "edge", "edges")}${step}`;
  }

  private marks(): Marks {
    return {
      agents: this.shownAgents,
      trail: this.settings.trail,
      followed: this.settings.follow,
      colors: kindsOf(this.theme),
      progress: this.player?.progress ?? 1,
    };
  }

  private frame(now: number): void {
    const goesOn = this.player?.tick(now) ?? false;
    this.follow();
    this.restyle(now, goesOn);
    const { vertex } = this.settings;
    if (!this.settings.table) this.stage.frame(vertex >= 0 ? [vertex] : []);
    this.settings.step = this.player?.aim ?? 0;
    this.curve?.draw(this.replay?.step ?? 0);
    for (const watcher of this.watchers) watcher();
    if (goesOn) this.ask();
    else this.rememberSoon();
  }

  // While a walk goes on the network is coloured anew now and then; else at once.
  private restyle(now: number, goesOn: boolean): void {
    const step = this.replay?.step ?? 0;
    const hasWalked = step !== this.restyledStep;
    if (!this.looksChanged && !hasWalked) return;
    const pause = Math.max(RESTYLE_MS, 4 * this.stage.cost);
    if (!this.looksChanged && goesOn && now - this.restyledAt < pause) return;
    this.restyledAt = now;
    this.restyledStep = step;
    this.looksChanged = false;
    if (this.settings.size === "visits") this.measure();
    this.legend = paint(this.scene, this.facts, this.settings, this.theme);
    showLegend(block("legend"), this.legend);
    this.stage.refit();
    if (this.settings.table) this.table.refresh();
    this.stage.restyle();
  }

  private measure(): void {
    measure(this.scene, this.facts, this.settings);
    this.stage.labels.sort();
  }

  private follow(): void {
    const { follow } = this.settings;
    if (!this.replay || follow < 0) return;
    const { scene, replay } = this;
    const at = replay.positions[follow];
    const dx = screenX(scene, scene.x[at]) - scene.width / 2;
    const dy = screenY(scene, scene.y[at]) - scene.height / 2;
    const isFar = Math.hypot(dx, dy) > Math.min(scene.width, scene.height) / 6;
    if (!isFar) return;
    const share = this.reduced.matches ? 1 : 0.12;
    pan(scene, -dx * share, -dy * share);
    this.stage.move();
  }

  private applyTheme(): void {
    document.documentElement.dataset["theme"] = this.theme;
    this.scene.shades = shadesOf(this.theme);
    this.scene.palette = paletteOf(this.theme);
    this.looksChanged = true;
  }

  private listen(): void {
    const picker = new Picker(this.scene);
    listen(this.stage.picture, this.scene, picker, {
      moved: () => {
        this.stage.move();
      },
      hover: (v, x, y) => {
        this.tip.show(v, x, y, growth(this.scene));
      },
      press: (v) => {
        this.chooseVertex(v, false);
      },
    });
    this.dark.addEventListener("change", () => {
      this.changed("theme");
    });
    window.addEventListener("hashchange", () => {
      this.takeAddress();
    });
  }

  // Somebody wrote another address, or went back to one.
  private takeAddress(): void {
    if (window.location.hash.replace(/^#/, "") === addressOf(this.settings, this.base)) return;
    const given = settingsFrom(window.location.hash, this.base, this.data, this.offers);
    Object.assign(this.settings, given);
    this.player?.pause();
    this.player?.seek(given.step);
    if (given.vertex >= 0) this.centre(given.vertex);
    this.changed("theme");
    this.changed("sizes");
    this.changed("agents");
    this.changed("vertex");
    this.showTable(given.table);
  }

  private rememberSoon(): void {
    window.clearTimeout(this.addressTimer);
    this.addressTimer = window.setTimeout(() => {
      if (this.player?.isPlaying) return;
      try {
        history.replaceState(null, "", this.address());
      } catch {
        // A notebook's frame has no address to write to.
      }
    }, ADDRESS_MS);
  }

  private startCheck(): void {
    const { walk } = this.data;
    if (!walk || !this.course) return;
    const box = block("check");
    box.hidden = false;
    const check = new Check(this.course, walk);
    const run = button("check-run");
    const go = (): void => {
      const finding = check.advance();
      this.ask();
      if (finding) this.tellFinding(finding, walk.isRecorded);
      else {
        say(block("check-text"), `recomputing: ${Math.floor(100 * check.share)} %`);
        setTimeout(go, 0);
      }
    };
    if (this.course.moves <= MOVES_UNASKED) {
      say(block("check-text"), "recomputing");
      setTimeout(go, 0);
      return;
    }
    say(block("check-text"), `${whole(this.course.moves)} moves, not recomputed yet`);
    run.hidden = false;
    run.addEventListener("click", () => {
      run.hidden = true;
      go();
    });
  }

  private tellFinding(finding: Finding, isRecorded: boolean): void {
    const did = isRecorded ? "replayed in your browser" : "recomputed in your browser";
    const box = block("check");
    box.classList.add(finding.agrees ? "good" : "bad");
    say(block("check-mark"), finding.agrees ? "✓" : "✗");
    if (finding.agrees) say(block("check-text"), `${did}: agrees`);
    else if (finding.vertex < 0) say(block("check-text"), `${did}: differs in where agents end`);
    else {
      const { vertex, here, there } = finding;
      const name = this.facts.name(vertex);
      const counts = `${counted(here, "visit", "visits")} here, ${whole(there)} in the file`;
      say(block("check-text"), `${did}: differs, first at ${name} (vertex ${vertex}): ${counts}`);
    }
  }
}

function sceneOf(data: Data, theme: Theme): Scene {
  const { n } = data.meta;
  return {
    n,
    x: data.x,
    y: data.y.map((y) => 1 - y),
    radius: new Float32Array(n),
    tint: new Uint16Array(n),
    palette: paletteOf(theme),
    faded: new Uint8Array(n),
    hasFaded: false,
    sources: data.sources,
    targets: data.targets,
    lists: data.lists,
    directed: data.meta.directed,
    marked: -1,
    camera: { x: 0.5, y: 0.5, scale: 1 },
    fitted: 1,
    home: { x: 0.5, y: 0.5 },
    covers: [],
    width: 0,
    height: 0,
    shades: shadesOf(theme),
  };
}

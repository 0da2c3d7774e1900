import type { App, Change } from "./app.ts";
import { block, button, byId, input, make, pairs, say } from "./dom.ts";
import { MOST_SVG_ELEMENTS, fileName, picturePng, pictureSvg, save, svgElements, tableCsv } from "./export.ts";
import { RecordMover } from "./recorded.ts";
import { fit, pan, zoomAt } from "./scene.ts";
import { MOST_SPEED, agentsOf } from "./settings.ts";
import type { ScaleKind, Settings } from "./settings.ts";
import { Search } from "./search.ts";
import { counted, number, percent, shown, shownWhole, whole } from "./text.ts";
import { rowsOf } from "./tip.ts";

const MOST_REMEMBERED = 60;
const NUDGE = 60;
const CLOSER = 1.35;

const speedSteps = 120;
const speedOf = (place: number): number => MOST_SPEED ** (place / speedSteps);
const placeOf = (speed: number): number =>
  Math.round((speedSteps * Math.log(speed)) / Math.log(MOST_SPEED));

function onClick(id: string, act: () => void): void {
  button(id).addEventListener("click", act);
}

export function bindHead(app: App): void {
  const { meta } = app.data;
  say(block("title"), shown(meta.title) || "Network");
  const facts = [
    counted(meta.n, "vertex", "vertices"),
    counted(meta.m, "edge", "edges"),
    meta.directed ? "directed" : "undirected",
  ];
  if (meta.edgeWeighted) facts.push("weighted");
  if (app.data.walk) facts.push(counted(app.data.walk.starts.length, "agent", "agents"));
  say(block("facts"), facts.join(" · "));
  say(block("call"), shownWhole(meta.call));
  say(block("made"), `Made by VEQ ${shownWhole(meta.version)}. This file needs no network.`);
  onClick("show-picture", () => {
    app.showTable(false);
  });
  onClick("show-table", () => {
    app.showTable(true);
  });
  const themes = { auto: "dark", dark: "light", light: "auto" } as const;
  onClick("theme", () => {
    app.settings.theme = themes[app.settings.theme];
    app.changed("theme");
  });
  const says = { auto: "as the system has them", dark: "dark", light: "light" };
  app.watch(() => {
    button("show-picture").setAttribute("aria-pressed", String(!app.settings.table));
    button("show-table").setAttribute("aria-pressed", String(app.settings.table));
    button("theme").setAttribute("aria-label", `Colours: ${says[app.settings.theme]}`);
  });
}

export function bindWalk(app: App): void {
  const { player, replay, settings } = app;
  const { walk, meta } = app.data;
  if (!player || !replay || !walk) return;
  block("walk").hidden = false;
  const slider = input("slider");
  slider.max = String(walk.steps);
  slider.addEventListener("input", () => {
    app.seek(Number(slider.value));
  });
  onClick("to-start", () => {
    app.seek(0);
  });
  onClick("back", () => {
    app.seek(player.aim - 1);
  });
  onClick("play", () => {
    app.playOrPause();
  });
  onClick("forward", () => {
    app.seek(player.aim + 1);
  });
  onClick("to-end", () => {
    app.seek(walk.steps);
  });
  const speed = input("speed");
  speed.addEventListener("input", () => {
    settings.speed = speedOf(Number(speed.value));
    player.restartMeasure(performance.now());
    app.changed("agents");
  });
  const loop = input("loop");
  loop.addEventListener("change", () => {
    settings.loop = loop.checked;
    app.changed("agents");
  });
  const facts = meta.walk;
  const substream = facts?.substream === null ? "" : `, substream ${facts?.substream}`;
  say(block("seed"), facts?.seed === null || !facts ? "unknown" : `${facts.seed}${substream}`);
  say(block("step-all"), `of ${whole(walk.steps)}`);
  keepRoom("step-now", whole(walk.steps));
  keepRoom("moves-now", whole(walk.steps * walk.starts.length));
  keepRoom("reached-now", whole(meta.n));
  let announced = -1;
  app.watch(() => {
    // The slider stays where a hand left it while the walk is on its way there.
    if (Number(slider.value) !== player.aim) slider.value = String(player.aim);
    slider.setAttribute("aria-valuetext", `step ${whole(replay.step)} of ${whole(walk.steps)}`);
    speed.value = String(placeOf(settings.speed));
    loop.checked = settings.loop;
    say(block("speed-text"), speedText(settings.speed, player.isPlaying ? player.reached : 0));
    speed.setAttribute("aria-valuetext", speedText(settings.speed, 0));
    showNumbers(app);
    const isMoving = player.isPlaying || player.isSeeking;
    if (!isMoving && announced !== replay.step) {
      if (announced >= 0) app.announce(`step ${whole(replay.step)}`);
      announced = replay.step;
    }
  });
}

/** Lets a number grow to its longest without moving what is beside it. */
function keepRoom(id: string, longest: string): void {
  block(id).style.minWidth = `${longest.length}ch`;
}

function speedText(speed: number, reached: number): string {
  const rounded = speed < 100 ? Math.round(speed * 10) / 10 : Number(speed.toPrecision(2));
  const text = `${number(rounded)} steps/s`;
  const isSlower = reached > 0 && reached < 0.9 * speed;
  return isSlower ? `${text}, reaches ${whole(Number(reached.toPrecision(2)))}` : text;
}

const PLAY_SIGN = "M4 2l10 6-10 6z";
const PAUSE_SIGN = "M4 2v12M12 2v12M5 2v12M11 2v12";

function showNumbers({ replay, player, data }: App): void {
  if (!replay || !player) return;
  const { step, course } = replay;
  const reached = course.reachedBy(step);
  say(block("step-now"), whole(step));
  say(block("moves-now"), whole(step * course.agents));
  say(block("reached-now"), whole(reached));
  say(block("reached-share"), data.meta.n > 0 ? percent(reached / data.meta.n) : "");
  button("play").setAttribute("aria-label", player.isPlaying ? "Pause" : "Play");
  byId("play-sign", SVGPathElement).setAttribute("d", player.isPlaying ? PAUSE_SIGN : PLAY_SIGN);
  button("to-start").disabled = button("back").disabled = player.aim === 0;
  button("to-end").disabled = button("forward").disabled = player.aim === course.steps;
}

export function bindLooks(app: App): void {
  const { settings } = app;
  const fill = (id: "color" | "size", sources: readonly string[], change: Change): void => {
    const select = byId(id, HTMLSelectElement);
    for (const source of sources) select.append(make("option", { value: source }, app.facts.title(source)));
    select.addEventListener("change", () => {
      settings[id] = select.value;
      if (id === "color") settings.low = settings.high = null;
      app.changed(change);
    });
    app.watch(() => {
      select.value = settings[id];
    });
  };
  fill("color", app.offers.colors, "colors");
  fill("size", app.offers.sizes, "sizes");
  const scales = Array.from(block("scales").querySelectorAll("button"));
  for (const press of scales) {
    press.addEventListener("click", () => {
      settings.scale = press.dataset["scale"] as ScaleKind;
      app.changed("colors");
    });
  }
  const ends = { low: input("range-low"), high: input("range-high") };
  for (const end of ["low", "high"] as const) {
    ends[end].addEventListener("change", () => {
      const value = ends[end].valueAsNumber;
      settings[end] = Number.isFinite(value) ? value : null;
      app.changed("colors");
    });
  }
  onClick("range-auto", () => {
    settings.low = settings.high = null;
    app.changed("colors");
  });
  app.watch(() => {
    const isNumber = app.facts.numbers(settings.color) !== null;
    block("scales").hidden = !isNumber;
    block("range").hidden = !isNumber || settings.scale === "rank";
    for (const press of scales) {
      press.setAttribute("aria-pressed", String(press.dataset["scale"] === settings.scale));
    }
    const ticks = app.legend?.scale?.ticks ?? [];
    const usual = { low: ticks[0], high: ticks[ticks.length - 1] };
    for (const end of ["low", "high"] as const) showEnd(ends[end], settings[end], usual[end]);
  });
}

function showEnd(field: HTMLInputElement, value: number | null, usual: number | undefined): void {
  if (document.activeElement === field) return;
  const text = value === null ? "" : String(value);
  if (field.value !== text) field.value = text;
  field.placeholder = usual === undefined ? "" : number(usual);
}

export function bindAgents(app: App): void {
  const { settings, replay } = app;
  if (!replay) return;
  const agents = replay.course.agents;
  block("agents-box").hidden = false;
  const list = input("agents-shown");
  list.addEventListener("change", () => {
    const isFine = agentsOf(list.value, agents) !== null;
    list.setAttribute("aria-invalid", String(!isFine));
    const help = `all, none, or numbers below ${whole(agents)}: 0, 3-5`;
    say(block("agents-help"), isFine ? "all, none, or numbers: 0, 3-5" : `Not understood. Give ${help}`);
    if (!isFine) return;
    settings.agents = list.value.trim();
    app.changed("agents");
  });
  const trail = input("trail");
  trail.max = String(Math.min(64, replay.course.trailLength));
  trail.addEventListener("input", () => {
    settings.trail = Number(trail.value);
    app.changed("agents");
  });
  const follow = input("follow");
  follow.max = String(agents - 1);
  follow.addEventListener("change", () => {
    const value = follow.valueAsNumber;
    settings.follow = Number.isInteger(value) && value >= 0 && value < agents ? value : -1;
    app.changed("agents");
  });
  app.watch(() => {
    if (document.activeElement !== list && list.value !== settings.agents) {
      list.value = settings.agents;
    }
    trail.value = String(settings.trail);
    say(block("trail-text"), String(settings.trail));
    if (document.activeElement !== follow) {
      follow.value = settings.follow < 0 ? "" : String(settings.follow);
    }
    showFollowed(app, settings);
  });
}

function showFollowed({ facts, replay }: App, { follow }: Settings): void {
  const at = block("agent-at");
  at.hidden = follow < 0;
  const box = block("memory");
  const mover = replay?.mover;
  box.hidden = follow < 0 || !(mover instanceof RecordMover);
  if (!replay || follow < 0) return;
  say(at, `Agent ${follow} is at ${facts.name(replay.positions[follow])}.`);
  if (!(mover instanceof RecordMover)) return;
  const names = mover.rings.of(follow).map((v) => facts.name(v));
  const cut = names.slice(-MOST_REMEMBERED).reverse();
  const more = names.length - cut.length;
  if (more > 0) cut.push(`and ${whole(more)} older`);
  if (cut.length === 0) cut.push("nothing yet");
  const list = block("memory-list");
  const isSame =
    list.children.length === cut.length &&
    cut.every((text, i) => list.children[i].textContent === text);
  if (!isSame) list.replaceChildren(...cut.map((text) => make("li", {}, text)));
}

export function bindVertex(app: App): Search {
  const { settings, facts } = app;
  onClick("vertex-centre", () => {
    app.showTable(false);
    app.centre(settings.vertex);
  });
  onClick("vertex-free", () => {
    app.chooseVertex(-1, false);
    input("search").focus();
  });
  let told = "";
  app.watch(() => {
    const v = settings.vertex;
    block("vertex").hidden = v < 0;
    if (v < 0) return;
    const rows = rowsOf(facts, v);
    const text = JSON.stringify([v, rows]);
    if (text === told) return;
    told = text;
    say(block("vertex-name"), facts.name(v));
    block("vertex-name").title = facts.wholeName(v);
    pairs(block("vertex-facts"), rows);
  });
  const choose = (v: number): void => {
    app.chooseVertex(v, true);
  };
  const live = (text: string): void => {
    app.announce(text);
  };
  return new Search(input("search"), block("hits"), facts, choose, live);
}

export function bindExport(app: App): void {
  const { meta } = app.data;
  const note = block("export-note");
  const name = (suffix: string): string => fileName(meta.title, suffix);
  onClick("save-png", () => {
    void picturePng(app.picture()).then((png) => {
      if (png) save(name("png"), png);
      say(note, png ? `Saved ${name("png")}.` : "This browser made no picture.");
    });
  });
  onClick("save-svg", () => {
    const picture = app.picture();
    const svg = pictureSvg(picture);
    if (svg === null) {
      const elements = `${whole(svgElements(picture))} elements`;
      say(note, `${elements} are more than an SVG takes (${whole(MOST_SVG_ELEMENTS)}); save a PNG.`);
      return;
    }
    save(name("svg"), new Blob([svg], { type: "image/svg+xml" }));
    say(note, `Saved ${name("svg")}.`);
  });
  onClick("save-csv", () => {
    save(name("csv"), new Blob([tableCsv(app.facts)], { type: "text/csv" }));
    say(note, `Saved ${name("csv")}.`);
  });
  onClick("copy-address", () => {
    if (window.location.protocol === "about:") {
      say(note, "A page inside another one has no address.");
      return;
    }
    const field = input("address");
    field.value = app.address();
    field.hidden = false;
    field.select();
    const clipboard = navigator.clipboard as Clipboard | undefined;
    const copied = clipboard?.writeText(field.value) ?? Promise.reject(new Error("none"));
    copied.then(
      () => {
        say(note, "Copied.");
      },
      () => {
        say(note, "Copy it from the field.");
      },
    );
  });
}

export function bindZoom(app: App): void {
  onClick("zoom-in", () => {
    zoom(app, CLOSER);
  });
  onClick("zoom-out", () => {
    zoom(app, 1 / CLOSER);
  });
  onClick("zoom-fit", () => {
    showAll(app);
  });
  app.watch(() => {
    const { scene, data, replay, legend, settings } = app;
    const shown = settings.color === "none" || !legend ? "" : `, coloured by ${legend.title}`;
    const step = replay ? ` at step ${whole(replay.step)}` : "";
    const vertices = counted(data.meta.n, "vertex", "vertices");
    const edges = counted(scene.sources.length, "edge", "edges");
    const label = `Network of ${vertices} and ${edges}${step}${shown}`;
    const { picture } = app.stage;
    if (picture.getAttribute("aria-label") !== label) picture.setAttribute("aria-label", label);
  });
}

function zoom(app: App, factor: number): void {
  zoomAt(app.scene, factor, app.scene.width / 2, app.scene.height / 2);
  app.stage.move();
}

function showAll(app: App): void {
  fit(app.scene);
  app.stage.move();
}

/** What a key does, where no field or list wants it. */
export function bindKeys(app: App): void {
  const seekBy = (steps: number) => (): void => {
    if (app.player) app.seek(app.player.aim + steps);
  };
  const panBy = (dx: number, dy: number) => (): void => {
    pan(app.scene, dx, dy);
    app.stage.move();
  };
  const acts: Record<string, (() => void) | undefined> = {
    " ": () => {
      app.playOrPause();
    },
    ArrowLeft: seekBy(-1),
    ArrowRight: seekBy(1),
    Home: seekBy(-Infinity),
    End: seekBy(Infinity),
    "shift ArrowLeft": panBy(NUDGE, 0),
    "shift ArrowRight": panBy(-NUDGE, 0),
    "shift ArrowUp": panBy(0, NUDGE),
    "shift ArrowDown": panBy(0, -NUDGE),
    "+": () => {
      zoom(app, CLOSER);
    },
    "-": () => {
      zoom(app, 1 / CLOSER);
    },
    "0": () => {
      showAll(app);
    },
    "/": () => {
      input("search").focus();
    },
    t: () => {
      app.showTable(!app.settings.table);
    },
    Escape: () => {
      app.chooseVertex(-1, false);
    },
  };
  acts["="] = acts["shift +"] = acts["+"];
  acts["shift /"] = acts["/"];
  document.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.metaKey || event.altKey || wantsKeys(event)) return;
    const act = acts[`${event.shiftKey ? "shift " : ""}${event.key}`];
    if (!act) return;
    event.preventDefault();
    act();
  });
}

/** Whether what has the focus uses the key itself. */
function wantsKeys(event: KeyboardEvent): boolean {
  const { target, key } = event;
  if (target instanceof HTMLSelectElement) return key !== "Escape";
  if (target instanceof HTMLButtonElement || target instanceof HTMLElement && target.tagName === "SUMMARY") {
    return key === " " || key === "Enter";
  }
  if (target instanceof HTMLElement && target.id === "table-scroll") {
    return key === " " || key.startsWith("Arrow") || key === "Home" || key === "End";
  }
  if (!(target instanceof HTMLInputElement)) return false;
  if (target.type === "checkbox") return key === " ";
  if (target.type === "range") return key.startsWith("Arrow") || key === "Home" || key === "End";
  return key !== "Escape";
}

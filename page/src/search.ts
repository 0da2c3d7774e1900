import { make } from "./dom.ts";
import type { Facts } from "./facts.ts";
import { whole } from "./text.ts";

const MOST_HITS = 50;

/** Vertices that a text may mean, the likeliest first: the index, the name, names that begin so, or have it. */
export function find(facts: Facts, text: string, most = MOST_HITS): number[] {
  const wanted = text.trim().toLocaleLowerCase();
  if (wanted === "") return [];
  const groups: number[][] = [[], [], [], []];
  const index = /^\d{1,7}$/.test(wanted) ? Number(wanted) : -1;
  for (let v = 0; v < facts.n; ++v) {
    const name = facts.rawName(v).toLocaleLowerCase();
    if (name === wanted) groups[0].push(v);
    else if (v === index) groups[1].push(v);
    else if (name.startsWith(wanted)) groups[2].push(v);
    else if (name.includes(wanted)) groups[3].push(v);
  }
  return groups.flat().slice(0, most);
}

/** The field that finds vertices, with its list of hits. */
export class Search {
  private hits: number[] = [];
  private active = -1;

  constructor(
    private readonly field: HTMLInputElement,
    private readonly list: HTMLElement,
    private readonly facts: Facts,
    private readonly choose: (vertex: number) => void,
    private readonly live: (text: string) => void,
  ) {
    field.addEventListener("input", () => {
      this.look();
    });
    field.addEventListener("keydown", (event) => {
      this.key(event);
    });
    field.addEventListener("blur", () => {
      this.close();
    });
    // Before the field loses the focus, which would take the list away.
    list.addEventListener("pointerdown", (event) => {
      event.preventDefault();
      const item = (event.target as Element).closest("li[data-hit]");
      if (item instanceof HTMLElement) this.take(Number(item.dataset["hit"]));
    });
  }

  private look(): void {
    this.hits = find(this.facts, this.field.value);
    this.active = this.hits.length > 0 ? 0 : -1;
    if (this.field.value.trim() === "") {
      this.close();
      return;
    }
    const items = this.hits.map((v, i) => {
      const item = make("li", { role: "option", id: `hit${i}` }, make("span", {}, this.facts.name(v)));
      if (this.facts.data.names) item.append(make("small", {}, String(v)));
      item.dataset["hit"] = String(i);
      return item;
    });
    if (items.length === 0) {
      const nothing = make("li", { class: "none", role: "option", "aria-disabled": "true" });
      nothing.textContent = "No vertex is called so";
      items.push(nothing);
    }
    this.list.replaceChildren(...items);
    this.list.hidden = false;
    this.field.setAttribute("aria-expanded", "true");
    const count = this.hits.length;
    this.live(count === MOST_HITS ? `${MOST_HITS} hits or more` : `${whole(count)} ${count === 1 ? "hit" : "hits"}`);
    this.show();
  }

  private show(): void {
    Array.from(this.list.children).forEach((item, i) => {
      item.setAttribute("aria-selected", String(i === this.active));
      if (i === this.active) item.scrollIntoView({ block: "nearest" });
    });
    if (this.active >= 0) this.field.setAttribute("aria-activedescendant", `hit${this.active}`);
    else this.field.removeAttribute("aria-activedescendant");
  }

  private key(event: KeyboardEvent): void {
    const steps: Record<string, number> = { ArrowDown: 1, ArrowUp: -1 };
    if (event.key in steps && this.hits.length > 0) {
      this.active = (this.active + steps[event.key] + this.hits.length) % this.hits.length;
      this.show();
    } else if (event.key === "Enter" && this.active >= 0) {
      this.take(this.active);
    } else if (event.key === "Escape" && !this.list.hidden) {
      this.close();
    } else {
      return;
    }
    event.preventDefault();
    event.stopPropagation();
  }

  private take(hit: number): void {
    const vertex = this.hits[hit];
    this.field.value = "";
    this.close();
    this.choose(vertex);
  }

  private close(): void {
    this.list.hidden = true;
    this.hits = [];
    this.active = -1;
    this.field.setAttribute("aria-expanded", "false");
    this.field.removeAttribute("aria-activedescendant");
  }
}

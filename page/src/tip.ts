import { make, pairs } from "./dom.ts";
import type { Facts } from "./facts.ts";

const MOST_ROWS = 12;
const APART = 14;

/** What is known of a vertex, as rows. */
export function rowsOf(facts: Facts, v: number): [string, string][] {
  const rows: [string, string][] = facts.data.names ? [["index", String(v)]] : [];
  for (const source of facts.listed()) rows.push([facts.title(source), facts.text(source, v)]);
  return rows;
}

/** The words beside the pointer. */
export class Tip {
  private vertex = -1;

  constructor(
    private readonly box: HTMLElement,
    private readonly facts: Facts,
  ) {}

  show(v: number, x: number, y: number, grown: number): void {
    if (v < 0) {
      this.vertex = -1;
      this.box.hidden = true;
      return;
    }
    if (v !== this.vertex) {
      this.vertex = v;
      const list = make("dl");
      pairs(list, rowsOf(this.facts, v).slice(0, MOST_ROWS));
      this.box.replaceChildren(make("p", { class: "name" }, this.facts.wholeName(v)), list);
      this.box.hidden = false;
    }
    const within = this.box.parentElement;
    const apart = APART + Math.min(10, grown);
    const right = (within?.clientWidth ?? 0) - this.box.offsetWidth - 4;
    const low = (within?.clientHeight ?? 0) - this.box.offsetHeight - 4;
    const left = x + apart > right ? Math.max(4, x - apart - this.box.offsetWidth) : x + apart;
    this.box.style.transform = `translate(${Math.round(left)}px, ${Math.round(Math.max(4, Math.min(low, y + apart)))}px)`;
  }
}

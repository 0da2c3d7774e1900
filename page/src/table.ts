import { make } from "./dom.ts";
import type { Facts } from "./facts.ts";
import type { Source } from "./settings.ts";

const ROW = 31;
const SPARE = 8;

/** A source, or index or name. */
type Key = string;

/** All vertices in rows, of which only those in sight are made. */
export class Table {
  private order: Uint32Array;
  private key: Key = "index";
  private descends = false;
  private readonly columns: readonly Source[];
  private readonly heads = new Map<Key, HTMLElement>();
  private shownFrom = -1;

  constructor(
    private readonly scroll: HTMLElement,
    table: HTMLTableElement,
    private readonly head: HTMLElement,
    private readonly body: HTMLElement,
    private readonly facts: Facts,
    private readonly choose: (vertex: number) => void,
    private readonly isMarked: (vertex: number) => boolean,
  ) {
    this.order = Uint32Array.from({ length: facts.n }, (_, v) => v);
    this.columns = facts.listed();
    table.setAttribute("aria-rowcount", String(facts.n + 1));
    this.makeHead();
    scroll.addEventListener("scroll", () => {
      this.rows(false);
    });
    body.addEventListener("click", (event) => {
      const pressed = (event.target as Element).closest("button[value]");
      if (pressed instanceof HTMLButtonElement) this.choose(Number(pressed.value));
    });
  }

  /** After numbers changed. */
  refresh(): void {
    if (this.key === "visits" || this.key === "latest") this.sort();
    this.rows(true);
  }

  private makeHead(): void {
    const titles: [Key, string][] = [["index", "index"]];
    if (this.facts.data.names) titles.push(["name", "name"]);
    for (const source of this.columns) titles.push([source, this.facts.title(source)]);
    for (const [key, title] of titles) {
      const press = make("button", {}, title);
      press.type = "button";
      press.addEventListener("click", () => {
        this.sortBy(key);
      });
      const cell = make("th", { scope: "col", class: this.isWords(key) ? "words" : "" }, press);
      this.heads.set(key, cell);
      this.head.append(cell);
    }
    this.heads.get("index")?.setAttribute("aria-sort", "ascending");
  }

  private isWords(key: Key): boolean {
    return key === "name" || (key !== "index" && this.facts.numbers(key) === null);
  }

  private sortBy(key: Key): void {
    // Numbers are asked for the largest first.
    this.descends = key === this.key ? !this.descends : key !== "index" && !this.isWords(key);
    this.key = key;
    for (const [each, cell] of this.heads) {
      if (each === key) cell.setAttribute("aria-sort", this.descends ? "descending" : "ascending");
      else cell.removeAttribute("aria-sort");
    }
    this.sort();
    this.scroll.scrollTop = 0;
    this.rows(true);
  }

  private sort(): void {
    const { facts, key } = this;
    const sign = this.descends ? -1 : 1;
    this.order = Uint32Array.from({ length: facts.n }, (_, v) => v);
    if (key === "index") {
      if (this.descends) this.order.reverse();
      return;
    }
    const values = key === "name" ? null : facts.numbers(key);
    if (values) {
      // Those without a number come last either way.
      const worth = (v: number): number => (Number.isNaN(values[v]) ? -Infinity : sign * values[v]);
      const lacks = (v: number): number => (Number.isNaN(values[v]) ? 1 : 0);
      this.order.sort((a, b) => lacks(a) - lacks(b) || worth(a) - worth(b) || a - b);
      return;
    }
    const texts = Array.from({ length: facts.n }, (_, v) =>
      key === "name" ? facts.rawName(v) : facts.text(key, v),
    );
    const collator = new Intl.Collator("en", { numeric: true });
    this.order.sort((a, b) => sign * collator.compare(texts[a], texts[b]) || a - b);
  }

  private rows(isChanged: boolean): void {
    const height = this.scroll.clientHeight || 400;
    const first = Math.max(0, Math.floor(this.scroll.scrollTop / ROW) - SPARE);
    if (!isChanged && Math.abs(first - this.shownFrom) < SPARE / 2) return;
    this.shownFrom = first;
    const last = Math.min(this.facts.n, first + Math.ceil(height / ROW) + 2 * SPARE);
    const focused = document.activeElement instanceof HTMLButtonElement ? document.activeElement.value : "";
    const rows = [this.space(first)];
    for (let i = first; i < last; ++i) rows.push(this.row(i));
    rows.push(this.space(this.facts.n - last));
    const hadFocus = this.body.contains(document.activeElement);
    this.body.replaceChildren(...rows);
    if (!hadFocus) return;
    for (const press of this.body.querySelectorAll("button")) {
      if (press.value === focused) press.focus({ preventScroll: true });
    }
  }

  private space(rows: number): HTMLTableRowElement {
    const cell = make("td", { colspan: String(this.heads.size) });
    cell.style.height = `${rows * ROW}px`;
    const row = make("tr", { class: "space", "aria-hidden": "true" }, cell);
    row.hidden = rows === 0;
    return row;
  }

  private row(at: number): HTMLTableRowElement {
    const { facts } = this;
    const v = this.order[at];
    const press = make("button", { value: String(v) }, facts.name(v));
    press.type = "button";
    const cells: HTMLTableCellElement[] = [];
    if (facts.data.names) cells.push(make("td", {}, String(v)));
    cells.push(make("td", { class: facts.data.names ? "words" : "" }, press));
    for (const source of this.columns) {
      const kind = this.isWords(source) ? "words" : "";
      cells.push(make("td", { class: kind }, facts.text(source, v)));
    }
    const marked = this.isMarked(v) ? "marked" : "";
    return make("tr", { "aria-rowindex": String(at + 2), class: marked }, ...cells);
  }
}

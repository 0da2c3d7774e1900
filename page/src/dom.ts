/** The element of the template with this id. */
export function byId<T extends Element>(id: string, type: abstract new () => T): T {
  const element = document.getElementById(id);
  if (!(element instanceof type)) throw new Error(`The template has no ${id}.`);
  return element;
}

export function button(id: string): HTMLButtonElement {
  return byId(id, HTMLButtonElement);
}

export function input(id: string): HTMLInputElement {
  return byId(id, HTMLInputElement);
}

export function block(id: string): HTMLElement {
  return byId(id, HTMLElement);
}

/** Attributes that may be set; none of them can hold code or an address. */
type Attribute =
  | "class"
  | "role"
  | "scope"
  | "id"
  | "colspan"
  | "value"
  | "title"
  | "aria-label"
  | "aria-rowindex"
  | "aria-selected"
  | "aria-sort"
  | "aria-hidden"
  | "aria-disabled";

/** A new element. Texts become text and never markup. */
export function make<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  attributes: Partial<Record<Attribute, string>> = {},
  ...children: (Node | string)[]
): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
  element.append(...children);
  return element;
}

const SVG = "http://www.w3.org/2000/svg";

export function makeSvg<K extends keyof SVGElementTagNameMap>(
  tag: K,
  attributes: Record<string, string | number> = {},
  ...children: (Node | string)[]
): SVGElementTagNameMap[K] {
  const element = document.createElementNS(SVG, tag);
  for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, String(value));
  element.append(...children);
  return element;
}

/** Rows of what is known of something. */
export function pairs(list: HTMLElement, rows: readonly (readonly [string, string])[]): void {
  list.replaceChildren(
    ...rows.flatMap(([key, value]) => [make("dt", {}, key), make("dd", {}, value)]),
  );
}

/** Writes a text only where it changed, so that nothing is laid out anew for nothing. */
export function say(element: Element, text: string): void {
  if (element.textContent !== text) element.textContent = text;
}

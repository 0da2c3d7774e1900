/** Names come from strangers: what would be invisible, or turn the line around, is shown as a sign. */
const HIDDEN =
  // eslint-disable-next-line no-control-regex
  /[\u0000-\u001f\u007f-\u009f\u00ad\u061c\u180e\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff\ufff9-\ufffb]/g;

export const LONGEST_NAME = 200;

function sign(character: string): string {
  return `<U+${character.charCodeAt(0).toString(16).toUpperCase().padStart(4, "0")}>`;
}

/** All of a name, with signs for what cannot be seen. */
export function shownWhole(name: string): string {
  return name.replace(HIDDEN, sign);
}

/** A name of at most 200 characters, and never half a character. */
export function shown(name: string): string {
  const characters = Array.from(name.slice(0, 2 * LONGEST_NAME + 2));
  const isShort = characters.length <= LONGEST_NAME;
  return shownWhole(isShort ? name : `${characters.slice(0, LONGEST_NAME - 1).join("")}…`);
}

const grouped = new Intl.NumberFormat("en-GB", { maximumFractionDigits: 0 });

/** 1,234,567 */
export function whole(value: number): string {
  return grouped.format(value);
}

const fourDigits = new Intl.NumberFormat("en-GB", { maximumSignificantDigits: 4 });

/** Up to four significant digits, or all of a whole number. */
export function number(value: number): string {
  if (Number.isNaN(value)) return "none";
  if (!Number.isFinite(value)) return value > 0 ? "∞" : "−∞";
  return plain(value).replaceAll("-", "−");
}

function plain(value: number): string {
  const size = Math.abs(value);
  if (Number.isInteger(value) && size < 1e15) return whole(value);
  if (size >= 1e6 || size < 1e-3) return value.toExponential(3);
  return size >= 1000 ? whole(value) : fourDigits.format(value);
}

export function percent(share: number): string {
  if (share >= 1) return "100 %";
  // Never 100 % before all of it.
  return `${(Math.floor(share * 1000) / 10).toFixed(1)} %`;
}

export function counted(count: number, one: string, many: string): string {
  return `${whole(count)} ${count === 1 ? one : many}`;
}

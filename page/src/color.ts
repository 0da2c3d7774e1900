/** Colours are 0xRRGGBB. */
export type Color = number;
export type Theme = "light" | "dark";
type Triple = readonly [number, number, number];

/** Lightness and two opponent colours of Oklab, in which equal distances look equally far apart. */
export function oklabOf(color: Color): Triple {
  const [r, g, b] = [color >> 16, (color >> 8) & 255, color & 255].map((byte) => {
    const x = byte / 255;
    return x <= 0.04045 ? x / 12.92 : ((x + 0.055) / 1.055) ** 2.4;
  });
  const l = Math.cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
  const m = Math.cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
  const s = Math.cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
  return [
    0.2104542553 * l + 0.793617785 * m - 0.0040720468 * s,
    1.9779984951 * l - 2.428592205 * m + 0.4505937099 * s,
    0.0259040371 * l + 0.7827717662 * m - 0.808675766 * s,
  ];
}

function linearOf([L, a, b]: Triple): Triple {
  const l = (L + 0.3963377774 * a + 0.2158037573 * b) ** 3;
  const m = (L - 0.1055613458 * a - 0.0638541728 * b) ** 3;
  const s = (L - 0.0894841775 * a - 1.291485548 * b) ** 3;
  return [
    4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
    -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
    -0.0041960863 * l - 0.7034186147 * m + 1.707614701 * s,
  ];
}

function colorOf(lab: Triple): Color {
  return linearOf(lab).reduce((packed, x) => {
    const clamped = Math.min(1, Math.max(0, x));
    const y = clamped <= 0.0031308 ? 12.92 * clamped : 1.055 * clamped ** (1 / 2.4) - 0.055;
    return packed * 256 + Math.round(255 * y);
  }, 0);
}

/** Lightness, chroma and hue in degrees; as colourful as a screen allows up to that chroma. */
function lch(L: number, chroma: number, hue: number): Triple {
  const angle = (hue * Math.PI) / 180;
  let c = chroma;
  let lab: Triple = [L, 0, 0];
  for (; c > 0; c -= 0.002) {
    lab = [L, c * Math.cos(angle), c * Math.sin(angle)];
    if (linearOf(lab).every((x) => x >= 0 && x <= 1)) return lab;
  }
  return [L, 0, 0];
}

// From few to many as {lightness, chroma, hue}, from what is near the ground to what is far from it.
// Lightness alone tells the order, also to those who do not tell hues apart.
const knots: Record<Theme, readonly Triple[]> = {
  light: [
    [0.88, 0.14, 103],
    [0.77, 0.14, 135],
    [0.65, 0.12, 180],
    [0.53, 0.12, 230],
    [0.41, 0.15, 275],
    [0.27, 0.13, 300],
  ],
  dark: [
    [0.4, 0.15, 298],
    [0.5, 0.15, 272],
    [0.6, 0.12, 232],
    [0.71, 0.12, 180],
    [0.82, 0.15, 135],
    [0.94, 0.15, 103],
  ],
};

function along(path: readonly Triple[], t: number): Triple {
  const at = Math.min(path.length - 2, Math.floor(t * (path.length - 1)));
  const f = t * (path.length - 1) - at;
  const mix = (i: number): number => path[at][i] + f * (path[at + 1][i] - path[at][i]);
  return lch(mix(0), mix(1), mix(2));
}

function distance(a: Triple, b: Triple): number {
  return Math.hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

const SAMPLES = 2048;

/** That many colours along the knots, each as far from the next. */
function evenScale(theme: Theme, steps: number): Uint32Array {
  const path = Array.from({ length: SAMPLES + 1 }, (_, i) => along(knots[theme], i / SAMPLES));
  const lengths = [0];
  for (let i = 1; i <= SAMPLES; ++i) lengths.push(lengths[i - 1] + distance(path[i - 1], path[i]));
  const scale = new Uint32Array(steps);
  for (let s = 0, i = 0; s < steps; ++s) {
    const wanted = (lengths[SAMPLES] * s) / (steps - 1);
    while (i < SAMPLES && lengths[i] < wanted) ++i;
    scale[s] = colorOf(path[i]);
  }
  return scale;
}

export const SCALE_STEPS = 256;
const scales: Record<Theme, Uint32Array> = {
  light: evenScale("light", SCALE_STEPS),
  dark: evenScale("dark", SCALE_STEPS),
};

/** 256 colours from few to many; many stands out most from the ground. */
export function scaleOf(theme: Theme): Uint32Array {
  return scales[theme];
}

/** As many different texts a column may have to be told apart by colour. */
export const MOST_KINDS = 12;

// Found by a search for colours that stay far apart for people who see with two kinds of cones, the first
// six above all.
const kinds: Record<Theme, readonly Color[]> = {
  light: [
    0x3155db, 0xeeb469, 0x11cfb9, 0x6c3d81, 0xc6a2ff, 0x82390d, 0x8068c6, 0x96830d, 0xa5ce1a, 0xd16856,
    0xb60052, 0x12939c,
  ],
  dark: [
    0x1575ff, 0xebc725, 0x5effba, 0xea1060, 0xd0c6fe, 0xab6b00, 0xc982b1, 0xf48c5d, 0xb1ff7b, 0xce94ff,
    0xc341b8, 0x3bc496,
  ],
};

export function kindsOf(theme: Theme): readonly Color[] {
  return kinds[theme];
}

export interface Shades {
  readonly ground: Color;
  readonly ink: Color;
  readonly faint: Color;
  readonly edge: Color;
  /** Vertices of which nothing is told. */
  readonly none: Color;
  readonly accent: Color;
}

const shades: Record<Theme, Shades> = {
  light: {
    ground: 0xfcfcfa,
    ink: 0x1a2026,
    faint: 0x5b6670,
    edge: 0x8793a0,
    none: 0xdfe3e6,
    accent: 0xd0342c,
  },
  dark: {
    ground: 0x12161b,
    ink: 0xedf1f4,
    faint: 0x9aa7b2,
    edge: 0x66727f,
    none: 0x343c45,
    accent: 0xff7a6b,
  },
};

export function shadesOf(theme: Theme): Shades {
  return shades[theme];
}

/** So much of the colour over the ground. */
export function mixed(color: Color, ground: Color, share: number): Color {
  return [16, 8, 0].reduce((sum, shift) => {
    const [over, under] = [(color >> shift) & 255, (ground >> shift) & 255];
    return sum + (Math.round(under + share * (over - under)) << shift);
  }, 0);
}

export function css(color: Color, opacity = 1): string {
  const hex = `#${color.toString(16).padStart(6, "0")}`;
  if (opacity >= 1) return hex;
  return `${hex}${Math.round(255 * opacity).toString(16).padStart(2, "0")}`;
}

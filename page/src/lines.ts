import type { Color } from "./color.ts";

/** How finely it is counted how often a pixel is covered. */
const PARTS = 64;
/** More than 64 lines over a pixel are 64. */
const MOST = 64 * PARTS - 1;
/** Places between pixels are counted in so many parts. */
const FRACTION_BITS = 16;
const ONE = 2 ** FRACTION_BITS;
/** More than the rounded steps of a line may be wrong by at its end. */
const SLACK = 0.25;

/**
 * Straight lines of one faint colour, counted into the pixels of a picture: the more of them over a pixel, the denser
 * it is. A browser without a graphics processor takes twice as long to stroke them, and a picture of a network is
 * hardly anything else.
 */
export class FaintLines {
  private width = 0;
  private height = 0;
  private counts = new Uint32Array();
  private image: ImageData | null = null;
  private readonly inks = new Uint32Array(MOST + 1);
  private ink = "";

  /** Of the picture, in its own pixels. */
  resize(width: number, height: number): void {
    this.width = width;
    this.height = height;
    this.counts = new Uint32Array(width * height);
    this.image = null;
  }

  setInk(color: Color, opacity: number): void {
    const ink = `${color} ${opacity}`;
    if (ink === this.ink) return;
    this.ink = ink;
    const through = (1 - opacity) ** (1 / PARTS);
    for (let count = 0, left = 1; count <= MOST; ++count, left *= through) {
      this.inks[count] = pixelOf(color, Math.round(255 * (1 - left)));
    }
  }

  line(x0: number, y0: number, x1: number, y1: number, thickness: number): void {
    const { width, height } = this;
    if (Math.abs(y1 - y0) > Math.abs(x1 - x0)) this.trace(y0, x0, y1, x1, thickness, height, width, width, 1);
    else this.trace(x0, y0, x1, y1, thickness, width, height, 1, width);
  }

  /** The colour of each pixel, row by row, after which there are no lines any more. */
  take(pixels: Uint32Array): void {
    const { counts, inks } = this;
    for (let at = 0; at < counts.length; ++at) {
      const count = counts[at];
      pixels[at] = inks[count < MOST ? count : MOST];
    }
    counts.fill(0);
  }

  /** Writes the lines over all that the canvas has. */
  show(c: CanvasRenderingContext2D): void {
    if (this.counts.length === 0) return;
    this.image ??= new ImageData(this.width, this.height);
    this.take(new Uint32Array(this.image.data.buffer));
    c.putImageData(this.image, 0, 0);
  }

  // `u` runs along the axis that the line is nearer to, and `v` across it. In each column of pixels the line is
  // shared by the two whose middles are nearest to it.
  private trace(
    u0: number,
    v0: number,
    u1: number,
    v1: number,
    thickness: number,
    columns: number,
    rows: number,
    columnStep: number,
    rowStep: number,
  ): void {
    const { counts } = this;
    const slope = u0 === u1 ? 0 : (v1 - v0) / (u1 - u0);
    // Where the line is in the middle of the first column, from the middle of the first row.
    const begin = v0 - 0.5 + slope * (0.5 - u0);
    let first = Math.max(0, Math.floor(Math.min(u0, u1)));
    let last = Math.min(columns - 1, Math.floor(Math.max(u0, u1)));
    // Columns in which the line is not between two pixels of the picture are left out.
    if (slope !== 0) {
      const a = (SLACK - begin) / slope;
      const b = (rows - 1 - SLACK - begin) / slope;
      first = Math.max(first, Math.ceil(Math.min(a, b)));
      last = Math.min(last, Math.floor(Math.max(a, b)));
    } else if (!(begin >= 0 && begin < rows - 1)) return;
    const ink = Math.round(PARTS * thickness * Math.sqrt(1 + slope * slope));
    const step = Math.round(slope * ONE);
    let v = Math.floor((begin + slope * first) * ONE);
    let column = first * columnStep;
    for (let u = first; u <= last; ++u) {
      const at = column + Math.imul(v >> FRACTION_BITS, rowStep);
      const beyond = Math.imul(v & (ONE - 1), ink) >> FRACTION_BITS;
      counts[at] += ink - beyond;
      counts[at + rowStep] += beyond;
      v = (v + step) | 0;
      column = (column + columnStep) | 0;
    }
  }
}

/** As a picture has it in memory: browsers run on little-endian processors. */
function pixelOf(color: Color, alpha: number): number {
  const [red, green, blue] = [color >> 16, (color >> 8) & 255, color & 255];
  return ((alpha << 24) | (blue << 16) | (green << 8) | red) >>> 0;
}

const LAG = 31;
const SHORT_LAG = 3;
const BLOCK = 1024;

/** The library's generator: r[i] = r[i-3] + r[i-31] modulo 2^32, of which a draw shows the upper 31 bits. */
export class RandomStream {
  static readonly words = LAG;
  // The words before `at` are drawn, and those from there on are made in advance.
  private readonly r = new Uint32Array(LAG + BLOCK);
  private at = LAG + BLOCK;

  /** Goes on after these 31 words, the oldest first. */
  constructor(words: ArrayLike<number>) {
    this.restore(words);
  }

  restore(words: ArrayLike<number>): void {
    this.r.set(words, BLOCK);
    this.at = LAG + BLOCK;
  }

  /** The 31 words drawn last. */
  words(): Uint32Array {
    return this.r.slice(this.at - LAG, this.at);
  }

  /** From 0 to 2^31 - 1. */
  next(): number {
    if (this.at === LAG + BLOCK) this.refill();
    return this.r[this.at++] >>> 1;
  }

  private refill(): void {
    const r = this.r;
    r.copyWithin(0, BLOCK);
    for (let i = LAG; i < LAG + BLOCK; ++i) r[i] = r[i - SHORT_LAG] + r[i - LAG];
    this.at = LAG;
  }
}

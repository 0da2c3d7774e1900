/** What is wrong with a page's data, in one sentence that a reader of the page is shown. */
export class PageError extends Error {}

function damaged(what: string): never {
  throw new PageError(`The data of this page is damaged: ${what}.`);
}

/** Reads the parts of a block, and never beyond its end. */
export class ByteReader {
  private at = 0;
  private readonly view: DataView;

  constructor(
    private readonly bytes: Uint8Array,
    private readonly what: string,
  ) {
    this.view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
  }

  get left(): number {
    return this.bytes.length - this.at;
  }

  get position(): number {
    return this.at;
  }

  fail(problem: string): never {
    damaged(`${this.what} ${problem}`);
  }

  /** The place of the next `count` bytes, which are passed over. */
  private skip(count: number): number {
    if (count > this.left) this.fail("ends too early");
    const from = this.at;
    this.at += count;
    return from;
  }

  u8(): number {
    return this.bytes[this.skip(1)];
  }

  u16(): number {
    return this.view.getUint16(this.skip(2), true);
  }

  u32(): number {
    return this.view.getUint32(this.skip(4), true);
  }

  f32(): number {
    return this.view.getFloat32(this.skip(4), true);
  }

  f64(): number {
    return this.view.getFloat64(this.skip(8), true);
  }

  take(count: number): Uint8Array {
    const from = this.skip(count);
    return this.bytes.subarray(from, from + count);
  }

  /** Below 2^53. */
  varint(): number {
    let value = 0;
    let factor = 1;
    for (let i = 0; i < 8; ++i, factor *= 128) {
      const byte = this.u8();
      value += (byte & 127) * factor;
      if (byte < 128) {
        if (value > Number.MAX_SAFE_INTEGER || (byte === 0 && i > 0)) break;
        return value;
      }
    }
    return this.fail("has a number that is none");
  }

  below(limit: number, whose: string): number {
    const value = this.varint();
    if (value >= limit) this.fail(`names ${whose} ${value} of ${limit}`);
    return value;
  }

  /** A number of things that take at least `least` bytes each, so that they cannot be more than are there. */
  count(least: number): number {
    const value = this.varint();
    if (value * least > this.left) this.fail("ends too early");
    return value;
  }

  text(): string {
    const bytes = this.take(this.varint());
    try {
      return decoder.decode(bytes);
    } catch {
      return this.fail("has a text that is not UTF-8");
    }
  }

  end(): void {
    if (this.left > 0) this.fail("is longer than it should be");
  }
}

const decoder = new TextDecoder("utf-8", { fatal: true, ignoreBOM: true });

const crcTable = Uint32Array.from({ length: 256 }, (_, i) => {
  let value = i;
  for (let bit = 0; bit < 8; ++bit) value = value & 1 ? (value >>> 1) ^ 0xedb88320 : value >>> 1;
  return value >>> 0;
});

/** The CRC-32 of gzip and PNG. */
export function crc32(bytes: Uint8Array): number {
  let crc = 0xffffffff;
  for (const byte of bytes) crc = (crc >>> 8) ^ crcTable[(crc ^ byte) & 255];
  return (crc ^ 0xffffffff) >>> 0;
}

/** The CRC-32 of numbers below 2^53 as little-endian words of eight bytes. */
export function crc32OfNumbers(numbers: ArrayLike<number>): number {
  const bytes = new Uint8Array(numbers.length * 8);
  const view = new DataView(bytes.buffer);
  for (let i = 0; i < numbers.length; ++i) {
    view.setUint32(8 * i, numbers[i] % 2 ** 32, true);
    view.setUint32(8 * i + 4, Math.floor(numbers[i] / 2 ** 32), true);
  }
  return crc32(bytes);
}

export function fromBase64(text: string): Uint8Array {
  try {
    const binary = atob(text.trim());
    const bytes = new Uint8Array(binary.length);
    for (let i = 0; i < binary.length; ++i) bytes[i] = binary.charCodeAt(i);
    return bytes;
  } catch {
    return damaged("it is not base64");
  }
}

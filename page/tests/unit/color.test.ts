import assert from "node:assert/strict";
import { test } from "node:test";
import { css, kindsOf, oklabOf, scaleOf, shadesOf } from "../../src/color.ts";
import type { Color, Theme } from "../../src/color.ts";

type Triple = [number, number, number];
const themes: Theme[] = ["light", "dark"];

function linear(color: Color): Triple {
  const channel = (byte: number): number => {
    const x = byte / 255;
    return x <= 0.04045 ? x / 12.92 : ((x + 0.055) / 1.055) ** 2.4;
  };
  return [channel(color >> 16), channel((color >> 8) & 255), channel(color & 255)];
}

/** CIELAB under D65, the measure of the standards, beside the one that the scales are made by. */
function cielab(rgb: Triple): Triple {
  const [r, g, b] = rgb.map((x) => Math.min(1, Math.max(0, x)));
  const f = (t: number): number => (t > 216 / 24389 ? Math.cbrt(t) : (24389 / 27 * t + 16) / 116);
  const x = f((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / 0.95047);
  const y = f(0.2126729 * r + 0.7151522 * g + 0.072175 * b);
  const z = f((0.0193339 * r + 0.119192 * g + 0.9503041 * b) / 1.08883);
  return [116 * y - 16, 500 * (x - y), 200 * (y - z)];
}

/** What people without one kind of cone see, by the model of Machado, Oliveira and Fernandes (2009). */
const sights: Record<string, Triple[]> = {
  all: [[1, 0, 0], [0, 1, 0], [0, 0, 1]],
  protanopia: [
    [0.152286, 1.052583, -0.204868], [0.114503, 0.786281, 0.099216], [-0.003882, -0.048116, 1.051998],
  ],
  deuteranopia: [
    [0.367322, 0.860646, -0.227968], [0.280085, 0.672501, 0.047413], [-0.01182, 0.04294, 0.968881],
  ],
  tritanopia: [
    [1.255528, -0.076749, -0.178779], [-0.078411, 0.930809, 0.147602], [0.004733, 0.691367, 0.3039],
  ],
};

function seen(color: Color, sight: string): Triple {
  const [r, g, b] = linear(color);
  return cielab(sights[sight].map((row) => row[0] * r + row[1] * g + row[2] * b) as Triple);
}

function apart(a: Triple, b: Triple): number {
  return Math.hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

function contrast(a: Color, b: Color): number {
  const light = (color: Color): number => {
    const [r, g, blue] = linear(color);
    return 0.2126 * r + 0.7152 * g + 0.0722 * blue;
  };
  const [low, high] = [light(a), light(b)].sort((x, y) => x - y);
  return (high + 0.05) / (low + 0.05);
}

for (const theme of themes) {
  test(`${theme}: the steps of the scale are even`, () => {
    const scale = scaleOf(theme);
    assert.equal(scale.length, 256);
    // Over 15 steps, so that the rounding to bytes does not show.
    const steps: number[] = [];
    for (let i = 15; i < 256; i += 15) steps.push(apart(oklabOf(scale[i - 15]) as Triple, oklabOf(scale[i]) as Triple));
    assert.ok(Math.max(...steps) / Math.min(...steps) < 1.25, String(steps));
    const judged: number[] = [];
    for (let i = 15; i < 256; i += 15) judged.push(apart(seen(scale[i - 15], "all"), seen(scale[i], "all")));
    assert.ok(Math.max(...judged) / Math.min(...judged) < 2.6, String(judged));
  });

  test(`${theme}: lightness tells the order to everyone`, () => {
    const direction = theme === "light" ? -1 : 1;
    for (const sight of Object.keys(sights)) {
      const scale = Array.from(scaleOf(theme), (color) => seen(color, sight)[0]);
      for (let i = 15; i < 256; i += 15) {
        assert.ok(direction * (scale[i] - scale[i - 15]) > 0.8, `${sight}: step ${i}`);
      }
      assert.ok(Math.abs(scale[255] - scale[0]) > 45, sight);
    }
  });

  test(`${theme}: the colours of kinds are told apart by everyone`, () => {
    const kinds = kindsOf(theme);
    assert.equal(kinds.length, 12);
    for (const sight of Object.keys(sights)) {
      for (let i = 0; i < kinds.length; ++i) {
        for (let j = 0; j < i; ++j) {
          const distance = apart(seen(kinds[i], sight), seen(kinds[j], sight));
          // Twelve colours cannot be as far apart as six for those who see two dimensions of them.
          const least = i < 6 ? 30 : 18;
          assert.ok(distance > least, `${sight}: ${css(kinds[i])} and ${css(kinds[j])}: ${distance}`);
        }
      }
    }
  });

  test(`${theme}: words can be read, and every vertex be seen`, () => {
    const { ground, ink, faint, none } = shadesOf(theme);
    assert.ok(contrast(ink, ground) > 7);
    assert.ok(contrast(faint, ground) > 4.5);
    assert.ok(contrast(none, ground) > 1.2);
    assert.ok(contrast(scaleOf(theme)[255], ground) > 7);
    assert.ok(contrast(scaleOf(theme)[0], ground) > 1.3);
  });
}

test("a colour is written as the browser reads it", () => {
  assert.equal(css(0x00ff10), "#00ff10");
  assert.equal(css(0x00ff10, 0.5), "#00ff1080");
});

import assert from "node:assert/strict";
import { test } from "node:test";
import { decode } from "../../src/data.ts";
import { csvField, fileName } from "../../src/export.ts";
import { Facts } from "../../src/facts.ts";
import { kindOf, softwareOf } from "../../src/graphics.ts";
import { extent, shareOf } from "../../src/looks.ts";
import { find } from "../../src/search.ts";
import { addressOf, agentsOf, defaults, offersOf, settingsFrom } from "../../src/settings.ts";
import { number, percent, shown, shownWhole, whole } from "../../src/text.ts";
import { encode } from "../support/encode.ts";
import { network } from "../support/networks.ts";
import { smallSamples, walked } from "../support/samples.ts";

test("what cannot be seen in a name is shown as a sign", () => {
  assert.equal(shown("a\u202eb\u0000\n"), "a<U+202E>b<U+0000><U+000A>");
  assert.equal(shown("\u2066x\u2069\ufeff\u00ad"), "<U+2066>x<U+2069><U+FEFF><U+00AD>");
  assert.equal(shown("Žižek 漢字 👩"), "Žižek 漢字 👩");
});

test("a long name is cut between characters", () => {
  assert.equal(shown("x".repeat(200)), "x".repeat(200));
  assert.equal(shown("x".repeat(201)), `${"x".repeat(199)}…`);
  assert.equal(shown("😀".repeat(200)), "😀".repeat(200));
  assert.equal(shown("😀".repeat(300)), `${"😀".repeat(199)}…`);
  assert.equal(shownWhole("x".repeat(500)), "x".repeat(500));
});

test("numbers are written alike everywhere", () => {
  assert.equal(whole(1234567), "1,234,567");
  assert.deepEqual([0, -3, 0.5, 1e300, 1e-9, 123456.789].map(number), ["0", "−3", "0.5", "1.000e+300", "1.000e−9", "123,457"]);
  assert.deepEqual([NaN, Infinity, -Infinity].map(number), ["none", "∞", "−∞"]);
  assert.deepEqual([0, 0.5, 0.9999, 1].map(percent), ["0.0 %", "50.0 %", "99.9 %", "100 %"]);
});

test("a list of agents is understood or refused as a whole", () => {
  assert.deepEqual(agentsOf("all", 3), [0, 1, 2]);
  assert.deepEqual(agentsOf(" None ", 3), []);
  assert.deepEqual(agentsOf("2, 0-1 1", 3), [0, 1, 2]);
  for (const text of ["3", "0-3", "x", "-1", "1.5", "0,,a"]) assert.equal(agentsOf(text, 3), null, text);
});

test("settings come back from their address", () => {
  const data = decode(encode(walked(network("lesmis"), 3, 100)));
  const offers = offersOf(data, 12);
  const base = defaults(data, offers);
  assert.deepEqual(offers.colors, ["visits", "latest", "degree", "strength", "none"]);
  assert.equal(addressOf(base, base), "");
  const chosen = { ...base, step: 7, vertex: 3, color: "degree", agents: "0, 2", low: -1.5, theme: "dark" as const };
  assert.equal(addressOf(chosen, base), "s=7&v=3&color=degree&low=-1.5&agents=0%2C%202&theme=dark");
  assert.deepEqual(settingsFrom(`#${addressOf(chosen, base)}`, base, data, offers), chosen);
  const nonsense = "#s=101&v=77&speed=0&color=size&scale=cube&agents=4&trail=65&follow=3&low=x&theme=red&view=svg";
  assert.deepEqual(settingsFrom(nonsense, base, data, offers), base);
});

test("a column of too many texts is no colour, and what is not offered not chosen", () => {
  const n = 13;
  const texts = { Many: Array.from({ length: n }, (_, v) => `t${v}`) };
  const data = decode(encode({ n, edges: [], texts, color: { by: "column", column: 0 } }));
  const offers = offersOf(data, 12);
  assert.deepEqual(offers.colors, ["degree", "none"]);
  assert.equal(defaults(data, offers).color, "degree");
});

test("degrees and strengths count loops twice, and a directed network's ends apart", () => {
  const undirected = new Facts(decode(encode({ n: 2, edges: [[0, 0], [0, 1]], weights: [2, 3] })), null);
  assert.deepEqual([...undirected.degree], [3, 1]);
  assert.deepEqual([...(undirected.strength ?? [])], [7, 3]);
  const directed = new Facts(decode(encode(smallSamples["parallel"])), null);
  assert.deepEqual([[...directed.degree], [...directed.inDegree]], [[2, 1], [1, 2]]);
});

test("search puts the name itself first, then the index, beginnings and parts", () => {
  const names = ["10", "Anna", "ann", "Joanna", "x", "y", "z", "u", "v", "w", "b"];
  const facts = new Facts(decode(encode({ n: 11, edges: [], names })), null);
  assert.deepEqual(find(facts, "ANN"), [2, 1, 3]);
  assert.deepEqual(find(facts, "10"), [0, 10]);
  assert.deepEqual(find(facts, " "), []);
});

test("shares of a scale", () => {
  assert.deepEqual([1, 2, 3].map(shareOf("linear", 1, 3)), [0, 0.5, 1]);
  const log = [1, 10, 100].map(shareOf("log", 1, 100));
  assert.ok(Math.abs(log[1] - 0.5) < 1e-12 && log[0] === 0 && log[2] === 1);
  assert.deepEqual([5, 4].map(shareOf("linear", 5, 5)), [1, 0]);
  assert.deepEqual(extent([NaN, 3, Infinity, -2], false), [-2, 3]);
  assert.deepEqual(extent([0, 3], true), [3, 3]);
  assert.deepEqual(extent([], false), [0, 1]);
});

test("no field of a CSV is a formula", () => {
  assert.deepEqual(["a", "=1", "+1", "-1", "@x", "\tx", 'a"b', "a,b", "a\nb"].map(csvField), [
    "a", "'=1", "'+1", "'-1", "'@x", "'\tx", '"a""b"', '"a,b"', '"a\nb"',
  ]);
});

test("files have names that every system takes", () => {
  assert.equal(fileName("Les Misérables", "png"), "Les-Miserables.png");
  assert.equal(fileName("../../etc/passwd\u0000", "svg"), "etc-passwd.svg");
  assert.equal(fileName("漢字", "csv"), "network.csv");
});

test("software that stands in for a graphics processor is known by its name", () => {
  assert.equal(kindOf("ANGLE (Google, Vulkan 1.3.0 (SwiftShader Device (Subzero) (0x0000C0DE)), SwiftShader driver)"), "software");
  assert.equal(kindOf("llvmpipe (LLVM 15.0.6, 256 bits)"), "software");
  assert.equal(kindOf("ANGLE (Microsoft, Microsoft Basic Render Driver Direct3D11)"), "software");
  assert.equal(kindOf("ANGLE (NVIDIA, NVIDIA GeForce RTX 3060 Direct3D11)"), "hardware");
  assert.equal(softwareOf("llvmpipe (LLVM 15.0.6, 256 bits)"), "llvmpipe");
});

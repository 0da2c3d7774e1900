/** Blocks that the library wrote, of many kinds: VEQ_SAMPLES names the folder that page_samples filled. */
import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { Check } from "../../src/check.ts";
import { decode } from "../../src/data.ts";
import { Course } from "../../src/replay.ts";

const folder = process.env["VEQ_SAMPLES"];

test("what the library writes is read, and walks agree", { skip: folder ? false : "VEQ_SAMPLES is not set" }, () => {
  const names = readdirSync(folder ?? "").filter((name) => name.endsWith(".veqp"));
  assert.ok(names.length >= 25, `${names.length} samples`);
  let walks = 0;
  for (const name of names) {
    const { walk, meta } = decode(readFileSync(join(folder ?? "", name)));
    if (!walk) continue;
    ++walks;
    const check = new Check(new Course(meta.n, walk.starts, walk.steps, walk.mover), walk);
    let finding = check.advance();
    while (!finding) finding = check.advance();
    assert.deepEqual(finding, { agrees: true }, name);
  }
  assert.ok(walks >= 15, `${walks} walks`);
});

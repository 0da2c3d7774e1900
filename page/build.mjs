// build.mjs: writes the template that pages are made of; --tests bundles the tests into build/tests instead.
import { createHash } from "node:crypto";
import { mkdirSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";
import { build, transform } from "esbuild";

const here = dirname(fileURLToPath(import.meta.url));
const template = join(here, "..", "veq", "drawing", "page_template.html");
const MOST_BYTES = 400_000;
const slots = ["@@VEQ-TITLE@@", "@@VEQ-DATA@@"];

function read(name) {
  return readFileSync(join(here, "src", name), "utf8");
}

function hashOf(text) {
  return `'sha256-${createHash("sha256").update(text).digest("base64")}'`;
}

async function bundle() {
  const result = await build({
    entryPoints: [join(here, "src", "main.ts")],
    absWorkingDir: here,
    bundle: true,
    minify: true,
    write: false,
    format: "iife",
    target: ["chrome110", "firefox110", "safari16"],
    charset: "ascii",
    legalComments: "none",
    define: { "process.env.NODE_ENV": '"production"' },
  });
  const script = result.outputFiles[0].text.trim();
  if (/<\/script|<!--/i.test(script)) throw new Error("the script would end its element");
  return script;
}

// What is bundled asks that its notice goes along.
function notices() {
  const packages = JSON.parse(readFileSync(join(here, "package.json"), "utf8")).dependencies;
  const names = [...Object.keys(packages), "events", "graphology-utils"].sort();
  const texts = names.map((name) => {
    const text = readFileSync(licenceOf(join(here, "node_modules", name)), "utf8").trim();
    return `${name}\n\n${text.replaceAll("--", "- -")}`;
  });
  return `<!--\nThis file contains, besides VEQ, which is under the MIT licence:\n\n${texts.join("\n\n")}\n-->\n`;
}

function licenceOf(folder) {
  const file = readdirSync(folder).find((name) => /^licen[sc]e/i.test(name));
  if (!file) throw new Error(`${folder} has no licence`);
  return join(folder, file);
}

async function page() {
  const script = await bundle();
  const style = (await transform(read("style.css"), { loader: "css", minify: true })).code.trim();
  const policy = [
    "default-src 'none'",
    `script-src ${hashOf(script)}`,
    `style-src ${hashOf(style)}`,
    "img-src data: blob:",
    "worker-src blob:",
    "base-uri 'none'",
    "form-action 'none'",
  ].join("; ");
  const fill = { "@@POLICY@@": policy, "@@STYLE@@": style, "@@SCRIPT@@": script };
  const [kind, ...rest] = read("template.html").split("\n");
  const filled = rest.join("\n").replace(/@@[A-Z]+@@/g, (slot) => fill[slot] ?? slot);
  const text = `${kind}\n${notices()}${filled}`;
  for (const slot of slots) {
    if (text.split(slot).length !== 2) throw new Error(`the template has not exactly one ${slot}`);
  }
  const bytes = Buffer.byteLength(text);
  if (bytes > MOST_BYTES) throw new Error(`the template takes ${bytes} bytes of ${MOST_BYTES}`);
  return text;
}

async function tests() {
  const out = join(here, "build", "tests");
  rmSync(out, { recursive: true, force: true });
  const folders = readdirSync(join(here, "tests"), { withFileTypes: true });
  const entries = folders
    .filter((folder) => folder.isDirectory() && folder.name !== "support")
    .flatMap((folder) =>
      readdirSync(join(here, "tests", folder.name))
        .filter((name) => name.endsWith(".ts"))
        .map((name) => join(here, "tests", folder.name, name)),
    );
  await build({
    entryPoints: entries,
    outdir: out,
    outbase: join(here, "tests"),
    outExtension: { ".js": ".mjs" },
    bundle: true,
    platform: "node",
    format: "esm",
    target: "node18",
    external: ["playwright-core", "axe-core"],
    sourcemap: "inline",
  });
  await build({
    entryPoints: [join(here, "tests", "support", "inpage.ts")],
    outfile: join(out, "inpage.js"),
    bundle: true,
    minify: true,
    format: "iife",
    target: "es2022",
    logLevel: "error",
  });
}

if (process.argv.includes("--tests")) {
  await tests();
} else {
  const text = await page();
  const out = process.argv[2] ?? template;
  mkdirSync(dirname(out), { recursive: true });
  writeFileSync(out, text);
  console.log(`${out}: ${Buffer.byteLength(text)} bytes of ${MOST_BYTES}`);
}

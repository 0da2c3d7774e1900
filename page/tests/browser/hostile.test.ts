/** Names come from strangers: whatever they hold is shown as text and does nothing. */
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { after, before, test } from "node:test";
import type { Browser, Page } from "playwright-core";
import { encode } from "../support/encode.ts";
import type { Content } from "../support/encode.ts";
import { checked, fileOf, htmlOf, launch, open, templateFile } from "../support/browser.ts";
import { walked } from "../support/samples.ts";

let browser: Browser;
before(async () => {
  browser = await launch();
});
after(() => browser.close());

const pwn = "window.pwned=1;alert(1)";
const hostile = [
  `</script><script>${pwn}</script>`,
  `<img src=x onerror="${pwn}">`,
  `<svg onload='${pwn}'>`,
  `javascript:${pwn}`,
  `" onmouseover="${pwn}" x="`,
  `\u0000\u202e${pwn}`,
  `\${${pwn}}{{constructor.constructor('${pwn}')()}}`,
  `--><script>${pwn}</script><!--`,
  `]]></title></style><iframe srcdoc="<script>parent.${pwn}</script>">`,
  `=HYPERLINK("http://example.invalid/","x")`,
  `@@VEQ-DATA@@`,
  "x".repeat(100_000),
];

function hostilePage(): Content {
  const n = hostile.length;
  const edges = Array.from({ length: n }, (_, v): [number, number] => [v, (v + 1) % n]);
  const content: Content = {
    title: hostile[0],
    version: hostile[1],
    call: hostile.slice(0, -1).join(" "),
    n,
    edges,
    names: hostile,
    numbers: Object.fromEntries(hostile.map((name, i) => [name.slice(0, 90), hostile.map(() => i)])),
    texts: { [hostile[2]]: hostile, [hostile[3]]: hostile },
    color: { by: "column", column: n },
  };
  return walked(content, 3, 50);
}

async function isUntouched(page: Page, faults: string[]): Promise<void> {
  assert.equal(await page.evaluate(() => "pwned" in window), false);
  assert.deepEqual(faults, []);
  assert.equal(await page.locator("iframe, img, object, embed, form, base").count(), 0);
  assert.equal(await page.locator("script").count(), 2);
}

test("hostile names in every place are text", async () => {
  const address = fileOf(
    htmlOf(encode(hostilePage()), hostile.slice(0, -1).join(" ")),
    "a&b <img src=x onerror=alert(1)> '.html",
  );
  const { page, watch, close } = await open(browser, address);
  await page.evaluate(() => {
    document.addEventListener("securitypolicyviolation", (event) => {
      console.error(`policy ${event.violatedDirective}`);
    });
  });
  assert.equal(await checked(page), "recomputed in your browser: agrees");
  assert.equal(await page.textContent("#title"), hostile[0]);
  await page.click("#show-table");
  const names = await page.locator("#table-body button").allTextContents();
  assert.equal(names[0], hostile[0]);
  assert.equal(names[5], `<U+0000><U+202E>${pwn}`);
  assert.equal(names[11], `${"x".repeat(199)}…`);
  for (const id of ["index", "name"]) await page.click(`#rows th:has-text('${id}')`);
  await page.click("#show-picture");
  for (let v = 0; v < hostile.length; ++v) {
    await page.fill("#search", String(v));
    await page.keyboard.press("Enter");
  }
  assert.equal(await page.textContent("#vertex-name"), `${"x".repeat(199)}…`);
  assert.equal(await page.getAttribute("#vertex-name", "title"), "x".repeat(100_000));
  for (const option of await page.locator("#color option").all()) {
    await page.selectOption("#color", (await option.getAttribute("value")) ?? "");
  }
  const box = (await page.locator("#picture").boundingBox())!;
  for (let i = 0; i < 20; ++i) {
    await page.mouse.move(box.x + (box.width * (i + 1)) / 21, box.y + box.height / 2 - i);
  }
  await page.fill("#speed", "120");
  await page.click("#play");
  await page.waitForFunction(() => document.getElementById("step-now")?.textContent === "50");
  await isUntouched(page, watch.faults);
  await close();
});

test("what is saved of hostile names is text, too", async () => {
  const { page, watch, close } = await open(browser, fileOf(htmlOf(encode(hostilePage()))));
  const saved = async (id: string) => {
    const download = page.waitForEvent("download");
    await page.click(id);
    const file = await download;
    assert.match(file.suggestedFilename(), /^[A-Za-z0-9-]+\.(svg|csv|png)$/);
    return readFileSync(await file.path(), "utf8");
  };
  const svg = await saved("#save-svg");
  assert.ok(svg.includes("&lt;img src=x onerror="));
  assert.ok(!/<(script|img|iframe)/i.test(svg));
  const csv = await saved("#save-csv");
  assert.ok(csv.includes(`"'=HYPERLINK(""http://example.invalid/"",""x"")"`));
  await saved("#save-png");
  await isUntouched(page, watch.faults);
  await close();
});

test("the title's slot takes all 256 bytes, and the data's whatever base64 can say", async () => {
  const all = String.fromCharCode(...Array.from({ length: 256 }, (_, i) => i)).repeat(2);
  const html = htmlOf(encode(hostilePage()), all + hostile.slice(0, -1).join(""));
  const { page, watch, close } = await open(browser, fileOf(html));
  await isUntouched(page, watch.faults);
  await close();
  const bytes = Uint8Array.from({ length: 768 }, (_, i) => i % 256);
  const refused = await open(browser, fileOf(htmlOf(bytes)));
  assert.equal(
    await refused.page.textContent("#failure"),
    "The data of this page is damaged: the block does not begin as one.",
  );
  await isUntouched(refused.page, refused.watch.faults);
  await refused.close();
});

test("the policy allows the page's own script and nothing else", async () => {
  const { page, close } = await open(browser, fileOf(htmlOf(encode(hostilePage()))));
  const refusals = await page.evaluate(async () => {
    const seen: string[] = [];
    document.addEventListener("securitypolicyviolation", (event) => {
      seen.push(event.effectiveDirective);
    });
    const script = document.createElement("script");
    script.textContent = "window.pwned = 1";
    document.body.append(script);
    const image = document.createElement("img");
    image.setAttribute("onerror", "window.pwned = 1");
    image.src = "file:///nothing.png";
    document.body.append(image);
    await fetch("http://example.invalid/").catch(() => undefined);
    await new Promise((done) => setTimeout(done, 300));
    return seen.sort();
  });
  assert.ok(refusals.includes("script-src-elem"));
  assert.ok(refusals.includes("connect-src"));
  assert.ok(refusals.includes("img-src"));
  assert.equal(await page.evaluate(() => "pwned" in window), false);
  await close();
});

test("the template has its two slots, one script and one style with their hashes, and no address", () => {
  const template = readFileSync(templateFile, "utf8");
  for (const slot of ["@@VEQ-TITLE@@", "@@VEQ-DATA@@"]) assert.equal(template.split(slot).length, 2);
  assert.ok(Buffer.byteLength(template) <= 400_000);
  assert.match(template, /content="default-src 'none'; script-src 'sha256-[^' ]+'; style-src 'sha256-[^' ]+';/);
  assert.ok(!template.includes("unsafe-"));
  assert.ok(!/(src|href)\s*=\s*["']?https?:/i.test(template));
  assert.ok(!/\beval\(|new Function\(/.test(template));
});

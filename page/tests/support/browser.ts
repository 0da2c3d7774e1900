/** Pages in Debian's Chromium. */
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";
import { chromium } from "playwright-core";
import type { Browser, BrowserContextOptions, Locator, Page } from "playwright-core";
import { fromBase64 } from "../../src/bytes.ts";
import { encode } from "./encode.ts";
import type { Content } from "./encode.ts";
import { root } from "./networks.ts";

export const templateFile = join(root, "veq/drawing/page_template.html");

export function launch(...args: string[]): Promise<Browser> {
  return chromium.launch({
    executablePath: process.env["VEQ_CHROMIUM"] ?? "/usr/bin/chromium",
    args: ["--no-sandbox", "--disable-quic", "--no-first-run", "--disable-background-networking",
      "--disable-component-update", "--disable-sync", ...args],
  });
}

/** A folder for the files of a test, which goes away with the process. */
export const folder = mkdtempSync(join(tmpdir(), "veq-page-"));
process.on("exit", () => {
  rmSync(folder, { recursive: true, force: true });
});

export function escaped(text: string): string {
  const signs: Record<string, string> = { "&": "&amp;", "<": "&lt;", ">": "&gt;", '"': "&quot;", "'": "&#39;" };
  return text.replace(/[&<>"']/g, (sign) => signs[sign]);
}

/** A page of a block, as the library writes it. */
export function htmlOf(block: Uint8Array, title = ""): string {
  const template = readFileSync(templateFile, "utf8");
  // In one pass, for a title may name the other slot.
  return template.replace(/@@VEQ-(TITLE|DATA)@@/g, (_, slot) =>
    slot === "TITLE" ? escaped(title) : Buffer.from(block).toString("base64"),
  );
}

let files = 0;

/** The address of a file with this page. */
export function fileOf(html: string, name = `page${++files}.html`): string {
  const file = join(folder, name);
  writeFileSync(file, html);
  return pathToFileURL(file).href;
}

export function addressOf(content: Content): string {
  return fileOf(htmlOf(encode(content), content.title ?? ""));
}

/** The page that the program wrote, in the template as it is now, which the program may be older than. */
export function pageOf(file: string): string {
  const data = /application\/octet-stream">([^<]*)</.exec(readFileSync(file, "utf8"))?.[1] ?? "";
  return fileOf(htmlOf(fromBase64(data)));
}

/** What must not happen on any page, gathered as it does. */
export class Watch {
  readonly faults: string[] = [];

  constructor(page: Page, address: string) {
    page.on("dialog", (dialog) => {
      this.faults.push(`dialog ${dialog.message()}`);
      void dialog.dismiss();
    });
    page.on("pageerror", (error) => {
      this.faults.push(`error ${error.message}`);
    });
    page.on("console", (message) => {
      if (message.type() === "error") this.faults.push(`console ${message.text()}`);
    });
    page.on("request", (request) => {
      const url = request.url();
      const isOwn = url.split("#")[0] === address.split("#")[0] || /^(blob|data):/.test(url);
      if (!isOwn) this.faults.push(`request ${url}`);
    });
  }
}

export interface Opened {
  page: Page;
  watch: Watch;
  close: () => Promise<void>;
}

/** Opens an address and waits until the page is drawn. */
export async function open(
  browser: Browser,
  address: string,
  options: BrowserContextOptions = {},
): Promise<Opened> {
  const context = await browser.newContext({
    viewport: { width: 1180, height: 760 },
    // So that a walk waits until a test plays it.
    reducedMotion: "reduce",
    ...options,
  });
  const page = await context.newPage();
  // A machine may be busy with other things, and a page of 10^5 vertices takes a second to draw on a free one.
  page.setDefaultTimeout(120_000);
  const watch = new Watch(page, address);
  settleAfterActions(page);
  await page.goto(address);
  await page.waitForFunction(() => !document.getElementById("app")?.hidden || !document.getElementById("failure")?.hidden);
  await settle(page);
  return { page, watch, close: () => context.close() };
}

const settling = new WeakSet<object>();

function settleAfter(target: object, actions: readonly string[], pageFor: (self: unknown) => Page): void {
  if (settling.has(target)) return;
  settling.add(target);
  for (const name of actions) {
    const act = Reflect.get(target, name) as (...values: unknown[]) => Promise<unknown>;
    Reflect.set(target, name, async function (this: unknown, ...values: unknown[]): Promise<unknown> {
      const result = await Reflect.apply(act, this, values);
      // A page that an action has left shows nothing more.
      await settle(pageFor(this)).catch(() => undefined);
      return result;
    });
  }
}

/** Has actions wait until the page shows what they did: most questions of tests wait for nothing. */
function settleAfterActions(page: Page): void {
  const onElements = ["click", "fill", "press", "selectOption"];
  settleAfter(page, onElements, () => page);
  settleAfter(Object.getPrototypeOf(page.locator("html")) as object, onElements, (self) => (self as Locator).page());
  settleAfter(page.keyboard, ["press", "type"], () => page);
}

/** Waits for two frames, after which what was asked for is drawn. */
export async function settle(page: Page): Promise<void> {
  await page.evaluate(
    () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))),
  );
}

export async function checked(page: Page): Promise<string> {
  await page.waitForFunction(() => /agrees|differs/.test(document.getElementById("check-text")?.textContent ?? ""));
  return (await page.textContent("#check-text")) ?? "";
}

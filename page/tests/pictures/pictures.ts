/** Takes the pictures of docs/pictures and of the README from pages that the program writes. */
import { mkdirSync, statSync } from "node:fs";
import { join } from "node:path";
import { checked, launch, open, pageOf, settle } from "../support/browser.ts";
import { root, veq } from "../support/networks.ts";

/** The first picture stands in the README. */
const mostBytes = (name: string): number => (name === "lesmis" ? 200_000 : 400_000);
const out = process.argv[2] ?? join(root, "docs/pictures");
mkdirSync(out, { recursive: true });

// Pages tell how they were made: names of files are short, and of no one's machine.
mkdirSync(join(root, "build"), { recursive: true });
const lesmis = "build/lesmis.html";
veq("walk", "data/lesmis.xnet", "--agents", "5", "--steps", "1000000", "--until-reach", "0.99", "--seed", "1",
  "--page", lesmis, "--title", "Les Misérables");
const karate = "build/karate.html";
veq("walk", "data/karate.xnet", "--agents", "3", "--steps", "400", "--memory", "6", "--seed", "1", "--page", karate);
const grownFile = "build/grown.xnet";
const grown = "build/grown.html";
veq("generate", "barabasi-albert", "--vertices", "3000", "--links", "2", "--seed", "1", grownFile);
veq("walk", grownFile, "--agents", "20", "--steps", "2000", "--choice", "even", "--seed", "1", "--page", grown,
  "--title", "A grown network");

const wide = { width: 1180, height: 740 };
const scenes: { name: string; page: string; hash: string; dark?: boolean; viewport?: typeof wide }[] = [
  { name: "lesmis", page: lesmis, hash: "s=END" },
  { name: "lesmis-dark", page: lesmis, hash: "s=150&v=10", dark: true },
  { name: "memory", page: karate, hash: "s=120&follow=0&trail=12&size=visits" },
  { name: "grown", page: grown, hash: "s=2000&scale=log&agents=0-4", dark: true },
  { name: "table", page: lesmis, hash: "s=150&table=true" },
  { name: "phone", page: lesmis, hash: "s=150", viewport: { width: 390, height: 844 } },
];

const browser = await launch();
for (const scene of scenes) {
  const address = `${pageOf(join(root, scene.page))}#${scene.hash.replace("s=END&", "").replace("s=END", "")}`;
  const { page, watch, close } = await open(browser, address, {
    viewport: scene.viewport ?? wide,
    colorScheme: scene.dark ? "dark" : "light",
  });
  const says = await checked(page);
  if (scene.hash.includes("END")) await page.click("#to-end");
  await settle(page);
  await page.waitForTimeout(400);
  if (!says.endsWith("agrees") || watch.faults.length > 0) throw new Error(`${scene.name}: ${says} ${watch.faults.join()}`);
  const file = join(out, `${scene.name}.png`);
  await page.mouse.move(0, 0);
  await page.screenshot({ path: file });
  const bytes = statSync(file).size;
  if (bytes > mostBytes(scene.name)) throw new Error(`${file} takes ${bytes} bytes`);
  console.log(`${file}: ${bytes} bytes`);
  await close();
}
await browser.close();

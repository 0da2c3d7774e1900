import { App } from "./app.ts";
import { PageError, fromBase64 } from "./bytes.ts";
import {
  bindAgents,
  bindExport,
  bindHead,
  bindKeys,
  bindLooks,
  bindVertex,
  bindWalk,
  bindZoom,
} from "./controls.ts";
import { decode } from "./data.ts";
import { block } from "./dom.ts";

function start(): void {
  const app = new App(decode(fromBase64(block("data").textContent)));
  bindHead(app);
  bindWalk(app);
  bindLooks(app);
  bindAgents(app);
  bindVertex(app);
  bindExport(app);
  bindZoom(app);
  bindKeys(app);
  app.showTable(app.settings.table);
}

try {
  start();
} catch (error) {
  // One sentence, and no half of a page.
  block("app").hidden = true;
  const failure = block("failure");
  failure.hidden = false;
  failure.textContent =
    error instanceof PageError ? error.message : "This page cannot be shown in this browser.";
  if (!(error instanceof PageError)) throw error;
}

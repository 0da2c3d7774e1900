// forceatlas2.mjs EDGES N ITERATIONS: as layout_points, by graphology's ForceAtlas2 with the settings that it
// infers from the size, from a circle with some noise of a fixed seed.
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";

const require = createRequire(`${process.env.VEQ_LAYOUT_PEERS}/`);
const { UndirectedGraph } = require("graphology");
const forceAtlas2 = require("graphology-layout-forceatlas2");

const [file, count, iterations] = process.argv.slice(2);
const graph = new UndirectedGraph();
let state = 1;
const noise = () => {
  state = (Math.imul(state, 1103515245) + 12345) >>> 0;
  return state / 2 ** 32 - 0.5;
};
for (let v = 0; v < Number(count); ++v) {
  const angle = (2 * Math.PI * v) / Number(count);
  graph.addNode(String(v), { x: Math.cos(angle) + 0.1 * noise(), y: Math.sin(angle) + 0.1 * noise() });
}
for (const line of readFileSync(file, "utf8").split("\n")) {
  const [source, target] = line.split(" ");
  if (target !== undefined && source !== target) graph.mergeEdge(source, target);
}
const begin = performance.now();
const points = forceAtlas2(graph, {
  iterations: Number(iterations),
  settings: forceAtlas2.inferSettings(graph),
});
console.log(((performance.now() - begin) / 1000).toFixed(4));
for (let v = 0; v < Number(count); ++v) console.log(`${points[v].x} ${points[v].y}`);

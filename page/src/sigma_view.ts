import { MultiDirectedGraph } from "graphology";
import Sigma from "sigma";
import { EdgeArrowProgram, EdgeLineProgram } from "sigma/rendering";
import { css, mixed } from "./color.ts";
import { FADED, colorOf, edgeOpacity, growth } from "./scene.ts";
import type { Detail, Scene, View } from "./scene.ts";

interface NodeLook {
  x: number;
  y: number;
}

/**
 * sigma in WebGL. It is told what to show; gestures, names and agents are the page's own, and the style sheet
 * keeps pointers from it. Its camera must allow panning and zooming all the same, or it would not be moved.
 */
export class SigmaView implements View {
  readonly kind = "webgl";
  private sigma: Sigma<NodeLook> | null = null;
  private edgeColors = { plain: "", marked: "" };

  /** `lost` is called once where the browser takes the graphics away. */
  constructor(
    private readonly container: HTMLElement,
    private readonly lost: () => void,
  ) {}

  resize(): void {
    this.sigma?.resize();
  }

  draw(scene: Scene, detail: Detail): void {
    const opacity = edgeOpacity(scene.sources.length) * (scene.hasFaded ? 0.35 : 1);
    this.edgeColors = {
      plain: css(mixed(scene.shades.edge, scene.shades.ground, opacity)),
      marked: css(mixed(scene.shades.ink, scene.shades.ground, 0.75)),
    };
    const isNew = this.sigma === null;
    const sigma = (this.sigma ??= this.open(scene));
    // A new place of the camera is shown with the browser's next picture; looks take a pass over all.
    sigma.getCamera().setState(cameraOf(scene));
    if (detail === "still" && !isNew) sigma.refresh({ skipIndexation: true });
  }

  dispose(): void {
    const { sigma } = this;
    this.sigma = null;
    sigma?.kill();
  }

  private open(scene: Scene): Sigma<NodeLook> {
    const graph = new MultiDirectedGraph<NodeLook>();
    for (let v = 0; v < scene.n; ++v) graph.addNode(v, { x: scene.x[v], y: 1 - scene.y[v] });
    for (let e = 0; e < scene.sources.length; ++e) {
      graph.addEdgeWithKey(e, scene.sources[e], scene.targets[e]);
    }
    const sigma = new Sigma<NodeLook>(new MultiDirectedGraph<NodeLook>(), this.container, {
      autoRescale: true,
      stagePadding: 0,
      renderLabels: false,
      renderEdgeLabels: false,
      enableEdgeEvents: false,
      enableCameraRotation: false,
      allowInvalidContainer: true,
      minEdgeThickness: 0.7,
      minCameraRatio: null,
      maxCameraRatio: null,
      zIndex: true,
      itemSizesReference: "screen",
      zoomToSizeRatioFunction: () => 1 / growth(scene),
      defaultEdgeType: scene.directed ? "arrow" : "line",
      edgeProgramClasses: { line: EdgeLineProgram, arrow: EdgeArrowProgram },
      nodeReducer: (node) => this.nodeLook(scene, Number(node)),
      edgeReducer: (edge) => this.edgeLook(scene, Number(edge)),
    });
    // Its square is the drawing's, whatever part of it the vertices take.
    sigma.setCustomBBox({ x: [0, 1], y: [0, 1] });
    sigma.setGraph(graph);
    for (const canvas of Object.values(sigma.getCanvases())) {
      canvas.addEventListener("webglcontextlost", () => {
        // One that was disposed of gave its graphics back itself.
        if (this.sigma === sigma) this.lost();
      });
    }
    return sigma;
  }

  // Colours are mixed with the ground here, since sigma's programs do not mix them as a canvas does.
  private nodeLook(scene: Scene, v: number) {
    return {
      x: scene.x[v],
      y: 1 - scene.y[v],
      size: scene.radius[v],
      color: css(mixed(colorOf(scene, v), scene.shades.ground, scene.faded[v] ? FADED : 1)),
      zIndex: scene.faded[v] ? 0 : 1,
    };
  }

  private edgeLook(scene: Scene, e: number) {
    const isMarked = scene.sources[e] === scene.marked || scene.targets[e] === scene.marked;
    if (isMarked) return { size: 1.6, color: this.edgeColors.marked, zIndex: 1 };
    return { size: 0.9, color: this.edgeColors.plain, zIndex: 0 };
  }
}

function cameraOf(scene: Scene) {
  const ratio = Math.min(scene.width, scene.height) / scene.camera.scale;
  return { x: scene.camera.x, y: 1 - scene.camera.y, ratio, angle: 0 };
}

/** What draws WebGL here. */
export type Graphics =
  | { readonly kind: "none" }
  | { readonly kind: "software" | "hardware"; readonly name: string };

const SOFTWARE = /swiftshader|llvmpipe|softpipe|microsoft basic|software/i;

/** The name tells software from a graphics processor; the browser's own flag for that does not. */
export function kindOf(name: string): "software" | "hardware" {
  return SOFTWARE.test(name) ? "software" : "hardware";
}

/** The name of the software that stands in for a graphics processor. */
export function softwareOf(name: string): string {
  return SOFTWARE.exec(name)?.[0] ?? "software";
}

export function graphicsHere(): Graphics {
  const canvas = document.createElement("canvas");
  const gl = canvas.getContext("webgl2") ?? canvas.getContext("webgl");
  if (!gl) return { kind: "none" };
  const info = gl.getExtension("WEBGL_debug_renderer_info");
  const told: unknown = gl.getParameter(info ? info.UNMASKED_RENDERER_WEBGL : gl.RENDERER);
  const name = String(told);
  gl.getExtension("WEBGL_lose_context")?.loseContext();
  return { kind: kindOf(name), name };
}

import type { Picker, Scene } from "./scene.ts";
import { pan, zoomAt } from "./scene.ts";

/** What gestures on the picture do. */
export interface Handlers {
  moved(): void;
  /** The pointer rests on a vertex, or on none (-1), at this point of the picture. */
  hover(vertex: number, x: number, y: number): void;
  /** A vertex was clicked, or none (-1). */
  press(vertex: number): void;
}

/** How far a pointer may move and still click. */
const CLICK_REACH = 4;
const PICK_REACH = 6;
const TOUCH_REACH = 14;
const DOUBLE_MS = 320;

interface Point {
  x: number;
  y: number;
}

/** Mouse, pen and touch on the picture: drag, wheel, pinch, click, double click. */
export function listen(
  picture: HTMLElement,
  scene: Scene,
  picker: Picker,
  handlers: Handlers,
): void {
  const pointers = new Map<number, Point>();
  let travelled = 0;
  let latestClick = { time: -Infinity, x: 0, y: 0 };

  const pointOf = (event: MouseEvent): Point => {
    const box = picture.getBoundingClientRect();
    return { x: event.clientX - box.left, y: event.clientY - box.top };
  };

  picture.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    if (pointers.size === 0) travelled = 0;
    pointers.set(event.pointerId, pointOf(event));
    picture.setPointerCapture(event.pointerId);
    handlers.hover(-1, 0, 0);
  });

  picture.addEventListener("pointermove", (event) => {
    const to = pointOf(event);
    const from = pointers.get(event.pointerId);
    if (!from) {
      if (event.pointerType !== "touch") {
        handlers.hover(picker.at(to.x, to.y, PICK_REACH), to.x, to.y);
      }
      return;
    }
    travelled += Math.hypot(to.x - from.x, to.y - from.y);
    if (pointers.size === 1 && travelled > CLICK_REACH) pan(scene, to.x - from.x, to.y - from.y);
    if (pointers.size === 2) pinch(event.pointerId, to);
    pointers.set(event.pointerId, to);
    if (travelled > CLICK_REACH) handlers.moved();
  });

  const pinch = (id: number, to: Point): void => {
    const from = pointers.get(id);
    const other = [...pointers].find(([each]) => each !== id)?.[1];
    if (!from || !other) return;
    const before = Math.hypot(from.x - other.x, from.y - other.y);
    const after = Math.hypot(to.x - other.x, to.y - other.y);
    pan(scene, (to.x - from.x) / 2, (to.y - from.y) / 2);
    if (before > 0) zoomAt(scene, after / before, (to.x + other.x) / 2, (to.y + other.y) / 2);
  };

  const release = (event: PointerEvent): void => {
    const wasDown = pointers.delete(event.pointerId);
    if (!wasDown || event.type !== "pointerup" || travelled > CLICK_REACH) return;
    const at = pointOf(event);
    const isDouble =
      event.timeStamp - latestClick.time < DOUBLE_MS &&
      Math.hypot(at.x - latestClick.x, at.y - latestClick.y) < 2 * CLICK_REACH;
    latestClick = { time: isDouble ? -Infinity : event.timeStamp, x: at.x, y: at.y };
    if (isDouble) {
      zoomAt(scene, 2, at.x, at.y);
      handlers.moved();
      return;
    }
    const reach = event.pointerType === "touch" ? TOUCH_REACH : PICK_REACH;
    handlers.press(picker.at(at.x, at.y, reach));
  };
  picture.addEventListener("pointerup", release);
  picture.addEventListener("pointercancel", release);
  picture.addEventListener("pointerleave", () => {
    handlers.hover(-1, 0, 0);
  });

  picture.addEventListener(
    "wheel",
    (event) => {
      event.preventDefault();
      const at = pointOf(event);
      // Lines and pages come from mice whose wheels click.
      const pixels = event.deltaY * [1, 20, 200][event.deltaMode];
      zoomAt(scene, Math.exp(-Math.max(-200, Math.min(200, pixels)) * 0.0022), at.x, at.y);
      handlers.moved();
    },
    { passive: false },
  );
}

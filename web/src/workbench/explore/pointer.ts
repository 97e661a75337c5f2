// The mouse on the planes and on the solid view. Moves are followed once per picture, the newest alone.
import type { BrainCanvas } from "./brain_canvas";
import { OncePerFrame } from "./frames";
import type { MapView } from "./map_view";

function isMain(event: PointerEvent): boolean {
  return event.button === 0 && event.isPrimary;
}

// Shift: the other one of reference and crosshair.
export function followPointer(canvas: BrainCanvas, view: Pick<MapView, "follow" | "hovers">): void {
  let last: PointerEvent | null = null;
  const frame = new OncePerFrame(() => {
    const mm = last === null ? null : canvas.mmAt(last.clientX, last.clientY);
    if (mm !== null && last !== null) view.follow(mm, last.shiftKey);
  });
  const follow = (event: PointerEvent): void => {
    last = event;
    frame.ask();
  };
  const element = canvas.canvas;
  element.addEventListener("pointerdown", (event) => {
    if (!isMain(event)) return;
    event.preventDefault();
    element.setPointerCapture(event.pointerId);
    element.focus({ preventScroll: true });
    follow(event);
  });
  element.addEventListener("pointermove", (event) => {
    if (element.hasPointerCapture(event.pointerId)) follow(event);
    else if (view.hovers && !event.shiftKey) follow(event);
  });
}

const kDegreesPerPixel = 0.5;

export function turnByPointer(canvas: BrainCanvas): void {
  const element = canvas.canvas;
  element.addEventListener("pointerdown", (event) => {
    if (!isMain(event)) return;
    event.preventDefault();
    element.setPointerCapture(event.pointerId);
    element.focus({ preventScroll: true });
  });
  element.addEventListener("pointermove", (event) => {
    if (!element.hasPointerCapture(event.pointerId)) return;
    canvas.turn(event.movementX * kDegreesPerPixel, event.movementY * kDegreesPerPixel);
  });
  element.addEventListener("keydown", (event) => {
    const step = { ArrowLeft: [-10, 0], ArrowRight: [10, 0], ArrowUp: [0, 10], ArrowDown: [0, -10] }[
      event.key
    ];
    if (step === undefined) return;
    event.preventDefault();
    event.stopPropagation();
    canvas.turn(step[0] ?? 0, step[1] ?? 0);
  });
}

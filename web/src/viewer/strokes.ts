// Lines over a slice: the outline of the reference and the crosshair, each on a dark casing.
import type { Edge } from "./slice_pixels";

export interface Pen {
  readonly colour: string;
  readonly width: number;
  readonly casing: number;
}

export const kOutlinePen: Pen = { colour: "rgb(0 255 255)", width: 1.5, casing: 3 };
export const kCrosshairPen: Pen = { colour: "rgb(255 255 255 / 0.8)", width: 1, casing: 2.5 };

// Edges in slice pixels; a slice pixel is `across` by `down` pixels of the canvas.
export function strokeEdges(
  context: CanvasRenderingContext2D,
  edges: readonly Edge[],
  across: number,
  down: number,
  pen: Pen,
): void {
  context.beginPath();
  for (const [x0, y0, x1, y1] of edges) {
    context.moveTo(x0 * across, y0 * down);
    context.lineTo(x1 * across, y1 * down);
  }
  const fine = devicePixelRatio;
  context.lineCap = "round";
  context.strokeStyle = "rgb(0 0 0 / 0.6)";
  context.lineWidth = pen.casing * fine;
  context.stroke();
  context.strokeStyle = pen.colour;
  context.lineWidth = pen.width * fine;
  context.stroke();
}

// Four arms that leave the voxel under them free.
export function crosshairEdges(column: number, row: number, width: number, height: number): Edge[] {
  const [x, y] = [column + 0.5, row + 0.5];
  const gap = 1.5;
  return [
    [0, y, Math.max(x - gap, 0), y],
    [Math.min(x + gap, width), y, width, y],
    [x, 0, x, Math.max(y - gap, 0)],
    [x, Math.min(y + gap, height), x, height],
  ];
}

// Slices as pixels, and outlines of what they cut.
import { offsetOf } from "../data/grid";
import type { Triple } from "../data/page_data";
import { heightOf, voxelAt, widthOf, type Plane } from "./planes";

// Calls `visit` for each pixel of the slice through `at`, rows from the top, with the voxel's offset.
export function eachPixel(
  plane: Plane,
  size: Triple,
  at: Triple,
  visit: (offset: number, column: number, row: number) => void,
): void {
  const [width, height] = [widthOf(plane, size), heightOf(plane, size)];
  const first = offsetOf(size, voxelAt(plane, size, at, { column: 0, row: 0 }));
  const strides = [1, size[0], size[0] * size[1]] as const;
  for (let row = 0; row < height; ++row) {
    const start = first - row * strides[plane.up];
    for (let column = 0; column < width; ++column) visit(start + column * strides[plane.across], column, row);
  }
}

// Writes the colour of the voxel at `offset` into four bytes from `to` on: red, green, blue, opacity.
export type Painter = (offset: number, pixels: Uint8ClampedArray, to: number) => void;

export function slicePixels(
  plane: Plane,
  size: Triple,
  at: Triple,
  paint: Painter,
): Uint8ClampedArray<ArrayBuffer> {
  const pixels = new Uint8ClampedArray(4 * widthOf(plane, size) * heightOf(plane, size));
  let to = 0;
  eachPixel(plane, size, at, (offset) => {
    paint(offset, pixels, to);
    to += 4;
  });
  return pixels;
}

// Edges between pixels inside a region and pixels outside: x0 y0 x1 y1, in pixels from the top left corner.
export type Edge = readonly [number, number, number, number];

export function outline(plane: Plane, size: Triple, at: Triple, region: ArrayLike<number>): Edge[] {
  const [width, height] = [widthOf(plane, size), heightOf(plane, size)];
  const inside = new Uint8Array(width * height);
  eachPixel(plane, size, at, (offset, x, y) => (inside[y * width + x] = region[offset] ? 1 : 0));
  const isIn = (x: number, y: number): boolean =>
    x >= 0 && y >= 0 && x < width && y < height && inside[y * width + x] === 1;
  const edges: Edge[] = [];
  for (let y = 0; y <= height; ++y) {
    for (let x = 0; x <= width; ++x) {
      if (isIn(x, y) !== isIn(x - 1, y)) edges.push([x, y, x, y + 1]);
      if (isIn(x, y) !== isIn(x, y - 1)) edges.push([x, y, x + 1, y]);
    }
  }
  return edges;
}

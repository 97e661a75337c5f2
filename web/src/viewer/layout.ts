// How large the three planes are: one scale for all, so that they compare.
import { voxelEdges } from "../data/grid";
import type { GridData, Triple } from "../data/page_data";
import { heightOf, widthOf, type Plane } from "./planes";

const kGap = 8; // pixels between planes; .planes has the same gap
const kNarrow = 540; // below this width the planes take two rows
const kTallest = 420;

function extents(grid: GridData): Triple {
  const edges = voxelEdges(grid.affine);
  return [grid.size[0] * edges[0], grid.size[1] * edges[1], grid.size[2] * edges[2]];
}

// Pixels per millimetre for planes within `width` pixels.
export function scaleFor(grid: GridData, width: number): number {
  const [x, y, z] = extents(grid);
  const fitting = width < kNarrow ? (width - kGap) / (x + Math.max(x, y)) : (width - 2 * kGap) / (2 * x + y);
  return Math.max(Math.min(fitting, kTallest / Math.max(y, z)), 0.2);
}

// Width and height of a plane in pixels.
export function planeSize(plane: Plane, grid: GridData, scale: number): readonly [number, number] {
  const edges = voxelEdges(grid.affine);
  return [
    Math.floor(widthOf(plane, grid.size) * edges[plane.across] * scale),
    Math.floor(heightOf(plane, grid.size) * edges[plane.up] * scale),
  ];
}

// The grid that the brain is drawn on: upright, in steps of equal length, over a box of millimetres. Images
// of any slant are drawn on it, so that what a pixel shows is known exactly.
import { millimetres } from "../../data/grid";
import type { AffineRows, Triple } from "../../data/page_data";
import { inverse, type Matrix } from "./affine";

export interface DisplayGrid {
  readonly size: Triple;
  readonly affine: AffineRows;
  readonly edgeMm: number;
}

// More voxels than this make drawing slow where a program does the work of a graphics card.
const kMostVoxels = 1_000_000;

export function displayGrid(lowest: Triple, highest: Triple, finestMm: number): DisplayGrid {
  const extent = (axis: 0 | 1 | 2): number => Math.max(highest[axis] - lowest[axis], finestMm);
  const volume = extent(0) * extent(1) * extent(2);
  const edgeMm = Math.max(finestMm, Math.cbrt(volume / kMostVoxels));
  const count = (axis: 0 | 1 | 2): number => Math.max(Math.ceil(extent(axis) / edgeMm - 1e-6), 1);
  const start = (axis: 0 | 1 | 2): number => lowest[axis] + edgeMm / 2;
  return {
    size: [count(0), count(1), count(2)],
    affine: [
      [edgeMm, 0, 0, start(0)],
      [0, edgeMm, 0, start(1)],
      [0, 0, edgeMm, start(2)],
      [0, 0, 0, 1],
    ],
    edgeMm,
  };
}

// Calls `visit` for each voxel of the grid, the first axis fastest, with where it lies in another image.
export function eachVoxel(
  grid: DisplayGrid,
  imageAffine: AffineRows,
  visit: (n: number, x: number, y: number, z: number) => void,
): void {
  const toImage = inverse(imageAffine);
  const step = stepOf(toImage, grid.edgeMm);
  let n = 0;
  for (let k = 0; k < grid.size[2]; ++k) {
    for (let j = 0; j < grid.size[1]; ++j) {
      let [x, y, z] = startOf(toImage, millimetres(grid.affine, [0, j, k]));
      for (let i = 0; i < grid.size[0]; ++i) {
        visit(n++, x, y, z);
        x += step[0];
        y += step[1];
        z += step[2];
      }
    }
  }
}

function stepOf(matrix: Matrix, mm: number): Triple {
  return [(matrix[0][0] ?? 0) * mm, (matrix[1][0] ?? 0) * mm, (matrix[2][0] ?? 0) * mm];
}

function startOf(matrix: Matrix, [x, y, z]: Triple): Triple {
  const along = ([a = 0, b = 0, c = 0, d = 0]: number[]): number => a * x + b * y + c * z + d;
  return [along(matrix[0]), along(matrix[1]), along(matrix[2])];
}

// Voxel indices, their order in memory, and millimetres.
import type { AffineRows, GridData, Triple } from "./page_data";

export function voxelCount(size: Triple): number {
  return size[0] * size[1] * size[2];
}

// i fastest.
export function offsetOf(size: Triple, voxel: Triple): number {
  return voxel[0] + size[0] * (voxel[1] + size[1] * voxel[2]);
}

// The voxel at an offset; the inverse of offsetOf.
export function voxelOf(size: Triple, offset: number): Triple {
  const row = Math.floor(offset / size[0]);
  return [offset % size[0], row % size[1], Math.floor(row / size[1])];
}

export function clampVoxel(size: Triple, voxel: Triple): Triple {
  const within = (axis: 0 | 1 | 2): number => Math.min(Math.max(Math.round(voxel[axis]), 0), size[axis] - 1);
  return [within(0), within(1), within(2)];
}

function along(row: readonly number[], voxel: Triple): number {
  const [a = 0, b = 0, c = 0, d = 0] = row;
  return a * voxel[0] + b * voxel[1] + c * voxel[2] + d;
}

// The centre of a voxel in millimetres.
export function millimetres(affine: AffineRows, voxel: Triple): Triple {
  const [x = [], y = [], z = []] = affine;
  return [along(x, voxel), along(y, voxel), along(z, voxel)];
}

// Edge lengths of a voxel in millimetres: the lengths of the affine's columns.
export function voxelEdges(affine: AffineRows): Triple {
  const edge = (column: number): number => Math.hypot(...affine.slice(0, 3).map((row) => row[column] ?? 0));
  return [edge(0), edge(1), edge(2)];
}

export function middleOf(grid: GridData): Triple {
  return [grid.size[0] >> 1, grid.size[1] >> 1, grid.size[2] >> 1];
}

// The indices that the image's file has for a voxel of the upright grid.
export function storedVoxel(grid: GridData, voxel: Triple): Triple {
  const index = (stored: 0 | 1 | 2): number => {
    const { axis, reversed } = grid.stored[stored];
    return reversed ? grid.size[axis] - 1 - voxel[axis] : voxel[axis];
  };
  return [index(0), index(1), index(2)];
}

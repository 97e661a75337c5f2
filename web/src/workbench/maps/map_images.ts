// What saved maps are drawn on.
import { imagesOn, type RunImages } from "../explore/run_images";
import { VoxelMask, type VoxelGrid } from "../explore/voxel_mask";
import type { MapNumbers, Underlay } from "./saved_map";

export function cellsInside({ grid, inside }: MapNumbers): Uint32Array {
  const [nx, ny, nz] = grid.size;
  const cells: number[] = [];
  for (let cell = 0; cell < nx * ny * nz; ++cell) if (inside(cell)) cells.push(cell);
  return Uint32Array.from(cells);
}

function isSame(a: Uint32Array, b: Uint32Array): boolean {
  return a.length === b.length && a.every((cell, n) => cell === b[n]);
}

// Whether maps of these cells can be drawn on the images.
export function suits(images: RunImages, grid: VoxelGrid, cells: Uint32Array): boolean {
  const own = images.mask.grid;
  const isSameGrid = JSON.stringify([own.size, own.affine]) === JSON.stringify([grid.size, grid.affine]);
  return isSameGrid && isSame(images.mask.cells, cells);
}

const kDim = 0.3; // of what stands for a brain

// Without an image of the brain: the voxels that were looked at.
export function drawnOn(grid: VoxelGrid, cells: Uint32Array, underlay: Underlay): RunImages {
  const mask = new VoxelMask(grid, cells);
  if (underlay.image !== null) return imagesOn(mask, underlay.image, null);
  const looked = Uint8Array.from(mask.placeOf, (place) => (place < 0 ? 0 : 1));
  const images = imagesOn(mask, { ...grid, data: looked }, null);
  return { ...images, grey: images.grey.map((level) => kDim * level) };
}

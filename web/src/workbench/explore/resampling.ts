// Images on the grid that is drawn.
import type { AffineRows, Triple } from "../../data/page_data";
import { eachVoxel, type DisplayGrid } from "./display_grid";

export interface Image {
  readonly size: Triple;
  readonly affine: AffineRows;
  readonly data: ArrayLike<number>; // first axis fastest
}

function trilinear({ size, data }: Image, x: number, y: number, z: number): number {
  const [i, j, k] = [Math.floor(x), Math.floor(y), Math.floor(z)];
  const [u, v, w] = [x - i, y - j, z - k];
  const at = (di: number, dj: number, dk: number): number => {
    const [a, b, c] = [i + di, j + dj, k + dk];
    const inside = a >= 0 && b >= 0 && c >= 0 && a < size[0] && b < size[1] && c < size[2];
    const value = inside ? (data[a + size[0] * (b + size[1] * c)] ?? 0) : 0;
    return Number.isFinite(value) ? value : 0;
  };
  const along = (dj: number, dk: number): number => at(0, dj, dk) * (1 - u) + at(1, dj, dk) * u;
  const across = (dk: number): number => along(0, dk) * (1 - v) + along(1, dk) * v;
  return across(0) * (1 - w) + across(1) * w;
}

function outside({ size }: Image, x: number, y: number, z: number): boolean {
  return x <= -1 || y <= -1 || z <= -1 || x >= size[0] || y >= size[1] || z >= size[2];
}

export function resampled(image: Image, grid: DisplayGrid): Float32Array {
  const out = new Float32Array(grid.size[0] * grid.size[1] * grid.size[2]);
  eachVoxel(grid, image.affine, (n, x, y, z) => {
    if (!outside(image, x, y, z)) out[n] = trilinear(image, x, y, z);
  });
  return out;
}

// The value at the nearest voxel, -1 outside the image.
export function nearestOf(image: Image, grid: DisplayGrid): Int32Array {
  const { size, data } = image;
  const out = new Int32Array(grid.size[0] * grid.size[1] * grid.size[2]).fill(-1);
  eachVoxel(grid, image.affine, (n, x, y, z) => {
    const [i, j, k] = [Math.round(x), Math.round(y), Math.round(z)];
    const inside = i >= 0 && j >= 0 && k >= 0 && i < size[0] && j < size[1] && k < size[2];
    if (inside) out[n] = data[i + size[0] * (j + size[1] * k)] ?? -1;
  });
  return out;
}

const kDark = 0.02;
const kBright = 0.995;

// Grey levels 0 ... 255: the darkest and the brightest of what is not 0 are cut.
export function greyLevels(values: Float32Array): Uint8Array {
  const some = values.filter((value, n) => value !== 0 && n % 7 === 0).sort();
  const at = (share: number): number => some[Math.floor(share * (some.length - 1))] ?? 0;
  const [low, high] = [Math.min(at(kDark), 0.25 * at(kBright)), at(kBright)];
  const scale = high > low ? 255 / (high - low) : 0;
  return Uint8Array.from(values, (value) => Math.min(Math.max((value - low) * scale, 0), 255));
}

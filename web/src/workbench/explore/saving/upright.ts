// An image seen upright: axes that run to the right, to the front and upwards, whatever order the file has.
import type { AffineRows, GridData, StoredAxis, Triple } from "../../../data/page_data";
import type { VoxelGrid } from "../voxel_mask";

type Axis = 0 | 1 | 2;
const kOrders: readonly (readonly [Axis, Axis, Axis])[] = [
  [0, 1, 2],
  [0, 2, 1],
  [1, 0, 2],
  [1, 2, 0],
  [2, 0, 1],
  [2, 1, 0],
];

// Of each axis of the file, the upright axis that it is nearest to: the order with the largest cosines.
function orderOf(affine: AffineRows): readonly [Axis, Axis, Axis] {
  const cosine = (stored: Axis, upright: Axis): number => {
    const column = [0, 1, 2].map((row) => affine[row]?.[stored] ?? 0);
    return Math.abs(column[upright] ?? 0) / Math.max(Math.hypot(...column), 1e-12);
  };
  const fit = ([a, b, c]: readonly [Axis, Axis, Axis]): number => cosine(0, a) + cosine(1, b) + cosine(2, c);
  return kOrders.reduce((best, each) => (fit(each) > fit(best) ? each : best));
}

export function uprightGrid({ size, affine }: VoxelGrid): GridData {
  const order = orderOf(affine);
  const stored = order.map((axis, n): StoredAxis => ({ axis, reversed: (affine[axis]?.[n] ?? 0) < 0 }));
  const [a, b, c] = stored as [StoredAxis, StoredAxis, StoredAxis];
  const uprightSize: [number, number, number] = [1, 1, 1];
  const rows = [0, 1, 2].map((row) => [0, 0, 0, affine[row]?.[3] ?? 0]);
  stored.forEach(({ axis, reversed }, n) => {
    const count = size[n] ?? 1;
    uprightSize[axis] = count;
    for (const [r, row] of rows.entries()) {
      const step = affine[r]?.[n] ?? 0;
      row[axis] = reversed ? -step : step;
      if (reversed) row[3] = (row[3] ?? 0) + step * (count - 1);
    }
  });
  return { size: uprightSize, affine: rows, stored: [a, b, c] };
}

// The cell of the file for each voxel of the upright grid, first axis fastest.
export function storedCells(grid: GridData, size: Triple): Uint32Array {
  const [nx, ny, nz] = grid.size;
  const out = new Uint32Array(nx * ny * nz);
  const index = (n: Axis, voxel: Triple): number => {
    const { axis, reversed } = grid.stored[n];
    return reversed ? size[n] - 1 - voxel[axis] : voxel[axis];
  };
  let at = 0;
  for (let k = 0; k < nz; ++k) {
    for (let j = 0; j < ny; ++j) {
      for (let i = 0; i < nx; ++i) {
        const voxel: Triple = [i, j, k];
        out[at++] = index(0, voxel) + size[0] * (index(1, voxel) + size[1] * index(2, voxel));
      }
    }
  }
  return out;
}

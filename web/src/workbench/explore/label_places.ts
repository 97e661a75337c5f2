// Which label each voxel of the mask lies in.
import { applied, inverse } from "./affine";
import type { Image } from "./resampling";
import type { VoxelMask } from "./voxel_mask";

// [place]: label of the nearest voxel of the image, 0 outside it.
export function labelsOfPlaces(labels: Image, mask: VoxelMask): Int32Array {
  const toLabel = inverse(labels.affine);
  const [nx, ny, nz] = labels.size;
  return Int32Array.from({ length: mask.cells.length }, (_, place) => {
    const [i, j, k] = applied(toLabel, mask.mmOf(place)).map(Math.round) as [number, number, number];
    const inside = i >= 0 && j >= 0 && k >= 0 && i < nx && j < ny && k < nz;
    return inside ? Math.round(labels.data[i + nx * (j + ny * k)] ?? 0) : 0;
  });
}

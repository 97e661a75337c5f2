// Which voxels maps have a code for, and where.

// The place in the maps of each voxel of the grid, -1 outside the mask.
export function placesInMask(mask: ArrayLike<number>): Int32Array {
  const places = new Int32Array(mask.length).fill(-1);
  let next = 0;
  for (let n = 0; n < mask.length; ++n) {
    if (mask[n] !== 0) places[n] = next++;
  }
  return places;
}

export function maskedCount(places: Int32Array): number {
  return places.reduce((highest, place) => Math.max(highest, place), -1) + 1;
}

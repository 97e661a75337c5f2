// Where a viewer starts.
import type { Backdrop, LoadedMap } from "../data/loaded_view";
import { voxelOf } from "../data/grid";
import type { Triple } from "../data/page_data";

// The voxel whose value has the largest magnitude; null: the map has no value.
export function strongestVoxel(size: Triple, { places }: Backdrop, map: LoadedMap): Triple | null {
  let [best, strongest] = [-1, -1];
  places.forEach((place, offset) => {
    const value = Math.abs(place < 0 ? NaN : (map.values[map.effect[place] ?? 0] ?? NaN));
    if (value > strongest) [best, strongest] = [offset, value];
  });
  return best < 0 ? null : voxelOf(size, best);
}

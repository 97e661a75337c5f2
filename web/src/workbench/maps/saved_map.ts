// Maps that were saved, from wherever: what each is called and which numbers it has.
import type { MapInfo } from "../explore/explore_data";
import type { ReplyThreshold } from "../explore/maps_reply";
import type { Image } from "../explore/resampling";
import type { VoxelGrid } from "../explore/voxel_mask";

export interface SavedMap {
  readonly of: string; // the reference, or the test
  readonly condition: string; // "": there is one alone
  readonly info: MapInfo;
  readonly thresholds: readonly ReplyThreshold[];
  readonly from?: number; // where it is shown from when it has no thresholds
}

// The numbers of one map. Arrays have a value per cell of the grid.
export interface MapNumbers {
  readonly grid: VoxelGrid;
  readonly inside: (cell: number) => boolean; // cells that were looked at
  readonly values: Float32Array;
  readonly p: Uint8Array | null; // -10 log10 p; 255: unknown
  readonly direction: Uint8Array | null;
  readonly reference: Uint8Array | null; // 1: a voxel of the reference
}

export interface Underlay {
  readonly image: Image | null;
  readonly words: string; // what it is; where there is none, that
}

export interface SavedMaps {
  readonly title: string;
  readonly maps: readonly SavedMap[];
  readonly hasDirections: boolean; // of some map
  numbersOf(map: SavedMap): Promise<MapNumbers>;
  underlay(grid: VoxelGrid): Promise<Underlay>;
}

const kFirstType = "DTAV";

// Which to show at first.
export function firstOf<T extends SavedMap>(maps: readonly T[]): T | undefined {
  return maps.find(({ info }) => info.type === kFirstType) ?? maps[0];
}

export function qValuesOf(maps: readonly SavedMap[]): readonly number[] {
  const all = maps.flatMap(({ thresholds }) => thresholds.map(({ q }) => q));
  return [...new Set(all)].sort((a, b) => a - b);
}

// What the program says about one voxel: POST /api/explore/voxel.
import type { Millimetres } from "./explore_data";
import type { Triple } from "../../data/page_data";

export interface RunSeries {
  readonly run: string;
  readonly trSeconds: number;
  readonly reference: readonly (number | null)[];
  readonly voxel: readonly (number | null)[];
  readonly intervals: readonly (readonly [number, number])[]; // first and last volume, from 0
  readonly censored: readonly number[];
}

export interface Lagged {
  readonly lag: number; // volumes; positive: the reference earlier
  readonly r: number | null;
}

export interface VoxelMap {
  readonly type: string;
  readonly value: number | null;
  readonly p: number | null;
  readonly z: number | null;
  readonly null: readonly (number | null)[]; // the values of the draws
}

export interface VoxelData {
  readonly voxel: Triple;
  readonly mm: Millimetres;
  readonly label?: string | null;
  readonly status?: string;
  readonly series: readonly RunSeries[];
  readonly lagged: readonly Lagged[];
  readonly model: unknown; // a tree of names and numbers
  readonly maps: readonly VoxelMap[];
}

// Connected places of a map, as the program finds them: 26 neighbours, signs apart, by mass.
import type { Triple } from "../../data/page_data";
import type { VoxelMask } from "./voxel_mask";

export interface Cluster {
  readonly sign: 1 | -1;
  readonly voxels: number;
  readonly mass: number; // sum of what the magnitudes exceed the level by
  readonly peak: number; // the place of the largest magnitude
  readonly peakValue: number;
}

const kOffsets: readonly Triple[] = [-1, 0, 1].flatMap((dz) =>
  [-1, 0, 1].flatMap((dy) => [-1, 0, 1].map((dx): Triple => [dx, dy, dz])),
);

// Keeps its memory between calls: a byte and four per voxel of the mask.
export class ClusterFinder {
  private readonly waiting: Uint8Array; // 1: counts and is in no cluster yet
  private readonly stack: Int32Array;

  constructor(private readonly mask: VoxelMask) {
    this.waiting = new Uint8Array(mask.cells.length);
    this.stack = new Int32Array(mask.cells.length);
  }

  // valueAt: NaN where there is none.
  find(valueAt: (place: number) => number, level: number): Cluster[] {
    const found: Cluster[] = [];
    if (!Number.isFinite(level)) return found;
    const count = this.waiting.length;
    for (let n = 0; n < count; ++n) {
      const value = valueAt(n);
      this.waiting[n] = Math.abs(value) >= level && value !== 0 ? 1 : 0;
    }
    for (let n = 0; n < count; ++n) {
      if (this.waiting[n] === 1) found.push(this.grow(n, valueAt, level));
    }
    return found.sort((a, b) => b.mass - a.mass);
  }

  private grow(start: number, valueAt: (place: number) => number, level: number): Cluster {
    const sign = valueAt(start) < 0 ? -1 : 1;
    let [voxels, mass, peak, peakValue] = [0, 0, start, valueAt(start)];
    let waiting = this.push(0, start);
    while (waiting > 0) {
      const place = this.stack[--waiting] ?? 0;
      const value = valueAt(place);
      voxels += 1;
      mass += Math.abs(value) - level;
      if (Math.abs(value) > Math.abs(peakValue)) [peak, peakValue] = [place, value];
      waiting = this.pushNeighbours(waiting, place, (near) => valueAt(near) < 0 === sign < 0);
    }
    return { sign, voxels, mass, peak, peakValue };
  }

  private push(waiting: number, place: number): number {
    this.waiting[place] = 0;
    this.stack[waiting] = place;
    return waiting + 1;
  }

  private pushNeighbours(waiting: number, place: number, same: (place: number) => boolean): number {
    const [nx, ny, nz] = this.mask.grid.size;
    const cell = this.mask.cells[place] ?? 0;
    const [x, y, z] = [cell % nx, Math.floor(cell / nx) % ny, Math.floor(cell / (nx * ny))];
    let count = waiting;
    for (const [dx, dy, dz] of kOffsets) {
      const [i, j, k] = [x + dx, y + dy, z + dz];
      if (i < 0 || j < 0 || k < 0 || i >= nx || j >= ny || k >= nz) continue;
      const near = this.mask.placeOf[i + nx * (j + ny * k)] ?? -1;
      if (near >= 0 && this.waiting[near] === 1 && same(near)) count = this.push(count, near);
    }
    return count;
  }
}

// The voxels that maps have a value for, and where each lies.
import { millimetres, offsetOf, voxelOf } from "../../data/grid";
import type { AffineRows, Triple } from "../../data/page_data";
import { applied, inverse, type Matrix } from "./affine";
import type { Millimetres } from "./explore_data";

export interface VoxelGrid {
  readonly size: Triple;
  readonly affine: AffineRows;
}

export class VoxelMask {
  readonly placeOf: Int32Array; // [cell]: place in the maps, -1 outside
  private readonly toVoxel: Matrix;

  // cells: x + nx * (y + ny * z), ascending; the order of all maps.
  constructor(
    readonly grid: VoxelGrid,
    readonly cells: Uint32Array,
  ) {
    this.placeOf = new Int32Array(grid.size[0] * grid.size[1] * grid.size[2]).fill(-1);
    cells.forEach((cell, place) => (this.placeOf[cell] = place));
    this.toVoxel = inverse(grid.affine);
  }

  mmOf(place: number): Millimetres {
    return millimetres(this.grid.affine, voxelOf(this.grid.size, this.cells[place] ?? 0));
  }

  // The voxel nearest to the mean of all.
  middle(): Millimetres {
    const sum: [number, number, number] = [0, 0, 0];
    const count = Math.max(this.cells.length, 1);
    for (let n = 0; n < this.cells.length; ++n)
      this.mmOf(n).forEach((c, axis) => (sum[axis] = (sum[axis] ?? 0) + c));
    const [x, y, z] = [sum[0] / count, sum[1] / count, sum[2] / count];
    const place = this.placeAt([x, y, z]);
    return this.mmOf(place < 0 ? this.nearestTo([x, y, z]) : place);
  }

  private nearestTo(mm: Millimetres): number {
    const distanceOf = (place: number): number =>
      this.mmOf(place).reduce((sum, c, axis) => sum + (c - (mm[axis] ?? 0)) ** 2, 0);
    let [nearest, least] = [0, Infinity];
    for (let place = 0; place < this.cells.length; ++place) {
      const distance = distanceOf(place);
      if (distance < least) [nearest, least] = [place, distance];
    }
    return nearest;
  }

  // The voxel that holds a point, be it outside the grid.
  voxelAt(mm: Millimetres): Triple {
    const [x, y, z] = applied(this.toVoxel, mm);
    return [Math.round(x), Math.round(y), Math.round(z)];
  }

  // -1: outside the mask.
  placeAt(mm: Millimetres): number {
    const voxel = this.voxelAt(mm);
    const inside = voxel.every((index, axis) => index >= 0 && index < (this.grid.size[axis] ?? 0));
    return inside ? (this.placeOf[offsetOf(this.grid.size, voxel)] ?? -1) : -1;
  }
}

// The three planes of an upright grid on the screen: the patient's left on the left, above at the top;
// the sagittal plane looks from the patient's right, the front on the right.
import type { Triple } from "../data/page_data";

export type Axis = 0 | 1 | 2;

export interface Plane {
  readonly name: string;
  readonly across: Axis; // grows with the columns, to the right
  readonly up: Axis; // grows against the rows, towards the top
  readonly through: Axis;
  readonly letters: {
    readonly left: string;
    readonly right: string;
    readonly top: string;
    readonly bottom: string;
  };
}

export const kAxial: Plane = {
  name: "Axial",
  across: 0,
  up: 1,
  through: 2,
  letters: { left: "L", right: "R", top: "A", bottom: "P" },
};
export const kCoronal: Plane = {
  name: "Coronal",
  across: 0,
  up: 2,
  through: 1,
  letters: { left: "L", right: "R", top: "S", bottom: "I" },
};
export const kSagittal: Plane = {
  name: "Sagittal",
  across: 1,
  up: 2,
  through: 0,
  letters: { left: "P", right: "A", top: "S", bottom: "I" },
};
export const kPlanes: readonly Plane[] = [kAxial, kCoronal, kSagittal];

// A pixel of a slice, row 0 at the top.
export interface Pixel {
  readonly column: number;
  readonly row: number;
}

export function widthOf(plane: Plane, size: Triple): number {
  return size[plane.across];
}

export function heightOf(plane: Plane, size: Triple): number {
  return size[plane.up];
}

export function pixelOf(plane: Plane, size: Triple, voxel: Triple): Pixel {
  return { column: voxel[plane.across], row: size[plane.up] - 1 - voxel[plane.up] };
}

// The voxel under a pixel of the slice that goes through `at`.
export function voxelAt(plane: Plane, size: Triple, at: Triple, pixel: Pixel): Triple {
  const voxel: [number, number, number] = [at[0], at[1], at[2]];
  voxel[plane.across] = pixel.column;
  voxel[plane.up] = size[plane.up] - 1 - pixel.row;
  return voxel;
}

export function stepped(voxel: Triple, axis: Axis, by: number): Triple {
  const moved: [number, number, number] = [voxel[0], voxel[1], voxel[2]];
  moved[axis] += by;
  return moved;
}

// References: what they are called and which voxels of the mask they cover, for drawing. What the program
// computes with is the request itself.
import { offsetOf } from "../../data/grid";
import type { Triple } from "../../data/page_data";
import { plain } from "../../viewer/numbers";
import type { LabelData, Millimetres, Reference } from "./explore_data";
import type { VoxelMask } from "./voxel_mask";

export function placeWords(mm: Millimetres): string {
  return `${mm.map((c) => plain(c, 0)).join(", ")} mm`;
}

export function referenceWords(reference: Reference, labels: readonly LabelData[]): string {
  switch (reference.kind) {
    case "sphere":
      return `sphere of ${plain(reference.radiusMm, 1)} mm at ${placeWords(reference.mm)}`;
    case "label":
      return labels.find(({ id }) => id === reference.id)?.name ?? `label ${reference.id}`;
    case "voxels":
      return `${reference.cells.length} drawn voxels`;
  }
}

// Where the reference is: what a drag starts from.
export function centreOf(reference: Reference, labels: readonly LabelData[], mask: VoxelMask): Millimetres {
  if (reference.kind === "sphere") return reference.mm;
  const label = reference.kind === "label" ? labels.find(({ id }) => id === reference.id) : undefined;
  if (label !== undefined) return label.mm;
  const [cell = 0] = reference.kind === "voxels" ? reference.cells : [];
  const place = mask.placeOf[cell] ?? -1;
  return place < 0 ? [0, 0, 0] : mask.mmOf(place);
}

function squaredDistance(a: Triple, b: Triple): number {
  return (a[0] - b[0]) ** 2 + (a[1] - b[1]) ** 2 + (a[2] - b[2]) ** 2;
}

// Calls `visit` for each voxel within the box of a sphere.
function eachNear(mask: VoxelMask, mm: Millimetres, radiusMm: number, visit: (voxel: Triple) => void): void {
  const { affine } = mask.grid;
  const reach = [0, 1, 2].map((column) => {
    const edge = Math.hypot(...[0, 1, 2].map((row) => affine[row]?.[column] ?? 0));
    return Math.ceil((2 * radiusMm) / edge) + 1; // twice: axes may be slanted
  });
  const [ci, cj, ck] = mask.voxelAt(mm);
  const [ri = 0, rj = 0, rk = 0] = reach;
  for (let k = ck - rk; k <= ck + rk; ++k) {
    for (let j = cj - rj; j <= cj + rj; ++j) {
      for (let i = ci - ri; i <= ci + ri; ++i) visit([i, j, k]);
    }
  }
}

// Places of voxels whose centre lies within the sphere; the voxel at its centre where there are none.
export function placesInSphere(mask: VoxelMask, mm: Millimetres, radiusMm: number): number[] {
  const { size } = mask.grid;
  const places: number[] = [];
  eachNear(mask, mm, radiusMm, (voxel) => {
    if (voxel.some((index, axis) => index < 0 || index >= (size[axis] ?? 0))) return;
    const place = mask.placeOf[offsetOf(size, voxel)] ?? -1;
    if (place >= 0 && squaredDistance(mask.mmOf(place), mm) <= radiusMm ** 2 + 1e-6) places.push(place);
  });
  const middle = mask.placeAt(mm);
  return places.length === 0 && middle >= 0 ? [middle] : places;
}

// labelAt: the label of each place of the mask; null: there are no labels.
export function placesOf(reference: Reference, mask: VoxelMask, labelAt: Int32Array | null): number[] {
  switch (reference.kind) {
    case "sphere":
      return placesInSphere(mask, reference.mm, reference.radiusMm);
    case "label":
      return Array.from(labelAt ?? []).flatMap((id, place) => (id === reference.id ? [place] : []));
    case "voxels":
      return reference.cells.map((cell) => mask.placeOf[cell] ?? -1).filter((place) => place >= 0);
  }
}

// Those with a neighbour, across a face, that is not among them.
export function shellOf(places: readonly number[], mask: VoxelMask): number[] {
  const [nx, ny] = mask.grid.size;
  const cells = new Set(places.map((place) => mask.cells[place] ?? -1));
  const steps = [1, -1, nx, -nx, nx * ny, -nx * ny];
  return places.filter((place) => steps.some((step) => !cells.has((mask.cells[place] ?? 0) + step)));
}

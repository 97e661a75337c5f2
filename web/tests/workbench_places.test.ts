import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { millimetres, storedVoxel, voxelOf } from "../src/data/grid";
import type { Triple } from "../src/data/page_data";
import { applied, boxOf, inverse } from "../src/workbench/explore/affine";
import { displayGrid } from "../src/workbench/explore/display_grid";
import { labelsOfPlaces } from "../src/workbench/explore/label_places";
import { placesInSphere, shellOf } from "../src/workbench/explore/reference";
import { nearestOf, resampled } from "../src/workbench/explore/resampling";
import { storedCells, uprightGrid } from "../src/workbench/explore/saving/upright";
import { VoxelMask } from "../src/workbench/explore/voxel_mask";
import { kIdentity, kSlanted } from "./workbench_grids";

const kSize: Triple = [7, 6, 5];
const kCells = Uint32Array.from({ length: 210 }, (_, n) => n);

function close(a: Triple, b: Triple): boolean {
  return a.every((c, axis) => Math.abs(c - (b[axis] ?? NaN)) < 1e-9);
}

describe("matrices", () => {
  it("go there and back", () => {
    const back = inverse(kSlanted);
    for (const voxel of [
      [0, 0, 0],
      [3, 1, 4],
      [-2, 9, 0.5],
    ] as const) {
      assert.ok(close(applied(back, applied(kSlanted, voxel)), voxel));
    }
  });
  it("that flatten are refused", () => {
    assert.throws(
      () =>
        inverse([
          [1, 0, 0, 0],
          [2, 0, 0, 0],
          [0, 0, 1, 0],
        ]),
      RangeError,
    );
  });
});

describe("the grid that is drawn", () => {
  it("covers the box in equal steps, coarser where it would be too large", () => {
    const small = displayGrid([-10, -20, -30], [10, 20, 30], 2);
    assert.deepEqual(small.size, [10, 20, 30]);
    assert.deepEqual(millimetres(small.affine, [0, 0, 0]), [-9, -19, -29]);
    const large = displayGrid([0, 0, 0], [256, 256, 256], 1);
    assert.ok(large.edgeMm > 2.5);
    assert.ok(large.size[0] * large.size[1] * large.size[2] <= 1_100_000);
  });

  it("has the place of the nearest voxel of a slanted image", () => {
    const mask = new VoxelMask({ size: kSize, affine: kSlanted }, kCells);
    const [low, high] = boxOf(kSize, kSlanted);
    const grid = displayGrid(low, high, 1);
    const places = nearestOf({ ...mask.grid, data: mask.placeOf }, grid);
    let inside = 0;
    places.forEach((place, n) => {
      assert.equal(place, mask.placeAt(millimetres(grid.affine, voxelOf(grid.size, n))));
      if (place >= 0) inside += 1;
    });
    assert.ok(inside > 210);
  });

  it("keeps a slope of grey levels where it is, between voxels as well", () => {
    const data = Float32Array.from(kCells, (cell) => applied(kSlanted, voxelOf(kSize, cell))[1]);
    const grid = displayGrid([68, -94, -54], [71, -91, -51], 1);
    resampled({ size: kSize, affine: kSlanted, data }, grid).forEach((value, n) => {
      const [, y] = millimetres(grid.affine, voxelOf(grid.size, n));
      assert.ok(Math.abs(value - y) < 1e-4, `${value} at ${y}`);
    });
  });
});

describe("an image seen upright", () => {
  it("has every voxel where it was in millimetres, axes to the right, front and top", () => {
    const grid = uprightGrid({ size: kSize, affine: kSlanted });
    const cells = storedCells(grid, kSize);
    assert.deepEqual(grid.size, [7, 5, 6]);
    for (const axis of [0, 1, 2] as const) assert.ok((grid.affine[axis]?.[axis] ?? 0) > 2);
    assert.deepEqual(new Set(cells).size, 210);
    cells.forEach((cell, n) => {
      const voxel = voxelOf(grid.size, n);
      assert.ok(close(millimetres(grid.affine, voxel), applied(kSlanted, voxelOf(kSize, cell))));
      assert.deepEqual(storedVoxel(grid, voxel), voxelOf(kSize, cell));
    });
  });
});

describe("references and labels", () => {
  const mask = new VoxelMask(
    { size: kSize, affine: kIdentity },
    kCells.filter((cell) => cell !== 45),
  );

  it("a sphere has the voxels within its radius, and its own voxel when it is small", () => {
    const places = placesInSphere(mask, [3, 2, 2], 1);
    const cells = places.map((place) => mask.cells[place]);
    const around = [101, 100, 102, 94, 108, 59, 143].sort((a, b) => a - b);
    assert.deepEqual(
      cells.sort((a, b) => (a ?? 0) - (b ?? 0)),
      around,
    );
    assert.deepEqual(
      placesInSphere(mask, [3.4, 2, 2], 0.1).map((place) => mask.cells[place]),
      [101],
    );
    assert.deepEqual(placesInSphere(mask, [90, 2, 2], 3), []);
  });

  it("the edge of a region leaves out what has neighbours on all sides", () => {
    const places = placesInSphere(mask, [3, 3, 2], 1.5);
    const middle = mask.placeAt([3, 3, 2]);
    assert.ok(places.includes(middle));
    assert.ok(!shellOf(places, mask).includes(middle));
    assert.equal(shellOf(places, mask).length, places.length - 1);
  });

  it("places have the label of the nearest voxel of an atlas of another grid", () => {
    const affine = [
      [2, 0, 0, 0.5],
      [0, 2, 0, 0.5],
      [0, 0, 2, 0.5],
    ];
    const data = Int16Array.from({ length: 4 * 3 * 3 }, (_, n) => n);
    const labels = labelsOfPlaces({ size: [4, 3, 3], affine, data }, mask);
    assert.equal(labels[mask.placeAt([4, 2, 0])], 2 + 4 * 1);
    assert.equal(labels[mask.placeAt([0, 0, 4])], 12 * 2);
  });
});

import assert from "node:assert/strict";
import { it } from "node:test";
import { VoxelMask } from "../src/workbench/explore/voxel_mask";
import { kIdentity } from "./workbench_grids";

const kGrid = { size: [2, 2, 1], affine: kIdentity } as const;

it("a mask of cells knows where they lie", () => {
  assert.equal(new VoxelMask(kGrid, Uint32Array.of(0, 2, 3)).placeAt([0, 1, 0]), 1);
});

it("the middle of a mask is in it, also where its voxels surround a hole", () => {
  const grid = { size: [5, 1, 1], affine: kIdentity } as const;
  assert.deepEqual(new VoxelMask(grid, Uint32Array.of(0, 1, 4)).middle(), [1, 0, 0]);
});

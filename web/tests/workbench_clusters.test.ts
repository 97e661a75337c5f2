import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { ClusterFinder } from "../src/workbench/explore/clusters";
import { VoxelMask } from "../src/workbench/explore/voxel_mask";
import { kIdentity } from "./workbench_grids";

const kSize = [6, 5, 4] as const;

// The mask leaves out every seventh cell.
const kMask = new VoxelMask(
  { size: kSize, affine: kIdentity },
  Uint32Array.from({ length: 120 }, (_, n) => n).filter((n) => n % 7 !== 3),
);

function voxel(place: number): number[] {
  const cell = kMask.cells[place] ?? 0;
  return [cell % 6, Math.floor(cell / 6) % 5, Math.floor(cell / 30)];
}

// Neighbours by distance, joined until nothing changes.
function bruteForce(values: readonly number[], level: number): Map<number, number[]> {
  const counts = values.map((value) => Math.abs(value) >= level && value !== 0);
  const group = values.map((_, n) => n);
  const touch = (a: number, b: number): boolean =>
    voxel(a).every((c, axis) => Math.abs(c - (voxel(b)[axis] ?? 0)) <= 1);
  for (let changed = true; changed; ) {
    changed = false;
    for (let a = 0; a < values.length; ++a) {
      for (let b = 0; b < values.length; ++b) {
        const same = (values[a] ?? 0) < 0 === (values[b] ?? 0) < 0;
        if (!counts[a] || !counts[b] || !same || !touch(a, b)) continue;
        if ((group[a] ?? 0) < (group[b] ?? 0)) [group[b], changed] = [group[a] ?? 0, true];
      }
    }
  }
  const found = new Map<number, number[]>();
  group.forEach((name, n) => {
    if (counts[n]) found.set(name, [...(found.get(name) ?? []), n]);
  });
  return found;
}

function noise(n: number): number {
  const x = Math.sin(n * 12.9898) * 43758.5453;
  return 2 * (x - Math.floor(x)) - 1;
}

describe("clusters", () => {
  const finder = new ClusterFinder(kMask);
  for (const level of [0.3, 0.6, 0.8]) {
    it(`are those of a brute-force search, level ${level}`, () => {
      const values = Array.from({ length: kMask.cells.length }, (_, n) => noise(n + 100 * level));
      const found = finder.find((place) => values[place] ?? NaN, level);
      const expected = Array.from(bruteForce(values, level).values(), (places) => ({
        voxels: places.length,
        mass: places.reduce((sum, n) => sum + Math.abs(values[n] ?? 0) - level, 0).toFixed(9),
      }));
      expected.sort((a, b) => Number(b.mass) - Number(a.mass));
      assert.ok(expected.length > 2);
      assert.deepEqual(
        found.map(({ voxels, mass }) => ({ voxels, mass: mass.toFixed(9) })),
        expected,
      );
    });
  }

  it("keep signs apart and name the peak", () => {
    const values = new Float64Array(kMask.cells.length);
    values.set([1, -3, 2], 0); // side by side
    const found = finder.find((place) => values[place] ?? NaN, 0.5);
    assert.deepEqual(
      found.map(({ sign, voxels, peak, peakValue }) => ({ sign, voxels, peak, peakValue })),
      [
        { sign: -1, voxels: 1, peak: 1, peakValue: -3 },
        { sign: 1, voxels: 1, peak: 2, peakValue: 2 },
        { sign: 1, voxels: 1, peak: 0, peakValue: 1 },
      ],
    );
  });

  it("are none without a level or without values", () => {
    assert.deepEqual(
      finder.find(() => 5, Infinity),
      [],
    );
    assert.deepEqual(
      finder.find(() => NaN, 0.1),
      [],
    );
    assert.deepEqual(
      finder.find(() => 0, 0),
      [],
    );
  });
});

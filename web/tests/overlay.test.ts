import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { kWarm } from "../src/viewer/colour_scale";
import { kFaint, opacityOf, painterOf } from "../src/viewer/overlay";
import { strongestVoxel } from "../src/viewer/strongest";
import { kMostBelow, ruleOf } from "../src/viewer/threshold";
import { kSigned, mapOf, viewOf } from "./maps";

// Five voxels, the first outside the mask; values 40, 40, 10, none.
const view = viewOf([0, 1, 1, 1, 1], [1, 3, 0, 0]);
const map = mapOf(kSigned, [140, 140, 110, 0], [151, 151, 51, 51]);
const rule = ruleOf({ by: "p", level: 2 }, map);
const usual = { shown: true, hideBelow: false, faintUnsupported: true };

describe("opacity", () => {
  it("is full where the threshold is reached and fades below it", () => {
    const opacity = opacityOf(view, map, rule, usual);
    assert.deepEqual([opacity(0), opacity(2)], [1, kMostBelow / 4]);
  });

  it("is none without a value, or below the threshold when that is hidden", () => {
    assert.equal(opacityOf(view, map, rule, usual)(3), 0);
    assert.equal(opacityOf(view, map, rule, { ...usual, hideBelow: true })(2), 0);
    assert.equal(opacityOf(view, map, rule, { ...usual, hideBelow: true })(0), 1);
  });

  it("is faint where no direction is supported, unless that is off", () => {
    assert.equal(opacityOf(view, map, rule, usual)(1), kFaint);
    assert.equal(opacityOf(view, map, rule, { ...usual, faintUnsupported: false })(1), 1);
  });
});

describe("painting", () => {
  function painted(opacity: ((place: number) => number) | null, voxel: number): number[] {
    const pixels = new Uint8ClampedArray(4);
    painterOf(view, map, opacity)(voxel, pixels, 0);
    return [...pixels];
  }

  it("mixes the value's colour with the grey underneath", () => {
    const [red, green, blue] = kWarm[5] ?? [0, 0, 0];
    assert.deepEqual(
      painted(() => 1, 1),
      [red, green, blue, 255],
    );
    const half = painted(() => 0.5, 1);
    assert.ok(Math.abs((half[0] ?? 0) - (100 + red) / 2) <= 1);
  });

  it("leaves the underlay alone outside the mask, without a map and without opacity", () => {
    const grey = [100, 100, 100, 255];
    assert.deepEqual(
      painted(() => 1, 0),
      grey,
    );
    assert.deepEqual(painted(null, 1), grey);
    assert.deepEqual(
      painted(() => 0, 4),
      grey,
    );
  });
});

describe("the strongest voxel", () => {
  it("has the largest magnitude, the first of equals", () => {
    assert.deepEqual(strongestVoxel([5, 1, 1], view.backdrop, map), [1, 0, 0]);
    const low = mapOf(kSigned, [140, 20, 110, 0], null);
    assert.deepEqual(strongestVoxel([5, 1, 1], view.backdrop, low), [2, 0, 0]);
    assert.equal(strongestVoxel([5, 1, 1], view.backdrop, mapOf(kSigned, [0, 0, 0, 0], null)), null);
  });
});

import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { firstThreshold, highestLog, kMostBelow, ruleOf, weakestLog } from "../src/viewer/threshold";
import { positionOf, scaleOf, thresholdAt, thresholdWords } from "../src/viewer/threshold_scale";
import { kSigned, mapOf } from "./maps";

const withoutP = { ...kSigned, p: null };
// Values -30, 20, 10 and none; -log10 p 3, 2, 1 and none.
const map = mapOf(kSigned, [70, 120, 110, 0], [151, 101, 51, 0]);

describe("a threshold by p", () => {
  const rule = ruleOf({ by: "p", level: 2 }, map);

  it("is reached at its level", () => {
    assert.ok(rule.reaches({ value: 1, log: 2 }));
    assert.ok(rule.reaches({ value: 1, log: 2 - 1e-12 })); // steps add up inexactly
    assert.ok(!rule.reaches({ value: 99, log: 1.98 }));
    assert.ok(!rule.reaches({ value: 99, log: NaN }));
  });

  it("leaves what reaches it opaque and fades the rest by its p", () => {
    assert.equal(rule.opacity({ value: 1, log: 2.5 }), 1);
    assert.equal(rule.opacity({ value: 1, log: 1 }), kMostBelow / 4);
    assert.equal(rule.opacity({ value: 1, log: 0 }), 0);
    assert.equal(rule.opacity({ value: 1, log: NaN }), 0);
  });
});

describe("a stored threshold", () => {
  const rule = ruleOf({ by: "magnitude", level: 20, q: 0.05 }, map);

  it("counts magnitudes of both signs, half a step below as reached", () => {
    assert.ok(rule.reaches({ value: 20, log: 0 }));
    assert.ok(rule.reaches({ value: -20, log: 0 }));
    assert.ok(rule.reaches({ value: 19.5, log: 0 }));
    assert.ok(!rule.reaches({ value: 19.4, log: 9 }));
    assert.ok(!rule.reaches({ value: NaN, log: 9 }));
  });

  it("fades by p against the weakest voxel that reaches it", () => {
    assert.equal(weakestLog(map, rule.reaches), 2);
    assert.equal(rule.opacity({ value: 10, log: 1 }), kMostBelow / 4);
    assert.equal(rule.opacity({ value: 10, log: 5 }), kMostBelow);
  });

  it("fades by the magnitude where there is no p", () => {
    const plain = ruleOf({ by: "magnitude", level: 20, q: 0.05 }, mapOf(withoutP, [70, 120], null));
    assert.equal(plain.opacity({ value: -10, log: NaN }), kMostBelow / 4);
  });
});

describe("the first threshold", () => {
  it("is the one for q = 0.05, else the first stored one that a voxel survives", () => {
    const several = [
      { q: 0.01, value: 30 },
      { q: 0.05, value: 20 },
      { q: 0.1, value: 10 },
    ];
    const first = (thresholds: typeof several): unknown =>
      firstThreshold(mapOf({ ...kSigned, thresholds }, [120], [1]));
    assert.deepEqual(first(several), { by: "magnitude", level: 20, q: 0.05 });
    assert.deepEqual(first(several.slice(2)), { by: "magnitude", level: 10, q: 0.1 });
  });

  it("is p = 0.001 where none survives, or the highest p there is", () => {
    const none = { ...kSigned, thresholds: [{ q: 0.05, value: null }] };
    assert.deepEqual(firstThreshold(mapOf(none, [120], [201])), { by: "p", level: 3 });
    assert.deepEqual(firstThreshold(mapOf(none, [120], [101])), { by: "p", level: 2 });
  });

  it("is half the full colour of maps with neither", () => {
    const none = { ...withoutP, thresholds: [] };
    assert.deepEqual(firstThreshold(mapOf(none, [120], null)), { by: "magnitude", level: 20, q: null });
  });
});

describe("the slider's scale", () => {
  it("runs over the stored p", () => {
    const scale = scaleOf(map);
    assert.deepEqual(scale, { by: "p", step: 0.02, steps: 150, stride: 5 });
    assert.equal(highestLog(map), 3);
    assert.deepEqual(thresholdAt(scale, 999), { by: "p", level: 3 });
    assert.deepEqual(thresholdAt(scale, -1), { by: "p", level: 0 });
    assert.equal(positionOf(scale, 2), 100);
    assert.equal(positionOf(scale, 7), 150);
  });

  it("runs over magnitudes where there is no p", () => {
    const scale = scaleOf(mapOf(withoutP, [120], null));
    assert.deepEqual(scale, { by: "magnitude", step: 0.4, steps: 100, stride: 1 });
    assert.deepEqual(thresholdAt(scale, 50), { by: "magnitude", level: 20, q: null });
  });

  it("says thresholds in words", () => {
    assert.equal(thresholdWords({ by: "p", level: 3 }, kSigned), "p ≤ 0.001 (−log₁₀ p ≥ 3.00)");
    assert.equal(thresholdWords({ by: "p", level: 0 }, kSigned), "p ≤ 1 (every voxel)");
    const stored = thresholdWords({ by: "magnitude", level: 13.01, q: 0.05 }, kSigned);
    assert.equal(stored, "q = 0.05: magnitude ≥ 13 ms");
  });
});

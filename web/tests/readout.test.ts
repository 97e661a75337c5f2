import assert from "node:assert/strict";
import { describe, it } from "node:test";
import type { Triple } from "../src/data/page_data";
import { decimalsOf, halfStep, magnitude, plain, probability, signed } from "../src/viewer/numbers";
import { directionWords, probabilityText, readout, valueText } from "../src/viewer/readout";
import { ruleOf } from "../src/viewer/threshold";
import { kSigned, kUnturned, mapOf, viewOf } from "./maps";

describe("numbers", () => {
  it("have the digits that their step leaves", () => {
    assert.deepEqual([0.0012, 0.02, 0.5, 1, 3].map(decimalsOf), [4, 2, 1, 1, 0]);
    assert.deepEqual([0.0012, 0.02, 0.5, 3].map(halfStep), ["0.0006", "0.01", "0.3", "2"]);
  });

  it("carry their sign, except zero", () => {
    assert.equal(signed(2, 1), "+2.0");
    assert.equal(signed(-2.04, 1), "\u22122.0");
    assert.equal(signed(-0.04, 1), "0.0");
    assert.equal(signed(0.04, 1), "0.0");
    assert.equal(plain(-0.001, 1), "0.0");
  });

  it("of probability have two digits, small ones a power of ten", () => {
    assert.equal(probability(0), "1");
    assert.equal(probability(2.92), "0.0012");
    assert.equal(probability(5.08), "8.3 × 10⁻⁶");
    assert.equal(probability(12), "1.0 × 10⁻¹²");
  });

  it("of magnitude lose no digit before the point", () => {
    assert.deepEqual([1234.6, 13.01, 0.02251, -5].map(magnitude), ["1235", "13", "0.0225", "\u22125"]);
  });
});

describe("the value", () => {
  it("comes with unit, rounding and what its sign means", () => {
    assert.equal(valueText(kSigned, 113), "+13.0 ± 0.5 ms (positive: the reference leads)");
    assert.equal(valueText(kSigned, 87), "\u221213.0 ± 0.5 ms (negative: the voxel leads)");
    assert.equal(valueText(kSigned, 100), "0.0 ± 0.5 ms");
    assert.equal(valueText(kSigned, 0), "none here");
  });

  it("of one sign has none", () => {
    const long = { ...kSigned, unit: "natural logarithm of a ratio" };
    assert.equal(valueText(long, 100), "0.0 ± 0.5");
    const one = { ...kSigned, negative: null, positive: "more influence", unit: "" };
    assert.equal(valueText(one, 113), "13.0 ± 0.5");
  });

  it("of p says how it is rounded, or that there is none", () => {
    assert.equal(probabilityText(kSigned, 147), "0.0012 (\u2212log₁₀ p 2.92 ± 0.01)");
    assert.equal(probabilityText(kSigned, 0), "none here");
    assert.equal(probabilityText({ ...kSigned, p: null }, 0), "not stored for this map");
    assert.equal(valueText({ ...kSigned, floor: 3.25 }, 0), "below 3.250 ms, or none: left out of this page");
  });
});

describe("the readout", () => {
  const grid = {
    size: [5, 1, 1] as const,
    affine: [
      [2, 0, 0, -4],
      [0, 2, 0, 6],
      [0, 0, 2, 8],
    ],
    stored: [{ axis: 0, reversed: true }, kUnturned[1], kUnturned[2]] as const,
  };
  const names = { id: "0-0", reference: "V1 <b>", condition: "rest", region: "r", direction: "d", maps: [] };
  const map = mapOf(kSigned, [140, 110, 110, 0], [151, 51, 51, 51]);
  const shown = {
    view: viewOf([0, 1, 1, 1, 1], [1, 3, 4, 0]),
    map,
    rule: ruleOf({ by: "p", level: 2 }, map),
  };

  function texts(voxel: Triple): Record<string, string> {
    return Object.fromEntries(readout(grid, names, shown, voxel).map(({ name, text }) => [name, text]));
  }

  it("tells place, value, p, threshold, region and direction", () => {
    assert.deepEqual(texts([1, 0, 0]), {
      "Place (x, y, z)": "\u22122.0, 6.0, 8.0 mm",
      "Voxel (i, j, k) of the image": "3, 0, 0",
      Value: "+40.0 ± 0.5 ms (positive: the reference leads)",
      p: "0.001 (\u2212log₁₀ p 3.00 ± 0.01)",
      Threshold: "reached",
      Region: "part of V1 <b>",
      Direction: "the reference leads",
    });
  });

  it("tells what is not there", () => {
    assert.equal(texts([0, 0, 0]).Value, "outside the mask");
    assert.equal(texts([0, 0, 0]).Direction, "outside the mask");
    assert.equal(texts([2, 0, 0]).Threshold, "not reached");
    assert.equal(texts([2, 0, 0]).Region, "outside the reference");
    assert.equal(texts([4, 0, 0]).Threshold, "none here");
  });

  it("has words for every code of direction", () => {
    assert.deepEqual([0, 1, 2, 3, 4].map(directionWords), [
      "not tested",
      "the reference leads",
      "the voxel leads",
      "not supported by its control",
      "could not be judged",
    ]);
  });
});

import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { keyOf, sortedIndices } from "../src/tables/sorting";

describe("keys of cells", () => {
  it("are numbers as people write them, or as they are stored", () => {
    assert.equal(keyOf("number", " 1,234.5 ", undefined), 1234.5);
    assert.equal(keyOf("number", "\u22123", undefined), -3);
    assert.equal(keyOf("number", "about 4", "4.25"), 4.25);
    assert.equal(keyOf("text", "Insula", undefined), "Insula");
  });

  it("are missing where a cell has no value", () => {
    for (const text of ["n/a", "N/A", "", "–"]) assert.equal(keyOf("number", text, undefined), null);
    assert.equal(keyOf("number", "12", "n/a"), null);
    assert.equal(keyOf("number", "none", undefined), null);
  });
});

describe("sorting", () => {
  it("orders numbers by value, both ways", () => {
    assert.deepEqual(sortedIndices([10, 9, -1], "ascending"), [2, 1, 0]);
    assert.deepEqual(sortedIndices([10, 9, -1], "descending"), [0, 1, 2]);
  });

  it("keeps equal rows as they were, both ways", () => {
    assert.deepEqual(sortedIndices([2, 1, 2, 1], "ascending"), [1, 3, 0, 2]);
    assert.deepEqual(sortedIndices([2, 1, 2, 1], "descending"), [0, 2, 1, 3]);
  });

  it("puts rows without a value last, both ways", () => {
    assert.deepEqual(sortedIndices([null, 3, null, 1], "ascending"), [3, 1, 0, 2]);
    assert.deepEqual(sortedIndices([null, 3, null, 1], "descending"), [1, 3, 0, 2]);
  });

  it("orders words as people do", () => {
    const words = ["Region 10", "région 2", "Region 1", "Ähre", "Zunge"];
    assert.deepEqual(sortedIndices(words, "ascending"), [3, 2, 1, 0, 4]);
  });
});

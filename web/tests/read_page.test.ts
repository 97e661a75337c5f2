import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { readPage } from "../src/data/read_page";

const rows = [
  [3, 0, 0, 1],
  [0, 3, 0, 2],
  [0, 0, 3, 3],
  [0, 0, 0, 1],
];

function page(changes: object): string {
  return JSON.stringify({
    format: 1,
    grid: { size: [2, 3, 4], affine: rows },
    views: [],
    charts: {},
    ...changes,
  });
}

describe("reading the page's data", () => {
  it("takes format 1", () => {
    assert.deepEqual(readPage(page({})).grid.size, [2, 3, 4]);
  });

  it("refuses other formats by their number", () => {
    assert.throws(() => readPage(page({ format: 2 })), /format 1; the page has format 2/);
    assert.throws(() => readPage(page({ format: "1" })), /the page has format 1/);
  });

  it("refuses grids without a size or an affine", () => {
    assert.throws(() => readPage(page({ grid: { size: [2, 0, 4], affine: rows } })), /no size/);
    assert.throws(() => readPage(page({ grid: { size: [2, 3, 4], affine: rows.slice(2) } })), /no affine/);
    assert.throws(() => readPage(page({ grid: { size: [2, 3, 4], affine: [[1], [2], [3]] } })), /no affine/);
    assert.throws(() => readPage(page({ grid: null })), /no grid/);
  });

  it("refuses pages without views or charts, and what is no page", () => {
    assert.throws(() => readPage(page({ views: {} })), /no views/);
    assert.throws(() => readPage(page({ charts: null })), /no charts/);
    assert.throws(() => readPage("null"), /no content/);
    assert.throws(() => readPage("{"), SyntaxError);
  });
});

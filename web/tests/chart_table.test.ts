import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { chartOf, numberOf } from "../src/charts/chart_table";
import type { ChartSpec } from "../src/data/page_data";

const spec: ChartSpec = {
  type: "line",
  x: { label: "Rank", log: false },
  y: { label: "p", log: false },
  series: [
    { name: "p", role: "main", column: 2 },
    { name: "bound", role: "bound", perX: 0.5 },
  ],
};

describe("cells", () => {
  it("are numbers or none", () => {
    assert.equal(numberOf(" 1.5e-3 "), 0.0015);
    assert.equal(numberOf("-0"), -0);
    for (const text of ["n/a", "", " ", "1 mm"]) assert.equal(numberOf(text), null);
  });
});

describe("a chart", () => {
  it("has its numbers from the columns that it names, and lines from x", () => {
    const chart = chartOf(spec, [
      [1, 9, 0.1],
      [4, 9, null],
    ]);
    assert.deepEqual(chart.xs, [1, 4]);
    assert.deepEqual(
      chart.series.map(({ ys }) => ys),
      [
        [0.1, null],
        [0.5, 2],
      ],
    );
  });

  it("of bins has an edge more than heights", () => {
    const bins: ChartSpec = { ...spec, type: "histogram", series: [{ name: "n", role: "main", column: 1 }] };
    const chart = chartOf(bins, [
      [0, 5],
      [1, 6],
      [2, null],
    ]);
    assert.deepEqual(chart.xs, [0, 1, 2]);
    assert.deepEqual(chart.series[0]?.ys, [5, 6]);
  });
});

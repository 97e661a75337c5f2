import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { columnsOf, widened } from "../src/charts/chart_values";
import { optionsOf } from "../src/charts/options";
import { chartWords, pointWords } from "../src/charts/words";
import type { ChartData, SeriesData } from "../src/data/page_data";

function series(ys: (number | null)[], role: SeriesData["role"] = "main"): SeriesData {
  return { name: role, role, ys };
}

const chart: ChartData = {
  type: "line",
  x: { label: "Time", unit: "s", log: false },
  y: { label: "Signal", log: false },
  xs: [0, 1, 2],
  series: [series([1, null, 3])],
};

function drawn(data: ChartData): object {
  const { xs, ys } = columnsOf(data);
  return { xs, ys };
}

describe("columns", () => {
  it("of lines keep gaps", () => {
    assert.deepEqual(drawn(chart), { xs: [0, 1, 2], ys: [[1, null, 3]] });
  });

  it("of histograms close the last bin, by width or by its edge", () => {
    const bins = { ...chart, type: "histogram", series: [series([4, 5, 6])] } as const;
    assert.deepEqual(drawn(bins), { xs: [0, 1, 2, 3], ys: [[4, 5, 6, 6]] });
    const edged = { ...bins, series: [series([4, 5])] };
    assert.deepEqual(drawn(edged), { xs: [0, 1, 2], ys: [[4, 5, 5]] });
  });

  it("of logarithmic axes leave out what has no logarithm", () => {
    const search = { ...chart, type: "search", xs: [0, 0.1, 1], series: [series([1, 0, 3])] } as const;
    assert.deepEqual(drawn(search), { xs: [0.1, 1], ys: [[null, 3]] });
  });

  it("of logarithmic histograms drop to a floor where a bin is empty, and still say zero", () => {
    const y = { label: "Voxels", log: true };
    const bins = { ...chart, type: "histogram", y, series: [series([40, 0, 0.3])] } as const;
    const { ys, stated } = columnsOf(bins);
    assert.deepEqual(ys, [[40, 0.1, 0.3, 0.3]]);
    assert.deepEqual(stated, [[40, 0, 0.3, 0.3]]);
  });

  it("run with x ascending", () => {
    assert.deepEqual(drawn({ ...chart, xs: [2, 0, 1] }), { xs: [0, 1, 2], ys: [[null, 3, 1]] });
  });
});

describe("the range of x", () => {
  it("holds marks and spans", () => {
    const marked: ChartData = {
      ...chart,
      marks: [{ x: 5, label: "q" }],
      spans: [{ from: -1, to: 1, kind: "interval", label: "task" }],
    };
    assert.deepEqual(widened(marked, 0, 2), [-1, 5]);
    assert.deepEqual(widened({ ...marked, x: { label: "Time", log: true } }, 1, 2), [1, 5]);
    assert.deepEqual(widened(chart, 2, 2), [1, 3]);
  });
});

describe("bands", () => {
  it("lie between their upper and lower edges, wherever these are listed", () => {
    const banded = { ...chart, series: [series([0], "band-low"), series([1]), series([2], "band-high")] };
    const palette = {
      text: "",
      grid: "",
      mark: "",
      interval: "",
      censored: "",
      role: () => "",
      band: "blue",
    };
    const { bands } = optionsOf(banded, palette, 300, () => undefined);
    assert.deepEqual(bands, [{ series: [3, 1], fill: "blue" }]);
  });
});

describe("words of charts", () => {
  it("tell axes, series, marks and spans", () => {
    const marked: ChartData = {
      ...chart,
      series: [series([1], "band-low"), series([1], "band-high")],
      marks: [{ x: 13.01, label: "q = 0.05" }],
      spans: [{ from: 3, to: 9, kind: "censored", label: "Censored" }],
    };
    assert.equal(
      chartWords(marked, "Course"),
      "Line chart: Course. Across: Time (s); up: Signal. Series: band-high. " +
        "Marks: q = 0.05 at 13. Spans: Censored 3 to 9.",
    );
  });

  it("tell the values at a point, without gaps", () => {
    const two = { ...chart, series: [series([1]), series([2], "second")] };
    assert.equal(pointWords(two, 4, [0.5, null]), "Time (s) 4 · main 0.5");
  });
});

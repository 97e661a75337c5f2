// Charts in words: for those who do not see them, and under the pointer.
import type { ChartData, SeriesData } from "../data/page_data";
import { magnitude } from "../viewer/numbers";
import { axisWords } from "./options";

const kKinds = {
  line: "Line chart",
  histogram: "Histogram",
  search: "Chart with two logarithmic axes",
} as const;

function listed(what: string, items: readonly string[]): string {
  return items.length === 0 ? "" : ` ${what}: ${items.join("; ")}.`;
}

export function chartWords(chart: ChartData, caption: string): string {
  const marks = (chart.marks ?? []).map(({ x, label }) => `${label} at ${magnitude(x)}`);
  const spans = (chart.spans ?? []).map(
    ({ from, to, label }) => `${label} ${magnitude(from)} to ${magnitude(to)}`,
  );
  return (
    `${kKinds[chart.type]}: ${caption}. Across: ${axisWords(chart.x)}; up: ${axisWords(chart.y)}.` +
    listed(
      "Series",
      shownSeries(chart).map(({ name }) => name),
    ) +
    listed("Marks", marks) +
    listed("Spans", spans)
  );
}

// A band counts once, by its upper edge.
export function shownSeries(chart: ChartData): SeriesData[] {
  return chart.series.filter(({ role }) => role !== "band-low");
}

export function pointWords(chart: ChartData, x: number, ys: readonly (number | null | undefined)[]): string {
  const values = chart.series.flatMap(({ name }, n) => {
    const y = ys[n];
    return y === null || y === undefined ? [] : [`${name} ${magnitude(y)}`];
  });
  return [`${axisWords(chart.x)} ${magnitude(x)}`, ...values].join(" · ");
}

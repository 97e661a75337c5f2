// A chart's data as columns to draw: what cannot be drawn is left out.
import type { ChartData, SeriesData } from "../data/page_data";

export type Column = (number | null)[];

export interface Columns {
  readonly xs: number[];
  readonly ys: readonly Column[];
  readonly stated: readonly Column[]; // ys before what cannot be drawn was changed
}

type Made = Pick<Columns, "xs" | "ys">;

export function isLogX(chart: ChartData): boolean {
  return chart.x.log || chart.type === "search";
}

export function isLogY(chart: ChartData): boolean {
  return chart.y.log || chart.type === "search";
}

// A bin's height holds up to the next x; the last bin is as wide as the one before unless a last x closes it.
function closed(xs: readonly number[], series: readonly SeriesData[]): Made {
  const longest = Math.max(0, ...series.map(({ ys }) => ys.length));
  const [last = 0, before = last] = [xs[xs.length - 1], xs[xs.length - 2]];
  const edges = longest === xs.length ? [...xs, 2 * last - before] : [...xs];
  return { xs: edges, ys: series.map(({ ys }) => [...ys, ys[ys.length - 1] ?? null]) };
}

function open(xs: readonly number[], series: readonly SeriesData[]): Made {
  return { xs: [...xs], ys: series.map(({ ys }) => [...ys]) };
}

function drawable(value: number | null | undefined, log: boolean): number | null {
  if (value === null || value === undefined || !Number.isFinite(value)) return null;
  return log && value <= 0 ? null : value;
}

// The power of ten below every positive height: what an empty bin falls to where heights are logarithmic.
export function floorOf(chart: ChartData): number {
  const heights = chart.series.flatMap(({ ys }) => ys.flatMap((y) => (y !== null && y > 0 ? [y] : [])));
  return 10 ** (Math.ceil(Math.log10(Math.min(...heights, 1))) - 1);
}

function height(value: number | null | undefined, chart: ChartData): number | null {
  if (chart.type === "histogram" && isLogY(chart) && value === 0) return floorOf(chart);
  return drawable(value, isLogY(chart));
}

// xs ascending, every column as long as xs.
export function columnsOf(chart: ChartData): Columns {
  const made = chart.type === "histogram" ? closed(chart.xs, chart.series) : open(chart.xs, chart.series);
  const kept = made.xs.flatMap((x, n) => (drawable(x, isLogX(chart)) === null ? [] : [n]));
  kept.sort((a, b) => (made.xs[a] ?? 0) - (made.xs[b] ?? 0));
  return {
    xs: kept.map((n) => made.xs[n] ?? 0),
    stated: made.ys.map((column) => kept.map((n) => column[n] ?? null)),
    ys: made.ys.map((column) => kept.map((n) => height(column[n], chart))),
  };
}

// The range of x with marks and spans inside.
export function widened(chart: ChartData, lowest: number, highest: number): [number, number] {
  const marks = (chart.marks ?? []).map(({ x }) => x);
  const spans = (chart.spans ?? []).flatMap(({ from, to }) => [from, to]);
  const all = [lowest, highest, ...marks, ...spans].filter((x) => drawable(x, isLogX(chart)) !== null);
  const [from, to] = [Math.min(...all), Math.max(...all)];
  return from === to ? [from - 1, to + 1] : [from, to];
}

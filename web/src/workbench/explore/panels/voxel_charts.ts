// What is known about a voxel, as charts.
import type { ChartData, SpanData } from "../../../data/page_data";
import { magnitude } from "../../../viewer/numbers";
import type { Lagged, RunSeries, VoxelMap } from "../voxel_data";

function spansOf({ intervals, censored, trSeconds }: RunSeries): SpanData[] {
  const span = (first: number, last: number, kind: SpanData["kind"], label: string): SpanData => ({
    from: (first - 0.5) * trSeconds,
    to: (last + 0.5) * trSeconds,
    kind,
    label,
  });
  return [
    ...intervals.map(([first, last]) => span(first, last, "interval", "of the condition")),
    ...censored.map((volume) => span(volume, volume, "censored", "censored")),
  ];
}

export function seriesChart(series: RunSeries): ChartData {
  return {
    type: "line",
    x: { label: `Time in ${series.run}`, unit: "s", log: false },
    y: { label: "Signal", log: false },
    xs: series.voxel.map((_, volume) => volume * series.trSeconds),
    series: [
      { name: "reference", role: "main", ys: series.reference },
      { name: "voxel", role: "second", ys: series.voxel },
    ],
    spans: spansOf(series),
  };
}

export function laggedChart(lagged: readonly Lagged[]): ChartData {
  return {
    type: "line",
    x: { label: "Lag (positive: the reference earlier)", unit: "volumes", log: false },
    y: { label: "Correlation", log: false },
    xs: lagged.map(({ lag }) => lag),
    series: [{ name: "correlation of reference and voxel", role: "main", ys: lagged.map(({ r }) => r) }],
    marks: [{ x: 0, label: "same volume" }],
  };
}

const kMostBins = 24;
const kFewestBins = 6;

// Equal bins over all values; edges are one more than heights.
export function histogram(values: readonly number[]): {
  readonly edges: number[];
  readonly counts: number[];
} {
  const [low, high] = [Math.min(...values), Math.max(...values)];
  const bins = Math.min(Math.max(Math.ceil(Math.sqrt(values.length) * 1.5), kFewestBins), kMostBins);
  const width = high > low ? (high - low) / bins : 1;
  const counts = new Array<number>(bins).fill(0);
  for (const value of values) {
    const bin = Math.min(Math.floor((value - low) / width), bins - 1);
    counts[bin] = (counts[bin] ?? 0) + 1;
  }
  return { edges: Array.from({ length: bins + 1 }, (_, n) => low + n * width), counts };
}

// null: the map has no null values here.
export function nullChart(map: VoxelMap): ChartData | null {
  const values = map.null.filter((value) => value !== null);
  if (values.length === 0) return null;
  const { edges, counts } = histogram(values);
  const mark = map.value === null ? [] : [{ x: map.value, label: `observed ${magnitude(map.value)}` }];
  return {
    type: "histogram",
    x: { label: map.type, log: false },
    y: { label: "Null draws", log: false },
    xs: edges,
    series: [{ name: `${values.length} null draws of this voxel`, role: "null", ys: counts }],
    marks: mark,
  };
}

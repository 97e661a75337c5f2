// The legend of a chart: text beside a piece of each line.
import type { ChartData, SeriesData, SpanData } from "../data/page_data";
import { make } from "../page/dom";
import { shownSeries } from "./words";

function item(swatch: string, text: string): HTMLElement {
  const picture = make("span", { class: `swatch ${swatch}`, attributes: { "aria-hidden": "true" } });
  return make("li", {}, picture, make("span", { text }));
}

function seriesItem(series: SeriesData, chart: ChartData): HTMLElement {
  const filled = chart.type === "histogram" && series.role !== "bound" ? " swatch-filled" : "";
  return item(`swatch-${series.role}${filled}`, series.name);
}

// Spans of one kind and label are named once.
function spanItems(spans: readonly SpanData[]): HTMLElement[] {
  const seen = new Map(spans.map((span) => [`${span.kind} ${span.label}`, span]));
  return Array.from(seen.values(), ({ kind, label }) => item(`swatch-${kind}`, label));
}

export function chartLegend(chart: ChartData): HTMLElement {
  const labels = new Set((chart.marks ?? []).map(({ label }) => label));
  const marks = Array.from(labels, (label) => item("swatch-mark", label));
  return make(
    "ul",
    { class: "chart-legend" },
    ...shownSeries(chart).map((series) => seriesItem(series, chart)),
    ...spanItems(chart.spans ?? []),
    ...marks,
  );
}

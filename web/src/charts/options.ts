// How a chart is drawn.
import uPlot from "uplot";
import type { AxisData, ChartData, SeriesData } from "../data/page_data";
import { floorOf, isLogX, isLogY, widened } from "./chart_values";
import { drawMarks, drawSpans } from "./decorations";
import type { Palette } from "./palette";

export const kChartHeight = 260;
const kFont = "12px system-ui, sans-serif";
const kDashes: Readonly<Record<string, number[]>> = { bound: [6, 4], second: [2, 2] };

export function axisWords({ label, unit = "" }: AxisData): string {
  return unit === "" ? label : `${label} (${unit})`;
}

function axisOf(axis: AxisData, palette: Palette): uPlot.Axis {
  return {
    label: axisWords(axis),
    labelFont: kFont,
    labelSize: 20,
    font: kFont,
    stroke: palette.text,
    grid: { stroke: palette.grid, width: 1 },
    ticks: { stroke: palette.grid, width: 1 },
  };
}

function fillOf(series: SeriesData, chart: ChartData, palette: Palette): Partial<uPlot.Series> {
  if (chart.type !== "histogram" || series.role === "bound") return {};
  return { fill: series.role === "null" ? palette.interval : palette.band };
}

export function dashOf(series: SeriesData): number[] {
  return kDashes[series.role] ?? [];
}

function isBand(series: SeriesData): boolean {
  return series.role === "band-low" || series.role === "band-high";
}

function seriesOf(series: SeriesData, chart: ChartData, palette: Palette): uPlot.Series {
  const stepped = chart.type === "histogram" ? uPlot.paths.stepped?.({ align: 1 }) : undefined;
  return {
    label: series.name,
    stroke: palette.role(series.role),
    width: isBand(series) ? 0 : 2,
    dash: dashOf(series),
    points: { show: chart.type === "search" && series.role !== "bound" },
    ...fillOf(series, chart, palette),
    ...(stepped ? { paths: stepped } : {}),
  };
}

// Each upper edge with the lower edge after or before it.
function bandsOf(chart: ChartData, palette: Palette): uPlot.Band[] {
  const indices = (role: string): number[] =>
    chart.series.flatMap((series, n) => (series.role === role ? [n + 1] : []));
  const lows = indices("band-low");
  return indices("band-high").flatMap((high, n) => {
    const low = lows[n];
    return low === undefined ? [] : [{ series: [high, low] as [number, number], fill: palette.band }];
  });
}

function scalesOf(chart: ChartData): uPlot.Scales {
  const x: uPlot.Scale = { time: false, range: (_, from, to) => widened(chart, from, to) };
  const y: uPlot.Scale = {};
  if (isLogX(chart)) x.distr = 3;
  if (isLogY(chart)) y.distr = 3;
  if (chart.type === "histogram" && isLogY(chart)) y.range = (_, __, most) => [floorOf(chart), most * 2];
  else if (chart.type === "histogram") y.range = (_, __, most) => [0, most > 0 ? most * 1.1 : 1];
  return { x, y };
}

export function optionsOf(
  chart: ChartData,
  palette: Palette,
  width: number,
  pointed: (plot: uPlot) => void,
): uPlot.Options {
  return {
    width,
    height: kChartHeight,
    scales: scalesOf(chart),
    axes: [
      { ...axisOf(chart.x, palette), size: 32 },
      { ...axisOf(chart.y, palette), size: 60 },
    ],
    series: [{ label: axisWords(chart.x) }, ...chart.series.map((each) => seriesOf(each, chart, palette))],
    bands: bandsOf(chart, palette),
    legend: { show: false },
    cursor: { drag: { x: false, y: false } },
    hooks: {
      drawClear: [
        (plot) => {
          drawSpans(plot, chart, palette);
        },
      ],
      draw: [
        (plot) => {
          drawMarks(plot, chart, palette);
        },
      ],
      setCursor: [pointed],
    },
  };
}

// A chart in its figure: drawn when it comes near the screen, drawn anew for other colours and widths.
import uPlot from "uplot";
import type { ChartData, ChartSpec } from "../data/page_data";
import { make } from "../page/dom";
import { onceNear } from "../page/once_near";
import { onColourChange } from "../page/theme";
import { chartLegend } from "./chart_legend";
import { chartOf, rowsOf } from "./chart_table";
import { columnsOf, type Columns } from "./chart_values";
import { kChartHeight, optionsOf } from "./options";
import { paletteOf } from "./palette";
import { chartWords, pointWords } from "./words";

const kWidest = 820;

class DrawnChart {
  private plot: uPlot | null = null;
  private readonly columns: Columns;
  private readonly picture: HTMLElement;
  private readonly point = make("p", { class: "chart-point", attributes: { "aria-hidden": "true" } });

  constructor(
    private readonly figure: HTMLElement,
    private readonly chart: ChartData,
  ) {
    this.columns = columnsOf(chart);
    const caption = figure.querySelector("figcaption");
    const label = chartWords(chart, (caption?.textContent ?? "").trim());
    this.picture = make("div", { class: "chart-picture", attributes: { role: "img", "aria-label": label } });
    const whole = make("div", { class: "chart-drawn" }, this.picture, this.point, chartLegend(chart));
    if (caption === null) figure.prepend(whole);
    else caption.after(whole);
  }

  draw(): void {
    this.plot?.destroy();
    const pointed = (plot: uPlot): void => {
      this.showPoint(plot.cursor.idx ?? null);
    };
    const options = optionsOf(this.chart, paletteOf(this.figure), this.width(), pointed);
    this.plot = new uPlot(options, [this.columns.xs, ...this.columns.ys], this.picture);
  }

  fit(): void {
    const width = this.width();
    if (this.plot !== null && width > 0 && this.plot.width !== width) {
      this.plot.setSize({ width, height: kChartHeight });
    }
  }

  private width(): number {
    return Math.min(Math.floor(this.picture.clientWidth), kWidest);
  }

  private showPoint(index: number | null): void {
    const { xs, stated } = this.columns;
    const x = index === null ? undefined : xs[index];
    const values = stated.map((column) => (index === null ? null : column[index]));
    this.point.textContent = x === undefined ? "" : pointWords(this.chart, x, values);
  }
}

function start(figure: HTMLElement, spec: ChartSpec): void {
  const table = figure.querySelector("table");
  if (table === null || rowsOf(table).length === 0) return;
  const chart = chartOf(spec, rowsOf(table));
  const drawn = new DrawnChart(figure, chart);
  drawn.draw();
  new ResizeObserver(() => {
    drawn.fit();
  }).observe(figure);
  onColourChange(() => {
    drawn.draw();
  });
}

// Returns a function that draws at once what is still to be drawn.
export function setUpCharts(charts: Readonly<Partial<Record<string, ChartSpec>>>): () => void {
  const pending: (() => void)[] = [];
  for (const figure of document.querySelectorAll<HTMLElement>("figure.chart[data-chart]")) {
    const chart = charts[figure.dataset.chart ?? ""];
    if (chart === undefined) continue;
    pending.push(
      onceNear(figure, () => {
        start(figure, chart);
      }),
    );
  }
  return () => {
    for (const draw of pending) draw();
  };
}

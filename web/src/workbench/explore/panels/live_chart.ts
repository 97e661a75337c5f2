// A chart whose numbers change: drawn anew for other numbers, colours and widths.
import uPlot from "uplot";
import { chartLegend } from "../../../charts/chart_legend";
import { columnsOf } from "../../../charts/chart_values";
import { kChartHeight, optionsOf } from "../../../charts/options";
import { paletteOf } from "../../../charts/palette";
import { chartWords, pointWords } from "../../../charts/words";
import type { ChartData } from "../../../data/page_data";
import { make } from "../../../page/dom";
import { onColourChange } from "../../../page/theme";

export class LiveChart {
  readonly element: HTMLElement;
  private plot: uPlot | null = null;
  private chart: ChartData | null = null;
  private readonly picture = make("div", { class: "chart-picture", attributes: { role: "img" } });
  private readonly legend = make("div");
  private readonly point = make("p", { class: "chart-point", attributes: { "aria-hidden": "true" } });

  constructor(private readonly caption: string) {
    const words = make("figcaption", { text: caption });
    this.element = make("figure", { class: "chart" }, words, this.picture, this.point, this.legend);
    new ResizeObserver(() => {
      this.fit();
    }).observe(this.element);
    onColourChange(() => {
      this.draw();
    });
  }

  show(chart: ChartData): void {
    this.chart = chart;
    this.picture.setAttribute("aria-label", chartWords(chart, this.caption));
    this.legend.replaceChildren(chartLegend(chart));
    this.draw();
  }

  private draw(): void {
    this.plot?.destroy();
    this.plot = null;
    const { chart } = this;
    const width = Math.floor(this.picture.clientWidth);
    if (chart === null || width === 0) return;
    const columns = columnsOf(chart);
    const pointed = (plot: uPlot): void => {
      const index = plot.cursor.idx ?? null;
      const x = index === null ? undefined : columns.xs[index];
      const values = columns.stated.map((column) => (index === null ? null : column[index]));
      this.point.textContent = x === undefined ? "" : pointWords(chart, x, values);
    };
    const options = optionsOf(chart, paletteOf(this.element), width, pointed);
    this.plot = new uPlot(options, [columns.xs, ...columns.ys], this.picture);
  }

  private fit(): void {
    const width = Math.floor(this.picture.clientWidth);
    if (this.plot === null) this.draw();
    else if (width > 0 && this.plot.width !== width) this.plot.setSize({ width, height: kChartHeight });
  }
}

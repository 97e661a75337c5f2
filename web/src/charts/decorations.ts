// Vertical marks and shaded spans of a chart, drawn by hand.
import type uPlot from "uplot";
import type { ChartData, MarkData, SpanData } from "../data/page_data";
import type { Palette } from "./palette";

const kFont = 12;

function drawSpan(plot: uPlot, span: SpanData, palette: Palette): void {
  const { ctx, bbox } = plot;
  const from = Math.max(plot.valToPos(span.from, "x", true), bbox.left);
  const to = Math.min(plot.valToPos(span.to, "x", true), bbox.left + bbox.width);
  ctx.fillStyle = span.kind === "censored" ? palette.censored : palette.interval;
  ctx.fillRect(from, bbox.top, Math.max(to - from, devicePixelRatio), bbox.height);
}

export function drawSpans(plot: uPlot, chart: ChartData, palette: Palette): void {
  for (const span of chart.spans ?? []) drawSpan(plot, span, palette);
}

function drawLine(plot: uPlot, x: number): void {
  const { ctx, bbox } = plot;
  ctx.beginPath();
  ctx.moveTo(x, bbox.top);
  ctx.lineTo(x, bbox.top + bbox.height);
  ctx.stroke();
}

// To the right of its line, or to the left where there is no room.
function drawLabel(plot: uPlot, x: number, text: string, row: number): void {
  const { ctx, bbox } = plot;
  const pad = 4 * devicePixelRatio;
  const room = bbox.left + bbox.width - x - pad;
  ctx.textAlign = ctx.measureText(text).width <= room ? "left" : "right";
  ctx.fillText(
    text,
    ctx.textAlign === "left" ? x + pad : x - pad,
    bbox.top + pad + row * (kFont + 3) * devicePixelRatio,
  );
}

export function drawMarks(plot: uPlot, chart: ChartData, palette: Palette): void {
  const marks: readonly MarkData[] = chart.marks ?? [];
  const { ctx } = plot;
  ctx.save();
  ctx.font = `${kFont * devicePixelRatio}px system-ui, sans-serif`;
  ctx.textBaseline = "top";
  ctx.strokeStyle = ctx.fillStyle = palette.mark;
  ctx.lineWidth = 1.5 * devicePixelRatio;
  ctx.setLineDash([5 * devicePixelRatio, 4 * devicePixelRatio]);
  marks.forEach((mark, row) => {
    const x = plot.valToPos(mark.x, "x", true);
    drawLine(plot, x);
    drawLabel(plot, x, mark.label, row % 4);
  });
  ctx.restore();
}

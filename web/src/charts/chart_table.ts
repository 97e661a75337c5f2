// The numbers of a chart, from the table in its figure.
import type { ChartData, ChartSpec, SeriesData, SeriesSpec } from "../data/page_data";

type Column = (number | null)[];

// "n/a" and empty cells are no number.
export function numberOf(text: string): number | null {
  const trimmed = text.trim();
  const value = Number(trimmed);
  return trimmed === "" || !Number.isFinite(value) ? null : value;
}

// An empty last cell of a histogram: there is one edge more than there are bins.
function withoutEmptyEnd(column: Column, chart: ChartSpec): Column {
  return chart.type === "histogram" && column[column.length - 1] === null ? column.slice(0, -1) : column;
}

function seriesOf(spec: SeriesSpec, rows: readonly Column[], chart: ChartSpec): SeriesData {
  const { name, role, column, perX } = spec;
  const ys = rows.map((row) => {
    if (column !== undefined) return row[column] ?? null;
    const x = row[0];
    return x === null || x === undefined || perX === undefined ? null : perX * x;
  });
  return { name, role, ys: withoutEmptyEnd(ys, chart) };
}

// rows: the cells of the table's body.
export function chartOf(spec: ChartSpec, rows: readonly Column[]): ChartData {
  return {
    ...spec,
    xs: rows.map((row) => row[0] ?? NaN),
    series: spec.series.map((series) => seriesOf(series, rows, spec)),
  };
}

export function rowsOf(table: HTMLTableElement): Column[] {
  return Array.from(table.tBodies).flatMap((body) =>
    Array.from(body.rows, (row) => Array.from(row.cells, (cell) => numberOf(cell.textContent))),
  );
}

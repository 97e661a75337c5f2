// The page's JSON as typed data. Checks what everything else relies on: the format's number, the grid
// and that views and charts are there.
import type { PageData } from "./page_data";

const kFormat = 1;

type Fields = Partial<Record<string, unknown>>;

function fieldsOf(value: unknown, what: string): Fields {
  if (typeof value !== "object" || value === null) throw new Error(`The data of this page have no ${what}.`);
  return value as Fields;
}

function isNumbers(value: unknown, count: number): boolean {
  return Array.isArray(value) && value.length >= count && value.every((v) => Number.isFinite(v));
}

function isSize(value: unknown): boolean {
  return isNumbers(value, 3) && (value as number[]).every((n) => Number.isInteger(n) && n > 0);
}

function checkGrid(grid: Fields): void {
  if (!isSize(grid.size)) throw new Error("The grid of this page has no size.");
  const rows = grid.affine;
  if (!Array.isArray(rows) || rows.length < 3 || !rows.every((row) => isNumbers(row, 4))) {
    throw new Error("The grid of this page has no affine.");
  }
}

function checkFormat(format: unknown): void {
  if (format === kFormat) return;
  throw new Error(`This script reads data of format ${kFormat}; the page has format ${String(format)}.`);
}

// Throws Error with a sentence for the reader.
export function readPage(json: string): PageData {
  const fields = fieldsOf(JSON.parse(json), "content");
  checkFormat(fields.format);
  checkGrid(fieldsOf(fields.grid, "grid"));
  if (!Array.isArray(fields.views)) throw new Error("The data of this page have no views.");
  fieldsOf(fields.charts, "charts");
  return fields as unknown as PageData;
}

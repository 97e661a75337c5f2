// What the page carries in its JSON element, as the program writes it. `format` 1.
//
// The grid is upright: i runs from left to right, j from back to front, k from below to above; volumes
// are stored with i fastest. Maps have one code per voxel of the mask, in the mask's order.

export type Triple = readonly [number, number, number];

// Rows of the matrix that takes (i, j, k, 1) to millimetres; the fourth row, if there, is 0 0 0 1.
export type AffineRows = readonly (readonly number[])[];

// Of an axis of the image's file: the axis of the upright grid that it runs along, or against.
export interface StoredAxis {
  readonly axis: 0 | 1 | 2;
  readonly reversed: boolean;
}

export interface GridData {
  readonly size: Triple;
  readonly affine: AffineRows;
  readonly stored: readonly [StoredAxis, StoredAxis, StoredAxis];
}

// value = offset + step * code; code 0: no value.
export interface EffectData {
  readonly id: string;
  readonly type: "u8" | "u16";
  readonly step: number;
  readonly offset: number;
}

// -log10 p = step * (code - 1); code 0: no p.
export interface ProbabilityData {
  readonly id: string;
  readonly type: "u8";
  readonly step: number;
}

// The magnitude at which the false discovery rate reaches q; null: no voxel survives.
export interface ThresholdData {
  readonly q: number;
  readonly value: number | null;
}

export interface MapData {
  readonly kind: string;
  readonly title: string;
  readonly unit: string;
  readonly positive: string;
  readonly negative: string | null; // null: values are never negative
  readonly effect: EffectData;
  readonly p: ProbabilityData | null;
  readonly thresholds: readonly ThresholdData[];
  readonly fullColour: number; // the magnitude at which the colour is full
  readonly floor?: number; // smaller magnitudes are left out of the page, and have the code 0
}

export interface ViewData {
  readonly id: string;
  readonly reference: string;
  readonly condition: string;
  readonly region: string;
  readonly direction: string | null;
  readonly maps: readonly MapData[];
}

export interface PageData {
  readonly format: 1;
  readonly grid: GridData;
  readonly mask: string;
  readonly underlay: string;
  readonly underlayName: string;
  readonly views: readonly ViewData[];
  readonly charts: Readonly<Record<string, ChartSpec>>;
}

export type SeriesRole = "main" | "second" | "band-low" | "band-high" | "null" | "bound";

export interface SeriesData {
  readonly name: string;
  readonly role: SeriesRole;
  readonly ys: readonly (number | null)[];
}

export interface AxisData {
  readonly label: string;
  readonly unit?: string;
  readonly log: boolean;
}

export interface MarkData {
  readonly x: number;
  readonly label: string;
}

export interface SpanData {
  readonly from: number;
  readonly to: number;
  readonly kind: "interval" | "censored";
  readonly label: string;
}

// A series of a chart as the page's data have it: its numbers are a column of the table in the chart's
// figure (x is column 0), or follow from x.
export interface SeriesSpec {
  readonly name: string;
  readonly role: SeriesRole;
  readonly column?: number;
  readonly perX?: number; // y = perX * x
}

export interface ChartSpec extends Omit<ChartData, "xs" | "series"> {
  readonly series: readonly SeriesSpec[];
}

// Histograms: ys are heights from each x to the next; a last x may close the last bin.
export interface ChartData {
  readonly type: "line" | "histogram" | "search";
  readonly x: AxisData;
  readonly y: AxisData;
  readonly xs: readonly number[];
  readonly series: readonly SeriesData[];
  readonly marks?: readonly MarkData[];
  readonly spans?: readonly SpanData[];
}

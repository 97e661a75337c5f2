// What is known about the voxel under the crosshair, in words.
import { millimetres, offsetOf, storedVoxel } from "../data/grid";
import { effectOf, logOf } from "../data/map_codes";
import type { GridData, MapData, Triple, ViewData } from "../data/page_data";
import type { Shown } from "./shown";
import { decimalsOf, halfStep, plain, probability, signed, withUnit } from "./numbers";

export interface Line {
  readonly name: string;
  readonly text: string;
}

export function directionWords(code: number): string {
  const words = [
    "not tested",
    "the reference leads",
    "the voxel leads",
    "not supported by its control",
    "could not be judged",
  ];
  return words[code] ?? `code ${code}`;
}

// What the sign stands for; whether the data support it is the threshold's and the direction's to say.
function signWords(data: MapData, value: number): string {
  if (data.negative === null || value === 0) return "";
  return value > 0 ? ` (positive: ${data.positive})` : ` (negative: ${data.negative})`;
}

function missingText({ floor, unit }: MapData): string {
  return floor === undefined
    ? "none here"
    : `below ${withUnit(plain(floor, 3), unit)}, or none: left out of this page`;
}

export function valueText(data: MapData, code: number): string {
  const value = effectOf(data.effect, code);
  if (Number.isNaN(value)) return missingText(data);
  const { step } = data.effect;
  const shown = data.negative === null ? plain(value, decimalsOf(step)) : signed(value, decimalsOf(step));
  const rounded = step > 0 ? `${shown} ± ${halfStep(step)}` : shown;
  return withUnit(rounded, data.unit) + signWords(data, value);
}

export function probabilityText(data: MapData, code: number): string {
  if (data.p === null) return "not stored for this map";
  const log = logOf(data.p, code);
  if (Number.isNaN(log)) return "none here";
  const { step } = data.p;
  return `${probability(log)} (\u2212log₁₀ p ${plain(log, decimalsOf(step))} ± ${halfStep(step)})`;
}

function placeLines(grid: GridData, voxel: Triple): Line[] {
  const mm = millimetres(grid.affine, voxel).map((c) => plain(c, 1));
  return [
    { name: "Place (x, y, z)", text: `${mm.join(", ")} mm` },
    { name: "Voxel (i, j, k) of the image", text: storedVoxel(grid, voxel).join(", ") },
  ];
}

// Code 0 where the voxel is outside the mask.
function codeAt(codes: ArrayLike<number> | null, place: number): number {
  return place < 0 ? 0 : (codes?.[place] ?? 0);
}

// Whether the voxel at a place of the mask reaches the threshold.
function reachedText({ map, rule }: Judged, place: number): string {
  const value = effectOf(map.data.effect, codeAt(map.effect, place));
  if (Number.isNaN(value)) return "none here";
  const log = map.data.p === null ? NaN : logOf(map.data.p, codeAt(map.p, place));
  return rule.reaches({ value, log }) ? "reached" : "not reached";
}

export type Judged = Pick<Shown, "view" | "map" | "rule">;

export function readout(grid: GridData, names: ViewData, shown: Judged, voxel: Triple): Line[] {
  const { view, map } = shown;
  const offset = offsetOf(grid.size, voxel);
  const place = view.backdrop.places[offset] ?? -1;
  const lines = placeLines(grid, voxel);
  const outside = place < 0 ? "outside the mask" : null;
  lines.push({ name: "Value", text: outside ?? valueText(map.data, codeAt(map.effect, place)) });
  lines.push({ name: "p", text: outside ?? probabilityText(map.data, codeAt(map.p, place)) });
  lines.push({ name: "Threshold", text: outside ?? reachedText(shown, place) });
  const inside = view.region[offset] ? `part of ${names.reference}` : "outside the reference";
  lines.push({ name: "Region", text: inside });
  if (view.direction !== null) {
    lines.push({ name: "Direction", text: outside ?? directionWords(codeAt(view.direction, place)) });
  }
  return lines;
}

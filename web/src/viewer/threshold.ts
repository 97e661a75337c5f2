// Which voxels reach the threshold, and how far those below it fade.
import { logOf } from "../data/map_codes";
import type { LoadedMap } from "../data/loaded_view";
import type { MapData } from "../data/page_data";

// By -log10 p, or by the magnitude of the value; q: the false discovery rate that the magnitude stands for.
export type Threshold =
  | { readonly by: "p"; readonly level: number }
  | { readonly by: "magnitude"; readonly level: number; readonly q: number | null };

// A value as it is stored: rounded to a step.
export interface Stored {
  readonly value: number;
  readonly log: number; // -log10 p; NaN: none
}

export interface Rule {
  readonly reaches: (stored: Stored) => boolean;
  // Opacity of a voxel, 0 ... 1; 1 where it reaches the threshold.
  readonly opacity: (stored: Stored) => number;
}

// The most that a voxel below the threshold gets: the step at the threshold stays visible.
export const kMostBelow = 0.7;
const kRounding = 1e-9;

function faded(share: number): number {
  const kept = Math.min(Math.max(share, 0), 1);
  return Number.isNaN(kept) ? 0 : kMostBelow * kept * kept;
}

// A value may have been rounded down from the threshold itself: half a step counts as reached.
function reachesBy(threshold: Threshold, data: MapData): (stored: Stored) => boolean {
  if (threshold.by === "p") return ({ log }) => log >= threshold.level - kRounding;
  const lowest = threshold.level - data.effect.step / 2;
  return ({ value }) => Math.abs(value) >= lowest - kRounding;
}

// The lowest -log10 p among the voxels that reach the threshold: what those below are measured by.
export function weakestLog(map: LoadedMap, reaches: (stored: Stored) => boolean): number {
  const { data, effect, values, p } = map;
  if (data.p === null || p === null) return NaN;
  let weakest = Infinity;
  for (let n = 0; n < effect.length; ++n) {
    const log = logOf(data.p, p[n] ?? 0);
    if (log < weakest && reaches({ value: values[effect[n] ?? 0] ?? NaN, log })) weakest = log;
  }
  return weakest;
}

function fadeBy(threshold: Threshold, map: LoadedMap, reaches: Rule["reaches"]): (stored: Stored) => number {
  if (map.p === null) return ({ value }) => faded(Math.abs(value) / threshold.level);
  const weakest = threshold.by === "p" ? threshold.level : weakestLog(map, reaches);
  const level = Number.isFinite(weakest) ? weakest : highestLog(map);
  return ({ log }) => faded(level > 0 ? log / level : 1);
}

export function ruleOf(threshold: Threshold, map: LoadedMap): Rule {
  const reaches = reachesBy(threshold, map.data);
  const below = fadeBy(threshold, map, reaches);
  return { reaches, opacity: (stored) => (reaches(stored) ? 1 : below(stored)) };
}

// NaN: the map has no p.
export function highestLog({ data, p }: LoadedMap): number {
  if (data.p === null || p === null) return NaN;
  let highest = 0;
  for (const code of p) highest = Math.max(highest, code);
  return highest === 0 ? NaN : logOf(data.p, highest);
}

const kUsualLog = 3; // p = 0.001

const kUsualQ = 0.05;

// The stored threshold for the usual q where a voxel survives it, else the first that one survives.
function storedThreshold({ thresholds }: MapData): Threshold | null {
  const survived = thresholds.flatMap(({ q, value }) => (value === null ? [] : [{ q, level: value }]));
  const chosen = survived.find(({ q }) => q === kUsualQ) ?? survived[0];
  return chosen === undefined ? null : { by: "magnitude", ...chosen };
}

// What a map starts with: a stored threshold; else p = 0.001 or the highest p there is; a map without p
// at half its full colour.
export function firstThreshold(map: LoadedMap): Threshold {
  const stored = storedThreshold(map.data);
  if (stored !== null) return stored;
  if (map.p === null) return { by: "magnitude", level: map.data.fullColour / 2, q: null };
  const highest = highestLog(map);
  return { by: "p", level: Number.isNaN(highest) ? kUsualLog : Math.min(kUsualLog, highest) };
}

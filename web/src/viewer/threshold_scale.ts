// The slider's scale for a map, and thresholds in words.
import type { LoadedMap } from "../data/loaded_view";
import type { MapData } from "../data/page_data";
import { magnitude, plain, probability, withUnit } from "./numbers";
import { highestLog, type Threshold } from "./threshold";

export interface ThresholdScale {
  readonly by: "p" | "magnitude";
  readonly highest: number;
  readonly step: number;
  readonly stride: number; // of one key press
}

const kStrides = 100;

// Over the stored p; maps without: over the magnitude of their values.
export function scaleOf(map: LoadedMap): ThresholdScale {
  const highest = highestLog(map);
  if (map.data.p !== null && !Number.isNaN(highest)) {
    return { by: "p", highest, step: map.data.p.step, stride: Math.max(0.1, map.data.p.step) };
  }
  const full = map.data.fullColour;
  return { by: "magnitude", highest: full, step: full / kStrides, stride: full / kStrides };
}

export function onScale(scale: ThresholdScale, level: number): Threshold {
  const within = Math.min(Math.max(level, 0), scale.highest);
  return scale.by === "p" ? { by: "p", level: within } : { by: "magnitude", level: within, q: null };
}

export function thresholdWords(threshold: Threshold, data: MapData): string {
  const { level } = threshold;
  if (threshold.by === "p") {
    return level <= 0
      ? "p \u2264 1 (every voxel)"
      : `p \u2264 ${probability(level)} (\u2212log₁₀ p \u2265 ${plain(level, 2)})`;
  }
  const sides = data.negative === null ? "value" : "magnitude";
  const words = `${sides} \u2265 ${withUnit(magnitude(level), data.unit)}`;
  return threshold.q === null ? words : `q = ${threshold.q}: ${words}`;
}

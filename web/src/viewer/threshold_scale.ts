// The slider's scale for a map, and thresholds in words.
import type { LoadedMap } from "../data/loaded_view";
import type { MapData } from "../data/page_data";
import { magnitude, plain, probability, withUnit } from "./numbers";
import { highestLog, type Threshold } from "./threshold";

// The slider runs in whole numbers, 0 ... steps; level = step * position.
export interface ThresholdScale {
  readonly by: "p" | "magnitude";
  readonly step: number;
  readonly steps: number;
  readonly stride: number; // positions that one key press moves
}

const kMagnitudeSteps = 100;
const kLogStride = 0.1;

// Over the stored p; maps without: over the magnitude of their values.
export function scaleOf(map: LoadedMap): ThresholdScale {
  const highest = highestLog(map);
  if (map.data.p === null || Number.isNaN(highest)) {
    return {
      by: "magnitude",
      step: map.data.fullColour / kMagnitudeSteps,
      steps: kMagnitudeSteps,
      stride: 1,
    };
  }
  const { step } = map.data.p;
  const stride = Math.max(Math.round(kLogStride / step), 1);
  return { by: "p", step, steps: Math.round(highest / step), stride };
}

export function thresholdAt(scale: ThresholdScale, position: number): Threshold {
  const level = Math.min(Math.max(position, 0), scale.steps) * scale.step;
  return scale.by === "p" ? { by: "p", level } : { by: "magnitude", level, q: null };
}

export function positionOf(scale: ThresholdScale, level: number): number {
  return Math.min(Math.max(Math.round(level / scale.step), 0), scale.steps);
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

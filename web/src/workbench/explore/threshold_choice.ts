// Which voxels count: by the false discovery rate that the program computed thresholds for, or by a value.
import { magnitude, withUnit } from "../../viewer/numbers";
import type { MapInfo } from "./explore_data";
import type { ReplyMap, ReplyThreshold } from "./maps_reply";

export type ThresholdChoice =
  | { readonly by: "q"; readonly q: number }
  | { readonly by: "value"; readonly level: number };

export function thresholdFor(map: ReplyMap, q: number): ReplyThreshold | undefined {
  return map.thresholds.find((each) => each.q === q);
}

// The magnitude from which voxels count; Infinity: none does.
export function levelOf(choice: ThresholdChoice, map: ReplyMap): number {
  if (choice.by === "value") return choice.level;
  return thresholdFor(map, choice.q)?.threshold ?? Infinity;
}

const kStep = 1.1;
const kLowest = 1e-6;

// One press of a bracket: the next q of the list, or a tenth of the value.
export function stepped(choice: ThresholdChoice, qs: readonly number[], by: 1 | -1): ThresholdChoice {
  if (choice.by === "value") {
    return { by: "value", level: Math.max(by > 0 ? choice.level * kStep : choice.level / kStep, kLowest) };
  }
  const strict = [...qs].sort((a, b) => b - a); // a smaller q lets fewer voxels pass
  const next = strict[strict.indexOf(choice.q) + by];
  return next === undefined ? choice : { by: "q", q: next };
}

function sides(info: MapInfo): string {
  return info.negative === null || info.negative === undefined || info.negative === ""
    ? "value"
    : "magnitude";
}

export function thresholdWords(choice: ThresholdChoice, map: ReplyMap, info: MapInfo): string {
  const level = levelOf(choice, map);
  const reach = `${sides(info)} \u2265 ${withUnit(magnitude(level), info.unit ?? "")}`;
  if (choice.by === "value") return reach;
  if (map.thresholds.length === 0) return "no threshold is known for this map: choose a value";
  return Number.isFinite(level) ? `q = ${choice.q}: ${reach}` : `q = ${choice.q}: no voxel reaches it`;
}

// What a map is compared with.
import type { ReplyMap } from "../maps_reply";

export interface Other {
  readonly map: ReplyMap;
  readonly reference: string; // in words
  readonly condition: string;
  readonly region: readonly number[]; // places on the edge of its reference
}

export interface CompareState {
  readonly with: "nothing" | "pinned" | "condition";
  readonly condition: string; // the other one
  readonly show: "map" | "difference";
  readonly pinned: Other | null;
  readonly fetched: Other | null; // of the other condition, for the map that is shown
}

export function otherOf(state: CompareState): Other | null {
  if (state.with === "pinned") return state.pinned;
  return state.with === "condition" ? state.fetched : null;
}

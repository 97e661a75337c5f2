// The magnitude at which the colour is full. While the reference moves it stays, so that pictures compare.
import type { ReplyMap } from "./maps_reply";
import { fullColourOf } from "./tint";

const kKnown = new WeakMap<ReplyMap, number>();
const kLast = new Map<string, number>(); // by kind of map

export function levelFull(map: ReplyMap, draft: boolean): number {
  const known = kKnown.get(map);
  if (known !== undefined) return known;
  const kept = draft ? kLast.get(map.type) : undefined;
  const full = kept ?? fullColourOf(map);
  kKnown.set(map, full);
  kLast.set(map.type, full);
  return full;
}

// What is on the screen, in words.
import type { MapsReply } from "./maps_reply";

export interface Badge {
  readonly kind: "none" | "provisional" | "calibrated";
  readonly words: string;
}

const kDraws = 20;

// draws: of the calibrated maps.
export function badgeOf(maps: MapsReply | null, draws: number | undefined): Badge {
  if (maps === null) return { kind: "none", words: "no map yet" };
  if (maps.header.draft) return { kind: "provisional", words: "provisional: one null draw" };
  const count = maps.header.draws ?? draws ?? kDraws;
  return { kind: "calibrated", words: `calibrated: ${count} draws` };
}

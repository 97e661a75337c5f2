// What the Explore tab shows and asks for.
import type { ReadyData, Millimetres, Reference, Settings } from "./explore_data";
import type { MapsReply } from "./maps_reply";
import type { ThresholdChoice } from "./threshold_choice";

// What the mouse moves: the reference (which is then drawn where the kind says so), or the crosshair.
export type MouseMoves = "reference" | "crosshair";
export type ReferenceKind = "sphere" | "cursor" | "label" | "voxels";

export interface ExploreState {
  readonly kind: ReferenceKind;
  readonly reference: Reference;
  readonly radiusMm: number;
  readonly erase: boolean;
  readonly mouse: MouseMoves;
  readonly crosshair: Millimetres;
  readonly condition: string;
  readonly type: string;
  readonly settings: Settings; // those alone that differ from the program's
  readonly choice: ThresholdChoice;
  readonly shown: boolean;
  readonly hideBelow: boolean;
  readonly faintUnsupported: boolean;
  readonly maps: MapsReply | null;
  readonly waiting: boolean; // what is on the screen is not what was asked for last
  readonly problem: string | null;
}

const kFirstRadius = 6;
const kFirstType = "DTAV";
const kFirstQ = 0.05;

export function firstState(data: ReadyData, middle: Millimetres): ExploreState {
  const qs = data.settings.qValues ?? [];
  return {
    kind: "sphere",
    reference: { kind: "sphere", mm: middle, radiusMm: kFirstRadius },
    radiusMm: kFirstRadius,
    erase: false,
    mouse: "reference",
    crosshair: middle,
    condition: data.conditions[0]?.name ?? "",
    type: (data.maps.find(({ type }) => type === kFirstType) ?? data.maps[0])?.type ?? kFirstType,
    settings: {},
    choice: { by: "q", q: qs.includes(kFirstQ) ? kFirstQ : (qs[0] ?? kFirstQ) },
    shown: true,
    hideBelow: false,
    faintUnsupported: true,
    maps: null,
    waiting: false,
    problem: null,
  };
}

// What the picture of the map depends on.
export const kShowing: readonly (keyof ExploreState)[] = [
  "maps",
  "type",
  "choice",
  "shown",
  "hideBelow",
  "faintUnsupported",
];

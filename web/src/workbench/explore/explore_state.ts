// What the Explore tab shows and asks for.
import type { ReadyData, Millimetres, Reference, Settings } from "./explore_data";
import type { ViewState } from "./map_view";

// What the mouse moves: the reference (which is then drawn where the kind says so), or the crosshair.
export type MouseMoves = "reference" | "crosshair";
export type ReferenceKind = "sphere" | "cursor" | "label" | "voxels";

export interface ExploreState extends ViewState {
  readonly kind: ReferenceKind;
  readonly reference: Reference;
  readonly radiusMm: number;
  readonly erase: boolean;
  readonly mouse: MouseMoves;
  readonly condition: string;
  readonly settings: Settings; // those alone that differ from the program's
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

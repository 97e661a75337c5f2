// What the planes, the threshold, the readout and the clusters need to know: a run that is explored has it,
// and so have maps that were saved.
import type { Triple } from "../../data/page_data";
import type { LabelData, MapInfo, Millimetres } from "./explore_data";
import type { MapsReply } from "./maps_reply";
import type { RunImages } from "./run_images";
import { stepped, type ThresholdChoice } from "./threshold_choice";

export interface ViewState {
  readonly crosshair: Millimetres;
  readonly type: string; // which of the maps
  readonly choice: ThresholdChoice;
  readonly shown: boolean;
  readonly hideBelow: boolean;
  readonly faintUnsupported: boolean;
  readonly maps: MapsReply | null;
}

// A store of this state or of more.
export interface Viewed<T> {
  readonly now: T;
  change(patch: Partial<T>): void;
  on(members: readonly (keyof T)[], work: (now: T) => void): void;
}

export interface ViewedData {
  readonly maps: readonly MapInfo[];
  readonly labels: readonly LabelData[];
  readonly hasLabels: boolean;
  readonly settings: { readonly qValues?: readonly number[] };
}

export interface MapView {
  readonly data: ViewedData;
  readonly images: RunImages;
  readonly store: Viewed<ViewState>;
  // In words: which state the maps are in.
  stateWords(): string;
  // Whether a place of the mask can be a finding.
  isFinding(place: number): boolean;
  moveCrosshair(mm: Millimetres): void;
  // Under the mouse; swapped: Shift is held.
  follow(mm: Millimetres, swapped: boolean): void;
  // Whether it follows without a button.
  readonly hovers: boolean;
}

// What the picture of the map depends on.
export const kShowing = ["maps", "type", "choice", "shown", "hideBelow", "faintUnsupported"] as const;

export function infoOf({ data }: Pick<MapView, "data">, type: string): MapInfo {
  return data.maps.find((map) => map.type === type) ?? { type, name: type, hasThresholds: false };
}

// By whole voxels along the axes of millimetres.
export function steppedMm({ mask }: RunImages, mm: Millimetres, by: Triple): Millimetres {
  const { affine } = mask.grid;
  const edge = Math.hypot(...[0, 1, 2].map((row) => affine[row]?.[0] ?? 0));
  return [mm[0] + by[0] * edge, mm[1] + by[1] * edge, mm[2] + by[2] * edge];
}

export function stepThreshold({ data, store }: Pick<MapView, "data" | "store">, by: 1 | -1): void {
  store.change({ choice: stepped(store.now.choice, data.settings.qValues ?? [], by) });
}

// What the program says about the run that is explored, and the requests of the page.
import type { AffineRows, Triple } from "../../data/page_data";

export type Millimetres = Triple;

export interface RunData {
  readonly name: string;
  readonly volumes: number;
  readonly trSeconds: number;
  readonly censored: number;
}

export interface ConditionData {
  readonly name: string;
  readonly volumes: number;
}

export interface LabelData {
  readonly id: number;
  readonly name: string;
  readonly voxels: number;
  readonly mm: Millimetres;
}

export interface MapInfo {
  readonly type: string;
  readonly name: string;
  readonly hasThresholds: boolean;
  readonly unit?: string;
  readonly positive?: string | null;
  readonly negative?: string | null; // null: values are never negative
}

export interface Censoring {
  readonly fdThresholdMm?: number | null;
}

// Settings as the program names them; requests carry those alone that differ from what it said.
export interface Settings {
  readonly order?: number;
  readonly maxOrder?: number;
  readonly draws?: number;
  readonly qValues?: readonly number[];
  readonly censoring?: Censoring;
  readonly confounds?: unknown;
  readonly runs?: readonly string[];
}

export interface PresetData {
  readonly id: string;
  readonly words: string;
}

export interface ReadyData {
  readonly state: "ready";
  readonly grid: { readonly size: Triple; readonly affine: AffineRows };
  readonly voxels: number;
  readonly runs: readonly RunData[];
  readonly conditions: readonly ConditionData[];
  readonly labels: readonly LabelData[];
  readonly maps: readonly MapInfo[];
  readonly settings: Settings;
  readonly confoundPresets?: readonly (PresetData | string)[];
  readonly hasAnatomy: boolean;
  readonly hasLabels: boolean;
}

export interface WaitingData {
  readonly state: "none" | "choosing" | "loading" | "failed";
  readonly message?: string;
  readonly progress?: number;
  readonly memoryBytes?: number;
  readonly choices?: readonly PresetData[];
}

export type ExploreData = ReadyData | WaitingData;

export type Reference =
  | { readonly kind: "sphere"; readonly mm: Millimetres; readonly radiusMm: number }
  | { readonly kind: "label"; readonly id: number }
  | { readonly kind: "voxels"; readonly cells: readonly number[] };

export interface MapsRequest {
  readonly reference: Reference;
  readonly condition: string;
  readonly types: readonly string[];
  readonly settings: Settings;
}

export interface VoxelRequest {
  readonly mm: Millimetres;
  readonly reference: Reference;
  readonly condition: string;
  readonly types: readonly string[];
  readonly settings: Settings;
}

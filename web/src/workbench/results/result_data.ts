// GET /api/results and /api/results/list.
import type { Place } from "../files/file_chooser";

export interface ResultFolder extends Place {
  readonly requests: readonly string[];
  readonly index: string | null; // the address of the page
}

export interface MapData {
  readonly label: string;
  readonly type: string;
  readonly title: string;
  readonly unit: string;
  readonly positive: string;
  readonly negative: string | null; // null: values are never negative
  readonly file: string;
  readonly pFile: string | null; // -log10 of p
  readonly peak: number;
  readonly peakMm: readonly [number, number, number];
  readonly peakLabel: string;
  readonly thresholds: readonly {
    readonly q: number;
    readonly threshold: number | null;
    readonly passing: number;
  }[];
}

export interface ConditionData {
  readonly name: string;
  readonly effectiveVolumes: number;
  readonly voxels: number;
  readonly statusFile: string;
  readonly directionFile: string | null;
  readonly maps: readonly MapData[];
}

export interface ReferenceData {
  readonly name: string;
  readonly voxels: number;
  readonly record: string;
  readonly order: number;
  readonly warnings: readonly string[];
  readonly conditions: readonly ConditionData[];
  readonly files: readonly { readonly name: string; readonly bytes: number }[];
}

export interface RequestData extends Place {
  readonly name: string;
  readonly participant: string;
  readonly report: string | null;
  readonly references: readonly ReferenceData[];
  readonly failures: readonly { readonly reference: string; readonly message: string }[];
  readonly problem?: string;
}

export interface ParticipantData {
  readonly participant: string;
  readonly requests: number;
  readonly references: number;
  readonly failures: number;
}

export interface GroupCell {
  readonly title: string;
  readonly condition: string;
  readonly map: string;
  readonly positive: string;
  readonly negative: string | null; // null: values below 0 count for nothing
  readonly images: readonly { readonly what: string; readonly file: string }[];
  readonly thresholds: readonly { readonly q: number; readonly threshold: number | null }[]; // of t
}

// A test over participants.
export interface GroupData extends Place {
  readonly test: string;
  readonly report: string | null;
  readonly problem?: string;
  readonly cells: readonly GroupCell[];
}

export interface ResultsData {
  readonly participants: readonly ParticipantData[];
  readonly requests: readonly RequestData[];
  readonly groups: readonly GroupData[];
  readonly areAll: boolean;
}

// "q 0.05: 120 voxels, from 0.31", or that none pass.
export function thresholdWords(map: Pick<MapData, "thresholds">): string {
  return map.thresholds
    .map(({ q, threshold, passing }) =>
      threshold === null
        ? `q ${q}: none`
        : `q ${q}: ${passing} ${passing === 1 ? "voxel" : "voxels"}, from ${threshold.toPrecision(3)}`,
    )
    .join("; ");
}

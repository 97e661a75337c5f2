// GET /api/runs.
import type { Place } from "../files/file_chooser";

export type RunState = "queued" | "running" | "done" | "failed" | "cancelled" | "interrupted";

export interface RunData {
  readonly id: number;
  readonly title: string;
  readonly request: Place;
  readonly state: RunState;
  readonly progress: number; // 0 to 1
  readonly secondsLeft: number | null;
  readonly message: string;
  readonly lines: readonly string[]; // the last that it said
  readonly outputs: Place & { readonly name: string; readonly report: string | null };
}

const kWords: Readonly<Record<RunState, string>> = {
  queued: "waits",
  running: "runs",
  done: "done",
  failed: "failed",
  cancelled: "cancelled",
  interrupted: "interrupted when the workbench ended",
};

// "45 s", "1 min 05 s", "2 h 03 min".
export function durationWords(seconds: number): string {
  const whole = Math.round(Math.max(0, seconds));
  const two = (value: number): string => String(value).padStart(2, "0");
  if (whole < 60) return `${whole} s`;
  if (whole < 3600) return `${Math.floor(whole / 60)} min ${two(whole % 60)} s`;
  return `${Math.floor(whole / 3600)} h ${two(Math.floor((whole % 3600) / 60))} min`;
}

export function stateWords(run: Pick<RunData, "state" | "progress" | "secondsLeft">): string {
  if (run.state !== "running") return kWords[run.state];
  const percent = `runs, ${Math.floor(run.progress * 100)} %`;
  return run.secondsLeft === null ? percent : `${percent}, ${durationWords(run.secondsLeft)} left`;
}

export function isActive({ state }: Pick<RunData, "state">): boolean {
  return state === "queued" || state === "running";
}

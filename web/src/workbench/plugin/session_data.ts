// GET /api/plugin.
import type { Place } from "../files/file_chooser";

export interface Choice {
  readonly number: number;
  readonly name: string;
}

export interface Question {
  readonly id: number;
  readonly kind: "message" | "yesno" | "integer" | "number" | "text" | "open" | "save";
  readonly text: string;
  readonly initial?: string;
  readonly range?: string; // "1 to 4"
  readonly choices?: readonly Choice[];
  readonly filter?: string;
  readonly start?: Place;
}

export interface SavedMaps {
  readonly path: string;
  readonly place: Place;
  readonly pictures: readonly Place[];
  readonly problem: string; // why there are none
}

export interface SessionData {
  readonly state: "none" | "running" | "ended";
  readonly log: readonly string[];
  readonly question: Question | null;
  readonly busy: boolean;
  readonly ending: boolean; // it was told to
  readonly maps: readonly SavedMaps[];
  readonly exitCode: number;
  readonly message: string;
  readonly summary: string;
  readonly anatomy: boolean; // whether the session has one
  readonly recorded: string; // the script of the answers; "": none
}

const kEnding =
  "The session ends as soon as the plug-in calls the host again, with its next line in the log, say: until " +
  "then it computes, and cannot be told.";

export function stateWords(session: SessionData): string {
  if (session.state === "none") return "No session was started.";
  if (session.state === "running" && session.ending) return kEnding;
  if (session.state === "running") return session.busy ? "The plug-in computes." : "The session goes on.";
  const how =
    session.exitCode === 0 ? "The session has ended well." : "The session has ended with a failure.";
  const recorded = session.recorded === "" ? "" : ` The answers are in ${session.recorded}.`;
  return `${how} ${session.message}${recorded}`;
}

// Entries whose name or number has what was typed.
export function matching(choices: readonly Choice[], typed: string): readonly Choice[] {
  const wanted = typed.trim().toLowerCase();
  return choices.filter(({ number, name }) => `${number}. ${name}`.toLowerCase().includes(wanted));
}

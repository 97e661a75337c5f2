// What keys do in the Explore tab.
import type { Triple } from "../../data/page_data";

export type KeyAction =
  | { readonly do: "crosshair"; readonly by: Triple }
  | { readonly do: "reference"; readonly by: Triple }
  | { readonly do: "threshold"; readonly by: 1 | -1 }
  | { readonly do: "toggle" }
  | { readonly do: "help" };

// Steps of one voxel to the right, to the front, upwards.
const kSteps: Readonly<Partial<Record<string, Triple>>> = {
  ArrowLeft: [-1, 0, 0],
  ArrowRight: [1, 0, 0],
  ArrowUp: [0, 1, 0],
  ArrowDown: [0, -1, 0],
  PageUp: [0, 0, 1],
  PageDown: [0, 0, -1],
};

const kOthers: Readonly<Partial<Record<string, KeyAction>>> = {
  "[": { do: "threshold", by: -1 },
  "]": { do: "threshold", by: 1 },
  " ": { do: "toggle" },
  "?": { do: "help" },
};

export interface Key {
  readonly key: string;
  readonly shiftKey: boolean;
  readonly ctrlKey: boolean;
  readonly altKey: boolean;
  readonly metaKey: boolean;
}

// null: the key is not the tab's.
export function keyAction({ key, shiftKey, ctrlKey, altKey, metaKey }: Key): KeyAction | null {
  if (ctrlKey || altKey || metaKey) return null;
  const by = kSteps[key];
  if (by !== undefined) return { do: shiftKey ? "reference" : "crosshair", by };
  return kOthers[key] ?? null;
}

// Whether an element has a use of its own for a key.
export function takesKey(tag: string, type: string, key: string): boolean {
  if (tag === "TEXTAREA" || tag === "SELECT") return true;
  if (tag === "BUTTON" || tag === "SUMMARY" || tag === "A") return key === " ";
  if (tag !== "INPUT") return false;
  if (type === "checkbox") return key === " ";
  if (type === "range" || type === "radio")
    return key === " " || key.startsWith("Arrow") || key.startsWith("Page");
  return true;
}

export interface KeyLine {
  readonly keys: string;
  readonly words: string;
}

export const kKeyLines: readonly KeyLine[] = [
  { keys: "← → ↑ ↓", words: "move the crosshair: left, right, front, back" },
  { keys: "Page Up, Page Down", words: "move the crosshair up, down" },
  { keys: "Shift + those", words: "move the reference" },
  { keys: "[ and ]", words: "threshold: more voxels, fewer voxels" },
  { keys: "Space", words: "hide or show the map" },
  {
    keys: "Shift + mouse",
    words: "move the crosshair where the mouse moves the reference, and the other way round",
  },
  { keys: "?", words: "this list" },
];

// The order of rows: numbers or words, rows without a value last, equal rows as they were.

export type Kind = "number" | "text";
export type Order = "ascending" | "descending";

// null: no value.
export type Key = number | string | null;

const kCollator = new Intl.Collator("en", { numeric: true, sensitivity: "base" });
const kMissing = new Set(["", "n/a", "-", "–", "—"]);

// The key of a cell from its text, or from its `data-value` where it has one.
export function keyOf(kind: Kind, text: string, stored: string | undefined): Key {
  const source = (stored ?? text).trim();
  if (kMissing.has(source.toLowerCase())) return null;
  if (kind === "text") return source;
  const number = Number(source.replace(/\u2212/g, "-").replace(/[,\s]/g, ""));
  return Number.isNaN(number) ? null : number;
}

function compare(a: number | string, b: number | string): number {
  if (typeof a === "number" && typeof b === "number") return a - b;
  return kCollator.compare(String(a), String(b));
}

// Indices of `keys` in their new order.
export function sortedIndices(keys: readonly Key[], order: Order): number[] {
  const sign = order === "ascending" ? 1 : -1;
  return keys
    .map((_, index) => index)
    .sort((left, right) => {
      const [a, b] = [keys[left] ?? null, keys[right] ?? null];
      if (a === null || b === null) return Number(a === null) - Number(b === null);
      return sign * compare(a, b);
    });
}

// The fitted model, whatever names it has, as rows of name and numbers.
import { magnitude } from "../../../viewer/numbers";

export interface ModelRow {
  readonly name: string;
  readonly numbers: string;
}

function isNumbers(value: unknown): value is (number | null)[] {
  return Array.isArray(value) && value.every((each) => typeof each === "number" || each === null);
}

function numberText(value: number | null): string {
  return value === null ? "none" : magnitude(value);
}

export function modelRows(value: unknown, name = ""): ModelRow[] {
  if (typeof value === "number") return [{ name, numbers: numberText(value) }];
  if (isNumbers(value)) return [{ name, numbers: value.map(numberText).join(", ") }];
  if (Array.isArray(value)) {
    return value.flatMap((each, n) => modelRows(each, `${name} ${n + 1}`));
  }
  if (typeof value !== "object" || value === null) return [];
  return Object.entries(value).flatMap(([key, each]) =>
    modelRows(each, name === "" ? key : `${name}: ${key}`),
  );
}

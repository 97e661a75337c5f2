// Codes of a map as values.
import type { EffectData, ProbabilityData } from "./page_data";

// NaN: no value.
export function effectOf(data: EffectData, code: number): number {
  return code === 0 ? NaN : data.offset + data.step * code;
}

// -log10 p; NaN: no p.
export function logOf(data: ProbabilityData, code: number): number {
  return code === 0 ? NaN : data.step * (code - 1);
}

// The codes of all values at once, so that drawing looks them up. u8: 256 entries, u16: 65536.
export function effectTable(data: EffectData): Float64Array {
  return Float64Array.from({ length: data.type === "u16" ? 65536 : 256 }, (_, code) => effectOf(data, code));
}

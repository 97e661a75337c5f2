// Values as the codes that pages of reports have, and bytes as the text that they carry.
import type { EffectData, ProbabilityData } from "../../../data/page_data";

const kMostCode = 65535;

// Code 0: no value.
export function coded(values: readonly number[]): {
  readonly bytes: Uint8Array<ArrayBuffer>;
  readonly effect: Omit<EffectData, "id">;
} {
  let [low, high] = [Infinity, -Infinity];
  for (const value of values) {
    if (Number.isNaN(value)) continue;
    [low, high] = [Math.min(low, value), Math.max(high, value)];
  }
  const step = high > low ? (high - low) / (kMostCode - 1) : 1;
  const offset = high >= low ? low - step : 0;
  const bytes = new Uint8Array(2 * values.length);
  const view = new DataView(bytes.buffer);
  values.forEach((value, n) => {
    view.setUint16(2 * n, Number.isNaN(value) ? 0 : Math.round((value - offset) / step), true);
  });
  return { bytes, effect: { type: "u16", step, offset } };
}

const kLogStep = 0.1; // the program sends -10 log10 p
export const kProbability: Omit<ProbabilityData, "id"> = { type: "u8", step: kLogStep };

// From -10 log10 p (255: unknown) to codes of reports (0: none).
export function codedP(codes: Uint8Array): Uint8Array<ArrayBuffer> {
  return Uint8Array.from(codes, (code) => (code === 255 ? 0 : Math.min(code + 1, 255)));
}

export async function packed(bytes: Uint8Array<ArrayBuffer>): Promise<string> {
  const stream = new Blob([bytes]).stream().pipeThrough(new CompressionStream("gzip"));
  const zipped = new Uint8Array(await new Response(stream).arrayBuffer());
  let characters = "";
  for (let n = 0; n < zipped.length; n += 8192) {
    characters += String.fromCharCode(...zipped.subarray(n, n + 8192));
  }
  return btoa(characters);
}

// Small maps with given values for the tests.
import { effectTable } from "../src/data/map_codes";
import type { LoadedMap, LoadedView } from "../src/data/loaded_view";
import type { GridData, MapData } from "../src/data/page_data";

// Of a file whose axes run as the upright grid's do.
export const kUnturned: GridData["stored"] = [
  { axis: 0, reversed: false },
  { axis: 1, reversed: false },
  { axis: 2, reversed: false },
];

export const kSigned: MapData = {
  kind: "DTAV",
  title: "DTAV: difference",
  unit: "ms",
  positive: "the reference leads",
  negative: "the voxel leads",
  effect: { id: "e", type: "u8", step: 1, offset: -100 },
  p: { id: "p", type: "u8", step: 0.02 },
  thresholds: [
    { q: 0.05, value: 20 },
    { q: 0.01, value: null },
  ],
  fullColour: 40,
};

// Codes: value + 100; 1 + 50 * -log10 p.
export function mapOf(data: MapData, effect: readonly number[], p: readonly number[] | null): LoadedMap {
  const table = effectTable(data.effect);
  const codes = p === null ? null : Uint8Array.from(p);
  return { data, effect: Uint8Array.from(effect), values: table, p: codes };
}

export function viewOf(mask: readonly number[], direction: readonly number[] | null): LoadedView {
  let place = 0;
  const places = Int32Array.from(mask, (inside) => (inside ? place++ : -1));
  return {
    backdrop: { places, masked: place, underlay: Uint8Array.from(mask, () => 100) },
    region: Uint8Array.from(mask, (_, n) => (n === 1 ? 1 : 0)),
    direction: direction === null ? null : Uint8Array.from(direction),
  };
}

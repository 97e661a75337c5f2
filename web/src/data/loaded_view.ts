// The volumes of one view, decoded.
import { maskedCount, placesInMask } from "./mask";
import { voxelCount } from "./grid";
import { effectTable } from "./map_codes";
import type { MapData, PageData, ViewData } from "./page_data";
import type { Codes, VolumeStore } from "./volume_store";

// What all views share.
export interface Backdrop {
  readonly places: Int32Array; // see placesInMask
  readonly masked: number;
  readonly underlay: Codes; // grey levels, the whole grid
}

export interface LoadedMap {
  readonly data: MapData;
  readonly effect: Codes;
  readonly values: Float64Array; // by code of the effect
  readonly p: Codes | null;
}

export interface LoadedView {
  readonly backdrop: Backdrop;
  readonly region: Codes; // 0 or 1, the whole grid
  readonly direction: Codes | null;
}

const kFlatGrey = 90;

// An underlay that only says what is brain is darkened: on white, faint colours are lost.
export function dimmed(underlay: Codes): Codes {
  const levels = new Set(underlay);
  levels.delete(0);
  return levels.size > 1 ? underlay : underlay.map((grey) => (grey === 0 ? 0 : kFlatGrey));
}

export async function loadBackdrop(page: PageData, store: VolumeStore): Promise<Backdrop> {
  const voxels = voxelCount(page.grid.size);
  const [mask, underlay] = await Promise.all([
    store.codes(page.mask, "u8", voxels),
    store.codes(page.underlay, "u8", voxels),
  ]);
  const places = placesInMask(mask);
  return { places, masked: maskedCount(places), underlay: dimmed(underlay) };
}

export async function loadView(view: ViewData, backdrop: Backdrop, store: VolumeStore): Promise<LoadedView> {
  const region = await store.codes(view.region, "u8", backdrop.places.length);
  const direction = view.direction === null ? null : await store.codes(view.direction, "u8", backdrop.masked);
  return { backdrop, region, direction };
}

export async function loadMap(data: MapData, masked: number, store: VolumeStore): Promise<LoadedMap> {
  const effect = await store.codes(data.effect.id, data.effect.type, masked);
  const p = data.p === null ? null : await store.codes(data.p.id, data.p.type, masked);
  return { data, effect, values: effectTable(data.effect), p };
}

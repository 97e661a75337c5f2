// The colour of every voxel: the map over the grey underlay, the value as colour, significance as opacity.
import type { LoadedMap, LoadedView } from "../data/loaded_view";
import { logOf } from "../data/map_codes";
import { colourOf } from "./colour_scale";
import type { Painter } from "./slice_pixels";
import type { Rule, Stored } from "./threshold";

export interface OverlayOptions {
  readonly shown: boolean;
  readonly hideBelow: boolean;
  readonly faintUnsupported: boolean;
}

export const kNotSupported = 3; // direction code
export const kFaint = 0.3;

// Opacity of the map at place n of the mask, 0 ... 1.
export type Opacity = (place: number) => number;

function storedAt(map: LoadedMap, place: number): Stored {
  const value = map.values[map.effect[place] ?? 0] ?? NaN;
  return { value, log: map.data.p === null ? NaN : logOf(map.data.p, map.p?.[place] ?? 0) };
}

export function opacityOf(view: LoadedView, map: LoadedMap, rule: Rule, options: OverlayOptions): Opacity {
  const faint = options.faintUnsupported ? view.direction : null;
  return (place) => {
    const stored = storedAt(map, place);
    if (Number.isNaN(stored.value)) return 0;
    if (options.hideBelow && !rule.reaches(stored)) return 0;
    return rule.opacity(stored) * (faint?.[place] === kNotSupported ? kFaint : 1);
  };
}

// Red, green and blue of all codes, so that drawing looks them up.
function coloursByCode(map: LoadedMap): Uint8ClampedArray {
  const colours = new Uint8ClampedArray(3 * map.values.length);
  map.values.forEach((value, code) => {
    colours.set(colourOf(value, map.data.fullColour), 3 * code);
  });
  return colours;
}

const kKnownColours = new WeakMap<LoadedMap, Uint8ClampedArray>();

function coloursOf(map: LoadedMap): Uint8ClampedArray {
  const known = kKnownColours.get(map) ?? coloursByCode(map);
  kKnownColours.set(map, known);
  return known;
}

// opacity null: the underlay alone.
export function painterOf({ backdrop }: LoadedView, map: LoadedMap, opacity: Opacity | null): Painter {
  const { places, underlay } = backdrop;
  const colours = coloursOf(map);
  return (offset, pixels, to) => {
    const grey = underlay[offset] ?? 0;
    const place = places[offset] ?? -1;
    const share = opacity === null || place < 0 ? 0 : opacity(place);
    const from = 3 * (map.effect[place] ?? 0);
    for (let channel = 0; channel < 3; ++channel) {
      pixels[to + channel] = grey + ((colours[from + channel] ?? 0) - grey) * share;
    }
    pixels[to + 3] = 255;
  };
}

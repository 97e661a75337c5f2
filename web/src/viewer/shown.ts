// The map that a viewer shows, with its threshold.
import type { LoadedMap, LoadedView } from "../data/loaded_view";
import { opacityOf, painterOf, type OverlayOptions } from "./overlay";
import type { Painter } from "./slice_pixels";
import { ruleOf, type Rule, type Threshold } from "./threshold";

export interface Shown {
  readonly view: LoadedView;
  readonly map: LoadedMap;
  readonly threshold: Threshold;
  readonly rule: Rule;
  readonly paint: Painter;
}

function painted(view: LoadedView, map: LoadedMap, rule: Rule, options: OverlayOptions): Painter {
  return painterOf(view, map, options.shown ? opacityOf(view, map, rule, options) : null);
}

export function shownMap(
  view: LoadedView,
  map: LoadedMap,
  threshold: Threshold,
  options: OverlayOptions,
): Shown {
  const rule = ruleOf(threshold, map);
  return { view, map, threshold, rule, paint: painted(view, map, rule, options) };
}

export function repainted(shown: Shown, options: OverlayOptions): Shown {
  return { ...shown, paint: painted(shown.view, shown.map, shown.rule, options) };
}

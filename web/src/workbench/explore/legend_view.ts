// What the colours mean.
import { make } from "../../page/dom";
import { colourBar } from "../../viewer/legend";
import { infoOf } from "./controls/threshold_controls";
import { levelFull } from "./colour_range";
import type { Explorer } from "./explorer";
import type { ExploreState } from "./explore_state";

const kWords =
  "Colour is the value, opacity its significance: voxels that reach the threshold are opaque, those " +
  "below fade. Cyan: the edge of the reference.";

export function legendView(explorer: Explorer): HTMLElement {
  const bar = make("div");
  const show = ({ maps, type }: ExploreState): void => {
    const map = maps?.maps.get(type);
    if (map === undefined) return;
    const { unit = "", positive, negative } = infoOf(explorer, type);
    const fullColour = levelFull(map, maps?.header.draft === true);
    const words = { positive: positive ?? "", negative: (negative ?? "") === "" ? null : (negative ?? null) };
    bar.replaceChildren(colourBar({ unit, fullColour, ...words }));
  };
  explorer.store.on(["maps", "type"], show);
  return make("div", { class: "explore-legend" }, bar, make("p", { class: "legend-words", text: kWords }));
}

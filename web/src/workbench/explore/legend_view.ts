// What the colours mean.
import { make } from "../../page/dom";
import { colourBar } from "../../viewer/legend";
import { levelFull } from "./colour_range";
import { infoOf, type MapView, type ViewState } from "./map_view";

const kWords =
  "Colour is the value, opacity its significance: voxels that reach the threshold are opaque, those " +
  "below fade.";
const kReferenceWords = " Cyan: the edge of the reference.";

// hasReference: its edge is drawn.
export function legendView(view: MapView, hasReference = true): HTMLElement {
  const bar = make("div");
  const show = ({ maps, type }: ViewState): void => {
    const map = maps?.maps.get(type);
    if (map === undefined) return;
    const { unit = "", positive, negative } = infoOf(view, type);
    const fullColour = levelFull(map, maps?.header.draft === true);
    const words = { positive: positive ?? "", negative: (negative ?? "") === "" ? null : (negative ?? null) };
    bar.replaceChildren(colourBar({ unit, fullColour, ...words }));
  };
  view.store.on(["maps", "type"], show);
  show(view.store.now);
  return make(
    "div",
    { class: "explore-legend" },
    bar,
    make("p", { class: "legend-words", text: kWords + (hasReference ? kReferenceWords : "") }),
  );
}

// Which map of which data.
import { make } from "../../../page/dom";
import type { Explorer } from "../explorer";
import { choiceOf, field } from "./field";

const kMapHelp =
  "REF2VOX: what the reference's past adds to predicting the voxel. VOX2REF: the other way round. " +
  "DTAV: the first minus the second. INST: what both share within one volume, without direction.";
const kConditionHelp = "The volumes that the map is made from.";

export function mapControls(explorer: Explorer): HTMLElement {
  const { data, store } = explorer;
  const maps = data.maps.map(({ type, name }) => ({
    value: type,
    text: name.startsWith(type) ? name : `${type}: ${name}`,
  }));
  const conditions = data.conditions.map(({ name, volumes }) => ({
    value: name,
    text: `${name} (${volumes} volumes)`,
  }));
  const map = choiceOf(maps, store.now.type, (type) => {
    store.change({ type, maps: null });
  });
  const condition = choiceOf(conditions, store.now.condition, (value) => {
    store.change({ condition: value, maps: null });
  });
  return make(
    "div",
    { class: "controls" },
    field("Map", kMapHelp, map),
    field("Condition", kConditionHelp, condition),
  );
}

// With what the map is compared.
import { make } from "../../../page/dom";
import { button, choiceOf, field, radios } from "../controls/field";
import type { Explorer } from "../explorer";
import { referenceWords } from "../reference";
import type { Store } from "../store";
import type { CompareState, Other } from "./compare_state";

const kWith = [
  { value: "nothing", text: "nothing" },
  { value: "pinned", text: "a pinned map" },
  { value: "condition", text: "another condition" },
];
const kShow = [
  { value: "map", text: "side by side" },
  { value: "difference", text: "difference" },
];
const kHelp =
  "Pin a calibrated map, then move the reference: both are shown with one crosshair. Or compare two " +
  "conditions of the same reference.";

function pinButton(
  { data, store }: Explorer,
  pinned: (other: Other) => void,
  region: () => readonly number[],
): HTMLElement {
  const pin = button("Pin this map", () => {
    const { maps, type, reference, condition } = store.now;
    const map = maps?.maps.get(type);
    if (map === undefined || maps?.header.draft !== false) return;
    pinned({ map, reference: referenceWords(reference, data.labels), condition, region: region() });
  });
  store.on(["maps"], ({ maps }) => {
    pin.disabled = maps?.header.draft !== false;
  });
  pin.disabled = true;
  return pin;
}

function conditionField({ data }: Explorer, compare: Store<CompareState>): HTMLElement {
  const names = data.conditions.map(({ name }) => ({ value: name, text: name }));
  const choice = choiceOf(names, compare.now.condition, (condition) => {
    compare.change({ condition });
  });
  return field("Other one", "The condition of the second brain.", choice);
}

// region: places on the edge of the reference that is shown.
export function compareControls(
  explorer: Explorer,
  compare: Store<CompareState>,
  region: () => readonly number[],
): HTMLElement {
  const choices = explorer.data.conditions.length > 1 ? kWith : kWith.slice(0, 2);
  const kind = choiceOf(choices, compare.now.with, (value) => {
    compare.change({ with: value as CompareState["with"] });
  });
  const pinned = (other: Other): void => {
    compare.change({ pinned: other, with: "pinned" });
  };
  const condition = conditionField(explorer, compare);
  const show = radios(kShow, compare.now.show, (value) => {
    compare.change({ show: value as CompareState["show"] });
  });
  const update = (): void => {
    kind.value = compare.now.with;
    condition.hidden = compare.now.with !== "condition";
    show.element.hidden = compare.now.with === "nothing";
  };
  compare.watch(update);
  update();
  const pin = pinButton(explorer, pinned, region);
  return make(
    "div",
    { class: "controls comparing" },
    field("Compare with", kHelp, kind),
    pin,
    condition,
    show.element,
  );
}

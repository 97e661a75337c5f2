// The threshold: by the false discovery rate or by a value; what is drawn of the map.
import { make } from "../../../page/dom";
import { infoOf, type MapView, type ViewState } from "../map_view";
import { thresholdWords } from "../threshold_choice";
import { fullColourOf } from "../tint";
import { button, check, group } from "./field";
import { hint } from "../../help/hint";

const kHelp =
  "By q: the magnitude at which the expected share of false discoveries stays below q, computed from " +
  "null draws; while the reference moves from one draw, provisionally. By value: a magnitude of your " +
  "own, which promises nothing.";
const kSteps = 200;

function qButton(view: MapView, q: number): HTMLButtonElement {
  const made = button(`q = ${q}`, () => {
    view.store.change({ choice: { by: "q", q } });
  });
  const show = ({ choice }: ViewState): void => {
    made.setAttribute("aria-pressed", String(choice.by === "q" && choice.q === q));
  };
  view.store.on(["choice"], show);
  show(view.store.now);
  return made;
}

// Runs over the magnitudes of the map that is shown.
function valueSlider(view: MapView): HTMLInputElement {
  const slider = make("input", {
    attributes: { type: "range", min: "0", max: String(kSteps), "aria-label": "Threshold by value" },
  });
  const full = (): number => {
    const { maps, type } = view.store.now;
    const map = maps?.maps.get(type);
    return map === undefined ? 1 : 1.2 * fullColourOf(map);
  };
  slider.addEventListener("input", () => {
    view.store.change({ choice: { by: "value", level: (Number(slider.value) / kSteps) * full() } });
  });
  view.store.on(["choice"], ({ choice }) => {
    if (choice.by === "value" && document.activeElement !== slider) {
      slider.value = String(Math.round((choice.level / full()) * kSteps));
    }
  });
  return slider;
}

function wordsOf(view: MapView, { maps, type, choice }: ViewState): string {
  const map = maps?.maps.get(type);
  return map === undefined ? "" : thresholdWords(choice, map, infoOf(view, type));
}

function shownSwitches(view: MapView, directions: boolean): HTMLElement[] {
  const { store } = view;
  const shown = check("Show the map", true, (checked) => {
    store.change({ shown: checked });
  });
  store.on(["shown"], (now) => {
    const box = shown.querySelector("input");
    if (box !== null) box.checked = now.shown;
  });
  const below = check("Hide what is below the threshold", false, (checked) => {
    store.change({ hideBelow: checked });
  });
  const faint = check("Faint where no direction is supported", true, (checked) => {
    store.change({ faintUnsupported: checked });
  });
  return directions ? [shown, below, faint] : [shown, below];
}

export interface ThresholdWords {
  readonly help: string;
  readonly directions: boolean; // some map has them
}

const kExploring: ThresholdWords = { help: kHelp, directions: true };

export function thresholdControls(view: MapView, words = kExploring): HTMLElement {
  const qs = view.data.settings.qValues ?? [];
  const slider = valueSlider(view);
  const reach = make("output", { class: "threshold-words" });
  const show = (now: ViewState): void => {
    reach.textContent = wordsOf(view, now);
    slider.setAttribute("aria-valuetext", reach.textContent);
  };
  view.store.on(["choice", "maps", "type"], show);
  show(view.store.now);
  const buttons = make("span", { class: "row" }, ...qs.map((q) => qButton(view, q)));
  const byValue = make("label", { class: "by-value", text: "by value " }, slider);
  const switches = make("div", { class: "column" }, ...shownSwitches(view, words.directions));
  switches.append(
    hint("Opacity", "Voxels that reach the threshold are opaque, those below fade with their p."),
  );
  return make(
    "div",
    { class: "controls threshold-group" },
    group("Threshold", words.help, buttons, byValue, reach),
    switches,
  );
}

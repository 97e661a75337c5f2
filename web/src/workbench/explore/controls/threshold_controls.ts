// The threshold: by the false discovery rate or by a value; what is drawn of the map.
import { make } from "../../../page/dom";
import type { MapInfo } from "../explore_data";
import type { Explorer } from "../explorer";
import type { ExploreState } from "../explore_state";
import { thresholdWords } from "../threshold_choice";
import { fullColourOf } from "../tint";
import { button, check, group } from "./field";
import { hint } from "../../help/hint";

const kHelp =
  "By q: the magnitude at which the expected share of false discoveries stays below q, computed from " +
  "null draws; while the reference moves from one draw, provisionally. By value: a magnitude of your " +
  "own, which promises nothing.";
const kSteps = 200;

export function infoOf(explorer: Explorer, type: string): MapInfo {
  return explorer.data.maps.find((map) => map.type === type) ?? { type, name: type, hasThresholds: false };
}

function qButton(explorer: Explorer, q: number): HTMLButtonElement {
  const made = button(`q = ${q}`, () => {
    explorer.store.change({ choice: { by: "q", q } });
  });
  const show = ({ choice }: ExploreState): void => {
    made.setAttribute("aria-pressed", String(choice.by === "q" && choice.q === q));
  };
  explorer.store.on(["choice"], show);
  show(explorer.store.now);
  return made;
}

// Runs over the magnitudes of the map that is shown.
function valueSlider(explorer: Explorer): HTMLInputElement {
  const slider = make("input", {
    attributes: { type: "range", min: "0", max: String(kSteps), "aria-label": "Threshold by value" },
  });
  const full = (): number => {
    const { maps, type } = explorer.store.now;
    const map = maps?.maps.get(type);
    return map === undefined ? 1 : 1.2 * fullColourOf(map);
  };
  slider.addEventListener("input", () => {
    explorer.store.change({ choice: { by: "value", level: (Number(slider.value) / kSteps) * full() } });
  });
  explorer.store.on(["choice"], ({ choice }) => {
    if (choice.by === "value" && document.activeElement !== slider) {
      slider.value = String(Math.round((choice.level / full()) * kSteps));
    }
  });
  return slider;
}

function wordsOf(explorer: Explorer, { maps, type, choice }: ExploreState): string {
  const map = maps?.maps.get(type);
  return map === undefined ? "" : thresholdWords(choice, map, infoOf(explorer, type));
}

function shownSwitches(explorer: Explorer): HTMLElement[] {
  const { store } = explorer;
  const shown = check("Show the map", true, (checked) => {
    store.change({ shown: checked });
  });
  store.on(["shown"], (now) => {
    const box = shown.querySelector("input");
    if (box !== null) box.checked = now.shown;
  });
  return [
    shown,
    check("Hide what is below the threshold", false, (checked) => {
      store.change({ hideBelow: checked });
    }),
    check("Faint where no direction is supported", true, (checked) => {
      store.change({ faintUnsupported: checked });
    }),
  ];
}

export function thresholdControls(explorer: Explorer): HTMLElement {
  const qs = explorer.data.settings.qValues ?? [];
  const slider = valueSlider(explorer);
  const words = make("output", { class: "threshold-words" });
  const show = (now: ExploreState): void => {
    words.textContent = wordsOf(explorer, now);
    slider.setAttribute("aria-valuetext", words.textContent);
  };
  explorer.store.on(["choice", "maps", "type"], show);
  show(explorer.store.now);
  const buttons = make("span", { class: "row" }, ...qs.map((q) => qButton(explorer, q)));
  const byValue = make("label", { class: "by-value", text: "by value " }, slider);
  const switches = make("div", { class: "column" }, ...shownSwitches(explorer));
  switches.append(
    hint("Opacity", "Voxels that reach the threshold are opaque, those below fade with their p."),
  );
  return make(
    "div",
    { class: "controls threshold-group" },
    group("Threshold", kHelp, buttons, byValue, words),
    switches,
  );
}

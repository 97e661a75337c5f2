// The slider of the threshold, and a button for each stored one.
import type { LoadedMap } from "../data/loaded_view";
import type { ThresholdData } from "../data/page_data";
import { freshId, make } from "../page/dom";
import { ruleOf, weakestLog, type Threshold } from "./threshold";
import { positionOf, scaleOf, thresholdAt, thresholdWords, type ThresholdScale } from "./threshold_scale";

export class ThresholdControl {
  readonly element: HTMLElement;
  private readonly slider = make("input", {
    attributes: { type: "range", min: "0", id: freshId("threshold") },
  });
  private readonly words = make("output", { class: "threshold-words", attributes: { for: this.slider.id } });
  private readonly buttons = make("span", { class: "threshold-buttons" });
  private scale: ThresholdScale = { by: "p", step: 0.01, steps: 100, stride: 1 };

  constructor(private readonly changed: (threshold: Threshold) => void) {
    const label = make("label", { text: "Threshold", attributes: { for: this.slider.id } });
    this.element = make("div", { class: "threshold" }, label, this.slider, this.words, this.buttons);
    this.slider.addEventListener("input", () => {
      this.changed(thresholdAt(this.scale, Number(this.slider.value)));
    });
  }

  setMap(map: LoadedMap): void {
    this.scale = scaleOf(map);
    this.slider.max = String(this.scale.steps);
    this.buttons.replaceChildren(...map.data.thresholds.map((each) => this.buttonOf(each)));
  }

  show(threshold: Threshold, map: LoadedMap): void {
    const words = thresholdWords(threshold, map.data);
    this.slider.value = String(positionOf(this.scale, this.sliderLevel(threshold, map)));
    this.slider.setAttribute("aria-valuetext", words);
    this.words.textContent = words;
    const q = threshold.by === "magnitude" ? threshold.q : null;
    for (const button of this.buttons.querySelectorAll("button")) {
      button.setAttribute("aria-pressed", String(q !== null && button.dataset.q === String(q)));
    }
  }

  // The threshold one key press from where the slider is.
  neighbour(by: 1 | -1): Threshold {
    return thresholdAt(this.scale, Number(this.slider.value) + by * this.scale.stride);
  }

  text(): string {
    return this.words.textContent;
  }

  // A stored threshold stands where its weakest voxel's p is.
  private sliderLevel(threshold: Threshold, map: LoadedMap): number {
    if (threshold.by === this.scale.by) return threshold.level;
    return weakestLog(map, ruleOf(threshold, map).reaches);
  }

  private buttonOf({ q, value }: ThresholdData): HTMLButtonElement {
    const text = value === null ? `q = ${q}: no voxel` : `q = ${q}`;
    const button = make("button", { text, attributes: { type: "button", "data-q": String(q) } });
    button.disabled = value === null;
    if (value !== null) {
      button.addEventListener("click", () => {
        this.changed({ by: "magnitude", level: value, q });
      });
    }
    return button;
  }
}

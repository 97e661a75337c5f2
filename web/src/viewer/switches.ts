// Which map is shown, and how: a choice and check boxes.
import type { MapData, ViewData } from "../data/page_data";
import { freshId, make } from "../page/dom";
import type { OverlayOptions } from "./overlay";

export class Switches {
  readonly element: HTMLElement;
  private readonly select = make("select", { attributes: { id: freshId("map") } });
  private readonly shown = checkBox("Show the map", true);
  private readonly hideBelow = checkBox("Hide what is below the threshold", false);
  private readonly faint = checkBox("Faint where no direction is supported", true);

  constructor(view: ViewData, chosen: (kind: string) => void, changed: () => void) {
    const label = make("label", { text: "Map", attributes: { for: this.select.id } });
    this.select.append(
      ...view.maps.map((map) => make("option", { text: mapName(map), attributes: { value: map.kind } })),
    );
    this.select.addEventListener("change", () => {
      chosen(this.select.value);
    });
    this.element = make(
      "div",
      { class: "switches" },
      make("div", { class: "map-choice" }, label, this.select),
    );
    const boxes = [this.shown, this.hideBelow, ...(view.direction === null ? [] : [this.faint])];
    for (const { label: each, box } of boxes) {
      this.element.append(each);
      box.addEventListener("change", changed);
    }
  }

  showKind(kind: string): void {
    this.select.value = kind;
  }

  toggle(): void {
    this.shown.box.checked = !this.shown.box.checked;
  }

  options(): OverlayOptions {
    return {
      shown: this.shown.box.checked,
      hideBelow: this.hideBelow.box.checked,
      faintUnsupported: this.faint.box.checked,
    };
  }
}

function mapName({ kind, title }: MapData): string {
  return title.startsWith(kind) ? title : `${kind}: ${title}`;
}

function checkBox(text: string, checked: boolean): { label: HTMLElement; box: HTMLInputElement } {
  const box = make("input", { attributes: { type: "checkbox" } });
  box.checked = checked;
  return { label: make("label", { class: "switch" }, box, make("span", { text })), box };
}

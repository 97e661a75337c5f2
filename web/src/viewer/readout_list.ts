// The readout on the page.
import { make } from "../page/dom";
import type { Line } from "./readout";

export class ReadoutList {
  readonly element = make("dl", { class: "readout" });

  show(lines: readonly Line[]): void {
    this.element.replaceChildren(
      ...lines.map(({ name, text }) =>
        make("div", { class: "readout-line" }, make("dt", { text: name }), make("dd", { text })),
      ),
    );
  }
}

export function spoken(lines: readonly Line[]): string {
  return lines.map(({ name, text }) => `${name}: ${text}`).join(". ");
}

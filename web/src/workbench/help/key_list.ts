// The list of keys, in a dialog.
import { make } from "../../page/dom";
import { kKeyLines } from "../explore/keyboard";

export class KeyList {
  readonly element = make("dialog", { class: "key-list", attributes: { "aria-label": "Keys" } });

  constructor() {
    const rows = kKeyLines.map(({ keys, words }) =>
      make("div", {}, make("dt", {}, make("kbd", { text: keys })), make("dd", { text: words })),
    );
    const close = make("button", { text: "Close", attributes: { type: "button" } });
    close.addEventListener("click", () => {
      this.element.close();
    });
    this.element.append(make("h2", { text: "Keys" }), make("dl", {}, ...rows), close);
  }

  toggle(): void {
    if (this.element.open) this.element.close();
    else this.element.showModal();
  }
}

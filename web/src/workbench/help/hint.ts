// Question marks beside controls: a few words, shown when asked for.
import { freshId, make } from "../../page/dom";

export function hint(about: string, words: string): HTMLElement {
  const id = freshId("hint");
  const text = make("span", { class: "hint-words", text: words, attributes: { id, role: "note" } });
  text.hidden = true;
  const button = make("button", {
    class: "hint-mark",
    text: "?",
    attributes: {
      type: "button",
      "aria-expanded": "false",
      "aria-controls": id,
      "aria-label": `Help: ${about}`,
    },
  });
  const show = (open: boolean): void => {
    text.hidden = !open;
    button.setAttribute("aria-expanded", String(open));
  };
  button.addEventListener("click", () => {
    show(text.hidden);
  });
  button.addEventListener("keydown", (event) => {
    if (event.key === "Escape") show(false);
  });
  return make("span", { class: "hint" }, button, text);
}

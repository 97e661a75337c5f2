// A control with its name and its question mark.
import { freshId, make } from "../../../page/dom";
import { hint } from "../../help/hint";

type Control = HTMLInputElement | HTMLSelectElement;

export function field(name: string, words: string, control: Control, ...after: Node[]): HTMLElement {
  control.id = freshId("field");
  const label = make("label", { text: name, attributes: { for: control.id } });
  return make("div", { class: "field" }, label, control, ...after, hint(name, words));
}

export function group(name: string, words: string, ...parts: Node[]): HTMLElement {
  const legend = make("legend", { text: name });
  return make("fieldset", { class: "group" }, legend, hint(name, words), ...parts);
}

export interface Choice {
  readonly value: string;
  readonly text: string;
}

export function choiceOf(
  choices: readonly Choice[],
  value: string,
  chosen: (value: string) => void,
): HTMLSelectElement {
  const select = make("select");
  select.append(
    ...choices.map((each) => make("option", { text: each.text, attributes: { value: each.value } })),
  );
  select.value = value;
  select.addEventListener("change", () => {
    chosen(select.value);
  });
  return select;
}

export function check(text: string, checked: boolean, changed: (checked: boolean) => void): HTMLElement {
  const box = make("input", { attributes: { type: "checkbox" } });
  box.checked = checked;
  box.addEventListener("change", () => {
    changed(box.checked);
  });
  return make("label", { class: "switch" }, box, make("span", { text }));
}

// One of a few, side by side.
export function radios(
  choices: readonly Choice[],
  value: string,
  chosen: (value: string) => void,
): { readonly element: HTMLElement; readonly show: (value: string) => void } {
  const name = freshId("radio");
  const boxes = choices.map((choice) => {
    const box = make("input", { attributes: { type: "radio", name, value: choice.value } });
    box.checked = choice.value === value;
    box.addEventListener("change", () => {
      chosen(choice.value);
    });
    return box;
  });
  const labels = boxes.map((box, n) =>
    make("label", { class: "switch" }, box, make("span", { text: choices[n]?.text ?? "" })),
  );
  const show = (now: string): void => {
    for (const box of boxes) box.checked = box.value === now;
  };
  return { element: make("span", { class: "radios" }, ...labels), show };
}

export function button(text: string, pressed: () => void): HTMLButtonElement {
  const made = make("button", { text, attributes: { type: "button" } });
  made.addEventListener("click", pressed);
  return made;
}

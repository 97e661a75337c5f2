// Copy buttons. Pages opened from a disk may not have the clipboard: then the text is selected and
// copied as the reader would.
import { all, make } from "./dom";

function selectText(element: Element): void {
  const selection = getSelection();
  const range = document.createRange();
  range.selectNodeContents(element);
  selection?.removeAllRanges();
  selection?.addRange(range);
}

function copySelected(element: Element): boolean {
  selectText(element);
  // The one way to copy without a secure context.
  // eslint-disable-next-line @typescript-eslint/no-deprecated
  return document.execCommand("copy");
}

async function copy(element: Element): Promise<boolean> {
  try {
    await navigator.clipboard.writeText(element.textContent);
    return true;
  } catch {
    return copySelected(element);
  }
}

function liveNeighbour(button: HTMLElement): Element {
  const next = button.nextElementSibling;
  if (next?.hasAttribute("aria-live") === true) return next;
  const made = make("span", { class: "copied", attributes: { "aria-live": "polite", role: "status" } });
  button.after(made);
  return made;
}

async function copyFor(button: HTMLElement, neighbour: Element): Promise<void> {
  const source = document.querySelector(button.dataset.copy ?? "");
  const done = source !== null && (await copy(source));
  neighbour.textContent = done ? "Copied" : "Not copied: select the text and copy it";
}

export function setUpCopying(): void {
  for (const button of all("button.copy")) {
    const neighbour = liveNeighbour(button);
    button.addEventListener("click", () => void copyFor(button, neighbour));
  }
}

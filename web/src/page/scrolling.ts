// What is wider than the page scrolls inside its own box: the keyboard must reach it.
import { all } from "./dom";

const kBoxes = ".table-scroll, pre";

function fit(box: HTMLElement): void {
  if (box.scrollWidth > box.clientWidth) box.tabIndex = 0;
  else box.removeAttribute("tabindex");
}

export function setUpScrolling(): void {
  const watcher = new ResizeObserver((entries) => {
    for (const { target } of entries) fit(target as HTMLElement);
  });
  for (const box of all(kBoxes)) watcher.observe(box);
}

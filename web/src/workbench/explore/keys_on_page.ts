// Keys of the Explore tab, wherever the focus is, but where an element has a use of its own for them.
import type { Triple } from "../../data/page_data";
import { keyAction, takesKey, type KeyAction } from "./keyboard";
import type { MapView } from "./map_view";

export interface Steerable extends Pick<MapView, "store"> {
  stepCrosshair(by: Triple): void;
  stepReference(by: Triple): void;
  stepThreshold(by: 1 | -1): void;
}

export interface KeyTargets {
  readonly explorer: Steerable;
  readonly isShown: () => boolean;
  readonly help: () => void;
  readonly announce: (text: string) => void;
}

function act(action: KeyAction, { explorer, help, announce }: KeyTargets): void {
  if (action.do === "crosshair") explorer.stepCrosshair(action.by);
  if (action.do === "reference") explorer.stepReference(action.by);
  if (action.do === "threshold") explorer.stepThreshold(action.by);
  if (action.do === "help") help();
  if (action.do !== "toggle") return;
  explorer.store.change({ shown: !explorer.store.now.shown });
  announce(explorer.store.now.shown ? "Map shown" : "Map hidden");
}

function isTaken({ target, key }: KeyboardEvent): boolean {
  if (!(target instanceof HTMLElement)) return false;
  if (target.closest("[role=tablist]") !== null) return key.startsWith("Arrow") || key === " ";
  const scrolls =
    target.tabIndex === 0 && target.scrollWidth > target.clientWidth && target.tagName !== "CANVAS";
  if (scrolls && key.startsWith("Arrow")) return true;
  return takesKey(target.tagName, target instanceof HTMLInputElement ? target.type : "", key);
}

// Returns how to stop.
export function listenForKeys(targets: KeyTargets): () => void {
  const listener = (event: KeyboardEvent): void => {
    if (event.defaultPrevented || !targets.isShown() || isTaken(event)) return;
    if (document.querySelector("dialog[open]") !== null && event.key !== "?") return;
    const action = keyAction(event);
    if (action === null) return;
    event.preventDefault();
    act(action, targets);
  };
  document.addEventListener("keydown", listener);
  return () => {
    document.removeEventListener("keydown", listener);
  };
}

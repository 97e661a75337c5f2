// The frame of a viewer on the page.
import type { MapData, ViewData } from "../data/page_data";
import { freshId, make } from "../page/dom";
import { colourBar, legendWords } from "./legend";

export interface ViewerParts {
  readonly planes: HTMLElement;
  readonly side: HTMLElement;
  readonly helpId: string;
  readonly showLegend: (data: MapData, underlayName: string) => void;
  readonly ready: () => void;
  readonly failed: (error: unknown) => void;
}

const kHelp =
  "Click or drag to move the crosshair. With the keyboard on a slice: arrows move within it, Page Up and " +
  "Page Down through it (with Shift five voxels at a time); space shows or hides the map; [ and ] change " +
  "the threshold. L left, R right, A front, P back, S above, I below.";

function helpLine(id: string): HTMLElement {
  return make("p", { class: "viewer-help", text: kHelp, attributes: { id } });
}

// Fills `host`, which was empty.
export function viewerParts(
  host: HTMLElement,
  names: ViewData,
  controls: readonly HTMLElement[],
): ViewerParts {
  const helpId = freshId("viewer-help");
  const planes = make("div", { class: "planes" });
  const side = make("div", { class: "viewer-side" });
  const legend = make("div", { class: "viewer-legend" });
  const words = make("p", { class: "legend-words" });
  const state = make("p", {
    class: "viewer-state",
    text: "Reading the maps…",
    attributes: { role: "status" },
  });
  host.setAttribute("role", "group");
  host.setAttribute("aria-label", `Viewer: ${names.reference}, ${names.condition}`);
  const bar = make("div", { class: "viewer-controls" }, ...controls);
  side.append(legend);
  host.append(state, bar, planes, side, words, helpLine(helpId));
  const showLegend = (data: MapData, underlayName: string): void => {
    legend.replaceChildren(colourBar(data));
    words.textContent = legendWords(data, underlayName, names.direction !== null);
  };
  const ready = (): void => {
    state.hidden = true;
    host.classList.add("ready");
  };
  const failed = (error: unknown): void => {
    state.hidden = false;
    state.textContent = `The maps cannot be shown. ${error instanceof Error ? error.message : String(error)}`;
  };
  return { planes, side, showLegend, helpId, ready, failed };
}

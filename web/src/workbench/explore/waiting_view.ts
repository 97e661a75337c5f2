// The Explore tab while there is no run to show.
import { make } from "../../page/dom";
import { button } from "./controls/field";
import type { WaitingData } from "./explore_data";

const kHeads = {
  none: "No run is open.",
  choosing: "Choose what to explore.",
  loading: "Loading…",
  failed: "The run cannot be explored.",
} as const;

function megabytes(bytes: number): string {
  return `${Math.ceil(bytes / 1e6)} MB`;
}

export function waitingView(
  data: WaitingData,
  chosen: (id: string) => void,
): { readonly element: HTMLElement; readonly show: (now: WaitingData) => void } {
  const message = make("p", { attributes: { role: "status" } });
  const bar = make("progress", { attributes: { max: "1", "aria-label": "Loading" } });
  const memory = make("p", { class: "muted" });
  const choices = (data.choices ?? []).map(({ id, words }) =>
    make(
      "li",
      {},
      button(words, () => {
        chosen(id);
      }),
    ),
  );
  const show = (now: WaitingData): void => {
    message.textContent = now.message ?? "";
    bar.hidden = now.state !== "loading";
    if (now.progress !== undefined) bar.value = now.progress;
    memory.textContent = now.memoryBytes ? `It will take ${megabytes(now.memoryBytes)} of memory.` : "";
  };
  show(data);
  const head = make("h2", { text: kHeads[data.state] });
  return {
    element: make("div", { class: "waiting" }, head, message, bar, memory, make("ul", {}, ...choices)),
    show,
  };
}

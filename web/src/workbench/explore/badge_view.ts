// Which of the two kinds of map is on the screen: always there, never only a colour.
import { make } from "../../page/dom";
import { hint } from "../help/hint";
import type { Explorer } from "./explorer";
import type { ExploreState } from "./explore_state";
import { badgeOf } from "./state_words";

const kHelp =
  "Provisional: one null draw per voxel, so that maps follow the mouse; thresholds may change. " +
  "Calibrated: the full result, as tavmap run computes it.";

export function badgeView(explorer: Explorer): HTMLElement {
  const badge = make("strong", { class: "badge" });
  const note = make("span", { class: "badge-note" });
  const problem = make("p", { class: "problem", attributes: { role: "alert" } });
  const show = ({ maps, settings, waiting, problem: words }: ExploreState): void => {
    const { kind, words: text } = badgeOf(maps, settings.draws ?? explorer.data.settings.draws);
    badge.textContent = text;
    badge.dataset.kind = kind;
    note.textContent = waiting ? "computing…" : "";
    problem.textContent = words ?? "";
    problem.hidden = words === null;
  };
  explorer.store.on(["maps", "waiting", "problem", "settings"], show);
  show(explorer.store.now);
  return make("div", { class: "badge-bar" }, badge, note, hint("Provisional and calibrated", kHelp), problem);
}

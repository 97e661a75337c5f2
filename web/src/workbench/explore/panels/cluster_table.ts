// The clusters of the map that is shown; a click goes to the peak.
import { make } from "../../../page/dom";
import { plain, signed } from "../../../viewer/numbers";
import { ClusterFinder, type Cluster } from "../clusters";
import { button } from "../controls/field";
import { infoOf } from "../controls/threshold_controls";
import type { Explorer } from "../explorer";
import type { ExploreState } from "../explore_state";
import { valueAt } from "../maps_reply";
import { badgeOf } from "../state_words";
import { levelOf, thresholdWords } from "../threshold_choice";

const kMostRows = 50;
const kHeads = ["Sign", "Voxels", "Peak", "x, y, z (mm)", "Label", ""];

function signWords(explorer: Explorer, type: string, sign: 1 | -1): string {
  const { positive, negative } = infoOf(explorer, type);
  return (sign > 0 ? positive : negative) ?? (sign > 0 ? "positive" : "negative");
}

export class ClusterTable {
  readonly element: HTMLElement;
  private readonly body = make("tbody");
  private readonly caption = make("caption");
  private readonly finder: ClusterFinder;
  private timer = 0;

  constructor(private readonly explorer: Explorer) {
    this.finder = new ClusterFinder(explorer.images.mask);
    const heads = kHeads.map((text) =>
      text === "" ? make("td") : make("th", { text, attributes: { scope: "col" } }),
    );
    const table = make("table", {}, this.caption, make("thead", {}, make("tr", {}, ...heads)), this.body);
    this.element = make(
      "section",
      { class: "clusters", attributes: { "aria-label": "Clusters" } },
      make("h2", { text: "Clusters" }),
      make(
        "div",
        {
          class: "table-scroll",
          attributes: { tabindex: "0", role: "region", "aria-label": "Table of clusters" },
        },
        table,
      ),
    );
    explorer.store.on(["maps", "type", "choice"], () => {
      this.later();
    });
    this.later();
  }

  // Behind pictures: a table need not follow every move of the mouse.
  private later(): void {
    if (this.timer !== 0) return;
    this.timer = window.setTimeout(() => {
      this.timer = 0;
      this.show(this.explorer.store.now);
    }, 120);
  }

  private show({ maps, type, choice, settings }: ExploreState): void {
    const map = maps?.maps.get(type);
    if (map === undefined) {
      this.body.replaceChildren();
      return;
    }
    const level = levelOf(choice, map);
    const found = this.finder.find((place) => valueAt(map.values, place), level);
    const info = infoOf(this.explorer, type);
    const { words } = badgeOf(maps, settings.draws ?? this.explorer.data.settings.draws);
    const count =
      found.length > kMostRows ? `the ${kMostRows} largest of ${found.length}` : String(found.length);
    const threshold = thresholdWords(choice, map, info);
    this.caption.textContent = `${type}, ${threshold}: ${count} clusters; ${words}`;
    this.body.replaceChildren(...found.slice(0, kMostRows).map((each) => this.row(each, type)));
  }

  private row(cluster: Cluster, type: string): HTMLElement {
    const { mask, labelOf } = this.explorer.images;
    const mm = mask.mmOf(cluster.peak);
    const place = mm.map((c) => plain(c, 0)).join(", ");
    const id = labelOf?.[cluster.peak] ?? 0;
    const label = this.explorer.data.labels.find((each) => each.id === id)?.name ?? "";
    const jump = button("Show", () => {
      this.explorer.moveCrosshair(mm);
    });
    jump.setAttribute("aria-label", `Show the peak at ${place} mm`);
    const cells = [
      signWords(this.explorer, type, cluster.sign),
      String(cluster.voxels),
      signed(cluster.peakValue, 3),
      place,
      label,
    ];
    const row = make("tr", {}, ...cells.map((text) => make("td", { text })), make("td", {}, jump));
    return row;
  }
}

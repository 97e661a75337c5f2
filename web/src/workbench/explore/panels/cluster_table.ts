// The clusters of the map that is shown; a click goes to the peak.
import { make } from "../../../page/dom";
import { plain, signed } from "../../../viewer/numbers";
import { ClusterFinder, type Cluster } from "../clusters";
import { button } from "../controls/field";
import { infoOf, type MapView, type ViewState } from "../map_view";
import { valueAt } from "../maps_reply";
import { levelOf, thresholdWords } from "../threshold_choice";

const kMostRows = 50;
const kHeads = ["Sign", "Voxels", "Peak", "x, y, z (mm)", "Label", ""];

function signWords(view: MapView, type: string, sign: 1 | -1): string {
  const { positive, negative } = infoOf(view, type);
  return (sign > 0 ? positive : negative) ?? (sign > 0 ? "positive" : "negative");
}

export class ClusterTable {
  readonly element: HTMLElement;
  private readonly body = make("tbody");
  private readonly caption = make("caption");
  private readonly finder: ClusterFinder;
  private timer = 0;

  constructor(private readonly view: MapView) {
    this.finder = new ClusterFinder(view.images.mask);
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
    view.store.on(["maps", "type", "choice"], () => {
      this.later();
    });
    this.later();
  }

  // Behind pictures: a table need not follow every move of the mouse.
  private later(): void {
    if (this.timer !== 0) return;
    this.timer = window.setTimeout(() => {
      this.timer = 0;
      this.show(this.view.store.now);
    }, 120);
  }

  private show({ maps, type, choice }: ViewState): void {
    const map = maps?.maps.get(type);
    if (map === undefined) {
      this.body.replaceChildren();
      return;
    }
    const level = levelOf(choice, map);
    const found = this.finder.find(
      (place) => (this.view.isFinding(place) ? valueAt(map.values, place) : NaN),
      level,
    );
    const info = infoOf(this.view, type);
    const count =
      found.length > kMostRows ? `the ${kMostRows} largest of ${found.length}` : String(found.length);
    const threshold = thresholdWords(choice, map, info);
    this.caption.textContent = `${type}, ${threshold}: ${count} clusters; ${this.view.stateWords()}`;
    this.body.replaceChildren(...found.slice(0, kMostRows).map((each) => this.row(each, type)));
  }

  private row(cluster: Cluster, type: string): HTMLElement {
    const { mask, labelOf } = this.view.images;
    const mm = mask.mmOf(cluster.peak);
    const place = mm.map((c) => plain(c, 0)).join(", ");
    const id = labelOf?.[cluster.peak] ?? 0;
    const label = this.view.data.labels.find((each) => each.id === id)?.name ?? "";
    const jump = button("Show", () => {
      this.view.moveCrosshair(mm);
    });
    jump.setAttribute("aria-label", `Show the peak at ${place} mm`);
    const cells = [
      signWords(this.view, type, cluster.sign),
      String(cluster.voxels),
      signed(cluster.peakValue, 3),
      place,
      label,
    ];
    const row = make("tr", {}, ...cells.map((text) => make("td", { text })), make("td", {}, jump));
    return row;
  }
}

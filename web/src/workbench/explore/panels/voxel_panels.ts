// The panels about the voxel under the crosshair, asked for when it rests and the maps are calibrated.
import { make } from "../../../page/dom";
import { probability, signed } from "../../../viewer/numbers";
import { isAbort, type Server } from "../../server";
import type { VoxelRequest } from "../explore_data";
import type { Explorer } from "../explorer";
import type { ExploreState } from "../explore_state";
import type { VoxelData, VoxelMap } from "../voxel_data";
import { LiveChart } from "./live_chart";
import { modelRows } from "./model_rows";
import { laggedChart, nullChart, seriesChart } from "./voxel_charts";

const kRestMs = 250;
const kAsking: readonly (keyof ExploreState)[] = ["crosshair", "maps"];

function nullWords(map: VoxelMap): string {
  const value = map.value === null ? "no value" : signed(map.value, 4);
  const p = map.p === null ? "" : `, p ${probability(-Math.log10(Math.max(map.p, 1e-300)))}`;
  const z = map.z === null ? "" : `, z ${signed(map.z, 2)}`;
  return `${map.type} here: ${value}${p}${z}`;
}

export class VoxelPanels {
  readonly element: HTMLElement;
  private readonly state = make("p", { class: "muted", attributes: { role: "status" } });
  private readonly series = make("div", { class: "panel-list" });
  private readonly charts: LiveChart[] = [];
  private readonly lagged = new LiveChart("Lagged correlation of reference and voxel");
  private readonly nulls = new LiveChart("Where the voxel stands among its null draws");
  private readonly nullText = make("p");
  private readonly model = make("tbody");
  private timer = 0;
  private abort = new AbortController();

  constructor(
    private readonly explorer: Explorer,
    private readonly server: Server,
  ) {
    const caption = make("caption", { text: "Fitted models of the voxel under the crosshair" });
    const table = make("table", { class: "model" }, caption, this.model);
    this.element = make(
      "section",
      { class: "voxel-panels", attributes: { "aria-label": "The voxel under the crosshair" } },
      make("h2", { text: "The voxel under the crosshair" }),
      this.state,
      make(
        "div",
        { class: "panel-grid" },
        this.series,
        this.lagged.element,
        make("div", {}, this.nulls.element, this.nullText),
        make("div", { class: "table-scroll" }, table),
      ),
    );
    explorer.store.on(kAsking, () => {
      this.later();
    });
    this.later();
  }

  private later(): void {
    window.clearTimeout(this.timer);
    this.abort.abort();
    this.timer = window.setTimeout(() => void this.ask(), kRestMs);
  }

  private async ask(): Promise<void> {
    const { crosshair, reference, condition, type, settings, maps } = this.explorer.store.now;
    if (maps === null || maps.header.draft) return; // calibrated ones are on their way
    this.abort = new AbortController();
    const request: VoxelRequest = { mm: crosshair, reference, condition, types: [type], settings };
    try {
      this.show(await this.server.post<VoxelData>("/api/explore/voxel", request, this.abort.signal));
    } catch (error) {
      if (!isAbort(error)) this.state.textContent = error instanceof Error ? error.message : String(error);
    }
  }

  private show(data: VoxelData): void {
    const place = [data.label ?? "", data.status ?? ""].filter((words) => words !== "").join(", ");
    this.state.textContent = place;
    this.showSeries(data);
    if (data.lagged.length > 0) this.lagged.show(laggedChart(data.lagged));
    this.showNull(data.maps.find(({ type }) => type === this.explorer.store.now.type));
    this.model.replaceChildren(
      ...modelRows(data.model).map(({ name, numbers }) =>
        make(
          "tr",
          {},
          make("th", { text: name, attributes: { scope: "row" } }),
          make("td", { text: numbers }),
        ),
      ),
    );
  }

  // One chart per run; charts are kept from voxel to voxel.
  private showSeries({ series }: VoxelData): void {
    while (this.charts.length < series.length) {
      const chart = new LiveChart(`Time series, ${series[this.charts.length]?.run ?? ""}`);
      this.charts.push(chart);
      this.series.append(chart.element);
    }
    this.charts.forEach((chart, n) => {
      const run = series[n];
      chart.element.hidden = run === undefined;
      if (run !== undefined) chart.show(seriesChart(run));
    });
  }

  private showNull(map: VoxelMap | undefined): void {
    const chart = map === undefined ? null : nullChart(map);
    this.nulls.element.hidden = chart === null;
    if (chart !== null) this.nulls.show(chart);
    this.nullText.textContent = map === undefined ? "" : nullWords(map);
  }
}

// The viewer of one view: three planes, the maps of one reference and condition over the underlay.
import { clampVoxel, middleOf } from "../data/grid";
import { loadMap, loadView, type Backdrop, type LoadedMap, type LoadedView } from "../data/loaded_view";
import type { GridData, Triple, ViewData } from "../data/page_data";
import type { VolumeStore } from "../data/volume_store";
import { Announcer } from "../page/announcer";
import { kPlanes, stepped } from "./planes";
import type { Action } from "./keys";
import { scaleFor } from "./layout";
import { PlaneView } from "./plane_view";
import { readout, type Line } from "./readout";
import { ReadoutList, spoken } from "./readout_list";
import { Switches } from "./switches";
import { repainted, shownMap, type Shown } from "./shown";
import { strongestVoxel } from "./strongest";
import { firstThreshold, type Threshold } from "./threshold";
import { ThresholdControl } from "./threshold_control";
import { viewerParts } from "./viewer_parts";

export interface ViewSource {
  readonly grid: GridData;
  readonly underlayName: string;
  readonly store: VolumeStore;
  readonly backdrop: () => Promise<Backdrop>;
}

const kFirstKind = "DTAV";

export class Viewer {
  private readonly announcer = new Announcer();
  private readonly list = new ReadoutList();
  private readonly switches: Switches;
  private readonly control = new ThresholdControl((threshold) => {
    this.setThreshold(threshold);
  });
  private readonly parts;
  private readonly planes: readonly PlaneView[];
  private readonly thresholds = new Map<string, Threshold>(); // by kind: each map keeps its own
  private readonly view: Promise<LoadedView>;
  private shown: Shown | null = null;
  private voxel: Triple | null = null; // null: the strongest of the first map
  private asked: string | null = null; // the kind chosen last, drawn or on its way

  constructor(
    host: HTMLElement,
    private readonly source: ViewSource,
    private readonly names: ViewData,
  ) {
    this.switches = new Switches(
      names,
      (kind) => void this.choose(kind),
      () => {
        this.repaint();
      },
    );
    this.parts = viewerParts(host, names, [this.switches.element, this.control.element]);
    this.planes = kPlanes.map((plane) => this.planeView(plane));
    this.parts.planes.append(...this.planes.map((plane) => plane.element));
    this.parts.side.append(this.list.element);
    host.append(this.announcer.element);
    this.view = source.backdrop().then((backdrop) => loadView(names, backdrop, source.store));
    new ResizeObserver(() => {
      this.resize();
    }).observe(this.parts.planes);
  }

  // Resolves when the first map is drawn.
  async start(): Promise<void> {
    const first = this.names.maps.find(({ kind }) => kind === kFirstKind) ?? this.names.maps[0];
    if (first !== undefined && this.asked === null) await this.choose(first.kind);
  }

  // Shows a map at a voxel and gives the keyboard to the viewer.
  async jump(kind: string, voxel: Triple): Promise<void> {
    await this.choose(kind);
    this.move(voxel);
    this.announcer.say(`${this.shown?.map.data.title ?? ""}. ${spoken(this.lines())}`);
    this.planes[0]?.element.focus({ preventScroll: true });
  }

  private planeView(plane: (typeof kPlanes)[number]): PlaneView {
    const moved = (voxel: Triple): void => {
      this.move(voxel);
    };
    const acted = (action: Action): void => {
      this.act(action);
    };
    return new PlaneView(plane, this.source.grid, { moved, acted }, this.parts.helpId);
  }

  private async choose(kind: string): Promise<void> {
    const data = this.names.maps.find((map) => map.kind === kind);
    if (data === undefined) return;
    this.asked = kind;
    try {
      const view = await this.view;
      const map = await loadMap(data, view.backdrop.masked, this.source.store);
      if (this.asked === kind) this.showMap(view, map);
    } catch (error) {
      this.parts.failed(error);
    }
  }

  private showMap(view: LoadedView, map: LoadedMap): void {
    this.voxel ??= strongestVoxel(this.source.grid.size, view.backdrop, map);
    this.switches.showKind(map.data.kind);
    this.control.setMap(map);
    this.parts.showLegend(map.data, this.source.underlayName);
    this.show(view, map, this.thresholds.get(map.data.kind) ?? firstThreshold(map));
    this.parts.ready();
  }

  private show(view: LoadedView, map: LoadedMap, threshold: Threshold): void {
    this.thresholds.set(map.data.kind, threshold);
    this.control.show(threshold, map);
    this.shown = shownMap(view, map, threshold, this.switches.options());
    this.draw();
  }

  private setThreshold(threshold: Threshold): void {
    if (this.shown !== null) this.show(this.shown.view, this.shown.map, threshold);
  }

  private repaint(): void {
    if (this.shown === null) return;
    this.shown = repainted(this.shown, this.switches.options());
    this.draw();
  }

  private move(voxel: Triple): void {
    this.voxel = clampVoxel(this.source.grid.size, voxel);
    this.draw();
    this.announcer.say(spoken(this.lines()));
  }

  private act(action: Action): void {
    if (action.do === "move") this.move(stepped(this.place(), action.axis, action.by));
    if (action.do === "threshold") {
      this.setThreshold(this.control.neighbour(action.by));
      this.announcer.say(this.control.text());
    }
    if (action.do === "toggle") {
      this.switches.toggle();
      this.repaint();
      this.announcer.say(this.switches.options().shown ? "Map shown" : "Map hidden");
    }
  }

  private place(): Triple {
    return this.voxel ?? middleOf(this.source.grid);
  }

  private lines(): Line[] {
    if (this.shown === null) return [];
    return readout(this.source.grid, this.names, this.shown, this.place());
  }

  private draw(): void {
    if (this.shown === null) return;
    const { view, paint } = this.shown;
    for (const plane of this.planes) plane.draw({ voxel: this.place(), paint, region: view.region });
    this.list.show(this.lines());
  }

  private resize(): void {
    const scale = scaleFor(this.source.grid, this.parts.planes.clientWidth);
    for (const plane of this.planes) plane.resize(scale);
    this.draw();
  }
}

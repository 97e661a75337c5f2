// Saved maps in the viewer of Explore: three planes and a solid view, threshold, readout and clusters.
import { Announcer } from "../../page/announcer";
import { make } from "../../page/dom";
import { ReadoutList } from "../../viewer/readout_list";
import { BrainViews } from "../explore/brain_views";
import { button } from "../explore/controls/field";
import { thresholdControls } from "../explore/controls/threshold_controls";
import { listenForKeys } from "../explore/keys_on_page";
import { legendView } from "../explore/legend_view";
import { ClusterTable } from "../explore/panels/cluster_table";
import { readoutLines } from "../explore/readout_lines";
import { shellOf } from "../explore/reference";
import { messageOf } from "../watched";
import { MapChoice } from "./map_choice";
import { cellsInside, drawnOn, suits } from "./map_images";
import { MapScene } from "./map_scene";
import type { MapNumbers, SavedMap, SavedMaps, Underlay } from "./saved_map";

const kThresholdHelp =
  "By q: the threshold that was computed with the map and saved beside it. By value: a magnitude of your " +
  "own, which promises nothing.";
const kKeys = "; brackets change the threshold, space hides the map.";

interface Drawn {
  readonly scene: MapScene;
  readonly brains: BrainViews;
  readonly stopKeys: () => void;
}

function readoutView(scene: MapScene): HTMLElement {
  const list = new ReadoutList();
  const show = (): void => {
    list.show(readoutLines(scene.data, scene.images, scene.store.now));
  };
  scene.store.on(["crosshair", "maps", "choice"], show);
  show();
  return list.element;
}

export class MapViewer {
  readonly element = make("section", { class: "map-viewer", attributes: { "aria-label": "Maps" } });
  private readonly problem = make("p", { class: "problem", attributes: { role: "alert" } });
  private readonly title = make("p", { class: "map-title", attributes: { role: "status" } });
  private readonly stage = make("div", { class: "explore-stage" });
  private readonly controls = make("div", { class: "explore-controls" });
  private readonly panels = make("div", { class: "explore-panels" });
  private readonly announcer = new Announcer();
  private readonly choice: MapChoice;
  private drawn: Drawn | null = null;
  private asked = 0; // what comes for an earlier wish is not shown

  // isShown: whether the page shows the viewer, which then has the keys. closed: the reader has closed it.
  constructor(
    private readonly saved: SavedMaps,
    first: SavedMap,
    private readonly isShown: () => boolean,
    closed: () => void,
  ) {
    this.choice = new MapChoice(saved.maps, first, (map) => {
      void this.show(map);
    });
    const close = button("Close the maps", () => {
      this.close();
      closed();
    });
    const head = make("div", { class: "map-head" }, make("h3", { text: saved.title }), close);
    const whole = make("div", { class: "explore" }, this.stage, this.controls);
    this.problem.hidden = true;
    this.element.append(head, this.problem, this.title, whole, this.panels, this.announcer.element);
  }

  // The element must be on the page.
  async show(map: SavedMap): Promise<void> {
    const wish = ++this.asked;
    this.choice.show(map);
    try {
      const numbers = await this.saved.numbersOf(map);
      if (wish !== this.asked) return;
      this.tell("");
      await this.draw(map, numbers);
    } catch (error) {
      if (wish === this.asked) this.tell(messageOf(error));
    }
  }

  // Gives back what the graphics card holds.
  close(): void {
    this.asked += 1;
    this.drawn?.stopKeys();
    this.drawn?.brains.close();
    this.drawn = null;
    this.element.remove();
  }

  private tell(problem: string): void {
    this.problem.textContent = problem;
    this.problem.hidden = problem === "";
  }

  private async draw(map: SavedMap, numbers: MapNumbers): Promise<void> {
    const cells = cellsInside(numbers);
    const { drawn } = this;
    if (drawn !== null && suits(drawn.scene.images, numbers.grid, cells)) {
      drawn.scene.show(map, numbers);
      this.describe(map, numbers);
      return;
    }
    const wish = this.asked;
    const underlay = await this.saved.underlay(numbers.grid);
    if (wish !== this.asked) return;
    const brains = this.drawAnew(map, numbers, cells, underlay);
    this.describe(map, numbers);
    await this.open(brains);
  }

  private drawAnew(map: SavedMap, numbers: MapNumbers, cells: Uint32Array, underlay: Underlay): BrainViews {
    const images = drawnOn(numbers.grid, cells, underlay);
    const before = this.drawn?.scene.store.now ?? null;
    this.drawn?.stopKeys();
    this.drawn?.brains.close();
    const scene = new MapScene(this.saved.maps, images, { map, numbers }, before);
    const brains = new BrainViews(scene, kKeys);
    this.drawn = { scene, brains, stopKeys: this.listen(scene) };
    this.layOut(scene, brains, numbers, underlay.words);
    return brains;
  }

  // What was closed meanwhile, or followed by others, gives back what it has just taken.
  private async open(brains: BrainViews): Promise<void> {
    const isWanted = (): boolean => this.drawn?.brains === brains;
    const canDraw = await brains.openPlanes();
    if (canDraw && isWanted()) await brains.openSolid();
    if (!isWanted()) brains.close();
  }

  private layOut(scene: MapScene, brains: BrainViews, numbers: MapNumbers, underlay: string): void {
    const below = make("p", { class: "muted", text: `Grey: ${underlay}.` });
    const legend = legendView(scene, numbers.reference !== null);
    const side = make("div", { class: "explore-side" }, readoutView(scene), legend);
    this.stage.replaceChildren(brains.element, below, side);
    const words = { help: kThresholdHelp, directions: this.saved.hasDirections };
    const threshold = thresholdControls(scene, words);
    this.controls.replaceChildren(this.choice.element, threshold);
    this.panels.replaceChildren(new ClusterTable(scene).element);
  }

  private describe(map: SavedMap, { reference }: MapNumbers): void {
    const parts = [map.of, map.condition, map.info.name].filter((part) => part !== "");
    this.title.textContent = parts.join(", ");
    if (this.drawn === null) return;
    const { scene, brains } = this.drawn;
    const { mask } = scene.images;
    const places = Array.from(mask.cells.keys()).filter((place) => !scene.isFinding(place));
    brains.region = reference === null ? [] : shellOf(places, mask);
  }

  private listen(scene: MapScene): () => void {
    return listenForKeys({
      explorer: scene,
      isShown: this.isShown,
      help: () => undefined,
      announce: (text) => {
        this.announcer.say(text);
      },
    });
  }
}

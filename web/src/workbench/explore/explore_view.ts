// The Explore tab once a run is ready.
import { make } from "../../page/dom";
import { ReadoutList } from "../../viewer/readout_list";
import type { Server } from "../server";
import type { Shell } from "../shell";
import { KeyList } from "../help/key_list";
import { Tour } from "../help/tour";
import { badgeView } from "./badge_view";
import { BrainViews } from "./brain_views";
import { compareControls } from "./compare/compare_controls";
import type { CompareState } from "./compare/compare_state";
import { CompareView } from "./compare/compare_view";
import { watchCondition } from "./compare/condition_source";
import { button } from "./controls/field";
import { mapControls } from "./controls/map_controls";
import { referenceControls } from "./controls/reference_controls";
import { settingsControls } from "./controls/settings_controls";
import { thresholdControls } from "./controls/threshold_controls";
import type { ReadyData, Settings } from "./explore_data";
import { Explorer } from "./explorer";
import { firstState, type ExploreState } from "./explore_state";
import { listenForKeys } from "./keys_on_page";
import { legendView } from "./legend_view";
import { MapSource } from "./map_source";
import { ClusterTable } from "./panels/cluster_table";
import { VoxelPanels } from "./panels/voxel_panels";
import { readoutLines } from "./readout_lines";
import { placesOf, shellOf } from "./reference";
import { loadImages } from "./run_images";
import { SaveControls } from "./saving/save_controls";
import { Store } from "./store";

export interface ExploreContext {
  readonly server: Server;
  readonly shell: Shell;
  readonly replan: (settings: Settings) => void; // loads the run again
}

function readoutView(explorer: Explorer): HTMLElement {
  const list = new ReadoutList();
  const show = (now: ExploreState): void => {
    list.show(readoutLines(explorer.data, explorer.images, now));
  };
  explorer.store.on(["crosshair", "maps", "type", "choice"], show);
  show(explorer.store.now);
  return list.element;
}

// The edge of the reference, wherever it is.
function surround(brains: BrainViews, { images, store }: Explorer): void {
  const show = ({ reference }: ExploreState): void => {
    brains.region = shellOf(placesOf(reference, images.mask, images.labelOf), images.mask);
  };
  store.on(["reference"], show);
  show(store.now);
}

function compareStore(data: ReadyData): Store<CompareState> {
  const condition = data.conditions[1]?.name ?? "";
  return new Store<CompareState>({ with: "nothing", condition, show: "map", pinned: null, fetched: null });
}

function controlsOf(
  explorer: Explorer,
  compare: HTMLElement,
  saving: HTMLElement,
  replan: ExploreContext["replan"],
): HTMLElement {
  return make(
    "div",
    { class: "explore-controls" },
    mapControls(explorer),
    referenceControls(explorer),
    thresholdControls(explorer),
    compare,
    settingsControls(explorer, replan),
    saving,
  );
}

const kKeys = ", with Shift the reference.";

function helpOn(root: HTMLElement, explorer: Explorer, shell: Shell): void {
  const [keys, tour] = [new KeyList(), new Tour()];
  const help = (): void => {
    keys.toggle();
  };
  const buttons = make(
    "div",
    { class: "row help-buttons" },
    button("Tour", () => {
      tour.start();
    }),
    button("Keys (?)", help),
  );
  root.querySelector(".badge-bar")?.append(buttons);
  root.append(keys.element, tour.element);
  const isShown = (): boolean => root.isConnected && !root.hidden && keys.element.isConnected;
  listenForKeys({
    explorer,
    isShown,
    help,
    announce: (text) => {
      shell.announce(text);
    },
  });
  tour.startOnce();
}

interface Parts {
  readonly brains: BrainViews;
  readonly other: CompareView;
}

// The elements of the tab, in `root`.
function layOut(root: HTMLElement, explorer: Explorer, context: ExploreContext): Parts {
  const { server, shell, replan } = context;
  const brains = new BrainViews(explorer, kKeys);
  surround(brains, explorer);
  const compare = compareStore(explorer.data);
  const region = (): readonly number[] => brains.region;
  watchCondition(explorer, compare, server, region);
  const other = new CompareView(explorer, compare);
  const side = make("div", { class: "explore-side" }, readoutView(explorer), legendView(explorer));
  const stage = make(
    "div",
    { class: "explore-stage" },
    badgeView(explorer),
    brains.element,
    other.element,
    side,
  );
  const saving = new SaveControls(explorer, server, shell, [brains.planes, brains.solid]);
  const controls = controlsOf(explorer, compareControls(explorer, compare, region), saving.element, replan);
  const panels = [new ClusterTable(explorer).element, new VoxelPanels(explorer, server).element];
  const whole = make("div", { class: "explore" }, stage, controls);
  root.replaceChildren(whole, make("div", { class: "explore-panels" }, ...panels));
  return { brains, other };
}

// Fills `root`; returns how to give it up. Rejects when the run's images cannot be read or drawn.
export async function showExplore(
  root: HTMLElement,
  data: ReadyData,
  context: ExploreContext,
): Promise<() => void> {
  const images = await loadImages(data, context.server);
  const store = new Store<ExploreState>(firstState(data, images.mask.middle()));
  const explorer = new Explorer(data, images, store);
  const { brains, other } = layOut(root, explorer, context);
  helpOn(root, explorer, context.shell);
  const drawn = await brains.openPlanes();
  const source = new MapSource(store, context.server);
  source.ask();
  if (drawn) await brains.openSolid();
  return () => {
    source.stop();
    brains.close();
    other.close();
  };
}

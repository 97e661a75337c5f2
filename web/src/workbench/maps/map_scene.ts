// Saved maps on the page: which of them is shown, and how. The planes, the threshold, the readout and the
// clusters watch it as they watch a run that is explored.
import type { Triple } from "../../data/page_data";
import type { Millimetres } from "../explore/explore_data";
import { stepThreshold, steppedMm, type MapView, type ViewState, type ViewedData } from "../explore/map_view";
import type { MapsReply } from "../explore/maps_reply";
import type { RunImages } from "../explore/run_images";
import { Store } from "../explore/store";
import { fullColourOf } from "../explore/tint";
import { qValuesOf, type MapNumbers, type SavedMap } from "./saved_map";

const kFirstQ = 0.05;

// [place]: those of the mask alone.
function within<T extends Float32Array | Uint8Array>(cells: Uint32Array, all: T, out: T): T {
  cells.forEach((cell, place) => (out[place] = all[cell] ?? 0));
  return out;
}

function replyOf(map: SavedMap, numbers: MapNumbers, cells: Uint32Array): MapsReply {
  const { type } = map.info;
  const count = cells.length;
  const raw = within(cells, numbers.values, new Float32Array(count));
  const bytes = (all: Uint8Array | null): Uint8Array | null =>
    all === null ? null : within(cells, all, new Uint8Array(count));
  const reply = { type, values: { raw, scale: 1, missing: NaN }, p: bytes(numbers.p) };
  const shown = { ...reply, direction: bytes(numbers.direction), thresholds: map.thresholds };
  const header = { sequence: 0, draft: false, voxels: count, condition: map.condition, elapsedMs: 0 };
  const reference = { name: map.of, voxels: 0 };
  return { header: { ...header, reference, arrays: [] }, maps: new Map([[type, shown]]) };
}

export class MapScene implements MapView {
  readonly hovers = false;
  readonly store: Store<ViewState>;
  private readonly isReference: Uint8Array; // [place]
  private readonly qValues: readonly number[];
  private shown: SavedMap;
  private lastByQ: ViewState["choice"];
  private forced: ViewState["choice"] | null = null; // where a map has no thresholds

  // images: of the grid and the mask of the numbers. before: what was shown until now.
  constructor(
    maps: readonly SavedMap[],
    readonly images: RunImages,
    first: { readonly map: SavedMap; readonly numbers: MapNumbers },
    before: ViewState | null,
  ) {
    this.qValues = qValuesOf(maps);
    this.isReference = new Uint8Array(images.mask.cells.length);
    this.shown = first.map;
    const q = this.qValues.includes(kFirstQ) ? kFirstQ : (this.qValues[0] ?? kFirstQ);
    this.lastByQ = { by: "q", q };
    this.store = new Store<ViewState>({
      crosshair: before?.crosshair ?? images.mask.middle(),
      type: first.map.info.type,
      choice: before?.choice ?? this.lastByQ,
      shown: before?.shown ?? true,
      hideBelow: before?.hideBelow ?? false,
      faintUnsupported: before?.faintUnsupported ?? true,
      maps: null,
    });
    this.show(first.map, first.numbers);
  }

  get data(): ViewedData {
    const { qValues } = this;
    return { maps: [this.shown.info], labels: [], hasLabels: false, settings: { qValues } };
  }

  // numbers: of the same grid and mask as the images.
  show(map: SavedMap, numbers: MapNumbers): void {
    const { cells } = this.images.mask;
    if (numbers.reference !== null) within(cells, numbers.reference, this.isReference);
    this.shown = map;
    const maps = replyOf(map, numbers, cells);
    this.store.change({ type: map.info.type, maps, choice: this.choiceFor(map, maps) });
  }

  stateWords(): string {
    return "as saved";
  }

  // A voxel of the reference is none.
  isFinding(place: number): boolean {
    return this.isReference[place] !== 1;
  }

  moveCrosshair(mm: Millimetres): void {
    this.store.change({ crosshair: mm });
  }

  follow(mm: Millimetres): void {
    this.moveCrosshair(mm);
  }

  stepCrosshair(by: Triple): void {
    this.moveCrosshair(steppedMm(this.images, this.store.now.crosshair, by));
  }

  // The reference stays where it was.
  stepReference(by: Triple): void {
    this.stepCrosshair(by);
  }

  stepThreshold(by: 1 | -1): void {
    stepThreshold(this, by);
  }

  // Where a map has no thresholds, a value; afterwards the q that was chosen before.
  private choiceFor({ info, thresholds, from }: SavedMap, { maps }: MapsReply): ViewState["choice"] {
    const { choice } = this.store.now;
    if (choice.by === "q") this.lastByQ = choice;
    if (thresholds.length > 0) return choice === this.forced ? this.lastByQ : choice;
    if (choice.by === "value" && choice !== this.forced) return choice;
    const map = maps.get(info.type);
    this.forced = { by: "value", level: from ?? (map === undefined ? 1 : fullColourOf(map) / 2) };
    return this.forced;
  }
}

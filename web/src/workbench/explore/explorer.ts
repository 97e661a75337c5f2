// What can be done to the state: by mouse, keys and controls alike.
import type { Triple } from "../../data/page_data";
import type { ReadyData, Millimetres } from "./explore_data";
import type { ExploreState } from "./explore_state";
import { stepThreshold, steppedMm, type MapView } from "./map_view";
import { centreOf, placesInSphere } from "./reference";
import type { RunImages } from "./run_images";
import type { Store } from "./store";
import { badgeOf } from "./state_words";

export class Explorer implements MapView {
  constructor(
    readonly data: ReadyData,
    readonly images: RunImages,
    readonly store: Store<ExploreState>,
  ) {}

  stateWords(): string {
    const { maps, settings } = this.store.now;
    return badgeOf(maps, settings.draws ?? this.data.settings.draws).words;
  }

  isFinding(): boolean {
    return true;
  }

  // The label under the cursor needs no button.
  get hovers(): boolean {
    return this.store.now.kind === "cursor" && this.store.now.mouse === "reference";
  }

  moveCrosshair(mm: Millimetres): void {
    this.store.change({ crosshair: mm });
  }

  // Moves the reference to a point, as its kind has it. Points outside the mask leave it where it is.
  moveReference(mm: Millimetres): void {
    const { kind, radiusMm } = this.store.now;
    const place = this.images.mask.placeAt(mm);
    if (place < 0) return;
    if (kind === "cursor" || kind === "label") this.takeLabel(this.images.labelOf?.[place] ?? 0);
    else if (kind === "voxels") this.paint(mm);
    else this.store.change({ reference: { kind: "sphere", mm, radiusMm } });
  }

  // Under the mouse: whichever of the two it moves; `swapped` for the other one.
  follow(mm: Millimetres, swapped: boolean): void {
    if ((this.store.now.mouse === "reference") !== swapped) this.moveReference(mm);
    else this.moveCrosshair(mm);
  }

  takeLabel(id: number): void {
    const { reference } = this.store.now;
    if (id === 0 || (reference.kind === "label" && reference.id === id)) return;
    this.store.change({ reference: { kind: "label", id } });
  }

  setRadius(radiusMm: number): void {
    const { reference } = this.store.now;
    const sphere = reference.kind === "sphere" ? { reference: { ...reference, radiusMm } } : {};
    this.store.change({ radiusMm, ...sphere });
  }

  setKind(kind: ExploreState["kind"]): void {
    const { kind: before, reference, radiusMm } = this.store.now;
    if (kind === before) return;
    this.store.change({ kind });
    if (kind === "sphere") this.store.change({ reference: { kind, mm: this.centre(), radiusMm } });
    if (kind === "voxels") this.store.change({ reference: { kind, cells: [] } });
    if (kind === "cursor" && reference.kind !== "label") this.moveReference(this.centre());
  }

  clearDrawing(): void {
    this.store.change({ reference: { kind: "voxels", cells: [] } });
  }

  // Steps of whole voxels along the axes of the grid.
  stepReference(by: Triple): void {
    const { kind } = this.store.now;
    if (kind === "label" || kind === "cursor") this.stepLabel(by[0] + by[1] + by[2] > 0 ? 1 : -1);
    else
      this.moveReference(
        steppedMm(this.images, kind === "voxels" ? this.store.now.crosshair : this.centre(), by),
      );
  }

  stepCrosshair(by: Triple): void {
    this.moveCrosshair(steppedMm(this.images, this.store.now.crosshair, by));
  }

  stepThreshold(by: 1 | -1): void {
    stepThreshold(this, by);
  }

  centre(): Millimetres {
    return centreOf(this.store.now.reference, this.data.labels, this.images.mask);
  }

  private paint(mm: Millimetres): void {
    const { reference, radiusMm, erase } = this.store.now;
    const { mask } = this.images;
    const cells = new Set(reference.kind === "voxels" ? reference.cells : []);
    const before = cells.size;
    for (const place of placesInSphere(mask, mm, radiusMm)) {
      if (erase) cells.delete(mask.cells[place] ?? 0);
      else cells.add(mask.cells[place] ?? 0);
    }
    if (cells.size === before) return;
    this.store.change({ reference: { kind: "voxels", cells: [...cells].sort((a, b) => a - b) } });
  }

  private stepLabel(by: 1 | -1): void {
    const { reference } = this.store.now;
    const { labels } = this.data;
    const at = labels.findIndex(({ id }) => reference.kind === "label" && reference.id === id);
    this.takeLabel(labels[(at + by + labels.length) % labels.length]?.id ?? 0);
  }
}

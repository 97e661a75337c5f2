// A second brain beside the first, with the other map or the difference; the crosshair is the same.
import { make } from "../../../page/dom";
import { BrainCanvas } from "../brain_canvas";
import { levelFull } from "../colour_range";
import type { Explorer } from "../explorer";
import { OncePerFrame } from "../frames";
import { kShowing } from "../map_view";
import type { ReplyMap } from "../maps_reply";
import { OverlayPainter } from "../overlay_painter";
import type { Store } from "../store";
import { levelOf } from "../threshold_choice";
import { fullColourOf } from "../tint";
import { otherOf, type CompareState, type Other } from "./compare_state";
import { difference } from "./difference";

const kDifference =
  "The map on the left minus this one. No threshold is computed for differences: opacity follows the size.";

export class CompareView {
  readonly element: HTMLElement;
  private readonly brain = new BrainCanvas(false);
  private readonly words = make("p", { class: "compare-words", attributes: { role: "status" } });
  private readonly painter: OverlayPainter;
  private readonly values: Float32Array;
  private opened: Promise<void> | null = null;
  private readonly frame = new OncePerFrame(() => {
    this.paint();
  });

  constructor(
    private readonly explorer: Explorer,
    private readonly compare: Store<CompareState>,
  ) {
    this.painter = new OverlayPainter(explorer.images);
    this.values = new Float32Array(explorer.images.mask.cells.length);
    this.brain.element.dataset.part = "other";
    this.brain.canvas.setAttribute("role", "img");
    this.element = make(
      "div",
      { class: "compare", attributes: { "data-part": "compare" } },
      this.words,
      this.brain.element,
    );
    this.element.hidden = true;
    explorer.store.on([...kShowing, "crosshair"], () => {
      this.frame.ask();
    });
    compare.watch(() => {
      void this.update();
    });
  }

  close(): void {
    this.brain.close();
  }

  private async update(): Promise<void> {
    this.element.hidden = this.compare.now.with === "nothing";
    if (this.element.hidden) return;
    this.opened ??= this.brain.open(this.explorer.images);
    await this.opened;
    this.frame.ask();
  }

  private paint(): void {
    const other = otherOf(this.compare.now);
    if (this.element.hidden || this.opened === null) return;
    this.brain.moveTo(this.explorer.store.now.crosshair);
    this.words.textContent = this.wordsOf(other);
    this.brain.canvas.setAttribute("aria-label", this.words.textContent);
    const map = other === null ? null : this.mapOf(other);
    const { choice, hideBelow, faintUnsupported, maps } = this.explorer.store.now;
    const own = map === other?.map;
    const level = map === null ? Infinity : levelOf(choice, map);
    const full = map === null ? 1 : own ? levelFull(map, maps?.header.draft === true) : fullColourOf(map);
    const options = { level, full, hideBelow, faintUnsupported, bySize: !own };
    this.brain.show(this.painter.paint(map, options, other?.region ?? []));
  }

  private mapOf(other: Other): ReplyMap | null {
    if (this.compare.now.show === "map") return other.map;
    const { maps, type } = this.explorer.store.now;
    const shown = maps?.maps.get(type);
    return shown?.type === other.map.type ? difference(shown, other.map, this.values) : null;
  }

  private wordsOf(other: Other | null): string {
    const { with: kind, show } = this.compare.now;
    if (other === null)
      return kind === "pinned"
        ? "Nothing is pinned yet."
        : "The other map is computed when the reference rests.";
    const name = `${other.map.type}, ${other.reference}, ${other.condition}`;
    if (show === "map") return `${kind === "pinned" ? "Pinned" : "Other condition"} (calibrated): ${name}`;
    const provisional =
      this.explorer.store.now.maps?.header.draft === true ? " Provisional: one of both maps is." : "";
    return `Difference from ${name}. ${kDifference}${provisional}`;
  }
}

// The planes and the solid view, with the map of the state over the brain. The solid view, which takes most
// work to draw, follows when the reference rests.
import { make } from "../../page/dom";
import { BrainCanvas } from "./brain_canvas";
import { levelFull } from "./colour_range";
import type { Explorer } from "./explorer";
import { kShowing, type ExploreState } from "./explore_state";
import { OncePerFrame } from "./frames";
import { OverlayPainter } from "./overlay_painter";
import { followPointer, turnByPointer } from "./pointer";
import { placesOf, shellOf } from "./reference";
import { levelOf } from "./threshold_choice";

const kPlanesWords =
  "Three planes through the crosshair: sagittal, coronal, axial; left on the left. Arrows and Page " +
  "keys move the crosshair, with Shift the reference.";
const kUndrawn =
  "This browser has no WebGL 2, so the brain cannot be drawn. Maps, clusters and the panels of the " +
  "voxel work: move the crosshair and the reference with the keyboard. Another browser, or its " +
  "setting of hardware acceleration, may help.";
const kSolidWords = "The brain as a solid, seen from outside. Arrows turn it.";

function labelled(canvas: BrainCanvas, words: string, part: string): void {
  canvas.canvas.tabIndex = 0;
  canvas.canvas.setAttribute("role", "application");
  canvas.canvas.setAttribute("aria-label", words);
  canvas.element.dataset.part = part;
}

export class BrainViews {
  readonly planes = new BrainCanvas(false);
  readonly solid = new BrainCanvas(true);
  readonly element = make("div", { class: "brains" }, this.planes.element, this.solid.element);
  private readonly painter: OverlayPainter;
  private readonly frame = new OncePerFrame(() => {
    this.paint();
  });
  region: readonly number[] = []; // places on the edge of the reference

  constructor(private readonly explorer: Explorer) {
    this.painter = new OverlayPainter(explorer.images);
    labelled(this.planes, kPlanesWords, "planes");
    labelled(this.solid, kSolidWords, "solid");
  }

  // The element must be on the page. Resolves to whether the browser can draw: it needs WebGL 2.
  async openPlanes(): Promise<boolean> {
    this.watch();
    try {
      await this.planes.open(this.explorer.images);
    } catch {
      this.element.replaceChildren(
        make("p", { class: "problem", text: kUndrawn, attributes: { role: "alert" } }),
      );
      return false;
    }
    followPointer(this.planes, this.explorer);
    this.planes.moveTo(this.explorer.store.now.crosshair);
    return true;
  }

  async openSolid(): Promise<void> {
    await this.solid.open(this.explorer.images);
    turnByPointer(this.solid);
    this.frame.ask();
  }

  close(): void {
    this.planes.close();
    this.solid.close();
  }

  private watch(): void {
    const { store } = this.explorer;
    const moved = ({ crosshair }: ExploreState): void => {
      this.planes.moveTo(crosshair);
    };
    const surrounded = ({ reference }: ExploreState): void => {
      const { mask, labelOf } = this.explorer.images;
      this.region = shellOf(placesOf(reference, mask, labelOf), mask);
      this.frame.ask();
    };
    store.on(["crosshair"], moved);
    store.on(["reference"], surrounded);
    store.on(kShowing, () => {
      this.frame.ask();
    });
    moved(store.now);
    surrounded(store.now);
  }

  private paint(): void {
    const { maps, type, choice, shown, hideBelow, faintUnsupported } = this.explorer.store.now;
    const map = shown ? (maps?.maps.get(type) ?? null) : null;
    const level = map === null ? Infinity : levelOf(choice, map);
    const full = map === null ? 1 : levelFull(map, maps?.header.draft === true);
    const words = this.painter.paint(map, { level, full, hideBelow, faintUnsupported }, this.region);
    this.planes.show(words);
    if (maps?.header.draft !== true) this.solid.show(words);
  }
}

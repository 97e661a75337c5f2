// The planes and the solid view, with the map of the state over the brain. The solid view, which takes most
// work to draw, follows when the reference rests.
import { make } from "../../page/dom";
import { BrainCanvas } from "./brain_canvas";
import { levelFull } from "./colour_range";
import { OncePerFrame } from "./frames";
import { kShowing, type MapView, type ViewState } from "./map_view";
import { OverlayPainter } from "./overlay_painter";
import { followPointer, turnByPointer } from "./pointer";
import { levelOf } from "./threshold_choice";

const kPlanesWords =
  "Three planes through the crosshair: sagittal, coronal, axial; left on the left. Arrows and Page " +
  "keys move the crosshair";
const kUndrawn =
  "This browser has no WebGL 2, so the brain cannot be drawn. All else works: move with the keyboard. " +
  "Another browser, or its setting of hardware acceleration, may help.";
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
  private edge: readonly number[] = [];

  // keys: what else they do, behind "Arrows and Page keys move the crosshair".
  constructor(
    private readonly view: MapView,
    keys: string,
  ) {
    this.painter = new OverlayPainter(view.images);
    labelled(this.planes, kPlanesWords + keys, "planes");
    labelled(this.solid, kSolidWords, "solid");
  }

  // Places on the edge of the reference, which are drawn over the map.
  get region(): readonly number[] {
    return this.edge;
  }

  set region(places: readonly number[]) {
    this.edge = places;
    this.frame.ask();
  }

  // The element must be on the page. Resolves to whether the browser can draw: it needs WebGL 2.
  async openPlanes(): Promise<boolean> {
    this.watch();
    try {
      await this.planes.open(this.view.images);
    } catch {
      this.element.replaceChildren(
        make("p", { class: "problem", text: kUndrawn, attributes: { role: "alert" } }),
      );
      return false;
    }
    followPointer(this.planes, this.view);
    this.planes.moveTo(this.view.store.now.crosshair);
    return true;
  }

  async openSolid(): Promise<void> {
    await this.solid.open(this.view.images);
    turnByPointer(this.solid);
    this.frame.ask();
  }

  close(): void {
    this.planes.close();
    this.solid.close();
  }

  private watch(): void {
    const { store } = this.view;
    const moved = ({ crosshair }: ViewState): void => {
      this.planes.moveTo(crosshair);
    };
    store.on(["crosshair"], moved);
    store.on(kShowing, () => {
      this.frame.ask();
    });
    moved(store.now);
    this.frame.ask();
  }

  private paint(): void {
    const { maps, type, choice, shown, hideBelow, faintUnsupported } = this.view.store.now;
    const map = shown ? (maps?.maps.get(type) ?? null) : null;
    const level = map === null ? Infinity : levelOf(choice, map);
    const full = map === null ? 1 : levelFull(map, maps?.header.draft === true);
    const words = this.painter.paint(map, { level, full, hideBelow, faintUnsupported }, this.region);
    this.planes.show(words);
    if (maps?.header.draft !== true) this.solid.show(words);
  }
}

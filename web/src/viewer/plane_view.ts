// One plane on the page: a canvas with letters at its edges, moved through by pointer and keyboard.
import type { GridData, Triple } from "../data/page_data";
import { make } from "../page/dom";
import { actionOf, type Action } from "./keys";
import { planeSize } from "./layout";
import { heightOf, pixelOf, voxelAt, widthOf, type Pixel, type Plane } from "./planes";
import { outline, slicePixels, type Painter } from "./slice_pixels";
import { crosshairEdges, kCrosshairPen, kOutlinePen, strokeEdges } from "./strokes";

export interface PlaneHandlers {
  readonly moved: (voxel: Triple) => void;
  readonly acted: (action: Action) => void;
}

export interface Scene {
  readonly voxel: Triple; // where the crosshair is
  readonly paint: Painter;
  readonly region: ArrayLike<number>;
}

const kNames: Readonly<Record<string, string>> = {
  Axial: "seen from above, left on the left, front at the top",
  Coronal: "seen from behind, left on the left",
  Sagittal: "seen from the right, front on the right",
};

function letterSpans(plane: Plane): HTMLElement[] {
  return Object.entries(plane.letters).map(([side, text]) =>
    make("span", { class: `letter letter-${side}`, text, attributes: { "aria-hidden": "true" } }),
  );
}

export class PlaneView {
  readonly element: HTMLElement;
  private readonly canvas = make("canvas");
  private readonly slice = make("canvas");
  private voxel: Triple = [0, 0, 0];

  constructor(
    private readonly plane: Plane,
    private readonly grid: GridData,
    private readonly handlers: PlaneHandlers,
    helpId: string,
  ) {
    this.element = make(
      "div",
      { class: "plane", attributes: this.attributes(helpId) },
      this.canvas,
      ...letterSpans(plane),
    );
    this.slice.width = widthOf(plane, grid.size);
    this.slice.height = heightOf(plane, grid.size);
    this.listen();
  }

  resize(scale: number): void {
    const [width, height] = planeSize(this.plane, this.grid, scale);
    this.canvas.style.width = `${width}px`;
    this.canvas.style.height = `${height}px`;
    this.canvas.width = Math.round(width * devicePixelRatio);
    this.canvas.height = Math.round(height * devicePixelRatio);
  }

  draw(scene: Scene): void {
    this.voxel = scene.voxel;
    const context = this.canvas.getContext("2d");
    if (context === null) return;
    this.fillSlice(scene);
    context.imageSmoothingEnabled = false;
    context.drawImage(this.slice, 0, 0, this.canvas.width, this.canvas.height);
    this.drawLines(context, scene);
  }

  private attributes(helpId: string): Record<string, string> {
    const { name } = this.plane;
    return {
      tabindex: "0",
      role: "application",
      "aria-label": `${name} slice, ${kNames[name] ?? ""}`,
      "aria-describedby": helpId,
      "data-plane": name.toLowerCase(),
    };
  }

  private fillSlice(scene: Scene): void {
    const { width, height } = this.slice;
    const pixels = slicePixels(this.plane, this.grid.size, scene.voxel, scene.paint);
    this.slice.getContext("2d")?.putImageData(new ImageData(pixels, width, height), 0, 0);
  }

  private drawLines(context: CanvasRenderingContext2D, scene: Scene): void {
    const { width, height } = this.slice;
    const [across, down] = [this.canvas.width / width, this.canvas.height / height];
    const edges = outline(this.plane, this.grid.size, scene.voxel, scene.region);
    strokeEdges(context, edges, across, down, kOutlinePen);
    const { column, row } = pixelOf(this.plane, this.grid.size, scene.voxel);
    strokeEdges(context, crosshairEdges(column, row, width, height), across, down, kCrosshairPen);
  }

  private listen(): void {
    this.canvas.addEventListener("pointerdown", (event) => {
      if (event.button !== 0) return;
      event.preventDefault();
      this.canvas.setPointerCapture(event.pointerId);
      this.element.focus({ preventScroll: true });
      this.follow(event);
    });
    this.canvas.addEventListener("pointermove", (event) => {
      if (this.canvas.hasPointerCapture(event.pointerId)) this.follow(event);
    });
    this.element.addEventListener("keydown", (event) => {
      if (event.ctrlKey || event.altKey || event.metaKey) return;
      const action = actionOf(event.key, event.shiftKey, this.plane);
      if (action === null) return;
      event.preventDefault();
      this.handlers.acted(action);
    });
  }

  private follow(event: PointerEvent): void {
    this.handlers.moved(voxelAt(this.plane, this.grid.size, this.voxel, this.pixelUnder(event)));
  }

  private pixelUnder(event: PointerEvent): Pixel {
    const box = this.canvas.getBoundingClientRect();
    return {
      column: Math.floor(((event.clientX - box.left) / box.width) * this.slice.width),
      row: Math.floor(((event.clientY - box.top) / box.height) * this.slice.height),
    };
  }
}

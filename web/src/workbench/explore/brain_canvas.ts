// A canvas on which NiiVue draws a brain: grey levels on an upright grid, and over them colours that are
// uploaded into the one texture that NiiVue keeps for overlays, so that a new map costs one upload and no
// memory.
//
// NiiVue gets no events: its keys and gestures would change what this page keeps track of.
import { NVImage, Niivue, SHOW_RENDER, SLICE_TYPE } from "@niivue/niivue";
import type { Triple } from "../../data/page_data";
import { make } from "../../page/dom";
import type { DisplayGrid } from "./display_grid";
import { OncePerFrame } from "./frames";

export interface Backdrop {
  readonly grid: DisplayGrid;
  readonly grey: Uint8Array; // a level per voxel of the grid
}

const kOptions = {
  interactive: false,
  dragAndDropEnabled: false,
  logLevel: "error",
  backColor: [0, 0, 0, 1] as [number, number, number, number],
  crosshairColor: [1, 1, 1, 0.8] as [number, number, number, number],
  crosshairWidth: 0.7,
  crosshairWidthUnit: "mm" as const,
  crosshairGap: 6,
  isColorbar: false,
  multiplanarShowRender: SHOW_RENDER.NEVER,
  fontColor: [1, 1, 1, 1] as [number, number, number, number],
} as const;

const kUint8 = 2;
const kOverlayUnit = 2; // the texture unit of overlays in NiiVue's shaders

function flat(grid: DisplayGrid): number[] {
  return grid.affine.flatMap((row) => [...row]);
}

async function imageOf(grid: DisplayGrid, size: Triple, data: Uint8Array, name: string): Promise<NVImage> {
  const edges = [grid.edgeMm, grid.edgeMm, grid.edgeMm];
  const file = NVImage.createNiftiArray([...size], edges, flat(grid), kUint8, data);
  const image = await NVImage.loadFromFile({ file: new File([new Uint8Array(file)], `${name}.nii`), name });
  image.cal_min = 0;
  image.cal_max = 255;
  return image;
}

export class BrainCanvas {
  readonly canvas = make("canvas");
  readonly element = make("div", { class: "brain" }, this.canvas);
  private readonly niivue: Niivue;
  private readonly frame = new OncePerFrame(() => {
    this.drawNow();
  });
  private overlay: Uint8Array | null = null;
  private grid: DisplayGrid | null = null;
  private stale = false; // the overlay is not uploaded yet

  constructor(private readonly solid: boolean) {
    this.niivue = new Niivue({ ...kOptions, show3Dcrosshair: solid });
  }

  // The element must be on the page. Rejects where the browser has no WebGL 2.
  async open({ grid, grey }: Backdrop): Promise<void> {
    await this.niivue.attachToCanvas(this.canvas, false);
    this.niivue.setSliceType(this.solid ? SLICE_TYPE.RENDER : SLICE_TYPE.MULTIPLANAR);
    const brain = await imageOf(grid, grid.size, grey, "brain");
    const none = await imageOf(grid, [2, 2, 2], new Uint8Array(8), "none");
    // Both at once: added one by one, every texture is made twice.
    this.niivue.volumes = [brain, none];
    this.niivue.setVolume(none, 1);
    this.grid = grid;
  }

  // Gives back what the graphics card holds: browsers have few contexts.
  close(): void {
    if (this.grid === null) return;
    this.grid = null;
    this.niivue.cleanup();
    this.niivue.gl.getExtension("WEBGL_lose_context")?.loseContext();
  }

  // rgba: a word per voxel of the grid. The array is kept: change it and call this again.
  show(rgba: Uint32Array): void {
    this.overlay = new Uint8Array(rgba.buffer, rgba.byteOffset, rgba.byteLength);
    this.stale = true;
    this.frame.ask();
  }

  moveTo(mm: Triple): void {
    if (this.grid === null) return;
    this.niivue.scene.crosshairPos = this.niivue.mm2frac([...mm], 0, true);
    this.frame.ask();
  }

  turn(azimuth: number, elevation: number): void {
    const { scene } = this.niivue;
    scene.renderAzimuth = (scene.renderAzimuth + azimuth) % 360;
    scene.renderElevation = Math.min(Math.max(scene.renderElevation + elevation, -90), 90);
    this.frame.ask();
  }

  // Millimetres under a point of the window; null: no plane is there.
  mmAt(clientX: number, clientY: number): Triple | null {
    const box = this.canvas.getBoundingClientRect();
    const scale = this.canvas.width / Math.max(box.width, 1);
    const at = [(clientX - box.left) * scale, (clientY - box.top) * scale];
    const frac = this.niivue.canvasPos2frac(at);
    if (frac[0] < 0 || [...frac].some((share) => share < 0 || share > 1)) return null;
    const [x = 0, y = 0, z = 0] = this.niivue.frac2mm(frac, 0, true);
    return [x, y, z];
  }

  drawNow(): void {
    if (this.grid === null) return;
    if (this.stale) this.upload(this.grid.size);
    this.niivue.drawScene();
  }

  private upload([nx, ny, nz]: Triple): void {
    const { gl, overlayTexture } = this.niivue;
    if (this.overlay === null || overlayTexture === null) return;
    gl.activeTexture(gl.TEXTURE0 + kOverlayUnit);
    gl.bindTexture(gl.TEXTURE_3D, overlayTexture);
    gl.texParameteri(gl.TEXTURE_3D, gl.TEXTURE_MIN_FILTER, gl.NEAREST);
    gl.texParameteri(gl.TEXTURE_3D, gl.TEXTURE_MAG_FILTER, gl.NEAREST);
    gl.pixelStorei(gl.UNPACK_ALIGNMENT, 4);
    gl.texSubImage3D(gl.TEXTURE_3D, 0, 0, 0, 0, nx, ny, nz, gl.RGBA, gl.UNSIGNED_BYTE, this.overlay);
    this.stale = false;
  }
}

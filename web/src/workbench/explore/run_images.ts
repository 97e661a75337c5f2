// What is loaded once per run: the mask, the labels and the brain that maps are drawn on.
import { boxOf } from "./affine";
import { voxelEdges } from "../../data/grid";
import { displayGrid, type DisplayGrid } from "./display_grid";
import type { ReadyData } from "./explore_data";
import { readNifti } from "./image_file";
import { greyLevels, nearestOf, resampled, type Image } from "./resampling";
import { VoxelMask } from "./voxel_mask";
import { labelsOfPlaces } from "./label_places";
import type { Server } from "../server";

export interface RunImages {
  readonly mask: VoxelMask;
  readonly grid: DisplayGrid;
  readonly grey: Uint8Array;
  readonly placeOf: Int32Array; // [voxel of the display grid]: place in the maps, -1: none
  readonly labelOf: Int32Array | null; // [place]: label, 0: none
}

async function imageFrom(server: Server, name: string): Promise<Image> {
  return readNifti(await server.binary(`/api/explore/image/${name}.nii.gz`));
}

const kFinestMm = 1;

function gridFor(background: Image, mask: VoxelMask): DisplayGrid {
  const [low, high] = boxOf(background.size, background.affine);
  const [maskLow, maskHigh] = boxOf(mask.grid.size, mask.grid.affine);
  const within = (axis: 0 | 1 | 2): [number, number] => [
    Math.max(low[axis], maskLow[axis]),
    Math.min(high[axis], maskHigh[axis]),
  ];
  const [x, y, z] = [within(0), within(1), within(2)];
  const finest = Math.max(Math.min(...voxelEdges(background.affine)), kFinestMm);
  return displayGrid([x[0], y[0], z[0]], [x[1], y[1], z[1]], finest);
}

// background: what the maps lie on, wherever it lies itself.
export function imagesOn(mask: VoxelMask, background: Image, labels: Image | null): RunImages {
  const grid = gridFor(background, mask);
  return {
    mask,
    grid,
    grey: greyLevels(resampled(background, grid)),
    placeOf: nearestOf({ ...mask.grid, data: mask.placeOf }, grid),
    labelOf: labels === null ? null : labelsOfPlaces(labels, mask),
  };
}

export async function loadImages(data: ReadyData, server: Server): Promise<RunImages> {
  const [cells, background, labels] = await Promise.all([
    server.binary("/api/explore/voxels"),
    imageFrom(server, data.hasAnatomy ? "anatomy" : "mean"),
    data.hasLabels ? imageFrom(server, "labels") : null,
  ]);
  return imagesOn(new VoxelMask(data.grid, new Uint32Array(cells)), background, labels);
}

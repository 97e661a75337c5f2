// The maps of a test over participants, from their images.
import { readNifti } from "../explore/image_file";
import type { Image } from "../explore/resampling";
import { addressOf, within } from "../files/file_chooser";
import { isSameGrid, pCodes } from "../maps/image_values";
import type { MapNumbers, SavedMap, SavedMaps, Underlay } from "../maps/saved_map";
import type { Server } from "../server";
import type { GroupCell, GroupData } from "./result_data";

// Which images are maps, the first first, and what they are called.
const kShown: Readonly<Record<string, string>> = {
  t: "t of the contrast",
  z: "z of the contrast",
  effect: "the contrast's estimate",
};
const kP = "p"; // -log10 of the p of each voxel by itself
const kTested = "t"; // has a value where something was tested
const kNoUnderlay = "the voxels that were tested: no image of a brain is kept with tests";

interface GroupMap extends SavedMap {
  readonly file: string;
  readonly cell: GroupCell;
}

function fileOf({ images }: GroupCell, what: string): string | undefined {
  return images.find((image) => image.what === what)?.file;
}

function mapsOf(cell: GroupCell): GroupMap[] {
  return Object.entries(kShown).flatMap(([type, name]) => {
    const file = fileOf(cell, type);
    if (file === undefined) return [];
    const thresholds = type === kTested ? cell.thresholds : [];
    const { positive, negative } = cell;
    const info = { type, name, hasThresholds: thresholds.length > 0, positive, negative };
    return [{ of: cell.title, condition: "", info, thresholds, file, cell }];
  });
}

export class GroupMaps implements SavedMaps {
  readonly title: string;
  readonly maps: readonly GroupMap[];
  readonly hasDirections = false;

  constructor(
    private readonly server: Server,
    private readonly group: GroupData,
  ) {
    this.title = `Test ${group.test}`;
    this.maps = group.cells.flatMap(mapsOf);
  }

  async numbersOf(wanted: SavedMap): Promise<MapNumbers> {
    const { file, cell } = wanted as GroupMap;
    const pFile = fileOf(cell, kP);
    const [map, tested, p] = await Promise.all([
      this.image(file),
      this.image(fileOf(cell, kTested) ?? file),
      pFile === undefined ? null : this.image(pFile),
    ]);
    if (!isSameGrid(map, tested) || (p !== null && !isSameGrid(map, p)))
      throw new RangeError(`The images beside ${file} have another grid.`);
    return {
      grid: { size: map.size, affine: map.affine },
      inside: (cellIndex) => Number.isFinite(tested.data[cellIndex]),
      values: counting(map.data, cell.negative === null),
      p: p === null ? null : pCodes(p.data),
      direction: null,
      reference: null,
    };
  }

  underlay(): Promise<Underlay> {
    return Promise.resolve({ image: null, words: kNoUnderlay });
  }

  private async image(file: string): Promise<Image> {
    return readNifti(await this.server.binary(addressOf(within(this.group, file))));
  }
}

// Of a test of one side, values below 0 count for nothing: none is shown.
function counting(data: ArrayLike<number>, isOneSided: boolean): Float32Array {
  return Float32Array.from(data, (value) => (isOneSided && value < 0 ? NaN : value));
}

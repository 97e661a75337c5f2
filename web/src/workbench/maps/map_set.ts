// The maps of a file .tav, as the program packs them.
import { readNifti } from "../explore/image_file";
import { codedOf, packedHeader, type ArrayHeader, type ReplyThreshold } from "../explore/maps_reply";
import type { Image } from "../explore/resampling";
import type { VoxelGrid } from "../explore/voxel_mask";
import { query, type Place } from "../files/file_chooser";
import type { Server } from "../server";
import type { MapNumbers, SavedMap, SavedMaps, Underlay } from "./saved_map";

interface SetMap {
  readonly type: string; // joins it with its array
  readonly name: string;
  readonly kind: string | null;
  readonly positive: string;
  readonly negative: string | null;
  readonly thresholds: readonly ReplyThreshold[];
  readonly lower: number;
}

interface SetHeader {
  readonly grid: VoxelGrid;
  readonly voxels: number;
  readonly maps: readonly SetMap[];
  readonly arrays: readonly ArrayHeader[];
}

interface MapOfSet extends SavedMap {
  readonly values: Float32Array;
}

// "faces: dTAV" is dTAV of the condition faces.
function conditionOf({ name, kind }: SetMap): string {
  return kind === null ? "" : name.slice(0, name.lastIndexOf(": "));
}

function mapOf(reply: ArrayBuffer, { arrays, voxels }: SetHeader, of: string, map: SetMap): MapOfSet[] {
  const array = arrays.find(({ type }) => type === map.type);
  const raw = array === undefined ? null : codedOf(reply, array, voxels).raw;
  if (!(raw instanceof Float32Array)) return [];
  const { name, kind, positive, negative, thresholds, lower } = map;
  const condition = conditionOf(map);
  const own = condition === "" ? name : name.slice(condition.length + 2);
  const info = { type: kind ?? name, name: own, hasThresholds: thresholds.length > 0, positive, negative };
  return [{ of, condition, info, thresholds, from: lower, values: raw }];
}

function nameOf({ path }: Place): string {
  return path.split("/").at(-1) ?? path;
}

const kNoAnatomy = "the voxels that have values: there is no anatomy";

// A set lies where its host says: an image of its size has its voxels, whatever that image's own affine says.
export function onGridOf(grid: VoxelGrid, image: Image): Image {
  const isSameSize = image.size.every((count, axis) => count === grid.size[axis]);
  return isSameSize ? { ...image, affine: grid.affine } : image;
}

export class MapSet implements SavedMaps {
  readonly title: string;
  readonly maps: readonly MapOfSet[];
  readonly hasDirections = false;
  private readonly grid: VoxelGrid;
  private readonly looked: Uint8Array; // [cell]: 1 where some map has a value

  // anatomy: reads what the maps lie on; null: there is none.
  constructor(
    reply: ArrayBuffer,
    place: Place,
    private readonly anatomy: (() => Promise<Image>) | null,
  ) {
    const header = packedHeader(reply) as SetHeader;
    this.title = nameOf(place);
    this.grid = header.grid;
    this.maps = header.maps.flatMap((map) => mapOf(reply, header, nameOf(place), map));
    this.looked = new Uint8Array(header.voxels);
    for (const { values } of this.maps)
      values.forEach((value, cell) => {
        if (Number.isFinite(value) && value !== 0) this.looked[cell] = 1;
      });
  }

  numbersOf(map: SavedMap): Promise<MapNumbers> {
    const { values } = map as MapOfSet;
    const inside = (cell: number): boolean => this.looked[cell] === 1;
    return Promise.resolve({ grid: this.grid, inside, values, p: null, direction: null, reference: null });
  }

  async underlay(grid: VoxelGrid): Promise<Underlay> {
    if (this.anatomy === null) return { image: null, words: kNoAnatomy };
    return { image: onGridOf(grid, await this.anatomy()), words: "the anatomy of the session" };
  }
}

export async function readMapSet(server: Server, place: Place, anatomy: string | null): Promise<MapSet> {
  const reply = await server.binary(`/api/maps?${query(place)}`);
  const read = async (): Promise<Image> => readNifti(await server.binary(anatomy ?? ""));
  return new MapSet(reply, place, anatomy === null ? null : read);
}

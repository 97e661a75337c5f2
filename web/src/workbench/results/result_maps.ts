// The maps of a request's results, from their images.
import { addressOf, within, type Place } from "../files/file_chooser";
import { readNifti } from "../explore/image_file";
import type { Image } from "../explore/resampling";
import { bytesOf, isSameGrid, pCodes, placesOfCode } from "../maps/image_values";
import type { MapNumbers, SavedMap, SavedMaps, Underlay } from "../maps/saved_map";
import type { Server } from "../server";
import type { ConditionData, MapData, ReferenceData, RequestData } from "./result_data";

const kInsideReference = 4; // codes of status images
const kOutside = 0;
const kWithDirection = "DTAV";
const kNoUnderlay = "the voxels that were looked at: no image of the brain was kept, or it may not be read";

interface ResultMap extends SavedMap {
  readonly map: MapData;
  readonly at: ConditionData;
}

interface UnderlayPlace extends Place {
  readonly words: string;
}

function savedMap({ name: of }: ReferenceData, at: ConditionData, map: MapData): ResultMap {
  // The program compared 32-bit values with it.
  const thresholds = map.thresholds.map((each) => ({
    ...each,
    threshold: each.threshold === null ? null : Math.fround(each.threshold),
  }));
  const { type, unit, positive, negative } = map;
  const name = `${type}: ${map.title}`;
  const info = { type, name, hasThresholds: thresholds.length > 0, unit, positive, negative };
  return { of, condition: at.name, info, thresholds, map, at };
}

export class ResultMaps implements SavedMaps {
  readonly title: string;
  readonly maps: readonly ResultMap[];
  readonly hasDirections: boolean;

  constructor(
    private readonly server: Server,
    private readonly request: RequestData,
  ) {
    this.title = `Maps of ${request.name}`;
    this.maps = request.references.flatMap((reference) =>
      reference.conditions.flatMap((at) => at.maps.map((map) => savedMap(reference, at, map))),
    );
    this.hasDirections = this.maps.some(({ at }) => at.directionFile !== null);
  }

  async numbersOf(wanted: SavedMap): Promise<MapNumbers> {
    const { map, at } = wanted as ResultMap;
    const direction = map.type === kWithDirection ? at.directionFile : null;
    const [effect, status, p, directions] = await Promise.all([
      this.image(map.file),
      this.image(at.statusFile),
      map.pFile === null ? null : this.image(map.pFile),
      direction === null ? null : this.image(direction),
    ]);
    for (const other of [status, p, directions])
      if (other !== null && !isSameGrid(effect, other))
        throw new RangeError(`The images beside ${map.file} have another grid.`);
    return {
      grid: { size: effect.size, affine: effect.affine },
      inside: (cell) => status.data[cell] !== kOutside,
      values: Float32Array.from(effect.data),
      p: p === null ? null : pCodes(p.data),
      direction: directions === null ? null : bytesOf(directions),
      reference: placesOfCode(status, kInsideReference),
    };
  }

  // The first that can be read.
  async underlay(): Promise<Underlay> {
    const { folder, path, name } = this.request;
    const query = new URLSearchParams({ folder, path, name }).toString();
    const address = `/api/results/underlays?${query}`;
    const { underlays } = await this.server.get<{ underlays: UnderlayPlace[] }>(address);
    for (const place of underlays) {
      try {
        return { image: await this.read(place), words: place.words };
      } catch {
        // The next one will do; none is said.
      }
    }
    return { image: null, words: kNoUnderlay };
  }

  private image(file: string): Promise<Image> {
    return this.read(within(this.request, file));
  }

  private async read(place: Place): Promise<Image> {
    return readNifti(await this.server.binary(addressOf(place)));
  }
}

// What is on the screen as one page that stands alone: the viewer of reports with this map.
import type { GridData, MapData, PageData, ViewData } from "../../../data/page_data";
import { millimetres, voxelOf } from "../../../data/grid";
import { levelFull } from "../colour_range";
import { infoOf } from "../map_view";
import type { Explorer } from "../explorer";
import { valueAt, type ReplyMap } from "../maps_reply";
import { placesOf, referenceWords } from "../reference";
import { badgeOf } from "../state_words";
import { thresholdWords } from "../threshold_choice";
import { coded, codedP, kProbability, packed } from "./codes";
import { sceneHtml } from "./scene_html";
import { storedCells, uprightGrid } from "./upright";

interface Volumes {
  readonly texts: Map<string, string>;
  readonly add: (id: string, bytes: Uint8Array<ArrayBuffer>) => Promise<void>;
}

function volumes(): Volumes {
  const texts = new Map<string, string>();
  const add = async (id: string, bytes: Uint8Array<ArrayBuffer>): Promise<void> => {
    texts.set(id, await packed(bytes));
  };
  return { texts, add };
}

// The grey level at each voxel of the maps' grid, from the brain that is drawn.
function underlayOn(grid: GridData, { images }: Explorer): Uint8Array<ArrayBuffer> {
  const [nx, ny, nz] = images.grid.size;
  const { edgeMm, affine } = images.grid;
  const count = grid.size[0] * grid.size[1] * grid.size[2];
  return Uint8Array.from({ length: count }, (_, n) => {
    const mm = millimetres(grid.affine, voxelOf(grid.size, n));
    const [i, j, k] = mm.map((c, axis) => Math.round((c - (affine[axis]?.[3] ?? 0)) / edgeMm)) as [
      number,
      number,
      number,
    ];
    const inside = i >= 0 && j >= 0 && k >= 0 && i < nx && j < ny && k < nz;
    return inside ? (images.grey[i + nx * (j + ny * k)] ?? 0) : 0;
  });
}

async function addMap(
  map: ReplyMap,
  places: readonly number[],
  store: Volumes,
): Promise<Pick<MapData, "effect" | "p">> {
  const { bytes, effect } = coded(places.map((place) => valueAt(map.values, place)));
  await store.add("vol-effect", bytes);
  const { p } = map;
  if (p === null) return { effect: { id: "vol-effect", ...effect }, p: null };
  await store.add("vol-p", codedP(Uint8Array.from(places, (place) => p[place] ?? 255)));
  return { effect: { id: "vol-effect", ...effect }, p: { id: "vol-p", ...kProbability } };
}

interface Placed {
  readonly grid: GridData;
  readonly placeAt: readonly number[]; // of each voxel of the upright grid, -1: outside the mask
  readonly places: readonly number[]; // of those inside, in the grid's order
}

function placedUpright({ mask }: Explorer["images"]): Placed {
  const grid = uprightGrid(mask.grid);
  const placeAt = Array.from(storedCells(grid, mask.grid.size), (cell) => mask.placeOf[cell] ?? -1);
  return { grid, placeAt, places: placeAt.filter((place) => place >= 0) };
}

async function addPlaces({ placeAt, grid }: Placed, explorer: Explorer, store: Volumes): Promise<void> {
  const { images } = explorer;
  const region = new Set(placesOf(explorer.store.now.reference, images.mask, images.labelOf));
  await store.add(
    "vol-mask",
    Uint8Array.from(placeAt, (place) => (place < 0 ? 0 : 1)),
  );
  await store.add("vol-underlay", underlayOn(grid, explorer));
  await store.add(
    "vol-region",
    Uint8Array.from(placeAt, (place) => (region.has(place) ? 1 : 0)),
  );
}

async function directionOf(
  { direction }: ReplyMap,
  { places }: Placed,
  store: Volumes,
): Promise<string | null> {
  if (direction === null) return null;
  await store.add(
    "vol-direction",
    Uint8Array.from(places, (place) => direction[place] ?? 0),
  );
  return "vol-direction";
}

async function mapOf(explorer: Explorer, map: ReplyMap, placed: Placed, store: Volumes): Promise<MapData> {
  const info = infoOf(explorer, map.type);
  return {
    kind: map.type,
    title: info.name.startsWith(map.type) ? info.name : `${map.type}: ${info.name}`,
    unit: info.unit ?? "",
    positive: info.positive ?? "",
    negative: (info.negative ?? "") === "" ? null : (info.negative ?? null),
    ...(await addMap(map, placed.places, store)),
    thresholds: map.thresholds.map(({ q, threshold }) => ({ q, value: threshold })),
    fullColour: levelFull(map, false),
  };
}

async function pageData(explorer: Explorer, map: ReplyMap, store: Volumes): Promise<PageData> {
  const placed = placedUpright(explorer.images);
  const { reference, condition } = explorer.store.now;
  await addPlaces(placed, explorer, store);
  const view: ViewData = {
    id: "scene",
    reference: referenceWords(reference, explorer.data.labels),
    condition,
    region: "vol-region",
    direction: await directionOf(map, placed, store),
    maps: [await mapOf(explorer, map, placed, store)],
  };
  const underlayName = explorer.data.hasAnatomy ? "the anatomy" : "the mean of the run";
  const volumeNames = { mask: "vol-mask", underlay: "vol-underlay" };
  return { format: 1, grid: placed.grid, ...volumeNames, underlayName, views: [view], charts: {} };
}

// script, style: those of reports. Rejects when there is no map.
export async function sceneOf(explorer: Explorer, script: string, style: string): Promise<string> {
  const { maps, type, choice, condition, reference } = explorer.store.now;
  const map = maps?.maps.get(type);
  if (map === undefined) throw new Error("There is no map to save yet.");
  const store = volumes();
  const data = await pageData(explorer, map, store);
  const badge = badgeOf(maps, explorer.store.now.settings.draws ?? explorer.data.settings.draws);
  const lines = [
    `Reference: ${referenceWords(reference, explorer.data.labels)}. Condition: ${condition}.`,
    `${thresholdWords(choice, map, infoOf(explorer, type))}. ${badge.words}.`,
  ];
  return sceneHtml({ title: `${type}, ${condition}`, lines, data, volumes: store.texts, script, style });
}

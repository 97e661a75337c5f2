// What the page itself knows about the voxel under the crosshair, in the words of reports.
import { plain, probability, signed, withUnit } from "../../viewer/numbers";
import { directionWords, type Line } from "../../viewer/readout";
import type { MapInfo } from "./explore_data";
import { kUnknownP, valueAt, type ReplyMap } from "./maps_reply";
import type { ViewedData, ViewState } from "./map_view";
import type { RunImages } from "./run_images";
import { levelOf } from "./threshold_choice";

function signWords(info: MapInfo, value: number): string {
  if ((info.negative ?? "") === "" || value === 0) return "";
  return value > 0 ? ` (positive: ${info.positive ?? ""})` : ` (negative: ${info.negative ?? ""})`;
}

const kDecimals = 4;

function valueText(info: MapInfo, value: number): string {
  if (Number.isNaN(value)) return "none here";
  const shown = (info.negative ?? "") === "" ? plain(value, kDecimals) : signed(value, kDecimals);
  return withUnit(shown, info.unit ?? "") + signWords(info, value);
}

function mapLines(map: ReplyMap, info: MapInfo, place: number, level: number): Line[] {
  const value = valueAt(map.values, place);
  const lines = [
    { name: info.type, text: valueText(info, value) },
    { name: "Threshold", text: Math.abs(value) >= level ? "reached" : "not reached" },
  ];
  const code = map.p?.[place] ?? kUnknownP;
  if (code !== kUnknownP) lines.push({ name: "p", text: `about ${probability(code / 10)}` });
  const direction = map.direction?.[place];
  if (direction !== undefined) lines.push({ name: "Direction", text: directionWords(direction) });
  return lines;
}

function labelText(data: ViewedData, images: RunImages, place: number): string {
  const id = images.labelOf?.[place] ?? 0;
  return data.labels.find((label) => label.id === id)?.name ?? "none";
}

export function readoutLines(data: ViewedData, images: RunImages, state: ViewState): Line[] {
  const { crosshair, maps, type, choice } = state;
  const place = images.mask.placeAt(crosshair);
  const mm = crosshair.map((c) => plain(c, 1)).join(", ");
  const lines: Line[] = [{ name: "Place (x, y, z)", text: `${mm} mm` }];
  if (place < 0) return [...lines, { name: "Voxel", text: "outside the mask" }];
  if (data.hasLabels) lines.push({ name: "Label", text: labelText(data, images, place) });
  const map = maps?.maps.get(type);
  const info = data.maps.find((each) => each.type === type);
  if (map === undefined || info === undefined) return lines;
  return [...lines, ...mapLines(map, info, place, levelOf(choice, map))];
}

// The colour of every voxel of the mask: the value as colour, its significance as opacity, as in reports.
import { colourOf } from "../../viewer/colour_scale";
import { kFaint, kNotSupported } from "../../viewer/overlay";
import { kMostBelow } from "../../viewer/threshold";
import { kUnknownP, valueAt, type ReplyMap } from "./maps_reply";

export interface TintOptions {
  readonly level: number; // magnitude from which voxels count; Infinity: none
  readonly full: number; // magnitude at which the colour is full
  readonly hideBelow: boolean;
  readonly faintUnsupported: boolean;
  readonly bySize?: boolean; // there is no threshold: opacity follows the size alone, up to the full colour
}

const kShades = 256;

// Red in the lowest byte, opacity left out: negative values first, then 0 and positive ones.
function shades(): Uint32Array {
  return Uint32Array.from({ length: 2 * kShades }, (_, n) => {
    const share = (n % kShades) / (kShades - 1);
    const [red, green, blue] = colourOf(n < kShades ? -Math.max(share, 1e-9) : share, 1).map(Math.round);
    return (red ?? 0) | ((green ?? 0) << 8) | ((blue ?? 0) << 16);
  });
}

const kColours = shades();

function colourFor(value: number, full: number): number {
  const share = Math.min(Math.abs(value) / full, 1);
  return kColours[(value < 0 ? 0 : kShades) + Math.round(share * (kShades - 1))] ?? 0;
}

// The largest p among voxels that count, as -10 log10; NaN without p or such voxels.
export function weakestCode({ values, p }: ReplyMap, level: number): number {
  if (p === null) return NaN;
  let weakest = Infinity;
  for (let n = 0; n < p.length; ++n) {
    const code = p[n] ?? kUnknownP;
    if (code < weakest && code !== kUnknownP && Math.abs(valueAt(values, n)) >= level) weakest = code;
  }
  return Number.isFinite(weakest) ? weakest : NaN;
}

const kUsualCode = 30; // p = 0.001: what fading is measured by where no voxel counts

function faded(share: number): number {
  const kept = Math.min(Math.max(share, 0), 1);
  return kMostBelow * kept * kept;
}

// The opacity of a voxel that does not count.
function below(map: ReplyMap, options: TintOptions): (value: number, place: number) => number {
  const { p } = map;
  if (options.bySize === true) return (value) => Math.min(value / options.full, 1);
  if (options.hideBelow) return () => 0;
  if (p === null) {
    const level = Number.isFinite(options.level) ? options.level : options.full;
    return (value) => faded(value / level);
  }
  const known = weakestCode(map, options.level);
  const code = Math.max(Number.isNaN(known) ? kUsualCode : known, 1);
  return (_, place) => (p[place] === kUnknownP ? 0 : faded((p[place] ?? 0) / code));
}

// Fills `out`, one 32-bit RGBA word per voxel of the mask (little endian: red first in memory).
export function tint(map: ReplyMap, options: TintOptions, out: Uint32Array): void {
  const { values, direction } = map;
  const fade = below(map, options);
  for (let n = 0; n < out.length; ++n) {
    const value = valueAt(values, n);
    const size = Math.abs(value);
    let opacity = Number.isNaN(value) || size === 0 ? 0 : size >= options.level ? 1 : fade(size, n);
    if (options.faintUnsupported && direction?.[n] === kNotSupported) opacity *= kFaint;
    out[n] = colourFor(value, options.full) | (Math.round(opacity * 255) << 24);
  }
}

const kCyan = 0xffff00; // red in the lowest byte
const kRegionOpacity = 200;

export function paintRegion(places: readonly number[], out: Uint32Array): void {
  for (const place of places) {
    if (place >= 0) out[place] = kCyan | (kRegionOpacity << 24);
  }
}

const kFullShare = 0.998;
const kSampled = 20_000;

// The magnitude that few voxels exceed, from a sample; 1 for a map of zeros.
export function fullColourOf({ values }: ReplyMap): number {
  const count = values.raw.length;
  const stride = Math.max(Math.floor(count / kSampled), 1);
  const some: number[] = [];
  for (let n = 0; n < count; n += stride) {
    const value = Math.abs(valueAt(values, n));
    if (!Number.isNaN(value)) some.push(value);
  }
  some.sort((a, b) => a - b);
  const full = some[Math.floor(kFullShare * (some.length - 1))] ?? 0;
  return full > 0 ? full : 1;
}

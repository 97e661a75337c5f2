// From the numbers of images to those of maps.
import { kUnknownP } from "../explore/maps_reply";
import type { Image } from "../explore/resampling";

const kMostCode = 254;

// minusLog: -log10 of p; NaN: none.
export function pCodes(minusLog: ArrayLike<number>): Uint8Array {
  return Uint8Array.from({ length: minusLog.length }, (_, n) => {
    const value = minusLog[n] ?? NaN;
    return Number.isNaN(value) ? kUnknownP : Math.round(Math.min(Math.max(10 * value, 0), kMostCode));
  });
}

// 1 where the image has this code.
export function placesOfCode({ data }: Image, code: number): Uint8Array {
  return Uint8Array.from({ length: data.length }, (_, n) => (data[n] === code ? 1 : 0));
}

export function bytesOf({ data }: Image): Uint8Array {
  return Uint8Array.from(data);
}

export function isSameGrid(a: Pick<Image, "size" | "affine">, b: Pick<Image, "size" | "affine">): boolean {
  const near = (one: number, other: number): boolean => Math.abs(one - other) < 1e-3;
  return (
    a.size.every((count, axis) => count === b.size[axis]) &&
    [0, 1, 2].every((r) => [0, 1, 2, 3].every((c) => near(a.affine[r]?.[c] ?? 0, b.affine[r]?.[c] ?? 0)))
  );
}

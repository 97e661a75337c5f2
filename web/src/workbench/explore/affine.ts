// Matrices between voxels and millimetres.
import type { AffineRows, Triple } from "../../data/page_data";

// Three rows of four.
export type Matrix = readonly [number[], number[], number[]];

function rowsOf(affine: AffineRows): Matrix {
  const row = (n: number): number[] => [0, 1, 2, 3].map((c) => affine[n]?.[c] ?? 0);
  return [row(0), row(1), row(2)];
}

export function applied(matrix: AffineRows, [x, y, z]: Triple): Triple {
  const along = (n: number): number => {
    const [a = 0, b = 0, c = 0, d = 0] = matrix[n] ?? [];
    return a * x + b * y + c * z + d;
  };
  return [along(0), along(1), along(2)];
}

// The matrix that takes millimetres back to voxels. Throws RangeError where there is none.
export function inverse(affine: AffineRows): Matrix {
  const m = rowsOf(affine);
  const at = (r: number, c: number): number => m[r % 3]?.[c % 3] ?? 0;
  const minor = (r: number, c: number): number =>
    at(r + 1, c + 1) * at(r + 2, c + 2) - at(r + 1, c + 2) * at(r + 2, c + 1);
  const determinant = at(0, 0) * minor(0, 0) + at(0, 1) * minor(0, 1) + at(0, 2) * minor(0, 2);
  if (!(Math.abs(determinant) > 1e-12)) throw new RangeError("The affine of the image has no inverse.");
  const row = (n: number): number[] => [0, 1, 2].map((r) => minor(r, n) / determinant);
  const linear = [row(0), row(1), row(2)];
  const origin: Triple = [m[0][3] ?? 0, m[1][3] ?? 0, m[2][3] ?? 0];
  const shift = applied(linear, origin);
  const whole = (n: 0 | 1 | 2): number[] => [...(linear[n] ?? []), -shift[n]];
  return [whole(0), whole(1), whole(2)];
}

// Corners of the grid's outermost voxels, in millimetres: lowest and highest of each axis.
export function boxOf(size: Triple, affine: AffineRows): readonly [Triple, Triple] {
  const corners = [0, 1, 2, 3, 4, 5, 6, 7].map((n) =>
    applied(affine, [
      n & 1 ? size[0] - 0.5 : -0.5,
      n & 2 ? size[1] - 0.5 : -0.5,
      n & 4 ? size[2] - 0.5 : -0.5,
    ]),
  );
  const each = (pick: (...all: number[]) => number): Triple => {
    const of = (axis: 0 | 1 | 2): number => pick(...corners.map((corner) => corner[axis]));
    return [of(0), of(1), of(2)];
  };
  return [each(Math.min), each(Math.max)];
}

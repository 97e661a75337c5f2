import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { clampVoxel, millimetres, offsetOf, storedVoxel, voxelEdges, voxelOf } from "../src/data/grid";
import type { Triple } from "../src/data/page_data";
import { planeSize, scaleFor } from "../src/viewer/layout";
import { kAxial, kCoronal, kPlanes, kSagittal, pixelOf, voxelAt, type Plane } from "../src/viewer/planes";
import { kUnturned } from "./maps";
import { eachPixel, outline, slicePixels } from "../src/viewer/slice_pixels";

const size: Triple = [4, 5, 6];
// Both put i = 0 on the patient's left; one file was stored mirrored, which the page's grid no longer is.
const positive = [
  [2, 0, 0, -3],
  [0, 3, 0, -6],
  [0, 0, 4, -10],
];
const oblique = [
  [1.6, 1.2, 0, -3],
  [-1.2, 1.6, 0, 0],
  [0, 0, 2, 0],
];
const mirrored = positive.map((row, n) => (n === 0 ? [-2, 0, 0, 3] : row));

function at(plane: Plane, column: number, row: number): Triple {
  return voxelAt(plane, size, [1, 2, 3], { column, row });
}

describe("planes", () => {
  it("show i = 0 on the left, the front and the top at the top", () => {
    assert.deepEqual(at(kAxial, 0, 0), [0, 4, 3]);
    assert.deepEqual(at(kAxial, 3, 4), [3, 0, 3]);
    assert.deepEqual(at(kCoronal, 0, 0), [0, 2, 5]);
    assert.deepEqual(at(kCoronal, 3, 5), [3, 2, 0]);
  });

  it("show the back on the left of the sagittal slice", () => {
    assert.deepEqual(at(kSagittal, 0, 0), [1, 0, 5]);
    assert.deepEqual(at(kSagittal, 4, 5), [1, 4, 0]);
  });

  it("name the sides that they show", () => {
    assert.deepEqual(kAxial.letters, { left: "L", right: "R", top: "A", bottom: "P" });
    assert.deepEqual(kCoronal.letters, { left: "L", right: "R", top: "S", bottom: "I" });
    assert.deepEqual(kSagittal.letters, { left: "P", right: "A", top: "S", bottom: "I" });
  });

  it("find the pixel of a voxel and back", () => {
    for (const plane of kPlanes) {
      const voxel: Triple = [3, 1, 4];
      assert.deepEqual(voxelAt(plane, size, voxel, pixelOf(plane, size, voxel)), voxel);
    }
  });
});

describe("millimetres", () => {
  it("grow to the right where i does", () => {
    assert.deepEqual(millimetres(positive, [0, 0, 0]), [-3, -6, -10]);
    assert.deepEqual(millimetres(positive, at(kAxial, 3, 0)), [3, 6, 2]);
  });

  it("follow the affine, whatever the sign of its determinant", () => {
    assert.deepEqual(millimetres(mirrored, [0, 0, 0]), [3, -6, -10]);
    assert.deepEqual(millimetres(mirrored, [3, 1, 1]), [-3, -3, -6]);
  });

  it("follow oblique axes", () => {
    const [x, y, z] = millimetres(oblique, [1, 2, 3]);
    assert.ok(Math.abs(x - 1) < 1e-12 && Math.abs(y - 2) < 1e-12 && z === 6);
    assert.deepEqual(
      voxelEdges(oblique).map((edge) => Math.round(edge * 1e9) / 1e9),
      [2, 2, 2],
    );
    assert.deepEqual(voxelEdges(mirrored), [2, 3, 4]);
  });
});

describe("voxels", () => {
  it("lie in memory with i fastest", () => {
    assert.equal(offsetOf(size, [1, 2, 3]), 1 + 4 * (2 + 5 * 3));
    assert.deepEqual(voxelOf(size, offsetOf(size, [3, 0, 5])), [3, 0, 5]);
  });

  it("stay within the grid", () => {
    assert.deepEqual(clampVoxel(size, [-1, 9, 2.4]), [0, 4, 2]);
  });
});

describe("slices", () => {
  it("visit the voxel that each pixel shows", () => {
    for (const plane of kPlanes) {
      eachPixel(plane, size, [1, 2, 3], (offset, column, row) => {
        assert.equal(offset, offsetOf(size, at(plane, column, row)));
      });
    }
  });

  it("paint a voxel on the left into the left column, in front into the top row", () => {
    const bright = offsetOf(size, [0, 4, 3]);
    const pixels = slicePixels(kAxial, size, [1, 2, 3], (offset, to, from) => {
      to[from] = offset === bright ? 255 : 0;
    });
    assert.equal(pixels.indexOf(255), 0);
    assert.equal(pixels.lastIndexOf(255), 0);
    assert.equal(pixels.length, 4 * 4 * 5);
  });

  it("outline a single voxel by its four edges, also at the border", () => {
    const region = new Uint8Array(4 * 5 * 6);
    region[offsetOf(size, [0, 4, 3])] = 1;
    const edges = outline(kAxial, size, [1, 2, 3], region).map(String).sort();
    assert.deepEqual(edges, ["0,0,0,1", "0,0,1,0", "0,1,1,1", "1,0,1,1"]);
    assert.deepEqual(outline(kAxial, size, [1, 2, 2], region), []);
  });
});

describe("the layout", () => {
  const grid = {
    size: [60, 72, 60] as const,
    affine: [
      [3, 0, 0, 0],
      [0, 3, 0, 0],
      [0, 0, 3, 0],
    ],
    stored: kUnturned,
  };

  it("fits three planes into a wide row and two into a narrow one", () => {
    const widths = (scale: number): number[] => kPlanes.map((plane) => planeSize(plane, grid, scale)[0]);
    const [a = 0, b = 0, c = 0] = widths(scaleFor(grid, 900));
    assert.ok(a + b + c + 16 <= 900 && a + b + c > 850);
    const [axial = 0, coronal = 0] = widths(scaleFor(grid, 350));
    assert.ok(axial + coronal + 8 <= 350 && axial + coronal > 300);
  });
});

describe("the image's own indices", () => {
  it("follow turned and permuted axes", () => {
    const grid = {
      size: [4, 5, 6] as const,
      affine: [],
      stored: [
        { axis: 2, reversed: false },
        { axis: 0, reversed: true },
        { axis: 1, reversed: false },
      ] as const,
    };
    assert.deepEqual(storedVoxel(grid, [0, 1, 2]), [2, 3, 1]);
    assert.deepEqual(storedVoxel(grid, [3, 4, 5]), [5, 0, 4]);
  });
});

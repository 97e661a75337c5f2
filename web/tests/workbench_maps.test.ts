import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { tint } from "../src/workbench/explore/tint";
import { isSameGrid, pCodes } from "../src/workbench/maps/image_values";
import { nearest } from "../src/workbench/maps/map_choice";
import { cellsInside, drawnOn, suits } from "../src/workbench/maps/map_images";
import { MapScene } from "../src/workbench/maps/map_scene";
import { MapSet, onGridOf } from "../src/workbench/maps/map_set";
import type { MapNumbers, SavedMap } from "../src/workbench/maps/saved_map";
import { ResultMaps } from "../src/workbench/results/result_maps";
import type { MapData, RequestData } from "../src/workbench/results/result_data";
import type { Server } from "../src/workbench/server";
import { kIdentity } from "./workbench_grids";

const kGrid = { size: [2, 2, 1], affine: kIdentity } as const;

function saved(of: string, condition: string, type: string, qs: readonly number[] = [0.05]): SavedMap {
  const thresholds = qs.map((q) => ({ q, threshold: 10 * q }));
  return { of, condition, info: { type, name: type, hasThresholds: qs.length > 0 }, thresholds };
}

const kNumbers: MapNumbers = {
  grid: kGrid,
  inside: (cell) => cell !== 1,
  values: Float32Array.of(1, 99, -2, 4),
  p: Uint8Array.of(10, 0, 20, 255),
  direction: null,
  reference: Uint8Array.of(0, 0, 0, 1),
};

describe("a map without a threshold", () => {
  it("is as opaque as its values are large", () => {
    const values = { raw: Float32Array.of(0, 1, -2, 8), scale: 1, missing: NaN };
    const map = { type: "DTAV", values, p: null, direction: null, thresholds: [] };
    const out = new Uint32Array(4);
    const options = { level: Infinity, full: 4, hideBelow: true, faintUnsupported: false, bySize: true };
    tint(map, options, out);
    assert.deepEqual(
      Array.from(out, (word) => word >>> 24),
      [0, 64, 128, 255],
    );
  });
});

describe("p of images", () => {
  it("are codes of tenths of -log10, none where the image has none", () => {
    assert.deepEqual(pCodes([0, 1.26, 3, 99, NaN, -1]), Uint8Array.of(0, 13, 30, 254, 255, 0));
  });
});

describe("saved maps", () => {
  const images = drawnOn(kGrid, cellsInside(kNumbers), { image: null, words: "none" });
  const [first, other] = [saved("V1", "rest", "DTAV"), saved("V1", "rest", "DTAV_RC", [])];
  const scene = new MapScene([first, other], images, { map: first, numbers: kNumbers }, null);
  const shown = (): readonly number[] =>
    Array.from(scene.store.now.maps?.maps.get(scene.store.now.type)?.values.raw ?? []);

  it("have the values of the cells that were looked at", () => {
    assert.deepEqual(shown(), [1, -2, 4]);
  });
  it("find nothing in the reference", () => {
    assert.deepEqual(
      [0, 1, 2].map((place) => scene.isFinding(place)),
      [true, true, false],
    );
  });
  it("are drawn on dim voxels where there is no brain", () => {
    assert.ok(Math.max(...images.grey) > 20 && Math.max(...images.grey) < 100);
  });
  it("suit images of the same grid and the same cells alone", () => {
    const { cells } = images.mask;
    assert.ok(suits(images, { ...kGrid }, Uint32Array.from(cells)));
    assert.ok(!suits(images, kGrid, Uint32Array.of(0, 1)));
    assert.ok(!suits(images, { ...kGrid, size: [4, 1, 1] }, cells));
  });
  it("take a value where there is no threshold, and the q again afterwards", () => {
    scene.store.change({ choice: { by: "q", q: 0.01 } });
    scene.show(other, kNumbers);
    assert.equal(scene.store.now.choice.by, "value");
    scene.show(first, kNumbers);
    assert.deepEqual(scene.store.now.choice, { by: "q", q: 0.01 });
  });
  it("keep a value that was chosen", () => {
    const choice = { by: "value", level: 3 } as const;
    scene.store.change({ choice });
    scene.show(other, kNumbers);
    scene.show(first, kNumbers);
    assert.deepEqual(scene.store.now.choice, choice);
  });
  it("are the nearest to what was shown when one part is chosen", () => {
    const maps = ["V1", "M1"].flatMap((of) =>
      ["rest", "task"].flatMap((at) => ["INST", "DTAV"].map((type) => saved(of, at, type))),
    );
    const [, , , now] = maps;
    assert.ok(now);
    assert.deepEqual([now.of, now.condition, now.info.name], ["V1", "task", "DTAV"]);
    assert.equal(nearest(maps, now, 0, "M1"), maps[7]);
    assert.equal(nearest(maps, now, 1, "rest"), maps[1]);
    assert.equal(nearest(maps, now, 2, "INST"), maps[2]);
  });
});

describe("results", () => {
  it("have the program's 32-bit thresholds, which a voxel of that value reaches", () => {
    const map: MapData = {
      label: "dTAV",
      type: "DTAV",
      title: "t",
      unit: "",
      positive: "a",
      negative: null,
      file: "f",
      pFile: null,
      peak: 0,
      peakMm: [0, 0, 0],
      peakLabel: "",
      thresholds: [
        { q: 0.01, threshold: null, passing: 0 },
        { q: 0.05, threshold: 21.629433, passing: 1 },
      ],
    };
    const at = {
      name: "rest",
      effectiveVolumes: 1,
      voxels: 1,
      statusFile: "s",
      directionFile: null,
      maps: [map],
    };
    const reference = {
      name: "V1",
      voxels: 1,
      record: "",
      order: 1,
      warnings: [],
      conditions: [at],
      files: [],
    };
    const request: RequestData = {
      folder: "data",
      path: "",
      name: "made",
      participant: "",
      report: null,
      references: [reference],
      failures: [],
    };
    const [found] = new ResultMaps({} as Server, request).maps;
    const thresholds = found?.thresholds.map(({ threshold }) => threshold);
    assert.deepEqual(thresholds, [null, Math.fround(21.629433)]);
    assert.ok(Math.fround(21.629433) < 21.629433, "a voxel of that value would not reach the double");
  });
});

describe("a map set", () => {
  const map = {
    type: "0",
    name: "faces: dTAV",
    kind: "DTAV",
    positive: "a",
    negative: "b",
    thresholds: [],
    lower: 2,
  };
  const array = { type: "0", what: "value", format: "float32", offset: 504, scale: 1 };
  const header = { grid: kGrid, voxels: 4, maps: [map], arrays: [array] };
  const reply = new ArrayBuffer(520);
  new DataView(reply).setUint32(0, 500, true);
  new Uint8Array(reply, 4, 500).set(new TextEncoder().encode(JSON.stringify(header).padEnd(500)));
  new Float32Array(reply, 504, 4).set([0, 5, NaN, -1]);
  const set = new MapSet(reply, { folder: "data", path: "a/b.tav" }, null);

  it("has its maps by condition and kind, shown from where the file shows them", () => {
    const [found] = set.maps;
    assert.deepEqual(
      [found?.of, found?.condition, found?.info.type, found?.info.name, found?.from],
      ["b.tav", "faces", "DTAV", "dTAV", 2],
    );
  });
  it("looks at cells that have a value", async () => {
    const [found] = set.maps;
    assert.ok(found);
    assert.deepEqual(cellsInside(await set.numbersOf(found)), Uint32Array.of(1, 3));
  });
  it("lies on an image of its size voxel by voxel, on others by millimetres", () => {
    const elsewhere = [[2, 0, 0, 9], ...kIdentity.slice(1)];
    const image = { size: [2, 2, 1] as const, affine: elsewhere as never, data: [1, 2, 3, 4] };
    assert.equal(onGridOf(kGrid, image).affine, kIdentity);
    assert.equal(onGridOf(kGrid, { ...image, size: [4, 1, 1] }).affine, elsewhere);
    assert.ok(!isSameGrid(image, kGrid));
    assert.ok(isSameGrid({ ...image, affine: kIdentity }, kGrid));
  });
});

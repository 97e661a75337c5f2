import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { decodeMaps, valueAt } from "../src/workbench/explore/maps_reply";

function reply(
  header: object,
  bodies: readonly (readonly [number, ArrayBufferView])[],
  bytes: number,
): ArrayBuffer {
  const buffer = new ArrayBuffer(bytes);
  const json = new TextEncoder().encode(JSON.stringify(header));
  new DataView(buffer).setUint32(0, json.length, true);
  new Uint8Array(buffer, 4, json.length).set(json);
  for (const [offset, { buffer: data, byteOffset, byteLength }] of bodies) {
    new Uint8Array(buffer, offset, byteLength).set(new Uint8Array(data, byteOffset, byteLength));
  }
  return buffer;
}

const kHeader = {
  sequence: 3,
  draft: true,
  voxels: 3,
  maps: [{ type: "DTAV", thresholds: [{ q: 0.05, threshold: 0.5, passing: 1 }] }],
  arrays: [
    { type: "DTAV", what: "value", format: "int16", offset: 800, scale: 0.25 },
    { type: "DTAV", what: "p", format: "uint8", offset: 808 },
    { type: "INST", what: "value", format: "float32", offset: 816 },
  ],
};
const kBodies = [
  [800, Int16Array.of(-4, -32768, 8)],
  [808, Uint8Array.of(13, 255, 40)],
  [816, Float32Array.of(0.5, NaN, -1)],
] as const;

describe("a reply of maps", () => {
  const buffer = reply(kHeader, kBodies, 828);
  const { maps } = decodeMaps(buffer);

  it("scales codes, and knows which are missing", () => {
    const values = maps.get("DTAV")?.values;
    assert.ok(values);
    assert.deepEqual(
      [0, 1, 2].map((n) => valueAt(values, n)),
      [-1, NaN, 2],
    );
  });
  it("has floats as they are", () => {
    const values = maps.get("INST")?.values;
    assert.ok(values);
    assert.deepEqual(
      [0, 1, 2].map((n) => valueAt(values, n)),
      [0.5, NaN, -1],
    );
  });
  it("has p, thresholds, and null for what did not come", () => {
    assert.deepEqual(maps.get("DTAV")?.p, Uint8Array.of(13, 255, 40));
    assert.deepEqual(maps.get("DTAV")?.thresholds, [{ q: 0.05, threshold: 0.5, passing: 1 }]);
    assert.equal(maps.get("INST")?.p, null);
    assert.equal(maps.get("DTAV")?.direction, null);
  });
  it("is not copied", () => {
    assert.equal(maps.get("INST")?.values.raw.buffer, buffer);
  });
  it("is refused when it ends inside an array or its header", () => {
    assert.throws(() => decodeMaps(reply(kHeader, kBodies.slice(0, 2), 826)), RangeError);
    assert.throws(() => decodeMaps(buffer.slice(0, 40)), RangeError);
  });
});

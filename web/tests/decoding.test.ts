import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { gzipSync } from "node:zlib";
import { bytesOfBase64, gunzip, wordsOf } from "../src/data/decoding";
import { effectOf, effectTable, logOf } from "../src/data/map_codes";
import { dimmed } from "../src/data/loaded_view";
import { maskedCount, placesInMask } from "../src/data/mask";
import { VolumeStore } from "../src/data/volume_store";

function stored(bytes: readonly number[]): string {
  return gzipSync(Uint8Array.from(bytes)).toString("base64");
}

describe("decoding", () => {
  it("reads base64, with line breaks in it", () => {
    assert.deepEqual([...bytesOfBase64("AAEC\n/w==")], [0, 1, 2, 255]);
  });

  it("unpacks gzip", async () => {
    const packed = new Uint8Array(gzipSync("right and left"));
    assert.equal(new TextDecoder().decode(await gunzip(packed)), "right and left");
  });

  it("refuses broken gzip", async () => {
    await assert.rejects(gunzip(Uint8Array.from([31, 139, 8, 0, 1, 2, 3])));
  });

  it("reads words with the low byte first, from any start", () => {
    const bytes = Uint8Array.from([9, 0x34, 0x12, 0xff, 0x00]).subarray(1);
    assert.deepEqual([...wordsOf(bytes)], [0x1234, 0x00ff]);
    assert.throws(() => wordsOf(Uint8Array.of(1, 2, 3)), RangeError);
  });
});

describe("the store of volumes", () => {
  it("decodes a volume once", async () => {
    let asked = 0;
    const store = new VolumeStore(() => {
      asked += 1;
      return stored([1, 0, 2, 0]);
    });
    assert.deepEqual([...(await store.codes("a", "u16", 2))], [1, 2]);
    assert.deepEqual([...(await store.codes("a", "u8", 4))], [1, 0, 2, 0]);
    assert.equal(asked, 1);
  });

  it("names a volume that is missing or of another length", async () => {
    const store = new VolumeStore((id) => (id === "short" ? stored([1, 2]) : null));
    await assert.rejects(store.codes("lost", "u8", 2), /lost/);
    await assert.rejects(store.codes("short", "u8", 3), /short has 2 values, not 3/);
  });
});

describe("codes of maps", () => {
  const effect = { id: "e", type: "u16", step: 0.5, offset: -10 } as const;

  it("are offset and step, and nothing at zero", () => {
    assert.equal(effectOf(effect, 1), -9.5);
    assert.equal(effectOf(effect, 30), 5);
    assert.ok(Number.isNaN(effectOf(effect, 0)));
  });

  it("have a table with an entry for each code", () => {
    const table = effectTable(effect);
    assert.equal(table.length, 65536);
    assert.equal(table[65535], 32757.5);
    assert.ok(Number.isNaN(table[0]));
    assert.equal(effectTable({ ...effect, type: "u8" }).length, 256);
  });

  it("of p begin with -log10 p = 0 at code 1", () => {
    const p = { id: "p", type: "u8", step: 0.02 } as const;
    assert.equal(logOf(p, 1), 0);
    assert.equal(logOf(p, 101), 2);
    assert.ok(Number.isNaN(logOf(p, 0)));
  });
});

describe("the underlay", () => {
  it("is darkened where it has one level alone", () => {
    assert.deepEqual([...dimmed(Uint8Array.of(0, 255, 255))], [0, 90, 90]);
    assert.deepEqual([...dimmed(Uint8Array.of(0, 255, 7))], [0, 255, 7]);
  });
});

describe("the mask", () => {
  it("numbers its voxels in their order", () => {
    const places = placesInMask([0, 1, 1, 0, 1]);
    assert.deepEqual([...places], [-1, 0, 1, -1, 2]);
    assert.equal(maskedCount(places), 3);
    assert.equal(maskedCount(placesInMask([0, 0])), 0);
  });
});

import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { matching } from "../src/workbench/explore/controls/label_list";
import { withSetting } from "../src/workbench/explore/controls/settings_controls";
import { keyAction, takesKey } from "../src/workbench/explore/keyboard";
import type { MapsReply, ReplyMap } from "../src/workbench/explore/maps_reply";
import { modelRows } from "../src/workbench/explore/panels/model_rows";
import { histogram } from "../src/workbench/explore/panels/voxel_charts";
import { escaped, sceneHtml } from "../src/workbench/explore/saving/scene_html";
import { badgeOf } from "../src/workbench/explore/state_words";
import { levelOf, stepped, thresholdWords } from "../src/workbench/explore/threshold_choice";
import { paintRegion, tint, weakestCode } from "../src/workbench/explore/tint";
import { tokenOf } from "../src/workbench/token";

const kMap: ReplyMap = {
  type: "DTAV",
  values: { raw: Float32Array.of(1, -2, 0.5, NaN, 0), scale: 1, missing: NaN },
  p: Uint8Array.of(20, 40, 10, 255, 0),
  direction: Uint8Array.of(3, 2, 0, 0, 0),
  thresholds: [
    { q: 0.05, threshold: 0.9 },
    { q: 0.01, threshold: null },
  ],
};
const kInfo = { type: "DTAV", name: "DTAV", hasThresholds: true, positive: "a", negative: "b" };
const kPlain = { altKey: false, ctrlKey: false, metaKey: false };

describe("thresholds", () => {
  it("by q are those of the program, by value one's own", () => {
    assert.equal(levelOf({ by: "q", q: 0.05 }, kMap), 0.9);
    assert.equal(levelOf({ by: "q", q: 0.01 }, kMap), Infinity);
    assert.equal(levelOf({ by: "value", level: 0.3 }, kMap), 0.3);
  });
  it("are told in words", () => {
    assert.equal(thresholdWords({ by: "q", q: 0.05 }, kMap, kInfo), "q = 0.05: magnitude \u2265 0.9");
    assert.equal(thresholdWords({ by: "q", q: 0.01 }, kMap, kInfo), "q = 0.01: no voxel reaches it");
    const oneSided = { ...kInfo, negative: null };
    assert.equal(thresholdWords({ by: "value", level: 2 }, kMap, oneSided), "value \u2265 2");
  });
  it("step to stricter and milder ones and stay at the ends", () => {
    const qs = [0.01, 0.05];
    assert.deepEqual(stepped({ by: "q", q: 0.05 }, qs, 1), { by: "q", q: 0.01 });
    assert.deepEqual(stepped({ by: "q", q: 0.01 }, qs, 1), { by: "q", q: 0.01 });
    assert.deepEqual(stepped({ by: "q", q: 0.01 }, qs, -1), { by: "q", q: 0.05 });
  });
});

describe("the colours of a map", () => {
  const options = { level: 0.9, full: 2, hideBelow: false, faintUnsupported: false };
  const alphas = (more: object): number[] => {
    const out = new Uint32Array(5);
    tint(kMap, { ...options, ...more }, out);
    return Array.from(out, (word) => word >>> 24);
  };

  it("are opaque from the threshold on, fade below it, and are none without a value", () => {
    assert.equal(weakestCode(kMap, 0.9), 20);
    assert.deepEqual(alphas({}), [255, 255, Math.round(0.7 * 0.25 * 255), 0, 0]);
    assert.deepEqual(alphas({ hideBelow: true }), [255, 255, 0, 0, 0]);
  });
  it("are faint where the direction is not supported", () => {
    assert.deepEqual(alphas({ faintUnsupported: true }).slice(0, 2), [Math.round(0.3 * 255), 255]);
  });
  it("are warm for positive and cold for negative values", () => {
    const out = new Uint32Array(5);
    tint(kMap, options, out);
    const [red, , blue] = [out[0] ?? 0, 0, out[0] ?? 0].map((word, n) => (word >> (8 * n)) & 255);
    assert.ok((red ?? 0) > (blue ?? 0));
    const cold = out[1] ?? 0;
    assert.ok((cold & 255) < ((cold >> 16) & 255));
  });
  it("leave the region to its own colour", () => {
    const out = new Uint32Array(3);
    paintRegion([1, -1], out);
    assert.deepEqual(
      Array.from(out, (word) => word & 0xffffff),
      [0, 0xffff00, 0],
    );
  });
});

describe("what is on the screen", () => {
  it("is always called provisional or calibrated", () => {
    const maps = (header: object): MapsReply => ({ header, maps: new Map() }) as unknown as MapsReply;
    assert.equal(badgeOf(maps({ draft: true, draws: 1 }), 20).words, "provisional: one null draw");
    assert.equal(badgeOf(maps({ draft: false, draws: 40 }), 20).words, "calibrated: 40 draws");
    assert.equal(badgeOf(maps({ draft: false }), 20).words, "calibrated: 20 draws");
    assert.equal(badgeOf(null, 20).kind, "none");
  });
});

describe("keys", () => {
  it("move the crosshair, with shift the reference", () => {
    assert.deepEqual(keyAction({ key: "ArrowUp", shiftKey: false, ...kPlain }), {
      do: "crosshair",
      by: [0, 1, 0],
    });
    assert.deepEqual(keyAction({ key: "PageDown", shiftKey: true, ...kPlain }), {
      do: "reference",
      by: [0, 0, -1],
    });
    assert.equal(keyAction({ key: "ArrowUp", shiftKey: false, ...kPlain, ctrlKey: true }), null);
    assert.deepEqual(keyAction({ key: "?", shiftKey: true, ...kPlain }), { do: "help" });
  });
  it("are left to fields that need them", () => {
    assert.ok(takesKey("INPUT", "search", "["));
    assert.ok(takesKey("INPUT", "range", "ArrowLeft"));
    assert.ok(takesKey("BUTTON", "", " "));
    assert.ok(!takesKey("BUTTON", "", "["));
    assert.ok(!takesKey("CANVAS", "", "ArrowLeft"));
  });
});

describe("small things", () => {
  it("labels are found by all words typed", () => {
    const labels = ["Left motor", "Right motor", "Left visual"].map((name, id) => ({
      id,
      name,
      voxels: 1,
      mm: [0, 0, 0] as const,
    }));
    assert.deepEqual(
      matching(labels, "mot LEFT").map(({ id }) => id),
      [0],
    );
    assert.equal(matching(labels, " ").length, 3);
  });
  it("settings are sent where they differ", () => {
    assert.deepEqual(withSetting({}, { order: 1, draws: 20 }, { order: 2 }), { order: 2 });
    assert.deepEqual(withSetting({ order: 2 }, { order: 1 }, { order: 1 }), {});
  });
  it("a model of any shape becomes rows", () => {
    assert.deepEqual(
      modelRows({
        order: 1,
        joint: {
          a: [
            [1, 2],
            [3, null],
          ],
        },
      }),
      [
        { name: "order", numbers: "1" },
        { name: "joint: a 1", numbers: "1, 2" },
        { name: "joint: a 2", numbers: "3, none" },
      ],
    );
  });
  it("a histogram counts every value once", () => {
    const { edges, counts } = histogram([0, 0.1, 0.9, 1]);
    assert.equal(edges.length, counts.length + 1);
    assert.equal(
      counts.reduce((a, b) => a + b, 0),
      4,
    );
    assert.deepEqual([counts[0], counts[counts.length - 1]], [2, 2]);
    assert.equal(
      histogram([3, 3]).counts.reduce((a, b) => a + b, 0),
      2,
    );
  });
  it("a scene has names as text", () => {
    const page = sceneHtml({
      title: "<b>&</b>",
      lines: ['"x" <script>'],
      data: { views: [{ reference: "</script><script>alert(1)" }] } as never,
      volumes: new Map([["vol", "QUJD"]]),
      script: "run()",
      style: "p{}",
    });
    assert.equal(page.match(/<script/g)?.length, 3);
    assert.ok(page.includes(`<title>${escaped("<b>&</b>")}</title>`));
  });
  it("the token comes from the fragment", () => {
    assert.equal(tokenOf("#token=ab_c-1"), "ab_c-1");
    assert.equal(tokenOf("#token="), null);
    assert.equal(tokenOf(""), null);
  });
});

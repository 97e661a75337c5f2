import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { actionOf } from "../src/viewer/keys";
import { kAxial, kSagittal } from "../src/viewer/planes";

describe("keys", () => {
  it("move within the plane that has the focus and through it", () => {
    assert.deepEqual(actionOf("ArrowLeft", false, kAxial), { do: "move", axis: 0, by: -1 });
    assert.deepEqual(actionOf("ArrowUp", false, kAxial), { do: "move", axis: 1, by: 1 });
    assert.deepEqual(actionOf("PageUp", false, kAxial), { do: "move", axis: 2, by: 1 });
    assert.deepEqual(actionOf("ArrowRight", false, kSagittal), { do: "move", axis: 1, by: 1 });
    assert.deepEqual(actionOf("PageDown", true, kSagittal), { do: "move", axis: 0, by: -5 });
  });

  it("change the map and the threshold", () => {
    assert.deepEqual(actionOf(" ", false, kAxial), { do: "toggle" });
    assert.deepEqual(actionOf("[", false, kAxial), { do: "threshold", by: -1 });
    assert.deepEqual(actionOf("]", false, kAxial), { do: "threshold", by: 1 });
  });

  it("leave others to the browser", () => {
    assert.equal(actionOf("Tab", false, kAxial), null);
    assert.equal(actionOf("a", false, kAxial), null);
  });
});

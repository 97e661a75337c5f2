// Known answers of the fixture: sides, places, values, names.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { effect, eachVoxel, inHead, kAffine, kBall, kFollowsAt, kSize } from "../fixtures/volumes.mjs";
import { kHeight } from "../fixtures/maps.mjs";
import { firstViewer, kFixture, launch, open, readoutOf, showAll, voxelOf } from "./browser.mjs";

let browser, page, context, problems, viewer;
before(async () => {
  browser = await launch();
  ({ page, context, problems } = await open(browser, kFixture, { hasTouch: true }));
  viewer = await firstViewer(page);
});
after(() => browser.close());

function strongest() {
  const values = effect(kHeight, true, 0);
  let [best, at, place] = [-1, null, 0];
  eachVoxel((voxel) => {
    if (!inHead(voxel)) return;
    const value = Math.abs(values[place++]);
    if (value > best) [best, at] = [value, voxel];
  });
  return at;
}

// Where the ball's white pixels lie in a plane, as shares of its width and height from the top left.
function ballIn(plane) {
  return viewer.$eval(`[data-plane=${plane}] canvas`, (canvas) => {
    const { data, width, height } = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height);
    let [count, across, down] = [0, 0, 0];
    for (let n = 0; n < width * height; ++n) {
      if (data[4 * n] < 255 || data[4 * n + 1] < 255 || data[4 * n + 2] < 255) continue;
      [count, across, down] = [count + 1, across + (n % width), down + Math.floor(n / width)];
    }
    return [across / count / width, down / count / height];
  });
}

function near(actual, expected) {
  assert.ok(Math.abs(actual - expected) < 0.02, `${actual} instead of ${expected}`);
}

async function goTo(voxel) {
  await page.$eval("button.jump", (button, text) => (button.dataset.voxel = text), voxel.join(" "));
  await page.click("button.jump");
  await page.waitForFunction((each) => each.contains(document.activeElement), viewer);
}

describe("the fixture", () => {
  it("starts at the strongest voxel", async () => {
    assert.deepEqual(await voxelOf(viewer), strongest());
  });

  it("reads out millimetres, value, sign and direction of a known voxel", async () => {
    await goTo(kFollowsAt);
    const lines = await readoutOf(viewer);
    const mm = [0, 1, 2].map((axis) =>
      (kAffine[axis][axis] * kFollowsAt[axis] + kAffine[axis][3]).toFixed(1),
    );
    assert.equal(lines["Place (x, y, z)"], `${mm.join(", ").replace("-", "\u2212")} mm`);
    assert.match(lines.Value, /^\u22123\d\.\d+ ± 0\.0\d* ms \(negative: the voxel leads\)$/);
    assert.equal(lines.Threshold, "reached");
    assert.equal(lines.Region, "outside the reference");
  });

  it("shows the left on the left, the front at the top and on the right of the sagittal slice", async () => {
    await goTo(kBall);
    await page.keyboard.press("Space");
    const [x, y, z] = kBall.map((c, axis) => (c + 0.5) / kSize[axis]);
    const [axial, coronal, sagittal] = await Promise.all(["axial", "coronal", "sagittal"].map(ballIn));
    await page.keyboard.press("Space");
    near(axial[0], x);
    near(axial[1], 1 - y);
    near(coronal[0], x);
    near(coronal[1], 1 - z);
    near(sagittal[0], y);
    near(sagittal[1], 1 - z);
  });

  it("follows a finger", async () => {
    const plane = await viewer.$("[data-plane=axial] canvas");
    await plane.scrollIntoViewIfNeeded();
    const box = await plane.boundingBox();
    await page.touchscreen.tap(box.x + box.width * 0.75, box.y + box.height * 0.5);
    assert.equal((await voxelOf(viewer))[0], Math.floor(kSize[0] * 0.75));
  });

  it("offers stored thresholds, and none that no voxel survives", async () => {
    const button = await viewer.$("button[data-q='0.01']");
    await button.click();
    assert.equal(await button.getAttribute("aria-pressed"), "true");
    assert.equal(await viewer.$eval(".threshold-words", (e) => e.textContent), "q = 0.01: magnitude ≥ 24 ms");
    await (await viewer.$("select")).selectOption("DTAV_IT");
    await page.waitForFunction((each) => each.querySelector("button[data-q='0.05']").disabled, viewer);
    assert.equal(await viewer.$eval("button[data-q='0.05']", (e) => e.textContent), "q = 0.05: no voxel");
    assert.match(await viewer.$eval(".threshold-words", (e) => e.textContent), /^p \u2264 0\.001 /);
    await (await viewer.$("select")).selectOption("DTAV");
    await page.waitForFunction((each) => !each.querySelector("button[data-q='0.01']").disabled, viewer);
    assert.equal(await viewer.$eval("button[data-q='0.01']", (e) => e.getAttribute("aria-pressed")), "true");
  });

  it("shows names as they are, never as markup", async () => {
    await showAll(page);
    assert.equal(await viewer.getAttribute("aria-label"), "Viewer: <script>alert(1)</script>, rest");
    assert.equal(
      await page.$$eval(".viewer img, .viewer script, .chart b, .chart script", (all) => all.length),
      0,
    );
    const legends = await page.$$eval(".chart-legend", (all) => all.map((each) => each.textContent).join());
    assert.ok(legends.includes("Reference <b>course</b>"));
    assert.deepEqual(problems, []);
  });

  it("tells what is wrong with data of another format and keeps its text", async () => {
    const other = await context.newPage();
    await other.addInitScript(() => {
      const parse = JSON.parse;
      JSON.parse = (text) => ({ ...parse(text), format: 7 });
    });
    await other.goto(`file://${kFixture}`);
    const state = await other.$eval("div.viewer", (each) => each.textContent);
    assert.match(state, /reads data of format 1; the page has format 7/);
    assert.ok(await other.$eval("table.sortable th", (head) => head.querySelector("button") !== null));
  });
});

// Exploring: the reference is dragged, maps follow, and everything else follows the maps.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { kLed } from "../fixtures/workbench/brain.mjs";
import { launch } from "./browser.mjs";
import {
  calibrated,
  clusterRows,
  colouredPixels,
  mapsAsked,
  openWorkbench,
  pointAt,
  readout,
} from "./workbench.mjs";

let browser;
before(async () => {
  browser = await launch();
});
after(() => browser.close());

const numbersOf = (text) =>
  text
    .replaceAll("\u2212", "-")
    .match(/-?[\d.]+/g)
    .map(Number);

// Every text that the badge shows, however short a time: a slow machine may miss it otherwise.
async function badgesFromNowOn(page) {
  await page.evaluate(() => {
    window.badges = [];
    const note = () => window.badges.push(document.querySelector(".badge")?.textContent);
    const observer = new MutationObserver(note);
    observer.observe(document.body, {
      subtree: true,
      childList: true,
      characterData: true,
      attributes: true,
    });
  });
  return {
    includes: (text) => page.waitForFunction((wanted) => window.badges.includes(wanted), text),
  };
}

describe("the Explore tab", () => {
  let page, server, problems, close;
  before(async () => {
    ({ page, server, problems, close } = await openWorkbench(browser));
    await calibrated(page);
  });
  after(() => close());

  async function drag(from, to, steps = 8) {
    await page.mouse.move(...from);
    await page.mouse.down();
    await page.mouse.move(...to, { steps });
    await page.mouse.up();
  }

  it("draws three planes and a solid brain with the map on them", async () => {
    const planes = await colouredPixels(page, "planes");
    assert.ok(planes.lit > 20_000, `${planes.lit} lit`);
    assert.ok(planes.coloured > 200, `${planes.coloured} coloured`);
    await page.waitForFunction(() => document.querySelector("[data-part=solid] canvas").width > 0);
    assert.ok((await colouredPixels(page, "solid")).lit > 3000);
  });

  it("asks for drafts while the reference is dragged, then for calibrated maps of where it rests", async () => {
    const before = mapsAsked(server).length;
    const badges = await badgesFromNowOn(page);
    await drag(await pointAt(page, 0.2, 0.75), await pointAt(page, 0.26, 0.68));
    await badges.includes("provisional: one null draw");
    await calibrated(page);
    assert.match(await page.textContent(".badge"), /^calibrated: 20 draws$/);
    const asked = mapsAsked(server).slice(before);
    const last = asked.at(-1);
    assert.ok(asked.filter(({ draft }) => draft).length >= 1);
    assert.equal(last.draft, false);
    assert.deepEqual(last.reference, asked.filter(({ draft }) => draft).at(-1).reference);
    assert.ok(asked.every(({ sequence }, n) => n === 0 || sequence > asked[n - 1].sequence));
  });

  it("shows clusters where the reference leads, and goes to their peaks", async () => {
    const { reference } = mapsAsked(server).at(-1);
    const rows = await clusterRows(page);
    const led = rows.find(([sign]) => sign.includes("from the reference"));
    const at = numbersOf(led[3]);
    at.forEach((c, axis) => assert.ok(Math.abs(c - reference.mm[axis] - kLed[axis]) <= 8, `${at}`));
    await page
      .locator(".clusters tbody tr", { hasText: "from the reference" })
      .first()
      .locator("button")
      .click();
    const place = numbersOf((await readout(page))["Place (x, y, z)"]);
    place.forEach((c, axis) => assert.ok(Math.abs(c - at[axis]) <= 1, `${place}`));
    assert.equal((await readout(page)).Threshold, "reached");
    assert.match((await readout(page)).DTAV, /more from the reference to the voxel/);
  });

  it("moves the crosshair and not the reference with shift", async () => {
    const before = mapsAsked(server).length;
    const place = (await readout(page))["Place (x, y, z)"];
    await page.keyboard.down("Shift");
    await drag(await pointAt(page, 0.2, 0.7), await pointAt(page, 0.22, 0.72), 3);
    await page.keyboard.up("Shift");
    await page.waitForFunction(
      (old) => document.querySelector(".readout-line dd").textContent !== old,
      place,
    );
    assert.equal(mapsAsked(server).length, before);
  });

  it("follows the keyboard: crosshair, reference, threshold, hiding", async () => {
    await page.locator("[data-part=planes] canvas").focus();
    const x = async () => numbersOf((await readout(page))["Place (x, y, z)"])[0];
    const at = await x();
    await page.keyboard.press("ArrowRight");
    assert.ok(Math.abs((await x()) - at - 4) < 0.2);
    const { reference } = mapsAsked(server).at(-1);
    await page.keyboard.press("Shift+ArrowLeft");
    await calibrated(page);
    assert.ok(Math.abs(mapsAsked(server).at(-1).reference.mm[0] - reference.mm[0] + 4) < 0.2);
    await page.keyboard.press("]");
    assert.match(await page.textContent(".threshold-words"), /^q = 0.01/);
    await page.keyboard.press("[");
    assert.match(await page.textContent(".threshold-words"), /^q = 0.05/);
    const shown = await colouredPixels(page, "planes");
    await page.keyboard.press("Space");
    await page.waitForTimeout(300);
    const hidden = await colouredPixels(page, "planes");
    assert.ok(hidden.coloured < shown.coloured / 4, `${hidden.coloured} of ${shown.coloured}`);
    await page.keyboard.press("Space");
    await page.keyboard.press("?");
    assert.ok(await page.isVisible("dialog.key-list"));
    await page.keyboard.press("Escape");
    assert.equal(await page.isVisible("dialog.key-list"), false);
  });

  it("lets the cluster table follow a threshold by value", async () => {
    const count = async () => (await clusterRows(page)).reduce((sum, row) => sum + Number(row[1]), 0);
    await page.fill('[aria-label="Threshold by value"]', "30");
    await page.waitForFunction(() =>
      /^magnitude/.test(document.querySelector(".threshold-words").textContent),
    );
    await page.waitForTimeout(400);
    const many = await count();
    await page.fill('[aria-label="Threshold by value"]', "150");
    for (let wait = 0; wait < 100 && (await count()) >= many; ++wait) await page.waitForTimeout(100);
    assert.ok(many > (await count()), `${many}`);
    await page.click("text=q = 0.05");
  });

  it("sends settings that differ, and those alone", async () => {
    assert.deepEqual(mapsAsked(server).at(-1).settings, {});
    await page.click("summary:has-text('Model and data')");
    await page.getByLabel("Order", { exact: true }).selectOption("2");
    await calibrated(page);
    assert.deepEqual(mapsAsked(server).at(-1).settings, { order: 2 });
    await page.getByLabel("Order", { exact: true }).selectOption("1");
    await calibrated(page);
    assert.deepEqual(mapsAsked(server).at(-1).settings, {});
  });

  it("shows maps and conditions by their own name", async () => {
    await page.getByLabel("Map", { exact: true }).selectOption("INST");
    await calibrated(page);
    assert.deepEqual(mapsAsked(server).at(-1).types, ["INST"]);
    assert.equal(await page.$$eval(".legend-bar .arm", (arms) => arms.length), 1);
    await page.getByLabel("Map", { exact: true }).selectOption("DTAV");
    await page.getByLabel("Condition", { exact: true }).selectOption("rest");
    await calibrated(page);
    assert.equal(mapsAsked(server).at(-1).condition, "rest");
    await page.getByLabel("Condition", { exact: true }).selectOption("task");
    await calibrated(page);
  });

  it("takes labels from a list that is searched, their names as text", async () => {
    await page.getByLabel("Reference", { exact: true }).selectOption("label");
    await page.getByLabel("Search labels").fill("ODD named");
    const found = page.getByLabel("Labels", { exact: true }).locator("option");
    assert.deepEqual(await found.allTextContents(), ["<b>Odd</b> & named (110 voxels)"]);
    await page.getByLabel("Labels", { exact: true }).selectOption("7");
    await calibrated(page);
    assert.deepEqual(mapsAsked(server).at(-1).reference, { kind: "label", id: 7 });
    assert.equal(await page.textContent("[data-part=reference]"), "Reference: <b>Odd</b> & named");
  });

  it("draws references voxel by voxel, and erases them", async () => {
    await page.getByLabel("Reference", { exact: true }).selectOption("voxels");
    await drag(await pointAt(page, 0.2, 0.75), await pointAt(page, 0.21, 0.74), 2);
    await calibrated(page);
    const { reference } = mapsAsked(server).at(-1);
    assert.equal(reference.kind, "voxels");
    assert.ok(reference.cells.length > 5);
    await page.click("text=Clear the drawing");
    await page.waitForSelector('.badge[data-kind="none"]');
    await page.getByLabel("Reference", { exact: true }).selectOption("sphere");
    await calibrated(page);
  });

  it("tells of the voxel under the crosshair: series, correlation, models, null draws", async () => {
    await page.waitForFunction(() => document.querySelectorAll(".voxel-panels canvas").length === 4);
    const labels = await page.$$eval(".voxel-panels .chart-picture", (all) =>
      all.map((each) => each.getAttribute("aria-label")),
    );
    assert.match(labels[0], /of the condition 19 to 159/);
    assert.match(labels[2], /positive: the reference earlier/);
    assert.match(labels[3], /observed/);
    assert.ok((await page.$$(".model tr")).length > 5);
  });

  it("compares with a pinned map, side by side and as difference", async () => {
    await page.click("text=Pin this map");
    await page.waitForFunction(() =>
      document.querySelector(".compare-words").textContent.startsWith("Pinned"),
    );
    await page.waitForTimeout(500);
    assert.ok((await colouredPixels(page, "other")).lit > 10_000);
    await page.click("text=difference");
    await page.waitForFunction(() =>
      /No threshold/.test(document.querySelector(".compare-words").textContent),
    );
    await page.waitForTimeout(500);
    assert.ok((await colouredPixels(page, "other")).coloured < 30); // a map minus itself
    await page.getByLabel("Compare with", { exact: true }).selectOption("condition");
    await page.waitForFunction(() => /rest/.test(document.querySelector(".compare-words").textContent));
    assert.equal(mapsAsked(server).at(-1).condition, "rest");
    await page.getByLabel("Compare with", { exact: true }).selectOption("nothing");
  });

  it("has met no error and asked nobody else", () => {
    assert.deepEqual(problems, []);
  });
});

it("has one draft under way at a time, however slow the program", async () => {
  const { page, server, problems, close } = await openWorkbench(browser, { server: { delayMs: 120 } });
  await calibrated(page);
  const before = server.requests.length;
  await page.mouse.move(...(await pointAt(page, 0.2, 0.7)));
  await page.mouse.down();
  const started = Date.now();
  for (let n = 0; n < 40; ++n) await page.mouse.move(...(await pointAt(page, 0.2 + n / 800, 0.7)));
  const took = Date.now() - started;
  await page.mouse.up();
  const drafts = server.requests.slice(before).filter(({ body }) => body?.draft === true).length;
  assert.ok(drafts <= took / 120 + 2, `${drafts} drafts in ${took} ms`);
  await calibrated(page);
  assert.deepEqual(problems, []);
  await close();
});

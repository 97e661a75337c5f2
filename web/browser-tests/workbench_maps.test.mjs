// Saved maps in the viewer, against the built program: those of results, and those that a session saves.
import assert from "node:assert/strict";
import { readFileSync, readdirSync, rmSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import { launch } from "./browser.mjs";
import { kWithoutProgram, startProgram } from "./program.mjs";
import { answerAll, openPage, openTab, press, seriousFindings } from "./program_page.mjs";
import { rigOf } from "./rig.mjs";
import { clusterRows, colouredPixels, pointAt, readout } from "./workbench.mjs";

const kLong = 60_000;
const kWaits = { timeout: kLong };

const rig = rigOf(launch, () => startProgram({ withResults: true }));

function recordOf(reference) {
  const name = `made_seed-${reference}_tavmap.json`;
  return JSON.parse(readFileSync(join(rig.program.data, "out", name), "utf8"));
}

function mapOf(record, type) {
  return record.Conditions[0].Maps.find(({ MapType }) => MapType === type);
}

async function lookAtMaps(page) {
  await openTab(page, "Results");
  await press(page.locator(".result-folders"), "data/out");
  await page.getByRole("button", { name: "Look at the maps" }).first().click();
  await page.waitForSelector(".map-viewer .clusters tbody tr", kWaits);
}

// Chooses in a list of the viewer, and waits until it is shown.
async function choose(page, list, wanted) {
  const control = page.locator(".map-viewer").getByLabel(list, { exact: true });
  const options = await control.locator("option").allTextContents();
  await control.selectOption({ label: options.find((text) => text.startsWith(wanted)) });
  await page.locator(".map-title", { hasText: wanted }).waitFor(kWaits);
}

const captionOf = (page, text) => page.locator(".clusters caption", { hasText: text });
const voxelsIn = (rows) => rows.reduce((sum, [, voxels]) => sum + Number(voxels), 0);

// The place of the map's peak as the table has it, and the button that goes there.
async function goToPeak(page, { Millimetres: mm }) {
  const place = mm.map((c) => c.toFixed(0).replace("-", "\u2212")).join(", ");
  const nearby = page.locator(".clusters tbody tr").first();
  await nearby.getByRole("button", { name: "Show" }).click();
  return place;
}

const placeOf = (page) => page.locator(".readout-line dd").first().textContent();

async function anotherPlace(page, before) {
  const isOther = (old) => document.querySelector(".readout-line dd").textContent !== old;
  await page.waitForFunction(isOther, before, kWaits);
  return placeOf(page);
}

const numberIn = (text) => Number(/[\u2212+-]?[\d.]+/.exec(text)[0].replace("\u2212", "-"));

describe("maps in the viewer", { skip: kWithoutProgram }, () => {
  before(rig.begin);
  after(rig.end);

  const open = (options) => openPage(rig.browser, rig.program.address, rig.problems, options);

  it("shows those of results: thresholds, clusters and values as the record has them", async () => {
    const page = await open();
    await lookAtMaps(page);
    const record = recordOf("Reference");
    await choose(page, "Of", "Reference");
    for (const type of ["REF2VOX", "DTAV"]) {
      await choose(page, "Map", `${type}:`);
      const map = mapOf(record, type);
      for (const { Q: q, VoxelsPassingOutsideReference: passing } of map.Thresholds) {
        await press(page, `q = ${q}`);
        await captionOf(page, `${type}, q = ${q}:`).waitFor(kWaits);
        assert.equal(voxelsIn(await clusterRows(page)), passing, `${type} at q = ${q}`);
      }
      await goToPeak(page, map.Peak);
      const shown = await readout(page);
      assert.ok(Math.abs(numberIn(shown[type]) - map.Peak.Value) < 1e-3, `${shown[type]} at the peak`);
      assert.equal(shown.Threshold, "reached");
    }
    const { coloured, lit } = await colouredPixels(page, "planes");
    assert.ok(coloured > 200 && lit > 2000, `${coloured} coloured of ${lit}`);
    assert.match(await page.locator(".map-viewer").textContent(), /Grey: the mean image of the first run/);
    await page.context().close();
  });

  it("moves its crosshair by mouse and keys, and its threshold by brackets and by value", async () => {
    const page = await open();
    await lookAtMaps(page);
    const first = await placeOf(page);
    await page.mouse.click(...(await pointAt(page, 0.15, 0.4)));
    const clicked = await anotherPlace(page, first);
    await page.keyboard.press("PageUp");
    await anotherPlace(page, clicked);
    await page.keyboard.press("[");
    await captionOf(page, "q = 0.1:").waitFor(kWaits);
    const slider = page.getByLabel("Threshold by value");
    await slider.focus();
    await page.keyboard.press("End");
    const many = voxelsIn(await clusterRows(page));
    await captionOf(page, "DTAV, magnitude").waitFor(kWaits);
    const few = voxelsIn(await clusterRows(page));
    assert.ok(few < many, `${few} of ${many}`);
    await page.context().close();
  });

  it("takes a value where a map has no thresholds, and the q again afterwards", async () => {
    const page = await open();
    await lookAtMaps(page);
    await choose(page, "Map", "DTAV_RC:");
    await captionOf(page, "DTAV_RC, magnitude").waitFor(kWaits);
    await choose(page, "Map", "REF2VOX:");
    await captionOf(page, "REF2VOX, q = 0.05:").waitFor(kWaits);
    await page.context().close();
  });

  for (const [name, options] of Object.entries({
    light: {},
    dark: { colorScheme: "dark" },
    phone: { viewport: { width: 390, height: 844 } },
  })) {
    it(`has no serious barrier and nothing to scroll sideways: ${name}`, async () => {
      const page = await open({ bypassCSP: true, ...options });
      await lookAtMaps(page);
      assert.deepEqual(await seriousFindings(page), []);
      const [wide, window] = await page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
      assert.ok(wide <= window, `${wide} in ${window}`);
      await page.context().close();
    });
  }

  it("says what is missing where an image is gone, and shows the others", async () => {
    const page = await open();
    const gone = (file) => file.includes("seed-Reference_contrast-wholeInst_stat-effect");
    for (const file of readdirSync(join(rig.program.data, "out")).filter(gone))
      rmSync(join(rig.program.data, "out", file));
    await lookAtMaps(page);
    await choose(page, "Of", "Reference");
    const known = rig.problems.length;
    await page.getByLabel("Map", { exact: true }).selectOption({ index: 2 });
    await page.locator(".map-viewer [role=alert]", { hasText: /There is no .*Inst/ }).waitFor(kWaits);
    rig.problems.splice(known); // the browser's own line on the answer 404
    await choose(page, "Map", "REF2VOX:");
    assert.deepEqual(await page.locator(".map-viewer [role=alert]:visible").allTextContents(), []);
    await page.context().close();
  });

  it("shows those that a session saves as soon as they are saved", async () => {
    const page = await open({ bypassCSP: true });
    await openTab(page, "Plug-in");
    await press(page, "Start a session");
    await answerAll(page, rig.program.data, "viewed");
    await page.waitForSelector(".session-viewer .clusters caption", kWaits);
    assert.match(await page.locator(".map-head").textContent(), /viewed_Reference\.tav/);
    assert.match(await page.locator(".map-viewer").textContent(), /Grey: the anatomy of the session/);
    const { coloured, lit } = await colouredPixels(page, "planes");
    assert.ok(coloured > 50 && lit > 2000, `${coloured} coloured of ${lit}`);
    await choose(page, "Map", "Ref2Vox");
    await captionOf(page, "REF2VOX, q = ").waitFor(kWaits);
    assert.deepEqual(await seriousFindings(page), []);
    await page.context().close();
  });
});

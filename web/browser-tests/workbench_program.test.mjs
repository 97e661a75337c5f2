// The page of the built program in Chromium, from its start to what it saves: what the workbench promises, with the
// program behind it. Results, runs and the plug-in have files of their own.
import assert from "node:assert/strict";
import { readFileSync, readdirSync, statSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import { launch, open as openFile } from "./browser.mjs";
import { kSlow, kWithoutProgram, startProgram } from "./program.mjs";
import { openPage, openTab, press, seriousFindings } from "./program_page.mjs";
import { rigOf } from "./rig.mjs";
import { calibrated, colouredPixels, pointAt, readout } from "./workbench.mjs";

const kLong = 60_000;
const kWaits = { timeout: kLong };

const rig = rigOf(launch, () => startProgram({ explore: true, withResults: true }));

const badgesSeen = (page) => page.evaluate(() => globalThis.badges);

// Every text that the badge shows from now on, however short a time.
async function noteBadges(page) {
  await page.evaluate(() => {
    const badge = document.querySelector(".badge");
    globalThis.badges = [];
    const note = () => globalThis.badges.push(badge.textContent);
    new MutationObserver(note).observe(badge, { childList: true, characterData: true, subtree: true });
  });
}

// What the program was asked for maps, from now on.
function mapsAskedOf(page) {
  const asked = [];
  page.on("request", (request) => {
    if (request.url().endsWith("/api/explore/maps")) asked.push(request.postDataJSON());
  });
  return asked;
}

async function drag(page, from, to) {
  await page.mouse.move(...from);
  await page.mouse.down();
  await page.mouse.move(...to, { steps: 12 });
  await page.mouse.up();
}

const kQs = ["0.01", "0.05", "0.1"];

// What the page says of the threshold at q.
async function thresholdAt(page, below, q) {
  await press(page.locator(below), `q = ${q}`);
  await page.locator(`${below} .clusters caption`, { hasText: `REF2VOX, q = ${q}:` }).waitFor(kWaits);
  return page.textContent(`${below} .threshold-words`);
}

describe("the page of the built program", { skip: kWithoutProgram }, () => {
  before(rig.begin);
  after(rig.end);

  const open = (options) => openPage(rig.browser, rig.program.address, rig.problems, options);

  async function openExplore(options) {
    const page = await open(options);
    await calibrated(page);
    return page;
  }

  it("starts with the token of the address, keeps it out of sight, and wants it (1)", async () => {
    const page = await open();
    const token = new URL(rig.program.address).hash.slice("#token=".length);
    assert.ok(token.length >= 32);
    assert.equal(new URL(page.url()).hash, "");
    assert.ok(!(await page.content()).includes(token));
    await page.reload();
    await page.waitForSelector(".tabs");
    const stranger = await (await rig.browser.newContext()).newPage();
    await stranger.goto(new URL("/", rig.program.address).href);
    assert.match(await stranger.textContent("[role=alert]"), /address that tavmap workbench printed/);
    await stranger.context().close();
    await page.context().close();
  });

  it("follows the mouse with provisional maps, and calibrates where it rests (2, 3)", async () => {
    const page = await openExplore();
    const asked = mapsAskedOf(page);
    await noteBadges(page);
    const { coloured, lit } = await colouredPixels(page, "planes");
    assert.ok(coloured > 50 && lit > 2000, `${coloured} coloured of ${lit}`);
    await drag(page, await pointAt(page, 0.15, 0.7), await pointAt(page, 0.3, 0.62));
    await calibrated(page);
    assert.ok((await badgesSeen(page)).includes("provisional: one null draw"));
    assert.equal(await page.textContent(".badge"), "calibrated: 20 draws");
    assert.ok(asked.filter(({ draft }) => draft).length >= 1);
    assert.equal(asked.at(-1).draft, false);
    await page.context().close();
  });

  it("tells of the voxel under the crosshair without anything being moved (2)", async () => {
    const page = await openExplore();
    await page.waitForFunction(() => document.querySelectorAll(".voxel-panels canvas").length === 3);
    assert.match(await page.textContent(".voxel-panels [role=status]"), /computed|part of the reference/);
    assert.ok((await page.$$(".model tr")).length > 5);
    assert.match(await page.textContent(".voxel-panels"), /20 null draws of this voxel/);
    await page.context().close();
  });

  it("takes references from the list, drawn, and of another radius; tells of the voxel (2)", async () => {
    const page = await openExplore();
    const asked = mapsAskedOf(page);
    const kind = page.getByLabel("Reference", { exact: true });
    await kind.selectOption("label");
    await page.getByLabel("Search labels").fill("driven-a");
    await page.getByLabel("Labels", { exact: true }).selectOption({ index: 0 });
    await calibrated(page);
    assert.equal(asked.at(-1).reference.kind, "label");
    assert.match(await page.textContent("[data-part=reference]"), /Driven-A/);
    await kind.selectOption("voxels");
    await drag(page, await pointAt(page, 0.2, 0.7), await pointAt(page, 0.22, 0.68));
    await calibrated(page);
    assert.ok(asked.at(-1).reference.cells.length > 1);
    await page.locator(".voxel-panels [role=status]", { hasText: /\w/ }).waitFor(kWaits);
    await page.context().close();
  });

  it("compares with a pinned map (2)", async () => {
    const page = await openExplore();
    await press(page, "Pin this map");
    await page.locator(".compare-words", { hasText: "Pinned" }).waitFor(kWaits);
    await drag(page, await pointAt(page, 0.15, 0.7), await pointAt(page, 0.3, 0.62));
    await calibrated(page);
    await page.click("text=difference");
    await page.locator(".compare-words", { hasText: "Difference from" }).waitFor(kWaits);
    await page.waitForTimeout(1000); // what differs is drawn behind the words
    const { coloured } = await colouredPixels(page, "other");
    assert.ok(coloured > 20, `${coloured} coloured`);
    await page.context().close();
  });

  it("saves a request whose run has the very thresholds that were explored (4, 6, 7)", async () => {
    const page = await openExplore();
    await page.getByLabel("Map", { exact: true }).selectOption("REF2VOX");
    await calibrated(page);
    const explored = {};
    for (const q of kQs) explored[q] = await thresholdAt(page, ".panel-explore", q);
    await page.getByLabel("Name", { exact: true }).fill("asked");
    await press(page, "Save as request");
    await press(page, "Open in Runs");
    const run = page.locator(".run[data-state=done]");
    await run.waitFor({ timeout: 2 * kLong });
    await press(run, "Show results");
    await press(page.locator("section.request", { hasText: "asked" }), "Look at the maps");
    const viewer = page.locator(".map-viewer");
    await viewer.locator(".map-title").filter({ hasText: "DTAV" }).waitFor(kWaits);
    const list = viewer.getByLabel("Map", { exact: true });
    const name = (await list.locator("option").allTextContents()).find((text) => text.startsWith("REF2VOX"));
    await list.selectOption({ label: name });
    await viewer.locator(".map-title").filter({ hasText: "REF2VOX" }).waitFor(kWaits);
    for (const q of kQs) assert.equal(await thresholdAt(page, ".map-viewer", q), explored[q]);
    await page.context().close();
  });

  it("saves a scene that stands alone, and a picture (4)", async () => {
    const page = await openExplore({ acceptDownloads: true });
    for (const [button, end] of [
      ["Save scene (HTML)", ".html"],
      ["Save picture (PNG)", ".png"],
    ]) {
      const [file] = await Promise.all([page.waitForEvent("download"), press(page, button)]);
      const path = join(rig.program.data, `saved${end}`);
      await file.saveAs(path);
      assert.ok(statSync(path).size > 10_000);
    }
    const scene = await openFile(rig.browser, join(rig.program.data, "saved.html"));
    await scene.page.waitForSelector("div.viewer.ready", kWaits);
    assert.deepEqual(scene.problems, []);
    await scene.context.close();
    await page.context().close();
  });

  it("moves by keys, and hides the map (9)", async () => {
    const page = await openExplore();
    await page.locator("[data-part=planes] canvas").focus();
    const before = (await readout(page))["Place (x, y, z)"];
    await page.keyboard.press("ArrowRight");
    assert.notEqual((await readout(page))["Place (x, y, z)"], before);
    await page.keyboard.press("]");
    assert.match(await page.textContent(".threshold-words"), /^q = 0.01/);
    await page.keyboard.press("Space");
    assert.equal(await page.getByLabel("Show the map").isChecked(), false);
    await page.keyboard.press("?");
    assert.ok(await page.isVisible("dialog.key-list"));
    await page.context().close();
  });

  for (const [name, options] of Object.entries({
    light: { viewport: { width: 1280, height: 900 } },
    dark: { viewport: { width: 1280, height: 900 }, colorScheme: "dark" },
    phone: { viewport: { width: 390, height: 844 } },
    "200 %": { viewport: { width: 640, height: 450 }, deviceScaleFactor: 2 },
  })) {
    it(`has no serious barrier on any tab, and nothing to scroll sideways: ${name} (9)`, async () => {
      const page = await open({ bypassCSP: true, ...options });
      await calibrated(page);
      for (const tab of ["Explore", "Results", "Runs", "Plug-in"]) {
        await openTab(page, tab);
        if (tab === "Results") await press(page.locator(".result-folders"), "out");
        if (tab === "Results") await page.waitForSelector("section.request table");
        if (tab === "Runs") await page.getByText("Start a request").click();
        assert.deepEqual(await seriousFindings(page), [], tab);
        const [wide, window] = await page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
        assert.ok(wide <= window, `${tab}: ${wide} in ${window}`);
      }
      await page.context().close();
    });
  }

  it("leaves nothing in the folders but what was asked for", () => {
    assert.deepEqual(
      readdirSync(rig.program.data).sort(),
      [kSlow, "made.toml", "out", "saved.html", "saved.png", "sim"].sort(),
    );
    assert.match(readFileSync(join(rig.program.work, "asked.toml"), "utf8"), /title = "asked"/);
  });
});

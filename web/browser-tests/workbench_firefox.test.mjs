// The workbench of the built program in Debian's Firefox: its start, exploring, saving, a session of the plug-in,
// results, runs and help. Skipped, with the reason, where Firefox or the program is missing.
import assert from "node:assert/strict";
import { existsSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import {
  closePage,
  kHasDisplay,
  kWithoutFirefox,
  launchFirefox,
  openFirefoxPage,
  openTab,
  press,
  textOf,
  typeInto,
  waitForText,
} from "./firefox.mjs";
import { kSlow, kWithoutProgram, startProgram } from "./program.mjs";
import { rigOf } from "./rig.mjs";
import { colouredIn } from "./workbench.mjs";

const rig = rigOf(launchFirefox, () => startProgram({ explore: true, withResults: true }));

const isCalibrated = () => document.querySelector(".badge")?.dataset.kind === "calibrated";
const open = () => openFirefoxPage(rig.browser, rig.program.address, rig.problems);

async function colouredPlanes(page) {
  const brain = await page.waitForSelector("[data-part=planes]");
  return (await colouredIn(page, await brain.screenshot({ encoding: "base64" }))).coloured;
}

async function typeAnswer(page, text) {
  await typeInto(page, "form.question input[type=text]", text);
  await press(page, "OK", "form.question");
}

async function enterData(page) {
  const where = () => textOf(page, "form.question .file-where");
  await page.waitForSelector("form.question .file-list button");
  if ((await where()) === "Folders:") await press(page, rig.program.data, "form.question");
  if ((await where()) !== "data/sim") await press(page, "sim/", "form.question");
  await waitForText(page, "form.question .file-where", "data/sim");
}

// The reference, then no more; one condition on one run; saved in data/sim as "firefox".
const kAnswers = [
  (page) => press(page, "1. Reference", "form.question"),
  (page) => typeAnswer(page, "0"),
  (page) => typeAnswer(page, "1"),
  (page) => typeAnswer(page, "whole"),
  async (page) => {
    await enterData(page);
    await press(page, "run-1.vtc", "form.question");
  },
  (page) => typeAnswer(page, "1"),
  (page) => typeAnswer(page, "80"),
  (page) => press(page, "Cancel", "form.question"),
  (page) => typeAnswer(page, ""),
  async (page) => {
    await enterData(page);
    await typeInto(page, "form.question input[type=text]", "firefox");
    await press(page, "Save", "form.question");
  },
];

async function answerAll(page, answers) {
  for (const answer of answers) {
    const form = await page.waitForSelector("form.question");
    await answer(page);
    await page.waitForFunction((old) => !old.isConnected, {}, form);
  }
}

describe("the workbench in Firefox", { skip: kWithoutFirefox || kWithoutProgram }, () => {
  before(rig.begin);
  after(rig.end);

  it("starts, takes the token out of the address, and has its tabs (1)", async () => {
    const page = await open();
    assert.equal(new URL(page.url()).hash, "");
    const tabs = await page.$$eval("[role=tab]", (all) => all.map((tab) => tab.textContent));
    assert.deepEqual(tabs, ["Explore", "Results", "Runs", "Plug-in"]);
    await page.reload();
    await page.waitForSelector(".tabs");
    await closePage(page);
  });

  it("explores: provisional, then calibrated, drawn or said why not (2, 3)", async () => {
    const page = await open();
    await page.waitForFunction(isCalibrated);
    const before = await textOf(page, ".clusters caption");
    if (kHasDisplay) assert.ok((await colouredPlanes(page)) > 50, "the map is drawn");
    else assert.match(await textOf(page, ".brains"), /no WebGL 2/);
    await page.focus(".tabs [role=tab]");
    await page.evaluate(() => document.activeElement.blur());
    for (let n = 0; n < 3; ++n) {
      await page.keyboard.down("Shift");
      await page.keyboard.press("ArrowUp");
      await page.keyboard.up("Shift");
    }
    await page.waitForFunction(
      (old) => document.querySelector(".clusters caption")?.textContent !== old,
      {},
      before,
    );
    await page.waitForFunction(isCalibrated);
    await closePage(page);
  });

  it("saves what is explored as a request (4)", async () => {
    const page = await open();
    await page.waitForFunction(isCalibrated);
    await press(page, "Save as request");
    await page.waitForFunction(() => document.querySelector(".saved pre") !== null);
    const path = join(rig.program.work, "explored.toml");
    assert.match(readFileSync(path, "utf8"), /whole_run = true|intervals/);
    await closePage(page);
  });

  it("holds sessions of the plug-in, cancelled and whole, and shows the maps (5)", async () => {
    const page = await open();
    await openTab(page, "Plug-in");
    for (const answered of [0, 2]) {
      await press(page, "Start a session");
      const cancel = () => press(page, "Cancel", "form.question");
      await answerAll(page, [...kAnswers.slice(0, answered), cancel]);
      await waitForText(page, ".session-state", "The session has ended");
    }
    await press(page, "Start a session");
    await answerAll(page, kAnswers);
    await waitForText(page, ".session-state", "The session has ended well.");
    assert.ok(existsSync(join(rig.program.data, "sim", "firefox_Reference.tav")));
    await waitForText(page, ".session-viewer .map-head", "firefox_Reference.tav");
    await page.waitForSelector(".session-viewer .clusters tbody tr");
    await closePage(page);
  });

  it("shows results and their maps (6)", async () => {
    const page = await open();
    await openTab(page, "Results");
    await press(page, "out", ".result-folders");
    await press(page, "Look at the maps");
    await page.waitForSelector(".map-viewer .clusters tbody tr");
    await waitForText(page, ".map-viewer .map-title", "DTAV");
    await closePage(page);
  });

  it("starts a run, finds it in another page, cancels and resumes it (7)", async () => {
    const first = await open();
    await openTab(first, "Runs");
    await press(first, "Start a request");
    await press(first, rig.program.data, ".panel-runs");
    await press(first, kSlow, ".panel-runs");
    await first.waitForSelector(".run[data-state=running]");
    await closePage(first);
    const page = await open();
    await openTab(page, "Runs");
    await press(page, "Cancel", ".run[data-state=running]");
    await press(page, "Resume", ".run[data-state=cancelled]");
    await press(page, "Cancel", ".run[data-state=running]");
    await page.waitForSelector(".run[data-state=cancelled]");
    await closePage(page);
  });

  it("has its keys and its tour (9)", async () => {
    const page = await open();
    await page.waitForFunction(isCalibrated);
    await page.evaluate(() => document.activeElement.blur());
    await page.keyboard.press("?");
    await page.waitForSelector("dialog[open], .keys:not([hidden])");
    await page.keyboard.press("?");
    await press(page, "Tour");
    await page.waitForSelector(".tour:not([hidden])");
    await closePage(page);
  });
});

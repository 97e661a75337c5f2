// A data set in the page, against the built program: its index with the reports that it links to, its participants,
// and the maps of a test over them.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdtempSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import { launch } from "./browser.mjs";
import { kProgram, kWithoutProgram, startIn } from "./program.mjs";
import { openPage, openTab, press, seriousFindings } from "./program_page.mjs";
import { rigOf } from "./rig.mjs";
import { colouredPixels } from "./workbench.mjs";

const kLong = 60_000;
const kWaits = { timeout: kLong };
const kModel = `[inference]
shuffles = 20
[[test]]
name = "mean"
maps = ["dTAV"]
`;

// A folder with the results of four participants in "out", and of a test of them.
function madeStudy() {
  const root = mkdtempSync(join(tmpdir(), "tavmap-groups-"));
  const run = (...words) => execFileSync(kProgram, words, { cwd: root, stdio: "ignore" });
  run("simulate", "people", "--group-study", "--participants", "4", "--spoilt", "none");
  const atlases = readdirSync(join(root, "people/derivatives/atlas"));
  const atlas = atlases.find((name) => name.endsWith("dseg.nii.gz"));
  writeFileSync(join(root, "quick.toml"), "[settings]\nfwe_draws = 0\n");
  writeFileSync(join(root, "model.toml"), kModel);
  const wanted = [
    "--atlas",
    `people/derivatives/atlas/${atlas}`,
    "--labels",
    "Reference",
    "--trial-types",
    "faces",
  ];
  run(
    "bids",
    "people",
    "out",
    "participant",
    ...wanted,
    "--config-file",
    "quick.toml",
    "--seed",
    "1",
    "--quiet",
  );
  run("group", "out", "--model", "model.toml", "--quiet");
  return root;
}

// The program on a made study, which goes with it.
async function startOnStudy() {
  const root = madeStudy();
  const program = await startIn(root, ["out", "--work-folder", join(root, "work")]);
  const close = async () => {
    const code = await program.close();
    rmSync(root, { recursive: true });
    return code;
  };
  return { ...program, close };
}

const rig = rigOf(launch, startOnStudy);

describe("a data set", { skip: kWithoutProgram }, () => {
  before(rig.begin);
  after(rig.end);

  const open = (options) => openPage(rig.browser, rig.program.address, rig.problems, options);

  async function openFolder(page) {
    await openTab(page, "Results");
    await press(page.locator(".result-folders"), "out");
    await page.waitForSelector("section.request", kWaits);
  }

  it("opens the reports that its index links to, which can ask the program for nothing", async () => {
    const page = await open();
    await openTab(page, "Results");
    const opened = page.context().waitForEvent("page");
    await page.getByRole("link", { name: "Index" }).first().click();
    const index = await opened;
    const statuses = [];
    index.on("response", (response) => statuses.push(response.status()));
    await index.locator("table a", { hasText: "sub-02" }).first().click();
    await index.waitForURL(/sub-02.*_report\.html/);
    assert.match(await index.locator("h1").first().textContent(), /sub-02/);
    assert.deepEqual([...new Set(statuses)], [200]);
    assert.equal(await index.evaluate(() => globalThis.origin), "null");
    const asked = await index.evaluate(() => fetch("/api/start").then(({ status }) => status, String));
    assert.match(String(asked), /Failed to fetch/);
    await page.context().close();
  });

  it("lists its participants and their results", async () => {
    const page = await open();
    await openFolder(page);
    const participants = page.locator(".results table").first();
    assert.equal(await participants.locator("tbody tr").count(), 4);
    await press(participants, "sub-03");
    const own = page.locator("section.request", { hasText: "sub-03" });
    await own.getByRole("button", { name: "Look at the maps" }).click();
    await page.locator(".map-title", { hasText: "Reference" }).waitFor(kWaits);
    assert.match(await page.locator(".map-head").textContent(), /sub-03/);
    await page.context().close();
  });

  it("shows the maps of a test over participants", async () => {
    const page = await open({ bypassCSP: true });
    await openFolder(page);
    const test = page.locator("section.request", { hasText: "Test mean" });
    await test.getByRole("button", { name: "Look at the maps" }).click();
    await page.locator(".map-title", { hasText: "t of the contrast" }).waitFor(kWaits);
    await page.locator(".clusters caption", { hasText: "t, q = 0.05" }).waitFor(kWaits);
    assert.match(await page.locator(".map-viewer").textContent(), /no image of a brain is kept with tests/);
    await page.getByLabel("Map", { exact: true }).selectOption({ label: "z of the contrast" });
    await page.locator(".clusters caption", { hasText: "z, magnitude" }).waitFor(kWaits);
    assert.ok((await page.locator(".clusters tbody tr").count()) > 0);
    const { lit } = await colouredPixels(page, "planes");
    assert.ok(lit > 1000, `${lit} pixels are not black`);
    assert.deepEqual(await seriousFindings(page), []);
    await page.context().close();
  });
});

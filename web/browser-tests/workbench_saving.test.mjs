// What is on the screen, saved: as a request, as a page that stands alone, as a picture.
import assert from "node:assert/strict";
import { mkdtempSync, readFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, it } from "node:test";
import { firstViewer, launch, open, readoutOf } from "./browser.mjs";
import { calibrated, clusterRows, openWorkbench } from "./workbench.mjs";

const folder = mkdtempSync(join(tmpdir(), "tavmap-scene-"));
let browser, page, server, problems, close;
before(async () => {
  browser = await launch();
  ({ page, server, problems, close } = await openWorkbench(browser, { acceptDownloads: true }));
  await calibrated(page);
});
after(async () => {
  await close();
  await browser.close();
});

const numberOf = (text) => Number(text.replace("\u2212", "-").match(/[-+]?[\d.]+/)[0]);

async function saved(button) {
  const [file] = await Promise.all([page.waitForEvent("download"), page.click(`text=${button}`)]);
  const path = join(folder, file.suggestedFilename());
  await file.saveAs(path);
  return path;
}

it("a request: where it is, how it is run, and a way to the runs", async () => {
  await page.getByLabel("Name", { exact: true }).fill("motor");
  await page.click("text=Save as request");
  await page.waitForSelector(".saved pre");
  assert.equal(await page.textContent(".saved pre"), "tavmap run ~/tavmap/requests/motor.toml");
  const { body } = server.requests.find(({ path }) => path === "/api/explore/request");
  assert.equal(body.name, "motor");
  assert.equal(body.reference.kind, "sphere");
  await page.click("text=Open in Runs");
  assert.equal(await page.getAttribute("#tab-runs", "aria-selected"), "true");
  await page.click("#tab-explore");
});

it("a page that opens without the program and shows the same value", async () => {
  const peaks = (await clusterRows(page)).map((row) => numberOf(row[2]));
  const strongest = peaks.sort((a, b) => Math.abs(b) - Math.abs(a))[0];
  const path = await saved("Save scene (HTML)");
  const scene = await open(browser, path);
  const viewer = await firstViewer(scene.page);
  const { Value, Threshold } = await readoutOf(viewer);
  assert.equal(numberOf(Value).toFixed(3), strongest.toFixed(3)); // where the viewer starts
  assert.equal(Threshold, "reached");
  assert.match(await scene.page.textContent("header"), /calibrated: 20 draws/);
  assert.deepEqual(scene.problems, []);
  await scene.context.close();
});

it("a picture", async () => {
  const bytes = readFileSync(await saved("Save picture (PNG)"));
  assert.equal(bytes.subarray(1, 4).toString(), "PNG");
  assert.ok(bytes.readUInt32BE(16) > 600);
  assert.ok(bytes.length > 20_000);
});

it("has met no error", () => {
  assert.deepEqual(problems, []);
});

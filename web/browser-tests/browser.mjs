// A browser, and pages in it that note every error and every request that leaves the file.
import { existsSync, readFileSync } from "node:fs";
import { basename, resolve } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";
import { chromium } from "playwright-core";

export const kFixture = fileURLToPath(new URL("../build/fixture/report.html", import.meta.url));
export const kIndex = fileURLToPath(new URL("../build/fixture/index.html", import.meta.url));

const program = process.env.CHROMIUM ?? "/usr/bin/chromium";

// The sandbox does not start for root. Machines of tests have no graphics card: drawing is done by the processor.
export function launch() {
  const args = ["--enable-unsafe-swiftshader", ...(process.getuid?.() === 0 ? ["--no-sandbox"] : [])];
  return chromium.launch({ executablePath: program, args });
}

// Every page to be tested: [name, path].
export function reports() {
  const given = (process.env.TAVMAP_REPORTS ?? "").split(":").filter((path) => path !== "");
  for (const path of given) {
    if (!existsSync(path)) throw new Error(`TAVMAP_REPORTS names ${path}, which is not there`);
  }
  const named = given.map((path) => [basename(path), resolve(path)]);
  return [["fixture", kFixture], ["fixture index", kIndex], ...named];
}

// Those with maps to look at.
export function reportsWithData() {
  return reports().filter(([, path]) => readFileSync(path, "utf8").includes('id="tavmap-data"'));
}

// The tests read canvases back, which the browser remarks on; pages do not.
const kOfTheTests = /getImageData/;

function noteProblems(page, url, problems) {
  page.on("console", (message) => {
    const wrong = message.type() === "error" || message.type() === "warning";
    if (wrong && !kOfTheTests.test(message.text())) problems.push(message.text());
  });
  page.on("pageerror", (error) => problems.push(String(error)));
  page.on("dialog", (dialog) => {
    problems.push(`dialog: ${dialog.message()}`);
    void dialog.dismiss();
  });
  page.on("request", (request) => {
    if (request.url() !== url && !request.url().startsWith("data:"))
      problems.push(`request: ${request.url()}`);
  });
}

const kUsual = { width: 1280, height: 900, scheme: "light" };

// Opens a file; `problems` grows by whatever goes wrong. Close the page's context when done.
export async function open(browser, path, options = {}) {
  const { width, height, scheme, ...more } = { ...kUsual, ...options };
  const context = await browser.newContext({
    viewport: { width, height },
    colorScheme: scheme,
    reducedMotion: "reduce",
    ...more,
  });
  const page = await context.newPage();
  const url = pathToFileURL(path).href;
  const problems = [];
  noteProblems(page, url, problems);
  await page.route("**/*", (route) =>
    route.request().url() === url || route.request().url().startsWith("data:")
      ? route.continue()
      : route.abort(),
  );
  const started = Date.now();
  await page.goto(url.split("#")[0]);
  return { page, context, problems, started };
}

// Brings every viewer and chart onto the screen and waits until they are drawn.
export async function showAll(page) {
  for (const element of await page.$$("div.viewer, figure.chart")) await element.scrollIntoViewIfNeeded();
  await page.waitForFunction(() =>
    Array.from(document.querySelectorAll("div.viewer")).every((each) => each.classList.contains("ready")),
  );
  await page.waitForFunction(() =>
    Array.from(document.querySelectorAll("figure.chart")).every(
      (each) => each.querySelector("canvas") !== null,
    ),
  );
  await page.evaluate(() => scrollTo(0, 0));
}

// Brings the element onto the screen and waits until the viewers that are made on the way are drawn: they grow
// meanwhile, and a click whose press and release have that between them is none.
export async function bringToRest(page, element) {
  await element.scrollIntoViewIfNeeded();
  await page.waitForFunction(async () => {
    const frame = () => new Promise((resolve) => requestAnimationFrame(resolve));
    await frame();
    await frame(); // by now it is known what came near
    const made = Array.from(document.querySelectorAll("div.viewer")).filter(
      (each) => each.childElementCount > 0,
    );
    return made.every((each) => each.classList.contains("ready"));
  });
}

// The first viewer of the page, drawn; null: the page has none.
export async function firstViewer(page) {
  const viewer = await page.$("div.viewer");
  if (viewer === null) return null;
  await viewer.scrollIntoViewIfNeeded();
  await page.waitForSelector("div.viewer.ready");
  return viewer;
}

// The readout of a viewer: what stands beside each name.
export function readoutOf(viewer) {
  return viewer.$$eval(".readout-line", (lines) =>
    Object.fromEntries(lines.map((line) => [line.children[0].textContent, line.children[1].textContent])),
  );
}

export const kVoxel = "Voxel (i, j, k) of the image";

// Where the crosshair is, as indices of the upright grid: the readout has those of the image's file.
export async function voxelOf(viewer) {
  const shown = (await readoutOf(viewer))[kVoxel].split(", ").map(Number);
  return viewer.evaluate((_, indices) => {
    const { size, stored } = JSON.parse(document.querySelector("#tavmap-data").textContent).grid;
    const upright = [0, 0, 0];
    stored.forEach(({ axis, reversed }, n) => {
      upright[axis] = reversed ? size[axis] - 1 - indices[n] : indices[n];
    });
    return upright;
  }, shown);
}

export function dataOf(page) {
  return page.$eval("#tavmap-data", (element) => JSON.parse(element.textContent));
}

// How many pixels of a plane are coloured rather than grey or of the outline.
export function colouredPixels(viewer, plane) {
  return viewer.$eval(`[data-plane=${plane}] canvas`, (canvas) => {
    const { data } = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height);
    let count = 0;
    for (let n = 0; n < data.length; n += 4) {
      const [red, green, blue] = [data[n], data[n + 1], data[n + 2]];
      const outline = Math.abs(green - blue) < 8 && red < green;
      if (!outline && Math.max(red, green, blue) - Math.min(red, green, blue) > 40) count += 1;
    }
    return count;
  });
}

// The workbench in a browser, against the program that fixtures/workbench/ plays.
import { kToken, startServer } from "../fixtures/workbench/server.mjs";
import { noteProblems } from "./problems.mjs";

const kUsual = { width: 1280, height: 900, scheme: "light", tour: false, refusals: false, server: {} };

// options.tour: as on the first start; options.refusals: refusals of the program are expected.
export async function openWorkbench(browser, options = {}) {
  const {
    width,
    height,
    scheme,
    tour,
    refusals,
    server: played,
    address,
    ...more
  } = { ...kUsual, ...options };
  const server = await startServer(played);
  const viewport = { width, height };
  const context = await browser.newContext({
    viewport,
    colorScheme: scheme,
    reducedMotion: "reduce",
    ...more,
  });
  if (!tour) await context.addInitScript(() => localStorage.setItem("tavmap-tour", "seen"));
  const page = await context.newPage();
  const problems = [];
  noteProblems(page, server.origin, problems, { refusals });
  await page.goto(address === undefined ? server.address : server.origin + address);
  const close = async () => {
    await context.close();
    await server.close();
  };
  return { page, context, server, problems, close };
}

export { kToken };

function isCalibrated() {
  const badge = document.querySelector(".badge");
  return badge?.dataset.kind === "calibrated" && document.querySelector(".badge-note").textContent === "";
}

const kStillMs = 400;

// Resolves when the calibrated maps are shown and stay: a slow machine may rest in the middle of a drag.
export async function calibrated(page) {
  do {
    await page.waitForFunction(isCalibrated, null, { timeout: 60_000 });
    await page.waitForTimeout(kStillMs);
  } while (!(await page.evaluate(isCalibrated)));
}

// A point of the planes as a share of their width and height, in the window's pixels.
export async function pointAt(page, across, down, part = "planes") {
  const canvas = page.locator(`[data-part=${part}] canvas`);
  await canvas.evaluate((element) => element.scrollIntoView({ block: "center" }));
  const box = await canvas.boundingBox();
  return [box.x + across * box.width, box.y + down * box.height];
}

export function mapsAsked(server) {
  return server.requests.filter(({ path }) => path === "/api/explore/maps").map(({ body }) => body);
}

export async function readout(page) {
  return page.$$eval(".readout-line", (lines) =>
    Object.fromEntries(lines.map((line) => [line.children[0].textContent, line.children[1].textContent])),
  );
}

const kFrame = 8; // pixels: the focus has a coloured frame

// How many pixels of a brain are coloured rather than grey, and how many are not black.
export async function colouredPixels(page, part) {
  const picture = await page.locator(`[data-part=${part}]`).screenshot();
  return colouredIn(page, picture.toString("base64"));
}

// The same of a picture that was taken already.
export function colouredIn(page, base64Picture) {
  return page.evaluate(
    async ([base64, frame]) => {
      const image = new Image();
      image.src = `data:image/png;base64,${base64}`;
      await image.decode();
      const canvas = new OffscreenCanvas(image.width, image.height);
      const context = canvas.getContext("2d");
      context.drawImage(image, 0, 0);
      const { data } = context.getImageData(frame, frame, image.width - 2 * frame, image.height - 2 * frame);
      let [coloured, lit] = [0, 0];
      for (let n = 0; n < data.length; n += 4) {
        const [red, green, blue] = [data[n], data[n + 1], data[n + 2]];
        const outline = Math.abs(green - blue) < 30 && red < green - 30;
        if (Math.max(red, green, blue) > 50) lit += 1;
        if (!outline && Math.max(red, green, blue) - Math.min(red, green, blue) > 40) coloured += 1;
      }
      return { coloured, lit };
    },
    [base64Picture, kFrame],
  );
}

export function clusterRows(page) {
  return page.$$eval(".clusters tbody tr", (rows) =>
    rows.map((row) => Array.from(row.cells, (cell) => cell.textContent)),
  );
}

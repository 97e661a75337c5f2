// How fast the workbench follows the mouse, in Chromium: node bench/drag.mjs [--minutes N]
//
// Prints the time from the start to the first picture, from a move of the mouse to new values in the page and to their
// picture (median and 95 %), maps per second while dragging; with --minutes also a table of what the page's heap, the
// browser's processes and the program hold while it is dragged for so long, and what they grow by. TAVMAP_ADDRESS: the address that a running `tavmap workbench` printed; without it the
// made-up program of fixtures/ is measured, which says what the page alone takes. TAVMAP_PID: the program, whose memory
// is then watched as well.
import { launch } from "../browser-tests/browser.mjs";
import { calibrated, pointAt } from "../browser-tests/workbench.mjs";
import { startServer } from "../fixtures/workbench/server.mjs";
import { memoryNow, printGrowth } from "./memory.mjs";

// In the page: notes when values and pictures of a move are there. Reading a pixel waits for the graphics.
function watchDrags() {
  const seen = { values: [], program: [], pictures: [], drafts: 0, isDrawing: true };
  window.tavmapSeen = seen;
  let moved = 0;
  let uploaded = null;
  let newest = null;
  addEventListener("pointermove", (event) => (moved = event.timeStamp), true);
  const fetched = window.fetch;
  window.fetch = async (path, request) => {
    const isDraft = path === "/api/explore/maps" && JSON.parse(request.body).draft;
    const stamp = moved;
    const response = await fetched(path, request);
    if (!isDraft || !response.ok) return response;
    const read = response.arrayBuffer.bind(response);
    response.arrayBuffer = async () => {
      const buffer = await read();
      seen.values.push(performance.now() - stamp);
      const header = new TextDecoder().decode(
        new Uint8Array(buffer, 4, new DataView(buffer).getUint32(0, true)),
      );
      seen.program.push(JSON.parse(header).elapsedMs);
      seen.drafts += 1;
      newest = stamp;
      return buffer;
    };
    return response;
  };
  const context = WebGL2RenderingContext.prototype;
  const upload = context.texSubImage3D;
  context.texSubImage3D = function (...all) {
    uploaded = newest ?? uploaded;
    newest = null;
    return upload.apply(this, all);
  };
  for (const name of ["drawArrays", "drawElements"]) {
    const draw = context[name];
    context[name] = function (...all) {
      if (seen.isDrawing) draw.apply(this, all);
    };
  }
  const finish = context.finish;
  context.finish = function () {
    finish.call(this);
    if (uploaded === null || !seen.isDrawing) return;
    this.readPixels(0, 0, 1, 1, this.RGBA, this.UNSIGNED_BYTE, new Uint8Array(4));
    seen.pictures.push(performance.now() - uploaded);
    uploaded = null;
  };
}

function quantile(values, share) {
  const sorted = [...values].sort((a, b) => a - b);
  return Math.round(sorted[Math.floor(share * (sorted.length - 1))] ?? NaN);
}

function line(what, values) {
  console.log(
    `${what}: median ${quantile(values, 0.5)} ms, 95 % ${quantile(values, 0.95)} ms, ${values.length} times`,
  );
}

async function drag(page, seconds) {
  const points = [await pointAt(page, 0.14, 0.7), await pointAt(page, 0.3, 0.8)];
  await page.mouse.move(...points[0]);
  await page.mouse.down();
  const started = Date.now();
  for (let n = 0; Date.now() - started < 1000 * seconds; ++n) {
    const share = 0.5 - 0.5 * Math.cos(n / 40);
    await page.mouse.move(...points[0].map((from, axis) => from + share * (points[1][axis] - from)));
    await page.waitForTimeout(14);
  }
  await page.mouse.up();
  return (Date.now() - started) / 1000;
}

const kSamples = 10;

// Drags for so long and measures on the way, each time when the reference has come to rest.
async function growth(page, seconds) {
  const started = Date.now();
  const sample = async () => ({
    seconds: (Date.now() - started) / 1000,
    ...(await memoryNow(page, process.env.TAVMAP_PID)),
  });
  const samples = [await sample()];
  for (let n = 0; n < kSamples; ++n) {
    await drag(page, seconds / kSamples);
    await calibrated(page);
    samples.push(await sample());
  }
  printGrowth(samples);
}

function minutes() {
  const at = process.argv.indexOf("--minutes");
  return at < 0 ? 0 : Number(process.argv[at + 1]);
}

const played = process.env.TAVMAP_ADDRESS === undefined ? await startServer() : null;
const browser = await launch();
const page = await browser.newPage({ viewport: { width: 1280, height: 900 } });
await page.addInitScript(() => localStorage.setItem("tavmap-tour", "seen"));
await page.addInitScript(watchDrags);
const started = Date.now();
await page.goto(process.env.TAVMAP_ADDRESS ?? played.address);
await page.waitForFunction(() => window.tavmapSeen.pictures.length > 0, null, { timeout: 600_000 });
console.log(`start to first picture: ${Date.now() - started} ms`);
await calibrated(page);
// Software that draws takes the processors that values need: these are also measured with nothing drawn.
async function measured(isDrawing) {
  await page.evaluate(
    (drawing) =>
      Object.assign(window.tavmapSeen, {
        values: [],
        program: [],
        pictures: [],
        drafts: 0,
        isDrawing: drawing,
      }),
    isDrawing,
  );
  const seconds = await drag(page, 15);
  return { ...(await page.evaluate(() => window.tavmapSeen)), seconds };
}
const bare = await measured(false);
line("mouse to values, nothing drawn", bare.values);
line("of it the program", bare.program);
await page.evaluate(() => Object.assign(window.tavmapSeen, { isDrawing: true }));
await calibrated(page);
const drawn = await measured(true);
line("mouse to values, drawn in software", drawn.values);
line("of it the program", drawn.program);
line("mouse to picture", drawn.pictures);
console.log(`maps per second while dragging: ${(drawn.drafts / drawn.seconds).toFixed(1)}`);
if (minutes() > 0) await growth(page, 60 * minutes());
await browser.close();
await played?.close();

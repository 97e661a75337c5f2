// Left is left: a marker on the patient's left shows on the side marked L, in mosaics and in the viewer, with its
// millimetres. Reports of tests/report/write_samples: TAVMAP_SAMPLES names their folder.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { join } from "node:path";
import { firstViewer, launch, open, readoutOf } from "./browser.mjs";

const kMarker = [-12, 9, 8]; // mm; a block around it has values far above all else
const folder = process.env.TAVMAP_SAMPLES;

// The mean place of strongly coloured pixels, as shares of a panel's width and the picture's height. Runs in the page.
function colouredCentre(bytes, columns) {
  return createImageBitmap(new Blob([new Uint8Array(bytes)])).then((picture) => {
    const canvas = new OffscreenCanvas(picture.width, picture.height);
    const context = canvas.getContext("2d");
    context.drawImage(picture, 0, 0);
    const { data } = context.getImageData(0, 0, picture.width, picture.height);
    let [x, y, count] = [0, 0, 0];
    for (let n = 0; n < data.length; n += 4) {
      const [red, green, blue] = [data[n], data[n + 1], data[n + 2]];
      if (red < 200 || green < 100 || red - blue < 80) continue; // the yellow end of the scale
      x += ((((n / 4) % picture.width) / picture.width) * columns) % 1;
      y += Math.floor(n / 4 / picture.width);
      count += 1;
    }
    return { x: x / count, y: y / count / picture.height, count };
  });
}

async function centreOf(page, element, columns) {
  const bytes = Array.from(await element.screenshot());
  return page.evaluate(`(${colouredCentre.toString()})(${JSON.stringify(bytes)}, ${columns})`);
}

for (const kind of folder === undefined ? [] : ["las", "ras", "oblique"]) {
  describe(`a report of a ${kind} image`, () => {
    let browser = null;
    let page = null;
    before(async () => {
      browser = await launch();
      ({ page } = await open(browser, join(folder, kind, "sample_report.html")));
    });
    after(async () => {
      await browser?.close();
    });

    it("shows the marker on the left of its slices", async () => {
      const mosaic = await page.$("#mosaic-0-0-DTAV > svg");
      const { x, count } = await centreOf(page, mosaic, 5);
      assert.ok(count > 50, `${count} pixels are coloured`);
      assert.ok(x < 0.5, `${x} of the way from left to right in its slice`);
    });

    it("shows it on the left of the viewer's axial slice, at its millimetres", async () => {
      const viewer = await firstViewer(page);
      await page.click('button.jump[data-kind="DTAV"]');
      const readout = await readoutOf(viewer);
      const place = readout["Place (x, y, z)"].replace(/[^\d.,\u2212-]/g, "").replace(/\u2212/g, "-");
      place.split(",").forEach((text, axis) => {
        assert.ok(Math.abs(Number(text) - kMarker[axis]) < 3.6, `${text} mm along axis ${axis}`);
      });
      assert.match(readout.Value, /\+50/);
      assert.match(readout.p, /p 4\.5/); // -log10, as the image of p has it
      const { x, y, count } = await centreOf(page, await viewer.$("[data-plane=axial] canvas"), 1);
      assert.ok(count > 50, `${count} pixels are coloured`);
      assert.ok(x < 0.5, `${x} of the way from left to right`);
      assert.ok(y < 0.5, `${y} of the way from front to back`);
    });
  });
}

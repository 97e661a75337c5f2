// The viewer on every page that has one.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import {
  bringToRest,
  colouredPixels,
  dataOf,
  firstViewer,
  launch,
  open,
  readoutOf,
  reportsWithData,
  kVoxel,
  voxelOf,
} from "./browser.mjs";

let browser;
before(async () => {
  browser = await launch();
});
after(() => browser.close());

// The middle of a voxel of the axial plane, in the window's pixels.
async function pointAt(viewer, size, column, row) {
  const box = await (await viewer.$("[data-plane=axial] canvas")).boundingBox();
  return [box.x + ((column + 0.5) / size[0]) * box.width, box.y + ((row + 0.5) / size[1]) * box.height];
}

for (const [name, path] of reportsWithData()) {
  describe(`the viewer of ${name}`, () => {
    let page, context, problems, viewer, size;
    before(async () => {
      ({ page, context, problems } = await open(browser, path));
      viewer = await firstViewer(page);
      if (viewer !== null) ({ size } = (await dataOf(page)).grid);
    });
    after(() => context.close());

    it("follows the mouse, clicked and dragged", async (t) => {
      if (viewer === null) return t.skip("no viewer");
      await page.mouse.click(...(await pointAt(viewer, size, 5, 7)));
      assert.deepEqual((await voxelOf(viewer)).slice(0, 2), [5, size[1] - 1 - 7]);
      await page.mouse.down();
      await page.mouse.move(...(await pointAt(viewer, size, 20, 30)), { steps: 4 });
      assert.deepEqual((await voxelOf(viewer)).slice(0, 2), [20, size[1] - 1 - 30]);
      await page.mouse.up();
      await page.mouse.move(...(await pointAt(viewer, size, 8, 8)));
      assert.deepEqual((await voxelOf(viewer)).slice(0, 2), [20, size[1] - 1 - 30]);
    });

    it("follows the keyboard", async (t) => {
      if (viewer === null) return t.skip("no viewer");
      await page.mouse.click(...(await pointAt(viewer, size, 10, 10)));
      const [i, j, k] = await voxelOf(viewer);
      const pressed = async (key) => {
        await page.keyboard.press(key);
        return voxelOf(viewer);
      };
      assert.deepEqual(await pressed("ArrowRight"), [i + 1, j, k]);
      assert.deepEqual(await pressed("ArrowUp"), [i + 1, j + 1, k]);
      assert.deepEqual(await pressed("PageDown"), [i + 1, j + 1, k - 1]);
      assert.deepEqual(await pressed("Shift+ArrowRight"), [i + 6, j + 1, k - 1]);
      await (await viewer.$("[data-plane=sagittal]")).focus();
      assert.deepEqual(await pressed("ArrowLeft"), [i + 6, j, k - 1]);
      assert.deepEqual(await pressed("PageUp"), [i + 7, j, k - 1]);
    });

    it("changes the threshold by slider and brackets", async (t) => {
      if (viewer === null) return t.skip("no viewer");
      const words = () => viewer.$eval(".threshold-words", (element) => element.textContent);
      const slider = await viewer.$("input[type=range]");
      await slider.fill(await slider.getAttribute("min"));
      const lowest = await words();
      await (await viewer.$("[data-plane=axial]")).focus();
      await page.keyboard.press("]");
      const raised = await words();
      assert.notEqual(raised, lowest);
      assert.match(raised, /\u2265/);
      await page.keyboard.press("[");
      assert.equal(await words(), lowest);
      assert.equal(await slider.getAttribute("aria-valuetext"), lowest);
    });

    it("shows less the higher the threshold, and nothing with the map off", async (t) => {
      if (viewer === null) return t.skip("no viewer");
      await viewer.evaluate((each) => each.scrollIntoView());
      const jump = await page.$("button.jump");
      if (jump !== null) await jump.click();
      await page.waitForTimeout(200);
      const slider = await viewer.$("input[type=range]");
      const hide = await viewer.$(".switch:nth-of-type(3) input, .switch:has-text('Hide') input");
      await hide.check();
      await slider.fill("0");
      const all = await colouredPixels(viewer, "axial");
      await slider.fill(await slider.getAttribute("max"));
      const few = await colouredPixels(viewer, "axial");
      assert.ok(few < all, `${few} of ${all}`);
      await slider.fill("0");
      await (await viewer.$("[data-plane=axial]")).focus();
      await page.keyboard.press("Space");
      assert.equal(await colouredPixels(viewer, "axial"), 0);
      await page.keyboard.press("Space");
      assert.equal(await colouredPixels(viewer, "axial"), all);
    });

    it("offers every map of its view", async (t) => {
      if (viewer === null) return t.skip("no viewer");
      const [view] = (await dataOf(page)).views;
      for (const { kind, negative } of view.maps) {
        await (await viewer.$("select")).selectOption(kind);
        await page.waitForTimeout(150);
        assert.equal(
          await viewer.$$eval(".legend-bar .arm", (arms) => arms.length),
          negative === null ? 1 : 2,
        );
        assert.ok((await readoutOf(viewer)).Value.length > 0);
      }
    });

    it("goes to each peak that is asked for and takes the keyboard", async (t) => {
      const jumps = await page.$$("button.jump");
      if (jumps.length === 0) return t.skip("no peaks");
      for (const jump of jumps.slice(0, 5)) {
        const { view, kind, voxel } = await jump.evaluate((button) => ({ ...button.dataset }));
        await bringToRest(page, jump);
        await jump.click();
        const target = await page.$(`div.viewer[data-view="${view}"]`);
        await page.waitForFunction((each) => each.contains(document.activeElement), target);
        assert.deepEqual(await voxelOf(target), voxel.split(" ").map(Number));
        assert.equal(await target.$eval("select", (select) => select.value), kind);
        assert.ok(await target.evaluate((each) => each.getBoundingClientRect().top < innerHeight));
      }
    });

    it("tells readers of the screen where the crosshair is", async (t) => {
      if (viewer === null) return t.skip("no viewer");
      await (await viewer.$("[data-plane=axial]")).focus();
      await page.keyboard.press("ArrowRight");
      const shown = (await readoutOf(viewer))[kVoxel];
      await page.waitForFunction(
        ([element, text]) => element.querySelector(".visually-hidden[aria-live]").textContent.includes(text),
        [viewer, `${kVoxel}: ${shown}`],
      );
    });

    it("has met no error", () => {
      assert.deepEqual(problems, []);
    });
  });
}

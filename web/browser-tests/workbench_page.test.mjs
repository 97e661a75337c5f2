// The workbench as a page: its start, its help, its barriers, narrow and zoomed windows.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import axe from "axe-core";
import { launch } from "./browser.mjs";
import { calibrated, kToken, openWorkbench } from "./workbench.mjs";

let browser;
before(async () => {
  browser = await launch();
});
after(() => browser.close());

describe("the start", () => {
  it("takes the token out of the address and keeps the session when the page is loaded again", async () => {
    const { page, problems, close } = await openWorkbench(browser);
    await page.waitForSelector(".tabs");
    assert.equal(new URL(page.url()).hash, "");
    assert.ok(!(await page.content()).includes(kToken));
    await page.reload();
    await page.waitForSelector(".tabs");
    assert.deepEqual(problems, []);
    await close();
  });

  it("says where the address is when there is no token", async () => {
    const { page, problems, close } = await openWorkbench(browser, { address: "/" });
    assert.match(await page.textContent("[role=alert]"), /address that tavmap workbench printed/);
    assert.deepEqual(problems, []);
    await close();
  });

  it("says what the program said when it refuses", async () => {
    const { page, close } = await openWorkbench(browser, { address: "/#token=wrong", refusals: true });
    assert.match(await page.textContent("[role=alert]"), /not that of this start/);
    await close();
  });

  it("shows what is being loaded, how far, and what memory it takes", async () => {
    const state = { state: "loading", message: "Reading run-1", progress: 0.4, memoryBytes: 5e8 };
    const options = { refusals: true, server: { explore: () => state } };
    const { page, close } = await openWorkbench(browser, options);
    await page.waitForSelector(".waiting progress");
    assert.match(await page.textContent(".waiting"), /Reading run-1.*500 MB/s);
    await close();
  });
});

it("computes maps and says why nothing is drawn where there is no WebGL 2", async () => {
  const { page, problems, close } = await openWorkbench(browser);
  await page.addInitScript(() => {
    const made = HTMLCanvasElement.prototype.getContext;
    HTMLCanvasElement.prototype.getContext = function (kind, ...more) {
      return kind === "webgl2" ? null : made.call(this, kind, ...more);
    };
  });
  await page.waitForSelector(".tabs");
  await page.reload();
  await calibrated(page);
  assert.match(await page.textContent(".brains"), /no WebGL 2/);
  assert.ok((await page.$$(".clusters tbody tr")).length > 0);
  await page.keyboard.press("Shift+ArrowLeft");
  await calibrated(page);
  assert.deepEqual(problems, []);
  await close();
});

describe("help", () => {
  it("is a tour at the first start, and not at the second", async () => {
    const { page, problems, close } = await openWorkbench(browser, { tour: true });
    await page.waitForSelector(".tour:not([hidden])");
    const titles = [];
    while (await page.isVisible(".tour")) {
      titles.push(await page.textContent(".tour h2"));
      assert.equal(await page.locator(".toured").count(), 1);
      await page.locator(".tour button").nth(1).click();
    }
    assert.equal(titles.length, 7);
    await page.reload();
    await calibrated(page);
    assert.equal(await page.isVisible(".tour"), false);
    await page.click("text=Tour");
    assert.ok(await page.isVisible(".tour"));
    assert.deepEqual(problems, []);
    await close();
  });

  it("has a question mark with words at every control", async () => {
    const { page, close } = await openWorkbench(browser);
    await calibrated(page);
    await page.click("summary");
    const fields = await page.$$(".field:visible, fieldset.group:visible");
    assert.ok(fields.length > 7);
    for (const field of fields) {
      const mark = await field.$(":scope > .hint > .hint-mark");
      assert.ok(mark, await field.textContent());
      await mark.click();
      assert.ok((await (await field.$(":scope > .hint > .hint-words")).innerText()).length > 15);
    }
    await close();
  });
});

const kViews = {
  light: {},
  dark: { scheme: "dark" },
  phone: { width: 360, height: 740 },
  "200 %": { width: 640, height: 450, deviceScaleFactor: 2 },
};
const kSerious = new Set(["serious", "critical"]);

function described({ id, nodes }) {
  return `${id}: ${nodes.map((node) => `${node.target} ${node.failureSummary}`).join("; ")}`;
}

for (const [name, view] of Object.entries(kViews)) {
  it(`has no serious barrier and nothing to scroll sideways: ${name}`, async () => {
    const { page, problems, close } = await openWorkbench(browser, { ...view, bypassCSP: true });
    await calibrated(page);
    await page.click("summary");
    await page.waitForFunction(() => document.querySelectorAll(".voxel-panels canvas").length === 4);
    await page.evaluate(axe.source);
    const { violations } = await page.evaluate(() =>
      window.axe.run(document, { resultTypes: ["violations"] }),
    );
    assert.deepEqual(violations.filter(({ impact }) => kSerious.has(impact)).map(described), []);
    const [wide, window] = await page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
    assert.ok(wide <= window, `${wide} in ${window}`);
    assert.deepEqual(problems, []);
    await close();
  });
}

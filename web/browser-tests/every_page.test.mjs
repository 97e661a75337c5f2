// What holds for every page: the fixture's and those that TAVMAP_REPORTS names.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { launch, open, reports, showAll } from "./browser.mjs";

let browser;
before(async () => {
  browser = await launch();
});
after(() => browser.close());

for (const [name, path] of reports()) {
  describe(`the page ${name}`, () => {
    let page, context, problems, started;
    before(async () => {
      ({ page, context, problems, started } = await open(browser, path));
    });
    after(() => context.close());

    it("starts", async (t) => {
      await page.waitForFunction(() => !document.documentElement.classList.contains("no-script"));
      t.diagnostic(`${name}: ready for the first click after ${Date.now() - started} ms`);
      await showAll(page);
    });

    it("sorts its tables by a click on a head, both ways", async (t) => {
      const heads = await page.$$("table.sortable th[data-sort]");
      if (heads.length === 0) return t.skip("no table to sort");
      for (const head of heads.slice(0, 4)) {
        for (const order of ["ascending", "descending"]) {
          await head.$eval("button", (button) => button.click());
          assert.equal(await head.getAttribute("aria-sort"), order);
          const values = await head.evaluate(valuesBelow);
          assert.ok(inOrder(values, order), `${order}: ${values.map(({ text }) => text).join(" | ")}`);
        }
      }
    });

    it("leads from the contents to its sections", async (t) => {
      const links = await page.$$("nav.contents a[href^='#']");
      if (links.length === 0) return t.skip("no contents");
      for (const link of links) {
        await link.click();
        const id = decodeURIComponent((await link.getAttribute("href")).slice(1));
        const box = await page.evaluate((each) => {
          const { top } = document.getElementById(each).getBoundingClientRect();
          const end = Math.ceil(scrollY + innerHeight) >= document.documentElement.scrollHeight - 2;
          return { top, end };
        }, id);
        assert.ok(Math.abs(box.top) < 60 || (box.end && box.top > 0), `${id} at ${box.top}`);
      }
      await page.waitForFunction(() => document.querySelectorAll("nav.contents [aria-current]").length === 1);
    });

    it("changes its colours, and its charts'", async (t) => {
      const button = await page.$("button.theme");
      if (button === null) return t.skip("no theme button");
      await page.evaluate(() => scrollTo(0, 0));
      const before = await page.evaluate(coloursAndChart);
      await button.click();
      await page.waitForTimeout(100);
      const dark = await page.evaluate(coloursAndChart);
      assert.notEqual(dark.back, before.back);
      if (before.chart !== null) assert.notEqual(dark.chart, before.chart);
      await button.click();
      await page.waitForTimeout(100);
      assert.deepEqual((await page.evaluate(coloursAndChart)).back, before.back);
    });

    it("opens its details", async (t) => {
      const details = await page.$("details:not([open])");
      if (details === null) return t.skip("nothing to unfold");
      await (await details.$("summary")).click();
      assert.ok(await details.evaluate((each) => each.open && each.lastElementChild.offsetHeight > 0));
      await (await details.$("summary")).click();
    });

    it("copies texts, without the clipboard too", async (t) => {
      const button = await page.$("button.copy");
      if (button === null) return t.skip("nothing to copy");
      await page.evaluate(() => Object.defineProperty(navigator, "clipboard", { value: undefined }));
      await button.click();
      await page.waitForFunction((b) => b.nextElementSibling.textContent === "Copied", button);
      const [copied, source] = await button.evaluate((b) => [
        getSelection().toString().trim(),
        document.querySelector(b.dataset.copy).innerText.trim(),
      ]);
      assert.equal(copied, source);
    });

    it("prints light, unfolded, with all charts and without what needs a screen", async () => {
      await page.emulateMedia({ media: "print", colorScheme: "dark" });
      await page.waitForTimeout(200);
      const print = await page.evaluate(() => ({
        back: getComputedStyle(document.body).backgroundColor,
        folded: document.querySelectorAll("details:not([open])").length,
        shown: Array.from(document.querySelectorAll(".viewer, nav.contents, .script-only")).filter(
          (each) => each.offsetHeight > 0,
        ).length,
        undrawn: Array.from(document.querySelectorAll("figure.chart")).filter(
          (each) => !each.querySelector("canvas"),
        ).length,
      }));
      assert.deepEqual(print, { back: "rgb(255, 255, 255)", folded: 0, shown: 0, undrawn: 0 });
      await page.emulateMedia({ media: "screen", colorScheme: "light" });
    });

    it("has met no error and asked for nothing outside its file", () => {
      assert.deepEqual(problems, []);
    });
  });

  it(`the page ${name} is readable without its script`, async () => {
    const { page, context, problems } = await open(browser, path, { javaScriptEnabled: false });
    assert.equal(await page.$$eval(".script-only", (all) => all.filter((e) => e.offsetHeight > 0).length), 0);
    assert.ok((await page.$eval("main", (main) => main.innerText)).length > 100);
    // The browser says that it blocked the script; that is no fault of the page.
    assert.deepEqual(
      problems.filter((text) => text.startsWith("request:")),
      [],
    );
    await context.close();
  });

  it(`the page ${name} fits a phone`, async () => {
    const { page, context, problems } = await open(browser, path, { width: 390, height: 844 });
    await showAll(page);
    const [wide, window] = await page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
    assert.ok(wide <= window, `${wide} pixels in a window of ${window}`);
    assert.deepEqual(problems, []);
    await context.close();
  });
}

// In the page: the texts or stored values of a head's column.
function valuesBelow(head) {
  const rows = Array.from(head.closest("table").tBodies[0].rows);
  return rows.map((row) => {
    const cell = row.cells[head.cellIndex];
    return { text: (cell.dataset.value ?? cell.textContent).trim(), number: head.dataset.sort === "number" };
  });
}

function numberOf(text) {
  return Number(text.replace("\u2212", "-").replace(/,/g, ""));
}

function missing({ text, number }) {
  return ["", "n/a", "–"].includes(text.toLowerCase()) || (number && Number.isNaN(numberOf(text)));
}

function inOrder(values, order) {
  const firstMissing = values.findIndex(missing);
  const known = firstMissing < 0 ? values : values.slice(0, firstMissing);
  if (firstMissing >= 0 && !values.slice(firstMissing).every(missing)) return false;
  const collator = new Intl.Collator("en", { numeric: true, sensitivity: "base" });
  const sign = order === "ascending" ? 1 : -1;
  return known.slice(1).every((value, n) => {
    const [a, b] = [known[n].text, value.text];
    return sign * (value.number ? numberOf(a) - numberOf(b) : collator.compare(a, b)) <= 0;
  });
}

// In the page.
function coloursAndChart() {
  const canvas = document.querySelector("figure.chart canvas");
  return {
    back: getComputedStyle(document.body).backgroundColor,
    chart: canvas === null ? null : canvas.toDataURL(),
  };
}

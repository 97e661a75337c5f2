// No serious barrier for people with disabilities that a program can find, in light, dark and on a phone.
import assert from "node:assert/strict";
import { after, before, it } from "node:test";
import axe from "axe-core";
import { launch, open, reports, showAll } from "./browser.mjs";

const kViews = {
  light: { scheme: "light" },
  dark: { scheme: "dark" },
  phone: { scheme: "light", width: 390, height: 844 },
};
const kSerious = new Set(["serious", "critical"]);

let browser;
before(async () => {
  browser = await launch();
});
after(() => browser.close());

function described({ id, nodes }) {
  return `${id}: ${nodes
    .slice(0, 3)
    .map((node) => `${node.target} (${node.failureSummary})`)
    .join("; ")}`;
}

async function barriers(path, view) {
  const { page, context } = await open(browser, path, view);
  await showAll(page);
  await page.evaluate(axe.source);
  const { violations } = await page.evaluate(() => window.axe.run(document, { resultTypes: ["violations"] }));
  await context.close();
  return violations.filter(({ impact }) => kSerious.has(impact)).map(described);
}

for (const [name, path] of reports()) {
  for (const [view, options] of Object.entries(kViews)) {
    it(`the page ${name}, ${view}, has no serious barrier`, async () => {
      assert.deepEqual(await barriers(path, options), []);
    });
  }
}

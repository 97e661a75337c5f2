import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import { describe, it } from "node:test";

const read = (name: string): string => readFileSync(`style/${name}`, "utf8");
const theme = read("theme.css");

function blockAfter(selector: string): string {
  const from = theme.indexOf("{", theme.indexOf(selector));
  return theme.slice(from, theme.indexOf("}", from));
}

function colour(block: string, name: string): number[] {
  const digits = new RegExp(`--${name}: #([0-9a-f]{6})`).exec(block)?.[1] ?? assert.fail(`no ${name}`);
  return [0, 2, 4].map((at) => parseInt(digits.slice(at, at + 2), 16) / 255);
}

// Relative luminance and contrast of WCAG 2.1.
function luminance(rgb: readonly number[]): number {
  const linear = rgb.map((c) => (c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4));
  return 0.2126 * (linear[0] ?? 0) + 0.7152 * (linear[1] ?? 0) + 0.0722 * (linear[2] ?? 0);
}

function contrast(block: string, one: string, other: string): number {
  const [a, b] = [luminance(colour(block, one)), luminance(colour(block, other))];
  return (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
}

describe("the style", () => {
  it("has one set of dark colours, chosen by the system or by the reader", () => {
    const bySystem = blockAfter(':root:not([data-theme="light"])');
    assert.ok(bySystem.includes("--page"));
    assert.equal(blockAfter(':root[data-theme="dark"]').replace(/\s+/g, " "), bySystem.replace(/\s+/g, " "));
  });

  it("has text of contrast 4.5 and lines of contrast 3 in both", () => {
    for (const block of [blockAfter(":root {"), blockAfter(':root[data-theme="dark"]')]) {
      for (const back of ["page", "raised"]) {
        for (const text of ["text", "muted", "link", "chart-text"]) {
          assert.ok(contrast(block, text, back) >= 4.5, `${text} on ${back}`);
        }
      }
      for (const line of [
        "focus",
        "strong-line",
        "chart-main",
        "chart-second",
        "chart-null",
        "chart-bound",
      ]) {
        assert.ok(contrast(block, line, "page") >= 3, line);
      }
      assert.ok(contrast(block, "on-accent", "accent") >= 4.5);
    }
  });

  it("names all its files in their order", () => {
    const orders = ["order.txt", "workbench_order.txt"].map((name) => read(name).trim().split("\n"));
    for (const order of orders) assert.equal(new Set(order).size, order.length);
    const present = readdirSync("style").filter((name) => name.endsWith(".css"));
    assert.deepEqual([...new Set(orders.flat())].sort(), present.sort());
  });
});

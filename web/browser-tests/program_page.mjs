// The page of the built program: opening it, its tabs, and answers to the plug-in's dialogs.
import axe from "axe-core";
import { noteProblems } from "./problems.mjs";

const kLong = 60_000;
const kSerious = new Set(["serious", "critical"]);

// `problems` grows by every error, warning and request that leaves the page's origin.
export async function openPage(browser, address, problems, options = {}) {
  const page = await (await browser.newContext({ reducedMotion: "reduce", ...options })).newPage();
  await page.addInitScript(() => localStorage.setItem("tavmap-tour", "seen"));
  noteProblems(page, new URL(address).origin, problems);
  await page.goto(address);
  await page.waitForSelector(".tabs");
  return page;
}

export const openTab = (page, name) => page.getByRole("tab", { name, exact: true }).click();
export const press = (within, name) => within.getByRole("button", { name, exact: true }).click();

export async function seriousFindings(page) {
  await page.evaluate(axe.source);
  const { violations } = await page.evaluate(() => globalThis.axe.run());
  return violations
    .filter(({ impact }) => kSerious.has(impact))
    .map(
      ({ id, nodes }) => `${id}: ${nodes.map((node) => `${node.target} ${node.failureSummary}`).join("; ")}`,
    );
}

// Into data/sim, wherever the chooser begins.
async function enterData(form, data) {
  await form.locator(".file-list button").first().waitFor();
  const where = await form.locator(".file-where").textContent();
  if (where === "data/sim") return;
  if (where === "Folders:") await press(form, data);
  await press(form, "sim/");
}

const typeIn = (value) => async (form) => {
  await form.locator("input[type=text]").fill(value);
  await press(form, "OK");
};
const pressed = (name) => (form) => press(form, name);

const openFile = (data) => async (form) => {
  await enterData(form, data);
  await press(form, "run-1.vtc");
};

const saveFile = (data, name) => async (form) => {
  await enterData(form, data);
  await form.locator(".file-where", { hasText: "data/sim" }).waitFor();
  await form.getByLabel("Name").fill(name);
  await press(form, "Save");
};

// The reference by its name in the list, then no more; one condition, typed, on one run; saved in data/sim as NAME.
export function answersOf(data, name) {
  return [
    pressed("1. Reference"),
    typeIn("0"),
    typeIn("1"),
    typeIn("whole"),
    openFile(data),
    typeIn("1"),
    typeIn("80"),
    pressed("Cancel"),
    typeIn(""),
    saveFile(data, name),
  ];
}

export async function answerAll(page, data, name, answers = answersOf(data, name)) {
  for (const answer of answers) {
    const form = await page.waitForSelector("form.question", { timeout: kLong });
    await answer(page.locator("form.question"));
    await page.waitForFunction((old) => !old.isConnected, form, { timeout: kLong });
  }
}

// Results, runs and plug-in sessions in the page, against the built program.
import assert from "node:assert/strict";
import { existsSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import { launch } from "./browser.mjs";
import { kSlow, kWithoutProgram, startProgram } from "./program.mjs";
import {
  answerAll,
  answersOf,
  openPage as openProgramPage,
  openTab,
  press,
  seriousFindings,
} from "./program_page.mjs";
import { rigOf } from "./rig.mjs";

const kLong = 60_000;

const rig = rigOf(launch, startProgram);

const openPage = () => openProgramPage(rig.browser, rig.program.address, rig.problems);
const closePage = (page) => page.context().close();
const runIn = (page, state) => page.locator(`.run[data-state=${state}]`);

async function startRun(page, name) {
  await openTab(page, "Runs");
  await page.getByText("Start a request").click();
  await press(page.locator(".panel-runs"), rig.program.data);
  await press(page.locator(".panel-runs"), name);
}

// Cancels what is asked from now on, and closes messages: dialogs that the plug-in insists on end with the session.
async function cancelUntilTheEnd(page) {
  const ended = page.locator(".session-state", { hasText: "The session has ended" });
  for (let n = 0; n < 5; ++n) {
    const form = page.locator("form.question");
    await ended.or(form).first().waitFor({ timeout: kLong });
    if (await ended.isVisible()) return;
    const question = await page.waitForSelector("form.question", { timeout: kLong });
    const close = form.getByRole("button", { name: /^(Cancel|OK|No)$/ });
    await close.last().click();
    await page.waitForFunction((old) => !old.isConnected, question, { timeout: kLong });
  }
  await press(page, "End the session");
  await ended.waitFor({ timeout: kLong });
}

describe("the tabs of the built program", { skip: kWithoutProgram }, () => {
  before(rig.begin);
  after(rig.end);

  it("carries out a run and shows what it made", async () => {
    const page = await openPage();
    await startRun(page, "made.toml");
    const run = runIn(page, "done");
    await run.waitFor({ timeout: kLong });
    assert.match(await run.getByRole("link", { name: "Report" }).getAttribute("href"), /files\/data\/out\//);
    await press(run, "Show results");
    await page.waitForSelector("section.request table");
    assert.ok((await page.locator("section.request table a").count()) >= 6);
    assert.deepEqual(await seriousFindings(page), []);
    await closePage(page);
  });

  it("finds a run again in another page, and cancels and resumes it; its name stays a text", async () => {
    const first = await openPage();
    await startRun(first, kSlow);
    await runIn(first, "running").waitFor({ timeout: kLong });
    await closePage(first);
    const page = await openPage();
    await openTab(page, "Runs");
    await press(runIn(page, "running"), "Cancel");
    await runIn(page, "cancelled").waitFor({ timeout: kLong });
    assert.ok((await runIn(page, "cancelled").textContent()).includes(kSlow));
    assert.equal(await page.locator(".run b").count(), 0);
    await press(runIn(page, "cancelled"), "Resume");
    await press(runIn(page, "running"), "Cancel");
    await runIn(page, "cancelled").waitFor({ timeout: kLong });
    assert.deepEqual(await seriousFindings(page), []);
    await closePage(page);
  });

  it("holds a session of the plug-in over two pages, with a list to search and files to choose", async () => {
    const first = await openPage();
    await openTab(first, "Plug-in");
    await press(first, "Start a session");
    await first.waitForSelector("form.question .choices", { timeout: kLong });
    await first.getByLabel("Search").fill("refer");
    assert.equal(await first.locator(".choices button").count(), 1);
    assert.deepEqual(await seriousFindings(first), []);
    await closePage(first);
    const page = await openPage();
    await openTab(page, "Plug-in");
    await answerAll(page, rig.program.data, "page");
    await page.getByText("The session has ended well.").waitFor({ timeout: kLong });
    assert.ok(existsSync(join(rig.program.data, "sim", "page_Reference.tav")));
    assert.match(await page.locator(".session-maps").textContent(), /page_Reference\.tav/);
    assert.match(await page.locator(".session-log").textContent(), /Done, all computations/);
    await closePage(page);
  });

  it("takes a cancel at every dialog of a session", async () => {
    const page = await openPage();
    await openTab(page, "Plug-in");
    const answers = answersOf(rig.program.data, "cancelled");
    for (let dialog = 0; dialog < answers.length; ++dialog) {
      await press(page, "Start a session");
      await page.waitForSelector("form.question", { timeout: kLong });
      await answerAll(page, rig.program.data, "cancelled", answers.slice(0, dialog));
      await cancelUntilTheEnd(page);
    }
    await closePage(page);
  });

  it("ends a session from the page", async () => {
    const page = await openPage();
    await openTab(page, "Plug-in");
    await press(page, "Start a session");
    await page.waitForSelector("form.question", { timeout: kLong });
    await press(page, "End the session");
    await page.getByText("The session has ended with a failure.").waitFor({ timeout: kLong });
    await closePage(page);
  });
});

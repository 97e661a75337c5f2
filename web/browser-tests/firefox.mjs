// Debian's Firefox, on a display of its own: without one it has no WebGL 2.
import { spawn } from "node:child_process";
import { existsSync } from "node:fs";
import { noteProblems } from "./problems.mjs";

const kFirefox = process.env.FIREFOX ?? "/usr/bin/firefox-esr";
const kDisplay = "/usr/bin/Xvfb";

const puppeteer = await import("puppeteer-core").then(
  (module) => module.default,
  () => null,
);

function whyNot() {
  if (!existsSync(kFirefox)) return `${kFirefox} is not installed`;
  return puppeteer === null ? "puppeteer-core is not installed" : false;
}

export const kWithoutFirefox = whyNot();
export const kHasDisplay = existsSync(kDisplay);

// What the browser asks its makers for by itself would look like a request of the page; it is told not to.
const kPreferences = {
  "webgl.force-enabled": true,
  "ui.prefersReducedMotion": 1,
  "app.normandy.enabled": false,
  "browser.safebrowsing.malware.enabled": false,
  "browser.safebrowsing.phishing.enabled": false,
  "network.captive-portal-service.enabled": false,
  "network.connectivity-service.enabled": false,
};

// Xvfb chooses a free number and writes it. {number, stop}
async function openDisplay() {
  const arguments_ = ["-displayfd", "3", "-screen", "0", "1400x1100x24", "-nolisten", "tcp"];
  const child = spawn(kDisplay, arguments_, { stdio: ["ignore", "ignore", "ignore", "pipe"] });
  const number = await new Promise((resolve, reject) => {
    child.once("exit", () => reject(new Error("Xvfb did not start")));
    child.stdio[3].once("data", (text) => resolve(String(text).trim()));
  });
  const ended = new Promise((resolve) => child.once("exit", resolve));
  const stop = () => {
    child.kill();
    return ended;
  };
  return { number, stop };
}

// {newContext, close}. Without Xvfb it has no display, and no WebGL 2.
export async function launchFirefox() {
  const display = kHasDisplay ? await openDisplay() : null;
  const env = display === null ? process.env : { ...process.env, DISPLAY: `:${display.number}` };
  const browser = await puppeteer.launch({
    browser: "firefox",
    executablePath: kFirefox,
    headless: display === null,
    env,
    extraPrefsFirefox: kPreferences,
  });
  const close = async () => {
    await browser.close();
    await display?.stop();
  };
  return { newContext: () => browser.createBrowserContext(), close };
}

// `problems` grows by every error, warning and request that leaves the page's origin.
export async function openFirefoxPage(browser, address, problems) {
  const page = await (await browser.newContext()).newPage();
  await page.setViewport({ width: 1280, height: 900 });
  page.setDefaultTimeout(60_000);
  await page.evaluateOnNewDocument(() => {
    if (location.protocol === "http:") localStorage.setItem("tavmap-tour", "seen");
  });
  noteProblems(page, new URL(address).origin, problems);
  await page.goto(address);
  await page.waitForSelector(".tabs");
  return page;
}

export const closePage = (page) => page.browserContext().close();

// Presses the button of this name that is seen, below the selector.
export async function press(page, name, below = "body") {
  const found = await page.waitForFunction(
    (selector, wanted) =>
      Array.from(document.querySelectorAll(`${selector} button, ${selector} summary`)).find(
        (each) => each.offsetParent !== null && !each.disabled && each.textContent.trim() === wanted,
      ),
    {},
    below,
    name,
  );
  await found.asElement().click();
}

export async function openTab(page, name) {
  await press(page, name, ".tabs");
}

export function textOf(page, selector) {
  return page.$eval(selector, (element) => element.textContent);
}

// Resolves when the element's text has this.
export function waitForText(page, selector, text) {
  const has = (wanted, words) =>
    Array.from(document.querySelectorAll(wanted)).some((element) => element.textContent.includes(words));
  return page.waitForFunction(has, {}, selector, text);
}

export async function typeInto(page, selector, text) {
  await page.$eval(selector, (input) => {
    input.value = "";
    input.focus();
  });
  await page.type(selector, text);
}

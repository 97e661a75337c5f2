// Light and dark: the system's choice until the reader makes one. Kept where the browser allows it.
import { all } from "./dom";

type Theme = "light" | "dark";

const kKey = "tavmap-theme";
const kDark = "(prefers-color-scheme: dark)";

function kept(): string | null {
  try {
    return localStorage.getItem(kKey);
  } catch {
    return null; // storage is closed to this page
  }
}

function keep(theme: Theme): void {
  try {
    localStorage.setItem(kKey, theme);
  } catch {
    // The choice then lasts as long as the page.
  }
}

function current(): Theme {
  const chosen = document.documentElement.dataset.theme;
  if (chosen === "light" || chosen === "dark") return chosen;
  return matchMedia(kDark).matches ? "dark" : "light";
}

function other(theme: Theme): Theme {
  return theme === "dark" ? "light" : "dark";
}

function label(button: HTMLElement): void {
  button.textContent = other(current()) === "dark" ? "Dark colours" : "Light colours";
}

function choose(theme: Theme): void {
  document.documentElement.dataset.theme = theme;
  keep(theme);
}

// Calls `changed` whenever the page's colours change: theme, system, or print.
export function onColourChange(changed: () => void): void {
  new MutationObserver(changed).observe(document.documentElement, { attributeFilter: ["data-theme"] });
  for (const query of [kDark, "print"]) matchMedia(query).addEventListener("change", changed);
}

export function setUpTheme(): void {
  const before = kept();
  if (before === "light" || before === "dark") choose(before);
  const buttons = all("button.theme");
  const relabel = (): void => {
    buttons.forEach(label);
  };
  for (const button of buttons) {
    button.addEventListener("click", () => {
      choose(other(current()));
    });
  }
  relabel();
  onColourChange(relabel);
}

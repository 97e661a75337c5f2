// Marks in the contents which section is being read.
import { all } from "./dom";

// Where a section counts as being read: a line below the top of the window.
const kReadingLine = 0.25;

interface Entry {
  readonly link: HTMLElement;
  readonly section: Element;
}

function entries(): Entry[] {
  return all("nav.contents a[href^='#']").flatMap((link) => {
    const section = document.getElementById(decodeURIComponent(link.getAttribute("href") ?? "").slice(1));
    return section === null ? [] : [{ link, section }];
  });
}

// The last section that begins above the line; else the first.
function beingRead(known: readonly Entry[]): Entry | undefined {
  const line = innerHeight * kReadingLine;
  const begun = known.filter(({ section }) => section.getBoundingClientRect().top <= line);
  return begun[begun.length - 1] ?? known[0];
}

function mark(known: readonly Entry[]): void {
  const read = beingRead(known);
  for (const entry of known) {
    if (entry === read) entry.link.setAttribute("aria-current", "location");
    else entry.link.removeAttribute("aria-current");
  }
}

export function setUpContents(): void {
  const known = entries();
  let asked = false;
  const ask = (): void => {
    if (asked) return;
    asked = true;
    requestAnimationFrame(() => {
      asked = false;
      mark(known);
    });
  };
  addEventListener("scroll", ask, { passive: true });
  addEventListener("resize", ask, { passive: true });
  mark(known);
}

// A tour in two minutes: on the first start, and whenever it is asked for.
import { make } from "../../page/dom";
import { kSteps, type TourStep } from "./tour_steps";

const kKey = "tavmap-tour";

function seen(): boolean {
  try {
    return localStorage.getItem(kKey) !== null;
  } catch {
    return true; // storage is closed to this page: it would come at every start
  }
}

function remember(): void {
  try {
    localStorage.setItem(kKey, "seen");
  } catch {
    // It then comes again.
  }
}

// Not modal: what a step speaks of can be tried while it is read.
export class Tour {
  readonly element = make("aside", { class: "tour", attributes: { role: "dialog", "aria-label": "Tour" } });
  private at = 0;
  private marked: Element | null = null;
  private readonly title = make("h2");
  private readonly words = make("p");
  private readonly count = make("span", { class: "muted" });
  private readonly back = stepButton("Back", () => {
    this.show(this.at - 1);
  });
  private readonly next = stepButton("Next", () => {
    this.show(this.at + 1);
  });

  constructor(private readonly steps: readonly TourStep[] = kSteps) {
    const leave = stepButton("End the tour", () => {
      this.end();
    });
    const row = make("div", { class: "row" }, this.back, this.next, leave, this.count);
    this.element.append(this.title, this.words, row);
    this.element.hidden = true;
    this.element.addEventListener("keydown", (event) => {
      if (event.key === "Escape") this.end();
    });
  }

  startOnce(): void {
    if (!seen()) this.start();
  }

  start(): void {
    this.element.hidden = false;
    this.show(0);
    this.next.focus({ preventScroll: true });
  }

  private show(at: number): void {
    const step = this.steps[at];
    if (step === undefined) {
      this.end();
      return;
    }
    this.at = at;
    this.title.textContent = step.title;
    this.words.textContent = step.words;
    this.count.textContent = `${at + 1} of ${this.steps.length}`;
    this.back.disabled = at === 0;
    this.next.textContent = at + 1 === this.steps.length ? "Done" : "Next";
    this.mark(step.about);
  }

  private mark(selector: string): void {
    this.marked?.classList.remove("toured");
    this.marked = document.querySelector(selector);
    this.marked?.classList.add("toured");
    this.marked?.scrollIntoView({ block: "nearest" });
  }

  private end(): void {
    this.marked?.classList.remove("toured");
    this.marked = null;
    this.element.hidden = true;
    remember();
  }
}

function stepButton(text: string, pressed: () => void): HTMLButtonElement {
  const button = make("button", { text, attributes: { type: "button" } });
  button.addEventListener("click", pressed);
  return button;
}

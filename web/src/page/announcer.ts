// A region that screen readers read out when its text changes; changes that follow fast are joined.
import { make } from "./dom";

const kPauseMs = 700;

export class Announcer {
  readonly element = make("p", {
    class: "visually-hidden",
    attributes: { "aria-live": "polite", role: "status" },
  });
  private waiting = 0;

  say(text: string): void {
    window.clearTimeout(this.waiting);
    this.waiting = window.setTimeout(() => {
      this.element.textContent = text;
    }, kPauseMs);
  }
}

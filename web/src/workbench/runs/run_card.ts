// One run on the page. It is changed in place, so that the focus stays where it is.
import { make } from "../../page/dom";
import { addressOf, within } from "../files/file_chooser";
import { isActive, stateWords, type RunData } from "./run_data";

export interface RunActions {
  cancel(id: number): void;
  resume(id: number): void;
  showResults(run: RunData): void;
}

export class RunCard {
  readonly element = make("article", { class: "run" });
  private readonly state = make("p", { class: "run-state" });
  private readonly bar: HTMLProgressElement;
  private readonly message = make("p", { class: "problem" });
  private readonly lines = make("pre", { class: "run-lines", attributes: { tabindex: "0" } });
  private readonly cancel: HTMLButtonElement;
  private readonly resume: HTMLButtonElement;
  private readonly results: HTMLButtonElement;
  private readonly report: HTMLAnchorElement;

  constructor(
    private run: RunData,
    actions: RunActions,
  ) {
    const label = `Progress of ${run.title}`;
    this.bar = make("progress", { attributes: { max: "1", "aria-label": label } });
    this.lines.setAttribute("aria-label", `Last lines of ${run.title}`);
    this.cancel = button("Cancel", () => {
      actions.cancel(this.run.id);
    });
    this.resume = button("Resume", () => {
      actions.resume(this.run.id);
    });
    this.results = button("Show results", () => {
      actions.showResults(this.run);
    });
    this.report = make("a", { text: "Report", attributes: { target: "_blank", rel: "noopener" } });
    const controls = make(
      "p",
      { class: "run-controls" },
      this.cancel,
      this.resume,
      this.results,
      this.report,
    );
    const title = make("h3", { text: `${run.id}. ${run.title}` });
    this.element.append(title, this.state, this.bar, this.message, controls, this.lines);
    this.update(run);
  }

  update(run: RunData): void {
    this.run = run;
    this.element.dataset.state = run.state;
    this.state.textContent = stateWords(run);
    this.bar.value = run.progress;
    this.message.textContent = run.message;
    this.lines.textContent = run.lines.join("\n");
    this.lines.hidden = run.lines.length === 0;
    this.cancel.hidden = !isActive(run);
    this.resume.hidden = isActive(run) || run.state === "done";
    this.results.hidden = run.outputs.folder === "" || run.state !== "done";
    this.report.hidden = run.outputs.report === null;
    if (run.outputs.report !== null) this.report.href = addressOf(within(run.outputs, run.outputs.report));
  }
}

function button(text: string, action: () => void): HTMLButtonElement {
  const made = make("button", { text, attributes: { type: "button" } });
  made.addEventListener("click", action);
  return made;
}

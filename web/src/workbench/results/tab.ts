// Every results folder as a page.
import { make } from "../../page/dom";
import type { Tab } from "../shell";
import type { StartData } from "../start_data";

export class ResultsTab implements Tab {
  readonly id = "results";
  readonly title = "Results";

  constructor(private readonly start: StartData) {}

  mount(root: HTMLElement): void {
    const folders = this.start.folders.map(({ path }) => path).join(", ");
    root.append(make("p", { text: `Results: ${folders}` }));
  }
}

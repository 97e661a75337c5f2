// Runs: started, watched, cancelled, resumed.
import { make } from "../../page/dom";
import type { Tab } from "../shell";
import type { StartData } from "../start_data";

export class RunsTab implements Tab {
  readonly id = "runs";
  readonly title = "Runs";

  constructor(private readonly start: StartData) {}

  mount(root: HTMLElement): void {
    const folders = this.start.folders.map(({ path }) => path).join(", ");
    root.append(make("p", { text: `Runs: ${folders}` }));
  }
}

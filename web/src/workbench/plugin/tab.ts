// A session of the plug-in in the stand-in host.
import { make } from "../../page/dom";
import type { Tab } from "../shell";
import type { StartData } from "../start_data";

export class PluginTab implements Tab {
  readonly id = "plugin";
  readonly title = "Plug-in";

  constructor(private readonly start: StartData) {}

  mount(root: HTMLElement): void {
    const folders = this.start.folders.map(({ path }) => path).join(", ");
    root.append(make("p", { text: `Plug-in: ${folders}` }));
  }
}

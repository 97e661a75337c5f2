// The tab in which a reference is dragged through the brain.
import { make } from "../../page/dom";
import type { Tab } from "../shell";

export class ExploreTab implements Tab {
  readonly id = "explore";
  readonly title = "Explore";

  mount(root: HTMLElement): void {
    root.append(make("p", { text: "Explore" }));
  }
}

// The tab in which a reference is dragged through the brain.
import { make } from "../../page/dom";
import type { Server } from "../server";
import type { Shell, Tab } from "../shell";
import type { ExploreData, Settings } from "./explore_data";
import { showExplore } from "./explore_view";
import { waitingView } from "./waiting_view";

export class ExploreTab implements Tab {
  readonly id = "explore";
  readonly title = "Explore";
  private stop: () => void = () => undefined; // what is shown now

  mount(root: HTMLElement, server: Server, shell: Shell): void {
    void this.show(root, server, shell);
  }

  private async show(root: HTMLElement, server: Server, shell: Shell): Promise<void> {
    this.stop();
    this.stop = () => undefined;
    try {
      const data = await server.get<ExploreData>("/api/explore");
      if (data.state === "ready") {
        const replan = (settings: Settings): void => {
          void this.replan(settings, root, server, shell);
        };
        this.stop = await showExplore(root, data, { server, shell, replan });
      } else this.wait(data, root, server, shell);
    } catch (error) {
      tell(root, error);
    }
  }

  private wait(
    data: Exclude<ExploreData, { state: "ready" }>,
    root: HTMLElement,
    server: Server,
    shell: Shell,
  ): void {
    const view = waitingView(data, (id) => {
      void this.open(id, root, server, shell);
    });
    root.replaceChildren(view.element);
    this.stop = server.events("/api/explore/events", (event) => {
      const now = JSON.parse(event.data) as ExploreData;
      if (now.state === "ready" || now.state !== data.state) void this.show(root, server, shell);
      else view.show(now);
    });
  }

  private async open(id: string, root: HTMLElement, server: Server, shell: Shell): Promise<void> {
    try {
      await server.post("/api/explore/open", { id });
      await this.show(root, server, shell);
    } catch (error) {
      tell(root, error);
    }
  }

  private async replan(settings: Settings, root: HTMLElement, server: Server, shell: Shell): Promise<void> {
    try {
      await server.post("/api/explore/settings", settings);
      const data = await server.get<ExploreData>("/api/explore");
      if (data.state !== "ready") await this.show(root, server, shell);
    } catch (error) {
      tell(root, error);
    }
  }
}

function tell(root: HTMLElement, error: unknown): void {
  const text = error instanceof Error ? error.message : String(error);
  root.prepend(make("p", { class: "problem", text, attributes: { role: "alert" } }));
}

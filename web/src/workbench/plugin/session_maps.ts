// The maps that a session saves, in the viewer as soon as they are there.
import { make } from "../../page/dom";
import { button } from "../explore/controls/field";
import { readMapSet } from "../maps/map_set";
import { MapViewer } from "../maps/map_viewer";
import { firstOf } from "../maps/saved_map";
import type { Server } from "../server";
import { messageOf } from "../watched";
import { savedMaps } from "./saved_maps";
import type { SavedMaps, SessionData } from "./session_data";

const kAnatomy = "/api/plugin/anatomy";

export class SessionMaps {
  readonly element: HTMLElement;
  private readonly list = make("div", { class: "session-maps" });
  private readonly stage = make("div", { class: "session-viewer" });
  private readonly problem = make("p", { class: "problem", attributes: { role: "alert" } });
  private viewer: MapViewer | null = null;
  private looked = 0; // what is read for an earlier wish is not shown

  constructor(private readonly server: Server) {
    this.problem.hidden = true;
    this.element = make("div", {}, this.problem, this.stage, this.list);
  }

  // What is listed already stays; the newest that was not there is opened.
  show({ maps, anatomy }: SessionData): void {
    if (maps.length < this.list.childElementCount) this.forget();
    const added = maps.slice(this.list.childElementCount);
    this.list.append(...added.map((saved) => this.entry(saved, anatomy)));
    const newest = added.at(-1);
    if (newest !== undefined) void this.look(newest, anatomy);
  }

  private forget(): void {
    this.looked += 1;
    this.viewer?.close();
    this.viewer = null;
    this.list.replaceChildren();
  }

  private entry(saved: SavedMaps, anatomy: boolean): HTMLElement {
    const look = button("Look at the maps", () => {
      void this.look(saved, anatomy);
    });
    const entry = savedMaps(saved);
    entry.querySelector("h3")?.after(make("p", {}, look));
    return entry;
  }

  private async look({ place }: SavedMaps, anatomy: boolean): Promise<void> {
    const wish = ++this.looked;
    try {
      const set = await readMapSet(this.server, place, anatomy ? kAnatomy : null);
      const first = firstOf(set.maps);
      if (wish !== this.looked || first === undefined) return;
      this.viewer?.close();
      this.viewer = new MapViewer(
        set,
        first,
        () => this.stage.offsetParent !== null,
        () => {
          this.viewer = null;
        },
      );
      this.stage.replaceChildren(this.viewer.element);
      await this.viewer.show(first);
      this.tell("");
    } catch (error) {
      this.tell(messageOf(error));
    }
  }

  private tell(problem: string): void {
    this.problem.textContent = problem;
    this.problem.hidden = problem === "";
  }
}

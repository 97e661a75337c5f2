// Every results folder as a page: maps, report, records; participants in a table.
import { make } from "../../page/dom";
import { query, type Place } from "../files/file_chooser";
import { MapViewer } from "../maps/map_viewer";
import { firstOf, type SavedMap, type SavedMaps } from "../maps/saved_map";
import type { Server } from "../server";
import type { Tab } from "../shell";
import type { StartData } from "../start_data";
import { messageOf } from "../watched";
import { groupSection, pageLink, requestSection, table } from "./request_section";
import { GroupMaps } from "./group_maps";
import type { GroupData, ParticipantData, RequestData, ResultFolder, ResultsData } from "./result_data";
import { ResultMaps } from "./result_maps";

const kHead = ["Participant", "Requests", "References", "Failures"];

export class ResultsTab implements Tab {
  readonly id = "results";
  readonly title = "Results";
  private readonly problem = make("p", { class: "problem", attributes: { role: "alert" } });
  private readonly folders = make("ul", { class: "result-folders" });
  private readonly results = make("div", { class: "results" });
  private server: Server | null = null;
  private viewer: MapViewer | null = null;

  constructor(private readonly start: StartData) {}

  mount(root: HTMLElement, server: Server): void {
    this.server = server;
    root.append(make("h2", { text: "Results" }), this.problem, this.folders, this.results);
  }

  // detail: the folder to open.
  shown(detail?: unknown): void {
    void this.listFolders();
    if (isPlace(detail)) void this.open(detail);
  }

  private async listFolders(): Promise<void> {
    await this.guarded(async (server) => {
      const { folders } = await server.get<{ folders: ResultFolder[] }>("/api/results");
      const items = folders.map((folder) => this.folderItem(folder));
      const none = make("li", {
        text: `No results yet below ${this.start.folders.map(({ path }) => path).join(", ")}.`,
      });
      this.folders.replaceChildren(...(items.length > 0 ? items : [none]));
    });
  }

  private folderItem(folder: ResultFolder): HTMLElement {
    const text = [folder.folder, folder.path].filter((part) => part !== "").join("/");
    const button = make("button", { text, attributes: { type: "button" } });
    button.addEventListener("click", () => {
      void this.open(folder);
    });
    const item = make("li", {}, button, make("span", { text: ` ${folder.requests.join(", ")} ` }));
    if (folder.index !== null) item.append(pageLink(folder.index, "Index"));
    return item;
  }

  private async open(place: Place): Promise<void> {
    await this.guarded(async (server) => {
      this.show(await server.get<ResultsData>(`/api/results/list?${query(place)}`));
    });
  }

  private show({ participants, requests, groups, areAll }: ResultsData): void {
    this.results.replaceChildren();
    if (!areAll)
      this.results.append(make("p", { text: "There are more results; open a folder further down." }));
    if (participants.length > 0) this.results.append(this.participantTable(participants, requests));
    this.results.append(...groups.map((group) => this.groupSection(group)));
    this.results.append(...requests.map((request) => this.section(request)));
  }

  private section(request: RequestData): HTMLElement {
    return requestSection(
      request,
      this.opening((server) => new ResultMaps(server, request)),
    );
  }

  private groupSection(group: GroupData): HTMLElement {
    return groupSection(
      group,
      this.opening((server) => new GroupMaps(server, group)),
    );
  }

  // Opens the maps; null: there are none.
  private opening(savedBy: (server: Server) => SavedMaps): (() => void) | null {
    if (this.server === null) return null;
    const saved = savedBy(this.server);
    const first = firstOf(saved.maps);
    if (first === undefined) return null;
    return () => {
      this.look(saved, first);
    };
  }

  // One viewer at a time: browsers have few contexts to draw with.
  private look(saved: SavedMaps, first: SavedMap): void {
    this.viewer?.close();
    const isShown = (): boolean => this.viewer !== null && this.viewer.element.offsetParent !== null;
    this.viewer = new MapViewer(saved, first, isShown, () => {
      this.viewer = null;
    });
    this.results.before(this.viewer.element);
    this.viewer.element.scrollIntoView();
    void this.viewer.show(first);
  }

  private participantTable(
    participants: readonly ParticipantData[],
    requests: readonly RequestData[],
  ): HTMLElement {
    const rows = participants.map((row) => [
      this.participantButton(row.participant, requests),
      String(row.requests),
      String(row.references),
      String(row.failures),
    ]);
    return table("Participants", kHead, rows);
  }

  private participantButton(participant: string, requests: readonly RequestData[]): HTMLElement {
    const button = make("button", { text: participant, attributes: { type: "button" } });
    button.addEventListener("click", () => {
      const at = requests.findIndex((request) => request.participant === participant);
      this.results.querySelectorAll("section.request")[at]?.scrollIntoView();
    });
    return button;
  }

  private async guarded(action: (server: Server) => Promise<void>): Promise<void> {
    if (this.server === null) return;
    try {
      await action(this.server);
      this.problem.textContent = "";
    } catch (error) {
      this.problem.textContent = messageOf(error);
    }
  }
}

function isPlace(detail: unknown): detail is Place {
  return typeof detail === "object" && detail !== null && "folder" in detail && "path" in detail;
}

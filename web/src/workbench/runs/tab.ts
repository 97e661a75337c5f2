// Runs: started, watched, cancelled, resumed. They go on when the page is closed.
import { make } from "../../page/dom";
import { FileChooser, type Place } from "../files/file_chooser";
import type { Server } from "../server";
import type { Shell, Tab } from "../shell";
import type { StartData } from "../start_data";
import { Watched, messageOf } from "../watched";
import { RunCard, type RunActions } from "./run_card";
import type { RunData } from "./run_data";

export class RunsTab implements Tab, RunActions {
  readonly id = "runs";
  readonly title = "Runs";
  private readonly problem = make("p", { class: "problem", attributes: { role: "alert" } });
  private readonly none = make("p", { text: "No run was started yet." });
  private readonly list = make("div", { class: "runs" });
  private readonly cards = new Map<number, RunCard>();
  private server: Server | null = null;
  private shell: Shell | null = null;
  private watched: Watched<{ runs: RunData[] }> | null = null;

  constructor(private readonly start: StartData) {}

  mount(root: HTMLElement, server: Server, shell: Shell): void {
    this.server = server;
    this.shell = shell;
    this.watched = new Watched(
      server,
      "/api/runs",
      ({ runs }) => {
        this.show(runs);
      },
      (message) => {
        this.problem.textContent = message;
      },
    );
    root.append(make("h2", { text: "Runs" }), this.problem, this.starter(server), this.none, this.list);
  }

  shown(detail?: unknown): void {
    this.watched?.start();
    const request = requestIn(detail);
    if (request !== null) void this.post("/api/runs", { request });
  }

  hidden(): void {
    this.watched?.stop();
  }

  cancel(id: number): void {
    void this.post(`/api/runs/${id}/cancel`, {});
  }

  resume(id: number): void {
    void this.post(`/api/runs/${id}/resume`, {});
  }

  showResults({ outputs }: RunData): void {
    this.shell?.open("results", { folder: outputs.folder, path: outputs.path });
  }

  private starter(server: Server): HTMLElement {
    const chooser = new FileChooser(server, this.start.folders, {
      endings: [".toml"],
      choose: (request) => {
        void this.post("/api/runs", { request });
      },
    });
    return make("details", {}, make("summary", { text: "Start a request" }), chooser.element);
  }

  private async post(path: string, body: unknown): Promise<void> {
    try {
      await this.server?.post(path, body);
      this.problem.textContent = "";
    } catch (error) {
      this.problem.textContent = messageOf(error);
    }
    this.watched?.refresh();
  }

  private show(runs: readonly RunData[]): void {
    this.none.hidden = runs.length > 0;
    const known = new Set(runs.map(({ id }) => id));
    for (const [id, card] of this.cards) {
      if (known.has(id)) continue;
      card.element.remove();
      this.cards.delete(id);
    }
    for (const run of runs) this.showRun(run);
  }

  // The latest first.
  private showRun(run: RunData): void {
    const card = this.cards.get(run.id);
    if (card !== undefined) {
      card.update(run);
      return;
    }
    const made = new RunCard(run, this);
    this.cards.set(run.id, made);
    this.list.prepend(made.element);
  }
}

function requestIn(detail: unknown): Place | null {
  if (typeof detail !== "object" || detail === null || !("request" in detail)) return null;
  return detail.request as Place;
}

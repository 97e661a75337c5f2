// What is on the screen as a request, a page and a picture.
import { freshId, make } from "../../../page/dom";
import type { Server } from "../../server";
import type { Shell } from "../../shell";
import type { BrainCanvas } from "../brain_canvas";
import { button, field } from "../controls/field";
import type { Explorer } from "../explorer";
import { pictureOf } from "./picture";
import { sceneOf } from "./scene";

interface SavedRequest {
  readonly path: string;
  readonly text: string;
  readonly place: { readonly folder: string; readonly path: string };
}

const kRequestHelp =
  "A text file that says what is explored: tavmap run makes the same maps from it, bit for bit, with " +
  "their report.";
const kSceneHelp = "One page that needs no program: the map in the viewer of reports.";

export function download(content: Blob, name: string): void {
  const link = make("a", { attributes: { download: name } });
  link.href = URL.createObjectURL(content);
  link.click();
  window.setTimeout(() => {
    URL.revokeObjectURL(link.href);
  }, 10_000);
}

async function textOf(path: string): Promise<string> {
  const response = await fetch(path);
  if (!response.ok) throw new Error(`The program has no ${path}.`);
  return response.text();
}

export class SaveControls {
  readonly element: HTMLElement;
  private readonly name = make("input", { attributes: { type: "text", value: "explored", maxlength: "60" } });
  private readonly saved = make("div", {
    class: "saved",
    attributes: { id: freshId("saved"), role: "status" },
  });

  constructor(
    private readonly explorer: Explorer,
    private readonly server: Server,
    private readonly shell: Shell,
    private readonly brains: readonly BrainCanvas[],
  ) {
    const save = button("Save as request", () => void this.tried(() => this.saveRequest()));
    const page = button("Save scene (HTML)", () => void this.tried(() => this.saveScene()));
    const picture = button("Save picture (PNG)", () => void this.tried(() => this.savePicture()));
    const row = make("div", { class: "row" }, page, picture);
    page.title = kSceneHelp;
    const request = field("Name", kRequestHelp, this.name, save);
    this.element = make("div", { class: "controls saving" }, request, row, this.saved);
  }

  private async tried(work: () => Promise<void>): Promise<void> {
    try {
      await work();
    } catch (error) {
      this.saved.textContent = error instanceof Error ? error.message : String(error);
    }
  }

  private async saveRequest(): Promise<void> {
    const { reference, condition, settings } = this.explorer.store.now;
    const body = { reference, condition, settings, name: this.name.value };
    const answer = await this.server.post<SavedRequest>("/api/explore/request", body);
    const run = button("Open in Runs", () => {
      this.shell.open("runs", { request: answer.place });
    });
    this.saved.replaceChildren(
      make("p", { text: `Saved: ${answer.path}` }),
      make("pre", { text: `tavmap run ${answer.path}`, attributes: { tabindex: "0" } }),
      run,
    );
  }

  private async saveScene(): Promise<void> {
    const [script, style] = await Promise.all([textOf("/report.js"), textOf("/report.css")]);
    const html = await sceneOf(this.explorer, script, style);
    download(new Blob([html], { type: "text/html" }), `${this.fileName()}.html`);
    this.saved.textContent = "The scene was handed to the browser's downloads.";
  }

  private async savePicture(): Promise<void> {
    download(await pictureOf(this.explorer, this.brains), `${this.fileName()}.png`);
    this.saved.textContent = "The picture was handed to the browser's downloads.";
  }

  private fileName(): string {
    return this.name.value.replace(/[^\w.-]+/g, "_") || "explored";
  }
}

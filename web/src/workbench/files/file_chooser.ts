// A list of the folders that may be read, to choose a file from.
import { make } from "../../page/dom";
import type { Server } from "../server";
import type { FolderData } from "../start_data";
import { messageOf } from "../watched";

export interface Place {
  readonly folder: string;
  readonly path: string; // in the folder; "": the folder itself
}

interface Entry {
  readonly name: string;
  readonly kind: "folder" | "file";
  readonly bytes?: number;
}

export function within(place: Place, name: string): Place {
  return { folder: place.folder, path: place.path === "" ? name : `${place.path}/${name}` };
}

export function above(place: Place): Place {
  return { folder: place.folder, path: place.path.split("/").slice(0, -1).join("/") };
}

export function query(place: Place): string {
  return new URLSearchParams({ folder: place.folder, path: place.path }).toString();
}

// The address of a file itself.
export function addressOf(place: Place): string {
  return ["files", place.folder, ...place.path.split("/")].map(encodeURIComponent).join("/");
}

// The ends of names in "Protocol Files (*.prt)"; none: every file.
export function endingsOf(filter: string): readonly string[] {
  return Array.from(filter.matchAll(/\*(\.\w+)/g), (match) => match[1] ?? "");
}

export interface ChooserOptions {
  readonly endings: readonly string[];
  readonly start?: Place;
  readonly choose: (place: Place) => void;
  readonly entered?: (place: Place) => void; // into which folder
}

export class FileChooser {
  readonly element = make("div", { class: "file-chooser" });
  private readonly where = make("p", { class: "file-where" });
  private readonly list = make("ul", { class: "file-list" });
  private readonly problem = make("p", { class: "problem", attributes: { role: "alert" } });

  constructor(
    private readonly server: Server,
    private readonly folders: readonly FolderData[],
    private readonly options: ChooserOptions,
  ) {
    this.element.append(this.where, this.problem, this.list);
    const start = options.start;
    if (start !== undefined && start.folder !== "") void this.enter(start);
    else this.showFolders();
  }

  private showFolders(): void {
    this.where.textContent = "Folders:";
    this.list.replaceChildren(
      ...this.folders.map(({ name, path }) =>
        this.item(path, () => {
          void this.enter({ folder: name, path: "" });
        }),
      ),
    );
  }

  private async enter(place: Place): Promise<void> {
    try {
      const { entries } = await this.server.get<{ entries: Entry[] }>(`/api/files?${query(place)}`);
      this.problem.textContent = "";
      this.show(place, entries);
      this.options.entered?.(place);
    } catch (error) {
      this.problem.textContent = messageOf(error);
      if (this.list.childElementCount === 0) this.showFolders();
    }
  }

  private show(place: Place, entries: readonly Entry[]): void {
    this.where.textContent = [place.folder, place.path].filter((part) => part !== "").join("/");
    const up = this.item("Up", () => {
      if (place.path === "") this.showFolders();
      else void this.enter(above(place));
    });
    this.list.replaceChildren(
      up,
      ...entries.filter((entry) => this.fits(entry)).map((e) => this.entry(place, e)),
    );
  }

  private fits({ kind, name }: Entry): boolean {
    const { endings } = this.options;
    return kind === "folder" || endings.length === 0 || endings.some((ending) => name.endsWith(ending));
  }

  private entry(place: Place, { kind, name }: Entry): HTMLElement {
    const inner = within(place, name);
    if (kind === "folder") {
      return this.item(`${name}/`, () => {
        void this.enter(inner);
      });
    }
    return this.item(name, () => {
      this.options.choose(inner);
    });
  }

  private item(text: string, action: () => void): HTMLElement {
    const button = make("button", { text, attributes: { type: "button" } });
    button.addEventListener("click", action);
    return make("li", {}, button);
  }
}

// The frame of the page: a list of tabs and the panel of the one that is open.
import { Announcer } from "../page/announcer";
import { make } from "../page/dom";
import type { Server } from "./server";

export interface Tab {
  readonly id: string;
  readonly title: string;
  // Called once, when the tab is first opened.
  mount(root: HTMLElement, server: Server, shell: Shell): void;
  // detail: what Shell.open was given.
  shown?(detail?: unknown): void;
  hidden?(): void;
}

export interface Shell {
  open(tab: string, detail?: unknown): void;
  // Read out by screen readers.
  announce(text: string): void;
}

interface Entry {
  readonly tab: Tab;
  readonly button: HTMLButtonElement;
  readonly panel: HTMLElement;
  mounted: boolean;
}

const kListRole = { role: "tablist", "aria-label": "Parts of the workbench" };
const kSteps: Readonly<Partial<Record<string, number>>> = { ArrowRight: 1, ArrowLeft: -1 };

export class PageShell implements Shell {
  readonly tabList = make("div", { class: "tabs", attributes: kListRole });
  readonly panels = make("main", { class: "tab-panels" });
  private readonly announcer = new Announcer();
  private readonly entries: readonly Entry[];
  private current: Entry | null = null;

  constructor(
    tabs: readonly Tab[],
    private readonly server: Server,
  ) {
    this.entries = tabs.map((tab) => this.entryOf(tab));
    this.tabList.append(...this.entries.map(({ button }) => button));
    this.panels.append(...this.entries.map(({ panel }) => panel), this.announcer.element);
    this.tabList.addEventListener("keydown", (event) => {
      this.step(event);
    });
  }

  open(id: string, detail?: unknown): void {
    const entry = this.entries.find(({ tab }) => tab.id === id);
    if (entry === undefined) return;
    if (entry !== this.current) this.exchange(entry);
    entry.tab.shown?.(detail);
  }

  announce(text: string): void {
    this.announcer.say(text);
  }

  private exchange(entry: Entry): void {
    this.current?.tab.hidden?.();
    this.current = entry;
    for (const each of this.entries) mark(each, each === entry);
    if (entry.mounted) return;
    entry.mounted = true;
    entry.tab.mount(entry.panel, this.server, this);
  }

  private entryOf(tab: Tab): Entry {
    const [tabId, panelId] = [`tab-${tab.id}`, `panel-${tab.id}`];
    const button = make("button", {
      class: "tab",
      text: tab.title,
      attributes: { type: "button", role: "tab", id: tabId, "aria-controls": panelId },
    });
    button.addEventListener("click", () => {
      this.open(tab.id);
    });
    const panel = make("section", {
      class: `panel panel-${tab.id}`,
      attributes: { role: "tabpanel", id: panelId, "aria-labelledby": tabId },
    });
    panel.hidden = true;
    return { tab, button, panel, mounted: false };
  }

  private step(event: KeyboardEvent): void {
    const by = kSteps[event.key];
    if (by === undefined || this.current === null) return;
    event.preventDefault();
    const count = this.entries.length;
    const next = this.entries[(this.entries.indexOf(this.current) + by + count) % count];
    if (next === undefined) return;
    this.open(next.tab.id);
    next.button.focus();
  }
}

function mark({ button, panel }: Entry, open: boolean): void {
  button.setAttribute("aria-selected", String(open));
  button.tabIndex = open ? 0 : -1;
  panel.hidden = !open;
}

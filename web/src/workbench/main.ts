// The script of the workbench: signs in, then shows the tabs that this start offers.
import { make } from "../page/dom";
import { setUpTheme } from "../page/theme";
import { ExploreTab } from "./explore/tab";
import { PluginTab } from "./plugin/tab";
import { ResultsTab } from "./results/tab";
import { RunsTab } from "./runs/tab";
import { HttpServer, ServerError, type Server } from "./server";
import { PageShell, type Tab } from "./shell";
import type { StartData } from "./start_data";
import { takeToken } from "./token";

const kNoToken = "Open the address that tavmap workbench printed: its end opens this page once per start.";

async function signIn(): Promise<Server> {
  const token = takeToken();
  if (token === null) throw new ServerError(kNoToken, 401);
  const server = new HttpServer(token);
  await server.post("/api/session", { token });
  return server;
}

function tabsOf(start: StartData): Tab[] {
  return [
    ...(start.explore ? [new ExploreTab()] : []),
    new ResultsTab(start),
    new RunsTab(start),
    ...(start.plugin ? [new PluginTab(start)] : []),
  ];
}

function headerOf(start: StartData, shell: PageShell): HTMLElement {
  const theme = make("button", { class: "theme", attributes: { type: "button" } });
  const title = make("h1", { text: "Tavmap workbench", attributes: { title: `Version ${start.version}` } });
  return make("header", { class: "workbench-header" }, title, shell.tabList, theme);
}

function show(start: StartData, server: Server): void {
  const tabs = tabsOf(start);
  const shell = new PageShell(tabs, server);
  document.body.replaceChildren(headerOf(start, shell), shell.panels);
  setUpTheme();
  shell.open(tabs[0]?.id ?? "");
}

function tell(error: unknown): void {
  const text = error instanceof Error ? error.message : String(error);
  const words = make("p", { class: "start-failed", text, attributes: { role: "alert" } });
  document.body.replaceChildren(make("main", {}, make("h1", { text: "Tavmap workbench" }), words));
}

async function start(): Promise<void> {
  try {
    const server = await signIn();
    show(await server.get<StartData>("/api/start"), server);
  } catch (error) {
    tell(error);
  }
}

void start();

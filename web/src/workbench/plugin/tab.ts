// A session of the plug-in in the stand-in host: its log, its questions, its maps.
import { make } from "../../page/dom";
import type { Server } from "../server";
import type { Shell, Tab } from "../shell";
import type { StartData } from "../start_data";
import { Watched, messageOf } from "../watched";
import { questionForm } from "./question_form";
import { stateWords, type Question, type SessionData } from "./session_data";
import { SessionMaps } from "./session_maps";

export class PluginTab implements Tab {
  readonly id = "plugin";
  readonly title = "Plug-in";
  private readonly problem = make("p", { class: "problem", attributes: { role: "alert" } });
  private readonly state = make("p", { class: "session-state", attributes: { role: "status" } });
  private readonly question = make("div", { class: "session-question" });
  private readonly log = make("pre", { class: "session-log" });
  private readonly record = make("input", { attributes: { type: "checkbox", id: "session-record" } });
  private readonly startButton = make("button", { text: "Start a session", attributes: { type: "button" } });
  private readonly endButton = make("button", { text: "End the session", attributes: { type: "button" } });
  private readonly controls = make("p", { class: "session-controls" });
  private maps: SessionMaps | null = null;
  private watched: Watched<SessionData> | null = null;
  private server: Server | null = null;
  private shell: Shell | null = null;
  private asked = 0; // the question that is shown

  constructor(private readonly start: StartData) {}

  mount(root: HTMLElement, server: Server, shell: Shell): void {
    this.server = server;
    this.shell = shell;
    this.maps = new SessionMaps(server);
    const show = (session: SessionData): void => {
      this.show(session);
    };
    const tell = (message: string): void => {
      this.problem.textContent = message;
    };
    this.watched = new Watched(server, "/api/plugin", show, tell);
    this.setUpControls();
    for (const [name, value] of [
      ["tabindex", "0"],
      ["role", "log"],
      ["aria-label", "Log"],
    ] as const)
      this.log.setAttribute(name, value);
    root.append(make("h2", { text: "Plug-in" }), this.controls, this.problem, this.state);
    root.append(this.question, this.maps.element, make("h3", { text: "Log" }), this.log);
  }

  shown(): void {
    this.watched?.start();
  }

  hidden(): void {
    this.watched?.stop();
  }

  private setUpControls(): void {
    this.endButton.hidden = true;
    this.startButton.addEventListener("click", () => {
      void this.post("/api/plugin/start", { record: this.record.checked });
    });
    this.endButton.addEventListener("click", () => {
      void this.post("/api/plugin/end", {});
    });
    const words = "Write the answers into a script in the work folder";
    const label = make("label", { text: words, attributes: { for: "session-record" } });
    this.controls.append(this.startButton, this.endButton, this.record, label);
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

  private show(session: SessionData): void {
    const runs = session.state === "running";
    this.startButton.hidden = runs;
    this.endButton.hidden = !runs;
    this.endButton.disabled = session.ending;
    this.state.textContent = stateWords(session);
    this.log.textContent = [...session.log, session.summary].join("\n");
    this.log.scrollTop = this.log.scrollHeight;
    this.maps?.show(session);
    this.showQuestion(session.question);
  }

  // The form of a question that stands already stays, with what was typed.
  private showQuestion(question: Question | null): void {
    if (question?.id === this.asked) return;
    this.asked = question?.id ?? 0;
    this.question.replaceChildren();
    if (question === null || this.server === null) return;
    const form = questionForm(question, {
      server: this.server,
      folders: this.start.folders,
      answer: (answer) => {
        void this.post("/api/plugin/answer", { question: question.id, answer });
      },
      cancel: () => {
        void this.post("/api/plugin/answer", { question: question.id, cancel: true });
      },
    });
    this.question.append(form);
    this.shell?.announce(question.text);
    form.querySelector<HTMLElement>("input, button")?.focus();
  }
}

// The plug-in's present question as a form. Every one can be cancelled, as in the desktop host.
import { freshId, make } from "../../page/dom";
import { FileChooser, endingsOf, within, type Place } from "../files/file_chooser";
import type { Server } from "../server";
import type { FolderData } from "../start_data";
import { matching, type Question } from "./session_data";

export interface Answering {
  readonly server: Server;
  readonly folders: readonly FolderData[];
  answer(value: unknown): void;
  cancel(): void;
}

export function questionForm(question: Question, answering: Answering): HTMLElement {
  const form = make("form", { class: "question", attributes: { "aria-label": "Question of the plug-in" } });
  form.addEventListener("submit", (event) => {
    event.preventDefault();
  });
  form.append(
    make("p", { class: "question-text", text: question.text, attributes: { tabindex: "0" } }),
    ...controlsOf(question, answering),
  );
  return form;
}

function controlsOf(question: Question, answering: Answering): readonly Node[] {
  switch (question.kind) {
    case "message":
      return [
        bar(
          action("OK", () => {
            answering.answer(true);
          }),
        ),
      ];
    case "yesno":
      return [
        bar(
          action("Yes", () => {
            answering.answer(true);
          }),
          action("No", () => {
            answering.answer(false);
          }),
        ),
      ];
    case "open":
      return [opener(question, answering), bar(cancel(answering))];
    case "save":
      return saver(question, answering);
    default:
      return typed(question, answering);
  }
}

function typed(question: Question, answering: Answering): readonly Node[] {
  const id = freshId("answer");
  const words = question.range === undefined ? "Text" : `Number, ${question.range}`;
  const input = make("input", { attributes: { id, type: "text", autocomplete: "off" } });
  input.value = question.initial ?? "";
  const take = action(
    "OK",
    () => {
      answering.answer(input.value);
    },
    "submit",
  );
  const label = make("label", { text: words, attributes: { for: id } });
  const choices = question.choices ?? [];
  const list = choices.length > 0 ? [choiceList(question, answering)] : [];
  return [...list, make("p", { class: "typed" }, label, input), bar(take, cancel(answering))];
}

function choiceList(question: Question, answering: Answering): HTMLElement {
  const id = freshId("search");
  const search = make("input", { attributes: { id, type: "search", autocomplete: "off" } });
  const list = make("ul", { class: "choices" });
  const show = (): void => {
    const buttons = matching(question.choices ?? [], search.value).map(({ number, name }) =>
      make(
        "li",
        {},
        action(`${number}. ${name}`, () => {
          answering.answer(String(number));
        }),
      ),
    );
    list.replaceChildren(...buttons);
  };
  search.addEventListener("input", show);
  show();
  const label = make("label", { text: "Search", attributes: { for: id } });
  return make("div", {}, make("p", { class: "typed" }, label, search), list);
}

function opener(question: Question, answering: Answering): HTMLElement {
  return new FileChooser(answering.server, answering.folders, {
    endings: endingsOf(question.filter ?? ""),
    ...(question.start === undefined ? {} : { start: question.start }),
    choose: (place) => {
      answering.answer(place);
    },
  }).element;
}

function saver(question: Question, answering: Answering): readonly Node[] {
  let folder: Place = question.start ?? { folder: "", path: "" };
  const id = freshId("name");
  const name = make("input", { attributes: { id, type: "text", autocomplete: "off" } });
  const chooser = new FileChooser(answering.server, answering.folders, {
    endings: endingsOf(question.filter ?? ""),
    start: folder,
    entered: (place) => {
      folder = place;
    },
    choose: ({ path }) => {
      name.value = path.split("/").at(-1) ?? "";
    },
  });
  const save = action(
    "Save",
    () => {
      answering.answer(within(folder, name.value));
    },
    "submit",
  );
  const label = make("label", { text: "Name", attributes: { for: id } });
  return [chooser.element, make("p", { class: "typed" }, label, name), bar(save, cancel(answering))];
}

function cancel(answering: Answering): HTMLElement {
  return action("Cancel", () => {
    answering.cancel();
  });
}

function bar(...buttons: HTMLElement[]): HTMLElement {
  return make("p", { class: "question-buttons" }, ...buttons);
}

function action(text: string, act: () => void, type = "button"): HTMLButtonElement {
  const made = make("button", { text, attributes: { type } });
  made.addEventListener("click", act);
  return made;
}

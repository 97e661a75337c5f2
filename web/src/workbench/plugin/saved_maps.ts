// A map set that the plug-in has saved: still pictures of its maps over the anatomy.
import { make } from "../../page/dom";
import { addressOf, type Place } from "../files/file_chooser";
import type { SavedMaps } from "./session_data";

export function savedMaps({ path, pictures, problem }: SavedMaps): HTMLElement {
  const section = make("section", { class: "saved-maps" }, make("h3", { text: `Maps saved: ${path}` }));
  if (problem !== "") section.append(make("p", { class: "problem", text: problem }));
  section.append(...pictures.map(picture));
  return section;
}

function nameOf({ path }: Place): string {
  return (
    path
      .split("/")
      .at(-1)
      ?.replace(/\.png$/, "") ?? ""
  );
}

function picture(place: Place): HTMLElement {
  const name = nameOf(place);
  const image = make("img", {
    attributes: { src: addressOf(place), alt: `The map ${name} over the anatomy` },
  });
  return make("figure", {}, image, make("figcaption", { text: name }));
}

// One request's results: what was found, in tables, and every file.
import { make } from "../../page/dom";
import { button } from "../explore/controls/field";
import { addressOf, within, type Place } from "../files/file_chooser";
import {
  thresholdWords,
  type MapData,
  type ReferenceData,
  type GroupData,
  type RequestData,
} from "./result_data";

// Of several requests of one name the folder tells which it is.
function titleOf({ name, folder, path }: RequestData): string {
  return `${name} in ${[folder, path].filter((part) => part !== "").join("/")}`;
}

// look: opens the maps; null where there are none.
export function requestSection(request: RequestData, look: (() => void) | null): HTMLElement {
  const section = make("section", { class: "request" }, make("h3", { text: titleOf(request) }));
  if (request.report !== null) section.append(make("p", {}, link(within(request, request.report), "Report")));
  if (look !== null) section.append(make("p", {}, button("Look at the maps", look)));
  if (request.problem !== undefined) section.append(make("p", { class: "problem", text: request.problem }));
  for (const { reference, message } of request.failures)
    section.append(make("p", { class: "problem", text: `${reference}: ${message}` }));
  for (const reference of request.references) section.append(referenceSection(request, reference));
  return section;
}

export function groupSection(group: GroupData, look: (() => void) | null): HTMLElement {
  const section = make("section", { class: "request" }, make("h3", { text: `Test ${group.test}` }));
  if (group.report !== null) section.append(make("p", {}, link(within(group, group.report), "Report")));
  if (look !== null) section.append(make("p", {}, button("Look at the maps", look)));
  if (group.problem !== undefined) section.append(make("p", { class: "problem", text: group.problem }));
  section.append(make("ul", {}, ...group.cells.map(({ title }) => make("li", { text: title }))));
  return section;
}

export function link(place: Place, text: string): HTMLAnchorElement {
  return pageLink(addressOf(place), text);
}

export function pageLink(href: string, text: string): HTMLAnchorElement {
  return make("a", { text, attributes: { href, target: "_blank", rel: "noopener" } });
}

// name: of the table, for those who do not see it. Wide ones scroll in themselves.
export function table(
  name: string,
  head: readonly string[],
  rows: readonly (readonly (string | Node)[])[],
): HTMLElement {
  const cells = head.map((text) => make("th", { text, attributes: { scope: "col" } }));
  const body = rows.map((row) =>
    make(
      "tr",
      {},
      ...row.map((cell) => (typeof cell === "string" ? make("td", { text: cell }) : make("td", {}, cell))),
    ),
  );
  const whole = make("table", {}, make("thead", {}, make("tr", {}, ...cells)), make("tbody", {}, ...body));
  const attributes = { tabindex: "0", role: "region", "aria-label": name };
  return make("div", { class: "table-scroll", attributes }, whole);
}

const kMapHead = ["Condition", "Map", "Voxels that pass", "Peak", "At"];

function placeOf({ peakMm, peakLabel }: MapData): string {
  const at = peakMm.map((mm) => mm.toFixed(0)).join(", ");
  return peakLabel === "none" ? `${at} mm` : `${at} mm ${peakLabel}`;
}

function referenceSection(place: Place, reference: ReferenceData): HTMLElement {
  const words = `${reference.name}: ${reference.voxels} voxels, order ${reference.order}`;
  const warnings = reference.warnings.map((text) => make("li", { text }));
  const rows = reference.conditions.flatMap((condition) =>
    condition.maps.map((map) => [
      condition.name,
      link(within(place, map.file), map.label),
      thresholdWords(map),
      map.peak.toPrecision(4),
      placeOf(map),
    ]),
  );
  const files = reference.files.map(({ name, bytes }) =>
    make("li", {}, link(within(place, name), name), make("span", { text: ` ${bytes} bytes` })),
  );
  const list = make(
    "details",
    {},
    make("summary", { text: `Files (${files.length})` }),
    make("ul", {}, ...files),
  );
  return make(
    "div",
    {},
    make("h4", { text: words }),
    make("ul", {}, ...warnings),
    table(`Maps of ${reference.name}`, kMapHead, rows),
    list,
  );
}

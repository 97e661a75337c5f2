// Which reference, and what the mouse does with it.
import { make } from "../../../page/dom";
import { plain } from "../../../viewer/numbers";
import type { Explorer } from "../explorer";
import type { ExploreState, MouseMoves, ReferenceKind } from "../explore_state";
import { referenceWords } from "../reference";
import { button, check, choiceOf, field, group, radios, type Choice } from "./field";
import { LabelList } from "./label_list";

const kKinds: readonly Choice[] = [
  { value: "sphere", text: "a sphere" },
  { value: "cursor", text: "the label under the cursor" },
  { value: "label", text: "a label from the list" },
  { value: "voxels", text: "drawn voxels" },
];
const kWithoutLabels = new Set(["sphere", "voxels"]);

const kMouse: readonly Choice[] = [
  { value: "reference", text: "the reference" },
  { value: "crosshair", text: "the crosshair" },
];

const kHelp =
  "The region whose influence is mapped. Drag it through the brain: while it moves the maps are " +
  "provisional, and when it rests they are calibrated.";
const kMouseHelp = "What dragging on the planes moves. With Shift it moves the other one.";
const kRadiusHelp =
  "Voxels whose centre is nearer than this belong to the sphere; for drawing, the size of the brush.";

function radiusField(explorer: Explorer): HTMLElement {
  const slider = make("input", { attributes: { type: "range", min: "2", max: "20", step: "0.5" } });
  const words = make("output");
  const show = ({ radiusMm }: ExploreState): void => {
    slider.value = String(radiusMm);
    words.textContent = `${plain(radiusMm, 1)} mm`;
  };
  slider.addEventListener("input", () => {
    explorer.setRadius(Number(slider.value));
  });
  explorer.store.on(["radiusMm"], show);
  show(explorer.store.now);
  return field("Radius", kRadiusHelp, slider, words);
}

function drawingTools(explorer: Explorer): HTMLElement {
  const erase = check("Erase", false, (checked) => {
    explorer.store.change({ erase: checked });
  });
  const clear = button("Clear the drawing", () => {
    explorer.clearDrawing();
  });
  return make("div", { class: "row drawing-tools" }, erase, clear);
}

function mouseRow(explorer: Explorer): HTMLElement {
  const { element } = radios(kMouse, explorer.store.now.mouse, (value) => {
    explorer.store.change({ mouse: value as MouseMoves });
  });
  return group("The mouse moves", kMouseHelp, element);
}

export function referenceControls(explorer: Explorer): HTMLElement {
  const { data, store } = explorer;
  const kinds = kKinds.filter(({ value }) => data.hasLabels || kWithoutLabels.has(value));
  const kind = choiceOf(kinds, store.now.kind, (value) => {
    explorer.setKind(value as ReferenceKind);
  });
  const list = new LabelList(data.labels, (id) => {
    explorer.takeLabel(id);
  });
  const radius = radiusField(explorer);
  const drawing = drawingTools(explorer);
  const words = make("p", { class: "reference-words", attributes: { "data-part": "reference" } });
  const show = (now: ExploreState): void => {
    list.element.hidden = now.kind !== "label";
    radius.hidden = now.kind !== "sphere" && now.kind !== "voxels";
    drawing.hidden = now.kind !== "voxels";
    words.textContent = `Reference: ${referenceWords(now.reference, data.labels)}`;
    list.show(now.reference);
  };
  store.on(["kind", "reference"], show);
  show(store.now);
  return make(
    "div",
    { class: "controls" },
    field("Reference", kHelp, kind),
    radius,
    list.element,
    drawing,
    words,
    mouseRow(explorer),
  );
}

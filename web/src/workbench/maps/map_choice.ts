// Which of the saved maps: by what they are of, condition and kind.
import { make } from "../../page/dom";
import { choiceOf, field } from "../explore/controls/field";
import type { SavedMap } from "./saved_map";

const kOfHelp = "What the maps are of: a reference region, or a test.";
const kConditionHelp = "The volumes that the map was made from.";
const kMapHelp = "Which map. What it holds is said below the planes.";

function distinct(names: readonly string[]): readonly string[] {
  return [...new Set(names)];
}

interface Part {
  readonly name: string;
  readonly help: string;
  readonly of: (map: SavedMap) => string;
}

const kParts: readonly Part[] = [
  { name: "Of", help: kOfHelp, of: (map) => map.of },
  { name: "Condition", help: kConditionHelp, of: (map) => map.condition },
  { name: "Map", help: kMapHelp, of: (map) => map.info.name },
];

// The map nearest to what was chosen: with the changed part, and as many of the others as can be.
export function nearest(maps: readonly SavedMap[], now: SavedMap, part: number, value: string): SavedMap {
  const likeness = (map: SavedMap): number =>
    kParts.reduce((sum, { of }, n) => sum + (n !== part && of(map) === of(now) ? 4 - n : 0), 0);
  const able = maps.filter((map) => kParts[part]?.of(map) === value);
  return able.reduce((best, map) => (likeness(map) > likeness(best) ? map : best), able[0] ?? now);
}

// shown(map) makes the lists say what is shown.
export class MapChoice {
  readonly element = make("div", { class: "controls" });
  private now: SavedMap;

  constructor(
    private readonly maps: readonly SavedMap[],
    first: SavedMap,
    private readonly chosen: (map: SavedMap) => void,
  ) {
    this.now = first;
    this.show(first);
  }

  show(map: SavedMap): void {
    this.now = map;
    const focused = this.element.contains(document.activeElement)
      ? document.activeElement?.getAttribute("data-part")
      : null;
    this.element.replaceChildren(...kParts.flatMap((part, n) => this.listOf(part, n)));
    if (typeof focused === "string")
      this.element.querySelector<HTMLElement>(`[data-part="${focused}"]`)?.focus();
  }

  // Parts in which there is nothing to choose are left out.
  private listOf(part: Part, index: number): HTMLElement[] {
    const outer = kParts.slice(0, index);
    const names = distinct(this.maps.filter((map) => this.agrees(map, outer)).map(part.of));
    const all = distinct(this.maps.map(part.of));
    if (all.length === 1 && part.name !== "Map") return [];
    const choices = names.map((text) => ({ value: text, text: text === "" ? "all" : text }));
    const list = choiceOf(choices, part.of(this.now), (value) => {
      this.chosen(nearest(this.maps, this.now, index, value));
    });
    list.dataset.part = part.name;
    return [field(part.name, part.help, list)];
  }

  private agrees(map: SavedMap, parts: readonly Part[]): boolean {
    return parts.every(({ of }) => of(map) === of(this.now));
  }
}

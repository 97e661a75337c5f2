// The labels of an atlas, found by what is typed.
import { freshId, make } from "../../../page/dom";
import type { LabelData, Reference } from "../explore_data";

// Those whose name contains every word typed, in any order; all for no words.
export function matching(labels: readonly LabelData[], typed: string): LabelData[] {
  const words = typed
    .toLowerCase()
    .split(/\s+/)
    .filter((word) => word !== "");
  return labels.filter(({ name }) => words.every((word) => name.toLowerCase().includes(word)));
}

export class LabelList {
  readonly element: HTMLElement;
  private readonly list = make("select", { attributes: { size: "6", id: freshId("labels") } });
  private readonly search = make("input", { attributes: { type: "search", id: freshId("search") } });
  private readonly count = make("span", { class: "muted", attributes: { role: "status" } });

  constructor(
    private readonly labels: readonly LabelData[],
    chosen: (id: number) => void,
  ) {
    const labelOf = (text: string, control: HTMLElement): HTMLElement =>
      make("label", { text, attributes: { for: control.id } });
    this.element = make(
      "div",
      { class: "label-list" },
      labelOf("Search labels", this.search),
      this.search,
      this.count,
      labelOf("Labels", this.list),
      this.list,
    );
    this.search.addEventListener("input", () => {
      this.fill();
    });
    this.list.addEventListener("change", () => {
      chosen(Number(this.list.value));
    });
    this.fill();
  }

  show(reference: Reference): void {
    this.list.value = reference.kind === "label" ? String(reference.id) : "";
  }

  private fill(): void {
    const found = matching(this.labels, this.search.value);
    const before = this.list.value;
    this.list.replaceChildren(
      ...found.map(({ id, name, voxels }) =>
        make("option", { text: `${name} (${voxels} voxels)`, attributes: { value: String(id) } }),
      ),
    );
    this.list.value = before;
    this.count.textContent = `${found.length} of ${this.labels.length}`;
  }
}

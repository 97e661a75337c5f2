// Buttons that show a peak in its viewer.
import type { Triple } from "../data/page_data";
import type { Viewer } from "../viewer/viewer";
import { all } from "./dom";

export interface KnownViewer {
  readonly host: HTMLElement;
  readonly open: () => Viewer; // makes it when it is not there yet
}

function voxelOf(text: string): Triple | null {
  const [i = NaN, j = NaN, k = NaN] = text.trim().split(/\s+/).map(Number);
  return [i, j, k].every(Number.isInteger) ? [i, j, k] : null;
}

function scrollTo(host: HTMLElement): void {
  const calm = matchMedia("(prefers-reduced-motion: reduce)").matches;
  host.scrollIntoView({ block: "center", behavior: calm ? "auto" : "smooth" });
}

async function jump(button: HTMLElement, known: ReadonlyMap<string, KnownViewer>): Promise<void> {
  const target = known.get(button.dataset.view ?? "");
  const voxel = voxelOf(button.dataset.voxel ?? "");
  if (target === undefined || voxel === null) return;
  scrollTo(target.host);
  await target.open().jump(button.dataset.kind ?? "", voxel);
}

export function setUpJumps(known: ReadonlyMap<string, KnownViewer>): void {
  for (const button of all("button.jump")) {
    button.addEventListener("click", () => void jump(button, known));
  }
}

// The page's viewers, each made when it comes near the screen or is asked for.
import { loadBackdrop, type Backdrop } from "../data/loaded_view";
import type { PageData } from "../data/page_data";
import { textOfElement, VolumeStore } from "../data/volume_store";
import { Viewer, type ViewSource } from "../viewer/viewer";
import { all } from "./dom";
import type { KnownViewer } from "./jumps";
import { onceNear } from "./once_near";

function sourceOf(page: PageData): ViewSource {
  const store = new VolumeStore(textOfElement);
  let backdrop: Promise<Backdrop> | null = null;
  return {
    grid: page.grid,
    underlayName: page.underlayName,
    store,
    backdrop: () => (backdrop ??= loadBackdrop(page, store)),
  };
}

function knownViewer(host: HTMLElement, make: () => Viewer): KnownViewer {
  let viewer: Viewer | null = null;
  const open = (): Viewer => (viewer ??= make());
  onceNear(host, () => void open().start());
  return { host, open };
}

export function setUpViewers(page: PageData): ReadonlyMap<string, KnownViewer> {
  const source = sourceOf(page);
  const known = new Map<string, KnownViewer>();
  for (const host of all("div.viewer[data-view]")) {
    const view = page.views.find(({ id }) => id === host.dataset.view);
    if (view !== undefined)
      known.set(
        view.id,
        knownViewer(host, () => new Viewer(host, source, view)),
      );
  }
  return known;
}

// The script of a report page and of the index of a data set.
import { setUpCharts } from "./charts/chart";
import { readPage } from "./data/read_page";
import { textOfElement } from "./data/volume_store";
import { setUpContents } from "./page/contents";
import { setUpCopying } from "./page/copying";
import { all, make } from "./page/dom";
import { setUpJumps } from "./page/jumps";
import { setUpPrinting } from "./page/printing";
import { setUpScrolling } from "./page/scrolling";
import { setUpTheme } from "./page/theme";
import { setUpViewers } from "./page/viewers";
import { setUpTables } from "./tables/sortable";

function setUpText(): void {
  document.documentElement.classList.remove("no-script");
  setUpTheme();
  setUpTables();
  setUpCopying();
  setUpContents();
  setUpScrolling();
}

// Returns what draws all charts at once.
function setUpPictures(json: string): () => void {
  const page = readPage(json);
  setUpJumps(setUpViewers(page));
  return setUpCharts(page.charts);
}

function tell(error: unknown): void {
  const text = error instanceof Error ? error.message : String(error);
  for (const host of all("div.viewer")) host.append(make("p", { class: "viewer-state", text }));
}

function setUp(): void {
  setUpText();
  const json = textOfElement("tavmap-data");
  let drawAll = (): void => undefined;
  try {
    if (json !== null) drawAll = setUpPictures(json);
  } catch (error) {
    tell(error);
  }
  setUpPrinting(() => {
    drawAll();
  });
}

setUp();

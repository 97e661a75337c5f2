// What is on the screen as one PNG: the brains, and under them what they show.
import { badgeOf } from "../state_words";
import { infoOf } from "../map_view";
import type { Explorer } from "../explorer";
import type { BrainCanvas } from "../brain_canvas";
import { referenceWords } from "../reference";
import { thresholdWords } from "../threshold_choice";

const kLine = 22;
const kMargin = 12;

function linesOf(explorer: Explorer): string[] {
  const { maps, type, choice, condition, reference, settings } = explorer.store.now;
  const info = infoOf(explorer, type);
  const map = maps?.maps.get(type);
  const signs = [info.positive, info.negative].filter((words) => (words ?? "") !== "");
  return [
    `${type}; reference: ${referenceWords(reference, explorer.data.labels)}; condition: ${condition}`,
    map === undefined ? "no map" : thresholdWords(choice, map, info),
    badgeOf(maps, settings.draws ?? explorer.data.settings.draws).words,
    `red to yellow: ${signs[0] ?? "positive"}${signs.length > 1 ? `; blue: ${signs[1] ?? ""}` : ""}`,
  ];
}

export async function pictureOf(explorer: Explorer, brains: readonly BrainCanvas[]): Promise<Blob> {
  for (const brain of brains) brain.drawNow(); // a canvas of WebGL is empty again after its picture was shown
  const lines = linesOf(explorer);
  const height = Math.max(...brains.map(({ canvas }) => canvas.height));
  const picture = document.createElement("canvas");
  picture.width = brains.reduce((sum, { canvas }) => sum + canvas.width, 0);
  picture.height = height + 2 * kMargin + lines.length * kLine;
  const context = picture.getContext("2d");
  if (context === null) throw new Error("The browser cannot draw a picture.");
  context.fillRect(0, 0, picture.width, picture.height);
  let left = 0;
  for (const { canvas } of brains) {
    context.drawImage(canvas, left, 0);
    left += canvas.width;
  }
  context.fillStyle = "#ffffff";
  context.font = "15px system-ui, sans-serif";
  lines.forEach((line, n) => {
    context.fillText(line, kMargin, height + kMargin + (n + 0.7) * kLine, picture.width - 2 * kMargin);
  });
  return new Promise((resolve, reject) => {
    picture.toBlob((blob) => {
      if (blob === null) reject(new Error("The browser cannot write a PNG."));
      else resolve(blob);
    }, "image/png");
  });
}

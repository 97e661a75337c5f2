// What the colours mean: a bar in the map's unit, both signs in words.
import type { MapData } from "../data/page_data";
import { make } from "../page/dom";
import { cssColour, kCold, kWarm, type Rgb } from "./colour_scale";
import { isShort, magnitude, withUnit } from "./numbers";

function gradient(scale: readonly Rgb[], towards: "left" | "right"): string {
  return `linear-gradient(to ${towards}, ${scale.map(cssColour).join(", ")})`;
}

export type Coloured = Pick<MapData, "unit" | "fullColour" | "positive" | "negative">;

interface End {
  readonly number: string;
  readonly words: string;
}

function negativeEnd(data: Coloured, words: string): End {
  return { number: withUnit(`\u2264 \u2212${magnitude(data.fullColour)}`, data.unit), words };
}

function positiveEnd(data: Coloured): End {
  const sign = data.negative === null ? "" : "+";
  return { number: withUnit(`\u2265 ${sign}${magnitude(data.fullColour)}`, data.unit), words: data.positive };
}

function arm(scale: readonly Rgb[], towards: "left" | "right"): HTMLElement {
  const bar = make("span", { class: "arm" });
  bar.style.background = gradient(scale, towards);
  return bar;
}

function endSpan(end: End, side: string): HTMLElement {
  return make(
    "span",
    { class: `end end-${side}` },
    make("span", { class: "end-number", text: end.number }),
    make("span", { class: "end-words", text: end.words }),
  );
}

export function colourBar(data: Coloured): HTMLElement {
  const bar = make("div", { class: "legend-bar", attributes: { "aria-hidden": "true" } });
  const ends = make("div", { class: "legend-ends" });
  if (data.negative !== null) {
    bar.append(arm(kCold, "left"));
    ends.append(endSpan(negativeEnd(data, data.negative), "low"));
  }
  bar.append(arm(kWarm, "right"));
  ends.append(make("span", { class: "end end-zero", text: "0" }), endSpan(positiveEnd(data), "high"));
  return make("div", { class: data.negative === null ? "legend one-arm" : "legend" }, bar, ends);
}

// The sentence under the bar.
export function legendWords(data: MapData, underlayName: string, hasDirection: boolean): string {
  const signs = data.negative === null ? "" : " Red to yellow: positive, blue: negative.";
  const unit = isShort(data.unit) ? "" : ` Unit: ${data.unit}.`;
  const faint = hasDirection ? " Fainter: the direction is not supported by its control." : "";
  return (
    `Colour is the value, opacity its significance: voxels that reach the threshold are opaque, those ` +
    `below fade.${signs}${unit}${faint} Cyan line: the reference region. Grey: ${underlayName}.`
  );
}

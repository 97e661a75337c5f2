import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { describe, it } from "node:test";
import { colourAt, colourOf, cssColour, kCold, kWarm, type Rgb } from "../src/viewer/colour_scale";

// The points that a function of the C++ scale lists, as printed there.
function pointsIn(source: string, name: string): string[] {
  const body = source.slice(source.indexOf(`ColourScale ${name}()`));
  return body.slice(0, body.indexOf("}")).match(/0x[0-9A-F]{6}/g) ?? [];
}

function printed([red, green, blue]: Rgb): string {
  return `0x${[red, green, blue]
    .map((c) => c.toString(16).padStart(2, "0"))
    .join("")
    .toUpperCase()}`;
}

describe("the colour scale", () => {
  it("is that of the still pictures", () => {
    const source = readFileSync("../render/colour_scale.cpp", "utf8");
    assert.deepEqual(kWarm.map(printed), pointsIn(source, "warmScale"));
    assert.deepEqual(kCold.map(printed), pointsIn(source, "coldScale"));
  });

  it("runs straight between its points and stays at its ends", () => {
    const scale: Rgb[] = [
      [0, 0, 0],
      [100, 200, 50],
      [100, 0, 250],
    ];
    assert.deepEqual(colourAt(scale, 0.25), [50, 100, 25]);
    assert.deepEqual(colourAt(scale, 0.75), [100, 100, 150]);
    assert.deepEqual(colourAt(scale, -1), [0, 0, 0]);
    assert.deepEqual(colourAt(scale, 7), [100, 0, 250]);
  });

  it("has an arm for each sign, full at the given magnitude", () => {
    assert.deepEqual(colourOf(40, 40), kWarm[5]);
    assert.deepEqual(colourOf(-80, 40), kCold[4]);
    assert.deepEqual(colourOf(0, 40), kWarm[0]);
  });

  it("is written as the page reads it", () => {
    assert.equal(cssColour([1.4, 2.6, 255]), "rgb(1 3 255)");
  });
});

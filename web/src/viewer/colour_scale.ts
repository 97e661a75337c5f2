// The two arms of the colours: people without green or red cones can tell them apart, and both grow
// lighter outwards. Points of the sequential schemes YlOrRd and Blues of Brewer (Harrower & Brewer
// 2003, doi:10.1179/000870403235002042); render/colour_scale.cpp has the same ones.

export type Rgb = readonly [number, number, number]; // 0 ... 255

export const kWarm: readonly Rgb[] = points(0xbd0026, 0xe31a1c, 0xfc4e2a, 0xfd8d3c, 0xfeb24c, 0xfed976);
export const kCold: readonly Rgb[] = points(0x08519c, 0x2171b5, 0x4292c6, 0x6baed6, 0x9ecae1);

function points(...printed: number[]): Rgb[] {
  return printed.map((c) => [c >> 16, (c >> 8) & 0xff, c & 0xff]);
}

function between(from: Rgb, to: Rgb, share: number): Rgb {
  const mixed = (channel: 0 | 1 | 2): number => from[channel] + (to[channel] - from[channel]) * share;
  return [mixed(0), mixed(1), mixed(2)];
}

// The colour at `share` of the way (clamped to 0 ... 1); straight lines between the points.
export function colourAt(scale: readonly Rgb[], share: number): Rgb {
  const position = Math.min(Math.max(share, 0), 1) * (scale.length - 1);
  const first = Math.floor(position);
  const from = scale[first] ?? [0, 0, 0];
  return between(from, scale[first + 1] ?? from, position - first);
}

// The colour of a value: one arm per sign, full at the magnitude `full`.
export function colourOf(value: number, full: number): Rgb {
  return colourAt(value < 0 ? kCold : kWarm, full > 0 ? Math.abs(value) / full : 1);
}

export function cssColour([red, green, blue]: Rgb): string {
  return `rgb(${Math.round(red)} ${Math.round(green)} ${Math.round(blue)})`;
}

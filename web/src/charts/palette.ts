// A chart's colours, from the page's custom properties.
import type { SeriesRole } from "../data/page_data";

export interface Palette {
  readonly text: string;
  readonly grid: string;
  readonly mark: string;
  readonly interval: string;
  readonly censored: string;
  readonly role: (role: SeriesRole) => string;
  readonly band: string;
}

const kOfRole: Readonly<Record<SeriesRole, string>> = {
  main: "--chart-main",
  second: "--chart-second",
  "band-low": "--chart-main",
  "band-high": "--chart-main",
  null: "--chart-null",
  bound: "--chart-bound",
};

export function paletteOf(element: Element): Palette {
  const style = getComputedStyle(element);
  const read = (name: string): string => style.getPropertyValue(name).trim();
  return {
    text: read("--chart-text"),
    grid: read("--chart-grid"),
    mark: read("--chart-mark"),
    interval: read("--chart-interval"),
    censored: read("--chart-censored"),
    role: (role) => read(kOfRole[role]),
    band: read("--chart-band"),
  };
}

// The licences of the packages that a bundle contains, for its first lines.
import { readdir, readFile } from "node:fs/promises";

const here = (path) => new URL(path, import.meta.url);

// Names of the packages among the files that esbuild read.
export function packagesOf(metafile) {
  const names = Object.keys(metafile.inputs).flatMap((path) => {
    const [, rest] = /.*node_modules\/(.*)$/.exec(path) ?? [];
    if (rest === undefined) return [];
    return [
      rest
        .split("/")
        .slice(0, rest.startsWith("@") ? 2 : 1)
        .join("/"),
    ];
  });
  return [...new Set(names)].sort();
}

// licences/ has those that the packages do not bring.
async function licenceOf(name) {
  const folder = here(`node_modules/${name}/`);
  const file = (await readdir(folder)).find((each) => /^licen[cs]e/i.test(each));
  const from = file === undefined ? here(`licences/${name.replace("/", "_")}.txt`) : new URL(file, folder);
  const text = (await readFile(from, "utf8")).replace(/[^\x00-\x7f]/g, "?").trim();
  return `${name}:\n${text.replaceAll("*/", "* /")}`;
}

export async function bannerOf(names) {
  return `/*! Contains ${(await Promise.all(names.map(licenceOf))).join("\n\n")}\n*/\n`;
}

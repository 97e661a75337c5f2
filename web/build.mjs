// Makes report.js and report.css, each to be put into a page as it is, in the folder given, or in build/.
import { mkdir, readFile, writeFile } from "node:fs/promises";
import { join } from "node:path";
import * as esbuild from "esbuild";

const here = (path) => new URL(path, import.meta.url);
const licence = await readFile(here("node_modules/uplot/LICENSE"), "utf8");

// What would end the element that the text is put into, or change how it is read.
function refuse(text, name, ...forbidden) {
  for (const part of forbidden) {
    if (text.toLowerCase().includes(part)) throw new Error(`${name} contains ${part}`);
  }
}

async function bundleScript() {
  const result = await esbuild.build({
    entryPoints: [here("src/report.ts").pathname],
    bundle: true,
    minify: true,
    format: "iife",
    target: "es2020",
    charset: "ascii",
    legalComments: "none",
    banner: { js: `/*! Contains uPlot:\n${licence.trim()}\n*/` },
    write: false,
  });
  return result.outputFiles[0].text;
}

async function bundleStyle() {
  const names = (await readFile(here("style/order.txt"), "utf8")).trim().split("\n");
  const own = (await Promise.all(names.map((name) => readFile(here(`style/${name}`), "utf8")))).join("\n");
  const charts = await readFile(here("node_modules/uplot/dist/uPlot.min.css"), "utf8");
  // No target: light-dark forms and nesting are not used, and nothing is to be rewritten.
  return (await esbuild.transform(`${charts}\n${own}`, { loader: "css", minify: true, charset: "ascii" }))
    .code;
}

const folder = process.argv[2] ?? here("build").pathname;
await mkdir(folder, { recursive: true });
const script = await bundleScript();
const style = await bundleStyle();
refuse(script, "report.js", "</script", "<script", "<!--");
refuse(style, "report.css", "</style", "@import", "url(");
await writeFile(join(folder, "report.js"), script);
await writeFile(join(folder, "report.css"), style);
console.log(`report.js ${script.length} bytes, report.css ${style.length} bytes`);

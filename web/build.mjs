// Makes the scripts and styles of the pages: node build.mjs [FOLDER [PAGE...]]. FOLDER: build/ beside this
// file; PAGE: report (each to be put into a page as it is) and workbench (files of one origin).
import { mkdir, readFile, writeFile } from "node:fs/promises";
import { join } from "node:path";
import * as esbuild from "esbuild";
import { bannerOf, packagesOf } from "./licences.mjs";

const here = (path) => new URL(path, import.meta.url);
const textOf = (path) => readFile(here(path), "utf8");

// What NiiVue reads one file format of other fields with: two megabytes that no page here asks for.
const kUnused = ["numcodecs/blosc", "numcodecs/lz4", "numcodecs/zstd"];

const kPages = {
  report: { format: "iife", target: "es2020", alias: {}, files: [] },
  workbench: {
    format: "esm",
    target: "es2022",
    alias: Object.fromEntries(kUnused.map((name) => [name, here("src/workbench/unused.ts").pathname])),
    files: ["workbench.html", "favicon.svg"],
  },
};

const kEntries = { report: "src/report.ts", workbench: "src/workbench/main.ts" };

// What would end the element that the text is put into, or change how it is read.
function refuse(text, name, ...forbidden) {
  for (const part of forbidden) {
    if (text.toLowerCase().includes(part)) throw new Error(`${name} contains ${part}`);
  }
}

async function scriptOf(name, { format, target, alias }) {
  const result = await esbuild.build({
    entryPoints: [here(kEntries[name]).pathname],
    bundle: true,
    minify: true,
    format,
    target,
    alias,
    charset: "ascii",
    legalComments: "none",
    metafile: true,
    write: false,
  });
  return (await bannerOf(packagesOf(result.metafile))) + result.outputFiles[0].text;
}

async function styleOf(name) {
  const order = name === "report" ? "style/order.txt" : `style/${name}_order.txt`;
  const names = (await textOf(order)).trim().split("\n");
  const own = (await Promise.all(names.map((each) => textOf(`style/${each}`)))).join("\n");
  const charts = await textOf("node_modules/uplot/dist/uPlot.min.css");
  // No target: light-dark forms and nesting are not used, and nothing is to be rewritten.
  return (await esbuild.transform(`${charts}\n${own}`, { loader: "css", minify: true, charset: "ascii" }))
    .code;
}

async function make(name, folder) {
  const page = kPages[name];
  const script = await scriptOf(name, page);
  const style = await styleOf(name);
  if (name === "report") refuse(script, "report.js", "</script", "<script", "<!--");
  refuse(style, `${name}.css`, "</style", "@import", "url(");
  await writeFile(join(folder, `${name}.js`), script);
  await writeFile(join(folder, `${name}.css`), style);
  for (const file of page.files) await writeFile(join(folder, file), await textOf(`page/${file}`));
  console.log(`${name}.js ${script.length} bytes, ${name}.css ${style.length} bytes`);
}

const [folder = here("build").pathname, ...asked] = process.argv.slice(2);
await mkdir(folder, { recursive: true });
for (const name of asked.length > 0 ? asked : Object.keys(kPages)) await make(name, folder);

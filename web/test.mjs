// Bundles tests/*.test.ts and runs them with node's test runner.
import { spawnSync } from "node:child_process";
import { readdirSync, rmSync } from "node:fs";
import { fileURLToPath } from "node:url";
import * as esbuild from "esbuild";

const here = (path) => fileURLToPath(new URL(path, import.meta.url));
const outdir = here("build/tests");
const tests = readdirSync(here("tests")).filter((name) => name.endsWith(".test.ts"));

rmSync(outdir, { recursive: true, force: true });
await esbuild.build({
  entryPoints: tests.map((name) => here(`tests/${name}`)),
  bundle: true,
  platform: "node",
  format: "esm",
  target: "es2020",
  outExtension: { ".js": ".mjs" },
  outdir,
});
const files = tests.map((name) => `${outdir}/${name.replace(/\.ts$/, ".mjs")}`);
const { status } = spawnSync(process.execPath, ["--test", ...files], { stdio: "inherit", cwd: here(".") });
process.exitCode = status ?? 1;

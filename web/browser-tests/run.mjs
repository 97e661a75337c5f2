// Runs the browser tests over the fixture and the files that TAVMAP_REPORTS names (colons between them).
import { spawnSync } from "node:child_process";
import { readdirSync } from "node:fs";
import { fileURLToPath } from "node:url";

const here = fileURLToPath(new URL(".", import.meta.url));
const files = readdirSync(here).filter((name) => name.endsWith(".test.mjs"));
// One browser at a time: each draws by software, on all processors.
for (const name of files) {
  const { status } = spawnSync(process.execPath, ["--test", here + name], { stdio: "inherit" });
  if (status !== 0) process.exitCode = status ?? 1;
}

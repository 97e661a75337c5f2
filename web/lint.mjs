// Types, style and layout: npm run lint without npm.
import { spawnSync } from "node:child_process";
import { fileURLToPath } from "node:url";

const kTools = [
  ["typescript/bin/tsc", "--noEmit"],
  ["eslint/bin/eslint.js", "."],
  ["prettier/bin/prettier.cjs", "--check", "."],
];

for (const [tool, ...words] of kTools) {
  const program = fileURLToPath(new URL(`node_modules/${tool}`, import.meta.url));
  const { status } = spawnSync(process.execPath, [program, ...words], { stdio: "inherit" });
  if (status !== 0) process.exitCode = 1;
}

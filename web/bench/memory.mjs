// What the browser and the program hold: proportional set sizes, in which memory that processes share counts once.
import { readdirSync, readFileSync } from "node:fs";

function textOf(path) {
  try {
    return readFileSync(path, "utf8");
  } catch {
    return ""; // it has ended
  }
}

function proportionalMegabytes(pid) {
  return Number(/^Pss:\s+(\d+)/m.exec(textOf(`/proc/${pid}/smaps_rollup`))?.[1] ?? 0) / 1024;
}

// All below a process.
function childrenOf(parent) {
  const all = readdirSync("/proc").filter((name) => /^\d+$/.test(name));
  const own = all.filter(
    (pid) => Number(/\) \S (\d+)/.exec(textOf(`/proc/${pid}/stat`))?.[1]) === Number(parent),
  );
  return [...own, ...own.flatMap((pid) => childrenOf(pid))];
}

// Megabytes: the page's heap after collecting, all processes of the browser, the program (0: not named).
export async function memoryNow(page, program) {
  const session = await page.context().newCDPSession(page);
  await session.send("HeapProfiler.collectGarbage");
  await session.send("Performance.enable");
  const { metrics } = await session.send("Performance.getMetrics");
  await session.detach();
  const heap = metrics.find(({ name }) => name === "JSHeapUsedSize").value / 2 ** 20;
  const browser = childrenOf(process.pid).reduce((sum, pid) => sum + proportionalMegabytes(pid), 0);
  return { heap, browser, program: program === undefined ? 0 : proportionalMegabytes(program) };
}

function row(name, { heap, browser, program }) {
  const cells = [heap, browser, program].map((value) => value.toFixed(1).padStart(9));
  return `${name.padEnd(10)}${cells.join("")}`;
}

// Prints a row for each sample, {seconds, heap, browser, program}, and what the last has more than the first.
export function printGrowth(samples) {
  console.log(`${"MB".padEnd(10)}${["heap", "browser", "program"].map((name) => name.padStart(9)).join("")}`);
  for (const sample of samples) console.log(row(`${sample.seconds.toFixed(0)} s`, sample));
  const [first, last] = [samples[0], samples.at(-1)];
  const growth = Object.fromEntries(Object.keys(first).map((key) => [key, last[key] - first[key]]));
  console.log(row("growth", growth));
}

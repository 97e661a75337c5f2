// The built program behind the page: TAVMAP_PROGRAM names it, TAVMAP_PLUGIN the plug-in of its sessions.
import { execFileSync, spawn } from "node:child_process";
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { createInterface } from "node:readline";

export const { TAVMAP_PROGRAM: kProgram, TAVMAP_PLUGIN: kPlugin } = process.env;
export const kWithoutProgram =
  kProgram === undefined || kPlugin === undefined ? "TAVMAP_PROGRAM and TAVMAP_PLUGIN are not set" : false;

const kRequest = `prefix = "made"
folder = "out"
[settings]
surrogates = 100
[[run]]
name = "run"
bold = "sim/run-1_bold.nii.gz"
mask = "sim/mask.nii.gz"
[[reference]]
label_image = "sim/dseg.nii.gz"
labels = "all"
[[condition]]
name = "whole"
whole_run = true
`;

// Takes long; its name would be markup, were it not a text.
export const kSlow = "<b>slow<b>.toml";

// A folder "data" with a simulated data set and requests: "made.toml", and the slow one.
function madeFolder() {
  const root = mkdtempSync(join(tmpdir(), "tavmap-page-"));
  const data = join(root, "data");
  mkdirSync(data);
  const grid = ["--grid", "16,18,12", "--volumes", "80"];
  execFileSync(kProgram, ["simulate", join(data, "sim"), ...grid], { stdio: "ignore" });
  writeFileSync(join(data, "made.toml"), kRequest);
  const slow = kRequest.replace("= 100", "= 10000").replace('"out"', '"slow"');
  writeFileSync(join(data, kSlow), slow);
  return { root, data };
}

function addressFrom(child) {
  return new Promise((resolve, reject) => {
    child.once("exit", () => reject(new Error("the program printed no address")));
    createInterface(child.stdout).on("line", (line) => {
      const found = /http:\S+#token=\S+/.exec(line);
      if (found !== null) resolve(found[0]);
    });
  });
}

// The workbench, started in this folder. {address, close}: close resolves to its exit code.
export async function startIn(folder, words) {
  const child = spawn(kProgram, ["workbench", ...words, "--no-browser"], { cwd: folder });
  const address = await addressFrom(child);
  const close = async () => {
    const ended = new Promise((resolve) => child.once("exit", resolve));
    child.kill("SIGINT");
    return ended;
  };
  return { address, close };
}

// {address, data, work, close}. withResults: those of "made.toml" are there, in "out"; explore: its run is open.
export async function startProgram({ withResults = false, explore = false } = {}) {
  const { root, data } = madeFolder();
  if (withResults) execFileSync(kProgram, ["run", join(data, "made.toml")], { stdio: "ignore" });
  const sim = (name) => join(data, "sim", name);
  const session = ["--plugin", kPlugin, "--vtc", sim("run-1.vtc"), "--vois", sim("dseg.nii.gz")];
  const opened = explore ? [join(data, "made.toml"), "--folder", data] : [data];
  const words = [
    ...opened,
    "--work-folder",
    join(root, "work"),
    "--anatomy",
    sim("anatomy.nii.gz"),
    ...session,
  ];
  const { address, close } = await startIn(root, words);
  const closeAll = async () => {
    const code = await close();
    rmSync(root, { recursive: true });
    return code;
  };
  return { address, data, work: join(root, "work"), close: closeAll };
}

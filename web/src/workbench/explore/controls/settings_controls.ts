// Settings of the models and the data. What is sent are those that differ from the program's.
import { make } from "../../../page/dom";
import type { PresetData, Settings } from "../explore_data";
import type { Explorer } from "../explorer";
import { check, choiceOf, field, group, type Choice } from "./field";

const kOrderHelp = "How many volumes of the past the models use.";
const kConfoundHelp =
  "What is regressed out of every voxel before the maps. Another choice loads the runs again.";
const kCensorHelp =
  "Volumes with more head motion than this (framewise displacement) are left out. Empty: none.";
const kRunsHelp = "The runs that take part.";

// Takes a setting back when it is the program's own.
export function withSetting(now: Settings, own: Settings, patch: Settings): Settings {
  const all: Record<string, unknown> = { ...now, ...patch };
  const program = own as Record<string, unknown>;
  const kept = Object.entries(all).filter(
    ([name, value]) => JSON.stringify(value) !== JSON.stringify(program[name]),
  );
  return Object.fromEntries(kept);
}

function presetOf(preset: PresetData | string): Choice {
  return typeof preset === "string"
    ? { value: preset, text: preset }
    : { value: preset.id, text: preset.words };
}

type Set = (patch: Settings) => void;

function orderField({ data }: Explorer, set: Set): HTMLElement {
  const { order = 1, maxOrder = 4 } = data.settings;
  const orders = Array.from({ length: Math.max(maxOrder, order) }, (_, n) => String(n + 1));
  const control = choiceOf(
    orders.map((value) => ({ value, text: value })),
    String(order),
    (value) => {
      set({ order: Number(value) });
    },
  );
  return field("Order", kOrderHelp, control);
}

function confoundField({ data }: Explorer, set: Set): HTMLElement | null {
  const presets = (data.confoundPresets ?? []).map(presetOf);
  if (presets.length === 0) return null;
  const { confounds } = data.settings;
  const own = typeof confounds === "string" ? confounds : "";
  const known = presets.some(({ value }) => value === own);
  const choices = known ? presets : [{ value: own, text: "as the request has them" }, ...presets];
  const control = choiceOf(choices, own, (value) => {
    set({ confounds: value === own ? confounds : value });
  });
  return field("Confounds", kConfoundHelp, control);
}

function censoringField({ data }: Explorer, set: Set): HTMLElement | null {
  const own = data.settings.censoring;
  if (own === undefined) return null;
  const control = make("input", { attributes: { type: "number", min: "0.05", max: "5", step: "0.05" } });
  control.value = String(own.fdThresholdMm ?? "");
  control.addEventListener("change", () => {
    set({ censoring: { ...own, fdThresholdMm: control.value === "" ? null : Number(control.value) } });
  });
  return field("Censoring (mm)", kCensorHelp, control);
}

function runBoxes({ data }: Explorer, set: Set): HTMLElement | null {
  if (data.runs.length < 2) return null;
  const left = new Set<string>();
  const boxes = data.runs.map(({ name, volumes, censored }) =>
    check(`${name} (${volumes} volumes, ${censored} censored)`, true, (checked) => {
      if (checked) left.delete(name);
      else left.add(name);
      const names = data.runs.map((run) => run.name).filter((each) => !left.has(each));
      set(names.length === data.runs.length ? { runs: undefined as never } : { runs: names });
    }),
  );
  return group("Runs", kRunsHelp, make("div", { class: "column" }, ...boxes));
}

export function settingsControls(explorer: Explorer, replan: (settings: Settings) => void): HTMLElement {
  const { data, store } = explorer;
  const set = (patch: Settings): void => {
    const settings = withSetting(store.now.settings, data.settings, patch);
    store.change({ settings });
    if (!("order" in patch)) replan(settings);
  };
  const parts = [
    orderField(explorer, set),
    confoundField(explorer, set),
    censoringField(explorer, set),
    runBoxes(explorer, set),
  ];
  const shown = parts.filter((part) => part !== null);
  return make(
    "details",
    { class: "controls settings" },
    make("summary", { text: "Model and data" }),
    ...shown,
  );
}

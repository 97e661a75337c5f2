// Numbers as people read them: rounded to what is known, with the rounding said.

const kMinus = "\u2212";
const kSuperscripts = "⁰¹²³⁴⁵⁶⁷⁸⁹";

// Digits after the point that a value rounded to `step` deserves.
export function decimalsOf(step: number): number {
  return step > 0 ? Math.min(Math.max(Math.ceil(-Math.log10(step / 2)), 0), 9) : 6;
}

export function plain(value: number, decimals: number): string {
  const text = Math.abs(value).toFixed(decimals);
  return value < 0 && Number(text) !== 0 ? kMinus + text : text;
}

export function signed(value: number, decimals: number): string {
  return value > 0 && Number(value.toFixed(decimals)) !== 0
    ? `+${plain(value, decimals)}`
    : plain(value, decimals);
}

// Half a step, rounded up to one digit.
export function halfStep(step: number): string {
  const half = step / 2;
  const decimals = Math.max(Math.ceil(-Math.log10(half)), 0);
  const scale = 10 ** decimals;
  return (Math.ceil(half * scale - 1e-9) / scale).toFixed(decimals);
}

function superscript(exponent: number): string {
  const digits = Array.from(String(Math.abs(exponent)), (digit) => kSuperscripts[Number(digit)] ?? "");
  return (exponent < 0 ? "⁻" : "") + digits.join("");
}

// A probability from its -log10, two digits.
export function probability(log: number): string {
  const p = 10 ** -log;
  if (p >= 0.001) return String(Number(p.toPrecision(2)));
  const [digits = "", exponent = "0"] = p.toExponential(1).split("e");
  return `${digits} × 10${superscript(Number(exponent))}`;
}

// A magnitude with three digits or more, without trailing noise.
export function magnitude(value: number): string {
  const text = Math.abs(value) >= 1000 ? String(Math.round(value)) : String(Number(value.toPrecision(3)));
  return text.replace("-", kMinus);
}

const kShortUnit = 10; // characters

export function isShort(unit: string): boolean {
  return unit.length <= kShortUnit;
}

// Units that are a sentence are told once, in the legend, and not behind every number.
export function withUnit(text: string, unit: string): string {
  return unit === "" || !isShort(unit) ? text : `${text} ${unit}`;
}

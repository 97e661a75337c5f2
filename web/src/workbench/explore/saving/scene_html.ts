// The page of a scene as text. It loads nothing from anywhere.
import type { PageData } from "../../../data/page_data";

export interface ScenePage {
  readonly title: string;
  readonly lines: readonly string[];
  readonly data: PageData;
  readonly volumes: ReadonlyMap<string, string>; // base64 by id
  readonly script: string;
  readonly style: string;
}

const kPolicy =
  "default-src 'none'; img-src data:; style-src 'unsafe-inline'; script-src 'unsafe-inline'; base-uri " +
  "'none'; form-action 'none'";

const kMarks: Readonly<Record<string, string>> = {
  "&": "&amp;",
  "<": "&lt;",
  ">": "&gt;",
  '"': "&quot;",
  "'": "&#39;",
};

export function escaped(text: string): string {
  return text.replace(/[&<>"']/g, (mark) => kMarks[mark] ?? mark);
}

// What would end the element of a script does not occur in it.
function insideScript(json: string): string {
  return json.replace(/</g, "\\u003c");
}

export function sceneHtml({ title, lines, data, volumes, script, style }: ScenePage): string {
  const texts = Array.from(volumes, ([id, text]) => `<script type="text/plain" id="${id}">${text}</script>`);
  const paragraphs = lines.map((line) => `<p class="lead">${escaped(line)}</p>`);
  return `<!DOCTYPE html>
<html lang="en" class="no-script"><head><meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="${kPolicy}">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>${escaped(title)}</title><style>${style}</style></head>
<body><header><button type="button" class="theme script-only">Light or dark</button><h1>${escaped(title)}</h1>
${paragraphs.join("\n")}</header>
<main><div class="viewer script-only" data-view="scene"></div></main>
${texts.join("\n")}
<script type="application/json" id="tavmap-data">${insideScript(JSON.stringify(data))}</script>
<script>${script}</script></body></html>
`;
}

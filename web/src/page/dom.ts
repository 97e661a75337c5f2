// Making elements. Texts become text nodes: names from users' files are never read as markup.

export interface Parts {
  readonly class?: string;
  readonly text?: string;
  readonly attributes?: Readonly<Record<string, string>>;
}

export function make<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  parts: Parts = {},
  ...children: Node[]
): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  if (parts.class !== undefined) element.className = parts.class;
  if (parts.text !== undefined) element.textContent = parts.text;
  for (const [name, value] of Object.entries(parts.attributes ?? {})) element.setAttribute(name, value);
  element.append(...children);
  return element;
}

export function all(selector: string, within: ParentNode = document): HTMLElement[] {
  return Array.from(within.querySelectorAll<HTMLElement>(selector));
}

let made = 0;

export function freshId(stem: string): string {
  made += 1;
  return `${stem}-${made}`;
}

// Print shows what is folded away.

export function setUpPrinting(prepare: () => void): void {
  let opened: HTMLDetailsElement[] = [];
  const open = (): void => {
    prepare();
    const closed = Array.from(document.querySelectorAll<HTMLDetailsElement>("details:not([open])"));
    for (const details of closed) details.open = true;
    opened = opened.concat(closed); // browsers may tell of one print twice
  };
  const close = (): void => {
    for (const details of opened) details.open = false;
    opened = [];
  };
  addEventListener("beforeprint", open);
  addEventListener("afterprint", close);
  matchMedia("print").addEventListener("change", ({ matches }) => {
    if (matches) open();
    else close();
  });
}

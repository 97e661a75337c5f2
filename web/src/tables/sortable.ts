// Tables whose rows are sorted by a click on a column's head.
import { all, make } from "../page/dom";
import { keyOf, sortedIndices, type Kind, type Order } from "./sorting";

function kindOf(head: HTMLElement): Kind {
  return head.dataset.sort === "number" ? "number" : "text";
}

function keysOf(
  rows: readonly HTMLTableRowElement[],
  column: number,
  kind: Kind,
): ReturnType<typeof keyOf>[] {
  return rows.map((row) => {
    const cell = row.cells[column];
    return keyOf(kind, cell?.textContent ?? "", cell?.dataset.value);
  });
}

// rows: as the page brought them, so that ties and other columns start from the same order each time.
function sortBy(
  body: HTMLElement,
  rows: readonly HTMLTableRowElement[],
  head: HTMLElement,
  order: Order,
): void {
  const column = (head as HTMLTableCellElement).cellIndex;
  const sorted = sortedIndices(keysOf(rows, column, kindOf(head)), order);
  body.append(...sorted.flatMap((index) => rows[index] ?? []));
}

function nextOrder(head: HTMLElement): Order {
  return head.getAttribute("aria-sort") === "ascending" ? "descending" : "ascending";
}

function addButton(head: HTMLElement): HTMLButtonElement {
  const button = make("button", { class: "sort", attributes: { type: "button" } });
  button.append(...Array.from(head.childNodes));
  head.append(button);
  return button;
}

// Numbers stand under each other.
function alignNumbers(rows: readonly HTMLTableRowElement[], heads: readonly HTMLElement[]): void {
  for (const head of heads.filter((each) => kindOf(each) === "number")) {
    for (const row of rows) row.cells[(head as HTMLTableCellElement).cellIndex]?.classList.add("number");
  }
}

function setUpTable(table: HTMLTableElement): void {
  const body = table.tBodies[0];
  if (body === undefined) return;
  const rows = Array.from(body.rows);
  const heads = all("th[data-sort]", table);
  alignNumbers(rows, heads);
  for (const head of heads) {
    addButton(head).addEventListener("click", () => {
      const order = nextOrder(head);
      for (const each of heads) each.removeAttribute("aria-sort");
      head.setAttribute("aria-sort", order);
      sortBy(body, rows, head, order);
    });
  }
}

export function setUpTables(): void {
  for (const table of document.querySelectorAll<HTMLTableElement>("table.sortable")) setUpTable(table);
}

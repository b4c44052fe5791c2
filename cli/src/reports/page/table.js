// SPDX-License-Identifier: Apache-2.0
// A table of which only the rows in view exist: its cost does not depend on how many there are.

const SPARE_ROWS = 6; // above and below those in view
const TALLEST = 8e6; // pixels: browsers cannot scroll through much more

class VirtualTable {
  /** `columns`: title, least width in rem, isNumber, and `fill(cell, entry)`. `onSort` gets the number of a column. */
  constructor(root, columns, { onSort, onChoose }) {
    this.root = root;
    this.head = root.querySelector("#head");
    this.body = root.querySelector("#body");
    this.columns = columns;
    this.entries = [];
    this.chosen = -1; // place in `entries`
    this.isPending = false;
    this.rows = new Map(); // those that exist, by their place: {entry, row}
    root.style.setProperty("--columns", columns.map(({ width }) => `minmax(${width}rem, ${width}fr)`).join(" "));
    root.style.setProperty("--width", `${columns.reduce((sum, { width }) => sum + width, 0)}rem`);
    root.setAttribute("aria-colcount", columns.length);
    this.makeHead(onSort);
    this.body.addEventListener("click", (event) => {
      const row = event.target.closest("[role=row]");
      if (row)
        onChoose(Number(row.dataset.place));
    });
    root.addEventListener("scroll", () => this.drawSoon());
    new ResizeObserver(() => this.drawSoon()).observe(root);
  }

  makeHead(onSort) {
    const row = make("div", { role: "row", "aria-rowindex": 1 });
    this.titles = this.columns.map((column, number) => {
      const button = make("button", { type: "button", title: column.hint ?? "" }, column.title);
      button.addEventListener("click", () => onSort(number));
      const cell = make("div", { role: "columnheader", "aria-colindex": number + 1 });
      cell.classList.toggle("number", Boolean(column.isNumber));
      cell.append(button);
      return cell;
    });
    row.append(...this.titles);
    this.head.append(row);
  }

  showSorting(number, isDescending) {
    this.titles.forEach((cell, i) => {
      cell.firstChild.textContent = this.columns[i].title + (i === number ? (isDescending ? " ▼" : " ▲") : "");
      if (i === number)
        cell.setAttribute("aria-sort", isDescending ? "descending" : "ascending");
      else
        cell.removeAttribute("aria-sort");
    });
  }

  setEntries(entries) {
    this.entries = entries;
    this.root.setAttribute("aria-rowcount", entries.length + 1);
    this.drawSoon();
  }

  /** Fills all rows anew, after a change of what they show. */
  redraw() {
    this.rows.clear();
    this.draw();
  }

  /** Marks a row as the chosen one and scrolls to it. -1: none. */
  choose(place) {
    this.chosen = place;
    if (place >= 0)
      this.scrollTo(place);
    this.draw();
  }

  rowsInView() {
    return Math.max(1, Math.floor((this.root.clientHeight - this.head.offsetHeight) / this.rowHeight()));
  }

  rowHeight() {
    return this.head.firstChild.offsetHeight;
  }

  /** The height of all rows; of very many it is cut, and scrolling then passes over rows. */
  fullHeight() {
    return Math.min(TALLEST, this.entries.length * this.rowHeight());
  }

  /** The place of the first row in view, with a fraction. */
  firstInView() {
    const beyond = Math.max(1, this.fullHeight() + this.head.offsetHeight - this.root.clientHeight);
    const places = this.entries.length - (this.root.clientHeight - this.head.offsetHeight) / this.rowHeight();
    return Math.max(0, Math.min(1, this.root.scrollTop / beyond) * places);
  }

  scrollTo(place) {
    const visible = (this.root.clientHeight - this.head.offsetHeight) / this.rowHeight();
    const places = this.entries.length - visible;
    const first = this.firstInView();
    let wanted = first;
    if (place < first)
      wanted = place;
    else if (place + 1 > first + visible)
      wanted = place + 1 - visible;
    if (wanted === first || places <= 0)
      return;
    const beyond = this.fullHeight() + this.head.offsetHeight - this.root.clientHeight;
    this.root.scrollTop = (wanted / places) * beyond;
  }

  drawSoon() {
    if (this.isPending)
      return;
    this.isPending = true;
    window.requestAnimationFrame(() => this.draw());
  }

  draw() {
    this.isPending = false;
    const height = this.rowHeight();
    const first = this.firstInView();
    const from = Math.max(0, Math.floor(first) - SPARE_ROWS);
    const to = Math.min(this.entries.length, Math.ceil(first) + this.rowsInView() + SPARE_ROWS + 1);
    this.body.style.height = `${this.fullHeight()}px`;
    // Rows that stay keep their elements: a click begins and ends on the same one.
    const rows = new Map();
    for (let place = from; place < to; ++place) {
      const entry = this.entries[place];
      const old = this.rows.get(place);
      const row = old?.entry === entry ? old.row : this.makeRow(place);
      row.setAttribute("aria-selected", place === this.chosen);
      row.style.transform = `translateY(${this.root.scrollTop + (place - first) * height}px)`;
      rows.set(place, { entry, row });
    }
    const stays = new Set([...rows.values()].map(({ row }) => row));
    for (const row of [...this.body.children]) {
      if (!stays.has(row))
        row.remove();
    }
    [...stays].forEach((row, i) => {
      if (this.body.children[i] !== row)
        this.body.insertBefore(row, this.body.children[i] ?? null);
    });
    this.rows = rows;
    if (this.chosen >= from && this.chosen < to)
      this.root.setAttribute("aria-activedescendant", `row-${this.chosen}`);
    else
      this.root.removeAttribute("aria-activedescendant");
  }

  makeRow(place) {
    const row = make("div", { role: "row", id: `row-${place}`, "aria-rowindex": place + 2 });
    row.dataset.place = place;
    for (const [number, column] of this.columns.entries()) {
      const cell = make("div", { role: "gridcell", "aria-colindex": number + 1 });
      cell.classList.toggle("number", Boolean(column.isNumber));
      column.fill(cell, this.entries[place]);
      row.append(cell);
    }
    return row;
  }
}

const MARK_SIGNS = { accepted: "✓ accepted", rejected: "✗ rejected" };

// Columns as `VirtualTable` wants them, each with the `key` that entries are sorted by. Missing numbers are not finite.

function textColumn(title, width, key) {
  return { title, width, key, fill: (cell, entry) => { cell.textContent = cell.title = key(entry); } };
}

function numberColumn(title, width, hint, key, write) {
  return { title, width, hint, key, isNumber: true,
    fill: (cell, entry) => { cell.textContent = Number.isFinite(key(entry)) ? write(key(entry)) : ""; } };
}

function markColumn(marks) {
  return { title: "mark", width: 6, key: (entry) => marks.markOf(entry), fill: (cell, entry) => {
    cell.textContent = MARK_SIGNS[marks.markOf(entry)] ?? "";
    cell.className = marks.markOf(entry);
  } };
}

function noteColumn(marks) {
  return textColumn("note", 12, (entry) => marks.noteOf(entry).replace(/\s+/g, " "));
}

/** A table of numbers with all its rows. */
function numberTable(label, titles, rows) {
  const table = make("table", { "aria-label": label });
  const head = make("tr");
  head.append(...titles.map((title) => make("th", { scope: "col" }, title)));
  const thead = make("thead");
  thead.append(head);
  const body = make("tbody");
  body.append(...rows);
  table.append(thead, body);
  return table;
}

/** An element with attributes and a text, which is never read as HTML. */
function make(name, attributes = {}, text = "") {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(attributes))
    element.setAttribute(key, value);
  element.textContent = text;
  return element;
}

/** Also of more numbers than a call can have. */
function largest(numbers, least) {
  return numbers.reduce((a, b) => Math.max(a, b), least);
}

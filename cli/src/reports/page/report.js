// SPDX-License-Identifier: Apache-2.0
// The page: what is listed, what is chosen, and what the keys do.

const byId = (id) => document.getElementById(id);

class ReportPage {
  constructor() {
    this.data = new ReportData(document);
    this.report = makeReport(this.data); // what the entries are, and what is said of them
    this.marks = new Marks(this.data, () => this.refresh());
    this.picture = this.report.makePicture(byId("picture"), byId("reading"), (view) => this.zoomTo(view));
    this.columns = this.report.columns(this.marks);
    this.speak();
    this.table = new VirtualTable(byId("table"), this.columns, {
      onSort: (number) => this.sortBy(number),
      onChoose: (place) => this.choose(place),
    });
    this.sorting = null; // {number, isDescending}; null: the order of the files
    this.chosen = null; // an entry
    this.listen();
    this.list();
    byId("table").focus({ preventScroll: true });
  }

  /** Puts the words for this kind of report where they belong. */
  speak() {
    const { words, choices } = this.report;
    const files = this.data.heading.files;
    const title = `${words.titled}: ${files.length === 1 ? files[0].split("/").pop() : `${files.length} files`}`;
    document.title = `${title} - ${this.data.heading.generator}`;
    byId("title").textContent = title;
    byId("filter").placeholder = words.searched;
    byId("choices").textContent = words.choices;
    for (const [value, [text]] of Object.entries(choices))
      byId("filter-found").append(make("option", { value }, text));
    byId("list").setAttribute("aria-label", words.list);
    byId("table").setAttribute("aria-label", words.list);
    byId("detail").setAttribute("aria-label", words.detail);
    byId("whole").textContent = words.whole;
    byId("legend").setAttribute("aria-label", words.legend);
    byId("z-key").textContent = words.zoom;
  }

  // The table.

  /** Lists what passes the filters, in the order that was asked for. What was chosen stays chosen where it is listed. */
  list() {
    const words = byId("filter").value.toLowerCase().split(/\s+/).filter(Boolean);
    const mark = byId("filter-mark").value;
    const [, passesChoice] = this.report.choices[byId("filter-found").value] ?? ["", () => true];
    this.listed = this.data.entries.filter((entry) =>
      words.every((word) => entry.text.includes(word) || this.marks.noteOf(entry).toLowerCase().includes(word)) &&
      this.passesMark(entry, mark) && passesChoice(entry));
    if (this.sorting)
      this.sort();
    this.table.setEntries(this.listed);
    const place = this.listed.indexOf(this.chosen);
    this.choose(place < 0 && this.listed.length ? 0 : place);
    this.tell();
  }

  passesMark(entry, wanted) {
    const mark = this.marks.markOf(entry);
    if (wanted === "noted")
      return this.marks.noteOf(entry) !== "";
    return wanted === "" || (wanted === "none" ? mark === "" : mark === wanted);
  }

  sort() {
    const { number, isDescending } = this.sorting;
    const { key } = this.columns[number];
    const sign = isDescending ? -1 : 1;
    const isNothing = (value) => value === "" || (typeof value === "number" && !Number.isFinite(value));
    const keys = new Map(this.listed.map((entry) => [entry, key(entry)]));
    this.listed.sort((a, b) => {
      const [left, right] = [keys.get(a), keys.get(b)];
      if (isNothing(left) || isNothing(right)) // at the end in either order
        return isNothing(left) - isNothing(right) || a.index - b.index;
      const order = typeof left === "number" ? left - right : COLLATOR.compare(left, right);
      return sign * order || a.index - b.index;
    });
  }

  /** Upward, then downward, then the order of the files again. */
  sortBy(number) {
    if (this.sorting?.number !== number)
      this.sorting = { number, isDescending: false };
    else
      this.sorting = this.sorting.isDescending ? null : { number, isDescending: true };
    this.table.showSorting(this.sorting?.number ?? -1, this.sorting?.isDescending);
    this.list();
  }

  tell() {
    const { accepted, rejected } = this.marks.counts();
    const all = this.data.entries.length;
    const name = all === 1 ? this.report.words.entry : this.report.words.entries;
    const listed = this.listed.length === all ? "" : `, ${this.listed.length} listed`;
    byId("tally").textContent = `${all} ${name}${listed}: ${accepted} accepted, ${rejected} rejected, ` +
      `${all - accepted - rejected} open` + (this.marks.storage ? "" : ". This browser keeps no marks: save them.");
  }

  // The chosen entry.

  choose(place) {
    const entry = this.listed[place] ?? null;
    this.table.choose(entry ? place : -1);
    if (entry === this.chosen && entry)
      return;
    this.marks.keep();
    this.chosen = entry;
    byId("detail").hidden = !entry;
    if (entry)
      this.showEntry();
  }

  step(by) {
    const place = this.listed.indexOf(this.chosen);
    const wanted = place < 0 ? 0 : Math.max(0, Math.min(this.listed.length - 1, place + by));
    if (this.listed.length)
      this.choose(wanted);
  }

  async showEntry() {
    const entry = this.chosen;
    this.view = null;
    this.zoomed = -1;
    this.model = null;
    byId("name").textContent = entry.name;
    byId("facts").textContent = this.report.facts(entry);
    byId("note").value = this.marks.noteOf(entry);
    this.showMark();
    this.showRemarks();
    this.showNumbers();
    let reader = null;
    try {
      reader = await this.data.readerOf(entry);
    } catch {
      // Told below.
    }
    if (this.chosen !== entry)
      return;
    if (reader) {
      this.model = this.report.model(entry, reader);
    } else {
      const text = "The picture's data cannot be read. Is the browser too old?";
      byId("remarks").append(make("li", { class: "failed" }, text));
    }
    this.showPicture();
  }

  showMark() {
    const mark = this.marks.markOf(this.chosen);
    byId("accept").setAttribute("aria-pressed", mark === "accepted");
    byId("reject").setAttribute("aria-pressed", mark === "rejected");
  }

  showRemarks() {
    byId("remarks").replaceChildren(...this.report.remarks(this.chosen).map(({ text, isFailure }) =>
      make("li", isFailure ? { class: "failed" } : {}, text)));
  }

  /** Nothing where the entry has no picture. */
  showPicture() {
    byId("figure").hidden = !this.model;
    this.picture.show(this.model, this.view);
    this.showView();
    byId("legend").replaceChildren(...(this.model ? this.report.legend(this.model) : []).map(legendItem));
    this.showNumbers();
  }

  /** Those that are known before the points are read come at once. */
  showNumbers() {
    const numbers = this.report.numbers(this.chosen, this.model, (number) => this.zoomToStretch(number));
    byId("numbers").replaceChildren(...numbers);
  }

  // Zoom.

  zoomTo(view) {
    this.view = view;
    if (!view)
      this.zoomed = -1;
    this.picture.show(this.model, view);
    this.showView();
  }

  zoomToStretch(number) {
    this.zoomed = number;
    this.zoomTo(this.stretches()[number]);
  }

  zoomOn() {
    if (this.zoomed + 1 < this.stretches().length)
      this.zoomToStretch(this.zoomed + 1);
    else
      this.zoomTo(null);
  }

  stretches() {
    return this.model ? this.report.stretches(this.chosen, this.model) : [];
  }

  showView() {
    const { whole, part, stretch } = this.report.words;
    byId("shown").textContent = !this.view ? `${whole}; drag in the picture to see a part of it` :
      this.zoomed >= 0 ? `${stretch} ${this.zoomed + 1} of ${this.stretches().length}` : part;
    byId("whole").hidden = !this.view;
  }

  // Marks.

  mark(mark) {
    if (!this.chosen)
      return;
    const entry = this.chosen;
    this.marks.setMark(entry, mark);
    this.refresh();
    this.say(`${entry.name}: ${mark || "no mark"}`);
    if (mark && byId("step-on").checked)
      this.step(1);
  }

  /** What a button does: pressed again it clears its mark. */
  toggle(mark) {
    this.mark(this.chosen && this.marks.markOf(this.chosen) === mark ? "" : mark);
  }

  /** Shows the marks anew. What is listed stays, so that a marked trace does not vanish under the reader's eyes. */
  refresh() {
    this.table.redraw();
    this.tell();
    if (!this.chosen)
      return;
    this.showMark();
    if (document.activeElement !== byId("note"))
      byId("note").value = this.marks.noteOf(this.chosen);
  }

  save() {
    this.marks.save(this.report.lines(this.marks));
    this.say("The table was handed to the browser for saving.");
  }

  say(text) {
    byId("status").textContent = text;
  }

  // What the reader does.

  listen() {
    byId("filter").addEventListener("input", () => this.list());
    byId("filter-mark").addEventListener("change", () => this.list());
    byId("filter-found").addEventListener("change", () => this.list());
    byId("controls").addEventListener("submit", (event) => {
      event.preventDefault();
      byId("table").focus();
    });
    byId("judgement").addEventListener("submit", (event) => event.preventDefault());
    byId("save").addEventListener("click", () => this.save());
    byId("accept").addEventListener("click", () => this.toggle("accepted"));
    byId("reject").addEventListener("click", () => this.toggle("rejected"));
    byId("whole").addEventListener("click", () => this.zoomTo(null));
    byId("note").addEventListener("input", () => {
      this.marks.setNote(this.chosen, byId("note").value);
      this.table.redraw();
    });
    document.addEventListener("keydown", (event) => this.onKey(event));
  }

  onKey(event) {
    if (event.ctrlKey || event.altKey || event.metaKey)
      return;
    const isTyping = event.target.matches("textarea, select, input:not([type=checkbox])");
    if (event.key === "Escape") {
      event.preventDefault(); // it would empty the filter
      byId("table").focus();
      return;
    }
    if (isTyping)
      return;
    const page = this.table.rowsInView();
    const isOnTable = event.target === byId("table") || event.target === document.body;
    const actions = {
      j: () => this.step(1),
      k: () => this.step(-1),
      a: () => this.mark("accepted"),
      r: () => this.mark("rejected"),
      u: () => this.mark(""),
      n: () => byId("note").focus(),
      z: () => this.zoomOn(),
      s: () => this.save(),
      "/": () => byId("filter").focus(),
    };
    const moves = {
      ArrowDown: () => this.step(1),
      ArrowUp: () => this.step(-1),
      PageDown: () => this.step(page),
      PageUp: () => this.step(-page),
      Home: () => this.choose(0),
      End: () => this.choose(this.listed.length - 1),
    };
    const action = actions[event.key] ?? (isOnTable ? moves[event.key] : undefined);
    if (!action)
      return;
    event.preventDefault();
    action();
  }
}

const COLLATOR = new Intl.Collator("en", { numeric: true });

function legendItem({ name, style }) {
  const item = make("li");
  const swatch = document.createElementNS(SVG, "svg");
  swatch.setAttribute("class", "swatch");
  swatch.setAttribute("viewBox", "0 0 28 12");
  swatch.setAttribute("aria-hidden", "true");
  const line = document.createElementNS(SVG, "path");
  line.setAttribute("class", style);
  line.setAttribute("d", "M0 6H24");
  swatch.append(line);
  item.append(swatch, name);
  return item;
}

new ReportPage();

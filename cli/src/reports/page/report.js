// SPDX-License-Identifier: Apache-2.0
// The page: what is listed, what is chosen, and what the keys do.

const MOST_NUMBER_ROWS = 300; // of the table below the picture
const FEW_MEMBERS = 60; // that the legend names

const byId = (id) => document.getElementById(id);

class ReportPage {
  constructor() {
    this.data = new ReportData(document);
    this.heading = this.data.heading;
    this.marks = new Marks(this.data, () => this.refresh());
    this.picture = new Picture(byId("picture"), byId("reading"), (view) => this.zoomTo(view));
    summarize(this.data);
    this.columns = tableColumns(this.data, this.marks);
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

  // The table.

  /** Lists what passes the filters, in the order that was asked for. What was chosen stays chosen where it is listed. */
  list() {
    const words = byId("filter").value.toLowerCase().split(/\s+/).filter(Boolean);
    const mark = byId("filter-mark").value;
    const found = byId("filter-found").value;
    this.listed = this.data.entries.filter((entry) =>
      words.every((word) => entry.text.includes(word) || this.marks.noteOf(entry).toLowerCase().includes(word)) &&
      this.passesMark(entry, mark) && this.passesFound(entry, found));
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

  passesFound(entry, wanted) {
    switch (wanted) {
      case "one": return !entry.isFailed && entry.count === 1;
      case "several": return !entry.isFailed && entry.count > 1;
      case "none": return !entry.isFailed && entry.count === 0;
      case "failed": return entry.isFailed;
      default: return true;
    }
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
    const name = (this.heading.isGrouped ? "group" : "trace") + (all === 1 ? "" : "s");
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
    byId("name").textContent = entry.name;
    byId("facts").textContent = this.facts(entry);
    byId("note").value = this.marks.noteOf(entry);
    this.showMark();
    this.showRemarks();
    this.showNumbers();
    this.model = null;
    try {
      const points = await this.data.pointsOf(entry);
      if (this.chosen === entry)
        this.showPicture(points);
    } catch {
      const text = "The picture's data cannot be read. Is the browser too old?";
      byId("remarks").append(make("li", { class: "failed" }, text));
    }
  }

  facts(entry) {
    const points = entry.traces.map((trace) => trace.points);
    const most = largest(points, 0);
    const thinned = entry.traces.some((trace) => trace.thinned) ? " (the picture shows their outline)" : "";
    return [
      this.data.fileOf(entry),
      entry.traces.length > 1 ? `${entry.traces.length} traces of up to ${most} points` : `${most} points`,
    ].filter(Boolean).join(", ") + thinned;
  }

  showMark() {
    const mark = this.marks.markOf(this.chosen);
    byId("accept").setAttribute("aria-pressed", mark === "accepted");
    byId("reject").setAttribute("aria-pressed", mark === "rejected");
  }

  showRemarks() {
    const entry = this.chosen;
    const lines = (entry.remarks ?? []).map((remark) => make("li", {}, remark));
    for (const trace of entry.traces) {
      const before = entry.traces.length > 1 ? `${trace.id}: ` : "";
      if (trace.problem)
        lines.push(make("li", { class: "failed" }, `${before}failed: ${trace.problem}`));
      for (const remark of trace.remarks ?? [])
        lines.push(make("li", {}, before + remark));
    }
    byId("remarks").replaceChildren(...lines);
  }

  showPicture({ consensus, traces }) {
    const entry = this.chosen;
    const isGroup = entry.traces.length > 1;
    const series = traces.map((points, i) => ({
      points,
      name: entry.traces[i].id,
      style: isGroup ? `series-${i % 6} dash-${Math.floor(i / 6) % 3}` : "",
    }));
    if (consensus)
      series.push({ points: consensus, name: "consensus, scaled to the traces", style: "consensus" });
    this.model = { timeUnit: entry.timeUnit, intensityUnit: entry.intensityUnit, isGroup, series,
      peaks: entry.peaks ?? [], splits: entry.splits ?? [] };
    this.picture.show(this.model, this.view);
    this.showView();
    byId("legend").replaceChildren(...(isGroup ? series : []).slice(0, FEW_MEMBERS).map(legendItem));
  }

  showNumbers() {
    const entry = this.chosen;
    const { columns } = this.heading;
    const table = make("table", { "aria-label": this.heading.rows });
    const head = make("tr");
    const isGroup = entry.traces.length > 1;
    head.append(make("th", { scope: "col" }, isGroup ? "trace" : this.heading.rows.slice(0, -1)));
    for (const { name, isTime } of columns) {
      const unit = isTime && entry.timeUnit ? ` (${entry.timeUnit})` : "";
      head.append(make("th", { scope: "col" }, name.replace(/_/g, " ") + unit));
    }
    const body = make("tbody");
    let count = 0;
    for (let number = 0; number < entry.count; ++number) {
      for (const trace of entry.traces) {
        const values = trace.rows?.[number];
        if (values && count++ < MOST_NUMBER_ROWS)
          body.append(this.numberRow(isGroup ? trace.id : "", number, values));
      }
    }
    const thead = make("thead");
    thead.append(head);
    table.append(thead, body);
    byId("numbers").replaceChildren(...(count ? [table] : []));
    if (count > MOST_NUMBER_ROWS)
      byId("numbers").append(make("p", {}, `and ${count - MOST_NUMBER_ROWS} more, which the saved table has`));
  }

  numberRow(name, number, values) {
    const row = make("tr");
    const title = make("th", { scope: "row" });
    if (this.chosen.peaks?.[number]) {
      const button = make("button", { type: "button", title: "show this peak only" }, String(number + 1));
      button.addEventListener("click", () => this.zoomToPeak(number));
      title.append(button, ` ${name}`);
    } else {
      title.textContent = `${number + 1} ${name}`;
    }
    row.append(title);
    for (const value of values)
      row.append(make("td", { class: "number" }, value));
    return row;
  }

  // Zoom.

  zoomTo(view) {
    this.view = view;
    if (!view)
      this.zoomed = -1;
    if (this.model)
      this.picture.show(this.model, view);
    this.showView();
  }

  /** The peak with as much on both sides. */
  zoomToPeak(number) {
    const [start, end] = this.chosen.peaks[number];
    const width = end - start || 1;
    this.zoomed = number;
    this.zoomTo([start - width, end + width]);
  }

  zoomOn() {
    const count = this.chosen?.peaks?.length ?? 0;
    if (this.zoomed + 1 < count)
      this.zoomToPeak(this.zoomed + 1);
    else
      this.zoomTo(null);
  }

  showView() {
    byId("shown").textContent = !this.view ? "Whole trace; drag in the picture to see a part of it" :
      this.zoomed >= 0 ? `Peak ${this.zoomed + 1} of ${this.chosen.peaks.length}` : "A part of the trace";
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
    this.marks.save();
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

function start() {
  const page = new ReportPage();
  const files = page.heading.files;
  const kind = page.heading.rows === "splits" ? "Splits" : "Peaks";
  const title = `${kind}: ${files.length === 1 ? files[0].split("/").pop() : `${files.length} files`}`;
  byId("title").textContent = title;
  document.title = `${title} - ${page.heading.generator}`;
}

start();

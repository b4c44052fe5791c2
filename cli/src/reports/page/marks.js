// SPDX-License-Identifier: Apache-2.0
// The marks and notes of the reader: kept in the browser, and saved as a table.

const NOTE_DELAY = 300; // milliseconds between the last key and keeping a note

class Marks {
  /** `onChange` is called when another window has changed the marks. */
  constructor(data, onChange) {
    this.data = data;
    this.key = `zav-report:${data.digest}`;
    this.marks = new Map(); // of entries that have a mark or a note
    this.isUnsaved = false;
    this.timer = 0;
    this.storage = this.findStorage();
    this.load();
    window.addEventListener("storage", (event) => {
      if (event.key !== this.key)
        return;
      this.load();
      onChange();
    });
    window.addEventListener("pagehide", () => this.keep());
    window.addEventListener("beforeunload", (event) => {
      this.keep();
      if (this.isUnsaved)
        event.preventDefault();
    });
  }

  /** Null where the browser keeps nothing for this page. */
  findStorage() {
    try {
      const storage = window.localStorage;
      storage.setItem("zav-report:trial", "");
      storage.removeItem("zav-report:trial");
      return storage;
    } catch {
      return null;
    }
  }

  load() {
    try {
      const kept = JSON.parse(this.storage?.getItem(this.key) ?? "[]");
      const isMark = (mark) => ["", "accepted", "rejected"].includes(mark);
      this.marks = new Map(kept.filter(([, mark]) => isMark(mark))
        .map(([index, mark, note]) => [index, { mark, note: String(note) }]));
    } catch {
      this.marks = new Map();
    }
  }

  markOf(entry) {
    return this.marks.get(entry.index)?.mark ?? "";
  }

  noteOf(entry) {
    return this.marks.get(entry.index)?.note ?? "";
  }

  setMark(entry, mark) {
    this.set(entry, { mark, note: this.noteOf(entry) });
    this.keep();
  }

  setNote(entry, note) {
    this.set(entry, { mark: this.markOf(entry), note });
    window.clearTimeout(this.timer);
    this.timer = window.setTimeout(() => this.keep(), NOTE_DELAY);
  }

  set(entry, value) {
    if (value.mark || value.note)
      this.marks.set(entry.index, value);
    else
      this.marks.delete(entry.index);
    this.isUnsaved = true;
  }

  /** Puts the marks into the browser's storage. Where that fails they count as unsaved until the table is saved. */
  keep() {
    window.clearTimeout(this.timer);
    if (!this.storage || !this.isUnsaved)
      return;
    try {
      const kept = [...this.marks].map(([index, { mark, note }]) => [index, mark, note]);
      this.storage.setItem(this.key, JSON.stringify(kept));
      this.isUnsaved = false;
    } catch {
      this.storage = null; // it is full
    }
  }

  /** How many entries have each mark. */
  counts() {
    const counts = { accepted: 0, rejected: 0 };
    for (const { mark } of this.marks.values()) {
      if (mark)
        ++counts[mark];
    }
    return counts;
  }

  /** Gives lines of cells to the browser as a file. */
  save(lines) {
    this.keep();
    const table = lines.map((cells) => cells.map(oneLine).join("\t") + "\n").join("");
    const link = document.createElement("a");
    link.href = URL.createObjectURL(new Blob([table], { type: "text/tab-separated-values;charset=utf-8" }));
    link.download = `${reportName()}.marks.tsv`;
    link.click();
    window.setTimeout(() => URL.revokeObjectURL(link.href), 10000);
    this.isUnsaved = false;
  }
}

/** Without tabs, line ends and other control characters, which would break a line of the table. */
function oneLine(text) {
  return String(text).replace(/[\u0000-\u001f\u007f-\u009f\u2028\u2029]+/g, " ");
}

/** The name of this file without its ending. */
function reportName() {
  const last = window.location.pathname.split("/").pop();
  try {
    return decodeURIComponent(last).replace(/\.html?$/i, "") || "report";
  } catch {
    return "report";
  }
}

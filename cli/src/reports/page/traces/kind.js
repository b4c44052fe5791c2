// SPDX-License-Identifier: Apache-2.0
// What the page says of traces, and of groups of them.

const MOST_NUMBER_ROWS = 300; // of the table below the picture
const FEW_MEMBERS = 60; // that the legend names

class TraceReport {
  constructor(data) {
    this.data = data;
    this.heading = data.heading;
    this.words = {
      titled: this.heading.rows === "splits" ? "Splits" : "Peaks",
      entry: this.heading.isGrouped ? "group" : "trace",
      entries: this.heading.isGrouped ? "groups" : "traces",
      searched: "id, group, file or note",
      list: "Traces",
      detail: "The chosen trace",
      whole: "Whole trace",
      part: "A part of the trace",
      stretch: "Peak",
      zoom: "zoom to the next peak",
      choices: "Found",
      legend: "Traces of the group",
    };
    this.choices = {
      one: ["exactly one", (entry) => !entry.isFailed && entry.count === 1],
      several: ["several", (entry) => !entry.isFailed && entry.count > 1],
      none: ["nothing", (entry) => !entry.isFailed && entry.count === 0],
      failed: ["failed", (entry) => entry.isFailed],
    };
    summarize(data);
  }

  columns(marks) {
    return tableColumns(this.data, marks);
  }

  makePicture(...arguments_) {
    return new TracePicture(...arguments_);
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

  remarks(entry) {
    const lines = (entry.remarks ?? []).map((text) => ({ text }));
    for (const trace of entry.traces) {
      const before = entry.traces.length > 1 ? `${trace.id}: ` : "";
      if (trace.problem)
        lines.push({ text: `${before}failed: ${trace.problem}`, isFailure: true });
      for (const remark of trace.remarks ?? [])
        lines.push({ text: before + remark });
    }
    return lines;
  }

  /** The points of the consensus if the entry has one, and those of each trace. */
  model(entry, reader) {
    const consensus = entry.hasConsensus ? reader.readPoints() : null;
    const isGroup = entry.traces.length > 1;
    const series = entry.traces.map((trace, i) => ({
      points: reader.readPoints(),
      name: trace.id,
      style: isGroup ? `series-${i % 6} dash-${Math.floor(i / 6) % 3}` : "",
    }));
    if (consensus)
      series.push({ points: consensus, name: "consensus, scaled to the traces", style: "consensus" });
    return { timeUnit: entry.timeUnit, intensityUnit: entry.intensityUnit, isGroup, series,
      peaks: entry.peaks ?? [], splits: entry.splits ?? [] };
  }

  legend(model) {
    return (model.isGroup ? model.series : []).slice(0, FEW_MEMBERS);
  }

  /** The ranges that the reader can zoom to: each peak with as much on both sides. */
  stretches(entry) {
    return (entry.peaks ?? []).map(([start, end]) => {
      const width = end - start || 1;
      return [start - width, end + width];
    });
  }

  /** All measures, as the program's own table has them. `onStretch` shows the peak of a number. */
  numbers(entry, _model, onStretch) {
    const isGroup = entry.traces.length > 1;
    const titles = this.heading.columns.map(({ name, isTime }) =>
      name.replace(/_/g, " ") + (isTime && entry.timeUnit ? ` (${entry.timeUnit})` : ""));
    const rows = [];
    for (let number = 0; number < entry.count; ++number) {
      for (const trace of entry.traces) {
        const values = trace.rows?.[number];
        if (values)
          rows.push(() => this.numberRow(entry, isGroup ? trace.id : "", number, values, onStretch));
      }
    }
    if (!rows.length)
      return [];
    const first = isGroup ? "trace" : this.heading.rows.slice(0, -1);
    const table = numberTable(this.heading.rows, [first, ...titles],
      rows.slice(0, MOST_NUMBER_ROWS).map((makeRow) => makeRow()));
    const more = rows.length - MOST_NUMBER_ROWS;
    return more > 0 ? [table, make("p", {}, `and ${more} more, which the saved table has`)] : [table];
  }

  numberRow(entry, name, number, values, onStretch) {
    const row = make("tr");
    const title = make("th", { scope: "row" });
    if (entry.peaks?.[number]) {
      const button = make("button", { type: "button", title: "show this peak only" }, String(number + 1));
      button.addEventListener("click", () => onStretch(number));
      title.append(button, ` ${name}`);
    } else {
      title.textContent = `${number + 1} ${name}`;
    }
    row.append(title, ...values.map((value) => make("td", { class: "number" }, value)));
    return row;
  }

  /** All peaks or splits with the marks and notes of their entries; a trace without any has a line of its own. */
  lines(marks) {
    const { heading } = this;
    const namesFile = heading.files.length > 1;
    const columns = heading.columns.map((column) => column.name);
    const names = [...(namesFile ? ["file"] : []), ...(heading.isGrouped ? ["group", "members"] : []), "time_unit"];
    const lines = [["id", "mark", "note", ...names, ...columns]];
    for (const entry of this.data.entries) {
      for (const trace of entry.traces) {
        const rows = trace.rows?.length ? trace.rows : [columns.map(() => "")];
        const before = [trace.cell ?? trace.id, marks.markOf(entry), marks.noteOf(entry)];
        if (namesFile)
          before.push(this.data.fileOf(entry));
        if (heading.isGrouped)
          before.push(entry.group ?? "", entry.traces.length);
        before.push(entry.timeUnit ?? "");
        for (const row of rows)
          lines.push([...before, ...row]);
      }
    }
    return lines;
  }
}

const makeReport = (data) => new TraceReport(data);

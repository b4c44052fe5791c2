// SPDX-License-Identifier: Apache-2.0
// The columns of the table, and the numbers of each entry that stand there.

/** Gives each entry what the table shows and looks for: its name, how much was found, and the main peak or split. */
function summarize(data) {
  const numberOf = new Map(data.heading.columns.map((column, number) => [column.name, number]));
  const valueOf = (row, name) => {
    const text = row?.[numberOf.get(name)];
    return text ? Number(text) : NaN;
  };
  for (const entry of data.entries) {
    const found = entry.traces.filter((trace) => !trace.problem);
    const ids = entry.traces.map((trace) => trace.id);
    entry.name = entry.group ?? entry.traces[0].id;
    entry.isFailed = found.length < entry.traces.length;
    entry.count = largest(found.map((trace) => trace.rows?.length ?? 0), 0);
    entry.main = mainRow(entry, found, valueOf);
    entry.text = [entry.name, ...ids, data.fileOf(entry)].join("\n").toLowerCase();
  }
}

/** The numbers of the largest peak, or of the surest split; of a group the sums of areas and the least shape. */
function mainRow(entry, found, valueOf) {
  const weightOf = (number) => {
    const areas = found.map((trace) => valueOf(trace.rows?.[number], "area_above_line") || 0);
    return areas.reduce((a, b) => a + b) || valueOf(found[0].rows?.[number], "probability");
  };
  let main = 0;
  for (let number = 1; number < entry.count; ++number) {
    if (weightOf(number) > weightOf(main))
      main = number;
  }
  const rows = found.map((trace) => trace.rows?.[main]).filter(Boolean);
  const all = (name) => rows.map((row) => valueOf(row, name)).filter((number) => !Number.isNaN(number));
  const sum = (name) => (all(name).length ? all(name).reduce((a, b) => a + b) : NaN);
  return {
    start: valueOf(rows[0], "start"),
    end: valueOf(rows[0], "end"),
    apex: entry.peaks?.[main]?.[2] ?? NaN,
    height: largest(all("height"), -Infinity),
    area: sum("area"),
    area_above_line: sum("area_above_line"),
    split: valueOf(rows[0], "split"),
    probability: valueOf(rows[0], "probability"),
    shape: -largest(all("shape").map((shape) => -shape), -Infinity),
  };
}

/**
 * The columns as `VirtualTable` wants them, each with the `key` that entries are sorted by. Missing numbers are not
 * finite.
 */
function tableColumns(data, marks) {
  const { heading } = data;
  const has = (name) => heading.columns.some((column) => column.name === name);
  const units = new Set(data.entries.map((entry) => entry.timeUnit ?? ""));
  const unit = units.size === 1 ? [...units][0] : null; // null: times name their own

  const measure = (name, width, hint, write) =>
    numberColumn(name.replace(/_/g, " "), width, hint, (entry) => entry.main[name], write);
  const share = (name, width, hint) => measure(name, width, hint, (value) => value.toFixed(3));
  const time = (name, hint) => ({ title: unit ? `${name} (${unit})` : name, width: 6, hint, isNumber: true,
    // Seconds where units differ.
    key: (entry) => entry.main[name] * (unit === null && entry.timeUnit === "min" ? 60 : 1),
    fill: (cell, entry) => {
      const value = entry.main[name];
      const own = unit === null && entry.timeUnit ? ` ${entry.timeUnit}` : "";
      cell.textContent = Number.isFinite(value) ? value.toFixed(entry.timeUnit === "s" ? 1 : 3) + own : "";
    } });

  const count = { title: heading.rows, width: 4, isNumber: true, key: (entry) => (entry.isFailed ? -1 : entry.count),
    fill: (cell, entry) => {
      cell.textContent = entry.isFailed ? "failed" : entry.count;
      cell.classList.toggle("failed", entry.isFailed);
    } };
  const ofPeak = heading.isGrouped ? "of the largest peak, all traces together" : "of the largest peak";
  const columns = [markColumn(marks), textColumn(heading.isGrouped ? "group" : "id", 15, (entry) => entry.name)];
  if (heading.isGrouped)
    columns.push(numberColumn("traces", 4, "traces of the group", (entry) => entry.traces.length, String));
  columns.push(count);
  if (has("split"))
    columns.push(time("split", "of the surest split"), share("probability", 7, "of the surest split"));
  if (has("apex"))
    columns.push(time("apex", ofPeak), measure("area", 6, ofPeak, amountText));
  if (has("shape"))
    columns.push(share("shape", 4.5, "the least of the group's traces"));
  if (has("start"))
    columns.push(time("start", ofPeak), time("end", ofPeak), measure("height", 6, ofPeak, amountText),
      measure("area_above_line", 8, ofPeak, amountText));
  if (heading.files.length > 1)
    columns.push(textColumn("file", 10, (entry) => data.fileOf(entry)));
  columns.push(noteColumn(marks));
  return columns;
}

// SPDX-License-Identifier: Apache-2.0
// What the page says of measured spectra, each with the prediction for the peptide that it is held to be of.

const MOST_IONS = 300; // in the table below the picture
const MOST_UNEXPLAINED = 20; // in the table below that
const ION_STYLES = { b: "series-0", y: "series-1" };
const OTHER_ION_STYLE = "series-2";

class SpectrumReport {
  constructor(data) {
    this.data = data;
    this.columnOf = new Map(data.heading.columns.map((name, number) => [name, number]));
    this.words = {
      titled: "Spectra",
      entry: "spectrum",
      entries: "spectra",
      searched: "peptide, scan or note",
      list: "Spectra",
      detail: "The chosen spectrum",
      whole: "Whole spectrum",
      part: "A part of the spectrum",
      stretch: "Quarter",
      zoom: "zoom to the next quarter",
      choices: "Spectral angle",
      legend: "Ions",
    };
    const isBetween = (low, high) => (entry) => entry.angle >= low && entry.angle < high;
    this.choices = {
      high: ["0.9 and more", isBetween(0.9, Infinity)],
      middle: ["0.7 to 0.9", isBetween(0.7, 0.9)],
      low: ["below 0.7", isBetween(-Infinity, 0.7)],
      failed: ["failed", (entry) => entry.isFailed],
    };
    for (const entry of data.entries)
      this.summarize(entry);
  }

  summarize(entry) {
    entry.isFailed = Boolean(entry.problem);
    entry.name = entry.peptide + (entry.charge ? ` ${entry.charge}+` : "");
    entry.angle = this.value(entry, "spectral_angle");
    entry.text = [entry.peptide, entry.scan, entry.title ?? ""].join("\n").toLowerCase();
  }

  value(entry, name) {
    const text = entry.values?.[this.columnOf.get(name)];
    return text ? Number(text) : NaN;
  }

  columns(marks) {
    const { entries } = this.data;
    const measure = (title, name, width, hint, write) =>
      numberColumn(title, width, hint, (entry) => this.value(entry, name), write);
    const angle = { ...measure("angle", "spectral_angle", 4.5, "spectral angle over b and y ions, 1 for equal ones"),
      fill: (cell, entry) => {
        cell.textContent = entry.isFailed ? "failed" : entry.angle.toFixed(3);
        cell.classList.toggle("failed", entry.isFailed);
      } };
    const columns = [markColumn(marks), textColumn("peptide", 12, (entry) => entry.peptide),
      numberColumn("charge", 4.5, "of the precursor", (entry) => entry.charge || NaN, String)];
    if (entries.some((entry) => entry.energy !== undefined))
      columns.push(numberColumn("energy", 4.5, "normalised collision energy", (entry) => entry.energy ?? NaN, String));
    columns.push(textColumn("scan", 6, (entry) => entry.scan), angle,
      measure("explained", "explained_intensity", 5.5, "share of the measured intensity that a predicted peak explains",
        (share) => `${(100 * share).toFixed(1)} %`),
      measure("peaks", "explained_peaks", 4, "measured peaks that are explained", String),
      measure("precursor (ppm)", "precursor_ppm", 7.5, "m/z of the precursor that the file names, against the peptide's",
        ppmText),
      noteColumn(marks));
    return columns;
  }

  makePicture(...arguments_) {
    return new MirrorPicture(...arguments_);
  }

  facts(entry) {
    const measured = entry.observedMz ? `, measured ${entry.observedMz.toFixed(4)}` : "";
    const explained = (100 * this.value(entry, "explained_intensity")).toFixed(1);
    const scores = entry.isFailed ? "" : `angle ${entry.angle.toFixed(3)}, ` +
      `${this.value(entry, "explained_peaks")} of ${this.value(entry, "observed_peaks")} peaks and ` +
      `${explained} % of the intensity explained`;
    return [
      scores,
      entry.title || [this.data.fileOf(entry), entry.scan].filter(Boolean).join(", "),
      entry.mz ? `precursor m/z ${entry.mz.toFixed(4)}${measured}` : "",
      entry.energy === undefined ? "" : `energy ${entry.energy}`,
    ].filter(Boolean).join(", ") + (entry.thinned ? " (the picture shows the outline of the measured peaks)" : "");
  }

  remarks(entry) {
    return entry.problem ? [{ text: `failed: ${entry.problem}`, isFailure: true }] : [];
  }

  /** Intensities as shares of the highest peak. Null where nothing was compared. */
  model(entry, reader) {
    if (entry.isFailed)
      return null;
    const points = reader.readPoints();
    const ions = reader.readJson().map(([mz, intensity, name, observedMz, observedIntensity]) =>
      ({ mz, intensity, name, observedMz, observedIntensity, style: ION_STYLES[name[0]] ?? OTHER_ION_STYLE }));
    const observed = [];
    for (let i = 0; i < points.count; ++i)
      observed.push({ mz: points.x(i), intensity: points.intensity(i) });
    const most = largest(observed.map(({ intensity }) => intensity), 0) || 1;
    for (const peak of observed)
      peak.share = peak.intensity / most;
    const mostPredicted = largest(ions.map(({ intensity }) => intensity), 0) || 1;
    for (const ion of ions) {
      ion.share = ion.intensity / mostPredicted;
      ion.observedShare = ion.observedMz === undefined ? NaN : ion.observedIntensity / most;
    }
    return { observed, ions };
  }

  legend({ ions }) {
    const names = { "series-0": "b ions", "series-1": "y ions", [OTHER_ION_STYLE]: "other ions" };
    const present = new Set(ions.map(({ style }) => style));
    return [...Object.entries(names).filter(([style]) => present.has(style)).map(([style, name]) => ({ name, style })),
      { name: "measured, not explained", style: "consensus" }];
  }

  /** The quarters of the m/z, for those who zoom by keys. */
  stretches(entry, model) {
    const [from, to] = mzRange(model);
    return [0, 1, 2, 3].map((i) => [from + (i * (to - from)) / 4, from + ((i + 1) * (to - from)) / 4]);
  }

  /** The predicted peaks, each with the measured one that it explains. */
  numbers(entry, model) {
    if (!model?.ions.length)
      return [];
    const titles = ["ion", "m/z", "intensity", "measured m/z", "error (ppm)", "measured intensity"];
    const rows = model.ions.slice(0, MOST_IONS).map((ion) => {
      const isSeen = ion.observedMz !== undefined;
      const cells = [ion.mz.toFixed(4), ion.share.toFixed(3), isSeen ? ion.observedMz.toFixed(4) : "",
        isSeen ? ppmText(1e6 * (ion.observedMz / ion.mz - 1)) : "", isSeen ? ion.observedShare.toFixed(3) : ""];
      const row = make("tr");
      row.append(make("th", { scope: "row" }, ion.name), ...cells.map((text) => make("td", { class: "number" }, text)));
      return row;
    });
    const more = model.ions.length - MOST_IONS;
    const table = numberTable("predicted peaks", titles, rows);
    const unexplained = this.unexplained(entry, model);
    return more > 0 ? [table, make("p", {}, `and ${more} more`), ...unexplained] : [table, ...unexplained];
  }

  /** The highest of the measured peaks that no ion explains. */
  unexplained(entry, { observed, ions }) {
    const explained = explainedPeaks(observed, ions);
    const others = observed.filter((peak) => !explained.has(peak)).sort((a, b) => b.share - a.share);
    if (!others.length)
      return [];
    const rows = others.slice(0, MOST_UNEXPLAINED).map(({ mz, share }) => {
      const row = make("tr");
      row.append(make("th", { scope: "row", class: "number" }, mz.toFixed(3)),
        make("td", { class: "number" }, share.toFixed(3)));
      return row;
    });
    const of = entry.thinned ? "" : `of ${others.length} `; // of thinned peaks nobody knows how many
    const which = others.length > rows.length ? `the ${rows.length} highest ${of}` : "";
    const table = numberTable("measured peaks, not explained", ["measured m/z", "measured intensity"], rows);
    return [make("p", {}, `Not explained: ${which}measured peaks`), table];
  }

  /** A line for each spectrum, with its mark and note. */
  lines(marks) {
    const { entries, heading } = this.data;
    const hasEnergies = entries.some((entry) => entry.energy !== undefined);
    const energy = (value) => (hasEnergies ? [value ?? ""] : []);
    const lines = [["peptide", "charge", ...energy("energy"), "scan", "mark", "note", ...heading.columns]];
    for (const entry of entries) {
      lines.push([entry.peptideCell ?? entry.peptide, entry.charge || "", ...energy(entry.energy),
        entry.scanCell ?? entry.scan, marks.markOf(entry), marks.noteOf(entry), ...(entry.values ?? heading.columns.map(() => ""))]);
    }
    return lines;
  }
}

/** The measured peaks, which ascend in m/z, that ions are paired with: of those of the pair's intensity the nearest in
 * m/z. Here m/z and intensities are rounded, those of the pairs are not. */
function explainedPeaks(observed, ions) {
  const slack = observed.length ? 1e-6 * (observed.at(-1).mz - observed[0].mz) : 0;
  const seen = ions.filter(({ observedMz }) => observedMz !== undefined).sort((a, b) => a.observedMz - b.observedMz);
  const explained = new Set();
  let first = 0;
  for (const { observedMz, observedIntensity } of seen) {
    const distance = (peak) => Math.abs(peak.mz - observedMz);
    const isOfPair = ({ intensity }) => Math.abs(intensity - observedIntensity) <= 1e-6 * observedIntensity;
    while (first < observed.length && observed[first].mz < observedMz - slack)
      ++first;
    let nearest = null;
    for (let i = first; i < observed.length && observed[i].mz <= observedMz + slack; ++i) {
      if (isOfPair(observed[i]) && (!nearest || distance(observed[i]) < distance(nearest)))
        nearest = observed[i];
    }
    if (nearest)
      explained.add(nearest);
  }
  return explained;
}

/** With one decimal, and no minus in front of 0. */
function ppmText(ppm) {
  return (Math.round(10 * ppm) / 10 + 0).toFixed(1);
}

const makeReport = (data) => new SpectrumReport(data);

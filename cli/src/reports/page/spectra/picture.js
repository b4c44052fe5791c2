// SPDX-License-Identifier: Apache-2.0
// The picture of an entry: the measured spectrum, and below it the prediction upside down.

const LETTER = 7; // pixels that a letter of a label needs
const LINE = 14; // and a line of them
const LABEL_ROOM = 18; // pixels beyond the highest peaks
const MOST_LABELS = 60;
const NEAR = 8; // pixels within which the pointer finds a peak

/** `model`: observed ({mz, share}) and ions ({mz, share, name, style, observedMz, observedShare}). */
class MirrorPicture extends Plot {
  ranges() {
    const { observed, ions } = this.model;
    const [from, to] = this.view ?? mzRange(this.model);
    const inView = [...observed, ...ions].filter(({ mz }) => mz >= from && mz <= to);
    const half = Math.max(2 * LABEL_ROOM, (this.height - MARGIN.top - MARGIN.bottom) / 2);
    const height = (largest(inView.map(({ share }) => share), 0) || 1) * (half / (half - LABEL_ROOM));
    return { x: [from, to], y: [-height, height] };
  }

  axisTitles() {
    return { x: "m/z", y: "measured (above) and predicted, % of the highest peak" };
  }

  /** Shares of both halves count upward. */
  yTickText(value) {
    return String(Number((100 * Math.abs(value)).toPrecision(3)));
  }

  drawContent() {
    const { observed, ions } = this.model;
    const right = MARGIN.left + this.plotWidth;
    this.stems("stem consensus", observed.map(({ mz, share }) => [mz, share]));
    for (const style of new Set(ions.map((ion) => ion.style))) {
      const own = ions.filter((ion) => ion.style === style);
      this.stems(`stem ${style}`, own.map(({ mz, share }) => [mz, -share]));
      this.stems(`stem ${style}`, own.filter(({ observedMz }) => observedMz !== undefined)
        .map(({ observedMz, observedShare }) => [observedMz, observedShare]));
    }
    this.add(this.plot, "path", { class: "axis", d: `M${MARGIN.left} ${round(this.y(0))}H${right}` });
    this.drawLabels();
  }

  /** Upright lines from the middle, all in one element. */
  stems(style, peaks) {
    const [from, to] = this.xRange;
    const middle = round(this.y(0));
    const path = peaks.filter(([mz]) => mz >= from && mz <= to)
      .map(([mz, share]) => `M${round(this.x(mz))} ${middle}V${round(this.y(share))}`);
    if (path.length)
      this.add(this.plot, "path", { class: style, d: path.join("") });
  }

  /** The names of the ions, those of the highest peaks first, where there is room for them. */
  drawLabels() {
    const placed = [];
    const place = (mz, share, name) => {
      const room = (LETTER * name.length) / 2;
      const x = round(Math.max(MARGIN.left + room, Math.min(MARGIN.left + this.plotWidth - room, this.x(mz))));
      const y = round(this.y(share) + (share < 0 ? 13 : -4));
      const isFree = placed.every((other) =>
        Math.abs(other.x - x) >= LETTER * (other.name.length + name.length + 1) / 2 || Math.abs(other.y - y) >= LINE);
      if (!isFree || placed.length >= MOST_LABELS)
        return;
      placed.push({ x, y, name });
      this.add(this.plot, "text", { class: "ion-label", x, y, "text-anchor": "middle" }, name);
    };
    const [from, to] = this.xRange;
    // Isotope peaks stand beside the peak that has the name.
    const named = this.model.ions.filter(({ mz, name }) => mz >= from && mz <= to && name && !name.includes(" i"));
    for (const ion of named.sort((a, b) => b.share - a.share)) {
      if (ion.observedMz === undefined)
        place(ion.mz, -ion.share, ion.name);
      else
        place(ion.observedMz, ion.observedShare, ion.name);
    }
  }

  /** The highest peaks near the pointer of both halves. The picture's m/z are rounded to single precision. */
  readingAt(mz) {
    const reach = this.valueAt(NEAR) - this.valueAt(0);
    const near = (peaks) => peaks.filter((peak) => Math.abs(peak.mz - mz) <= reach)
      .reduce((best, peak) => (best && best.share >= peak.share ? best : peak), null);
    const percent = (share) => `${(100 * share).toFixed(1)} %`;
    const observed = near(this.model.observed);
    const ion = near(this.model.ions);
    return [
      observed ? `measured ${observed.mz.toFixed(3)}: ${percent(observed.share)}` : "",
      ion ? `${ion.name} predicted ${ion.mz.toFixed(4)}: ${percent(ion.share)}` : "",
    ].filter(Boolean).join(", ");
  }
}

/** The m/z of a model with room on both sides. */
function mzRange({ observed, ions }) {
  const mzs = [...observed, ...ions].map(({ mz }) => mz);
  if (!mzs.length)
    return [0, 1];
  const [least, most] = [-largest(mzs.map((mz) => -mz), -Infinity), largest(mzs, 0)];
  const room = Math.max(5, 0.02 * (most - least));
  return [Math.max(0, least - room), most + room];
}

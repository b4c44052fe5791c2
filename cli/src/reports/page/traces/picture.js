// SPDX-License-Identifier: Apache-2.0
// The picture of an entry: its traces with the limits of their peaks or their splits.

const MOST_BANDS = 500; // more are not drawn
const LABEL_WIDTH = 52; // pixels that a label needs

/** `model`: timeUnit, intensityUnit, isGroup, series ({points, name, style}), peaks and splits as in the data. */
class TracePicture extends Plot {
  ranges() {
    let [from, to] = this.view ?? wholeRange(this.model.series, "x");
    if (from === to)
      [from, to] = [from - 0.5, to + 0.5];
    const isInView = (points, i) => points.x(i) >= from && points.x(i) <= to;
    let [low, high] = wholeRange(this.model.series, "intensity", isInView);
    low = Math.min(0, low);
    high = high > low ? high : low + 1;
    high += 0.04 * (high - low);
    return { x: [from, to], y: [low, high] };
  }

  axisTitles() {
    const { timeUnit, intensityUnit } = this.model;
    return {
      x: "retention time" + (timeUnit ? ` (${timeUnit})` : ""),
      y: "intensity" + (intensityUnit ? ` (${intensityUnit})` : ""),
    };
  }

  drawContent() {
    this.drawPeaks();
    for (const series of [...this.model.series].reverse())
      this.add(this.plot, "path", { class: `trace ${series.style}`, d: this.line(series.points) });
    this.drawSplits();
    this.drawLabels();
  }

  drawPeaks() {
    for (const [number, [start, end]] of this.model.peaks.slice(0, MOST_BANDS).entries()) {
      if (!(start <= end))
        continue;
      const [left, right] = [round(this.x(start)), round(this.x(end))];
      const style = number % 2 ? "other band" : "band";
      if (this.model.isGroup)
        this.add(this.plot, "rect", { class: style, x: left, y: MARGIN.top, width: Math.max(1, right - left),
          height: this.bottom - MARGIN.top });
      else
        this.add(this.plot, "path", { class: style, d: this.area(start, end) });
      this.add(this.plot, "path", { class: "limit", d: this.upright(left) + this.upright(right) });
    }
  }

  drawSplits() {
    for (const [time] of this.model.splits.slice(0, MOST_BANDS)) {
      const x = round(this.x(time));
      this.add(this.plot, "path", { class: "split", d: this.upright(x) });
    }
  }

  /** The times of the highest points, and the probabilities of splits; of those too close, the first. */
  drawLabels() {
    const labels = [];
    for (const [start, end, apex] of this.model.peaks.slice(0, MOST_BANDS)) {
      if (apex !== null && start <= end)
        labels.push({ time: apex, text: this.xText(apex), style: "apex-label" });
    }
    for (const [time, probability] of this.model.splits.slice(0, MOST_BANDS))
      labels.push({ time, text: probability.toFixed(2), style: "split-label" });
    const right = MARGIN.left + this.plotWidth;
    let free = MARGIN.left;
    for (const { time, text, style } of labels.sort((a, b) => a.time - b.time)) {
      if (time < this.xRange[0] || time > this.xRange[1])
        continue;
      const x = Math.max(MARGIN.left + LABEL_WIDTH / 2, Math.min(right - LABEL_WIDTH / 2, round(this.x(time))));
      if (x - LABEL_WIDTH / 2 < free)
        continue;
      this.add(this.plot, "text", { class: style, x, y: MARGIN.top - 6, "text-anchor": "middle" }, text);
      free = x + LABEL_WIDTH / 2;
    }
  }

  /** A line through the points in view. Of those that share a column of pixels it takes the outline. */
  line(points) {
    const path = [];
    let column = null; // {x, first, low, high, last}
    let isBroken = true;
    const flush = () => {
      if (!column)
        return;
      const { x, first, low, high, last } = column;
      const values = first <= last ? [first, low, high, last] : [first, high, low, last];
      for (const value of new Set(values)) {
        path.push(`${isBroken ? "M" : "L"}${x} ${round(this.y(value))}`);
        isBroken = false;
      }
      column = null;
    };
    for (let i = 0; i < points.count; ++i) {
      const value = points.intensity(i);
      const x = round(this.x(points.x(i)));
      if (!Number.isFinite(value) || !Number.isFinite(x)) {
        flush();
        isBroken = true;
        continue;
      }
      // What lies outside keeps its direction but not its distance.
      const near = Math.max(-this.width, Math.min(2 * this.width, x));
      if (column && column.x !== near)
        flush();
      if (column)
        column = { ...column, low: Math.min(column.low, value), high: Math.max(column.high, value), last: value };
      else
        column = { x: near, first: value, low: value, high: value, last: value };
    }
    flush();
    return path.join("");
  }

  /** Between the trace and the straight line from the first to the last point within the limits. */
  area(start, end) {
    const { points } = this.model.series[0];
    const within = {
      list: [],
      x: (i) => points.x(within.list[i]),
      intensity: (i) => points.intensity(within.list[i]),
    };
    // The times of the points are rounded to single precision.
    const slack = points.count ? 1e-6 * Math.abs(points.x(points.count - 1) - points.x(0)) : 0;
    for (let i = 0; i < points.count; ++i) {
      if (points.x(i) >= start - slack && points.x(i) <= end + slack)
        within.list.push(i);
    }
    within.count = within.list.length;
    return within.count ? `${this.line(within)}Z` : "";
  }

  /** The nearest point of the first trace. */
  readingAt(time) {
    const { timeUnit, series } = this.model;
    const first = series[0].points;
    const nearest = nearestPoint(first, time);
    if (nearest < 0)
      return "";
    const when = this.xText(first.x(nearest)) + (timeUnit ? ` ${timeUnit}` : "");
    const where = series.length > 1 ? ` in ${series[0].name}` : "";
    return `${when}: ${amountText(first.intensity(nearest))}${where}`;
  }
}

/** The lowest and the highest finite value of some series; [0, 1] when there is none. */
function wholeRange(series, what, isWanted = () => true) {
  let low = Infinity;
  let high = -Infinity;
  for (const { points } of series) {
    for (let i = 0; i < points.count; ++i) {
      const value = points[what](i);
      if (!Number.isFinite(value) || !isWanted(points, i))
        continue;
      low = Math.min(low, value);
      high = Math.max(high, value);
    }
  }
  return low <= high ? [low, high] : [0, 1];
}

/** The point nearest to a time; -1 when there is none. */
function nearestPoint(points, time) {
  let nearest = -1;
  let distance = Infinity;
  for (let i = 0; i < points.count; ++i) {
    const d = Math.abs(points.x(i) - time);
    if (d < distance)
      [nearest, distance] = [i, d];
  }
  return nearest;
}

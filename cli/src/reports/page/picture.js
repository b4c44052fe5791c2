// SPDX-License-Identifier: Apache-2.0
// The picture of an entry: its traces with the limits of their peaks or their splits.

const SVG = "http://www.w3.org/2000/svg";
const MARGIN = { left: 66, right: 14, top: 38, bottom: 42 };
const MOST_BANDS = 500; // more are not drawn
const LABEL_WIDTH = 52; // pixels that a label needs
const SHORTEST_DRAG = 6; // pixels: shorter ones are clicks

class Picture {
  /** `onView` is called when the reader has chosen a range of times, or null for all. */
  constructor(svg, reading, onView) {
    this.svg = svg;
    this.reading = reading;
    this.onView = onView;
    this.model = null;
    this.view = null; // [from, to] or null
    new ResizeObserver(() => this.draw()).observe(svg);
    svg.addEventListener("pointermove", (event) => this.point(event));
    svg.addEventListener("pointerleave", () => this.point(null));
    svg.addEventListener("pointerdown", (event) => this.startDrag(event));
    svg.addEventListener("pointerup", (event) => this.endDrag(event));
    svg.addEventListener("dblclick", () => this.onView(null));
  }

  /** `model`: timeUnit, intensityUnit, isGroup, series ({points, name, style}), peaks and splits as in the data. */
  show(model, view) {
    this.model = model;
    this.view = view;
    this.draw();
  }

  draw() {
    if (!this.model || !this.svg.clientWidth)
      return;
    this.width = this.svg.clientWidth;
    this.height = this.svg.clientHeight;
    this.scales();
    this.svg.replaceChildren();
    this.svg.setAttribute("viewBox", `0 0 ${this.width} ${this.height}`);
    this.drawAxes();
    // An inner viewport cuts off what lies outside the axes.
    this.plot = this.add(this.svg, "svg", {
      x: MARGIN.left, y: 0, width: this.plotWidth, height: this.height - MARGIN.bottom, overflow: "hidden",
      viewBox: `${MARGIN.left} 0 ${this.plotWidth} ${this.height - MARGIN.bottom}`,
    });
    this.drawPeaks();
    for (const series of [...this.model.series].reverse())
      this.add(this.plot, "path", { class: `trace ${series.style}`, d: this.line(series.points) });
    this.drawSplits();
    this.drawLabels();
    this.cross = this.add(this.plot, "path", { class: "cross", d: "" });
    this.range = this.add(this.plot, "rect", { class: "range", width: 0, height: 0 });
  }

  /** The ranges of time and intensity, and how they lie on the page. */
  scales() {
    let [from, to] = this.view ?? wholeRange(this.model.series, "time");
    if (from === to)
      [from, to] = [from - 0.5, to + 0.5];
    const isInView = (points, i) => points.time(i) >= from && points.time(i) <= to;
    let [low, high] = wholeRange(this.model.series, "intensity", isInView);
    low = Math.min(0, low);
    high = high > low ? high : low + 1;
    high += 0.04 * (high - low);
    this.plotWidth = Math.max(10, this.width - MARGIN.left - MARGIN.right);
    const plotHeight = Math.max(10, this.height - MARGIN.top - MARGIN.bottom);
    this.times = [from, to];
    this.intensities = [low, high];
    this.x = (time) => MARGIN.left + ((time - from) / (to - from)) * this.plotWidth;
    this.timeAt = (x) => from + ((x - MARGIN.left) / this.plotWidth) * (to - from);
    this.y = (intensity) => MARGIN.top + plotHeight - ((intensity - low) / (high - low)) * plotHeight;
    this.bottom = MARGIN.top + plotHeight;
  }

  drawAxes() {
    const { timeUnit, intensityUnit } = this.model;
    const right = MARGIN.left + this.plotWidth;
    this.add(this.svg, "path", { class: "axis", d: `M${MARGIN.left} ${MARGIN.top}V${this.bottom}H${right}` });
    for (const { value, text } of ticks(...this.times, Math.max(2, Math.floor(this.plotWidth / 90)))) {
      const x = round(this.x(value));
      this.add(this.svg, "path", { class: "axis", d: `M${x} ${this.bottom}v4` });
      this.add(this.svg, "text", { x, y: this.bottom + 17, "text-anchor": "middle" }, text);
    }
    for (const { value, text } of ticks(...this.intensities, Math.max(2, Math.floor(this.bottom / 50)))) {
      const y = round(this.y(value));
      this.add(this.svg, "path", { class: "axis", d: `M${MARGIN.left} ${y}h-4` });
      this.add(this.svg, "text", { x: MARGIN.left - 7, y: y + 4, "text-anchor": "end" }, text);
    }
    this.add(this.svg, "text", { class: "faint", x: right, y: this.bottom + 34, "text-anchor": "end" },
      "retention time" + (timeUnit ? ` (${timeUnit})` : ""));
    this.add(this.svg, "text", { class: "faint", x: 6, y: 13 },
      "intensity" + (intensityUnit ? ` (${intensityUnit})` : ""));
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

  /** A line over the height of the plot. */
  upright(x) {
    return `M${x} ${MARGIN.top}V${this.bottom}`;
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
        labels.push({ time: apex, text: this.timeText(apex), style: "apex-label" });
    }
    for (const [time, probability] of this.model.splits.slice(0, MOST_BANDS))
      labels.push({ time, text: probability.toFixed(2), style: "split-label" });
    const right = MARGIN.left + this.plotWidth;
    let free = MARGIN.left;
    for (const { time, text, style } of labels.sort((a, b) => a.time - b.time)) {
      if (time < this.times[0] || time > this.times[1])
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
      const x = round(this.x(points.time(i)));
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
      time: (i) => points.time(within.list[i]),
      intensity: (i) => points.intensity(within.list[i]),
    };
    // The times of the points are rounded to single precision.
    const slack = points.count ? 1e-6 * Math.abs(points.time(points.count - 1) - points.time(0)) : 0;
    for (let i = 0; i < points.count; ++i) {
      if (points.time(i) >= start - slack && points.time(i) <= end + slack)
        within.list.push(i);
    }
    within.count = within.list.length;
    return within.count ? `${this.line(within)}Z` : "";
  }

  /** Tells what stands under the pointer. */
  point(event) {
    if (!this.model || !this.cross)
      return;
    const x = event ? this.xOf(event) : -1;
    const isOutside = x < MARGIN.left || x > MARGIN.left + this.plotWidth;
    if (this.dragStart !== undefined && event)
      this.showRange(this.dragStart, x);
    if (isOutside) {
      this.cross.setAttribute("d", "");
      this.reading.textContent = "";
      return;
    }
    const time = this.timeAt(x);
    this.cross.setAttribute("d", this.upright(round(x)));
    const { timeUnit, series } = this.model;
    const first = series[0].points;
    const nearest = nearestPoint(first, time);
    if (nearest < 0)
      return;
    const when = this.timeText(first.time(nearest)) + (timeUnit ? ` ${timeUnit}` : "");
    const where = series.length > 1 ? ` in ${series[0].name}` : "";
    this.reading.textContent = `${when}: ${amountText(first.intensity(nearest))}${where}`;
  }

  startDrag(event) {
    if (event.button !== 0 || !this.model)
      return;
    this.dragStart = this.xOf(event);
    this.svg.setPointerCapture(event.pointerId);
  }

  endDrag(event) {
    if (this.dragStart === undefined)
      return;
    const [left, right] = [this.dragStart, this.xOf(event)].sort((a, b) => a - b);
    this.dragStart = undefined;
    this.showRange(0, 0);
    if (right - left >= SHORTEST_DRAG)
      this.onView([this.timeAt(Math.max(left, MARGIN.left)), this.timeAt(Math.min(right, this.width - MARGIN.right))]);
  }

  showRange(a, b) {
    this.range.setAttribute("x", Math.min(a, b));
    this.range.setAttribute("y", MARGIN.top);
    this.range.setAttribute("width", Math.abs(a - b));
    this.range.setAttribute("height", a === b ? 0 : this.bottom - MARGIN.top);
  }

  xOf(event) {
    return event.clientX - this.svg.getBoundingClientRect().left - this.svg.clientLeft;
  }

  /** With as many decimals as the picture can show. */
  timeText(time) {
    const pixel = (this.times[1] - this.times[0]) / this.plotWidth;
    return time.toFixed(Math.max(0, Math.min(6, Math.ceil(-Math.log10(pixel)))));
  }

  add(parent, name, attributes, text = "") {
    const element = document.createElementNS(SVG, name);
    for (const [key, value] of Object.entries(attributes))
      element.setAttribute(key, value);
    if (text)
      element.textContent = text;
    parent.append(element);
    return element;
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
    const d = Math.abs(points.time(i) - time);
    if (d < distance)
      [nearest, distance] = [i, d];
  }
  return nearest;
}

/** Round numbers (1, 2 or 5 times a power of ten apart) within a range, as many as there is room for. */
function ticks(low, high, most) {
  const rough = (high - low) / most;
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = [1, 2, 5, 10].map((factor) => factor * power).find((size) => size >= rough * 0.999) ?? rough;
  const list = [];
  for (let i = Math.ceil(low / step); i <= Math.floor(high / step) && list.length < 100; ++i)
    list.push({ value: i * step, text: tickText(i * step, step) });
  return list;
}

function tickText(value, step) {
  if (value !== 0 && (Math.abs(value) >= 1e6 || step < 1e-5))
    return Number(value.toPrecision(4)).toExponential().replace("e+", "e");
  return value.toFixed(Math.max(0, Math.min(6, -Math.floor(Math.log10(step) + 1e-9))));
}

/** An intensity or an area with five digits. */
function amountText(value) {
  if (!Number.isFinite(value))
    return "";
  if (value !== 0 && (Math.abs(value) >= 1e7 || Math.abs(value) < 1e-3))
    return value.toExponential(3).replace("e+", "e");
  return String(Number(value.toPrecision(5)));
}

function round(value, digits = 1) {
  return Number(value.toFixed(digits));
}

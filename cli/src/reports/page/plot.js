// SPDX-License-Identifier: Apache-2.0
// What all pictures have: axes, a reading under the pointer, and a range that is dragged.

const SVG = "http://www.w3.org/2000/svg";
const MARGIN = { left: 66, right: 14, top: 38, bottom: 42 };
const SHORTEST_DRAG = 6; // pixels: shorter ones are clicks
const NARROWEST_VIEW = 1e-6; // of the values in it: their digits end there

/**
 * What a picture adds: `ranges()` of both axes, `{x: [from, to], y: [low, high]}`; `axisTitles()`, `{x, y}`;
 * `drawContent()` into `this.plot`; and `readingAt(x)`, a text.
 */
class Plot {
  /** `onView` is called when the reader has chosen a range of the x axis, or null for all. */
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

  /** `model` null: nothing. */
  show(model, view) {
    this.model = model;
    this.view = view;
    this.reading.textContent = "";
    this.draw();
  }

  draw() {
    if (!this.model)
      this.svg.replaceChildren();
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
    this.drawContent();
    this.cross = this.add(this.plot, "path", { class: "cross", d: "" });
    this.range = this.add(this.plot, "rect", { class: "range", width: 0, height: 0 });
  }

  /** The ranges of the axes, and how they lie on the page. */
  scales() {
    const { x: [from, to], y: [low, high] } = this.ranges();
    this.plotWidth = Math.max(10, this.width - MARGIN.left - MARGIN.right);
    const plotHeight = Math.max(10, this.height - MARGIN.top - MARGIN.bottom);
    this.xRange = [from, to];
    this.yRange = [low, high];
    this.x = (value) => MARGIN.left + ((value - from) / (to - from)) * this.plotWidth;
    this.valueAt = (x) => from + ((x - MARGIN.left) / this.plotWidth) * (to - from);
    this.y = (value) => MARGIN.top + plotHeight - ((value - low) / (high - low)) * plotHeight;
    this.bottom = MARGIN.top + plotHeight;
  }

  drawAxes() {
    const right = MARGIN.left + this.plotWidth;
    this.add(this.svg, "path", { class: "axis", d: `M${MARGIN.left} ${MARGIN.top}V${this.bottom}H${right}` });
    for (const { value, text } of ticks(...this.xRange, Math.max(2, Math.floor(this.plotWidth / 90)))) {
      const x = round(this.x(value));
      this.add(this.svg, "path", { class: "axis", d: `M${x} ${this.bottom}v4` });
      this.add(this.svg, "text", { x, y: this.bottom + 17, "text-anchor": "middle" }, text);
    }
    for (const { value, text } of ticks(...this.yRange, Math.max(2, Math.floor(this.bottom / 50)))) {
      const y = round(this.y(value));
      this.add(this.svg, "path", { class: "axis", d: `M${MARGIN.left} ${y}h-4` });
      this.add(this.svg, "text", { x: MARGIN.left - 7, y: y + 4, "text-anchor": "end" }, this.yTickText(value, text));
    }
    const titles = this.axisTitles();
    this.add(this.svg, "text", { class: "faint", x: right, y: this.bottom + 34, "text-anchor": "end" }, titles.x);
    this.add(this.svg, "text", { class: "faint", x: 6, y: 13 }, titles.y);
  }

  yTickText(value, text) {
    return text;
  }

  /** A line over the height of the plot. */
  upright(x) {
    return `M${x} ${MARGIN.top}V${this.bottom}`;
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
    this.cross.setAttribute("d", this.upright(round(x)));
    this.reading.textContent = this.readingAt(this.valueAt(x));
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
    const view = [this.valueAt(Math.max(left, MARGIN.left)), this.valueAt(Math.min(right, this.width - MARGIN.right))];
    const least = NARROWEST_VIEW * Math.max(Math.abs(view[0]), Math.abs(view[1]));
    if (right - left >= SHORTEST_DRAG && view[1] - view[0] > least)
      this.onView(view);
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

  /** A value of the x axis with as many decimals as the picture can show. */
  xText(value) {
    const pixel = (this.xRange[1] - this.xRange[0]) / this.plotWidth;
    return value.toFixed(Math.max(0, Math.min(6, Math.ceil(-Math.log10(pixel)))));
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

// SPDX-License-Identifier: Apache-2.0
// The data elements of the page. The rows are read at once; the points only of the entries that are shown.

const BLOCKS_KEPT = 8;

class ReportData {
  constructor(page) {
    const textOf = (name) => page.querySelector(`script.${name}`).textContent;
    this.heading = JSON.parse(textOf("heading"));
    this.digest = JSON.parse(textOf("ending")).digest;
    this.entries = [];
    this.pointElements = [...page.querySelectorAll("script.points")];
    this.blocks = new Map(); // the latest used last
    page.querySelectorAll("script.rows").forEach((element, block) => {
      for (const entry of JSON.parse(element.textContent)) {
        entry.block = block;
        entry.index = this.entries.length;
        this.entries.push(entry);
      }
      element.remove();
    });
  }

  fileOf(entry) {
    return this.heading.files[entry.file] ?? "";
  }

  /** Stands at the bytes of an entry. */
  async readerOf(entry) {
    return new EntryReader(await this.block(entry.block), entry.at);
  }

  block(number) {
    const block = this.blocks.get(number) ?? inflate(this.pointElements[number].textContent);
    this.blocks.delete(number);
    this.blocks.set(number, block);
    if (this.blocks.size > BLOCKS_KEPT)
      this.blocks.delete(this.blocks.keys().next().value);
    return block;
  }
}

/** Deflated bytes (RFC 1950) in Base64. */
async function inflate(base64) {
  const text = atob(base64);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i)
    bytes[i] = text.charCodeAt(i);
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("deflate"));
  return new Response(stream).arrayBuffer();
}

/** Reads what was packed for an entry, one after the other. */
class EntryReader {
  constructor(buffer, place) {
    this.view = new DataView(buffer);
    this.bytes = new Uint8Array(buffer);
    this.place = place;
  }

  /** The points of a trace, or the peaks of a spectrum with their m/z as x. */
  readPoints() {
    const count = this.view.getUint32(this.place, true);
    const start = this.view.getFloat64(this.place + 4, true);
    const factor = this.view.getFloat64(this.place + 12, true);
    this.place += 20;
    const distances = this.readFloats(count);
    const intensities = this.readFloats(count);
    return {
      count,
      x: (i) => start + distances.getFloat32(4 * i, true),
      intensity: (i) => factor * intensities.getFloat32(4 * i, true),
    };
  }

  /** A JSON text behind its length in bytes. */
  readJson() {
    const length = this.view.getUint32(this.place, true);
    const text = new TextDecoder().decode(this.bytes.subarray(this.place + 4, this.place + 4 + length));
    this.place += 4 + length;
    return JSON.parse(text);
  }

  /** Numbers whose bytes stand by rank. */
  readFloats(count) {
    const bytes = new Uint8Array(4 * count);
    for (let rank = 0; rank < 4; ++rank) {
      for (let i = 0; i < count; ++i)
        bytes[4 * i + rank] = this.bytes[this.place++];
    }
    return new DataView(bytes.buffer);
  }
}

// The sample grid: one record a row under a column ruler numbered from 1, in
// a monospace font, control characters shown as their one-column pictures;
// each field and constant of the configuration a coloured band over the
// columns it takes. Dragging over a row marks the columns for what is armed
// (a field is placed, a constant takes the selected text); dragging a band's
// edge resizes it; arrow keys move the selected edge.
import { h, fill } from '../dom.js';
import { spanOf, placeSpan, moveEdge } from './state.js';

// U+2400.. for C0 controls, U+2421 for DEL: one column each, as the ruler counts.
export function visible(text) {
  let out = '';
  for (const ch of text) {
    const c = ch.codePointAt(0);
    out += c < 0x20 ? String.fromCodePoint(0x2400 + c) : c === 0x7f ? '\u2421' : ch;
  }
  return out;
}

export function ruler(width) {
  let tens = '', units = '';
  for (let col = 1; col <= width; col++) {
    tens += col % 10 === 0 ? String(Math.floor(col / 10) % 10) : ' ';
    units += String(col % 10);
  }
  return `${tens}\n${units}`;
}

// A stable colour per key, so that a field keeps its colour across redraws.
export function colourOf(key) {
  let hash = 0;
  for (const ch of key) hash = (hash * 31 + ch.charCodeAt(0)) >>> 0;
  return `hsl(${hash % 360}, 70%, 55%)`;
}

export class Grid {
  constructor(state, shortName) {
    this.state = state;
    this.shortName = shortName;
    this.rows = [];
    this.charWidth = 8;
    this.lines = h('div', { class: 'ed-lines' });
    this.bands = h('div', { class: 'ed-bands' });
    this.marks = h('div', { class: 'ed-marks' });
    this.rulerEl = h('pre', { class: 'ed-ruler' });
    this.selection = h('div', { class: 'ed-drag', hidden: true });
    this.body = h('div', { class: 'ed-body' }, this.lines, this.bands, this.selection);
    this.el = h('div', { class: 'ed-grid', id: 'editor-grid', tabindex: 0 },
      this.marks, this.rulerEl, this.body);
    this.body.addEventListener('mousedown', (event) => this.down(event));
    this.body.addEventListener('mousemove', (event) => {
      if (event.buttons === 0) this.body.style.cursor = this.edgeAt(event) ? 'ew-resize' : '';
    });
    this.el.addEventListener('keydown', (event) => this.key(event));
  }

  // The records shown: the sample lines, or the shaped records of a
  // delimited configuration as the server gave them.
  setRows(rows) {
    this.rows = rows;
    this.render();
  }

  measure() {
    const probe = h('span', { class: 'ed-probe' }, 'M'.repeat(100));
    this.el.append(probe);
    const width = probe.getBoundingClientRect().width / 100;
    probe.remove();
    if (width > 0) this.charWidth = width;
  }

  width() {
    let width = 10;
    for (const row of this.rows) width = Math.max(width, [...row].length);
    const { config } = this.state;
    for (const kind of ['field', 'constant']) {
      for (const key of Object.keys(kind === 'field' ? config.fields : config.constants)) {
        const span = spanOf(config, kind, key);
        width = Math.max(width, span.pos + span.size - 1);
      }
    }
    return width;
  }

  render() {
    this.measure();
    this.fitted = 0;
    fill(this.lines, this.rows.map((row, i) =>
      h('pre', { class: 'ed-line', 'data-row': i }, visible(row) || ' ')));
    this.renderBands();
  }

  // The ruler and the rows reach past the longest record to the last column
  // a band takes, so that a band beyond the records can still be reached.
  fit() {
    const width = this.width();
    if (width === this.fitted) return;
    this.fitted = width;
    this.rulerEl.textContent = ruler(width);
    this.body.style.width = this.marks.style.width = `${width * this.charWidth}px`;
  }

  renderBands() {
    this.fit();
    // Positions go through the element's style object: the page's content
    // policy refuses style attributes.
    const place = (el, span, key) => {
      el.style.left = `${(span.pos - 1) * this.charWidth}px`;
      el.style.width = `${span.size * this.charWidth}px`;
      el.style.setProperty('--band', colourOf(key));
      return el;
    };
    const { config, selected } = this.state;
    const bands = [], labels = [];
    for (const kind of ['field', 'constant']) {
      for (const key of Object.keys(kind === 'field' ? config.fields : config.constants)) {
        const span = spanOf(config, kind, key);
        const isSelected = selected && selected.kind === kind && selected.key === key;
        const band = place(h('div', { class: `ed-band ed-${kind}${isSelected ? ' ed-selected' : ''}`,
          'data-kind': kind, 'data-key': key },
        h('div', { class: 'ed-edge ed-start', 'data-edge': 'start' }),
        h('div', { class: 'ed-edge ed-end', 'data-edge': 'end' })), span, key);
        if (isSelected) band.classList.add(`ed-edge-${selected.edge}`);
        bands.push(band);
        labels.push(place(h('button', { type: 'button', class: `ed-label ed-${kind}`,
          title: `${key} ${span.pos}-${span.pos + span.size - 1}`, 'data-key': key,
          onclick: () => { this.state.select({ kind, key, edge: 'end' }); this.el.focus(); } },
        this.shortName(kind, key)), span, key));
      }
    }
    fill(this.bands, bands);
    fill(this.marks, labels);
  }

  column(event) {
    const box = this.body.getBoundingClientRect();
    return Math.max(1, Math.floor((event.clientX - box.left) / this.charWidth) + 1);
  }

  down(event) {
    if (event.button !== 0) return;
    event.preventDefault();
    this.el.focus();
    const edge = this.edgeAt(event);
    if (edge) return this.dragEdge(edge);
    const line = event.target.closest('.ed-line');
    const row = line ? Number(line.dataset.row) : 0;
    const first = this.column(event);
    const show = (last) => {
      const lo = Math.min(first, last), hi = Math.max(first, last);
      Object.assign(this.selection.style, { left: `${(lo - 1) * this.charWidth}px`,
        width: `${(hi - lo + 1) * this.charWidth}px`,
        top: `${line ? line.offsetTop : 0}px`, height: `${line ? line.offsetHeight : 0}px` });
      this.selection.hidden = false;
    };
    show(first);
    this.track((e) => show(this.column(e)), (e) => {
      this.selection.hidden = true;
      const [kind, key] = this.state.armed.split(':');
      const last = this.column(e);
      this.state.change((config) => placeSpan(config, kind, key, first, last, this.rows[row]));
      this.state.select({ kind, key, edge: 'end' });
    });
  }

  // The edge of a band the pointer is on: within a quarter of a column of
  // the line between two columns where a band starts or ends (the selected
  // band first). Anywhere else a press starts a new mark, so that a field can
  // be placed next to, or over, another.
  edgeAt(event) {
    const box = this.body.getBoundingClientRect();
    const x = (event.clientX - box.left) / this.charWidth;
    const line = Math.round(x);
    if (Math.abs(x - line) > 0.25) return null;
    const { config, selected } = this.state;
    const found = [];
    for (const kind of ['field', 'constant']) {
      for (const key of Object.keys(kind === 'field' ? config.fields : config.constants)) {
        const span = spanOf(config, kind, key);
        if (span.pos - 1 === line) found.push({ kind, key, edge: 'start' });
        if (span.pos + span.size - 1 === line) found.push({ kind, key, edge: 'end' });
      }
    }
    return found.find((e) => selected && e.kind === selected.kind && e.key === selected.key) ||
      found[0] || null;
  }

  dragEdge({ kind, key, edge }) {
    const band = [...this.bands.children].find((b) => b.dataset.kind === kind && b.dataset.key === key);
    const span = spanOf(this.state.config, kind, key);
    const fixed = edge === 'start' ? span.pos + span.size - 1 : span.pos;
    const rowText = this.rows[0];
    const preview = (col) => {
      const lo = Math.min(fixed, col), hi = Math.max(fixed, col);
      Object.assign(band.style, { left: `${(lo - 1) * this.charWidth}px`,
        width: `${(hi - lo + 1) * this.charWidth}px` });
    };
    this.state.select({ kind, key, edge });
    this.track((e) => preview(this.edgeColumn(e, edge)), (e) => {
      const col = this.edgeColumn(e, edge);
      this.state.change((config) =>
        placeSpan(config, kind, key, fixed, col, this.constantRow(kind, key, rowText)));
    });
  }

  // The column an edge dragged to `event` stands by: the start edge takes
  // the column right of the line nearest the pointer, the end edge the one
  // left of it.
  edgeColumn(event, edge) {
    const box = this.body.getBoundingClientRect();
    const line = Math.round((event.clientX - box.left) / this.charWidth);
    return Math.max(1, edge === 'start' ? line + 1 : line);
  }

  // The row a constant's text is cut from again: the first row showing it.
  constantRow(kind, key, fallback) {
    if (kind !== 'constant') return fallback;
    const entry = this.state.config.constants[key];
    const found = this.rows.find((row) => [...row].slice(entry.pos - 1).join('').startsWith(entry.text));
    return found ?? fallback;
  }

  track(move, up) {
    const onMove = (e) => move(e);
    const onUp = (e) => {
      window.removeEventListener('mousemove', onMove);
      window.removeEventListener('mouseup', onUp);
      up(e);
    };
    window.addEventListener('mousemove', onMove);
    window.addEventListener('mouseup', onUp);
  }

  // Arrow keys move the selected edge one column ([ and ] choose the start or
  // the end edge, \ the whole band); Ctrl+Z and Ctrl+Y undo and redo.
  key(event) {
    const { selected } = this.state;
    if ((event.ctrlKey || event.metaKey) && (event.key === 'z' || event.key === 'y')) {
      event.preventDefault();
      return event.key === 'z' && !event.shiftKey ? this.state.undo() : this.state.redo();
    }
    if (!selected) return;
    const edges = { '[': 'start', ']': 'end', '\\': 'band' };
    if (edges[event.key]) {
      event.preventDefault();
      return this.state.select({ ...selected, edge: edges[event.key] });
    }
    const delta = { ArrowLeft: -1, ArrowRight: 1 }[event.key];
    if (!delta) return;
    event.preventDefault();
    const row = this.constantRow(selected.kind, selected.key, this.rows[0]);
    this.state.change((config) =>
      moveEdge(config, selected.kind, selected.key, selected.edge, delta, row));
  }
}

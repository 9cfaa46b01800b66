// Live translation: after every change the samples are translated by the
// server with the configuration as it stands, as `velqua translate` prints
// them; rows left unrecognised or damaged are highlighted with the reason
// `velqua config check` gives. Requests are debounced, and an answer older
// than the last change is dropped.
import { h, fill, failure } from '../dom.js';
import { api } from '../api.js';

const DEBOUNCE_MS = 40;

export class LivePreview {
  constructor(state, onRecords) {
    this.state = state;
    this.onRecords = onRecords;  // the records as the server framed them (for the grid)
    this.sequence = 0;
    this.timer = null;
    this.changedAt = 0;
    this.summary = h('p', { class: 'ed-summary', id: 'editor-summary' });
    this.table = h('div', { class: 'ed-preview', id: 'editor-preview' });
    this.el = h('section', { class: 'ed-translation' }, h('h2', {}, 'Translation'),
      this.summary, this.table);
  }

  // A change happened now: translate soon.
  schedule() {
    this.changedAt = performance.now();
    clearTimeout(this.timer);
    this.timer = setTimeout(() => this.run(), DEBOUNCE_MS);
  }

  async run() {
    const sequence = ++this.sequence;
    const changedAt = this.changedAt;
    if (!this.state.samples.length) {
      fill(this.summary, 'Paste or load sample records to see them translated.');
      fill(this.table);
      this.onRecords(null);
      return;
    }
    let answer;
    try {
      answer = await api.post('/api/editor/preview',
        { config: this.state.config, samples: this.state.samples, format: 'table' });
    } catch (error) {
      if (sequence === this.sequence) {
        fill(this.summary, failure(error));
        fill(this.table);
      }
      return;
    }
    if (sequence !== this.sequence) return;
    this.show(answer);
    this.onRecords(answer);
    // How long the user waited: from the change to the rows on screen.
    const latency = performance.now() - changedAt;
    this.el.dataset.latencyMs = latency.toFixed(1);
    this.el.dataset.sequence = String(sequence);
  }

  show(answer) {
    const { counts } = answer;
    const translated = counts.read - counts.unrecognised;
    fill(this.summary, `${counts.read} records, ${translated} translated, ` +
      `${counts.unrecognised} unrecognised` +
      (counts.headings ? `, ${counts.headings} page-heading lines skipped` : ''));
    const lines = [];
    for (const line of answer.header) lines.push(h('pre', { class: 'ed-row ed-head' }, line));
    for (const row of answer.rows) {
      lines.push(h('pre', { class: `ed-row ed-${row.status}`, 'data-sample': row.sample,
        title: `sample line ${row.sample + 1}` }, row.line));
      for (const reason of row.reasons) {
        lines.push(h('pre', { class: 'ed-reason' }, `    ${row.status}: ${reason}`));
      }
    }
    fill(this.table, lines);
  }
}

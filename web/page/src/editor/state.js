// The editor's state: the configuration in its JSON form (exactly what the
// server reads and writes), the sample lines, and the selection. Every change
// goes through `change`, which keeps the undo history, saves the draft in
// localStorage (so a reload loses nothing) and tells the listeners.
const DRAFT_KEY = 'velqua.editor.draft';
const HISTORY_LIMIT = 200;

export function emptyConfig() {
  return {
    brand: '', model: '', case: 'emCasoEstandar', separator: '\r\n', comments: '',
    fields: {}, constants: {}, wiring: { rj45: [], db9: [], db25: [] },
  };
}

export class EditorState {
  constructor(storage = window.localStorage) {
    this.storage = storage;
    this.config = emptyConfig();
    this.samples = [];
    this.source = 'new configuration';
    this.dirty = false;        // changed since opened or saved
    this.selected = null;      // { kind: 'field' | 'constant', key, edge: 'start' | 'end' }
    this.armed = 'field:emParamFechaDia';  // what a drag over the grid marks
    this.undoStack = [];
    this.redoStack = [];
    this.listeners = [];
    this.restore();
  }

  onChange(fn) { this.listeners.push(fn); }

  notify(what) { for (const fn of this.listeners) fn(what); }

  // Applies `mutate(config)` as one undoable step.
  change(mutate, what = 'config') {
    const before = JSON.stringify(this.config);
    const next = JSON.parse(before);
    mutate(next);
    const after = JSON.stringify(next);
    if (after === before) return;
    this.undoStack.push(before);
    if (this.undoStack.length > HISTORY_LIMIT) this.undoStack.shift();
    this.redoStack = [];
    this.config = next;
    this.dirty = true;
    this.save();
    this.notify(what);
  }

  undo() { this.step(this.undoStack, this.redoStack); }

  redo() { this.step(this.redoStack, this.undoStack); }

  step(from, to) {
    if (!from.length) return;
    to.push(JSON.stringify(this.config));
    this.config = JSON.parse(from.pop());
    this.dirty = true;
    this.save();
    this.notify('config');
  }

  // A configuration opened (bundled, uploaded, stored, guessed): a new
  // history starts.
  open(config, source) {
    this.config = Object.assign(emptyConfig(), config);
    this.source = source;
    this.dirty = false;
    this.undoStack = [];
    this.redoStack = [];
    this.selected = null;
    this.save();
    this.notify('open');
  }

  setSamples(lines) {
    this.samples = lines;
    this.save();
    this.notify('samples');
  }

  select(selection) {
    this.selected = selection;
    this.notify('selection');
  }

  markSaved() {
    this.dirty = false;
    this.save();
    this.notify('saved');
  }

  save() {
    try {
      this.storage.setItem(DRAFT_KEY, JSON.stringify({
        config: this.config, samples: this.samples, source: this.source, dirty: this.dirty,
        undo: this.undoStack.slice(-50), redo: this.redoStack.slice(-50),
      }));
    } catch (error) {
      // A full storage loses only the draft, never the open configuration.
    }
  }

  restore() {
    let draft = null;
    try {
      draft = JSON.parse(this.storage.getItem(DRAFT_KEY) || 'null');
    } catch (error) {
      draft = null;
    }
    if (!draft || typeof draft.config !== 'object') return;
    this.config = Object.assign(emptyConfig(), draft.config);
    this.samples = Array.isArray(draft.samples) ? draft.samples : [];
    this.source = draft.source || 'draft';
    this.dirty = !!draft.dirty;
    this.undoStack = Array.isArray(draft.undo) ? draft.undo : [];
    this.redoStack = Array.isArray(draft.redo) ? draft.redo : [];
  }

  clearDraft() { this.storage.removeItem(DRAFT_KEY); }
}

// Where a field or constant stands: [pos, size] (1-based columns).
export function spanOf(config, kind, key) {
  const entry = (kind === 'field' ? config.fields : config.constants)[key];
  if (!entry) return null;
  const size = entry.size ?? (entry.text ? [...entry.text].length : 1);
  return { pos: entry.pos, size };
}

// Moves one edge of a field or constant by `delta` columns, keeping it at
// least one column wide and inside 1..255. A constant's text is cut from the
// sample again when its span changes.
export function moveEdge(config, kind, key, edge, delta, sampleText) {
  const entry = (kind === 'field' ? config.fields : config.constants)[key];
  if (!entry) return;
  const span = spanOf(config, kind, key);
  let start = span.pos, end = span.pos + span.size - 1;
  if (edge === 'start') start = Math.min(end, Math.max(1, start + delta));
  else if (edge === 'end') end = Math.max(start, Math.min(255, end + delta));
  else {
    const shift = Math.max(1 - start, Math.min(255 - end, delta));
    start += shift;
    end += shift;
  }
  placeSpan(config, kind, key, start, end, sampleText);
}

// Puts a field or constant over columns start..end (1-based, inclusive).
export function placeSpan(config, kind, key, start, end, sampleText) {
  const lo = Math.max(1, Math.min(start, end)), hi = Math.min(255, Math.max(start, end));
  if (kind === 'field') {
    const type = config.fields[key]?.type || 'numeric';
    config.fields[key] = { pos: lo, size: hi - lo + 1, type };
    return;
  }
  const chars = [...(sampleText || '')];
  const text = chars.slice(lo - 1, hi).join('');
  if (!text) return;
  config.constants[key] = { pos: lo, text };
}

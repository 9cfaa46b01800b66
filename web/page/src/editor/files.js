// Where a configuration and its samples come from, and where they go: a
// bundled switch, an uploaded file (.json, .cfg, .ini), a switch of the
// store, a draft guessed from the samples; downloads in the three forms, or
// stored for a switch and its records translated again.
import { h, fill, failure } from '../dom.js';
import { api } from '../api.js';
import { emptyConfig } from './state.js';

function base64Of(buffer) {
  let text = '';
  const bytes = new Uint8Array(buffer);
  for (let i = 0; i < bytes.length; i += 0x8000) {
    text += String.fromCharCode(...bytes.subarray(i, i + 0x8000));
  }
  return btoa(text);
}

// A record file as text: UTF-8 when it is well formed, else Windows-1252
// (what switches print), as the program reads them.
export function decodeRecords(buffer) {
  try {
    return new TextDecoder('utf-8', { fatal: true }).decode(buffer).replace(/^\uFEFF/, '');
  } catch (error) {
    return new TextDecoder('windows-1252').decode(buffer);
  }
}

export function splitLines(text) {
  const lines = text.split('\n').map((line) => line.replace(/\r$/, ''));
  if (lines.length && lines[lines.length - 1] === '') lines.pop();
  return lines;
}

function fileInput(id, accept, onFile) {
  return h('input', { id, type: 'file', accept, onchange: async (event) => {
    const file = event.target.files[0];
    if (file) await onFile(file);
    event.target.value = '';
  } });
}

// The "Open" bar. `note` shows what happened.
export function openBar(state, note, switches) {
  const guard = async (fn) => {
    try {
      await fn();
      fill(note);
    } catch (error) {
      fill(note, failure(error));
    }
  };
  const discard = () => !state.dirty || window.confirm('Discard the unsaved changes?');
  const bundled = h('select', { id: 'editor-bundled', 'aria-label': 'bundled switch' },
    h('option', { value: '' }, 'Bundled switch…'));
  api.get('/api/editor/bundled').then((list) =>
    bundled.append(...list.map((name) => h('option', { value: name }, name))));
  bundled.addEventListener('change', () => guard(async () => {
    const name = bundled.value;
    bundled.value = '';
    if (!name || !discard()) return;
    const answer = await api.get(`/api/editor/bundled/${encodeURIComponent(name)}`);
    state.open(answer.config, `bundled switch ${name}`);
    if (answer.samples) state.setSamples(answer.samples);
  }));
  const stored = h('select', { id: 'editor-stored', 'aria-label': 'switch of the store' },
    h('option', { value: '' }, 'Switch of the store…'),
    switches.map((s) => h('option', { value: s }, s)));
  stored.addEventListener('change', () => guard(async () => {
    const name = stored.value;
    stored.value = '';
    if (!name || !discard()) return;
    const answer = await api.get(`/api/editor/switches/${encodeURIComponent(name)}/config`);
    state.open(answer.config, `switch ${name} of the store`);
  }));
  const upload = fileInput('editor-open-file', '.json,.cfg,.ini', (file) => guard(async () => {
    if (!discard()) return;
    const format = (file.name.match(/\.(json|cfg|ini)$/i) || [])[1];
    if (!format) throw new Error(`${file.name}: a configuration is a .json, .cfg or .ini file`);
    const data = base64Of(await file.arrayBuffer());
    const answer = await api.post('/api/editor/open', { format: format.toLowerCase(), data });
    state.open(answer.config, file.name);
  }));
  return h('div', { class: 'ed-bar' },
    h('button', { type: 'button', id: 'editor-new', onclick: () => {
      if (discard()) state.open(emptyConfig(), 'new configuration');
    } }, 'New'),
    bundled, stored,
    h('label', { class: 'ed-file' }, 'Open file…', upload),
    h('button', { type: 'button', id: 'editor-guess', onclick: () => guard(async () => {
      if (!state.samples.length) throw new Error('guessing needs sample records: load them first');
      if (!discard()) return;
      const answer = await api.post('/api/editor/guess', { samples: state.samples,
        brand: state.config.brand || 'Unknown', model: state.config.model || 'Unknown' });
      state.open(answer.config, 'draft guessed from the samples');
    }) }, 'Guess from samples'),
    h('button', { type: 'button', id: 'editor-undo', title: 'Undo (Ctrl+Z)',
      onclick: () => state.undo() }, 'Undo'),
    h('button', { type: 'button', id: 'editor-redo', title: 'Redo (Ctrl+Y)',
      onclick: () => state.redo() }, 'Redo'));
}

// The samples: pasted, uploaded, or a switch's stored records.
export function samplesBar(state, note, switches) {
  const text = h('textarea', { id: 'editor-samples', rows: 4, placeholder: 'Paste records, one a line',
    'aria-label': 'sample records' }, state.samples.join('\n'));
  const upload = fileInput('editor-samples-file', '', async (file) => {
    state.setSamples(splitLines(decodeRecords(await file.arrayBuffer())));
    text.value = state.samples.join('\n');
  });
  const count = h('input', { id: 'editor-stored-count', type: 'number', min: 1, max: 5000, value: 200,
    'aria-label': 'how many stored records' });
  const from = h('select', { id: 'editor-samples-switch', 'aria-label': 'switch to take records from' },
    h('option', { value: '' }, 'Records of a switch…'), switches.map((s) => h('option', { value: s }, s)));
  from.addEventListener('change', async () => {
    const name = from.value;
    from.value = '';
    if (!name) return;
    try {
      const answer = await api.get(`/api/editor/switches/${encodeURIComponent(name)}/records`,
        { last: count.value });
      state.setSamples(answer.records);
      text.value = state.samples.join('\n');
      fill(note);
    } catch (error) {
      fill(note, failure(error));
    }
  });
  return h('div', { class: 'ed-samples' },
    text,
    h('div', { class: 'ed-bar' },
      h('button', { type: 'button', id: 'editor-samples-use',
        onclick: () => state.setSamples(splitLines(text.value)) }, 'Use these records'),
      h('label', { class: 'ed-file' }, 'Upload records…', upload),
      count, from));
}

function download(name, blob) {
  const url = URL.createObjectURL(blob);
  const a = h('a', { href: url, download: name });
  document.body.append(a);
  a.click();
  a.remove();
  setTimeout(() => URL.revokeObjectURL(url), 1000);
}

// Downloads and storing for a switch.
export function saveBar(state, note, switches) {
  const base = () => `${(state.config.model || state.config.brand || 'switch')
    .toLowerCase().replace(/[^a-z0-9.-]+/g, '-')}`;
  const save = (format) => async () => {
    try {
      // The file comes as base64 in JSON: the bytes of a .cfg are not text.
      const answer = await api.post('/api/editor/save', { config: state.config, format });
      const bytes = Uint8Array.from(atob(answer.data), (c) => c.charCodeAt(0));
      download(`${base()}.${format}`, new Blob([bytes], { type: 'application/octet-stream' }));
      state.markSaved();
      fill(note, `Saved as ${base()}.${format}`);
    } catch (error) {
      fill(note, failure(error));
    }
  };
  const target = h('select', { id: 'editor-store-switch', 'aria-label': 'switch to store for' },
    h('option', { value: '' }, 'Store for switch…'), switches.map((s) => h('option', { value: s }, s)));
  const store = async () => {
    if (!target.value) return fill(note, 'Choose the switch to store the configuration for.');
    try {
      const name = encodeURIComponent(target.value);
      await api.put(`/api/editor/switches/${name}/config`, { config: state.config });
      const r = await api.post(`/api/editor/switches/${name}/retranslate`, {});
      state.markSaved();
      fill(note, h('span', { id: 'editor-retranslated' },
        `Stored for ${target.value}; ${r.total} records translated again: ${r.changed} rows changed ` +
        `(${r.updated} calls updated, ${r.recognised} newly recognised, ` +
        `${r.unrecognised} no longer recognised).`));
    } catch (error) {
      fill(note, failure(error));
    }
  };
  return h('div', { class: 'ed-bar' },
    ['json', 'cfg', 'ini'].map((format) => h('button', { type: 'button', id: `editor-save-${format}`,
      onclick: save(format) }, `Download .${format}`)),
    target, h('button', { type: 'button', id: 'editor-store', onclick: store }, 'Store and retranslate'));
}

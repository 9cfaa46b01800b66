// The layout editor: a switch configured by marking columns on its own
// records. Everything the page shows about records (framing, translation,
// reasons, file forms, the drawing) comes from the server.
import { api } from '../api.js';
import { h, fill, failure } from '../dom.js';
import { EditorState } from '../editor/state.js';
import { Grid } from '../editor/grid.js';
import { LivePreview } from '../editor/preview.js';
import { shortName } from '../editor/keys.js';
import { armedSelect, entriesPanel, settingsPanel, cablePanel } from '../editor/panels.js';
import { openBar, samplesBar, saveBar } from '../editor/files.js';

function render(root) {
  fill(root, h('p', { class: 'muted' }, 'Loading…'));
  let stopped = false;
  Promise.all([api.get('/api/editor/catalog'), api.get('/api/switches').catch(() => [])])
    .then(([catalog, switches]) => {
      if (!stopped) build(root, catalog, switches.map((s) => s.name));
    })
    .catch((error) => fill(root, failure(error)));
  return () => { stopped = true; };
}

function build(root, catalog, switches) {
  const state = new EditorState();
  const note = h('div', { class: 'ed-note', role: 'status', id: 'editor-note' });
  const source = h('p', { class: 'ed-source', id: 'editor-source' });
  const grid = new Grid(state, shortName);
  let records = null;  // the framed records of the last translation (delimited forms)
  let port = 'db9';
  const preview = new LivePreview(state, (answer) => {
    const shaped = answer && state.config.records && state.config.records.delimited;
    const next = shaped ? answer.rows.map((r) => r.record) : null;
    if (JSON.stringify(next) !== JSON.stringify(records)) {
      records = next;
      grid.setRows(rows());
    }
  });
  const rows = () => records || state.samples;
  const entries = h('div', { id: 'editor-entries-panel' });
  const settings = h('div');
  const cable = h('div');
  const showEntries = () => fill(entries, entriesPanel(state, rows()));
  const showSettings = () => fill(settings, settingsPanel(state, catalog));
  let drawn = null;  // the port and wiring the cable panel shows
  const showCable = () => {
    const now = JSON.stringify([port, state.config.wiring]);
    if (now === drawn) return;
    drawn = now;
    fill(cable, cablePanel(state, port, (p) => { port = p; showCable(); }));
  };
  const showSource = () => fill(source, `Editing: ${state.source}`,
    state.dirty ? h('span', { class: 'ed-dirty' }, ' (unsaved changes, kept if the page is reloaded)') : '');

  state.onChange((what) => {
    showSource();
    if (what === 'selection') {
      grid.renderBands();
      showEntries();
      return;
    }
    if (what === 'saved') return;
    if (what === 'samples' || what === 'open') grid.setRows(rows());
    else grid.renderBands();
    showEntries();
    // A panel is drawn again only when something else changed what it
    // shows (an undo, another configuration), so that typing keeps focus.
    if (what !== 'samples' && what !== 'settings') showSettings();
    showCable();
    preview.schedule();
  });

  fill(root,
    openBar(state, note, switches), source, note,
    h('div', { class: 'ed-layout' },
      h('div', { class: 'ed-main' },
        samplesBar(state, note, switches), grid.el, preview.el,
        h('h2', {}, 'Save'), saveBar(state, note, switches)),
      h('aside', { class: 'ed-side' },
        armedSelect(state, catalog),
        h('h2', {}, 'Fields and call-type marks'), entries,
        h('h2', {}, 'Configuration'), settings,
        h('h2', {}, 'Cable'), cable)));
  showSource();
  grid.setRows(rows());
  showEntries();
  showSettings();
  showCable();
  preview.schedule();
}

export default { id: 'configurations', title: 'Configurations', role: 'admin', render };

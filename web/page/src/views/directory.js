// Directory and tariffs: who each extension and account code is, and the
// rating plan in force. Everyone reads; an admin adds or changes an entry
// and uploads a new plan with its tariffs, which the server checks whole
// before it is used (a viewer's attempt is refused by the server).
import { api } from '../api.js';
import { h, fill, failure, timeText } from '../dom.js';

const COLUMNS = ['kind', 'key', 'from', 'person', 'department', 'cost_centre', 'client', 'project'];
// "cost_centre" -> "Cost centre": headings as on the other pages.
const label = (c) => c[0].toUpperCase() + c.slice(1).replace('_', ' ');

function directoryTable(entries) {
  if (!entries.length) return h('p', { class: 'muted' }, 'The directory is empty.');
  return h('table', { class: 'grid directory' },
    h('thead', {}, h('tr', {}, COLUMNS.map((c) => h('th', {}, label(c))))),
    h('tbody', {}, entries.map((e) => h('tr', {}, COLUMNS.map((c) => h('td', {}, e[c]))))));
}

function entryForm(reload) {
  const inputs = {};
  const note = h('p', { role: 'status' });
  const field = (c) => {
    inputs[c] = c === 'kind'
      ? h('select', { id: `e-${c}` }, h('option', { value: 'extension' }, 'extension'), h('option', { value: 'account' }, 'account'))
      : h('input', { id: `e-${c}`, type: c === 'from' ? 'date' : 'text' });
    return h('label', { for: `e-${c}` }, label(c), inputs[c]);
  };
  return h('form', { class: 'filters', onsubmit: async (ev) => {
    ev.preventDefault();
    const entry = {};
    for (const c of COLUMNS) entry[c] = inputs[c].value.trim();
    try {
      await api.post('/api/directory', { entries: [entry] });
      fill(note, `Saved ${entry.kind} ${entry.key}.`);
      reload();
    } catch (error) {
      fill(note, failure(error));
    }
  } }, COLUMNS.map(field), h('button', { type: 'submit' }, 'Save entry'), note);
}

function uploadForm(reload) {
  const plan = h('input', { id: 't-plan', type: 'file', accept: '.toml' });
  const tariffs = h('input', { id: 't-tariffs', type: 'file', accept: '.toml', multiple: true });
  const note = h('p', { role: 'status', id: 't-note' });
  return h('form', { class: 'filters', onsubmit: async (ev) => {
    ev.preventDefault();
    try {
      if (!plan.files.length) throw new Error('choose the rating plan');
      const body = { plan: await plan.files[0].text(), tariffs: {} };
      for (const f of tariffs.files) body.tariffs[f.name] = await f.text();
      await api.post('/api/tariffs', body);
      fill(note, 'The new plan is checked and in force for calls stored from now on.');
      reload();
    } catch (error) {
      fill(note, failure(error));
    }
  } },
  h('label', { for: 't-plan' }, 'Rating plan', plan),
  h('label', { for: 't-tariffs' }, 'Tariffs it names', tariffs),
  h('button', { type: 'submit' }, 'Check and upload'), note);
}

export default {
  id: 'directory',
  title: 'Directory and tariffs',
  role: 'viewer',
  render(root, { session }) {
    const entries = h('div', { class: 'results' });
    const files = h('div', {});
    const reload = async () => {
      try {
        fill(entries, directoryTable(await api.get('/api/directory')));
        const list = await api.get('/api/tariffs');
        fill(files, list.length ? list.map((f) => h('details', {},
          h('summary', {}, `${f.kind} ${f.name} (loaded ${timeText(f.loaded_utc)})`), h('pre', { class: 'raw' }, f.content)))
          : h('p', { class: 'muted' }, 'No rating plan: calls are stored without a price.'));
      } catch (error) {
        fill(entries, failure(error));
      }
    };
    const admin = session.role === 'admin';
    fill(root, h('h2', {}, 'Directory'), admin ? entryForm(reload) : null, entries,
      h('h2', {}, 'Tariffs in force'), files,
      h('h2', {}, 'Upload a new plan'),
      admin ? null : h('p', { class: 'muted' }, 'Only an admin may upload a plan.'),
      uploadForm(reload));
    reload();
  },
};

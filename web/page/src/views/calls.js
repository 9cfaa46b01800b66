// Calls: a search over the store's calls.
import { api } from '../api.js';
import { h, fill, failure, duration } from '../dom.js';

const FIELDS = [
  ['from', 'From', 'date'], ['to', 'To', 'date'], ['switch', 'Switch', 'text'],
  ['extension', 'Extension', 'text'], ['number', 'Number starts with', 'text'],
  ['trunk', 'Trunk', 'text'], ['account', 'Account code', 'text'],
];

function table(calls) {
  if (!calls.length) return h('p', {}, 'No call matches.');
  return h('table', { class: 'grid calls' },
    h('thead', {}, h('tr', {}, ['Start', 'Switch', 'Type', 'Extension', 'Number', 'Trunk',
      'Duration', 'Cost'].map((t) => h('th', {}, t)))),
    h('tbody', {}, calls.map((c) => h('tr', { class: `type-${c.type}` },
      h('td', {}, c.start || ''), h('td', {}, c.switch), h('td', {}, c.type),
      h('td', {}, c.extension || ''), h('td', {}, c.dialled || ''), h('td', {}, c.trunk || ''),
      h('td', { class: 'num' }, duration(c.duration)),
      h('td', { class: 'num' }, c.cost === null ? '' : `${c.cost} ${c.currency || ''}`)))));
}

export default {
  id: 'calls',
  title: 'Calls',
  role: 'viewer',
  render(root) {
    const inputs = {};
    const results = h('div', { class: 'results' });
    const search = async () => {
      const params = {};
      for (const [key, input] of Object.entries(inputs)) params[key] = input.value.trim();
      try {
        fill(results, table((await api.get('/api/calls', params)).calls));
      } catch (error) {
        fill(results, failure(error));
      }
    };
    const form = h('form', { class: 'filters', onsubmit: (e) => { e.preventDefault(); search(); } },
      FIELDS.map(([key, label, type]) => {
        inputs[key] = h('input', { id: `f-${key}`, name: key, type });
        return h('label', { for: `f-${key}` }, label, inputs[key]);
      }),
      h('button', { type: 'submit' }, 'Search'));
    fill(root, form, results);
    search();
  },
};

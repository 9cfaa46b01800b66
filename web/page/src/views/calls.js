// Calls: search the store's calls, sort, page through them, export what is
// shown as CSV or XLSX, and open a call's raw record and how it was read and priced.
import { api, address, latestOnly } from '../api.js';
import { h, fill, failure, duration, costCell, timeText } from '../dom.js';

const PAGE = 50;
const FIELDS = [
  ['from', 'From', 'date'], ['to', 'To', 'date'], ['switch', 'Switch', 'text'],
  ['extension', 'Extension', 'text'], ['person', 'Person', 'text'],
  ['department', 'Department', 'text'], ['number', 'Number starts with', 'text'],
  ['trunk', 'Trunk', 'text'], ['account', 'Account code', 'text'],
  ['min_cost', 'Cost from', 'money'], ['max_cost', 'Cost to', 'money'],
];
const TYPES = ['', 'incoming', 'outgoing', 'internal', 'trunk-to-trunk', 'account-code', 'transferred'];
const COLUMNS = [
  ['start', 'Start'], [null, 'Switch'], [null, 'Type'], ['extension', 'Extension'],
  [null, 'Person'], ['number', 'Number'], ['trunk', 'Trunk'], ['duration', 'Duration'],
  ['cost', 'Cost'],
];

function detail(call) {
  const line = (label, value) => (value === null || value === undefined || value === '' ? null
    : h('div', { class: 'kv' }, h('dt', {}, label), h('dd', {}, String(value))));
  return h('section', { class: 'detail', 'aria-label': 'Call' },
    h('h2', {}, 'Raw record'), h('pre', { class: 'raw' }, call.raw),
    h('h2', {}, 'As translated'),
    h('dl', {}, line('Switch', call.switch), line('Source', `${call.source} @ ${call.position}`),
      line('Received', timeText(call.received_utc)), line('Type', call.type), line('Attribute', call.attribute),
      line('Start', timeText(call.start)), line('End', timeText(call.ended)), line('Duration', duration(call.duration)),
      line('Ring (s)', call.ring), line('Extension', call.extension), line('Number', call.dialled),
      line('Trunk', call.trunk), line('Receiving extension', call.receiving_extension),
      line('Receiving trunk', call.receiving_trunk), line('Account code', call.account_code)),
    h('h2', {}, 'Price and directory'),
    h('dl', {}, line('Cost', call.cost === null ? 'not priced' : `${call.cost} ${call.currency || ''}`),
      line('Why', call.cost_reason), line('Destination', call.destination),
      line('Class', call.destination_class), line('Person', call.person),
      line('Department', call.department), line('Cost centre', call.cost_centre),
      line('Client', call.client), line('Project', call.project)));
}

export default {
  id: 'calls',
  title: 'Calls',
  role: 'viewer',
  render(root) {
    const inputs = {};
    let sort = 'start', order = 'desc', offset = 0;
    const results = h('div', { class: 'results' });
    const pager = h('div', { class: 'pager' });
    const opened = h('div', {});
    const params = () => {
      const p = { sort, order };
      for (const [key, input] of Object.entries(inputs)) p[key] = input.value.trim();
      return p;
    };
    const exportLink = h('a', { class: 'button secondary', id: 'export-csv', download: 'calls.csv' }, 'Export CSV');
    const sheetLink = h('a', { class: 'button secondary', id: 'export-xlsx', download: 'calls.xlsx' }, 'Export XLSX');
    const open = async (id) => {
      try {
        fill(opened, detail(await api.get(`/api/calls/${id}`)));
        opened.scrollIntoView({ block: 'nearest' });
      } catch (error) {
        fill(opened, failure(error));
      }
    };
    const head = () => h('thead', {}, h('tr', {}, COLUMNS.map(([key, title]) => {
      if (!key) return h('th', {}, title);
      const active = key === sort;
      return h('th', { class: key === 'duration' || key === 'cost' ? 'num' : '',
        'aria-sort': active ? (order === 'asc' ? 'ascending' : 'descending') : false },
        h('button', { type: 'button', class: 'sort', onclick: () => {
          order = active && order === 'desc' ? 'asc' : 'desc';
          sort = key;
          offset = 0;
          search();
        } }, title, active ? (order === 'asc' ? ' ▲' : ' ▼') : ''));
    })));
    const table = (calls) => h('table', { class: 'grid calls' }, head(),
      h('tbody', {}, calls.map((c) => h('tr', { class: `type-${c.type}` },
        h('td', {}, h('a', { href: '#', onclick: (e) => { e.preventDefault(); open(c.id); } },
          timeText(c.start) || 'no date')),
        h('td', {}, c.switch), h('td', {}, c.type), h('td', {}, c.extension || ''),
        h('td', {}, c.person || ''), h('td', {}, c.dialled || ''), h('td', {}, c.trunk || ''),
        h('td', { class: 'num' }, duration(c.duration)),
        costCell(c)))));
    const newest = latestOnly();
    async function search() {
      const p = params();
      exportLink.setAttribute('href', address('/api/calls/export.csv', p));
      sheetLink.setAttribute('href', address('/api/calls/export.xlsx', p));
      results.setAttribute('aria-busy', 'true');
      try {
        const latest = await newest(api.get('/api/calls', { ...p, offset, limit: PAGE }));
        if (!latest) return;
        const page = latest.answer;
        fill(results, page.calls.length ? table(page.calls) : h('p', {}, 'No call matches.'));
        fill(pager,
          h('button', { type: 'button', class: 'secondary', disabled: offset === 0,
            onclick: () => { offset = Math.max(0, offset - PAGE); search(); } }, 'Previous'),
          h('span', {}, page.calls.length ? `Calls ${offset + 1}–${offset + page.calls.length}` : ''),
          h('button', { type: 'button', class: 'secondary', disabled: !page.more,
            onclick: () => { offset += PAGE; search(); } }, 'Next'));
      } catch (error) {
        fill(results, failure(error));
        fill(pager);
      }
      results.setAttribute('aria-busy', 'false');
    }
    inputs.type = h('select', { id: 'f-type', name: 'type' }, TYPES.map((t) => h('option', { value: t }, t || 'any')));
    const form = h('form', { class: 'filters', onsubmit: (e) => { e.preventDefault(); offset = 0; search(); } },
      FIELDS.map(([key, label, type]) => {
        inputs[key] = type === 'money'
          ? h('input', { id: `f-${key}`, name: key, type: 'text', inputmode: 'decimal', size: 8 })
          : h('input', { id: `f-${key}`, name: key, type, size: 14 });
        return h('label', { for: `f-${key}` }, label, inputs[key]);
      }),
      h('label', { for: 'f-type' }, 'Type', inputs.type),
      h('div', { class: 'actions' }, h('button', { type: 'submit' }, 'Search'), exportLink, sheetLink));
    fill(root, form, results, pager, opened);
    search();
  },
};

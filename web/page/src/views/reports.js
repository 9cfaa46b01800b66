// Reports: every kind `velqua report` writes, for a period (the previous
// month unless chosen), shown here as its tables and chart, and downloaded
// as PDF, spreadsheet or CSV: the same numbers in every form.
import { api, address, latestOnly } from '../api.js';
import { h, fill, failure, duration } from '../dom.js';

// The options of one kind, shown when it is chosen: [key, label, type, kind].
const OPTIONS = [
  ['itemised', 'One extension, call by call', 'text', 'extensions'],
  ['lines', 'Lines you have', 'number', 'trunks'],
  ['top', 'How many', 'number', 'destinations'],
  ['by', 'Ranked by', ['cost', 'minutes', 'calls'], 'destinations'],
  ['callback', 'Called back within', 'text', 'missed'],
  ['of', 'Compared', ['extensions', 'departments', 'accounts', 'trunks', 'destinations'], 'compare'],
];
const FORMS = [['pdf', 'PDF'], ['xlsx', 'Spreadsheet (XLSX)'], ['csv', 'CSV']];

function cellText(column, value) {
  if (value === null || value === undefined) return '';
  if (column.type === 'duration') return duration(value);
  if (column.type === 'datetime') return String(value).replace('T', ' ');
  return String(value);
}

function table(t) {
  const numeric = (c) => ['integer', 'duration', 'money'].includes(c.type);
  const row = (cells, cls) => h('tr', { class: cls }, t.columns.map((c, i) =>
    h('td', { class: numeric(c) ? 'num' : '' }, cellText(c, cells[i]))));
  return h('div', { class: 'results' }, h('h3', {}, t.name),
    h('table', { class: 'grid report' },
      h('thead', {}, h('tr', {}, t.columns.map((c) => h('th', { scope: 'col', class: numeric(c) ? 'num' : '' },
        c.currency ? `${c.name} (${c.currency})` : c.name)))),
      h('tbody', {}, t.rows.map((r) => row(r)), t.total ? row(t.total, 'total') : null)));
}

function field(key, label, type) {
  const id = `r-${key}`;
  const input = Array.isArray(type)
    ? h('select', { id, name: key }, type.map((v) => h('option', { value: v }, v)))
    : h('input', { id, name: key, type, min: type === 'number' ? 1 : null });
  return { input, label: h('label', { for: id }, label, input) };
}

export default {
  id: 'reports',
  title: 'Reports',
  role: 'viewer',
  render(root) {
    const shown = h('div', { 'aria-live': 'polite' });
    const links = h('p', { class: 'downloads' });
    const kind = h('select', { id: 'r-kind', name: 'kind' });
    const fields = { from: field('from', 'From', 'date'), to: field('to', 'To', 'date'),
      switch: field('switch', 'Switch', 'text'), department: field('department', 'Department', 'text') };
    const extra = OPTIONS.map(([key, label, type, of]) => ({ key, of, ...field(key, label, type) }));
    const params = () => {
      const p = {};
      for (const [key, f] of Object.entries(fields)) p[key] = f.input.value.trim();
      for (const o of extra) if (o.of === kind.value) p[o.key] = o.input.value.trim();
      return p;
    };
    const showOptions = () => extra.forEach((o) => { o.label.hidden = o.of !== kind.value; });
    const newest = latestOnly();
    async function show() {
      const p = params();
      const path = `/api/reports/${kind.value}`;
      fill(links, 'Download: ', FORMS.map(([format, label]) => h('a', {
        class: 'button secondary', id: `report-${format}`, download: '',
        href: address(path, { ...p, format }) }, label)));
      fill(shown, h('p', { class: 'muted' }, 'Building the report…'));
      try {
        const latest = await newest(api.get(path, p));
        if (!latest) return;
        const report = latest.answer;
        fill(shown, h('h2', { class: 'report-title' }, report.title),
          h('p', { class: 'muted' }, `${report.from} to ${report.to}; ${report.switches.join(', ') || 'no switch'}`),
          report.notes.map((n) => h('p', {}, n)),
          report.charts ? h('img', { class: 'chart', alt: `${report.title}: chart`,
            src: address(path, { ...p, format: 'svg' }) }) : null,
          report.tables.map(table));
      } catch (error) {
        fill(shown, failure(error));
        fill(links);
      }
    }
    const form = h('form', { class: 'filters', onsubmit: (e) => { e.preventDefault(); show(); } },
      h('label', { for: 'r-kind' }, 'Report', kind), Object.values(fields).map((f) => f.label),
      extra.map((o) => o.label), h('button', { type: 'submit' }, 'Show'));
    kind.addEventListener('change', showOptions);
    fill(root, form, links, shown);
    api.get('/api/reports').then((list) => {
      fill(kind, list.kinds.map((k) => h('option', { value: k }, k)));
      fields.from.input.value = list.from;
      fields.to.input.value = list.to;
      showOptions();
    }).catch((error) => fill(shown, failure(error)));
  },
};

// The editor's side panels: what a drag marks, the placed fields and
// constants, the configuration's settings, and the cable.
import { h, fill } from '../dom.js';
import { api } from '../api.js';
import { GROUPS, groupOf, shortName, escapeText, unescapeText } from './keys.js';
import { spanOf } from './state.js';
import { colourOf, visible } from './grid.js';

function swatch(key) {
  const el = h('span', { class: 'ed-swatch' });
  el.style.setProperty('--band', colourOf(key));
  return el;
}

function option(value, label, selected) {
  return h('option', { value, selected: value === selected }, label);
}

// The <select> of what a drag over the grid marks: a field or a constant,
// grouped by call type.
export function armedSelect(state, catalog) {
  const groups = GROUPS.map(([group, title]) => {
    const fields = catalog.fields.filter((f) => groupOf(f.name) === group);
    const constants = catalog.constants.filter((c) => groupOf(c.name) === group);
    return h('optgroup', { label: title },
      fields.map((f) => option(`field:${f.name}`, `${shortName('field', f.name)} (field)`, state.armed)),
      constants.map((c) => option(`constant:${c.name}`,
        `${shortName('constant', c.name)} (call-type mark)`, state.armed)));
  });
  const describe = h('p', { class: 'ed-hint', id: 'editor-armed-help' });
  const select = h('select', { id: 'editor-armed', onchange: () => {
    state.armed = select.value;
    explain();
  } }, groups);
  const explain = () => {
    const [kind, key] = state.armed.split(':');
    const entry = (kind === 'field' ? catalog.fields : catalog.constants).find((e) => e.name === key);
    fill(describe, entry ? entry.description : '');
  };
  explain();
  return h('div', { class: 'ed-armed' },
    h('label', { for: 'editor-armed' }, 'Drag over a record to mark'), select, describe);
}

// The placed fields and constants, each with its columns, its type or text,
// and its cut from the first samples.
export function entriesPanel(state, rows) {
  const { config, selected } = state;
  const list = [];
  for (const kind of ['field', 'constant']) {
    const table = kind === 'field' ? config.fields : config.constants;
    const keys = Object.keys(table).sort((a, b) => table[a].pos - table[b].pos);
    for (const key of keys) {
      const span = spanOf(config, kind, key);
      const isSelected = selected && selected.kind === kind && selected.key === key;
      const detail = kind === 'field'
        ? h('select', { 'aria-label': `type of ${key}`, onchange: (e) =>
          state.change((c) => { c.fields[key].type = e.target.value; }) },
        ['numeric', 'string', 'constant'].map((t) => option(t, t, table[key].type)))
        : h('input', { value: table[key].text, 'aria-label': `text of ${key}`, size: 8,
          onchange: (e) => state.change((c) => {
            if (e.target.value) c.constants[key] = { pos: c.constants[key].pos, text: e.target.value };
          }) });
      list.push(h('tr', { class: isSelected ? 'ed-selected' : '', 'data-key': key },
        h('td', {}, swatch(key)),
        h('td', {}, h('button', { type: 'button', class: 'link',
          onclick: () => state.select({ kind, key, edge: 'end' }) }, shortName(kind, key))),
        h('td', { class: 'num' }, `${span.pos}-${span.pos + span.size - 1}`),
        h('td', {}, detail),
        h('td', {}, h('button', { type: 'button', title: `remove ${key}`,
          onclick: () => state.change((c) => { delete (kind === 'field' ? c.fields : c.constants)[key]; }) },
        '×'))));
    }
  }
  const cuts = [];
  if (selected) {
    const span = spanOf(config, selected.kind, selected.key);
    if (span) {
      for (const row of rows.slice(0, 12)) {
        cuts.push(h('li', {}, h('code', {}, visible([...row].slice(span.pos - 1,
          span.pos - 1 + span.size).join('')) || '(beyond the line)')));
      }
    }
  }
  return h('div', { class: 'ed-entries' },
    h('table', { id: 'editor-entries' }, h('thead', {}, h('tr', {}, h('th'), h('th', {}, 'Key'),
      h('th', {}, 'Columns'), h('th', {}, 'Type / text'), h('th'))), h('tbody', {}, list)),
    selected ? h('div', { class: 'ed-cuts' }, h('h3', {}, `${selected.key}, as cut`),
      h('ol', {}, cuts),
      h('p', { class: 'ed-hint' }, 'Arrow keys move the selected edge; [ start, ] end, \\ the whole band.'))
      : null);
}

// Brand, model, handling case, separator, comments, delivery.
export function settingsPanel(state, catalog) {
  const { config } = state;
  const text = (id, label, member, max) => h('label', { for: id }, label,
    h('input', { id, value: config[member] ?? '', maxlength: max,
      onchange: (e) => state.change((c) => { c[member] = e.target.value; }, 'settings') }));
  const caseName = typeof config.case === 'number'
    ? (catalog.cases.find((c) => c.value === config.case) || {}).name : config.case;
  const caseSelect = h('select', { id: 'editor-case',
    onchange: (e) => state.change((c) => { c.case = e.target.value; }, 'settings') },
  catalog.cases.map((c) => option(c.name, `${c.value}: ${c.description}`, caseName)));
  return h('div', { class: 'ed-settings' },
    text('editor-brand', 'Brand', 'brand', 50), text('editor-model', 'Model', 'model', 50),
    h('label', { for: 'editor-case' }, 'Handling case', caseSelect),
    h('label', { for: 'editor-separator' }, 'Separator (\\r \\n \\t \\xNN)',
      h('input', { id: 'editor-separator', value: escapeText(config.separator ?? ''),
        onchange: (e) => state.change((c) => { c.separator = unescapeText(e.target.value); }, 'settings') })),
    h('label', { for: 'editor-comments' }, 'Comments',
      h('textarea', { id: 'editor-comments', maxlength: 250, rows: 3,
        onchange: (e) => state.change((c) => { c.comments = e.target.value; }, 'settings') }, config.comments ?? '')),
    text('editor-delivery', 'Delivery (serial 9600 8N1; TCP 2300)', 'delivery', 200));
}

const PORTS = { rj45: [1, 9], db9: [1, 9], db25: [2, 25] };

// The serial cable: which switch pin is joined to which computer pin, per
// port, and the library's drawing of it.
export function cablePanel(state, port, setPort) {
  const pairs = state.config.wiring?.[port] ?? [];
  const joined = (a, b) => pairs.some(([x, y]) => x === a && y === b);
  const toggle = (a, b) => state.change((c) => {
    c.wiring = c.wiring || { rj45: [], db9: [], db25: [] };
    const list = c.wiring[port] || [];
    c.wiring[port] = joined(a, b) ? list.filter(([x, y]) => x !== a || y !== b)
      : [...list, [a, b]].sort((p, q) => p[0] - q[0] || p[1] - q[1]);
  }, 'wiring');
  const [first, last] = PORTS[port];
  const head = [h('th', {}, 'switch \\ PC')];
  for (let pc = 1; pc <= 9; pc++) head.push(h('th', {}, String(pc)));
  const body = [];
  for (let pin = first; pin <= last; pin++) {
    const cells = [h('th', {}, String(pin))];
    for (let pc = 1; pc <= 9; pc++) {
      cells.push(h('td', {}, h('input', { type: 'checkbox', checked: joined(pin, pc),
        'aria-label': `switch pin ${pin} to computer pin ${pc}`, onchange: () => toggle(pin, pc) })));
    }
    body.push(h('tr', {}, cells));
  }
  const drawing = h('div', { class: 'ed-drawing', id: 'editor-drawing' });
  api.post('/api/editor/wiring', { config: state.config, port }).then((svg) => {
    fill(drawing, h('img', { alt: `cable drawing, ${port}`,
      src: `data:image/svg+xml;charset=utf-8,${encodeURIComponent(svg)}` }));
  }).catch((error) => fill(drawing, error.message));
  return h('div', { class: 'ed-cable' },
    h('label', { for: 'editor-port' }, 'Switch connector',
      h('select', { id: 'editor-port', onchange: (e) => setPort(e.target.value) },
        Object.keys(PORTS).map((p) => option(p, p.toUpperCase(), port)))),
    h('table', { class: 'ed-pins' }, h('thead', {}, h('tr', {}, head)), h('tbody', {}, body)),
    drawing);
}

// Dashboard: a day and its month at a glance: calls, minutes, cost,
// unanswered; calls per hour; top extensions and destinations; cost per
// department; trunk channels in use.
import { api, latestOnly } from '../api.js';
import { h, fill, failure } from '../dom.js';

const money = (list) => (list.length ? list.map((c) => `${c.cost} ${c.currency}`).join(' + ') : '0');

function card(title, totals) {
  const item = (label, value, id) => h('div', { class: 'stat' }, h('span', { class: 'label' }, label),
    h('span', { class: 'value', 'data-stat': id }, String(value)));
  return h('section', { class: 'card', 'aria-label': title }, h('h2', {}, title),
    h('div', { class: 'stats' }, item('Calls', totals.calls, 'calls'),
      item('Minutes', totals.minutes, 'minutes'), item('Cost', money(totals.cost), 'cost'),
      item('Unanswered', totals.unanswered, 'unanswered')));
}

// Calls per hour as bars (their heights set through the style object, which
// the page's Content-Security-Policy allows).
function hours(list) {
  const byHour = new Map(list.map((x) => [x.hour, x]));
  const most = Math.max(1, ...list.map((x) => x.calls));
  const bars = [];
  for (let i = 0; i < 24; i++) {
    const key = String(i).padStart(2, '0');
    const x = byHour.get(key) || { calls: 0 };
    const bar = h('div', { class: 'bar', title: `${key}:00 ${x.calls} calls` });
    bar.style.height = `${(100 * x.calls) / most}%`;
    bars.push(h('div', { class: 'col' }, bar, h('span', {}, i % 3 === 0 ? key : '')));
  }
  return h('section', { class: 'card wide', 'aria-label': 'Calls per hour' },
    h('h2', {}, 'Calls per hour'), h('div', { class: 'bars' }, bars));
}

function list(title, rows, columns) {
  return h('section', { class: 'card', 'aria-label': title }, h('h2', {}, title),
    rows.length ? h('table', { class: 'grid' },
      h('thead', {}, h('tr', {}, columns.map(([, num, label]) => h('th', { class: num ? 'num' : '' }, label)))),
      h('tbody', {}, rows.map((r) =>
        h('tr', {}, columns.map(([key, num]) => h('td', { class: num ? 'num' : '' }, String(r[key] ?? '')))))))
      : h('p', { class: 'muted' }, 'None.'));
}

export default {
  id: 'dashboard',
  title: 'Dashboard',
  role: 'viewer',
  render(root) {
    const day = h('input', { id: 'd-day', type: 'date' });
    const note = h('p', { class: 'muted' });
    const body = h('div', { class: 'cards' });
    const newest = latestOnly();
    const load = async (first) => {
      try {
        let got = await newest(api.get('/api/dashboard', { day: day.value }));
        if (!got) return;
        let d = got.answer;
        if (first && d.today.calls === 0 && d.latest_day && d.latest_day !== d.day) {
          fill(note, `No calls on ${d.day}: showing ${d.latest_day}, the latest day with calls.`);
          got = await newest(api.get('/api/dashboard', { day: d.latest_day }));
          if (!got) return;
          d = got.answer;
        } else {
          fill(note);
        }
        day.value = d.day;
        const cost = (r) => ({ ...r, money: `${r.cost} ${r.currency}` });
        fill(body, card(`Day ${d.day}`, d.today), card(`Month ${d.day.slice(0, 7)}`, d.month),
          hours(d.hours),
          list('Top extensions (month)', d.top_extensions,
            [['extension', false, 'Extension'], ['calls', true, 'Calls'], ['minutes', true, 'Minutes']]),
          list('Top destinations (month)',
            d.top_destinations.map((r) => cost({ ...r, key: r.key || '(no destination)' })),
            [['key', false, 'Destination'], ['calls', true, 'Calls'], ['money', true, 'Cost']]),
          list('Cost per department (month)', d.departments.map((r) => cost({ ...r, key: r.key || '(none)' })),
            [['key', false, 'Department'], ['calls', true, 'Calls'], ['money', true, 'Cost']]),
          h('section', { class: 'card', 'aria-label': 'Trunk channels' }, h('h2', {}, 'Trunk channels'),
            h('div', { class: 'stats' },
              h('div', { class: 'stat' }, h('span', { class: 'label' }, 'In use at the last call'),
                h('span', { class: 'value' }, String(d.channels.now))),
              h('div', { class: 'stat' }, h('span', { class: 'label' }, 'Most at once'),
                h('span', { class: 'value' }, String(d.channels.peak))))));
      } catch (error) {
        fill(body, failure(error));
      }
    };
    fill(root, h('form', { class: 'filters', onsubmit: (e) => { e.preventDefault(); load(false); } },
      h('label', { for: 'd-day' }, 'Day', day), h('button', { type: 'submit' }, 'Show')), note, body);
    load(true);
  },
};

// Live: calls and unrecognised records as they are stored, newest on top.
// Rows are added above a table of fixed row height, so nothing the reader
// looks at jumps; at most 200 are kept, and drawn at most once a frame.
import { api } from '../api.js';
import { h, fill, failure, duration, costCell, timeText } from '../dom.js';

const KEEP = 200;

function row(e) {
  if (e.kind === 'unrecognised') {
    return h('tr', { class: 'type-unrecognised' },
      h('td', {}, timeText(e.received_utc)), h('td', {}, e.switch),
      h('td', {}, 'unrecognised'), h('td', { colspan: 5, class: 'raw', title: e.raw }, e.reason));
  }
  return h('tr', { class: `type-${e.type}${e.attribute === 'unanswered' ? ' unanswered' : ''}` },
    h('td', {}, timeText(e.start)), h('td', {}, e.switch),
    h('td', {}, e.attribute === 'unanswered' ? `${e.type}, unanswered` : e.type),
    h('td', {}, e.extension || ''), h('td', {}, e.person || ''), h('td', {}, e.dialled || ''),
    h('td', { class: 'num' }, duration(e.duration)),
    costCell(e));
}

export default {
  id: 'live',
  title: 'Live',
  role: 'viewer',
  render(root) {
    const state = h('p', { class: 'muted', role: 'status' }, 'Connecting…');
    const body = h('tbody', { 'aria-live': 'polite' });
    // Events are put on screen once a frame, together: at thousands of
    // calls a second the page draws the newest 200 once rather than
    // adding and dropping a row per call.
    let pending = [];
    let frame = 0;
    const draw = () => {
      frame = 0;
      body.prepend(...pending.reverse().map(row));
      pending = [];
      while (body.children.length > KEEP) body.lastChild.remove();
    };
    const add = (e) => {
      pending.push(e);
      if (pending.length > KEEP) pending.splice(0, pending.length - KEEP);
      if (!frame) frame = requestAnimationFrame(draw);
    };
    fill(root, state, h('div', { class: 'results' }, h('table', { class: 'grid live' },
      h('thead', {}, h('tr', {}, ['Start', 'Switch', 'Type', 'Extension', 'Person', 'Number',
        'Duration', 'Cost'].map((t, i) => h('th', { class: i >= 6 ? 'num' : '' }, t)))), body)));
    // The latest calls first, then what arrives.
    api.get('/api/calls', { limit: 20, sort: 'start', order: 'desc' })
      .then((page) => page.calls.reverse().forEach((c) => add({ kind: 'call', ...c })))
      .catch((error) => root.prepend(failure(error)));
    const source = new EventSource('/api/live');
    source.onopen = () => fill(state, 'Connected: calls appear as they are stored.');
    source.onerror = () => fill(state, 'Connection lost: reconnecting…');
    source.onmessage = (m) => add(JSON.parse(m.data));
    source.addEventListener('lost', () => fill(state, 'Some calls were missed: reload to see them all.'));
    return () => {
      source.close();
      cancelAnimationFrame(frame);
    };
  },
};

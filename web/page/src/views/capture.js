// Capture: each capture service the server was told of (`velqua serve
// --capture FILE`), its switches and sources as `velqua capture status`
// reads them, with a warning on a source that is down or has been silent
// longer than its silence limit. Read again every 5 seconds. A connected
// source counts as up even when silent past its limit (the server's summary
// says so; the silence has its own warning). Every time on the page is UTC,
// as `velqua capture status` prints them, and says so.
import { api } from '../api.js';
import { h, fill, failure } from '../dom.js';

const EVERY_MS = 5000;
const when = (utc) => (utc ? utc.replace('T', ' ').replace('Z', '') : '–');  // UTC: said in the heading
// "2026-03-10T12:30:00Z" in a server's text, as the tables show times.
const utcText = (text) => text.replace(/(\d{4}-\d\d-\d\d)T(\d\d:\d\d:\d\d)Z/g, '$1 $2 UTC');
const NUMBERS = ['records', 'unrecognised', 'headings', 'resent_dropped', 'reconnections', 'bytes'];

function streamRow(source, s, first) {
  return h('tr', { class: source.problem ? 'problem' : '' },
    h('th', { scope: 'row' }, first ? source.name : ''),
    h('td', {}, s.stream === source.name ? '' : s.stream.slice(source.name.length + 1)),
    h('td', { class: `state-${s.state.replace(' ', '-')}` }, s.state),
    h('td', {}, when(s.since_utc)), h('td', {}, when(s.last_record_utc)),
    NUMBERS.map((k) => h('td', { class: 'num', 'data-count': k }, s[k])),
    h('td', { class: 'event' }, s.last_event || ''));
}

function sourceRows(source) {
  if (!source.streams.length) source.streams = [{ stream: source.name, state: 'never' }];
  return source.streams.map((s, i) => streamRow(source, s, i === 0));
}

function warnings(service) {
  const list = [];
  for (const sw of service.switches) {
    for (const source of sw.sources) {
      if (!source.problem) continue;
      const s = source.silence_s;
      const limit = source.silent ? ` (its limit is ${s < 120 ? `${s} s` : `${Math.round(s / 60)} min`})` : '';
      list.push(h('li', { class: source.silent ? 'silent' : '' },
        `${sw.name} / ${source.name}: ${utcText(source.problem)}${limit}`));
    }
  }
  return list.length ? h('ul', { class: 'warnings', role: 'alert' }, list) : null;
}

function serviceSection(service) {
  const head = ['Source', 'Address', 'State', 'Since (UTC)', 'Last record (UTC)', 'Records', 'Unrecognised',
    'Headings', 'Re-sent dropped', 'Reconnections', 'Bytes', 'Last event'];
  return h('section', { class: `capture health-${service.health.toLowerCase()}`,
    'aria-label': service.config },
  h('h2', {}, service.config),
  h('p', {}, h('strong', { 'data-health': service.health }, service.health), ': ',
    h('span', { class: 'summary' }, utcText(service.summary))),
  warnings(service),
  service.switches.map((sw) => h('div', { class: 'results' },
    h('h3', {}, `Switch ${sw.name}`),
    h('table', { class: 'grid capture' },
      h('thead', {}, h('tr', {}, head.map((t, i) => h('th',
        { scope: 'col', class: i >= 5 && i < 5 + NUMBERS.length ? 'num' : '' }, t)))),
      h('tbody', {}, sw.sources.map(sourceRows))))));
}

export default {
  id: 'capture',
  title: 'Capture',
  role: 'viewer',
  render(root) {
    fill(root, h('p', { class: 'muted' }, 'Loading…'));
    const load = () => api.get('/api/capture').then((status) => {
      if (!status.services.length) {
        return fill(root, h('p', {}, 'No capture service is shown: start the server with ',
          h('code', {}, 'velqua serve --capture capture.toml'), ' (or list them as ',
          h('code', {}, 'capture'), ' in serve.toml).'));
      }
      fill(root, h('p', { class: 'muted', role: 'status' },
        `Read ${when(new Date().toISOString().slice(0, 19))} UTC; read again every ${EVERY_MS / 1000} s.`),
      status.services.map(serviceSection));
    }).catch((error) => fill(root, failure(error)));
    load();
    const timer = setInterval(load, EVERY_MS);
    return () => clearInterval(timer);
  },
};

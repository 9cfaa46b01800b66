// The switches whose records the store holds, with their counts.
import { api } from '../api.js';
import { h, fill, failure } from '../dom.js';

export default {
  id: 'switches',
  title: 'Switches',
  role: 'viewer',
  render(root) {
    fill(root, h('p', { class: 'muted' }, 'Loading…'));
    api.get('/api/switches').then((list) => {
      if (!list.length) return fill(root, h('p', {}, 'The store holds no switch yet.'));
      fill(root, h('table', { class: 'grid' },
        h('thead', {}, h('tr', {}, h('th', {}, 'Switch'), h('th', { class: 'num' }, 'Calls'),
          h('th', { class: 'num' }, 'Unrecognised'))),
        h('tbody', {}, list.map((s) => h('tr', {}, h('td', {}, s.name),
          h('td', { class: 'num' }, s.calls), h('td', { class: 'num' }, s.unrecognised))))));
    }).catch((error) => fill(root, failure(error)));
  },
};

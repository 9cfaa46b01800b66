// The page: asks who it is talking to, shows the login when it must, then
// the view the address names (#/calls, #/live ...).
import { api, setSession, whenLoggedOut } from './api.js';
import { h, fill, failure } from './dom.js';
import { views } from './views.js';

const main = () => document.getElementById('main');
let session = null;
let leave = null;

function allowed(view) {
  return view.role !== 'admin' || (session && session.role === 'admin');
}

function showNav() {
  const current = location.hash.replace(/^#\//, '') || views[0].id;
  fill(document.getElementById('nav'),
    views.filter(allowed).map((v) =>
      h('a', { href: `#/${v.id}`, 'aria-current': v.id === current ? 'page' : false }, v.title)));
  const who = document.getElementById('who');
  if (!session) return fill(who);
  fill(who, session.open ? 'local (no users)' : `${session.user} (${session.role})`,
    session.open ? null : h('button', { type: 'button', onclick: logout }, 'Log out'));
}

function route() {
  if (!session) return;
  if (leave) leave();
  leave = null;
  const id = location.hash.replace(/^#\//, '').split('?')[0] || views[0].id;
  const view = views.find((v) => v.id === id && allowed(v)) || views[0];
  showNav();
  const root = fill(main(), h('h1', {}, view.title));
  const body = h('div', { class: 'view', id: `view-${view.id}` });
  root.append(body);
  try {
    leave = view.render(body, { session }) || null;
  } catch (error) {
    fill(body, failure(error));
  }
}

function showLogin(message) {
  session = null;
  setSession(null);
  if (leave) leave();
  leave = null;
  showNav();
  const name = h('input', { id: 'login-name', name: 'name', autocomplete: 'username', required: true });
  const password = h('input', { id: 'login-password', name: 'password', type: 'password',
    autocomplete: 'current-password', required: true });
  const note = h('p', { class: 'error', role: 'alert' }, message || '');
  const form = h('form', { class: 'login', onsubmit: async (event) => {
    event.preventDefault();
    try {
      start(await api.post('/api/login', { name: name.value, password: password.value }));
    } catch (error) {
      fill(note, error.message);
    }
  } },
  h('h1', {}, 'Log in'),
  h('label', { for: 'login-name' }, 'User'), name,
  h('label', { for: 'login-password' }, 'Password'), password,
  h('button', { type: 'submit' }, 'Log in'), note);
  fill(main(), form);
  name.focus();
}

async function logout() {
  try {
    await api.post('/api/logout');
  } finally {
    showLogin();
  }
}

function start(s) {
  session = s;
  setSession(s);
  route();
}

whenLoggedOut(() => showLogin('Your session ended: log in again.'));
window.addEventListener('hashchange', route);
window.addEventListener('DOMContentLoaded', async () => {
  try {
    start(await api.get('/api/session'));
  } catch (error) {
    if (error.status === 401) showLogin();
    else fill(main(), failure(error));
  }
});

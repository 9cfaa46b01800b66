// The page's road to the server's JSON API. Every state-changing request
// carries the session's CSRF token; a 401 sends the page back to the login.
export class ApiFailure extends Error {
  constructor(status, message) {
    super(message);
    this.status = status;
  }
}

let csrf = '';
let onLoggedOut = () => {};

export function setSession(session) {
  csrf = session ? session.csrf : '';
}

export function whenLoggedOut(fn) {
  onLoggedOut = fn;
}

async function request(method, path, body, params) {
  const url = new URL(path, location.origin);
  for (const [key, value] of Object.entries(params || {})) {
    if (value !== '' && value !== undefined && value !== null) url.searchParams.set(key, value);
  }
  const headers = {};
  if (method !== 'GET') headers['X-CSRF-Token'] = csrf;
  let payload;
  if (body !== undefined) {
    headers['Content-Type'] = typeof body === 'string' ? 'text/plain' : 'application/json';
    payload = typeof body === 'string' ? body : JSON.stringify(body);
  }
  const response = await fetch(url, { method, headers, body: payload, credentials: 'same-origin' });
  const type = response.headers.get('Content-Type') || '';
  const data = type.startsWith('application/json') ? await response.json() : await response.text();
  if (!response.ok) {
    if (response.status === 401 && path !== '/api/login') onLoggedOut();
    throw new ApiFailure(response.status, (data && data.error) || `request failed (${response.status})`);
  }
  return data;
}

export const api = {
  get: (path, params) => request('GET', path, undefined, params),
  post: (path, body) => request('POST', path, body ?? {}),
  put: (path, body) => request('PUT', path, body ?? {}),
  del: (path) => request('DELETE', path),
};

// The address of a GET with parameters (for downloads the browser saves).
export function address(path, params) {
  const url = new URL(path, location.origin);
  for (const [key, value] of Object.entries(params || {})) {
    if (value !== '' && value !== undefined && value !== null) url.searchParams.set(key, value);
  }
  return url.pathname + url.search;
}

// Runs a view's requests so that only the answer to the latest one counts: a
// slow answer to an older search or day must never replace a newer one on the
// screen. Resolves to { answer } for the latest request, to null for any other
// (and swallows an older request's failure the same way).
export function latestOnly() {
  let asked = 0;
  return async (request) => {
    const mine = ++asked;
    let answer;
    try {
      answer = await request;
    } catch (error) {
      if (mine !== asked) return null;
      throw error;
    }
    return mine === asked ? { answer } : null;
  };
}

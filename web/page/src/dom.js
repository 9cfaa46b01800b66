// Building the page's elements: h('tag', {attributes, onclick: fn}, children...).
// Texts always go in as text nodes, never as HTML, so stored values (a
// record's raw text, a person's name) cannot inject markup.
export function h(tag, attrs = {}, ...children) {
  const el = document.createElement(tag);
  for (const [key, value] of Object.entries(attrs || {})) {
    if (value === undefined || value === null || value === false) continue;
    if (key.startsWith('on')) el.addEventListener(key.slice(2), value);
    else if (key === 'class') el.className = value;
    else el.setAttribute(key, value === true ? '' : String(value));
  }
  append(el, children);
  return el;
}

function append(el, children) {
  for (const child of children) {
    if (child === undefined || child === null || child === false) continue;
    if (Array.isArray(child)) append(el, child);
    else el.append(child instanceof Node ? child : document.createTextNode(String(child)));
  }
}

// Replaces everything inside `el`.
export function fill(el, ...children) {
  el.replaceChildren();
  append(el, children);
  return el;
}

// Seconds as h:mm:ss (or m:ss).
export function duration(seconds) {
  if (seconds === null || seconds === undefined) return '';
  const s = seconds % 60, m = Math.floor(seconds / 60) % 60, hours = Math.floor(seconds / 3600);
  const two = (n) => String(n).padStart(2, '0');
  return hours ? `${hours}:${two(m)}:${two(s)}` : `${m}:${two(s)}`;
}

// "2026-03-10T11:58:55" as the tables show it ("2026-03-10 11:58:55"); a UTC
// time ("...Z") says so. Empty for no time.
export function timeText(t) {
  return t ? t.replace('T', ' ').replace(/Z$/, ' UTC') : '';
}

// A line that tells what went wrong, for a view to show in place of its data.
export function failure(error) {
  return h('p', { class: 'error', role: 'alert' }, error.message || String(error));
}

// A call's cost cell: its cost and currency, or, when it has none, why
// (the price's reason: "no tariff for +99...", or "not priced" when no
// rating plan priced it), so an empty cell is never left unexplained.
export function costCell(call) {
  if (call.cost !== null && call.cost !== undefined) {
    return h('td', { class: 'num' }, `${call.cost} ${call.currency || ''}`);
  }
  const why = call.cost_reason || 'not priced';
  return h('td', { class: 'num why', title: why }, why);
}

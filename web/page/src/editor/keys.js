// How the editor names and groups the configuration's keys. The names and
// their meanings come from the server's catalogue; this only groups them by
// the call type their name says they belong to, so that each call type's
// layout can be edited on its own.
export const GROUPS = [
  ['common', 'Date, time, duration, ring'],
  ['incoming', 'Incoming calls'],
  ['outgoing', 'Outgoing calls'],
  ['internal', 'Extension to extension'],
  ['trunk', 'Trunk to trunk'],
  ['transfer', 'Transfers'],
  ['account', 'Account codes'],
];

export function groupOf(key) {
  if (/Transfer|NoContestada/.test(key)) return 'transfer';
  if (/CodigoCuenta/.test(key)) return 'account';
  if (/InterExtension/.test(key)) return 'internal';
  if (/InterTroncal/.test(key)) return 'trunk';
  if (/Entrante/.test(key)) return 'incoming';
  if (/Saliente/.test(key)) return 'outgoing';
  return 'common';
}

// A key without its kind's prefix: emParamFechaDia -> FechaDia, emDatoCteIdentSaliente ->
// Saliente, emDatoCteIdentificadorHorarioMatutinoFecha -> IdentificadorHorarioMatutinoFecha
// ("Ident" is a prefix only before a capital).
export function shortName(kind, key) {
  return kind === 'field' ? key.replace(/^emParam/, '') : key.replace(/^emDatoCte(Ident(?=[A-Z]))?/, '');
}

// The separator as typed and shown: \r, \n, \t and \xNN escapes.
export function escapeText(text) {
  return [...text].map((ch) => {
    const c = ch.codePointAt(0);
    if (ch === '\r') return '\\r';
    if (ch === '\n') return '\\n';
    if (ch === '\t') return '\\t';
    if (ch === '\\') return '\\\\';
    return c < 0x20 || c === 0x7f ? `\\x${c.toString(16).padStart(2, '0').toUpperCase()}` : ch;
  }).join('');
}

export function unescapeText(text) {
  return text.replace(/\\(x[0-9a-fA-F]{2}|r|n|t|\\)/g, (all, code) => {
    if (code === 'r') return '\r';
    if (code === 'n') return '\n';
    if (code === 't') return '\t';
    if (code === '\\') return '\\';
    return String.fromCharCode(parseInt(code.slice(1), 16));
  });
}

// The editor's state rules, without a browser: node --test web/page/tests/
import test from 'node:test';
import assert from 'node:assert/strict';
import { EditorState, emptyConfig, moveEdge, placeSpan } from '../src/editor/state.js';
import { escapeText, unescapeText, groupOf } from '../src/editor/keys.js';

class MemoryStorage {
  constructor() { this.items = new Map(); }
  getItem(key) { return this.items.has(key) ? this.items.get(key) : null; }
  setItem(key, value) { this.items.set(key, String(value)); }
  removeItem(key) { this.items.delete(key); }
}

test('edges move within 1..255 and never cross', () => {
  const rows = [
    // [edge, delta, expected pos, expected size] from a field at 10-14
    ['end', 1, 10, 6], ['end', -4, 10, 1], ['end', -9, 10, 1], ['start', -9, 1, 14],
    ['start', -20, 1, 14], ['start', 4, 14, 1], ['start', 9, 14, 1], ['band', 3, 13, 5],
    ['band', -20, 1, 5], ['band', 300, 251, 5], ['end', 300, 10, 246],
  ];
  for (const [edge, delta, pos, size] of rows) {
    const config = emptyConfig();
    config.fields.emParamFechaDia = { pos: 10, size: 5, type: 'string' };
    moveEdge(config, 'field', 'emParamFechaDia', edge, delta, '');
    assert.deepEqual(config.fields.emParamFechaDia, { pos, size, type: 'string' }, `${edge} ${delta}`);
  }
});

test('a constant takes the text under its columns, counted in characters', () => {
  const config = emptyConfig();
  placeSpan(config, 'constant', 'emDatoCteIdentEntrante', 15, 13, '01/02 10:00 ñI  0123');
  assert.deepEqual(config.constants.emDatoCteIdentEntrante, { pos: 13, text: 'ñI ' });
  placeSpan(config, 'constant', 'emDatoCteIdentSaliente', 40, 41, 'short line');
  assert.equal(config.constants.emDatoCteIdentSaliente, undefined, 'nothing to cut past the end');
});

test('undo, redo and the draft kept across a reload', () => {
  const storage = new MemoryStorage();
  const state = new EditorState(storage);
  state.setSamples(['a', 'b']);
  state.change((c) => { c.brand = 'Acme'; });
  state.change((c) => { c.model = 'X1'; });
  state.change((c) => { c.model = 'X1'; });  // no change: no history step
  state.undo();
  assert.equal(state.config.model, '');
  assert.equal(state.config.brand, 'Acme');
  state.redo();
  assert.equal(state.config.model, 'X1');
  const reloaded = new EditorState(storage);
  assert.deepEqual(reloaded.config, state.config);
  assert.deepEqual(reloaded.samples, ['a', 'b']);
  assert.equal(reloaded.dirty, true);
  reloaded.undo();
  assert.equal(reloaded.config.model, '');
  reloaded.open(emptyConfig(), 'new');
  reloaded.undo();
  assert.equal(reloaded.config.brand, '', 'opening starts a new history');
});

test('separator escapes round-trip', () => {
  for (const text of ['\r\n', '\x00', '\t|\\', 'plain', '\x1b\x7f']) {
    assert.equal(unescapeText(escapeText(text)), text);
  }
  assert.equal(escapeText('\r\n\x00'), '\\r\\n\\x00');
});

test('keys are grouped by the call type their name names', () => {
  const rows = [['emParamFechaDia', 'common'], ['emParamTelefonoEntrante', 'incoming'],
    ['emParamTroncalSaliente', 'outgoing'], ['emParamTelefonoInterExtension', 'internal'],
    ['emDatoCteIdentInterTroncalOR', 'trunk'], ['emParamTelefonoSalienteInicioTransferida', 'transfer'],
    ['emDatoCteIdentCodigoCuenta', 'account'], ['emDatoCteIdentNoContestada', 'transfer']];
  for (const [key, group] of rows) assert.equal(groupOf(key), group, key);
});

// The layout editor in a real browser: a switch no bundled configuration
// knows is configured from ten of its records by dragging over them; what
// the page saves is what the program reads and writes; every bundled
// configuration comes back unchanged; the keyboard, undo and a reload keep
// the work; the translation follows a move within the time asked for.
import assert from 'node:assert/strict';
import { mkdtempSync, readFileSync, writeFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

// Ten records of a fixed-column switch: date, time, a call-type letter at
// column 19 (I incoming, O outgoing, X extension to extension), extension,
// trunk, duration h:mm:ss, number.
const RECORDS = [
  '03/11/26 08:15:42 O 201 07 00:04:12 0201555123',
  '03/11/26 08:17:05 I 202 03 00:01:30 0301777456',
  '03/11/26 08:20:11 X 203 -- 00:00:45 305',
  '03/11/26 09:02:59 O 204 01 01:02:03 00442079460000',
  '04/11/26 10:11:12 I 201 02 00:10:00 0612345678',
  '04/11/26 11:30:00 O 205 05 00:00:07 112',
  '04/11/26 12:45:30 X 206 -- 00:03:21 201',
  '05/11/26 13:00:01 I 207 04 00:00:59 0201999888',
  '05/11/26 14:14:14 O 208 06 00:12:34 0611223344',
  '05/11/26 23:59:58 X 209 -- 00:00:02 210',
];

// What `velqua translate -f csv` must give with the configuration made
// (RFC 4180: lines end with CR LF).
const EXPECTED = `${[
  'record,type,type_name,attribute,attribute_name,date,time,duration,ring,dialled,extension,trunk,receiving_extension,receiving_trunk,account_code,extension_random,error,file,raw',
  '1,2,outgoing,0,none,2026-11-03,08:15:42,252,,0201555123,201,07,,,,0,,,',
  '2,1,incoming,0,none,2026-11-03,08:17:05,90,,0301777456,202,03,,,,0,,,',
  '3,3,internal,0,none,2026-11-03,08:20:11,45,,305,203,,,,,0,,,',
  '4,2,outgoing,0,none,2026-11-03,09:02:59,3723,,00442079460000,204,01,,,,0,,,',
  '5,1,incoming,0,none,2026-11-04,10:11:12,600,,0612345678,201,02,,,,0,,,',
  '6,2,outgoing,0,none,2026-11-04,11:30:00,7,,112,205,05,,,,0,,,',
  '7,3,internal,0,none,2026-11-04,12:45:30,201,,201,206,,,,,0,,,',
  '8,1,incoming,0,none,2026-11-05,13:00:01,59,,0201999888,207,04,,,,0,,,',
  '9,2,outgoing,0,none,2026-11-05,14:14:14,754,,0611223344,208,06,,,,0,,,',
  '10,3,internal,0,none,2026-11-05,23:59:58,2,,210,209,,,,,0,,,',
].join('\r\n')}\r\n`;

// Every field the records hold, dragged over row 0 from the first column to
// the last.
const FIELDS = [
  ['emParamFechaDia', 1, 2], ['emParamFechaMes', 4, 5], ['emParamFechaAnio', 7, 8],
  ['emParamFechaHoras', 10, 11], ['emParamFechaMinutos', 13, 14], ['emParamFechaSegundos', 16, 17],
  ['emParamDuracionHoras', 28, 29], ['emParamDuracionMinutos', 31, 32],
  ['emParamDuracionSegundos', 34, 35],
  ['emParamTelefonoEntrante', 37, 52], ['emParamExtensionEntrante', 21, 23],
  ['emParamTroncalEntrante', 25, 26],
  ['emParamTelefonoSaliente', 52, 37], ['emParamExtensionSaliente', 23, 21],
  ['emParamTroncalSaliente', 26, 25],
  ['emParamTelefonoInterExtension', 37, 52], ['emParamExtension1InterExtension', 21, 23],
];

// The call-type marks: the letter selected in a record of each type.
const MARKS = [['emDatoCteIdentSaliente', 0], ['emDatoCteIdentEntrante', 1],
  ['emDatoCteIdentInterExtension', 2]];

async function openEditor(page) {
  await page.click('nav a[href="#/configurations"]');
  await page.waitForSelector('#editor-grid');
}

// Where column `col` of grid row `row` is on the screen (its centre).
async function cell(page, row, col) {
  const geometry = await page.evaluate((r) => {
    const line = document.querySelector(`.ed-line[data-row="${r}"]`);
    line.scrollIntoView({ block: 'nearest' });
    const range = document.createRange();
    range.selectNodeContents(line);
    const box = range.getBoundingClientRect();
    return { left: box.left, top: box.top, height: box.height,
      width: box.width / [...line.textContent].length };
  }, row);
  return { x: geometry.left + (col - 0.5) * geometry.width, y: geometry.top + geometry.height / 2 };
}

// Drags the line between columns `from` and `from + 1` (a band's edge) to
// the line after column `to`.
async function dragLine(page, row, from, to) {
  const a = await cell(page, row, from + 0.5), b = await cell(page, row, to + 0.5);
  await page.mouse.move(a.x, a.y);
  await page.mouse.down();
  await page.mouse.move(b.x, b.y, { steps: 4 });
  await page.mouse.up();
}

async function drag(page, row, from, to) {
  const a = await cell(page, row, from), b = await cell(page, row, to);
  await page.mouse.move(a.x, a.y);
  await page.mouse.down();
  await page.mouse.move(b.x, b.y, { steps: 4 });
  await page.mouse.up();
}

// The translation after the last change: waits until an answer newer than
// `after` is on screen.
async function translated(page, after) {
  await page.waitForFunction((seq) => {
    const el = document.querySelector('.ed-translation');
    return el && Number(el.dataset.sequence || 0) > seq && !document.querySelector('.ed-drag:not([hidden])');
  }, after);
  return page.evaluate(() => {
    const el = document.querySelector('.ed-translation');
    return { sequence: Number(el.dataset.sequence), latency: Number(el.dataset.latencyMs) };
  });
}

async function sequence(page) {
  return page.evaluate(() => Number(document.querySelector('.ed-translation')?.dataset.sequence || 0));
}

async function useSamples(page, lines) {
  await page.fill('#editor-samples', lines.join('\n'));
  const before = await sequence(page);
  await page.click('#editor-samples-use');
  await translated(page, before);
}

async function download(page, format) {
  const [file] = await Promise.all([page.waitForEvent('download'), page.click(`#editor-save-${format}`)]);
  return readFileSync(await file.path());
}

function scratch() {
  const dir = mkdtempSync(join(tmpdir(), 'velqua-editor-'));
  return { dir, file: (name) => join(dir, name), remove: () => rmSync(dir, { recursive: true }) };
}

export const editorChecks = [
  {
    name: 'editor-configures-a-new-switch-by-dragging',
    async run({ page, login, velqua, shot }) {
      const tmp = scratch();
      try {
        await login('ann');
        await openEditor(page);
        await page.click('#editor-new');
        await useSamples(page, RECORDS);
        assert.match(await page.textContent('#editor-summary'), /10 records, 0 translated/);
        for (const [key, from, to] of FIELDS) {
          await page.selectOption('#editor-armed', `field:${key}`);
          await drag(page, 0, from, to);
        }
        for (const [key, row] of MARKS) {
          await page.selectOption('#editor-armed', `constant:${key}`);
          await drag(page, row, 19, 19);
        }
        await page.waitForFunction(() => /10 records, 10 translated, 0 unrecognised/
          .test(document.querySelector('#editor-summary').textContent));
        const last = { sequence: await sequence(page) };
        assert.equal(await page.locator('.ed-row.ed-translated').count(), 10);
        await page.fill('#editor-brand', 'Acme');
        await page.press('#editor-brand', 'Tab');
        await page.fill('#editor-model', 'T100');
        await page.press('#editor-model', 'Tab');
        await translated(page, last.sequence);
        await shot('editor-new-switch');

        writeFileSync(tmp.file('records.txt'), `${RECORDS.join('\n')}\n`);
        writeFileSync(tmp.file('acme.json'), await download(page, 'json'));
        assert.equal(velqua(['translate', '-c', tmp.file('acme.json'), '-f', 'csv',
          tmp.file('records.txt')]), EXPECTED);
        const cfg = await download(page, 'cfg');
        velqua(['config', 'convert', tmp.file('acme.json'), tmp.file('acme.cfg')]);
        assert.ok(cfg.equals(readFileSync(tmp.file('acme.cfg'))), '.cfg differs from config convert');
        const ini = await download(page, 'ini');
        velqua(['config', 'convert', tmp.file('acme.json'), tmp.file('acme.ini')]);
        assert.ok(ini.equals(readFileSync(tmp.file('acme.ini'))), '.ini differs from config convert');
      } finally {
        tmp.remove();
      }
    },
  },
  {
    name: 'editor-keyboard-undo-and-reload-keep-the-work',
    async run({ page, login }) {
      await login('ann');
      await openEditor(page);
      await page.click('#editor-new');
      await useSamples(page, RECORDS.slice(0, 3));
      await page.selectOption('#editor-armed', 'field:emParamFechaDia');
      await drag(page, 0, 1, 2);
      const size = () => page.evaluate(() =>
        JSON.parse(localStorage.getItem('velqua.editor.draft')).config.fields.emParamFechaDia);
      assert.deepEqual(await size(), { pos: 1, size: 2, type: 'numeric' });
      await page.focus('#editor-grid');
      await page.keyboard.press('ArrowRight');
      await page.keyboard.press('ArrowRight');
      assert.deepEqual(await size(), { pos: 1, size: 4, type: 'numeric' });
      await page.keyboard.press('[');
      await page.keyboard.press('ArrowRight');
      assert.deepEqual(await size(), { pos: 2, size: 3, type: 'numeric' });
      await page.keyboard.press('Control+z');
      await page.keyboard.press('Control+z');
      assert.deepEqual(await size(), { pos: 1, size: 3, type: 'numeric' });
      await page.click('#editor-redo');
      assert.deepEqual(await size(), { pos: 1, size: 4, type: 'numeric' });
      await page.reload();
      await page.waitForSelector('.ed-band[data-key="emParamFechaDia"]');
      assert.match(await page.textContent('#editor-source'), /unsaved changes/);
      assert.deepEqual(await size(), { pos: 1, size: 4, type: 'numeric' });
      assert.equal(await page.locator('.ed-line').count(), 3);
      // The mouse on a band's edge resizes it; next to it, a press marks anew.
      await dragLine(page, 1, 4, 6);
      assert.deepEqual(await size(), { pos: 1, size: 6, type: 'numeric' });
      await page.selectOption('#editor-armed', 'field:emParamFechaMes');
      await drag(page, 1, 7, 8);
      assert.deepEqual(await size(), { pos: 1, size: 6, type: 'numeric' });
    },
  },
  {
    name: 'editor-live-translation-of-500-samples',
    async run({ page, login }) {
      await login('ann');
      await openEditor(page);
      await page.click('#editor-new');
      const samples = [];
      while (samples.length < 500) samples.push(...RECORDS);
      await useSamples(page, samples);
      await page.selectOption('#editor-armed', 'constant:emDatoCteIdentSaliente');
      await drag(page, 0, 19, 19);
      await page.selectOption('#editor-armed', 'field:emParamTelefonoSaliente');
      const latencies = [];
      let last = await translated(page, 0);
      for (let i = 0; i < 10; i++) {
        await drag(page, 0, 37, 40 + i);
        last = await translated(page, last.sequence);
        latencies.push(last.latency);
      }
      latencies.sort((a, b) => a - b);
      console.log(`editor: 500 samples, move to rows on screen: median ${latencies[5].toFixed(0)} ms, ` +
        `worst ${latencies[9].toFixed(0)} ms`);
      assert.equal(await page.locator('.ed-row:not(.ed-head)').count(), 500);
    },
  },
  {
    name: 'editor-saves-every-bundled-switch-unchanged',
    async run({ page, login, velqua, shot }) {
      const tmp = scratch();
      try {
        await login('ann');
        await openEditor(page);
        const names = velqua(['switches']).split('\n').filter((line) => /^\S/.test(line))
          .map((line) => line.split(/\s+/)[0]);
        assert.ok(names.length >= 16);
        await page.waitForSelector('#editor-bundled option[value="kx-tda"]', { state: 'attached' });
        const offered = await page.$$eval('#editor-bundled option[value]:not([value=""])',
          (options) => options.map((o) => o.value));
        assert.deepEqual(offered.sort(), [...names].sort());
        for (const name of names) {
          await page.selectOption('#editor-bundled', name);
          await page.waitForFunction((n) =>
            document.querySelector('#editor-source').textContent.includes(`bundled switch ${n}`), name);
          const saved = await download(page, 'json');
          velqua(['config', 'convert', name, tmp.file(`${name}.json`)]);
          assert.ok(saved.equals(readFileSync(tmp.file(`${name}.json`))), `${name} changed`);
          if (name === 'kx-tda') {
            await translated(page, 0);
            await page.click('#editor-entries tr[data-key="emParamTelefonoSaliente"] button.link');
            // A key is named without its prefix, and only its prefix.
            assert.equal(await page.textContent(
              '#editor-entries tr[data-key="emDatoCteIdentificadorHorarioMatutinoFecha"] button.link'),
            'IdentificadorHorarioMatutinoFecha');
            await shot('editor-kx-tda');
          }
        }
      } finally {
        tmp.remove();
      }
    },
  },
  {
    name: 'editor-stores-for-a-switch-and-retranslates',
    async run({ page, login }) {
      await login('ann');
      await openEditor(page);
      await page.selectOption('#editor-stored', 'hicom');
      await page.waitForFunction(() =>
        document.querySelector('#editor-source').textContent.includes('switch hicom'));
      await page.selectOption('#editor-store-switch', 'hicom');
      await page.click('#editor-store');
      await page.waitForSelector('#editor-retranslated');
      assert.match(await page.textContent('#editor-retranslated'), / 0 rows changed/);
    },
  },
];

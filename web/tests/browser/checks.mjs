// The browser checks, one a behaviour. Each gets { page, url, db, login,
// velqua, shot } and throws when the page does not do what it should.
import assert from 'node:assert/strict';
import { appendFileSync, readFileSync, writeFileSync } from 'node:fs';
import { spawn } from 'node:child_process';
import { join } from 'node:path';
import { tmpdir } from 'node:os';
import { editorChecks } from './editor_checks.mjs';

// The store's calls as `velqua calls` lists them (CSV, header first).
function storedCalls(velqua, db, args = []) {
  const lines = velqua(['calls', '--db', db, '--format', 'csv', ...args]).trim().split('\n');
  return lines.slice(1);
}

// The store's calls as objects keyed by `velqua calls --format csv`'s header.
function storedCallRows(velqua, db) {
  const rows = [];
  const text = velqua(['calls', '--db', db, '--format', 'csv']);
  let row = [], field = '', quoted = false;
  for (let i = 0; i < text.length; i++) {
    const ch = text[i];
    if (quoted) {
      if (ch === '"' && text[i + 1] === '"') { field += '"'; i++; } else if (ch === '"') quoted = false;
      else field += ch;
    } else if (ch === '"') quoted = true;
    else if (ch === ',') { row.push(field); field = ''; }
    else if (ch === '\n') { row.push(field.replace(/\r$/, '')); rows.push(row); row = []; field = ''; }
    else field += ch;
  }
  const [head, ...body] = rows;
  return body.map((r) => Object.fromEntries(head.map((k, i) => [k, r[i]])));
}

// An amount in millionths, exactly, as a BigInt.
function millionths(text) {
  const [whole, fraction = ''] = text.replace('-', '').split('.');
  const value = BigInt(whole) * 1000000n + BigInt(fraction.padEnd(6, '0'));
  return text.startsWith('-') ? -value : value;
}

// Waits until the calls page shows the answer to its latest search.
function settled(page) {
  return page.waitForSelector('#view-calls .results[aria-busy=false]');
}

// Imports one new Hicom call dialling `number`; when this returns it is stored.
function storeOneCall(velqua, db, source, number) {
  const file = join(tmpdir(), `velqua-live-${number}.txt`);
  writeFileSync(file, `10.03.26 12:00:00   2     23       00:01:05 ${number.padEnd(28)}0.12  2\n`);
  velqua(['import', '--db', db, '--switch', 'hicom', '-c', join(source, 'examples/hicom/hicom.json'), file]);
}

export const checks = [
  {
    name: 'login-refuses-a-wrong-password',
    async run({ page, url, shot }) {
      await page.goto(url);
      await page.fill('#login-name', 'ann');
      await page.fill('#login-password', 'not-the-password');
      await page.click('form.login button[type=submit]');
      await page.waitForSelector('form.login .error:text("wrong user name or password")');
      await shot('login');
    },
  },
  {
    name: 'calls-lists-the-stored-calls',
    async run({ page, db, login, velqua, shot }) {
      await login('vic');
      await page.click('nav a[href="#/calls"]');
      await page.waitForSelector('#view-calls table.calls tbody tr');
      const shown = await page.locator('#view-calls table.calls tbody tr').count();
      assert.equal(shown, Math.min(50, storedCalls(velqua, db).length));
      await shot('calls');
    },
  },
  {
    name: 'dashboard-numbers-match-the-store',
    async run({ page, db, login, velqua, shot }) {
      await login('vic');
      await page.click('nav a[href="#/dashboard"]');
      const calls = page.locator('[aria-label^="Day"] [data-stat=calls]');
      await calls.waitFor();
      const day = (await page.inputValue('#d-day'));
      const stored = storedCalls(velqua, db, ['--from', day, '--to', day]).length;
      assert.equal(Number(await calls.textContent()), stored);
      const month = storedCalls(velqua, db, ['--from', `${day.slice(0, 7)}-01`, '--to', `${day.slice(0, 7)}-31`]);
      assert.equal(Number(await page.locator('[aria-label^="Month"] [data-stat=calls]').textContent()),
        month.length);
      await shot('dashboard');
    },
  },
  {
    name: 'live-shows-a-stored-call-within-a-second-and-search-and-export-find-it',
    async run({ page, db, login, velqua, source, shot }) {
      await login('vic');
      await page.click('nav a[href="#/live"]');
      await page.waitForSelector('#view-live p:text("Connected")');
      const number = '0301999888';
      storeOneCall(velqua, db, source, number);
      const stored = Date.now();
      await page.waitForSelector(`#view-live tbody tr:first-child td:text("${number}")`, { timeout: 1000 });
      console.log(`     live: shown ${Date.now() - stored} ms after it was stored`);
      // The row names whom the directory charges the call to, as the store does.
      const person = storedCallRows(velqua, db).find((c) => c.dialled === number).person;
      assert.ok(person, 'the directory names the caller');
      assert.equal(await page.locator(`#view-live tbody tr:has(td:text-is("${number}")) td:nth-child(5)`)
        .textContent(), person);
      // A call no tariff prices shows why in its cost cell.
      storeOneCall(velqua, db, source, '0099912345');
      await page.waitForSelector('#view-live tbody tr:first-child td.why:text("no tariff")', { timeout: 1000 });
      await shot('live');
      await shot('live');
      await page.click('nav a[href="#/calls"]');
      await page.fill('#f-number', number.slice(0, 7));
      await page.click('#view-calls form button[type=submit]');
      await settled(page);
      assert.equal(await page.locator('#view-calls tbody tr').count(), 1);
      await page.waitForSelector(`#view-calls tbody td:text("${number}")`);
      const [download] = await Promise.all([page.waitForEvent('download'), page.click('#export-csv')]);
      const csv = readFileSync(await download.path(), 'utf8');
      assert.equal(csv.trim().split('\n').length, 2, csv);
      assert.ok(csv.includes(number), csv);
      await page.click('#view-calls tbody td a');
      await page.waitForSelector('#view-calls pre.raw');
      assert.ok((await page.textContent('#view-calls pre.raw')).includes(number));
      await shot('call');
    },
  },
  {
    // The list the page asks for on opening may answer after a search the
    // user typed meanwhile; the search's answer is what stays on the screen.
    name: 'a-slow-older-answer-never-replaces-a-newer-search',
    async run({ page, db, login, velqua }) {
      await login('vic');
      const extension = storedCallRows(velqua, db).find((c) => c.extension).extension;
      let held = 0;
      await page.route((url) => url.pathname === '/api/calls' && !url.searchParams.has('extension'),
        async (route) => {
          held++;
          await new Promise((done) => setTimeout(done, 1500));
          await route.continue();
        });
      await page.click('nav a[href="#/calls"]');
      await page.fill('#f-extension', extension);
      await page.click('#view-calls form button[type=submit]');
      await page.waitForTimeout(2000);
      await settled(page);
      assert.equal(held, 1, 'the opening list was not asked for before the search');
      const shown = await page.locator('#view-calls tbody tr td:nth-child(4)').allTextContents();
      assert.ok(shown.length > 0);
      assert.deepEqual([...new Set(shown)], [extension]);
    },
  },
  {
    name: 'calls-search-by-person-department-and-cost-and-export-xlsx',
    async run({ page, db, login, velqua, shot }) {
      await login('vic');
      await page.click('nav a[href="#/calls"]');
      await page.fill('#f-person', 'weber');
      await page.fill('#f-department', 'Sales');
      await page.fill('#f-min_cost', '0.05');
      await page.click('#view-calls form button[type=submit]');
      const expected = storedCallRows(velqua, db).filter((c) => c.person.toLowerCase().includes('weber')
        && c.department === 'Sales' && c.cost !== '' && millionths(c.cost) >= 50000n);
      assert.ok(expected.length > 0, 'the example store holds no such call');
      await page.waitForFunction((n) => document.querySelectorAll('#view-calls tbody tr').length === n,
        expected.length);
      const costs = await page.locator('#view-calls tbody td:last-child').allTextContents();
      assert.deepEqual(costs.map((t) => t.split(' ')[0]).sort(), expected.map((c) => c.cost).sort());
      const [download] = await Promise.all([page.waitForEvent('download'), page.click('#export-xlsx')]);
      assert.equal(download.suggestedFilename(), 'calls.xlsx');
      const bytes = readFileSync(await download.path());
      assert.equal(bytes.subarray(0, 4).toString('latin1'), 'PK\x03\x04');
      await shot('calls-search');
    },
  },
  {
    name: 'a-viewer-is-refused-the-tariff-upload-and-an-admin-is-not',
    async run({ page, login, source, shot }) {
      const plan = join(source, 'examples/rating/hicom-plan.toml');
      const tariff = join(source, 'examples/rating/office-de.toml');
      await login('vic');
      await page.click('nav a[href="#/directory"]');
      await page.waitForSelector('#view-directory table.directory tbody tr');
      await page.setInputFiles('#t-plan', plan);
      await page.setInputFiles('#t-tariffs', tariff);
      await page.click('#view-directory form:has(#t-plan) button[type=submit]');
      await page.waitForSelector('#t-note .error:text("only an admin may do this")');
      await shot('directory-viewer');
      await page.click('#who button');
      await login('ann');
      await page.click('nav a[href="#/directory"]');
      await page.setInputFiles('#t-plan', plan);
      await page.setInputFiles('#t-tariffs', tariff);
      await page.click('#view-directory form:has(#t-plan) button[type=submit]');
      await page.waitForSelector('#t-note:text("checked and in force")');
      await shot('directory');
    },
  },
  {
    name: 'switches-shows-the-counts',
    async run({ page, db, login, velqua, shot }) {
      await login('ann');
      await page.click('nav a[href="#/switches"]');
      const row = page.locator('#view-switches tbody tr').first();
      await row.waitFor();
      const cells = await row.locator('td').allTextContents();
      assert.equal(cells[0], 'hicom');
      assert.equal(Number(cells[1]), storedCalls(velqua, db).length);
      await shot('switches');
    },
  },
  {
    name: 'reports-shows-a-report-and-downloads-it-as-pdf-and-xlsx',
    async run({ page, db, login, velqua, shot }) {
      await login('vic');
      await page.click('nav a[href="#/reports"]');
      await page.waitForSelector('#r-kind option[value="traffic"]', { state: 'attached' });
      await page.selectOption('#r-kind', 'extensions');
      await page.fill('#r-from', '2026-03-01');
      await page.fill('#r-to', '2026-03-31');
      await page.click('#view-reports form button[type=submit]');
      await page.locator('#view-reports table.report tr.total').waitFor();
      const heads = await page.locator('#view-reports table.report th').allTextContents();
      const total = page.locator('#view-reports table.report tr.total td').nth(heads.indexOf('calls'));
      const stored = storedCalls(velqua, db, ['--from', '2026-03-01', '--to', '2026-03-31']).length;
      assert.equal(Number(await total.textContent()), stored);
      await page.waitForFunction(() => document.querySelector('#view-reports img.chart')?.naturalWidth > 0);
      for (const [format, magic] of [['pdf', '%PDF-'], ['xlsx', 'PK\x03\x04']]) {
        const [download] = await Promise.all([page.waitForEvent('download'), page.click(`#report-${format}`)]);
        assert.equal(download.suggestedFilename(), `extensions-2026-03-01-2026-03-31.${format}`);
        const bytes = readFileSync(await download.path());
        assert.equal(bytes.subarray(0, magic.length).toString('latin1'), magic);
        assert.ok(bytes.length > 1000, `${format}: ${bytes.length} bytes`);
      }
      await shot('reports');
      await page.setViewportSize({ width: 390, height: 844 });  // a phone
      await shot('reports-phone');
    },
  },
  {
    name: 'capture-shows-each-source-and-warns-of-a-silent-one',
    async run({ page, login, capture, program, shot }) {
      await login('vic');
      await page.click('nav a[href="#/capture"]');
      // Before the service runs, the page says so.
      await page.waitForSelector('#view-capture [data-health="CRITICAL"]');
      const service = spawn(program, ['capture', '--config', capture.config], { stdio: 'ignore' });
      try {
        const row = page.locator('#view-capture tbody tr', { hasText: 'smdr-log' });
        await row.locator('td:text("connected")').waitFor({ timeout: 15000 });
        appendFileSync(capture.log,
          `10.03.26 12:30:00   2     24       00:02:10 ${'0301777666'.padEnd(28)}0.20  2\n`);
        await row.locator('[data-count=records]:text("1")').waitFor({ timeout: 15000 });
        // Its limit is 1 s: silent soon after the record; pbx never answers.
        const warnings = page.locator('#view-capture ul.warnings');
        await warnings.locator('li.silent', { hasText: 'smdr-log: silent for' }).waitFor({ timeout: 15000 });
        assert.match(await warnings.textContent(), /pbx: never connected/);
        assert.equal(await page.locator('#view-capture [data-health]').textContent(), 'WARNING');
        // Connected though silent: counted as up, its silence warned of on its own.
        assert.match(await page.locator('#view-capture .summary').textContent(),
          /; 1 of 2 sources connected, 1 of them silent longer than its limit$/);
        // Every time on the page in UTC, and said to be.
        assert.match(await page.locator('#view-capture [role=status]').textContent(),
          /^Read \d{4}-\d\d-\d\d \d\d:\d\d:\d\d UTC;/);
        assert.doesNotMatch(await page.locator('#view-capture').textContent(), /\d\dZ\b|T\d\d:/);
        // At a desktop's width (1280 px) every column shows without scrolling.
        const overflow = await page.$$eval('#view-capture .results',
          (all) => all.map((e) => e.scrollWidth - e.clientWidth));
        assert.ok(overflow.length > 0 && overflow.every((px) => px <= 0), `overflows by ${overflow} px`);
        await shot('capture');
        await page.setViewportSize({ width: 390, height: 844 });
        await shot('capture-phone');
      } finally {
        service.kill('SIGTERM');
      }
    },
  },
  ...editorChecks,
];

// The browser checks, one a behaviour. Each gets { page, url, db, login,
// velqua, shot } and throws when the page does not do what it should.
import assert from 'node:assert/strict';
import { editorChecks } from './editor_checks.mjs';

// The store's calls as `velqua calls` lists them (CSV, header first).
function storedCalls(velqua, db, args = []) {
  const lines = velqua(['calls', '--db', db, '--format', 'csv', ...args]).trim().split('\n');
  return lines.slice(1);
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
      await page.waitForSelector('#view-calls table.calls tbody tr');
      const shown = await page.locator('#view-calls table.calls tbody tr').count();
      assert.equal(shown, Math.min(100, storedCalls(velqua, db).length));
      await shot('calls');
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
  ...editorChecks,
];

// What the browser checks share: a store filled with the velqua program, a
// `velqua serve` on a free loopback port, and Debian's chromium driven
// headless through playwright-core.
import { spawn, execFileSync } from 'node:child_process';
import { mkdtempSync, mkdirSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { chromium } from 'playwright-core';

export const PASSWORD = 'secret-password';

// Runs the program; its standard output.
export function velqua(program, args, input) {
  return execFileSync(program, args, { input, encoding: 'utf8', stdio: ['pipe', 'pipe', 'pipe'] });
}

// A SQLite store in a new folder with the bundled Hicom example imported,
// priced and named, and two users: ann (admin) and vic (viewer).
export function makeStore(program, source) {
  const dir = mkdtempSync(join(tmpdir(), 'velqua-browser-'));
  const db = join(dir, 'calls.db');
  const example = (f) => join(source, 'examples', f);
  velqua(program, ['import', '--db', db, '--switch', 'hicom', '-c', example('hicom/hicom.json'),
    example('hicom/records.txt')]);
  velqua(program, ['rate', '--db', db, '--plan', example('rating/hicom-plan.toml')]);
  velqua(program, ['directory', 'import', '--db', db, example('rating/people.csv')]);
  velqua(program, ['user', 'add', 'ann', '--role', 'admin', '--db', db], `${PASSWORD}\n`);
  velqua(program, ['user', 'add', 'vic', '--role', 'viewer', '--db', db], `${PASSWORD}\n`);
  return { dir, db, remove: () => rmSync(dir, { recursive: true, force: true }) };
}

// Starts `velqua serve` on a free port; resolves to { url, stop }.
export function serve(program, db) {
  const child = spawn(program, ['serve', '--db', db, '--listen', '127.0.0.1:0'],
    { stdio: ['ignore', 'pipe', 'pipe'] });
  let errors = '';
  child.stderr.on('data', (d) => { errors += d; });
  return new Promise((resolve, reject) => {
    let out = '';
    const timer = setTimeout(() => reject(new Error(`velqua serve did not start: ${errors}`)), 15000);
    child.stdout.on('data', (d) => {
      out += d;
      const found = out.match(/(https?:\/\/\S+\/)/);
      if (!found) return;
      clearTimeout(timer);
      resolve({ url: found[1], stop: () => child.kill('SIGTERM') });
    });
    child.on('exit', (code) => reject(new Error(`velqua serve exited (${code}): ${errors}`)));
  });
}

export async function launch() {
  const args = process.getuid && process.getuid() === 0 ? ['--no-sandbox'] : [];
  return chromium.launch({ executablePath: process.env.CHROMIUM || '/usr/bin/chromium', args });
}

// Logs in through the page's form.
export async function login(page, url, name) {
  await page.goto(url);
  await page.fill('#login-name', name);
  await page.fill('#login-password', PASSWORD);
  await page.click('form.login button[type=submit]');
  await page.waitForSelector('#who button');
}

export function ensureDir(dir) {
  mkdirSync(dir, { recursive: true });
  return dir;
}

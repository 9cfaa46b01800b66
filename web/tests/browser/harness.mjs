// What the browser checks share: a store filled with the velqua program, a
// `velqua serve` on a free loopback port, and Debian's chromium driven
// headless through playwright-core.
import { spawn, execFileSync } from 'node:child_process';
import { mkdtempSync, mkdirSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';
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

// A capture service's configuration beside the store: switch "hicom" with a
// followed file (silent after 1 s) and a TCP source nothing answers on.
export function makeCapture(store, source) {
  const log = join(store.dir, 'smdr.log');
  writeFileSync(log, '');
  const config = join(store.dir, 'capture.toml');
  writeFileSync(config, [
    `store = "${store.db}"`, `spool = "${join(store.dir, 'spool')}"`,
    '[[switch]]', 'name = "hicom"', `config = "${resolve(source, 'examples/hicom/hicom.json')}"`,
    '[[switch.source]]', 'name = "smdr-log"', 'kind = "file-follow"', `path = "${log}"`,
    'silence_warning = "1s"',
    '[[switch.source]]', 'name = "pbx"', 'kind = "tcp-connect"', 'host = "127.0.0.1"', 'port = 9',
    ''].join('\n'));
  return { config, log };
}

// Starts `velqua serve` on a free port; resolves to { url, stop }.
export function serve(program, db, extra = []) {
  const child = spawn(program, ['serve', '--db', db, '--listen', '127.0.0.1:0', ...extra],
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

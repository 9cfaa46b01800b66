// The page in a real browser, as a person uses it: each check logs in,
// works the page and compares what it shows with the store; a screenshot of
// each page is saved in the output folder.
//   node run.mjs --velqua build/tools/velqua/velqua --source . --out build/web-screenshots
import { parseArgs } from 'node:util';
import { join } from 'node:path';
import { makeStore, makeCapture, serve, launch, login, velqua, ensureDir } from './harness.mjs';
import { checks } from './checks.mjs';

const { values } = parseArgs({ options: {
  velqua: { type: 'string' }, source: { type: 'string' }, out: { type: 'string' },
  only: { type: 'string' } } });
const out = ensureDir(values.out);
const store = makeStore(values.velqua, values.source);
// The configurations the editor stores for a switch go beside the store.
process.env.VELQUA_CONFIGS = join(store.dir, 'configs');
const capture = makeCapture(store, values.source);
const server = await serve(values.velqua, store.db, ['--capture', capture.config]);
const browser = await launch();
let failed = 0;
try {
  for (const check of checks) {
    if (values.only && !check.name.includes(values.only)) continue;
    const context = await browser.newContext({ viewport: { width: 1280, height: 800 },
      acceptDownloads: true });
    const page = await context.newPage();
    const env = {
      page, url: server.url, db: store.db, out, source: values.source, capture,
      program: values.velqua,
      login: (name) => login(page, server.url, name),
      velqua: (args, input) => velqua(values.velqua, args, input),
      shot: (name) => page.screenshot({ path: join(out, `${name}.png`), fullPage: true }),
    };
    try {
      await check.run(env);
      console.log(`ok   ${check.name}`);
    } catch (error) {
      failed++;
      console.log(`FAIL ${check.name}: ${error.stack || error}`);
      await page.screenshot({ path: join(out, `failed-${check.name}.png`) }).catch(() => {});
    }
    await context.close();
  }
} finally {
  await browser.close();
  server.stop();
  store.remove();
}
process.exit(failed ? 1 : 0);

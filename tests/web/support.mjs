// What the tests share: a router of its own for each, and a browser whose every complaint fails the
// test. Its two words are those of the script `run`.
import assert from 'node:assert/strict';
import { spawn, spawnSync } from 'node:child_process';
import { once } from 'node:events';
import { copyFileSync, mkdirSync, mkdtempSync, rmSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { createInterface } from 'node:readline';
import { test } from 'node:test';

const [programs, folder] = process.argv.slice(2);
export const pictures = join(folder, 'pages');
export const installed = createRequire(join(folder, 'packages.js'));
const { chromium } = installed('playwright-core');

const kFlags = ['--no-sandbox', '--disable-dev-shm-usage', '--disable-gpu', '--no-proxy-server', '--disable-background-networking'];
/** Answers that a page has to cope with; Chromium notes each on the console. */
const kRefusals = /^Failed to load resource: the server responded with a status of (401|403|429)/;
const kLongest = 240_000;
/** Looking around for networks takes the router twenty seconds. */
const kLongestStep = 40_000;

const running = new Set();
process.on('exit', () => running.forEach((end) => end()));
for (const signal of ['SIGINT', 'SIGTERM', 'SIGHUP']) process.once(signal, () => process.exit(1));

/** Boots a router with a web page. */
async function boot(options) {
  const place = mkdtempSync(join(tmpdir(), 'web-test-'));
  // A copy of its own keeps clear of a router that a developer has up.
  const program = join(place, 'bin', 'zelto-board');
  mkdirSync(join(place, 'bin'));
  copyFileSync(join(programs, 'zelto-board'), program);
  const board = spawn(program, ['--programs-dir', programs, '--port', '0', ...options], { stdio: ['ignore', 'pipe', 'inherit'] });
  const end = () => {
    board.kill('SIGTERM');
    rmSync(place, { recursive: true, force: true });
  };
  running.add(end);
  const run = (argument, input) => {
    const done = spawnSync(program, ['--programs-dir', programs, argument], { input, encoding: 'utf8' });
    assert.doesNotMatch(done.stderr, /no router is up/);
    return done;
  };
  const router = {
    /** The reply to a request that goes past the gateway. */
    ask: (request) => JSON.parse(run(JSON.stringify(request), '').stdout.split('\n')[0]),
    /** What commands of a shell on the router print. */
    shell(commands) {
      const { status, stdout, stderr } = run('--shell', commands);
      assert.equal(status, 0, `${commands}: ${stdout}${stderr}`);
      return stdout.trim();
    },
    uci: (option) => router.shell(`uci get ${option}`),
    /** The records of who is logged in. */
    sessions: () => router.shell('ls /tmp/zelto-gateway 2>/dev/null | grep session- || true'),
    async end() {
      const ended = board.exitCode === null && once(board, 'exit');
      end();
      await ended;
      running.delete(end);
    },
  };
  const lines = createInterface({ input: board.stdout });
  router.url = await new Promise((resolve, reject) => {
    board.once('exit', (status) => reject(new Error(`the router ended with ${status}`)));
    lines.on('line', (line) => /^ *http:/.test(line) && resolve(`${line.trim()}/`));
  });
  return router;
}

/** Notes all that must not happen: errors, warnings, violations of the policy. */
async function watch(context, faults) {
  await context.addInitScript(() => document.addEventListener('securitypolicyviolation', (event) =>
    console.error(`policy: ${event.violatedDirective} ${event.blockedURI} ${event.sample}`)));
  context.on('weberror', (error) => faults.push(String(error.error())));
  context.on('console', (message) => {
    if (['error', 'warning'].includes(message.type()) && !kRefusals.test(message.text())) faults.push(message.text());
  });
}

const launch = (flags = []) => chromium.launch({ executablePath: '/usr/bin/chromium', args: [...kFlags, ...flags] });
let shared;
export const closeBrowser = async () => (await shared)?.close();

/**
 * A test on a router and a page of its own. `board` are options of the router, `fresh` leaves its
 * first setup to be done, `names` are host names and addresses that lead the browser to the router,
 * `expected` matches complaints that belong to the test.
 */
export function flow(name, { board = [], fresh, names, expected = /^$/, ...options }, body) {
  test(name, { timeout: kLongest }, async ({ signal }) => {
    const router = await boot(board);
    const rules = names?.map((one) => `MAP ${one} ${new URL(router.url).host}`).join();
    const browser = await (names ? launch([`--host-resolver-rules=${rules}`]) : (shared ??= launch()));
    const context = await browser.newContext({ locale: 'en-GB', viewport: { width: 1280, height: 900 }, ...options });
    context.setDefaultTimeout(kLongestStep);
    signal.addEventListener('abort', () => context.close());
    const faults = [];
    const page = await context.newPage();
    try {
      await watch(context, faults);
      if (!fresh) router.shell('uci set system.route.webLoginFirst=1');
      await body({ page, router, context });
      assert.deepEqual(faults.filter((fault) => !expected.test(fault)), []);
    } catch (error) {
      await page.screenshot({ path: join(folder, 'failed', `${name}.png`), fullPage: true }).catch(() => {});
      console.error(`${name}: the router did\n${router.shell('tail -n 40 /run/board/journal /var/log/messages')}`);
      throw error;
    } finally {
      await (names ? browser : context).close();
      await router.end();
    }
  });
}

export const heading = (page, name) => page.getByRole('heading', { level: 1, name });
export const see = (place, text) => place.getByText(text).first().waitFor();
export const press = (place, name) => place.getByRole('button', { name, exact: true }).click();
export async function fillIn(place, texts) {
  for (const [label, text] of Object.entries(texts)) await place.getByLabel(label).first().fill(text);
}

export async function logIn(page, { url }, password = 'admin') {
  if (!page.url().startsWith(url)) await page.goto(url);
  await fillIn(page, { 'Administrator password': password });
  await press(page, 'Log in');
}

/** Logs in and opens a page; gives its card of that id. */
export async function open(page, router, route = 'overview', card = 'names') {
  await logIn(page, router);
  await heading(page, 'Overview').waitFor();
  await page.goto(`${router.url}#/${route}`);
  return page.locator(`#${card}`);
}

/** Waits until `look` finds what is wanted, for what the router does beside its answer. */
export async function eventually(look) {
  const end = Date.now() + kLongestStep;
  while (!look()) assert.ok(Date.now() < end, `never: ${look}`);
}

/**
 * Lets the page's clock, installed before, run ahead until something is seen; but not while a
 * request is under way, whose time limit would pass.
 */
export async function hurryUntil(page, locator) {
  const pending = new Set();
  const begun = (request) => pending.add(request);
  const over = (request) => pending.delete(request);
  page.on('request', begun).on('requestfinished', over).on('requestfailed', over);
  while (!(await locator.isVisible())) if (pending.size === 0) await page.clock.fastForward(500);
  page.off('request', begun).off('requestfinished', over).off('requestfailed', over);
}

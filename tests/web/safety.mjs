// What hostile neighbours try: names that are markup, pages of other origins.
import assert from 'node:assert/strict';
import { once } from 'node:events';
import { createServer } from 'node:http';
import { flow, logIn, open, press, saved } from './support.mjs';

const kScript = '<script>hit=1</script>';
const kImage = '<img/src=x/onerror=hit=2>';
const kSpaced = '<img src=x onerror=hit=3>';

const nothingRan = async (page) => assert.equal(await page.evaluate(() => window.hit), undefined);

flow('shows names that are markup as they are', {}, async ({ page, router }) => {
  router.shell(`
    echo '192.168.10.120 02:AA:00:00:00:20 10 1 1 ra0 ${kScript} 1 1' >> /var/board/terminals
    echo '192.168.10.121 02:AA:00:00:00:21 10 1 1 eth0 ${kImage} 1 1' >> /var/board/terminals
    printf '%-4s%-33s%-20s%-23s%s\\n' 6 '${kSpaced}' 02:bb:00:00:00:09 WPA2PSK/AES '78       11b/g/n ABOVE  In NO ' >> /var/board/survey-apcli0`);
  const networks = await open(page, router, 'wifi/networks', 'networks');
  await networks.getByLabel('Name', { exact: true }).first().fill(kSpaced);
  await press(networks, 'Save');
  await press(page.getByRole('dialog'), 'Continue');
  await saved(page);
  await page.goto(`${router.url}#/overview`);
  await page.locator('#names').getByText(kSpaced).waitFor();
  await page.goto(`${router.url}#/devices`);
  const attached = page.locator('#attached');
  await attached.getByText(kScript).waitFor();
  await press(attached, `Change: ${kImage}`);
  await page.getByRole('dialog').getByRole('heading', { name: kImage }).waitFor();
  await press(page.getByRole('dialog'), 'Block');
  await page.getByRole('dialog').getByText(kImage).waitFor();
  await press(page.getByRole('dialog'), 'Block');
  await page.locator('#blocked').getByText(kImage).waitFor();
  await page.goto(`${router.url}#/internet/mode`);
  const mode = page.locator('#mode');
  await mode.getByText('Carries the Wi-Fi of another router further.').click();
  await press(mode, 'Look for networks');
  await mode.getByRole('button', { name: kSpaced }).click();
  assert.equal(await page.locator('img, #app script').count(), 0);
  await nothingRan(page);
});

flow('keeps the session from scripts', {}, async ({ page, router, context }) => {
  await logIn(page, router);
  await page.getByRole('heading', { name: 'Overview', level: 1 }).waitFor();
  const [{ httpOnly, sameSite }] = await context.cookies();
  assert.deepEqual({ httpOnly, sameSite }, { httpOnly: true, sameSite: 'Strict' });
  assert.equal(await page.evaluate(() => document.cookie + Object.values(localStorage).join() + Object.values(sessionStorage).join()), '');
});

const kChange = { type: 'sethwnat', status: '0' };

/** Posts a command with cookies, in all ways that a page of elsewhere has. */
const attack = async (page, target) => page.evaluate(async ([url, text]) => {
  const post = (options) => fetch(url, { method: 'POST', credentials: 'include', body: text, ...options }).then(({ type }) => type, () => 'refused');
  const frame = Object.assign(document.createElement('iframe'), { name: 'answer' });
  document.body.append(frame);
  const form = document.body.appendChild(document.createElement('form'));
  Object.assign(form, { action: url, method: 'POST', enctype: 'text/plain', target: 'answer' });
  const field = form.appendChild(document.createElement('input'));
  // Sent as NAME=VALUE, which makes this JSON.
  Object.assign(field, { name: `${text.slice(0, -1)},"x":"`, value: '"}' });
  const answered = new Promise((resolve) => frame.addEventListener('load', resolve));
  form.submit();
  await answered;
  return [
    await post({ mode: 'no-cors' }),
    await post({ headers: { 'Content-Type': 'application/json' } }),
    await post({ mode: 'no-cors', body: new Blob([text], { type: 'application/json' }) }),
  ];
}, [`${target}cgi-bin/zelto-cgi`, JSON.stringify(kChange)]);

// A page of another port is of the same site: the browser lets the cookie go along.
flow('lets no page of another port command', { expected: /CORS policy|Failed to load resource: (net::ERR_FAILED|the server responded with a status of 400)/ }, async ({ page, router }) => {
  await open(page, router, 'overview', 'names');
  const server = createServer((request, response) => response.setHeader('Content-Type', 'text/html').end('<!doctype html><title>Elsewhere</title><body>'));
  await once(server.listen(0, '127.0.0.1'), 'listening');
  try {
    await page.goto(`http://127.0.0.1:${server.address().port}/`);
    const sent = [];
    page.on('request', (request) => request.url().includes('zelto-cgi') && sent.push(request));
    const outcomes = await attack(page, router.url);
    assert.deepEqual(outcomes, ['opaque', 'refused', 'opaque']);
    const statuses = await Promise.all(sent.map(async (request) => (await request.response())?.status() ?? 'refused'));
    assert.deepEqual(statuses.sort(), [400, 400, 400, 'refused']);
    const cookies = await Promise.all(sent.map(async (request) => (await request.allHeaders()).cookie));
    assert.ok(cookies.some((cookie) => cookie?.includes('zelto_session=')), 'the attack carries no session');
    assert.equal(router.uci('system.route.mtkhnat'), '1');
  } finally {
    server.close();
  }
});

// A foreign name that its owner turned to the router's address.
flow('answers under no foreign name', { names: ['rebound.example'] }, async ({ page, router }) => {
  await page.goto('http://rebound.example/');
  await page.getByText('not known under that name').waitFor();
  const status = await page.evaluate(() => fetch('/cgi-bin/zelto-cgi', { method: 'POST', headers: { 'Content-Type': 'application/json' }, body: '{"type":"loginauth","user":"admin","pass":"admin"}' }).then((answer) => answer.status));
  assert.equal(status, 403);
  assert.equal(router.shell('ls /tmp/zelto-gateway 2>/dev/null | grep session- || echo none'), 'none');
});

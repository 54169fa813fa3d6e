// What hostile neighbours try: names that are markup, pages of other origins.
import assert from 'node:assert/strict';
import { once } from 'node:events';
import { createServer } from 'node:http';
import { flow, open, press, see } from './support.mjs';

const kScript = '<script>hit=1</script>';
const kImage = '<img/src=x/onerror=hit=2>';
const kSpaced = '<img src=x onerror=hit=3>';

flow('shows names that are markup as they are', {}, async ({ page, router }) => {
  router.shell(`
    echo '192.168.10.120 02:AA:00:00:00:20 10 1 1 ra0 ${kScript} 1 1' >> /var/board/terminals
    echo '192.168.10.121 02:AA:00:00:00:21 10 1 1 eth0 ${kImage} 1 1' >> /var/board/terminals
    printf '%-4s%-33s%-20s%-23s%s\\n' 6 '${kSpaced}' 02:bb:00:00:00:09 WPA2PSK/AES '78       11b/g/n ABOVE  In NO ' >> /var/board/survey-apcli0`);
  const dialog = page.getByRole('dialog');
  const networks = await open(page, router, 'wifi/networks', 'networks');
  await networks.getByLabel('Name', { exact: true }).first().fill(kSpaced);
  await press(networks, 'Save');
  await press(dialog, 'Continue');
  await see(page, 'Saved');
  await page.goto(`${router.url}#/overview`);
  await see(page.locator('#names'), kSpaced);
  await page.goto(`${router.url}#/devices`);
  await see(page.locator('#attached'), kScript);
  await press(page.locator('#attached'), `Change: ${kImage}`);
  await dialog.getByRole('heading', { name: kImage }).waitFor();
  await press(dialog, 'Block');
  await see(dialog, kImage);
  await press(page.getByRole('dialog', { name: 'Block' }), 'Block');
  await see(page.locator('#blocked'), kImage);
  await page.goto(`${router.url}#/internet/mode`);
  const mode = page.locator('#mode');
  await mode.getByText('Carries the Wi-Fi of another router further.').click();
  await press(mode, 'Look for networks');
  await mode.getByRole('button', { name: kSpaced }).click();
  assert.equal(await page.locator('img, #app script').count(), 0);
  assert.equal(await page.evaluate(() => window.hit), undefined);
});

const kFramed = (url) => `<!doctype html><title>theirs</title><iframe src="${url}"></iframe>`;

// Within a page of another port it would have its session.
flow('shows nothing in the frame of another page', {}, async ({ page, router }) => {
  await open(page, router);
  const theirs = await serve(kFramed(router.url));
  await page.goto(theirs);
  const frame = page.frame({ url: router.url });
  await frame.waitForLoadState('networkidle');
  assert.equal(await frame.locator('#app').innerHTML(), '');
});

/** A page of another port; its address. */
async function serve(text) {
  const server = createServer((_, response) => response.setHeader('Content-Type', 'text/html').end(text));
  await once(server.listen(0, '127.0.0.1').unref(), 'listening');
  return `http://127.0.0.1:${server.address().port}/`;
}

/** Posts a command in all ways that a page of elsewhere has; what each script got to see. */
const attack = ([url, text]) => new Promise((resolve) => {
  const post = (options) => fetch(url, { method: 'POST', credentials: 'include', body: text, ...options }).then(({ type }) => type, () => 'refused');
  const frame = Object.assign(document.createElement('iframe'), { name: 'answer' });
  const form = Object.assign(document.createElement('form'), { action: url, method: 'POST', enctype: 'text/plain', target: 'answer' });
  // Sent as NAME=VALUE, which makes this JSON.
  form.append(Object.assign(document.createElement('input'), { name: `${text.slice(0, -1)},"x":"`, value: '"}' }));
  document.body.append(frame, form);
  frame.addEventListener('load', async () => resolve([
    await post({ mode: 'no-cors' }),
    await post({ headers: { 'Content-Type': 'application/json' } }),
    await post({ mode: 'no-cors', body: new Blob([text], { type: 'application/json' }) }),
  ]), { once: true });
  form.submit();
});

const expected = /CORS policy|Failed to load resource: (net::ERR_FAILED|the server responded with a status of 400)/;

// A page of another port is of the same site: the browser lets the cookie go along.
flow('lets no page of another port command', { expected }, async ({ page, router }) => {
  await open(page, router);
  await page.goto(await serve('<!doctype html><body>'));
  const sent = [];
  page.on('request', (request) => request.url().includes('zelto-cgi') && sent.push(request));
  const seen = await page.evaluate(attack, [`${router.url}cgi-bin/zelto-cgi`, '{"type":"sethwnat","status":"0"}']);
  assert.deepEqual(seen, ['opaque', 'refused', 'opaque']);
  const statuses = await Promise.all(sent.map(async (request) => (await request.response())?.status() ?? 'refused'));
  assert.deepEqual(statuses.sort(), [400, 400, 400, 'refused']);
  const headers = await Promise.all(sent.map((request) => request.allHeaders()));
  assert.ok(headers.some(({ cookie }) => cookie?.includes('zelto_session=')), 'the attack carries no session');
  assert.equal(router.uci('system.route.mtkhnat'), '1');
});

// A foreign name that its owner turned to the router's address.
flow('answers under no foreign name', { names: ['rebound.example'] }, async ({ page, router }) => {
  await page.goto('http://rebound.example/');
  await see(page, 'not known under that name');
  const request = { method: 'POST', headers: { 'Content-Type': 'application/json' }, body: '{"type":"loginauth","user":"admin","pass":"admin"}' };
  assert.equal(await page.evaluate((login) => fetch('/cgi-bin/zelto-cgi', login).then(({ status }) => status), request), 403);
  assert.equal(router.sessions(), '');
});

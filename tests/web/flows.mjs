// What families do on the page, looked at on the router.
import assert from 'node:assert/strict';
import { eventually, fillIn, flow, heading, hurryUntil, logIn, open, press, see } from './support.mjs';

const kPhone = '02:AA:00:00:00:02';
const goOn = (page) => press(page.getByRole('dialog'), 'Continue');
const expectStored = (router, options) =>
  assert.deepEqual(Object.fromEntries(Object.keys(options).map((option) => [option, router.uci(option)])), options);

flow('logs in, and out', {}, async ({ page, router, context }) => {
  await open(page, router);
  await see(page, 'You are online');
  await page.reload();
  await heading(page, 'Overview').waitFor();
  const [cookie] = await context.cookies();
  assert.deepEqual([cookie.httpOnly, cookie.sameSite], [true, 'Strict']);
  const readable = () => document.cookie + JSON.stringify({ ...localStorage, ...sessionStorage });
  assert.equal(await page.evaluate(readable), '{}');
  assert.match(router.sessions(), new RegExp(cookie.value));
  await press(page, 'Log out');
  await heading(page, 'Welcome home').waitFor();
  assert.equal(router.sessions(), '');
  await context.addCookies([cookie]);
  await page.reload();
  await heading(page, 'Welcome home').waitFor();
});

flow('sets a new router up', { fresh: true }, async ({ page, router }) => {
  await page.clock.install();
  await logIn(page, router);
  const wizard = page.locator('#wizard');
  await fillIn(wizard, { 'New administrator password': 'a family secret', 'Once more': 'a family secret' });
  await press(wizard, 'Next');
  await wizard.getByLabel('Kind of connection').selectOption('Login (PPPoE)');
  await fillIn(wizard, { 'User name from your provider': 'family@provider.example', 'Password from your provider': 'line secret' });
  await press(wizard, 'Next');
  await wizard.getByLabel('Same name on both bands').check({ force: true });
  await fillIn(wizard, { 'Name of the 2.4 GHz network': 'Our home', 'Password of the 2.4 GHz network': 'come in, all' });
  await press(wizard, 'Next');
  assert.equal(router.uci('system.route.routepwd'), 'admin');
  await press(wizard, 'Apply');
  await hurryUntil(page, page.getByText('The router works in its new mode'));
  await goOn(page);
  await heading(page, 'Overview').waitFor();
  expectStored(router, {
    'system.route.routepwd': 'a family secret', 'system.route.ssid_2g': 'Our home', 'system.route.ssid_5g': 'Our home',
    'network.wan.proto': 'pppoe', 'network.wan.username': 'family@provider.example', 'network.wan.password': 'line secret',
  });
  await press(page, 'Log out');
  await logIn(page, router, 'a family secret');
  await heading(page, 'Overview').waitFor();
});

flow('renames the Wi-Fi', {}, async ({ page, router }) => {
  const card = await open(page, router, 'wifi/networks', 'networks');
  const name = card.getByLabel('Name', { exact: true }).first();
  await name.fill('Küche & "Garten"');
  await press(card, 'Save');
  await goOn(page);
  await see(page, 'Saved');
  expectStored(router, { 'system.route.ssid_2g': 'Küche & "Garten"' });
  await page.reload();
  assert.equal(await name.inputValue(), 'Küche & "Garten"');
});

/** The router's new address, with what the page says on the way. */
async function move(page, router, url) {
  const card = await open(page, { url }, 'internet/lan', 'lan');
  await page.clock.install();
  await fillIn(card, { 'Router address': '192.168.20.1' });
  await press(card, 'Save');
  await goOn(page);
  for (const step of ['The home network restarts', 'Your device gets a new address', 'Looking for the router']) {
    await hurryUntil(page, page.locator('#progress-dialog [aria-current=step]', { hasText: step }));
  }
  expectStored(router, { 'network.lan.ipaddr': '192.168.20.1', 'system.route.lan_ipaddr': '192.168.20.1' });
  assert.match(router.shell('ip -o -4 addr show br-lan'), /192\.168\.20\.1\/24/);
}

flow('moves the router, seen from elsewhere', {}, async ({ page, router }) => {
  await move(page, router, router.url);
  await hurryUntil(page, page.getByText('this page is still connected'));
  await press(page.getByRole('dialog'), 'Close');
  await page.reload();
  assert.equal(await page.getByLabel('Router address').inputValue(), '192.168.20.1');
});

flow('moves the router, and follows it', { names: ['192.168.10.1', '192.168.20.1'] }, async ({ page, router }) => {
  await move(page, router, 'http://192.168.10.1/');
  await hurryUntil(page, page.getByText('The router answers at 192.168.20.1'));
  await press(page.getByRole('dialog'), 'Go there');
  await page.waitForURL('http://192.168.20.1/');
  await open(page, { url: 'http://192.168.20.1/' });
});

flow('blocks a device and lets it in again', {}, async ({ page, router }) => {
  const card = await open(page, router, 'devices', 'attached');
  const blocked = () => router.ask({ type: 'getblacklist' }).list.map(({ mac }) => mac);
  await press(card.getByRole('row', { name: kPhone }), 'Change: phone');
  await press(page.getByRole('dialog'), 'Block');
  await press(page.getByRole('dialog', { name: 'Block' }), 'Block');
  await see(page.locator('#blocked'), kPhone);
  assert.deepEqual(blocked(), [kPhone]);
  assert.match(router.shell('cat /etc/firewall.user'), new RegExp(kPhone, 'i'));
  await press(page.locator('#blocked'), 'Let in: phone');
  await page.locator('#blocked').getByText(kPhone).waitFor({ state: 'detached' });
  assert.deepEqual(blocked(), []);
  assert.doesNotMatch(router.shell('cat /etc/firewall.user'), new RegExp(kPhone, 'i'));
});

flow('forwards a port, and no longer', {}, async ({ page, router }) => {
  const card = await open(page, router, 'internet/outside', 'forwarding');
  const rules = () => router.ask({ type: 'getforwarding' }).list.map(({ name, ip, sublist }) => [name, ip, sublist.length]);
  await press(card, 'Forward a port');
  const dialog = page.getByRole('dialog');
  await fillIn(dialog, { Name: 'games', Device: '192.168.10.100', 'Outside port': '70000', 'Inside port': '25565' });
  await press(dialog, 'Save');
  await see(dialog, 'A port from 1 to 65535');
  assert.deepEqual(rules(), []);
  await fillIn(dialog, { 'Outside port': '25000-25010' });
  await press(dialog, 'Save');
  await see(card, '25000-25010 → 25565 TCP');
  assert.deepEqual(rules(), [['games', '192.168.10.100', 1]]);
  await press(card, 'Remove: games');
  await press(dialog, 'Remove');
  await see(card, 'No port is forwarded.');
  assert.deepEqual(rules(), []);
});

flow('becomes a repeater, and a router again', {}, async ({ page, router }) => {
  const card = await open(page, router, 'internet/mode', 'mode');
  const apply = async (mode) => {
    await page.clock.install();
    await press(card, 'Apply this mode');
    await goOn(page);
    await hurryUntil(page, page.getByText('The router works in its new mode'));
    await goOn(page);
    await heading(page, 'Overview').waitFor();
    assert.equal(router.uci('system.route.operationmode'), mode);
  };
  await card.getByText('Carries the Wi-Fi of another router further.').click();
  await press(card, 'Look for networks');
  await card.getByRole('button', { name: /Neighbour 2/ }).click();
  await fillIn(card, { 'Password of that network': 'their secret' });
  await apply('repeater');
  assert.match(router.shell('cat /etc/config/internet'), /Neighbour[^]*their secret|their secret[^]*Neighbour/);
  await page.goto(`${router.url}#/internet/mode`);
  await card.getByText('A cable from your provider or modem').click();
  await apply('router');
});

flow('slows down who guesses passwords', {}, async ({ page, router }) => {
  let attempts = 0;
  for (let status = 0; status !== 429 && attempts < 12; attempts += 1) {
    const answer = page.waitForResponse((response) => response.request().postData()?.includes('loginauth'));
    await logIn(page, router, `guess ${attempts}`);
    const response = await answer;
    status = response.status();
    const seconds = response.headers()['retry-after'];
    await see(page, status === 429 ? `Too many attempts. Please wait ${seconds} seconds.` : 'User name or password is not right.');
  }
  assert.ok(attempts > 5 && attempts < 12, `${attempts} attempts`);
  router.shell("sed -i 's/ [0-9]*$/ 0/' /tmp/zelto-gateway/failures");
  await open(page, router);
});

flow('goes back to the login when the session has run out', {}, async ({ page, router }) => {
  const card = await open(page, router, 'internet/more', 'hwnat');
  await card.getByLabel('Use acceleration').uncheck({ force: true });
  router.shell('for one in /tmp/zelto-gateway/session-*; do echo "-700 -700" > "$one"; done');
  await press(card, 'Save');
  await see(page.locator('#login'), 'Your session has ended');
  assert.equal(router.uci('system.route.mtkhnat'), '1');
  await logIn(page, router);
  await see(page, 'Hardware acceleration');
});

flow('speaks the other language', {}, async ({ page, router }) => {
  await open(page, router);
  await press(page, '中文');
  await page.reload();
  await heading(page, '概览').waitFor();
  assert.equal(await page.getAttribute('html', 'lang'), 'zh-Hans');
  await press(page, 'English');
  await heading(page, 'Overview').waitFor();
});

for (const [id, button, command, outcome] of [
  ['reboot', 'Restart the router', 'reboot', 'The router is back.'],
  ['restore', 'Reset the router', 'firstboot -y', 'The router is as new.'],
]) {
  flow(`asks for the password again before its ${id}`, {}, async ({ page, router }) => {
    const card = await open(page, router, 'system/device', id);
    const times = () => Number(router.shell(`grep -c "^${command}" /var/log/firmware.log || true`));
    await press(card, button);
    await page.getByRole('dialog').getByRole('button').last().click();
    const dialog = page.locator('#password-dialog');
    await fillIn(dialog, { Password: 'wrong' });
    await press(dialog, 'Continue');
    await see(dialog, 'This password is not right.');
    assert.equal(times(), 0);
    await page.clock.install();
    await fillIn(dialog, { Password: 'admin' });
    await press(dialog, 'Continue');
    await page.locator('#progress-dialog').waitFor();
    await eventually(() => times() === 1);
    await hurryUntil(page, page.getByText(outcome));
  });
}

flow('sends any command, and shows what it did', {}, async ({ page, router }) => {
  const card = await open(page, router, 'console', 'console');
  await fillIn(card, { 'Search for a command': 'sethwnat' });
  await card.getByLabel('Command', { exact: true }).selectOption('sethwnat');
  await card.locator('[name=status]').fill('0');
  assert.deepEqual(JSON.parse(await card.getByLabel('Request').inputValue()), { type: 'sethwnat', status: '0' });
  await press(card, 'Send');
  await see(card.locator('#console-journal'), 'set system.route.mtkhnat=0');
  assert.deepEqual(JSON.parse(await card.locator('#console-reply').textContent()), { type: 'sethwnat', result: 0 });
  assert.equal(router.uci('system.route.mtkhnat'), '0');
});

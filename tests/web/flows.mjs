// What families do on the page, looked at on the router.
import assert from 'node:assert/strict';
import { eventually, flow, hurryUntil, logIn, open, press, saved } from './support.mjs';

const kPhone = '02:AA:00:00:00:02';
const heading = (page, name) => page.getByRole('heading', { level: 1, name });
const go = (page) => press(page.getByRole('dialog'), 'Continue');

/** What an option of a command is now, kept to what the test names. */
const stored = (router, options) => Object.fromEntries(Object.keys(options).map((option) => [option, router.uci(option)]));
const expectStored = (router, options) => assert.deepEqual(stored(router, options), options);

flow('logs in, and out', {}, async ({ page, router, context }) => {
  await logIn(page, router);
  await heading(page, 'Overview').waitFor();
  await page.getByText('You are online').waitFor();
  await page.reload();
  await heading(page, 'Overview').waitFor();
  assert.equal(router.shell('ls /tmp/zelto-gateway | grep -c session-'), '1');
  const [{ name, value }] = await context.cookies();
  await press(page, 'Log out');
  await heading(page, 'Welcome home').waitFor();
  assert.equal(router.shell('ls /tmp/zelto-gateway | grep session- || echo none'), 'none');
  await context.addCookies([{ name, value, url: router.url }]);
  await page.reload();
  await heading(page, 'Welcome home').waitFor();
});

flow('sets a new router up', { fresh: true }, async ({ page, router }) => {
  await page.clock.install();
  await logIn(page, router);
  const wizard = page.locator('#wizard');
  await wizard.getByLabel('New administrator password').fill('a family secret');
  await wizard.getByLabel('Once more').fill('another one');
  await press(wizard, 'Next');
  await wizard.getByText('The two are different.').waitFor();
  await wizard.getByLabel('Once more').fill('a family secret');
  await press(wizard, 'Next');
  await wizard.getByLabel('Kind of connection').selectOption('Login (PPPoE)');
  await wizard.getByLabel('User name from your provider').fill('family@provider.example');
  await wizard.getByLabel('Password from your provider').fill('line secret');
  await press(wizard, 'Next');
  await wizard.getByLabel('Same name on both bands').check({ force: true });
  await wizard.getByLabel('Name of the 2.4 GHz network').fill('Our home');
  await wizard.getByLabel('Password of the 2.4 GHz network').fill('come in, all');
  await press(wizard, 'Next');
  assert.equal(router.uci('system.route.routepwd'), 'admin');
  await press(wizard, 'Apply');
  await page.getByText('The router changes').waitFor();
  const done = page.getByText('The router works in its new mode');
  await hurryUntil(page, done);
  await go(page);
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
  await card.getByLabel('Name', { exact: true }).first().fill('Küche & "Garten"');
  await press(card, 'Save');
  await go(page);
  await saved(page);
  const { configurations: [band] } = router.ask({ type: 'getwlancfgall' });
  assert.equal(band.wlanssid, 'Küche & "Garten"');
  assert.equal(router.uci('system.route.ssid_2g'), 'Küche & "Garten"');
  await page.reload();
  await page.waitForFunction(() => document.querySelector('#networks input[name=ssid2]')?.value === 'Küche & "Garten"');
});

async function moveRouter(page, router, card) {
  await page.clock.install();
  await card.getByLabel('Router address').fill('192.168.20.1');
  await press(card, 'Save');
  await go(page);
  const steps = page.locator('#progress-dialog [aria-current=step]');
  for (const step of ['The home network restarts', 'Your device gets a new address', 'Looking for the router']) {
    await hurryUntil(page, steps.filter({ hasText: step }));
  }
  expectStored(router, { 'network.lan.ipaddr': '192.168.20.1', 'system.route.lan_ipaddr': '192.168.20.1' });
  assert.match(router.shell('ip -o -4 addr show br-lan'), /192\.168\.20\.1\/24/);
}

flow('moves the router, seen from elsewhere', {}, async ({ page, router }) => {
  const card = await open(page, router, 'internet/lan', 'lan');
  await moveRouter(page, router, card);
  await hurryUntil(page, page.getByText('this page is still connected'));
  await press(page.getByRole('dialog'), 'Close');
  await page.waitForFunction(() => document.querySelector('#lan input[name=lanip]')?.value === '192.168.20.1');
});

flow('moves the router, and follows it', { names: ['192.168.10.1', '192.168.20.1'] }, async ({ page, router }) => {
  const card = await open(page, { url: 'http://192.168.10.1/' }, 'internet/lan', 'lan');
  await moveRouter(page, router, card);
  await hurryUntil(page, page.getByText('The router answers at 192.168.20.1'));
  await press(page.getByRole('dialog'), 'Go there');
  await page.waitForURL('http://192.168.20.1/');
  await logIn(page, { url: 'http://192.168.20.1/' });
  await heading(page, 'Overview').waitFor();
});

flow('refuses an address of the Internet side', {}, async ({ page, router }) => {
  const card = await open(page, router, 'internet/lan', 'lan');
  await card.getByLabel('Router address').fill('100.64.10.9');
  await press(card, 'Save');
  await go(page);
  await card.getByText('in the same network as the Internet side').waitFor();
  assert.equal(router.uci('network.lan.ipaddr'), '192.168.10.1');
});

flow('blocks a device and lets it in again', {}, async ({ page, router }) => {
  const card = await open(page, router, 'devices', 'attached');
  const blocked = () => router.ask({ type: 'getblacklist' }).list.map(({ mac }) => mac);
  await press(card.getByRole('row', { name: kPhone }), 'Change: phone');
  await press(page.getByRole('dialog'), 'Block');
  await press(page.getByRole('dialog'), 'Block');
  await page.locator('#blocked').getByText(kPhone).waitFor();
  assert.deepEqual(blocked(), [kPhone]);
  assert.match(router.shell('cat /etc/firewall.user'), new RegExp(kPhone, 'i'));
  await press(page.locator('#blocked'), 'Let in: phone');
  await page.locator('#blocked').getByText(kPhone).waitFor({ state: 'detached' });
  assert.deepEqual(blocked(), []);
  assert.doesNotMatch(router.shell('cat /etc/firewall.user'), new RegExp(kPhone, 'i'));
});

flow('forwards a port, and no longer', {}, async ({ page, router }) => {
  const card = await open(page, router, 'internet/outside', 'forwarding');
  const rules = () => router.ask({ type: 'getforwarding' }).list;
  await press(card, 'Forward a port');
  const dialog = page.getByRole('dialog');
  await dialog.getByLabel('Name').fill('games');
  await dialog.getByLabel('Device').fill('192.168.10.100');
  await dialog.getByLabel('Outside port').first().fill('70000');
  await dialog.getByLabel('Inside port').first().fill('25565');
  await press(dialog, 'Save');
  await dialog.getByText('A port from 1 to 65535').waitFor();
  assert.deepEqual(rules(), []);
  await dialog.getByLabel('Outside port').first().fill('25000-25010');
  await press(dialog, 'Save');
  await card.getByText('25000-25010 → 25565 TCP').waitFor();
  assert.deepEqual(rules().map(({ name, ip, sublist }) => ({ name, ip, sublist: sublist.length })), [{ name: 'games', ip: '192.168.10.100', sublist: 1 }]);
  await press(card, 'Remove: games');
  await press(dialog, 'Remove');
  await card.getByText('No port is forwarded.').waitFor();
  assert.deepEqual(rules(), []);
});

flow('becomes a repeater, and a router again', {}, async ({ page, router }) => {
  const card = await open(page, router, 'internet/mode', 'mode');
  await card.getByText('Carries the Wi-Fi of another router further.').click();
  await press(card, 'Look for networks');
  await card.getByText('networks found').waitFor();
  await card.getByRole('button', { name: /Neighbour 2/ }).click();
  await card.getByLabel('Password of that network').fill('their secret');
  const apply = async () => {
    await page.clock.install();
    await press(card, 'Apply this mode');
    await go(page);
    await hurryUntil(page, page.getByText('The router works in its new mode'));
    await go(page);
    await heading(page, 'Overview').waitFor();
  };
  await apply();
  assert.equal(router.ask({ type: 'getrouterstatus' }).operationmode, 'repeater');
  assert.equal(router.uci('system.route.operationmode'), 'repeater');
  assert.match(router.shell('cat /etc/config/internet'), /Neighbour[\s\S]*their secret|their secret[\s\S]*Neighbour/);
  await page.goto(`${router.url}#/internet/mode`);
  await card.getByText('A cable from your provider or modem').click();
  await apply();
  assert.equal(router.uci('system.route.operationmode'), 'router');
});

flow('slows down who guesses passwords', {}, async ({ page, router }) => {
  await page.goto(router.url);
  for (let attempt = 1, status = 0; status !== 429; attempt += 1) {
    assert.ok(attempt < 12, 'nobody is slowed down');
    const answer = page.waitForResponse(/zelto-cgi/);
    await logIn(page, router, `guess ${attempt}`);
    const response = await answer;
    status = response.status();
    if (status === 429) {
      assert.ok(attempt > 5);
      const seconds = response.headers()['retry-after'];
      await page.getByText(`Too many attempts. Please wait ${seconds} seconds.`).waitFor();
    } else {
      await page.getByText('User name or password is not right.').waitFor();
    }
  }
  router.shell("sed -i 's/ [0-9]*$/ 0/' /tmp/zelto-gateway/failures");
  await logIn(page, router);
  await heading(page, 'Overview').waitFor();
});

flow('goes back to the login when the session has run out', {}, async ({ page, router }) => {
  const card = await open(page, router, 'internet/more', 'hwnat');
  await card.getByLabel('Use acceleration').uncheck({ force: true });
  router.shell('for one in /tmp/zelto-gateway/session-*; do echo "-700 -700" > "$one"; done');
  await press(card, 'Save');
  await heading(page, 'Welcome home').waitFor();
  await page.locator('#login').getByText('Your session has ended').waitFor();
  assert.equal(router.uci('system.route.mtkhnat'), '1');
  await logIn(page, router);
  await page.getByText('Hardware acceleration').waitFor();
});

flow('speaks the other language', {}, async ({ page, router }) => {
  await logIn(page, router);
  await heading(page, 'Overview').waitFor();
  await press(page, '中文');
  await page.reload();
  await heading(page, '概览').waitFor();
  assert.equal(await page.getAttribute('html', 'lang'), 'zh-Hans');
  await press(page, 'English');
  await heading(page, 'Overview').waitFor();
});

flow('asks for the password again before it restarts', {}, async ({ page, router }) => {
  const card = await open(page, router, 'system/device', 'reboot');
  const restarts = () => Number(router.shell('grep -c "^reboot" /var/log/firmware.log || true'));
  await card.getByRole('button').click();
  await page.getByRole('dialog').getByRole('button').last().click();
  const dialog = page.locator('#password-dialog');
  await dialog.getByLabel('Password').fill('wrong');
  await press(dialog, 'Continue');
  await dialog.getByText('This password is not right.').waitFor();
  assert.equal(restarts(), 0);
  await dialog.getByLabel('Password').fill('admin');
  await press(dialog, 'Continue');
  await page.locator('#progress-dialog').waitFor();
  await eventually(() => restarts() === 1);
});

flow('sends any command, and shows what it did', {}, async ({ page, router }) => {
  const card = await open(page, router, 'console', 'console');
  await card.getByLabel('Search for a command').fill('sethwnat');
  await card.getByLabel('Command', { exact: true }).selectOption('sethwnat');
  await card.locator('[name=status]').fill('0');
  assert.deepEqual(JSON.parse(await card.getByLabel('Request').inputValue()), { type: 'sethwnat', status: '0' });
  await press(card, 'Send');
  await card.locator('#console-journal').getByText('set system.route.mtkhnat=0').waitFor();
  assert.deepEqual(JSON.parse(await card.locator('#console-reply').textContent()), { type: 'sethwnat', result: 0 });
  assert.equal(router.uci('system.route.mtkhnat'), '0');
});

// Every page in both appearances, on a desk and on a phone: accessible, not wider than the screen,
// and kept as pictures.
import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { flow, heading, installed, logIn, pictures, press, see } from './support.mjs';

const kAxe = readFileSync(installed.resolve('axe-core/axe.min.js'), 'utf8');
const kRoutes = [
  'overview', 'internet/connection', 'internet/lan', 'internet/mode', 'internet/diagnosis', 'internet/outside', 'internet/tunnels', 'internet/more',
  'wifi/networks', 'wifi/guests', 'wifi/radio', 'wifi/schedule', 'devices', 'mobile', 'usb', 'system/device', 'system/access', 'console',
];
const kDialogs = [
  ['devices', 'Change: phone'], ['internet/outside', 'Forward a port'], ['devices', 'Add a rule'], ['system/device', 'Restart the router'],
];
const kScreens = [['desk', { width: 1280, height: 900 }], ['phone', { width: 390, height: 844 }]];

/** Serious accessibility faults, each with where it is. */
async function faultsOf(page) {
  await page.evaluate(kAxe);
  const { violations } = await page.evaluate(() => window.axe.run({ resultTypes: ['violations'] }));
  return violations.filter(({ impact }) => ['serious', 'critical'].includes(impact))
    .flatMap(({ id, nodes }) => nodes.map(({ target, failureSummary }) => `${id} ${target} ${failureSummary.split('\n').slice(1).join(' ')}`));
}

/** Has what is to be seen shown anew on every screen: a page lays itself out when it is made. */
async function look(page, name, faults, show) {
  for (const [screen, viewport] of kScreens) {
    await page.setViewportSize(viewport);
    await page.emulateMedia({ colorScheme: 'light', reducedMotion: 'reduce' });
    await show();
    await page.waitForFunction(() => !document.querySelector('[aria-busy=true], .skeleton, .starting'));
    for (const colorScheme of ['light', 'dark']) {
      await page.emulateMedia({ colorScheme });
      const where = `${name.replace('/', '-')}-${screen}-${colorScheme}`;
      await page.screenshot({ path: join(pictures, `${where}.png`), fullPage: !name.startsWith('dialog') });
      faults.push(...(await faultsOf(page)).map((fault) => `${where}: ${fault}`));
      if (await page.getAttribute('#theme', 'aria-pressed') !== String(colorScheme === 'dark')) faults.push(`${where}: the switch of appearances`);
    }
    if (await page.evaluate(() => document.documentElement.scrollWidth > window.innerWidth)) faults.push(`${name}: wider than a ${screen}`);
  }
}

flow('looks well everywhere', { fresh: true, board: ['--modem', 'sa', '--usb', '2'] }, async ({ page, router, context }) => {
  const faults = [];
  for (const request of [
    { type: 'setmacblack', mac: '02:AA:00:00:00:30', enable: '1', devname: 'old-camera' },
    { type: 'setforwarding', enable: '1', name: 'games', ip: '192.168.10.100', list0: '25565,25565,TCP', list1: '27015-27030,27015-27030,TCP+UDP' },
    { type: 'setparentalinfo', cfg_type: 'add', alias: 'homework', devname: 'tablet', mac: '02:AA:00:00:00:03', accesstime: '16:00-20:00', day: '12345' },
  ]) assert.equal(router.ask(request).result, 0);
  const begin = async () => {
    await context.clearCookies();
    await page.goto('about:blank');
    await page.goto(router.url);
    await heading(page, 'Welcome home').waitFor();
  };
  await look(page, 'login', faults, begin);
  await look(page, 'wizard', faults, async () => {
    await begin();
    await logIn(page, router);
    await see(page, 'Let’s set up your router');
  });
  await press(page, 'Set up later');
  await heading(page, 'Overview').waitFor();
  const show = async (route) => {
    await page.goto(`${router.url}#/none`);
    await page.goto(`${router.url}#/${route}`);
  };
  for (const route of kRoutes) await look(page, route, faults, () => show(route));
  for (const [route, button] of kDialogs) {
    await look(page, `dialog-${button.toLowerCase().replace(/\W+/g, '-')}`, faults, async () => {
      await show(route);
      await press(page, button);
    });
  }
  assert.deepEqual(faults, []);
});

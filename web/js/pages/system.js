import { call, Refused } from '../api.js';
import * as check from '../check.js';
import { attempt, card, facts, formDialog, list, rowButton, settings } from '../cards.js';
import { confirm, notice } from '../dialog.js';
import { fill, h, pause } from '../dom.js';
import { days, t } from '../i18n.js';
import { followRestart, progress, routerLink, waitForReturn } from '../progress.js';
import { givenUp } from '../results.js';
import { newPassword } from './fields.js';

/* ---- Firmware ------------------------------------------------------------------------------- */

const kNoNewer = 5;
const kStages = { downing: 0, burning: 1 };
const kFailures = ['timeout', 'md5_Fail', 'down_Fail'];
const kStatusEvery = 2000;
// Longer than any sensible download; only a router that hangs gets here.
const kUpgradeLimit = 15 * 60 * 1000;

/** Shows how far an upgrade is; ends when the router answers no more, or with what went wrong. */
async function untilSilent(work) {
  const began = Date.now();
  let silent = 0;
  while (silent < 3 && Date.now() - began < kUpgradeLimit) {
    await pause(kStatusEvery, work.signal);
    try {
      const { status } = await call('getupgradestatus', {}, { seconds: 6, signal: work.signal });
      silent = 0;
      if (kFailures.includes(status)) return status;
      work.at(kStages[status] ?? 0);
    } catch (error) {
      if (givenUp(error)) throw error;
      if (!(error instanceof Refused)) silent += 1;
    }
  }
  return null;
}

/** Follows an upgrade until it failed, or the router went away to restart. */
async function followUpgrade() {
  const work = progress({
    title: t('upgrade.title'),
    steps: ['upgrade.download', 'upgrade.write', 'upgrade.restart'],
    stoppable: t('upgrade.unwatch'),
  });
  work.say(notice('info', t('upgrade.leave')));
  try {
    const failure = await untilSilent(work);
    if (failure) {
      await work.end('bad', h('p', {}, t(`upgrade.${failure}`)));
      return;
    }
    work.at(2);
    const back = await waitForReturn({ settle: 0, limit: 240, signal: work.signal });
    if (back) await work.end('good', h('p', {}, t('upgrade.done')), t('continue'));
    else await work.end('bad', h('p', {}, t('restart.lost')));
    window.location.reload();
  } catch (error) {
    if (!givenUp(error)) throw error;
    work.close();
  }
}

const kNewest = { newer: 'firmware.newer', same: 'firmware.same', unknown: 'firmware.unknown' };

const firmware = () =>
  card({
    id: 'firmware',
    title: 'firmware.title',
    load: async () => [
      await call('getversion'),
      await call('getfirmver', {}, { accept: [kNoNewer] }),
    ],
    show(body, [{ version }, first]) {
      const place = h('div', { class: 'place', 'aria-live': 'polite' });
      const line = h('p', { 'aria-live': 'polite' });
      const upgrade = h(
        'button',
        {
          type: 'button',
          class: 'button primary',
          id: 'upgrade',
          onclick: async () => {
            if (
              !(await confirm({
                title: t('upgrade.title'),
                text: t('upgrade.ask'),
                action: t('upgrade.start'),
                danger: false,
              }))
            )
              return;
            if (await attempt(upgrade, place, () => call('upgrade'))) await followUpgrade();
          },
        },
        t('upgrade.start'),
      );
      const look = h(
        'button',
        {
          type: 'button',
          class: 'button',
          // The check runs beside the answer, so the answer after it is the one that counts.
          onclick: () =>
            attempt(look, place, async () => {
              line.textContent = t('firmware.looking');
              await call('getfirmver', {}, { accept: [kNoNewer] });
              await pause(4000);
              tell(await call('getfirmver', {}, { accept: [kNoNewer] }));
            }),
        },
        t('firmware.look'),
      );
      function tell({ curver, lastver, result }) {
        const state = result === kNoNewer ? 'unknown' : lastver === curver ? 'same' : 'newer';
        line.textContent = t(kNewest[state], { version: lastver });
        upgrade.hidden = state !== 'newer';
      }
      tell(first);
      fill(
        body,
        facts([['system.version', version]]),
        line,
        place,
        h('div', { class: 'actions' }, upgrade, look),
      );
    },
  });

/* ---- Restarts ------------------------------------------------------------------------------- */

const restarts = () =>
  list({
    id: 'restarts',
    title: 'restarts.title',
    intro: 'restarts.intro',
    empty: 'restarts.empty',
    wide: true,
    load: async () => {
      const { Switch, list: rows } = await call('get_periodic_restart');
      return { Switch, rows };
    },
    toggle: {
      label: 'restarts.on',
      read: ({ Switch }) => Switch === '1',
      save: (state) => call('periodic_restart_switch', { Switch: state ? '1' : '0' }),
    },
    columns: (refresh) => [
      { label: 'restarts.time', cell: ({ timing }) => timing },
      { label: 'schedule.days', cell: ({ week }) => days(week) },
      {
        kind: 'act',
        cell: ({ timing, week }) =>
          rowButton(
            t('remove'),
            async () => {
              await call('periodic_restart_apply', { action: 'delete', timing, week });
              refresh();
            },
            'danger',
            `${timing} ${days(week)}`,
          ),
      },
    ],
    add: {
      label: 'restarts.add',
      open: () =>
        formDialog({
          title: t('restarts.add'),
          values: { timing: '04:00', week: '7' },
          fields: [
            {
              name: 'timing',
              kind: 'time',
              label: 'restarts.time',
              required: true,
              check: (text) => (/^\d\d:\d\d$/.test(text) ? null : { key: 'check.required' }),
            },
            { name: 'week', kind: 'days', label: 'schedule.days', required: true },
          ],
          save: ({ timing, week }) =>
            call('periodic_restart_apply', {
              action: 'add',
              timing,
              week: [...week].sort().join(''),
            }),
        }),
    },
  });

/** A card of one button that does something grave. */
const grave = (id, kind, work) =>
  card({
    id,
    title: `${id}.title`,
    intro: `${id}.intro`,
    show(body) {
      const place = h('div', { class: 'place', 'aria-live': 'polite' });
      const button = h(
        'button',
        {
          type: 'button',
          class: `button ${kind}`,
          onclick: async () => {
            if (
              !(await confirm({
                title: t(`${id}.title`),
                text: t(`${id}.ask`),
                action: t(`${id}.start`),
              }))
            )
              return;
            if (await attempt(button, place, () => call(id))) await work();
          },
        },
        t(`${id}.start`),
      );
      fill(body, place, h('div', { class: 'actions' }, button));
    },
  });

const reboot = () =>
  grave('reboot', '', async () => {
    const back = await followRestart({
      title: t('reboot.title'),
      steps: ['reboot.going', 'restart.waiting'],
      seconds: 60,
      settle: 12,
      lost: 'restart.lost',
      back: 'reboot.done',
    });
    if (back) window.location.reload();
  });

const restore = () =>
  grave('restore', 'danger', async () => {
    const work = progress({
      title: t('restore.title'),
      steps: ['restore.going', 'restart.waiting'],
      seconds: 120,
    });
    await pause(5000);
    work.at(1);
    const back = await waitForReturn({ settle: 20, limit: 180 });
    if (back) await work.end('good', h('p', {}, t('restore.done')), t('continue'));
    else await work.end('bad', [h('p', {}, t('restore.lost')), routerLink('http://192.168.10.1')]);
    window.location.reload();
  });

/* ---- Access --------------------------------------------------------------------------------- */

const password = () =>
  settings({
    id: 'account',
    title: 'account.title',
    intro: 'account.intro',
    always: true,
    submit: 'account.change',
    load: async () => ({ routepwd: '', again: '' }),
    fields: newPassword(),
    save: ({ routepwd }) => call('setmanpwd', { routepwd }),
  });

const pairing = () =>
  card({
    id: 'pairing',
    title: 'pairing.title',
    intro: 'pairing.intro',
    show(body) {
      const place = h('div', { class: 'place', 'aria-live': 'polite' });
      const button = h(
        'button',
        {
          type: 'button',
          class: 'button',
          onclick: () =>
            attempt(button, place, async () => {
              const info = await call('gethostinfo');
              fill(
                body,
                facts([
                  ['pairing.name', info.hostname],
                  ['mac', info.hostmac],
                  ['pairing.key', info.hostkey],
                  ['overview.wifi', info.wlanssid],
                  ['system.version', info.hostmodel],
                ]),
              );
            }),
        },
        t('pairing.show'),
      );
      fill(body, place, h('div', { class: 'actions' }, button));
    },
  });

const remote = () =>
  settings({
    id: 'remote',
    title: 'remote.title',
    intro: 'remote.intro',
    load: () => call('get_remote_manage'),
    fields: [
      { name: 'Switch', kind: 'switch', label: 'remote.on' },
      {
        name: 'remote_manage_port',
        kind: 'number',
        label: 'remote.port',
        required: true,
        check: check.port,
        when: ({ Switch }) => Switch === '1',
      },
    ],
    ask: ({ Switch }) => (Switch === '1' ? 'remote.ask' : null),
    // Storing the port opens it as well, so it is only sent when remote access is to be on.
    save: async ({ Switch, remote_manage_port: port }, before) => {
      if (Switch === '1' && port !== before.remote_manage_port)
        await call('set_remote_manage', { remote_manage_port: port });
      await call('remote_manage_switch', { Switch });
    },
  });

const managed = ({ enable }) => enable === '1';
const cwmp = () =>
  settings({
    id: 'cwmp',
    title: 'cwmp.title',
    intro: 'cwmp.intro',
    load: () => call('getcwmpcfg'),
    fields: [
      { name: 'enable', kind: 'switch', label: 'cwmp.on' },
      {
        name: 'url',
        label: 'cwmp.url',
        required: true,
        check: [check.url, check.bytesAtMost(255)],
        when: managed,
      },
      ...[
        ['username', 'account'],
        ['password', 'password.label', 'password'],
        ['manufacturer', 'cwmp.maker'],
        ['oui', 'OUI'],
        ['serial', 'cwmp.serial'],
      ].map(([name, label, kind]) => ({
        name,
        label,
        kind,
        check: check.bytesAtMost(127),
        when: managed,
      })),
    ],
    save: ({ enable, url, username, password: secret, manufacturer, oui, serial }) =>
      call('setcwmpcfg', { enable, url, username, password: secret, manufacturer, oui, serial }),
  });

const elements =
  (...makers) =>
  () =>
    makers.map((make) => make().element);

export const systemPage = {
  id: 'system',
  icon: 'gear',
  tabs: [
    {
      id: 'device',
      cards: (context) =>
        elements(
          firmware,
          reboot,
          ...(context.offered('scheduleRestart') ? [restarts] : []),
          restore,
        )(),
    },
    {
      id: 'access',
      cards: (context) =>
        elements(password, ...(context.offered('webadmin') ? [remote] : []), pairing, cwmp)(),
    },
  ],
};

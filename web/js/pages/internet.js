import { call } from '../api.js';
import * as check from '../check.js';
import { attempt, card, facts, light, settings } from '../cards.js';
import { fill, h } from '../dom.js';
import { t } from '../i18n.js';
import { followAddress } from '../progress.js';
import { diagnosis } from './diagnosis.js';
import { wanFields, wanRequest, wanValues } from './fields.js';
import { allModeFields, followMode, loadMode, modeName, modeRequest } from './mode.js';
import { dmz, forwarding, upnp } from './outside.js';
import { acceleration, clone, iptv, ipv6, resolvers, tunnel } from './uplink.js';

/* ---- Connection ------------------------------------------------------------------------------ */

const connection = () =>
  card({
    id: 'connection',
    title: 'internet.now',
    load: async () => [await call('getrouterstatus'), await call('getwaninfo')],
    show: (body, [status, info]) =>
      fill(
        body,
        h(
          'div',
          { class: 'lights' },
          light(
            status.wanstatus === 'link' ? 'good' : 'idle',
            t(status.wanstatus === 'link' ? 'cable.on' : 'cable.off'),
          ),
          light(
            status.netstatus === 'link' ? 'good' : 'bad',
            t(status.netstatus === 'link' ? 'online' : 'offline'),
          ),
        ),
        facts([
          ['mode.label', modeName(status.operationmode)],
          ['wan.mode', t(`wan.${info.connetype}`)],
          ['address', info.ip],
          ['netmask', info.wanmsk],
          ['gateway', info.gateway],
          ['dns.label', [...new Set([info.dns1, info.dns2])].filter(Boolean).join(', ')],
          ['mac', info.wan_mac],
        ]),
      ),
  });

const offer = () =>
  card({
    id: 'offer',
    title: 'offer.title',
    intro: 'offer.intro',
    show(body) {
      const place = h('div', { class: 'place', 'aria-live': 'polite' });
      const result = h('p', { 'aria-live': 'polite' });
      const button = h(
        'button',
        {
          type: 'button',
          class: 'button',
          onclick: () =>
            attempt(button, place, async () => {
              result.textContent = t('offer.looking');
              const { wanmode } = await call('getwanmode').finally(() => {
                result.textContent = '';
              });
              const known = ['dhcp', 'pppoe', 'static', 'unlink'].includes(wanmode.toLowerCase())
                ? wanmode.toLowerCase()
                : 'unknown';
              result.textContent = t(`offer.${known}`);
            }),
        },
        t('offer.look'),
      );
      fill(body, place, result, h('div', { class: 'actions' }, button));
    },
  });

const wan = () =>
  settings({
    id: 'wan',
    title: 'wan.title',
    intro: 'wan.intro',
    load: async () => wanValues(await call('getwancfg')),
    fields: wanFields(),
    ask: () => 'wan.ask',
    save: (values) => call('setwancfg', wanRequest(values)),
  });

/* ---- Local network --------------------------------------------------------------------------- */

const lastNumber = check.range(2, 254);
const lan = () =>
  settings({
    id: 'lan',
    title: 'lan.title',
    intro: 'lan.intro',
    wide: true,
    load: () => call('getlancfg'),
    fields: [
      {
        name: 'lanip',
        label: 'lan.address',
        required: true,
        check: check.address,
        inputmode: 'decimal',
        hint: 'lan.address.hint',
      },
      {
        name: 'lanmsk',
        label: 'netmask',
        required: true,
        check: check.netmask,
        inputmode: 'decimal',
      },
      {
        name: 'landhcp',
        kind: 'switch',
        on: 'on',
        off: 'off',
        label: 'lan.dhcp',
        hint: 'lan.dhcp.hint',
      },
      {
        name: 'startip',
        kind: 'number',
        label: 'lan.first',
        required: true,
        check: lastNumber,
        when: ({ landhcp }) => landhcp === 'on',
      },
      {
        name: 'endip',
        kind: 'number',
        label: 'lan.last',
        required: true,
        when: ({ landhcp }) => landhcp === 'on',
        check: [
          lastNumber,
          (text, { startip }) => (Number(text) >= Number(startip) ? null : { key: 'check.order' }),
        ],
      },
    ],
    ask: (values, before) => (values.lanip === before.lanip ? 'lan.ask' : 'lan.askMove'),
    save: ({ lanip, lanmsk, landhcp, startip, endip }) =>
      call('setlancfg', {
        lanip,
        lanmsk,
        landhcp,
        ...(landhcp === 'on' ? { startip, endip } : {}),
      }),
    after: async (values, before) => {
      if (values.lanip !== before.lanip)
        await followAddress(t('move.title'), values.lanip, before.lanip);
    },
  });

/* ---- Mode ------------------------------------------------------------------------------------ */

const mode = (context) =>
  settings({
    id: 'mode',
    title: 'mode.title',
    intro: 'mode.intro',
    wide: true,
    always: true,
    submit: 'mode.apply',
    load: loadMode,
    fields: allModeFields(),
    ask: () => 'mode.ask',
    save: (values) => call('seteasycfg', modeRequest(values)),
    after: async (values) => {
      await followMode(values);
      await context.functionsChanged();
      window.location.hash = '#/overview';
    },
  });

/* ---- Page ------------------------------------------------------------------------------------ */

const elements =
  (...makers) =>
  (context) =>
    makers.map((make) => make(context).element);

export const internetPage = {
  id: 'internet',
  icon: 'globe',
  tabs: [
    {
      id: 'connection',
      cards: (context) =>
        elements(connection, ...(context.offered('more_internet') ? [wan, offer] : []))(context),
    },
    { id: 'lan', needs: 'more_lan', cards: elements(lan) },
    { id: 'mode', cards: elements(mode) },
    { id: 'diagnosis', cards: elements(diagnosis) },
    {
      id: 'outside',
      needs: 'upnp',
      cards: (context) =>
        elements(
          ...(context.offered('forwarding') ? [forwarding] : []),
          ...(context.offered('dmz') ? [dmz] : []),
          upnp,
        )(context),
    },
    {
      id: 'tunnels',
      needs: 'vpnSet',
      cards: elements(
        () => tunnel('pptp'),
        () => tunnel('l2tp'),
      ),
    },
    {
      id: 'more',
      needs: 'advancedDNS',
      cards: (context) =>
        elements(
          resolvers,
          ...(context.offered('macClone') ? [clone] : []),
          ipv6,
          ...(context.offered('more_internet') ? [iptv] : []),
          acceleration,
        )(context),
    },
  ],
};

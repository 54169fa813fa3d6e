import { call } from '../api.js';
import * as check from '../check.js';
import { card, facts, light, meter, settings } from '../cards.js';
import { fill, h } from '../dom.js';
import { bytes, hasText, t } from '../i18n.js';

/** The operator's name; the router shortens three of them to words of its own. */
const operator = (name) => {
  if (name === 'unknow') return '';
  return hasText(`operator.${name}`) ? t(`operator.${name}`) : name;
};

const bars = (count) =>
  h(
    'span',
    { class: `bars five b${count}`, role: 'img', 'aria-label': t('mobile.bars', { n: count }) },
    [1, 2, 3, 4, 5].map(() => h('i')),
  );

const status = () =>
  card({
    id: 'modem',
    title: 'mobile.status',
    load: () => call('get4gbasicinfo', {}, { seconds: 60 }),
    show(body, { simcardstatus: sim, serviceinfo, nettype, rssi }) {
      // A modem that says nothing about the network is shown without bars: the router counts silence
      // as full strength.
      const silent = nettype === 'unknow';
      fill(
        body,
        h(
          'div',
          { class: 'signal' },
          silent
            ? light('idle', t('mobile.silent'))
            : [bars(rssi), h('strong', {}, nettype), h('span', {}, operator(serviceinfo))],
        ),
        facts([
          [
            'mobile.sim',
            light(
              sim === '1' ? 'good' : 'bad',
              t(sim === '1' ? 'mobile.sim.ready' : 'mobile.sim.not'),
            ),
          ],
          ['mobile.operator', operator(serviceinfo)],
        ]),
      );
    },
  });

const kOwn = ({ enable }) => enable === '1';
const kSigned = ({ enable, authtype }) => enable === '1' && authtype !== '0';

const apn = () =>
  settings({
    id: 'apn',
    title: 'apn.title',
    intro: 'apn.intro',
    load: () => call('getapninfo', {}, { seconds: 60 }),
    fields: ({ modlever }) => [
      ...(modlever ? [{ kind: 'note', label: t('apn.modem', { version: modlever }) }] : []),
      { name: 'enable', kind: 'switch', label: 'apn.own' },
      {
        name: 'profileName',
        label: 'apn.profile',
        check: check.bytesAtMost(63),
        when: kOwn,
        hint: 'optional',
      },
      {
        name: 'apn',
        label: 'apn.name',
        required: true,
        check: [check.bytesAtMost(63), check.word(63)],
        when: kOwn,
      },
      {
        name: 'authtype',
        kind: 'select',
        label: 'apn.auth',
        options: [
          ['0', 'apn.auth.none'],
          ['1', 'PAP'],
          ['2', 'CHAP'],
          ['3', 'apn.auth.any'],
        ],
        when: kOwn,
      },
      { name: 'username', label: 'account', check: check.bytesAtMost(63), when: kSigned },
      {
        name: 'passwd',
        kind: 'password',
        label: 'password.label',
        check: check.bytesAtMost(63),
        when: kSigned,
      },
      {
        name: 'iptype',
        kind: 'select',
        label: 'apn.ip',
        options: [
          ['0', 'IPv4'],
          ['1', 'IPv6'],
          ['2', 'IPv4 + IPv6'],
        ],
        when: kOwn,
      },
      { name: 'nettype', kind: 'select', label: 'apn.net', options: [['0', 'channel.auto']] },
    ],
    ask: () => 'apn.ask',
    // All of them every time: what is left out the router would clear.
    save: ({ authtype, apn: name, username, passwd, iptype, profileName, nettype, enable }) =>
      call('setapninfo', {
        authtype,
        apn: name,
        username,
        passwd,
        iptype,
        profileName,
        nettype,
        enable,
      }),
  });

const kMega = 1e6;
/** What was used, as a share of the allowance where there is one. */
function usage({ up, down, MonthlyPackage }) {
  const used = Number(up) + Number(down);
  const allowance = Number(MonthlyPackage) * kMega;
  return [
    {
      kind: 'note',
      label: t('data.used', { total: bytes(used), down: bytes(down), up: bytes(up) }),
      tone: 'strong',
    },
    ...(allowance > 0
      ? [
          {
            kind: 'shown',
            make: () =>
              meter(
                'data.share',
                Math.min(100, Math.round((used / allowance) * 100)),
                bytes(allowance),
              ),
          },
        ]
      : []),
  ];
}

const data = () =>
  settings({
    id: 'data',
    title: 'data.title',
    intro: 'data.intro',
    load: async () => {
      const reply = await call('get4gflowassistant');
      return {
        Switch: String(reply.Switch),
        MonthlyPackage: reply.MonthlyPackage,
        up: reply.MonUp,
        down: reply.MonDown,
      };
    },
    fields: (loaded) => [
      ...usage(loaded),
      { name: 'Switch', kind: 'switch', label: 'data.on' },
      {
        name: 'MonthlyPackage',
        kind: 'number',
        label: 'data.allowance',
        unit: 'unit.mb',
        required: true,
        check: check.range(0, 99999999),
        hint: 'data.allowance.hint',
        when: ({ Switch }) => Switch === '1',
      },
    ],
    save: ({ Switch, MonthlyPackage }) => call('set4gflowassistant', { Switch, MonthlyPackage }),
  });

export const mobilePage = {
  id: 'mobile',
  icon: 'mobile',
  cards: () => [status().element, data().element, apn().element],
};

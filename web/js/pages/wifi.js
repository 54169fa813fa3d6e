import { call } from '../api.js';
import * as check from '../check.js';
import { formDialog, list, rowButton, settings } from '../cards.js';
import { days, t } from '../i18n.js';
import { kSecurity } from './fields.js';

/* ---- Networks ------------------------------------------------------------------------------- */

const locked = (mode) => mode !== 'open';
const kBands = [
  ['2', 'band.2g'],
  ['5', 'band.5g'],
];

function bandFields([n, heading]) {
  const there = ({ dual }) => n === '2' || dual !== '1';
  const inUse = (values) => there(values) && values[`enable${n}`] === 1;
  return [
    { kind: 'heading', label: heading, when: there },
    {
      name: `enable${n}`,
      kind: 'switch',
      label: 'wifi.on',
      on: 1,
      off: 0,
      when: there,
      wide: true,
    },
    { name: `ssid${n}`, label: 'wifi.name', required: inUse, check: check.ssid, when: there },
    {
      name: `key${n}`,
      kind: 'password',
      label: 'wifi.key',
      hint: 'wifi.key.hint',
      required: true,
      check: check.passphrase,
      when: (values) => there(values) && locked(values[`mode${n}`]),
      autocomplete: 'new-password',
    },
    { name: `mode${n}`, kind: 'select', label: 'wifi.security', options: kSecurity, when: there },
    {
      name: `hide${n}`,
      kind: 'switch',
      label: 'wifi.hide',
      hint: 'wifi.hide.hint',
      on: 1,
      off: 0,
      when: there,
    },
  ];
}

async function loadNetworks() {
  const { dualSwitch, configurations } = await call('getwlancfgall');
  const values = { dual: dualSwitch };
  configurations.forEach((band, i) => {
    const [n] = kBands[i];
    Object.assign(values, {
      [`enable${n}`]: band.enable,
      [`ssid${n}`]: band.wlanssid,
      [`key${n}`]: band.wlanpsw,
      [`hide${n}`]: band.ssidhide,
      [`mode${n}`]:
        band.wlanpswmode === 'wpawpa2' && band.wlanpswencry === 'tkipaes'
          ? 'wpawpa2-tkipaes'
          : band.wlanpswmode,
    });
  });
  return values;
}

/** Stores what changed: switches first, since a name reaches only a radio that is on. */
async function saveNetworks(given, before) {
  const dual = given.dual === '1';
  const values = dual
    ? {
        ...given,
        enable5: given.enable2,
        ssid5: given.ssid2,
        mode5: given.mode2,
        key5: given.key2,
        hide5: given.hide2,
      }
    : given;
  const changed = (name) => values[name] !== before[name];
  const together = dual && before.dual !== '1';

  if (dual && (together || changed('enable2')))
    await call('setAllswitch', { radioon: values.enable2 });
  if (dual && (together || changed('hide2'))) await call('sethideall', { enable: values.hide2 });
  if (!dual) {
    for (const [n] of kBands) {
      if (changed(`enable${n}`)) await call(`set${n}gswitch`, { radioon: values[`enable${n}`] });
      if (changed(`hide${n}`)) await call(`sethide${n}`, { enable: values[`hide${n}`] });
    }
  }
  const request = {};
  const put = (name, member) => {
    if (changed(name)) request[member] = values[name];
  };
  for (const [n] of kBands) {
    const tail = n === '2' ? '' : '_5';
    put(`ssid${n}`, `wlanssid${tail}`);
    put(`mode${n}`, `wlanpswmode${tail}`);
    if (locked(values[`mode${n}`])) put(`key${n}`, `wlanpsw${tail}`);
  }
  if (changed('dual') || Object.keys(request).length > 0)
    await call('setwlancfgall', { dualSwitch: values.dual, ...request });
}

const networks = () =>
  settings({
    id: 'networks',
    title: 'wifi.title',
    intro: 'wifi.intro',
    wide: true,
    load: loadNetworks,
    fields: [
      { name: 'dual', kind: 'switch', label: 'wifi.dual', hint: 'wifi.dual.hint', wide: true },
      ...kBands.flatMap(bandFields),
    ],
    ask: (values, before) => {
      const open = kBands.some(
        ([n]) => values[`mode${n}`] === 'open' && before[`mode${n}`] !== 'open',
      );
      return open ? 'wifi.askOpen' : 'wifi.ask';
    },
    save: saveNetworks,
  });

/* ---- Guests --------------------------------------------------------------------------------- */

const kGuestBands = [
  ['2.4g', 'band.2g'],
  ['5g', 'band.5g'],
];

const guests = () =>
  settings({
    id: 'guests',
    title: 'guest.title',
    intro: 'guest.intro',
    wide: true,
    load: async () => {
      const values = {};
      const { list: entries } = await call('multi_ssid');
      entries.forEach((entry, i) => {
        // A network that was never used is open although it has a passphrase; it is offered locked.
        const fresh =
          entry.Switch !== 1 && entry.encryption === 'open' && check.passphrase(entry.pwd) === null;
        Object.assign(values, {
          [`on${i}`]: entry.Switch,
          [`ssid${i}`]: entry.ssid,
          [`key${i}`]: entry.pwd,
          [`hide${i}`]: entry.ssid_hide || '0',
          [`mode${i}`]: fresh ? 'wpawpa2' : entry.encryption,
        });
      });
      return values;
    },
    fields: kGuestBands.flatMap(([, heading], i) => {
      const used = (values) => values[`on${i}`] === 1;
      return [
        { kind: 'heading', label: heading },
        { name: `on${i}`, kind: 'switch', label: 'guest.on', on: 1, off: 0, wide: true },
        { name: `ssid${i}`, label: 'wifi.name', required: true, check: check.ssid, when: used },
        {
          name: `key${i}`,
          kind: 'password',
          label: 'wifi.key',
          hint: 'wifi.key.hint',
          required: true,
          check: check.passphrase,
          when: (values) => used(values) && locked(values[`mode${i}`]),
          autocomplete: 'new-password',
        },
        {
          name: `mode${i}`,
          kind: 'select',
          label: 'wifi.security',
          options: kSecurity,
          when: used,
        },
        { name: `hide${i}`, kind: 'switch', label: 'wifi.hide', when: used },
      ];
    }),
    save: (values) =>
      call('multi_ssid_apply', {
        list: kGuestBands.map(([type], i) => ({
          type,
          Switch: values[`on${i}`],
          ssid: values[`ssid${i}`],
          pwd: values[`key${i}`],
          ssid_hide: values[`hide${i}`],
          encryption: values[`mode${i}`],
        })),
      }),
  });

/* ---- Radios --------------------------------------------------------------------------------- */

const automatic = ['0', 'channel.auto'];
const kChannels = {
  2: [automatic, ...Array.from({ length: 13 }, (_, i) => [String(i + 1), String(i + 1)])],
  5: [
    automatic,
    ...[
      36, 40, 44, 48, 52, 56, 60, 64, 100, 104, 108, 112, 116, 120, 124, 128, 132, 136, 140, 144,
      149, 153, 157, 161, 165,
    ].map((n) => [String(n), String(n)]),
  ],
};
const kWidths = {
  2: [
    ['0', 'channel.auto'],
    ['1', '20 MHz'],
    ['2', '40 MHz'],
  ],
  5: [
    ['0', 'channel.auto'],
    ['1', '20 MHz'],
    ['2', '40 MHz'],
    ['3', '80 MHz'],
  ],
};
const kCountries = [
  'AU',
  'BR',
  'CA',
  'CN',
  'DE',
  'ES',
  'FR',
  'GB',
  'HK',
  'ID',
  'IN',
  'IT',
  'JP',
  'KR',
  'MX',
  'MY',
  'NL',
  'PH',
  'PL',
  'PT',
  'RU',
  'SA',
  'SG',
  'TH',
  'TR',
  'TW',
  'US',
  'VN',
  'ZA',
];
const kLevels = [
  ['2', 'power.full'],
  ['1', 'power.medium'],
  ['0', 'power.low'],
];
const kGenerations = {
  2: [
    ['0', 'generation.4'],
    ['1', 'generation.6'],
  ],
  5: [
    ['0', 'generation.5'],
    ['1', 'generation.6'],
  ],
};

function countries() {
  const names = new Intl.DisplayNames([document.documentElement.lang], { type: 'region' });
  return kCountries.map((code) => [code, `${names.of(code)} (${code})`]);
}

const radio = (n) =>
  settings({
    id: `radio${n}`,
    title: n === 2 ? 'band.2g' : 'band.5g',
    load: () => call(`get${n}channel`),
    fields: ({ curchannel }) => [
      {
        kind: 'note',
        label: curchannel > 0 ? t('channel.now', { n: curchannel }) : 'channel.none',
      },
      { name: 'channel', kind: 'select', label: 'channel.label', options: kChannels[n] },
      { name: 'htbw', kind: 'select', label: 'channel.width', options: kWidths[n] },
      {
        name: 'countrycode',
        kind: 'select',
        label: 'channel.country',
        options: countries(),
        verbatim: true,
        hint: 'channel.country.hint',
      },
    ],
    save: ({ channel, htbw, countrycode }) =>
      call(`set${n}channel`, { channel: Number(channel), htbw: Number(htbw), countrycode }),
  });

const power = () =>
  settings({
    id: 'power',
    title: 'power.title',
    intro: 'power.intro',
    load: async () => ({
      p2: String((await call('getpamode')).pamode ?? ''),
      p5: String((await call('getpa5mode')).pa5mode ?? ''),
    }),
    fields: [
      { name: 'p2', kind: 'select', label: 'band.2g', options: kLevels },
      { name: 'p5', kind: 'select', label: 'band.5g', options: kLevels },
    ],
    save: async ({ p2, p5 }, before) => {
      if (p2 !== before.p2) await call('setpamode', { pamode: Number(p2) });
      if (p5 !== before.p5) await call('setpa5mode', { pa5mode: Number(p5) });
    },
  });

const generation = () =>
  settings({
    id: 'generation',
    title: 'generation.title',
    intro: 'generation.intro',
    load: async () => {
      const { twoWifiMode, fiveWifiMode } = await call('getWifiMode');
      return { two: String(twoWifiMode ?? ''), five: String(fiveWifiMode ?? '') };
    },
    fields: [
      { name: 'two', kind: 'select', label: 'band.2g', options: kGenerations[2], required: true },
      { name: 'five', kind: 'select', label: 'band.5g', options: kGenerations[5], required: true },
    ],
    ask: () => 'wifi.ask',
    save: ({ two, five }) =>
      call('setWifiMode', { twoWifiMode: Number(two), fiveWifiMode: Number(five) }),
  });

/* ---- Schedule ------------------------------------------------------------------------------- */

const schedule = () =>
  list({
    id: 'schedule',
    title: 'schedule.title',
    intro: 'schedule.intro',
    empty: 'schedule.empty',
    wide: true,
    load: async () => {
      const { Switch, list: rows } = await call('wifi_schedule');
      return { Switch, rows };
    },
    toggle: {
      label: 'schedule.on',
      read: ({ Switch }) => Switch === '1',
      save: (state) => call('wifi_schedule_switch', { Switch: state ? '1' : '0' }),
    },
    columns: (refresh) => [
      { label: 'schedule.off', cell: ({ period }) => period.replace('-', ' – ') },
      { label: 'schedule.days', cell: ({ week }) => days(week) },
      {
        kind: 'act',
        cell: ({ period, week }) =>
          rowButton(
            t('remove'),
            async () => {
              await call('wifi_schedule_apply', { action: 'delete', period, week });
              refresh();
            },
            'danger',
            `${period} ${days(week)}`,
          ),
      },
    ],
    add: {
      label: 'schedule.add',
      open: () =>
        formDialog({
          title: t('schedule.add'),
          values: { period: '22:00-06:00', week: '1234567' },
          fields: [
            { name: 'period', kind: 'period', label: 'schedule.off', required: true },
            { name: 'week', kind: 'days', label: 'schedule.days', required: true },
          ],
          save: ({ period, week }) =>
            call('wifi_schedule_apply', { action: 'add', period, week: [...week].sort().join('') }),
        }),
    },
  });

const elements =
  (...makers) =>
  () =>
    makers.map((make) => make().element);

export const wifiPage = {
  id: 'wifi',
  icon: 'wifi',
  tabs: [
    { id: 'networks', cards: elements(networks) },
    { id: 'guests', needs: 'visitorNet', cards: elements(guests) },
    {
      id: 'radio',
      needs: 'channelSet',
      cards: elements(
        () => radio(2),
        () => radio(5),
        power,
        generation,
      ),
    },
    { id: 'schedule', needs: 'wifiTiming', cards: elements(schedule) },
  ],
};

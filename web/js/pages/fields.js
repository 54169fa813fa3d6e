// Fields that more than one form has, and what the router wants to be sent for them.

import * as check from '../check.js';

export const kWanModes = [
  ['dhcp', 'wan.dhcp'],
  ['pppoe', 'wan.pppoe'],
  ['static', 'wan.static'],
];

const kPlainMtu = '1500';
const kPppoeMtu = '1492';

// The largest packet of PPPoE is 8 bytes smaller than the line's.
const mtuOf = ({ wanmode, mtu }) => {
  if (wanmode === 'pppoe') return mtu === kPlainMtu ? kPppoeMtu : mtu;
  return mtu === kPppoeMtu ? kPlainMtu : mtu;
};

const mtuCheck = (text, { wanmode }) => check.range(576, wanmode === 'pppoe' ? 1492 : 1500)(text);

export function wanFields(also = () => true) {
  const is = (mode) => (values) => also(values) && values.wanmode === mode;
  return [
    {
      name: 'wanmode',
      kind: 'select',
      label: 'wan.mode',
      options: kWanModes,
      required: true,
      when: also,
      hint: 'wan.mode.hint',
      changed: (values) => ({ mtu: mtuOf(values) }),
    },
    {
      name: 'pppoename',
      label: 'wan.user',
      required: true,
      check: check.bytesAtMost(127),
      when: is('pppoe'),
      hint: 'wan.user.hint',
    },
    {
      name: 'pppoepsw',
      kind: 'password',
      label: 'wan.password',
      required: true,
      check: check.bytesAtMost(127),
      when: is('pppoe'),
    },
    {
      name: 'server_name',
      label: 'wan.service',
      check: check.bytesAtMost(127),
      when: is('pppoe'),
      hint: 'optional',
    },
    {
      name: 'wanip',
      label: 'address',
      required: true,
      check: check.address,
      when: is('static'),
      inputmode: 'decimal',
    },
    {
      name: 'wanmsk',
      label: 'netmask',
      required: true,
      check: check.netmask,
      when: is('static'),
      inputmode: 'decimal',
    },
    {
      name: 'wangw',
      label: 'gateway',
      required: true,
      when: is('static'),
      inputmode: 'decimal',
      check: [
        check.address,
        (text, values) =>
          check.netmask(values.wanmsk ?? '') || check.sameNetwork(text, values.wanip, values.wanmsk)
            ? null
            : { key: 'check.gateway' },
      ],
    },
    {
      name: 'dns1',
      label: 'dns.first',
      required: true,
      check: check.address,
      when: is('static'),
      inputmode: 'decimal',
    },
    {
      name: 'dns2',
      label: 'dns.second',
      check: check.address,
      when: is('static'),
      inputmode: 'decimal',
      hint: 'optional',
    },
    {
      name: 'mtu',
      kind: 'number',
      label: 'mtu',
      unit: 'unit.bytes',
      required: true,
      check: mtuCheck,
      when: (values) => also(values) && ['dhcp', 'pppoe', 'static'].includes(values.wanmode),
    },
  ];
}

const kSent = {
  dhcp: [],
  pppoe: ['pppoename', 'pppoepsw', 'server_name'],
  static: ['wanip', 'wanmsk', 'wangw', 'dns1', 'dns2'],
};

/** The WAN members of a request. The router adds 8 to every MTU that it is sent. */
export function wanRequest(values) {
  const request = { wanmode: values.wanmode };
  for (const name of kSent[values.wanmode] ?? []) request[name] = values[name] ?? '';
  request.mtu = values.wanmode === 'pppoe' ? values.mtu : String(Number(values.mtu) - 8);
  return request;
}

/** What a WAN form begins with, by the reply of "getwancfg". */
export const wanValues = (reply) => ({
  wanip: '',
  wanmsk: '',
  wangw: '',
  dns1: '',
  dns2: '',
  pppoename: '',
  pppoepsw: '',
  server_name: '',
  ...reply,
  wanmode: reply.wanmode || 'dhcp',
  mtu: reply.mtu || kPlainMtu,
});

export const kSecurity = [
  ['wpa2wpa3', 'security.wpa2wpa3'],
  ['wpa3', 'security.wpa3'],
  ['wpa2', 'security.wpa2'],
  ['wpawpa2', 'security.wpawpa2'],
  ['wpawpa2-tkipaes', 'security.tkip'],
  ['open', 'security.open'],
];

/** Names and passphrases of both bands, as quick setup wants them. */
export const nameFields = () => [
  { name: 'same', kind: 'switch', label: 'wifi.same', hint: 'wifi.same.hint', wide: true },
  { name: 'wlan2ssid', label: 'wifi.name2', required: true, check: check.ssid },
  {
    name: 'wlan2psw',
    kind: 'password',
    label: 'wifi.key2',
    check: check.passphrase,
    required: true,
    hint: 'wifi.key.hint',
    autocomplete: 'new-password',
  },
  {
    name: 'wlan5ssid',
    label: 'wifi.name5',
    required: true,
    check: check.ssid,
    when: ({ same }) => same !== '1',
  },
  {
    name: 'wlan5psw',
    kind: 'password',
    label: 'wifi.key5',
    check: check.passphrase,
    required: true,
    when: ({ same }) => same !== '1',
    autocomplete: 'new-password',
  },
];

export function nameRequest(values) {
  const { wlan2ssid, wlan2psw } = values;
  const same = values.same === '1';
  return {
    wlan2ssid,
    wlan2psw,
    wlan5ssid: same ? wlan2ssid : values.wlan5ssid,
    wlan5psw: same ? wlan2psw : values.wlan5psw,
  };
}

/** What the names' form begins with, by the reply of "getwlancfgall". */
export function nameValues({ configurations: [two, five] }) {
  const same = two.wlanssid === five.wlanssid && two.wlanpsw === five.wlanpsw;
  return {
    same: same ? '1' : '0',
    wlan2ssid: two.wlanssid,
    wlan2psw: two.wlanpsw,
    wlan5ssid: five.wlanssid,
    wlan5psw: five.wlanpsw,
  };
}

/** A new administrator's password, other than the `old` one if that is known. */
export const newPassword = (old) => [
  {
    name: 'routepwd',
    kind: 'password',
    label: 'wizard.password',
    required: true,
    autocomplete: 'new-password',
    hint: 'wizard.password.hint',
    check: [
      check.bytesAtMost(63),
      (text) => (text === old ? { key: 'check.same' } : null),
      (text) => ([...text].length < 8 ? { key: 'check.short', values: { n: 8 } } : null),
    ],
  },
  {
    name: 'again',
    kind: 'password',
    label: 'wizard.again',
    required: true,
    autocomplete: 'new-password',
    check: (text, values) => (text === values.routepwd ? null : { key: 'check.again' }),
  },
];

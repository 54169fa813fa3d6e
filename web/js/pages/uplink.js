// How the Internet side works beyond its kind of connection: tunnels, name servers, the address
// that it shows, IPv6, television, acceleration.

import { call } from '../api.js';
import { settings } from '../cards.js';
import * as check from '../check.js';
import { t } from '../i18n.js';

const on = (value) => (values) =>
  values.status === value || values.Switch === value || values.enable === value;

export const tunnel = (name) =>
  settings({
    id: name,
    title: `${name}.title`,
    intro: `${name}.intro`,
    load: async () => ({
      staticip: '',
      staticmask: '',
      staticgateway: '',
      ...(await call(`get${name}info`)),
    }),
    fields: [
      { name: 'Switch', kind: 'switch', on: 'on', off: 'off', label: 'tunnel.on' },
      { name: 'domain', label: 'tunnel.server', required: true, check: check.host, when: on('on') },
      {
        name: 'username',
        label: 'account',
        required: true,
        check: check.bytesAtMost(127),
        when: on('on'),
      },
      {
        name: 'password',
        kind: 'password',
        label: 'password.label',
        required: true,
        check: check.bytesAtMost(127),
        when: on('on'),
      },
      {
        name: 'MTU',
        kind: 'number',
        label: 'mtu',
        unit: 'unit.bytes',
        required: true,
        check: check.range(576, 1460),
        when: on('on'),
      },
      {
        name: 'netmode',
        kind: 'select',
        label: 'tunnel.below',
        options: [
          ['DHCP', 'wan.dhcp'],
          ['Static', 'wan.static'],
        ],
        when: on('on'),
      },
      ...[
        ['staticip', 'address', check.address],
        ['staticmask', 'netmask', check.netmask],
        ['staticgateway', 'gateway', check.address],
      ].map(([member, label, rule]) => ({
        name: member,
        label,
        required: true,
        check: rule,
        inputmode: 'decimal',
        when: (values) => values.Switch === 'on' && values.netmode === 'Static',
      })),
    ],
    ask: ({ Switch }) => (Switch === 'on' ? 'tunnel.ask' : null),
    save: ({
      Switch,
      netmode,
      staticip,
      staticmask,
      staticgateway,
      domain,
      username,
      password,
      MTU,
    }) =>
      call(
        `set${name}info`,
        Switch === 'on'
          ? {
              Switch,
              domain,
              username,
              password,
              MTU,
              netmode,
              ...(netmode === 'Static' ? { staticip, staticmask, staticgateway } : {}),
            }
          : { Switch: 'off' },
      ),
  });

export const resolvers = () =>
  settings({
    id: 'dns',
    title: 'dns.title',
    intro: 'dns.intro',
    load: () => call('getdnsinfo'),
    fields: [
      { name: 'status', kind: 'switch', label: 'dns.own' },
      {
        name: 'dns1',
        label: 'dns.first',
        required: true,
        check: check.address,
        inputmode: 'decimal',
        when: on('1'),
      },
      {
        name: 'dns2',
        label: 'dns.second',
        check: check.address,
        inputmode: 'decimal',
        when: on('1'),
        hint: 'optional',
      },
    ],
    save: ({ status, dns1, dns2 }) =>
      call('setdnsinfo', status === '1' ? { status, dns1, dns2 } : { status }),
  });

export const clone = () =>
  settings({
    id: 'clone',
    title: 'clone.title',
    intro: 'clone.intro',
    load: async () => {
      const { self, clonemac, list: devices = [] } = await call('getsubmaclist');
      return { mac: clonemac, from: '', self, devices };
    },
    fields: ({ self, devices }) => [
      {
        name: 'from',
        kind: 'select',
        label: 'clone.from',
        verbatim: false,
        options: [
          ['', 'clone.typed'],
          ...(self ? [[self, t('clone.self', { mac: self })]] : []),
          ...devices.map(({ mac }) => [mac, mac]),
        ],
        changed: ({ from, mac }) => ({ mac: from || mac }),
      },
      { name: 'mac', label: 'clone.shown', required: true, check: check.mac },
    ],
    save: ({ mac }) => call('setclonemac', { mac: mac.toUpperCase() }),
  });

export const ipv6 = () =>
  settings({
    id: 'ipv6',
    title: 'ipv6.title',
    intro: 'ipv6.intro',
    load: () => call('getipv6info'),
    fields: ({ globaladdr, localaddr }) => [
      {
        kind: 'note',
        label: globaladdr
          ? t('ipv6.has', { address: globaladdr })
          : localaddr
            ? t('ipv6.local', { address: localaddr })
            : 'ipv6.none',
      },
      { name: 'ipv6_passthrough', kind: 'switch', label: 'ipv6.pass', hint: 'ipv6.pass.hint' },
      {
        name: 'lantype',
        kind: 'select',
        label: 'ipv6.lan',
        options: [
          ['0', 'ipv6.slaac'],
          ['1', 'ipv6.both'],
          ['2', 'ipv6.dhcp'],
        ],
      },
    ],
    save: ({ ipv6_passthrough, lantype }) => call('setipv6info', { ipv6_passthrough, lantype }),
  });

const kPorts = ['lan1', 'lan2', 'lan3', 'lan4'];
export const iptv = () =>
  settings({
    id: 'iptv',
    title: 'iptv.title',
    intro: 'iptv.intro',
    load: () => call('getiptvinfo'),
    fields: [
      { name: 'enable', kind: 'switch', label: 'iptv.on', on: 1, off: 0 },
      {
        name: 'tag',
        kind: 'number',
        label: 'iptv.tag',
        required: true,
        check: check.range(1, 4094),
        when: on(1),
        hint: 'iptv.tag.hint',
      },
      ...kPorts.map((name, i) => ({
        name,
        kind: 'select',
        label: t('port.lan', { n: i + 1 }),
        options: [
          ['0', 'iptv.internet'],
          ['1', 'iptv.tv'],
        ],
        when: on(1),
      })),
    ],
    ask: () => 'iptv.ask',
    save: (values) =>
      call(
        'setiptvinfo',
        values.enable === 1
          ? {
              enable: 1,
              tag: String(values.tag),
              ...Object.fromEntries(kPorts.map((name) => [name, Number(values[name])])),
            }
          : { enable: 0 },
      ),
  });

export const acceleration = () =>
  settings({
    id: 'hwnat',
    title: 'hwnat.title',
    intro: 'hwnat.intro',
    load: () => call('gethwnat'),
    fields: [{ name: 'status', kind: 'switch', label: 'hwnat.on' }],
    save: ({ status }) => call('sethwnat', { status }),
  });

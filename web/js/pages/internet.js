import { call } from '../api.js';
import * as check from '../check.js';
import { attempt, card, facts, formDialog, light, list, rowButton, settings } from '../cards.js';
import { confirm } from '../dialog.js';
import { fill, h } from '../dom.js';
import { t } from '../i18n.js';
import { icon } from '../icons.js';
import { followAddress } from '../progress.js';
import { wanFields, wanRequest, wanValues } from './fields.js';
import { allModeFields, followMode, loadMode, modeName, modeRequest } from './mode.js';

const on = (value) => (values) => values.status === value || values.Switch === value || values.enable === value;

/* ---- Connection ----------------------------------------------------------------------------- */

const connection = () => card({
  id: 'connection', title: 'internet.now',
  load: async () => [await call('getrouterstatus'), await call('getwaninfo')],
  show: (body, [status, info]) => fill(body,
    h('div', { class: 'lights' },
      light(status.wanstatus === 'link' ? 'good' : 'idle', t(status.wanstatus === 'link' ? 'cable.on' : 'cable.off')),
      light(status.netstatus === 'link' ? 'good' : 'bad', t(status.netstatus === 'link' ? 'online' : 'offline'))),
    facts([
      ['mode.label', modeName(status.operationmode)], ['wan.mode', t(`wan.${info.connetype}`)], ['address', info.ip], ['netmask', info.wanmsk],
      ['gateway', info.gateway], ['dns.label', [...new Set([info.dns1, info.dns2])].filter(Boolean).join(', ')], ['mac', info.wan_mac],
    ])),
});

const offer = () => card({
  id: 'offer', title: 'offer.title', intro: 'offer.intro',
  show(body) {
    const place = h('div', { class: 'place', 'aria-live': 'polite' });
    const result = h('p', { 'aria-live': 'polite' });
    const button = h('button', {
      type: 'button', class: 'button',
      onclick: () => attempt(button, place, async () => {
        result.textContent = t('offer.looking');
        const { wanmode } = await call('getwanmode').finally(() => { result.textContent = ''; });
        const known = ['dhcp', 'pppoe', 'static', 'unlink'].includes(wanmode.toLowerCase()) ? wanmode.toLowerCase() : 'unknown';
        result.textContent = t(`offer.${known}`);
      }),
    }, t('offer.look'));
    fill(body, place, result, h('div', { class: 'actions' }, button));
  },
});

const wan = () => settings({
  id: 'wan', title: 'wan.title', intro: 'wan.intro',
  load: async () => wanValues(await call('getwancfg')),
  fields: wanFields(),
  ask: () => 'wan.ask',
  save: (values) => call('setwancfg', wanRequest(values)),
});

/* ---- Local network -------------------------------------------------------------------------- */

const lastNumber = check.range(2, 254);
const lan = () => settings({
  id: 'lan', title: 'lan.title', intro: 'lan.intro', wide: true,
  load: () => call('getlancfg'),
  fields: [
    { name: 'lanip', label: 'lan.address', required: true, check: check.address, inputmode: 'decimal', hint: 'lan.address.hint' },
    { name: 'lanmsk', label: 'netmask', required: true, check: check.netmask, inputmode: 'decimal' },
    { name: 'landhcp', kind: 'switch', on: 'on', off: 'off', label: 'lan.dhcp', hint: 'lan.dhcp.hint' },
    { name: 'startip', kind: 'number', label: 'lan.first', required: true, check: lastNumber, when: ({ landhcp }) => landhcp === 'on' },
    { name: 'endip', kind: 'number', label: 'lan.last', required: true, when: ({ landhcp }) => landhcp === 'on',
      check: [lastNumber, (text, { startip }) => (Number(text) >= Number(startip) ? null : { key: 'check.order' })] },
  ],
  ask: (values, before) => (values.lanip === before.lanip ? 'lan.ask' : 'lan.askMove'),
  save: ({ lanip, lanmsk, landhcp, startip, endip }) =>
    call('setlancfg', { lanip, lanmsk, landhcp, ...(landhcp === 'on' ? { startip, endip } : {}) }),
  after: async (values, before) => {
    if (values.lanip !== before.lanip) await followAddress(t('move.title'), values.lanip, before.lanip);
  },
});

/* ---- Mode ----------------------------------------------------------------------------------- */

const mode = (context) => settings({
  id: 'mode', title: 'mode.title', intro: 'mode.intro', wide: true, always: true, submit: 'mode.apply',
  load: loadMode, fields: allModeFields(), ask: () => 'mode.ask',
  save: (values) => call('seteasycfg', modeRequest(values)),
  after: async (values) => {
    await followMode(values);
    await context.functionsChanged();
    window.location.hash = '#/overview';
  },
});

/* ---- Tunnels -------------------------------------------------------------------------------- */

const tunnel = (name) => settings({
  id: name, title: `${name}.title`, intro: `${name}.intro`,
  load: async () => ({ staticip: '', staticmask: '', staticgateway: '', ...(await call(`get${name}info`)) }),
  fields: [
    { name: 'Switch', kind: 'switch', on: 'on', off: 'off', label: 'tunnel.on' },
    { name: 'domain', label: 'tunnel.server', required: true, check: check.host, when: on('on') },
    { name: 'username', label: 'account', required: true, check: check.bytesAtMost(127), when: on('on') },
    { name: 'password', kind: 'password', label: 'password.label', required: true, check: check.bytesAtMost(127), when: on('on') },
    { name: 'MTU', kind: 'number', label: 'mtu', unit: 'unit.bytes', required: true, check: check.range(576, 1460), when: on('on') },
    { name: 'netmode', kind: 'select', label: 'tunnel.below', options: [['DHCP', 'wan.dhcp'], ['Static', 'wan.static']], when: on('on') },
    ...[['staticip', 'address', check.address], ['staticmask', 'netmask', check.netmask], ['staticgateway', 'gateway', check.address]].map(([member, label, rule]) =>
      ({ name: member, label, required: true, check: rule, inputmode: 'decimal', when: (values) => values.Switch === 'on' && values.netmode === 'Static' })),
  ],
  ask: ({ Switch }) => (Switch === 'on' ? 'tunnel.ask' : null),
  save: ({ Switch, netmode, staticip, staticmask, staticgateway, domain, username, password, MTU }) => call(`set${name}info`, Switch === 'on'
    ? { Switch, domain, username, password, MTU, netmode, ...(netmode === 'Static' ? { staticip, staticmask, staticgateway } : {}) }
    : { Switch: 'off' }),
});

/* ---- Names, addresses, IPv6, IPTV, acceleration --------------------------------------------- */

const resolvers = () => settings({
  id: 'dns', title: 'dns.title', intro: 'dns.intro',
  load: () => call('getdnsinfo'),
  fields: [
    { name: 'status', kind: 'switch', label: 'dns.own' },
    { name: 'dns1', label: 'dns.first', required: true, check: check.address, inputmode: 'decimal', when: on('1') },
    { name: 'dns2', label: 'dns.second', check: check.address, inputmode: 'decimal', when: on('1'), hint: 'optional' },
  ],
  save: ({ status, dns1, dns2 }) => call('setdnsinfo', status === '1' ? { status, dns1, dns2 } : { status }),
});

const clone = () => settings({
  id: 'clone', title: 'clone.title', intro: 'clone.intro',
  load: async () => {
    const { self, clonemac, list: devices = [] } = await call('getsubmaclist');
    return { mac: clonemac, from: '', self, devices };
  },
  fields: ({ self, devices }) => [
    { name: 'from', kind: 'select', label: 'clone.from', verbatim: false,
      options: [['', 'clone.typed'], ...(self ? [[self, t('clone.self', { mac: self })]] : []), ...devices.map(({ mac }) => [mac, mac])],
      changed: ({ from, mac }) => ({ mac: from || mac }) },
    { name: 'mac', label: 'clone.shown', required: true, check: check.mac },
  ],
  save: ({ mac }) => call('setclonemac', { mac: mac.toUpperCase() }),
});

const ipv6 = () => settings({
  id: 'ipv6', title: 'ipv6.title', intro: 'ipv6.intro',
  load: () => call('getipv6info'),
  fields: ({ globaladdr, localaddr }) => [
    { kind: 'note', label: globaladdr ? t('ipv6.has', { address: globaladdr }) : localaddr ? t('ipv6.local', { address: localaddr }) : 'ipv6.none' },
    { name: 'ipv6_passthrough', kind: 'switch', label: 'ipv6.pass', hint: 'ipv6.pass.hint' },
    { name: 'lantype', kind: 'select', label: 'ipv6.lan', options: [['0', 'ipv6.slaac'], ['1', 'ipv6.both'], ['2', 'ipv6.dhcp']] },
  ],
  save: ({ ipv6_passthrough, lantype }) => call('setipv6info', { ipv6_passthrough, lantype }),
});

const kPorts = ['lan1', 'lan2', 'lan3', 'lan4'];
const iptv = () => settings({
  id: 'iptv', title: 'iptv.title', intro: 'iptv.intro',
  load: () => call('getiptvinfo'),
  fields: [
    { name: 'enable', kind: 'switch', label: 'iptv.on', on: 1, off: 0 },
    { name: 'tag', kind: 'number', label: 'iptv.tag', required: true, check: check.range(1, 4094), when: on(1), hint: 'iptv.tag.hint' },
    ...kPorts.map((name, i) => ({ name, kind: 'select', label: t('port.lan', { n: i + 1 }), options: [['0', 'iptv.internet'], ['1', 'iptv.tv']], when: on(1) })),
  ],
  ask: () => 'iptv.ask',
  save: (values) => call('setiptvinfo', values.enable === 1
    ? { enable: 1, tag: String(values.tag), ...Object.fromEntries(kPorts.map((name) => [name, Number(values[name])])) }
    : { enable: 0 }),
});

const acceleration = () => settings({
  id: 'hwnat', title: 'hwnat.title', intro: 'hwnat.intro',
  load: () => call('gethwnat'),
  fields: [{ name: 'status', kind: 'switch', label: 'hwnat.on' }],
  save: ({ status }) => call('sethwnat', { status }),
});

/* ---- From outside --------------------------------------------------------------------------- */

const kMappings = 8;
const kProtocols = [['TCP', 'TCP'], ['UDP', 'UDP'], ['TCP+UDP', 'TCP + UDP']];
const protocolOf = (word) => (['TCP', 'UDP'].includes(word.toUpperCase()) ? word.toUpperCase() : 'TCP+UDP');

async function editRule(rule) {
  // The first mapping has the form's own fields; further ones stand behind it, one a line.
  const mappings = rule?.sublist ?? [];
  const values = { name: rule?.name ?? '', ip: rule?.ip ?? '' };
  const fields = [
    { name: 'name', label: 'forward.name', required: true, check: check.bytesAtMost(60) },
    { name: 'ip', label: 'forward.host', required: true, check: (text) => (text === 'all' ? null : check.address(text)), hint: 'forward.host.hint' },
  ];
  for (let i = 0; i < Math.max(mappings.length, 1) + 1 && i < kMappings; i += 1) {
    const mapping = mappings[i];
    Object.assign(values, { [`wan${i}`]: mapping?.wanport ?? '', [`lan${i}`]: mapping?.lanport ?? '', [`proto${i}`]: mapping ? protocolOf(mapping.protocol) : 'TCP' });
    const used = (now) => now[`wan${i}`] !== '' || now[`lan${i}`] !== '';
    fields.push(
      { kind: 'heading', label: t('forward.mapping', { n: i + 1 }) },
      { name: `wan${i}`, label: 'forward.outside', required: i === 0 || used, check: check.ports, hint: i === 0 ? 'forward.outside.hint' : null },
      { name: `lan${i}`, label: 'forward.inside', required: i === 0 || used, check: check.ports },
      { name: `proto${i}`, kind: 'select', label: 'forward.protocol', options: kProtocols, verbatim: true });
  }
  return formDialog({
    title: t(rule ? 'forward.edit' : 'forward.add'), fields, values,
    save: (now) => {
      const used = [...Array(kMappings).keys()].filter((i) => now[`wan${i}`]);
      const lists = Object.fromEntries(used.map((i, n) => [`list${n}`, `${now[`wan${i}`]},${now[`lan${i}`]},${now[`proto${i}`]}`]));
      return call('setforwarding', { enable: '1', name: now.name, ...(rule ? { name_old: rule.name } : {}), ip: now.ip, ...lists });
    },
  });
}

async function removeRule({ name }) {
  if (!(await confirm({ title: t('forward.remove'), text: t('forward.remove.ask', { name }), action: t('remove') }))) return false;
  await call('setforwarding', { enable: '0', name });
  return true;
}

const forwarding = () => list({
  id: 'forwarding', title: 'forward.title', intro: 'forward.intro', empty: 'forward.empty', wide: true,
  load: async () => ({ rows: (await call('getforwarding')).list }),
  columns: (refresh) => [
    { label: 'forward.name', cell: ({ name }) => name },
    { label: 'forward.host', cell: ({ ip }) => (ip === 'all' ? t('forward.all') : ip) },
    { label: 'forward.ports', cell: ({ sublist }) => sublist.map((one) => h('div', {}, `${one.wanport} → ${one.lanport} ${protocolOf(one.protocol)}`)) },
    { kind: 'act', cell: (rule) => h('div', { class: 'row-actions' },
      rowButton(t('edit'), async () => (await editRule(rule)) && refresh(), '', rule.name),
      rowButton(t('remove'), async () => (await removeRule(rule)) && refresh(), 'danger', rule.name)) },
  ],
  add: { label: 'forward.add', open: () => editRule(null) },
});

const dmz = () => settings({
  id: 'dmz', title: 'dmz.title', intro: 'dmz.intro', wide: true,
  load: () => call('getdmz'),
  fields: [
    { name: 'enable', kind: 'switch', label: 'dmz.on' },
    { name: 'ip', label: 'dmz.host', required: true, check: check.address, inputmode: 'decimal', when: on('1') },
  ],
  ask: ({ enable }) => (enable === '1' ? 'dmz.ask' : null),
  save: ({ enable, ip }) => call('setdmz', enable === '1' ? { enable, ip } : { enable }),
});

const upnp = () => list({
  id: 'upnp', title: 'upnp.title', intro: 'upnp.intro', empty: 'upnp.empty', wide: true,
  load: async () => {
    const { enable, list: rows } = await call('get_upnp_info');
    return { enable, rows };
  },
  toggle: { label: 'upnp.on', read: ({ enable }) => enable === 1, save: (state) => call('set_upnp_info', { enable: state ? 1 : 0 }) },
  columns: () => [
    { label: 'upnp.device', cell: ({ ip }) => ip },
    { label: 'forward.outside', cell: ({ externalPort }) => externalPort },
    { label: 'forward.inside', cell: ({ internalPort }) => internalPort },
    { label: 'forward.protocol', cell: ({ protocol }) => protocol },
  ],
});

/* ---- Diagnosis ------------------------------------------------------------------------------ */

const kChecks = ['wanstatus', 'wanmodeequal', 'ipstatus', 'dnstatus', 'netstatus'];

/** The chain up to the first check that failed; what lies behind it was not looked at. */
function lightChain(reply, mobile) {
  let failed = false;
  return h('ol', { class: 'light-chain' }, kChecks
    .filter((name) => !mobile || !['wanstatus', 'wanmodeequal'].includes(name))
    .map((name) => {
      const value = reply[name];
      const fine = value === '1' || reply.netstatus === '1';
      const kind = fine ? 'good' : failed ? 'idle' : 'bad';
      const known = value !== undefined || fine || !failed;
      if (!fine) failed = true;
      const key = kind === 'bad' && name === 'wanmodeequal' && ['2', '3', '4'].includes(value) ? `diagnosis.${name}.${value}` : `diagnosis.${name}.${kind}`;
      return h('li', { class: kind }, h('i', { 'aria-hidden': 'true' }, icon(kind === 'good' ? 'check' : kind === 'bad' ? 'close' : 'more')),
        h('div', {}, h('strong', {}, t(`diagnosis.${name}`)), h('p', {}, t(kind === 'idle' || !known ? 'diagnosis.skipped' : key))));
    }));
}

const diagnosis = () => card({
  id: 'diagnosis', title: 'diagnosis.title', intro: 'diagnosis.intro', wide: true,
  show(body) {
    const place = h('div', { class: 'place', 'aria-live': 'polite' });
    const result = h('div', { 'aria-live': 'polite' });
    const button = h('button', {
      type: 'button', class: 'button primary',
      onclick: () => attempt(button, place, async () => {
        fill(result, h('p', { class: 'empty' }, t('diagnosis.running')));
        try {
          const { operationmode } = await call('getrouterstatus');
          const reply = await call('getnetworkdiagnosisinfo');
          fill(result, lightChain(reply, !['router', 'mobilenetmode'].includes(operationmode)));
        } catch (error) {
          fill(result);
          throw error;
        }
      }),
    }, t('diagnosis.start'));
    fill(body, result, place, h('div', { class: 'actions' }, button));
  },
});

const elements = (...makers) => (context) => makers.map((make) => make(context).element);

export const internetPage = {
  id: 'internet', icon: 'globe',
  tabs: [
    { id: 'connection', cards: (context) => elements(connection, ...(context.offered('more_internet') ? [wan, offer] : []))(context) },
    { id: 'lan', needs: 'more_lan', cards: elements(lan) },
    { id: 'mode', cards: elements(mode) },
    { id: 'diagnosis', cards: elements(diagnosis) },
    { id: 'outside', needs: 'upnp', cards: (context) => elements(...(context.offered('forwarding') ? [forwarding] : []), ...(context.offered('dmz') ? [dmz] : []), upnp)(context) },
    { id: 'tunnels', needs: 'vpnSet', cards: elements(() => tunnel('pptp'), () => tunnel('l2tp')) },
    { id: 'more', needs: 'advancedDNS', cards: (context) => elements(resolvers, ...(context.offered('macClone') ? [clone] : []), ipv6, ...(context.offered('more_internet') ? [iptv] : []), acceleration)(context) },
  ],
};

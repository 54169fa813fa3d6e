import { call } from '../api.js';
import * as check from '../check.js';
import { formDialog, list, rowButton } from '../cards.js';
import { confirm, openDialog, toast } from '../dialog.js';
import { h } from '../dom.js';
import { bytes, days, duration, speed, t } from '../i18n.js';
import { icon } from '../icons.js';

const kMedia = {
  0: ['plug', 'devices.cable'],
  1: ['wifi', 'devices.2g'],
  2: ['wifi', 'devices.5g'],
};
const kBlocked = 32;

const nameOf = ({ name, mac }) => (name && name !== 'unknow' ? name : mac);

/** Does it, says so, and shows the list anew. */
async function act(work, refresh) {
  await work();
  toast(t('saved'));
  refresh();
}

const rename = (device) =>
  formDialog({
    title: t('devices.rename'),
    values: { alias: nameOf(device) === device.mac ? '' : device.name },
    fields: [
      {
        name: 'alias',
        label: 'devices.alias',
        required: true,
        check: check.bytesAtMost(60),
        hint: 'devices.alias.hint',
      },
    ],
    save: ({ alias }) => call('setalias', { mac: device.mac, alias }),
  });

const limit = (device, current) =>
  formDialog({
    title: t('limit.title', { name: nameOf(device) }),
    intro: t('limit.intro'),
    values: { on: current ? '1' : '0', down: current?.Dl_Speed ?? '', up: current?.Up_Speed ?? '' },
    fields: [
      { name: 'on', kind: 'switch', label: 'limit.on' },
      {
        name: 'down',
        kind: 'number',
        label: 'limit.down',
        unit: 'unit.kbs',
        required: true,
        check: check.range(1, 9999999),
        when: ({ on }) => on === '1',
      },
      {
        name: 'up',
        kind: 'number',
        label: 'limit.up',
        unit: 'unit.kbs',
        required: true,
        check: check.range(1, 9999999),
        when: ({ on }) => on === '1',
      },
    ],
    save: ({ on, down, up }) =>
      call('setqos', {
        MAC: device.mac,
        IP: device.ip,
        Up_Speed: on === '1' ? up : '0',
        Dl_Speed: on === '1' ? down : '0',
      }),
  });

async function block(device) {
  const sure = await confirm({
    title: t('block.title'),
    text: t('block.ask', { name: nameOf(device) }),
    action: t('block'),
  });
  if (sure)
    await call('setmacblack', {
      mac: device.mac,
      enable: '1',
      devname: device.name.replace(/\s+/g, '_'),
    });
  return sure;
}

const ruleFields = (devices) => [
  {
    name: 'mac',
    kind: 'select',
    label: 'parental.device',
    required: true,
    options: devices.map((device) => [device.mac, `${nameOf(device)} (${device.mac})`]),
    verbatim: true,
  },
  {
    name: 'alias',
    label: 'parental.name',
    required: true,
    check: check.bytesAtMost(60),
    hint: 'parental.name.hint',
  },
  { name: 'accesstime', kind: 'period', label: 'parental.time', required: true },
  { name: 'day', kind: 'days', label: 'schedule.days', required: true },
];

function editRule(devices, rule, mac) {
  const known =
    rule && !devices.some((device) => device.mac === rule.mac)
      ? [...devices, { mac: rule.mac, name: rule.devname }]
      : devices;
  return formDialog({
    title: t(rule ? 'parental.edit' : 'parental.add'),
    intro: t('parental.about'),
    values: rule
      ? { ...rule }
      : { mac: mac ?? devices[0]?.mac ?? '', alias: '', accesstime: '16:00-20:00', day: '12345' },
    fields: ruleFields(known),
    save: (now) =>
      call('setparentalinfo', {
        cfg_type: 'add',
        alias: now.alias,
        ...(rule ? { alias_old: rule.alias } : {}),
        devname: known.find((device) => device.mac === now.mac)?.name ?? '',
        mac: now.mac,
        accesstime: now.accesstime,
        day: [...now.day].sort().join(''),
      }),
  });
}

function cards() {
  let devices = [];
  const everything = () => all.forEach(({ refresh }) => refresh());

  const more = async (device, limits) => {
    const current = limits.get(device.mac);
    const choice = await openDialog({
      title: nameOf(device),
      body: h('p', { class: 'intro mono' }, `${device.mac} · ${device.ip}`),
      actions: [
        { label: t('devices.rename'), value: 'rename', mark: 'pen' },
        { label: t('limit.short'), value: 'limit', mark: 'gauge' },
        { label: t('parental.short'), value: 'times', mark: 'clock' },
        { label: t('block'), kind: 'danger', value: 'block', mark: 'ban' },
      ],
      stacked: true,
      id: 'device-dialog',
    });
    const works = {
      rename: () => rename(device),
      limit: () => limit(device, current),
      times: () => editRule(devices, null, device.mac),
      block: () => block(device),
    };
    if (await works[choice]?.()) everything();
  };

  const attached = list({
    id: 'attached',
    title: 'devices.title',
    empty: 'devices.empty',
    wide: true,
    load: async () => {
      const rows = (await call('getterminallist')).list;
      const { list: limits } = await call('getqos', { MAC: 'ALL' }).catch(() => ({ list: [] }));
      devices = rows;
      return { rows, limits: new Map(limits.map((entry) => [entry.MAC, entry])) };
    },
    columns: (refresh, { limits }) => [
      {
        label: 'devices.name',
        cell: (device) => {
          const [mark, medium] = kMedia[device.link_type] ?? ['devices', 'devices.unknown'];
          return h(
            'div',
            { class: 'device' },
            icon(mark),
            h('div', {}, h('strong', {}, nameOf(device)), h('span', {}, t(medium))),
          );
        },
      },
      {
        label: 'address',
        kind: 'mono',
        cell: ({ ip, mac }) => h('div', {}, h('div', {}, ip), h('div', { class: 'quiet' }, mac)),
      },
      { label: 'devices.since', cell: ({ link_time: since }) => duration(since) },
      {
        label: 'devices.now',
        kind: 'number',
        cell: ({ downspeed, upspeed }) =>
          h(
            'div',
            { class: 'pair' },
            h('span', {}, icon('down'), speed(downspeed)),
            h('span', {}, icon('up'), speed(upspeed)),
          ),
      },
      {
        label: 'devices.total',
        kind: 'number',
        cell: ({ totaldl, totalup }) =>
          h(
            'div',
            { class: 'pair' },
            h('span', {}, icon('down'), bytes(totaldl)),
            h('span', {}, icon('up'), bytes(totalup)),
          ),
      },
      {
        label: 'limit.short',
        cell: ({ mac }) => {
          const own = limits.get(mac);
          return own
            ? h(
                'div',
                { class: 'pair' },
                h('span', {}, icon('down'), speed(own.Dl_Speed)),
                h('span', {}, icon('up'), speed(own.Up_Speed)),
              )
            : h('span', { class: 'quiet' }, t('none'));
        },
      },
      {
        kind: 'act',
        cell: (device) => rowButton(t('change'), () => more(device, limits), '', nameOf(device)),
      },
    ],
  });

  const times = list({
    id: 'parental',
    title: 'parental.title',
    intro: 'parental.intro',
    empty: 'parental.empty',
    wide: true,
    load: async () => {
      const { Switch, list: rows } = await call('getparentalinfo');
      return { Switch, rows };
    },
    toggle: {
      label: 'parental.on',
      read: ({ Switch }) => Switch === 'on',
      save: (state) => call('setparentalswitch', { Switch: state ? 'on' : 'off' }),
    },
    columns: (refresh) => [
      { label: 'parental.name', cell: ({ alias }) => alias },
      {
        label: 'parental.device',
        cell: ({ devname, mac }) =>
          h(
            'div',
            {},
            devname === 'unknow' ? mac : devname,
            h('div', { class: 'quiet mono' }, mac),
          ),
      },
      { label: 'parental.time', cell: ({ accesstime }) => accesstime.replace('-', ' – ') },
      { label: 'schedule.days', cell: ({ day }) => days(day) },
      {
        kind: 'act',
        cell: (rule) =>
          h(
            'div',
            { class: 'row-actions' },
            rowButton(
              t('edit'),
              async () => (await editRule(devices, rule)) && refresh(),
              '',
              rule.alias,
            ),
            rowButton(
              t('remove'),
              () =>
                act(() => call('setparentalinfo', { cfg_type: 'del', alias: rule.alias }), refresh),
              'danger',
              rule.alias,
            ),
          ),
      },
    ],
    add: {
      label: 'parental.add',
      open: () =>
        devices.length > 0 ? editRule(devices) : (toast(t('parental.nodevice'), 'bad'), false),
    },
  });

  const blocked = list({
    id: 'blocked',
    title: 'block.list',
    intro: 'block.intro',
    empty: 'block.empty',
    limit: kBlocked,
    wide: true,
    load: async () => ({ rows: (await call('getblacklist')).list }),
    columns: () => [
      { label: 'devices.name', cell: (device) => nameOf(device) },
      { label: 'mac', kind: 'mono', cell: ({ mac }) => mac },
      {
        kind: 'act',
        cell: (device) =>
          rowButton(
            t('unblock'),
            () =>
              act(
                () => call('setmacblack', { mac: device.mac, enable: '0', devname: device.name }),
                everything,
              ),
            '',
            nameOf(device),
          ),
      },
    ],
    add: {
      label: 'block.add',
      open: () =>
        formDialog({
          title: t('block.add'),
          values: { mac: '', devname: '' },
          fields: [
            { name: 'mac', label: 'mac', required: true, check: check.mac },
            { name: 'devname', label: 'devices.name', check: check.word(60), hint: 'optional' },
          ],
          save: ({ mac, devname }) =>
            call('setmacblack', { mac: mac.toUpperCase(), enable: '1', devname }),
        }),
    },
  });

  const all = [attached, times, blocked];
  return all.map(({ element }) => element);
}

export const devicesPage = { id: 'devices', icon: 'devices', cards };

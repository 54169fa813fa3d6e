// What can be reached at home from the Internet.

import { call } from '../api.js';
import { formDialog, list, rowButton, settings } from '../cards.js';
import * as check from '../check.js';
import { confirm } from '../dialog.js';
import { h } from '../dom.js';
import { t } from '../i18n.js';

const kMappings = 8;
const kProtocols = [
  ['TCP', 'TCP'],
  ['UDP', 'UDP'],
  ['TCP+UDP', 'TCP + UDP'],
];
const protocolOf = (word) =>
  ['TCP', 'UDP'].includes(word.toUpperCase()) ? word.toUpperCase() : 'TCP+UDP';

async function editRule(rule) {
  // The first mapping has the form's own fields; further ones stand behind it, one a line.
  const mappings = rule?.sublist ?? [];
  const values = { name: rule?.name ?? '', ip: rule?.ip ?? '' };
  const fields = [
    { name: 'name', label: 'forward.name', required: true, check: check.bytesAtMost(60) },
    {
      name: 'ip',
      label: 'forward.host',
      required: true,
      check: (text) => (text === 'all' ? null : check.address(text)),
      hint: 'forward.host.hint',
    },
  ];
  for (let i = 0; i < Math.max(mappings.length, 1) + 1 && i < kMappings; i += 1) {
    const mapping = mappings[i];
    Object.assign(values, {
      [`wan${i}`]: mapping?.wanport ?? '',
      [`lan${i}`]: mapping?.lanport ?? '',
      [`proto${i}`]: mapping ? protocolOf(mapping.protocol) : 'TCP',
    });
    const used = (now) => now[`wan${i}`] !== '' || now[`lan${i}`] !== '';
    fields.push(
      { kind: 'heading', label: t('forward.mapping', { n: i + 1 }) },
      {
        name: `wan${i}`,
        label: 'forward.outside',
        required: i === 0 || used,
        check: check.ports,
        hint: i === 0 ? 'forward.outside.hint' : null,
      },
      { name: `lan${i}`, label: 'forward.inside', required: i === 0 || used, check: check.ports },
      {
        name: `proto${i}`,
        kind: 'select',
        label: 'forward.protocol',
        options: kProtocols,
        verbatim: true,
      },
    );
  }
  return formDialog({
    title: t(rule ? 'forward.edit' : 'forward.add'),
    fields,
    values,
    save: (now) => {
      const used = [...Array(kMappings).keys()].filter((i) => now[`wan${i}`]);
      const lists = Object.fromEntries(
        used.map((i, n) => [`list${n}`, `${now[`wan${i}`]},${now[`lan${i}`]},${now[`proto${i}`]}`]),
      );
      return call('setforwarding', {
        enable: '1',
        name: now.name,
        ...(rule ? { name_old: rule.name } : {}),
        ip: now.ip,
        ...lists,
      });
    },
  });
}

async function removeRule({ name }) {
  if (
    !(await confirm({
      title: t('forward.remove'),
      text: t('forward.remove.ask', { name }),
      action: t('remove'),
    }))
  )
    return false;
  await call('setforwarding', { enable: '0', name });
  return true;
}

/** Rules that lead from outside to devices at home. */
export const forwarding = () =>
  list({
    id: 'forwarding',
    title: 'forward.title',
    intro: 'forward.intro',
    empty: 'forward.empty',
    wide: true,
    load: async () => ({ rows: (await call('getforwarding')).list }),
    columns: (refresh) => [
      { label: 'forward.name', cell: ({ name }) => name },
      { label: 'forward.host', cell: ({ ip }) => (ip === 'all' ? t('forward.all') : ip) },
      {
        label: 'forward.ports',
        cell: ({ sublist }) =>
          h(
            'div',
            {},
            sublist.map((one) =>
              h('div', {}, `${one.wanport} → ${one.lanport} ${protocolOf(one.protocol)}`),
            ),
          ),
      },
      {
        kind: 'act',
        cell: (rule) =>
          h(
            'div',
            { class: 'row-actions' },
            rowButton(t('edit'), async () => (await editRule(rule)) && refresh(), '', rule.name),
            rowButton(
              t('remove'),
              async () => (await removeRule(rule)) && refresh(),
              'danger',
              rule.name,
            ),
          ),
      },
    ],
    add: { label: 'forward.add', open: () => editRule(null) },
  });

/** The one device that gets all the rest. */
export const dmz = () =>
  settings({
    id: 'dmz',
    title: 'dmz.title',
    intro: 'dmz.intro',
    wide: true,
    load: () => call('getdmz'),
    fields: [
      { name: 'enable', kind: 'switch', label: 'dmz.on', wide: true },
      {
        name: 'ip',
        label: 'dmz.host',
        required: true,
        check: check.address,
        inputmode: 'decimal',
        when: ({ enable }) => enable === '1',
      },
    ],
    ask: ({ enable }) => (enable === '1' ? 'dmz.ask' : null),
    save: ({ enable, ip }) => call('setdmz', enable === '1' ? { enable, ip } : { enable }),
  });

/** Ports that devices have opened themselves. */
export const upnp = () =>
  list({
    id: 'upnp',
    title: 'upnp.title',
    intro: 'upnp.intro',
    empty: 'upnp.empty',
    wide: true,
    load: async () => {
      const { enable, list: rows } = await call('get_upnp_info');
      return { enable, rows };
    },
    toggle: {
      label: 'upnp.on',
      read: ({ enable }) => enable === 1,
      save: (state) => call('set_upnp_info', { enable: state ? 1 : 0 }),
    },
    columns: () => [
      { label: 'upnp.device', cell: ({ ip }) => ip },
      { label: 'forward.outside', cell: ({ externalPort }) => externalPort },
      { label: 'forward.inside', cell: ({ internalPort }) => internalPort },
      { label: 'forward.protocol', cell: ({ protocol }) => protocol },
    ],
  });

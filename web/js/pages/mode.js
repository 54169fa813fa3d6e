// Changing what the router is: shared by the first setup and by the page "Internet".

import { call } from '../api.js';
import * as check from '../check.js';
import { say } from '../dialog.js';
import { fill, h, pause } from '../dom.js';
import { t } from '../i18n.js';
import { icon } from '../icons.js';
import { progress, routerLink, waitForReturn } from '../progress.js';
import { givenUp, sentence } from '../results.js';
import { nameFields, nameRequest, nameValues, wanFields, wanRequest, wanValues } from './fields.js';

const kModes = [
  ['router', 'mode.router'],
  ['wisp', 'mode.wisp'],
  ['repeater', 'mode.repeater'],
  ['AP', 'mode.ap'],
  ['mobilenetwork', 'mode.mobile'],
];

/** The mode that the router tells, as requests spell it. */
export const modeOf = (stored) => (stored === 'mobilenetmode' ? 'mobilenetwork' : stored);
export const modeName = (stored) => {
  const known = kModes.find(([mode]) => mode === modeOf(stored));
  return known ? t(known[1]) : stored;
};

/** Whether a mode joins another network. */
export const joins = ({ opermode }) => opermode === 'wisp' || opermode === 'repeater';
const needsKey = (values) =>
  joins(values) && values.network && !/OPEN|NONE/.test(values.network.security.split('/')[0]);

/** How strong a signal is, in words and bars. */
const strength = (signal) => (signal >= 70 ? 3 : signal >= 45 ? 2 : 1);

function networkRow(network, changed, chosen) {
  const open = /^(OPEN|NONE)/.test(network.security);
  const band = network.wifi_type === '2.4G' ? '2.4 GHz' : '5 GHz';
  const bars = strength(network.signal);
  const button = h(
    'button',
    {
      type: 'button',
      class: 'network',
      'aria-pressed': String(chosen),
      onclick: () => changed(network),
    },
    h(
      'span',
      { class: `bars b${bars}`, role: 'img', 'aria-label': t(`signal.${bars}`) },
      h('i'),
      h('i'),
      h('i'),
    ),
    h('span', { class: 'network-name' }, network.ssid),
    h('span', { class: 'network-about' }, `${band} · ${t('channel.n', { n: network.channel })}`),
    open ? h('span', { class: 'network-about' }, t('security.open.short')) : icon('lock'),
  );
  return button;
}

/** Looks for networks around and lets the user take one. The value is the survey's entry. */
function networkPicker(common, values, changed) {
  const place = h('div', { class: 'place', 'aria-live': 'polite' });
  const results = h('div', { class: 'networks' });
  const button = h(
    'button',
    {
      type: 'button',
      class: 'button',
      id: common.id,
      'aria-describedby': common['aria-describedby'],
      onclick: search,
    },
    icon('wifi'),
    t('survey.start'),
  );
  let found = [];
  let current = values.network;

  function draw() {
    const all =
      current && !found.some(({ bssid }) => bssid === current.bssid) ? [current, ...found] : found;
    fill(
      results,
      all.map((network) => networkRow(network, changed, network.bssid === current?.bssid)),
    );
  }
  async function search() {
    say(place, 'error', null);
    const work = progress({
      title: t('survey.title'),
      steps: ['survey.both'],
      seconds: 28,
      stoppable: t('stop'),
    });
    try {
      const { list } = await call('getrepeaterinfo', {}, { signal: work.signal, seconds: 180 });
      found = list;
      say(place, 'info', t(list.length > 0 ? 'survey.found' : 'survey.none', { n: list.length }));
      draw();
    } catch (error) {
      if (!givenUp(error)) say(place, 'error', sentence(error));
    } finally {
      work.close();
    }
  }
  draw();
  return {
    element: h('div', { class: 'picker' }, button, place, results),
    control: button,
    refresh(now) {
      if (now.network === current) return;
      current = now.network;
      draw();
    },
  };
}

export const modeFields = () => [
  {
    name: 'opermode',
    kind: 'choice',
    label: 'mode.label',
    options: kModes,
    required: true,
    wide: true,
  },
  ...wanFields(({ opermode }) => opermode === 'router'),
  {
    name: 'network',
    kind: 'custom',
    label: 'survey.label',
    required: true,
    when: joins,
    make: (common, values, changed) => networkPicker(common, values, changed),
    wide: true,
  },
  {
    name: 'key',
    kind: 'password',
    label: 'survey.key',
    required: true,
    check: check.bytesAtMost(63),
    when: needsKey,
  },
];

/** The whole request of a mode change. */
export function modeRequest(values) {
  const request = { opermode: values.opermode, ...nameRequest(values) };
  if (values.opermode === 'router') Object.assign(request, wanRequest(values));
  if (joins(values)) {
    const { ssid, wifi_type, security, channel, bssid } = values.network;
    Object.assign(request, {
      ssid,
      wifi_type,
      security,
      channel,
      bssid,
      key: needsKey(values) ? values.key : '',
    });
  }
  return request;
}

/** Shows how the router changes, and finds it again where that is possible. */
export async function followMode(values) {
  const moves = ['AP', 'repeater'].includes(values.opermode);
  const slow = joins(values);
  const steps = [
    'modework.stored',
    'modework.restart',
    ...(slow ? ['modework.join'] : []),
    'move.finding',
  ];
  const seconds = slow ? 75 : 40;
  const work = progress({ title: t('modework.title'), steps, seconds });
  work.say(h('p', {}, t('modework.rejoin', { name: values.wlan2ssid })));
  await pause(3000);
  work.at(1);
  await pause(12000);
  if (slow) {
    work.at(2);
    await pause(40000);
  }
  work.at(steps.length - 1);
  const found = await waitForReturn({ settle: 3, limit: 90 });
  if (found) await work.end('good', h('p', {}, t('modework.done')), t('continue'));
  else if (moves)
    await work.end('bad', [h('p', {}, t('modework.elsewhere')), routerLink('http://router.zelto')]);
  else await work.end('bad', h('p', {}, t('modework.lost', { name: values.wlan2ssid })));
}

export async function loadMode() {
  const [{ operationmode }, wan, names] = [
    await call('getrouterstatus'),
    await call('getwancfg'),
    await call('getwlancfgall'),
  ];
  return {
    ...wanValues(wan),
    ...nameValues(names),
    opermode: modeOf(operationmode),
    network: null,
    key: '',
  };
}

export const allModeFields = () => [
  ...modeFields(),
  { kind: 'heading', label: 'mode.names' },
  ...nameFields(),
];

import { call, poll } from '../api.js';
import { card, facts, light, meter } from '../cards.js';
import { speedChart } from '../chart.js';
import { notice } from '../dialog.js';
import { fill, h, pause } from '../dom.js';
import { bytes, duration, speed, t } from '../i18n.js';
import { icon } from '../icons.js';
import { givenUp, sentence } from '../results.js';
import { modeName } from './mode.js';

const kEvery = 3000;
const kDevicesEvery = 4;
// It lasts as long as the page is open, so that going elsewhere and back keeps the curve.
const kHistory = [];

const port = (name, linked) =>
  h(
    'li',
    { class: linked ? 'linked' : '' },
    icon('plug'),
    h('strong', {}, name),
    h('span', {}, t(linked ? 'port.on' : 'port.off')),
  );

const link = (href, key) => h('p', { class: 'card-link' }, h('a', { href }, t(key)));

function chain(info, clients) {
  const online = info.netlink === 1;
  const total = clients ? clients.cable + clients._2g + clients._5g : null;
  const node = (name, title, text, kind) =>
    h(
      'div',
      { class: `node ${kind}` },
      h('span', { class: 'node-icon' }, icon(name)),
      h('strong', {}, title),
      h('span', {}, text),
    );
  return h(
    'div',
    { class: `hero ${online ? 'good' : 'bad'}` },
    h(
      'p',
      { class: 'hero-line' },
      t(online ? 'overview.online' : info.wan === 1 ? 'overview.offline' : 'overview.nocable'),
    ),
    h(
      'div',
      { class: 'chain' },
      node('globe', t('page.internet'), t(online ? 'online' : 'offline'), online ? 'good' : 'bad'),
      h('i', { class: online ? 'good' : 'bad' }),
      node('router', info.producttype, modeName(info.operationmode), 'good'),
      h('i', { class: 'good' }),
      node(
        'devices',
        t('page.devices'),
        total === null ? '–' : t('devices.count', { n: total }),
        'good',
      ),
    ),
  );
}

/** Both speeds, or null when the router does not know them. */
function speeds({ downspeed, upspeed }) {
  // Without figures the router fills the first with something else and leaves the second empty.
  if (upspeed === '' || upspeed === undefined) return null;
  const [down, up] = [parseFloat(downspeed), parseFloat(upspeed)];
  return Number.isFinite(down) && Number.isFinite(up) ? { down, up } : null;
}

function cards({ signal }) {
  const hero = h('section', {
    class: 'hero-frame wide',
    'aria-label': t('overview.state'),
    'aria-live': 'polite',
  });
  const now = h('div', { class: 'speeds' });
  const chart = speedChart(kHistory);
  const places = { ports: null, health: null, clients: null };
  let clients = null;
  let lastState = '';

  const show = {
    ports: (info) =>
      h(
        'ul',
        { class: 'ports' },
        port(t('port.wan'), info.wan === 1),
        [1, 2, 3, 4].map((n) => port(t('port.lan', { n }), info[`lan${n}`] === 1)),
      ),
    health(info) {
      const cpu = parseInt(info.cpu, 10) || 0;
      const [total, free] = [Number(info.ramtotal), Number(info.ramfree)];
      const used = total > 0 ? Math.round(((total - free) / total) * 100) : 0;
      return [
        meter('overview.cpu', cpu, `${cpu} %`),
        meter('overview.memory', used, `${bytes((total - free) * 1024)} / ${bytes(total * 1024)}`),
        facts([
          ['overview.uptime', duration(info.uptime)],
          ['system.version', info.ver.split(',').at(-1)],
          ['lan.address', info.lanip],
        ]),
      ];
    },
    clients: () =>
      clients &&
      h(
        'ul',
        { class: 'counts' },
        [
          ['cable', 'devices.cable', 'plug'],
          ['_2g', 'devices.2g', 'wifi'],
          ['_5g', 'devices.5g', 'wifi'],
        ].map(([name, key, mark]) =>
          h('li', {}, icon(mark), h('strong', {}, clients[name]), h('span', {}, t(key))),
        ),
      ),
  };

  function update(info) {
    const state = JSON.stringify([info.netlink, info.wan, info.operationmode, clients]);
    if (state !== lastState) fill(hero, chain(info, clients));
    lastState = state;
    for (const [name, place] of Object.entries(places)) if (place) fill(place, show[name](info));
    const both = speeds(info);
    fill(
      now,
      [
        ['down', 'overview.download'],
        ['up', 'overview.upload'],
      ].map(([side, key]) =>
        h(
          'div',
          { class: side },
          icon(side),
          h('span', {}, t(key)),
          h('strong', {}, both ? speed(String(both[side])) : '–'),
        ),
      ),
    );
    if (both) chart.add(both.down, both.up);
  }

  async function look(round) {
    try {
      if (round % kDevicesEvery === 0) {
        clients = await poll('getclientnum', {}, { signal }).catch(() => clients);
      }
      update(await poll('getrouterinfo', {}, { signal }));
    } catch (error) {
      if (givenUp(error)) return;
      lastState = '';
      fill(hero, notice('error', sentence(error)));
    }
  }

  async function watch() {
    for (let round = 0; !signal.aborted; round += 1) {
      if (!document.hidden) await look(round);
      await pause(kEvery, signal);
    }
  }
  fill(
    hero,
    h(
      'div',
      { class: 'hero skeleton', role: 'status' },
      h('span', { class: 'sr' }, t('loading')),
      h('i'),
      h('i'),
    ),
  );
  const live = (id, title, name) =>
    card({
      id,
      title,
      show(body) {
        places[name] = body;
        fill(body, h('div', { class: 'skeleton' }, h('i'), h('i')));
      },
    }).element;

  const all = [
    hero,
    card({
      id: 'speed',
      title: 'overview.speed',
      wide: true,
      show: (body) => fill(body, now, chart.element),
    }).element,
    live('ports', 'overview.ports', 'ports'),
    live('clients', 'overview.clients', 'clients'),
    card({
      id: 'uplink',
      title: 'overview.uplink',
      load: () => call('getwaninfo'),
      show: (body, info) =>
        fill(
          body,
          facts([
            ['address', info.ip],
            ['gateway', info.gateway],
            ['dns.label', [...new Set([info.dns1, info.dns2])].filter(Boolean).join(', ')],
            ['mac', info.wan_mac],
          ]),
          link('#/internet', 'overview.toInternet'),
        ),
    }).element,
    live('health', 'overview.health', 'health'),
    card({
      id: 'names',
      title: 'overview.wifi',
      wide: true,
      load: () => call('getwlancfgall'),
      show: (body, { configurations }) =>
        fill(
          body,
          h(
            'div',
            { class: 'network-lines' },
            configurations.map((radio) =>
              h(
                'div',
                { class: 'network-line' },
                icon('wifi'),
                h(
                  'div',
                  {},
                  h('strong', {}, radio.wlanssid),
                  h('span', {}, radio.radio === '5G' ? '5 GHz' : '2.4 GHz'),
                ),
                light(radio.enable === 1 ? 'good' : 'idle', t(radio.enable === 1 ? 'on' : 'off')),
              ),
            ),
          ),
          link('#/wifi', 'overview.toWifi'),
        ),
    }).element,
  ];
  watch().catch(() => {});
  return all;
}

export const overviewPage = { id: 'overview', icon: 'home', cards };

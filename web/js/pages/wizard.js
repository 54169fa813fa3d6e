// The first setup: password, way to the Internet, Wi-Fi, and a look at it all before it is applied.

import { call } from '../api.js';
import { attempt, facts } from '../cards.js';
import { say } from '../dialog.js';
import { fill, h } from '../dom.js';
import { makeFields } from '../form.js';
import { t } from '../i18n.js';
import { givenUp, sentence } from '../results.js';
import { nameFields, newPassword } from './fields.js';
import { followMode, joins, loadMode, modeFields, modeName, modeRequest } from './mode.js';

const kSteps = [
  'wizard.step.password',
  'wizard.step.internet',
  'wizard.step.wifi',
  'wizard.step.check',
];

/** `password` is the one of the login just done; `done()` leaves the wizard. */
export function wizardPage({ password, signal, done }) {
  let known = password;
  let values = { routepwd: '', again: '', password: 'kept' };
  let step = 0;
  const body = h('div', { class: 'wizard-body' });
  const trail = h(
    'ol',
    { class: 'trail' },
    kSteps.map((key) => h('li', {}, t(key))),
  );
  const element = h(
    'div',
    { class: 'wizard', id: 'wizard' },
    h('h1', { tabindex: '-1' }, t('wizard.title')),
    h('p', { class: 'intro' }, t('wizard.intro')),
    trail,
    body,
  );

  // Asking for the quick setup's facts is what tells the router that its first setup was done.
  const noteDone = () => call('geteasycfg', {}, { password: known });

  async function skip(button, place) {
    if (await attempt(button, place, noteDone)) done();
  }

  function show(fields, { next, back, skipped }) {
    [...trail.children].forEach((item, i) => {
      item.className = i < step ? 'done' : i === step ? 'now' : '';
      if (i === step) item.setAttribute('aria-current', 'step');
      else item.removeAttribute('aria-current');
    });
    const place = h('div', { class: 'place', 'aria-live': 'polite' });
    const form =
      fields &&
      makeFields(fields, values, (now) => {
        values = now;
      });
    const last = step === kSteps.length - 1;
    const button = h(
      'button',
      { type: 'submit', class: 'button primary' },
      t(last ? 'wizard.apply' : 'next'),
    );
    const leave = h(
      'button',
      { type: 'button', class: 'button plain', onclick: () => skip(leave, place) },
      t('wizard.skip'),
    );
    const heading = h('h2', { tabindex: '-1' }, t(kSteps[step]));
    fill(
      body,
      h(
        'form',
        {
          class: 'card',
          novalidate: true,
          onsubmit: async (event) => {
            event.preventDefault();
            if (form && !form.validate()) return;
            if (form) values = form.values();
            await attempt(button, place, next);
          },
        },
        heading,
        h('p', { class: 'intro' }, t(`${kSteps[step]}.intro`)),
        form ? form.element : review(),
        place,
        h(
          'div',
          { class: 'actions' },
          button,
          skipped &&
            h('button', { type: 'button', class: 'button', onclick: skipped }, t('wizard.keep')),
          back && h('button', { type: 'button', class: 'button', onclick: back }, t('back')),
          h('span', { class: 'spacer' }),
          leave,
        ),
      ),
    );
    heading.focus();
  }

  const review = () =>
    facts([
      [
        'wizard.password',
        t(values.password === 'new' ? 'wizard.password.new' : 'wizard.password.kept'),
      ],
      ['mode.label', modeName(values.opermode)],
      values.opermode === 'router' && ['wan.mode', t(`wan.${values.wanmode}`)],
      joins(values) && ['survey.label', values.network.ssid],
      ['wifi.name2', values.wlan2ssid],
      ['wifi.name5', values.same === '1' ? values.wlan2ssid : values.wlan5ssid],
    ]);

  const go = (to) => {
    step = to;
    steps[to]();
  };
  const steps = [
    () =>
      show(newPassword(password), {
        next: async () => {
          values = { ...values, password: 'new' };
          go(1);
        },
        skipped: () => {
          values = { ...values, password: 'kept' };
          go(1);
        },
      }),
    async () => {
      if (values.opermode === undefined) await begin();
      show(modeFields(), { next: async () => go(2), back: () => go(0) });
    },
    () => show(nameFields(), { next: async () => go(3), back: () => go(1) }),
    () => show(null, { next: apply, back: () => go(2) }),
  ];

  async function begin() {
    const place = h('div', { class: 'place' });
    fill(body, h('div', { class: 'card' }, h('p', { role: 'status' }, t('wizard.looking')), place));
    try {
      values = { ...values, ...(await loadMode()) };
      const { wanmode } = await call('getwanmode', {}, { signal }).catch(() => ({}));
      const offered = String(wanmode).toLowerCase();
      if (['dhcp', 'pppoe', 'static'].includes(offered))
        values = { ...values, wanmode: offered, mtu: offered === 'pppoe' ? '1492' : '1500' };
    } catch (error) {
      if (givenUp(error)) return;
      values = {
        opermode: 'router',
        wanmode: 'dhcp',
        mtu: '1500',
        same: '1',
        wlan2ssid: '',
        wlan2psw: '',
        ...values,
      };
      say(place, 'error', sentence(error));
    }
  }

  async function apply() {
    if (values.password === 'new' && known !== values.routepwd) {
      await call('setmanpwd', { routepwd: values.routepwd }, { password: known });
      known = values.routepwd;
    }
    await noteDone();
    await call('seteasycfg', modeRequest(values));
    await followMode(values);
    done();
  }

  steps[0]();
  return element;
}

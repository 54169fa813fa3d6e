import { call } from '../api.js';
import { attempt } from '../cards.js';
import { notice } from '../dialog.js';
import { h } from '../dom.js';
import { makeFields } from '../form.js';
import { t } from '../i18n.js';
import { icon } from '../icons.js';

/** The login. `entered(reply, password)` goes on; `ended` says that a session ran out. */
export function loginPage({ entered, ended }) {
  const place = h(
    'div',
    { class: 'place', 'aria-live': 'assertive' },
    ended && notice('info', t('login.ended')),
  );
  const button = h('button', { type: 'submit', class: 'button primary block' }, t('login.enter'));
  const form = makeFields(
    [
      { name: 'user', label: 'login.user', autocomplete: 'username' },
      { name: 'pass', kind: 'password', label: 'login.password', autocomplete: 'current-password' },
    ],
    { user: 'admin', pass: '' },
  );
  const element = h(
    'form',
    {
      class: 'login',
      id: 'login',
      novalidate: true,
      onsubmit: async (event) => {
        event.preventDefault();
        const { user, pass } = form.values();
        let reply;
        const done = await attempt(button, place, async () => {
          reply = await call('loginauth', { user, pass });
        });
        if (done) await entered(reply, pass);
        else element.querySelector('input[type=password]')?.select();
      },
    },
    h('div', { class: 'login-mark' }, icon('router')),
    h('h1', {}, t('login.title')),
    h('p', { class: 'intro' }, t('login.intro')),
    place,
    form.element,
    button,
  );
  queueMicrotask(() => element.querySelector('input[name=pass]')?.focus());
  return element;
}

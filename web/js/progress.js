// Work that takes long, and finding the router again afterwards.

import { call, Refused, Unreachable } from './api.js';
import { fill, h, newId, pause } from './dom.js';
import { t } from './i18n.js';

const kAsk = 2000;

/**
 * A dialog that says what is happening. `steps` are keys of sentences; `at(i)` moves on, `end(...)`
 * shows the outcome and lets the user go on. `stoppable` is the text of a button that aborts
 * `signal`, for work that can be left.
 */
export function progress({ title, steps, stoppable, seconds }) {
  const heading = newId('progress');
  const control = new AbortController();
  const bar = h('progress', { 'aria-labelledby': heading, max: seconds });
  const items = steps.map((key) => h('li', {}, t(key)));
  const outcome = h('div', { class: 'outcome', 'aria-live': 'assertive' });
  const foot = h(
    'footer',
    { class: 'dialog-foot' },
    stoppable &&
      h(
        'button',
        {
          type: 'button',
          class: 'button',
          onclick: () => control.abort(),
        },
        stoppable,
      ),
  );
  const dialog = h(
    'dialog',
    { class: 'dialog progress', 'aria-labelledby': heading, id: 'progress-dialog' },
    h('header', { class: 'dialog-head' }, h('h2', { id: heading }, title)),
    h(
      'div',
      { class: 'dialog-body' },
      bar,
      h('ol', { class: 'steps', 'aria-live': 'polite' }, items),
      outcome,
    ),
    foot,
  );
  dialog.addEventListener('cancel', (event) => event.preventDefault());
  document.body.append(dialog);
  dialog.showModal();

  const began = Date.now();
  const timer =
    seconds &&
    setInterval(() => {
      bar.value = Math.min((Date.now() - began) / 1000, seconds * 0.97);
    }, 500);

  const self = {
    signal: control.signal,
    say: (...content) => fill(outcome, content),
    at(step) {
      items.forEach((item, i) => {
        item.className = i < step ? 'done' : i === step ? 'now' : '';
        if (i === step) item.setAttribute('aria-current', 'step');
        else item.removeAttribute('aria-current');
      });
    },
    close() {
      clearInterval(timer);
      dialog.close();
      dialog.remove();
    },
    /** Ends the work: says how, and waits for the user to go on. */
    end(kind, content, action) {
      clearInterval(timer);
      if (kind === 'good') self.at(steps.length);
      bar.hidden = true;
      fill(
        outcome,
        h('div', { class: `notice ${kind === 'good' ? 'info' : 'error'}` }, h('div', {}, content)),
      );
      return new Promise((resolve) => {
        const button = h(
          'button',
          {
            type: 'button',
            class: 'button primary',
            onclick: () => {
              self.close();
              resolve();
            },
          },
          action ?? t('close'),
        );
        fill(foot, button);
        button.focus();
      });
    },
  };
  self.at(0);
  return self;
}

async function alive(signal) {
  try {
    await call('getheartbeat', {}, { poll: true, signal, seconds: 4 });
    return true;
  } catch (error) {
    if (error instanceof Refused) return true;
    if (error instanceof Unreachable) return false;
    if (signal?.aborted) throw error;
    return false;
  }
}

/** Whether something answers at an address. What it answers stays hidden from this page. */
async function answers(origin) {
  const control = new AbortController();
  const timer = setTimeout(() => control.abort(), 3000);
  try {
    await fetch(`${origin}/`, {
      mode: 'no-cors',
      cache: 'no-store',
      credentials: 'omit',
      signal: control.signal,
    });
    return true;
  } catch {
    return false;
  } finally {
    clearTimeout(timer);
  }
}

/**
 * Waits until the router that this page came from answers again. A router that restarts answers
 * for a while before it goes; so it counts as back once it was gone, or after `settle` seconds.
 */
export async function waitForReturn({ settle, limit, signal }) {
  const began = Date.now();
  let gone = false;
  while (Date.now() - began < limit * 1000) {
    await pause(kAsk, signal);
    const here = await alive(signal);
    if (!here) gone = true;
    else if (gone || Date.now() - began > settle * 1000) return true;
  }
  return false;
}

const isAddress = (name) => /^\d+\.\d+\.\d+\.\d+$/.test(name);

/** Where this page will be found when the router's LAN address becomes `address`. */
export function originAt(address, before) {
  const { hostname, origin, protocol, port } = window.location;
  // A name, or an address that is not the router's own, leads to it as before.
  if (!isAddress(hostname) || hostname !== before) return origin;
  return `${protocol}//${address}${port ? `:${port}` : ''}`;
}

/** Waits until the router answers at an origin of its own. */
export async function waitAt(origin, { limit, signal }) {
  const began = Date.now();
  while (Date.now() - began < limit * 1000) {
    await pause(kAsk, signal);
    if (await answers(origin)) return true;
  }
  return false;
}

export const routerLink = (origin) =>
  h('p', {}, h('a', { href: `${origin}/`, class: 'link-out' }, `${origin}/`));

/** Follows the router from one LAN address to another. */
export async function followAddress(title, address, before) {
  const origin = originAt(address, before);
  const work = progress({
    title,
    steps: ['move.applying', 'move.device', 'move.finding'],
    seconds: 60,
  });
  work.say(
    h('p', {}, t('move.link', { address })),
    origin === window.location.origin ? null : routerLink(origin),
  );
  await pause(3000);
  work.at(1);
  await pause(3000);
  work.at(2);
  const stays = origin === window.location.origin;
  const found = stays
    ? await waitForReturn({ settle: 2, limit: 90 })
    : await waitAt(origin, { limit: 90 });
  if (found && stays) {
    await work.end('good', h('p', {}, t('move.same', { address })));
    return;
  }
  if (found) {
    await work.end('good', h('p', {}, t('move.found', { address })), t('move.go'));
    window.location.assign(`${origin}/`);
    return;
  }
  await work.end('bad', [h('p', {}, t('move.lost', { address })), routerLink(origin)]);
}

/** Waits for the router to come back where it is, as after a restart. */
export async function followRestart({ title, steps, seconds, settle, lost, back }) {
  const work = progress({ title, steps, seconds });
  await pause(Math.min(4000, seconds * 200));
  work.at(1);
  const found = await waitForReturn({ settle, limit: seconds * 3 });
  if (found) await work.end('good', h('p', {}, t(back)), t('continue'));
  else await work.end('bad', h('p', {}, t(lost)));
  return found;
}

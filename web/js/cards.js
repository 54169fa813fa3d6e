// The three kinds of cards that pages are made of: settings, lists and facts. Each loads by itself,
// shows that it does, and says what went wrong, with a way to try again.

import { fill, h, newId } from './dom.js';
import { openDialog, confirm, notice, say, toast } from './dialog.js';
import { makeFields, sameValues } from './form.js';
import { t } from './i18n.js';
import { icon } from './icons.js';
import { givenUp, missing, sentence } from './results.js';

const skeleton = () =>
  h(
    'div',
    { class: 'skeleton', role: 'status' },
    h('span', { class: 'sr' }, t('loading')),
    h('i'),
    h('i'),
    h('i'),
  );

/** A card whose content comes later: `show(place, values)` fills it, `load()` brings the values. */
export function card({ id, title, intro, tools, load, show, wide }) {
  const heading = newId('card');
  const body = h('div', { class: 'card-body' });
  const element = h(
    'section',
    { class: `card ${wide ? 'wide' : ''}`, id, 'aria-labelledby': heading },
    h('header', { class: 'card-head' }, h('h2', { id: heading, tabindex: '-1' }, t(title)), tools),
    intro && h('p', { class: 'intro' }, t(intro)),
    body,
  );

  // What had the focus is made anew; who came with the keyboard goes on from the card's title.
  async function refresh({ focus } = {}) {
    const inside = focus || body.contains(document.activeElement);
    await fillAnew();
    if (inside) document.getElementById(heading)?.focus();
  }

  async function fillAnew() {
    if (!load) {
      show(body, {});
      return;
    }
    if (body.childElementCount === 0) fill(body, skeleton());
    element.setAttribute('aria-busy', 'true');
    try {
      show(body, await load());
    } catch (error) {
      if (givenUp(error))
        fill(
          body,
          lockedOut(() => refresh()),
        );
      else if (missing(error)) fill(body, notice('info', t('error.missing')));
      else
        fill(
          body,
          notice(
            'error',
            h('p', {}, sentence(error)),
            h(
              'button',
              { type: 'button', class: 'button small', onclick: () => refresh() },
              t('retry'),
            ),
          ),
        );
    } finally {
      element.removeAttribute('aria-busy');
    }
  }
  fillAnew();
  return { element, refresh };
}

const lockedOut = (refresh) =>
  notice(
    'info',
    h('p', {}, t('password.needed')),
    h('button', { type: 'button', class: 'button small', onclick: () => refresh() }, t('continue')),
  );

/** Runs work behind a button: busy while it lasts, its failure said in `place`. */
export async function attempt(button, place, work) {
  say(place, 'error', null);
  button.disabled = true;
  button.classList.add('busy');
  button.setAttribute('aria-busy', 'true');
  try {
    await work();
    return true;
  } catch (error) {
    if (!givenUp(error)) say(place, 'error', sentence(error));
    return false;
  } finally {
    button.disabled = false;
    button.classList.remove('busy');
    button.removeAttribute('aria-busy');
  }
}

/**
 * A form: `load()` gives the values, `fields` may be a function of them, `save(values, before)`
 * stores. `ask(values, before)` may give the text of a question to be answered first.
 */
export function settings({ fields, save, ask, after, always, submit, ...rest }) {
  const self = card({
    ...rest,
    show(body, loaded) {
      let before = loaded;
      const place = h('div', { class: 'place', 'aria-live': 'polite' });
      const button = h('button', { type: 'submit', class: 'button primary' }, t(submit ?? 'save'));
      const discard = h(
        'button',
        {
          type: 'button',
          class: 'button',
          onclick: () => {
            form.reset(before);
            mark();
          },
        },
        t('discard'),
      );
      const table = typeof fields === 'function' ? fields(loaded) : fields;
      const form = makeFields(table, loaded, () => mark());
      const actions = h('div', { class: 'actions' }, button, discard);
      function mark() {
        const same = sameValues(form.values(), before);
        discard.hidden = same || Boolean(always);
        button.disabled = same && !always;
      }
      mark();
      fill(
        body,
        h(
          'form',
          {
            novalidate: true,
            onsubmit: async (event) => {
              event.preventDefault();
              if (!form.validate()) return;
              const values = form.values();
              const question = ask?.(values, before);
              if (
                question &&
                !(await confirm({ title: t(rest.title), text: t(question), action: t('continue') }))
              )
                return;
              const done = await attempt(button, place, () => save(values, before));
              mark();
              if (!done) return;
              if (!after) toast(t('saved'));
              if (always) form.reset(loaded);
              else before = values;
              mark();
              await after?.(values, loaded);
              if (rest.load && !always) self.refresh({ focus: true });
            },
          },
          form.element,
          place,
          actions,
        ),
      );
    },
  });
  return self;
}

/** Opens a form in a dialog; resolves to true once `save` succeeded. */
export async function formDialog({ title, fields, values, save, submit, intro }) {
  const place = h('div', { class: 'place', 'aria-live': 'polite' });
  const form = makeFields(fields, values);
  let busy = false;
  const answer = await openDialog({
    title,
    body: [intro && h('p', { class: 'intro' }, intro), form.element, place],
    actions: [
      { label: t('cancel'), value: null },
      { label: t(submit ?? 'save'), kind: 'primary', value: true },
    ],
    async onaction(value) {
      if (value === null) return true;
      if (busy || !form.validate()) return false;
      busy = true;
      say(place, 'info', t('saving'));
      try {
        await save(form.values());
        return true;
      } catch (error) {
        say(place, 'error', givenUp(error) ? null : sentence(error));
        return false;
      } finally {
        busy = false;
      }
    },
  });
  if (answer === true) toast(t('saved'));
  return answer === true;
}

/** A table that becomes a stack of cards on a phone. `columns`: { label, cell, kind }. */
export function table(caption, columns, rows) {
  return h(
    'div',
    { class: 'table-frame' },
    h(
      'table',
      {},
      h('caption', { class: 'sr' }, caption),
      h(
        'thead',
        {},
        h(
          'tr',
          {},
          columns.map(({ label, kind }) =>
            h(
              'th',
              { scope: 'col', class: kind },
              label ? t(label) : h('span', { class: 'sr' }, t('actions')),
            ),
          ),
        ),
      ),
      h(
        'tbody',
        {},
        rows.map((row) =>
          h(
            'tr',
            {},
            columns.map(({ label, cell, kind }, i) =>
              h(
                i === 0 ? 'th' : 'td',
                {
                  scope: i === 0 ? 'row' : null,
                  class: kind,
                  'data-label': label ? t(label) : null,
                },
                cell(row),
              ),
            ),
          ),
        ),
      ),
    ),
  );
}

/** A small button in a row; what goes wrong behind it is said in passing. */
export function rowButton(label, work, kind = '', about = '') {
  const onclick = async () => {
    try {
      await work();
    } catch (error) {
      if (!givenUp(error)) toast(sentence(error), 'bad');
    }
  };
  return h(
    'button',
    {
      type: 'button',
      class: `button small ${kind}`,
      onclick,
      'aria-label': about ? `${label}: ${about}` : null,
    },
    label,
  );
}

/**
 * A list with a way to add to it. `load()` gives { rows, ... }; `toggle` is a switch above the
 * list: { label, read(loaded), save(on) }.
 */
export function list({ columns, empty, add, toggle, limit, ...rest }) {
  const self = card({
    ...rest,
    show(body, loaded) {
      const { rows } = loaded;
      const place = h('div', { class: 'place', 'aria-live': 'polite' });
      fill(
        body,
        toggle && switchRow(toggle.label, toggle.read(loaded), (on) => toggle.save(on), place),
        place,
        rows.length > 0
          ? table(t(rest.title), columns(self.refresh, loaded), rows)
          : h('p', { class: 'empty' }, t(empty)),
        add &&
          h(
            'div',
            { class: 'actions' },
            h(
              'button',
              {
                type: 'button',
                class: 'button',
                disabled: limit && rows.length >= limit,
                onclick: async () => (await add.open(loaded)) && self.refresh(),
              },
              icon('plus'),
              t(add.label),
            ),
          ),
      );
    },
  });
  return self;
}

/** A switch that acts at once. */
export function switchRow(label, on, save, place) {
  const id = newId('switch');
  const input = h('input', {
    id,
    type: 'checkbox',
    role: 'switch',
    checked: on,
    onchange: async () => {
      input.disabled = true;
      say(place, 'error', null);
      try {
        await save(input.checked);
        toast(t('saved'));
      } catch (error) {
        input.checked = !input.checked;
        if (!givenUp(error)) say(place, 'error', sentence(error));
      } finally {
        input.disabled = false;
      }
    },
  });
  return h(
    'div',
    { class: 'switch-row' },
    h('label', { for: id }, t(label)),
    h('span', { class: 'switch' }, input, h('span', { 'aria-hidden': 'true' })),
  );
}

/** Names and values. Pairs without a value are shown with a dash. */
export const facts = (pairs) =>
  h(
    'dl',
    { class: 'facts' },
    pairs
      .filter(Boolean)
      .map(([label, value]) =>
        h(
          'div',
          {},
          h('dt', {}, t(label)),
          h('dd', {}, value === '' || value === undefined || value === null ? '–' : value),
        ),
      ),
  );

/** A dot with a word: kind is good, bad, idle or busy. */
export const light = (kind, text) =>
  h('span', { class: `light ${kind}` }, h('i', { 'aria-hidden': 'true' }), text);

const kHigh = 90;

/** A share of a hundred as a bar, with its name before and its figure behind. */
export function meter(label, share, text) {
  const filled = h('div', {});
  filled.style.width = `${share}%`;
  return h(
    'div',
    { class: 'meter' },
    h('span', {}, t(label)),
    h(
      'div',
      {
        class: `meter-bar ${share > kHigh ? 'high' : ''}`,
        role: 'meter',
        'aria-label': t(label),
        'aria-valuemin': 0,
        'aria-valuemax': 100,
        'aria-valuenow': share,
      },
      filled,
    ),
    h('span', { class: 'meter-text' }, text),
  );
}

// Sends any command: a form made from the catalogue, the request as text beside it, the reply, and,
// where the router keeps one, the journal of what the command did.

import { catalogue, journal, send } from '../api.js';
import { attempt, card } from '../cards.js';
import { notice } from '../dialog.js';
import { fill, h, newId, pause } from '../dom.js';
import { t } from '../i18n.js';

const kText = 'string';
const kMoment = 400;

/** A value as the request carries it, by the type that its member has. */
function valueOf(type, text) {
  const types = type.split('|');
  if (types.includes('number') && /^-?\d+(\.\d+)?$/.test(text) && !(types[0] === kText))
    return Number(text);
  if (types.some((one) => ['array', 'object', 'boolean'].includes(one))) return JSON.parse(text);
  return text;
}

function memberField(member, changed) {
  const id = newId('member');
  const type = member.type ?? kText;
  const values = member.values ?? [];
  const choices = newId('values');
  const long = /array|object/.test(type);
  const input = h(long ? 'textarea' : 'input', {
    id,
    name: member.name,
    autocomplete: 'off',
    spellcheck: 'false',
    rows: long ? '3' : null,
    list: values.length > 0 ? choices : null,
    'aria-describedby': `${id}-about`,
    oninput: changed,
  });
  const element = h(
    'div',
    { class: `field ${long ? 'wide' : ''}` },
    h(
      'label',
      { for: id },
      h('code', {}, member.name),
      h(
        'span',
        { class: 'quiet' },
        ` ${type}${member.required ? ` · ${t('console.required')}` : ''}`,
      ),
    ),
    input,
    values.length > 0 &&
      h(
        'datalist',
        { id: choices },
        values.map(({ value, label }) => h('option', { value: String(value) }, label)),
      ),
    member.description &&
      h('p', { class: 'hint', id: `${id}-about`, lang: 'en' }, member.description),
  );
  return { element, member, input, type };
}

function requestOf(command, fields) {
  const request = { type: command.name };
  for (const { member, input, type } of fields) {
    if (input.value === '') continue;
    try {
      request[member.name] = valueOf(type, input.value);
    } catch {
      request[member.name] = input.value;
    }
  }
  return request;
}

function show(body, commands) {
  const place = h('div', { class: 'place', 'aria-live': 'polite' });
  const form = h('div', { class: 'console-form' });
  const about = h('div', { class: 'console-about', lang: 'en' });
  const text = h('textarea', {
    id: 'console-request',
    rows: '5',
    spellcheck: 'false',
    class: 'mono',
  });
  const reply = h('pre', {
    id: 'console-reply',
    class: 'mono',
    tabindex: '0',
    'aria-live': 'polite',
  });
  const timing = h('span', { class: 'quiet' });
  const effects = h('div', {
    id: 'console-journal',
    class: 'journal',
    hidden: true,
    'aria-live': 'polite',
  });
  const search = h('input', {
    type: 'search',
    id: 'console-search',
    'aria-label': t('console.search'),
    placeholder: t('console.search'),
    autocomplete: 'off',
    oninput: () => offer(),
  });
  const choose = h('select', {
    id: 'console-command',
    size: '10',
    'aria-label': t('console.command'),
    onchange: () => take(choose.value),
  });

  function offer() {
    const words = search.value.toLowerCase().split(/\s+/).filter(Boolean);
    const fits = commands.filter(({ name, summary }) =>
      words.every((word) => `${name} ${summary}`.toLowerCase().includes(word)),
    );
    const before = choose.value;
    fill(
      choose,
      fits.map(({ name }) => h('option', { value: name }, name)),
    );
    if (fits.some(({ name }) => name === before)) choose.value = before;
  }

  function take(name) {
    const command = commands.find((one) => one.name === name);
    if (!command) return;
    const fields = command.request.map((member) => memberField(member, write));
    function write() {
      text.value = JSON.stringify(requestOf(command, fields), null, 1).replace(/\n\s*/g, ' ');
    }
    const { example } = command;
    fill(
      about,
      h('p', {}, command.summary),
      h(
        'ul',
        { class: 'quiet' },
        Object.entries(command.results ?? {}).map(([number, meaning]) =>
          h('li', {}, h('code', {}, number), ` ${meaning}`),
        ),
      ),
    );
    fill(
      form,
      fields.length > 0
        ? h(
            'div',
            { class: 'fields' },
            fields.map(({ element }) => element),
          )
        : h('p', { class: 'empty' }, t('console.nomembers')),
      example &&
        h(
          'button',
          {
            type: 'button',
            class: 'button small',
            onclick: () => {
              text.value = JSON.stringify(example);
            },
          },
          t('console.example'),
        ),
    );
    write();
  }

  const button = h(
    'button',
    {
      type: 'button',
      class: 'button primary',
      id: 'console-send',
      onclick: () => attempt(button, place, run),
    },
    t('console.send'),
  );

  async function run() {
    let request;
    try {
      request = JSON.parse(text.value);
    } catch {
      fill(place, notice('error', t('console.notJson')));
      return;
    }
    const before = await journal();
    const began = performance.now();
    const answer = await send(request, { seconds: 180 });
    const took = Math.round(performance.now() - began);
    fill(reply, JSON.stringify(answer, null, 2));
    fill(timing, t('console.took', { n: took }));
    effects.hidden = before === null;
    if (before === null) return;
    // What is started beside the answer notes itself a moment later.
    await pause(kMoment);
    const { lines } = (await journal(before.next)) ?? { lines: [] };
    fill(
      effects,
      h('h3', {}, t('console.journal')),
      lines.length > 0
        ? h('ol', { class: 'mono' }, lines.map(journalLine))
        : h('p', { class: 'empty' }, t('console.noeffects')),
    );
  }

  fill(
    body,
    h(
      'div',
      { class: 'console' },
      h('div', { class: 'console-left' }, search, choose),
      h(
        'div',
        { class: 'console-right' },
        about,
        form,
        h('label', { for: 'console-request' }, t('console.request')),
        text,
        place,
        h('div', { class: 'actions' }, button),
        h(
          'div',
          { class: 'console-out' },
          h('div', {}, h('h3', {}, t('console.reply'), ' ', timing), reply),
          effects,
        ),
      ),
    ),
  );
  offer();
  choose.value = commands.some(({ name }) => name === 'getrouterstatus')
    ? 'getrouterstatus'
    : commands[0]?.name;
  take(choose.value);
}

function journalLine(line) {
  const [word, ...rest] = line.trim().split(/\s+/);
  return h('li', {}, h('b', { class: `effect ${word}` }, word), ' ', rest.join(' '));
}

export const consolePage = {
  id: 'console',
  icon: 'console',
  cards: () => [
    card({
      id: 'console',
      title: 'console.title',
      intro: 'console.intro',
      wide: true,
      load: catalogue,
      show,
    }).element,
  ],
};

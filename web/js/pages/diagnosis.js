import { call } from '../api.js';
import { attempt, card } from '../cards.js';
import { fill, h } from '../dom.js';
import { t } from '../i18n.js';
import { icon } from '../icons.js';

const kChecks = ['wanstatus', 'wanmodeequal', 'ipstatus', 'dnstatus', 'netstatus'];

/** The chain up to the first check that failed; what lies behind it was not looked at. */
function lightChain(reply, cableless) {
  let failed = false;
  return h(
    'ol',
    { class: 'light-chain' },
    kChecks
      .filter((name) => !cableless || !['wanstatus', 'wanmodeequal'].includes(name))
      .map((name) => {
        const value = reply[name];
        const fine = value === '1' || reply.netstatus === '1';
        const kind = fine ? 'good' : failed ? 'idle' : 'bad';
        if (!fine) failed = true;
        const key =
          kind === 'bad' && name === 'wanmodeequal' && ['2', '3', '4'].includes(value)
            ? `diagnosis.${name}.${value}`
            : `diagnosis.${name}.${kind}`;
        return h(
          'li',
          { class: kind },
          h(
            'i',
            { 'aria-hidden': 'true' },
            icon(kind === 'good' ? 'check' : kind === 'bad' ? 'close' : 'more'),
          ),
          h(
            'div',
            {},
            h('strong', {}, t(`diagnosis.${name}`)),
            h('p', {}, t(kind === 'idle' ? 'diagnosis.skipped' : key)),
          ),
        );
      }),
  );
}

/** Finds where the way to the Internet is broken. */
export const diagnosis = () =>
  card({
    id: 'diagnosis',
    title: 'diagnosis.title',
    intro: 'diagnosis.intro',
    wide: true,
    show(body) {
      const place = h('div', { class: 'place', 'aria-live': 'polite' });
      const result = h('div', { 'aria-live': 'polite' });
      const button = h(
        'button',
        {
          type: 'button',
          class: 'button primary',
          onclick: () =>
            attempt(button, place, async () => {
              fill(result, h('p', { class: 'empty' }, t('diagnosis.running')));
              try {
                const { operationmode } = await call('getrouterstatus');
                const reply = await call('getnetworkdiagnosisinfo');
                fill(
                  result,
                  lightChain(reply, !['router', 'mobilenetmode'].includes(operationmode)),
                );
              } catch (error) {
                fill(result);
                throw error;
              }
            }),
        },
        t('diagnosis.start'),
      );
      fill(body, result, place, h('div', { class: 'actions' }, button));
    },
  });

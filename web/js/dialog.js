import { fill, h, newId } from './dom.js';
import { t } from './i18n.js';
import { icon } from './icons.js';

/**
 * Shows a dialog. `actions` are buttons: { label, kind, value, mark }; the promise resolves to the value
 * of the one that was pressed, or to null when the dialog was closed. `onaction(value)` may hold
 * the dialog open by answering false.
 */
export function openDialog({ title, body, actions, onaction, stacked, id }) {
  const heading = newId('dialog');
  return new Promise((resolve) => {
    let answer = null;
    const finish = async (value) => {
      if (onaction && (await onaction(value)) === false) return;
      answer = value;
      dialog.close();
    };
    const buttons = (actions ?? []).map(({ label, kind, value, mark }, i) =>
      h(
        'button',
        {
          type: i === actions.length - 1 && !stacked ? 'submit' : 'button',
          class: `button ${kind ?? ''}`,
          onclick: (event) => {
            event.preventDefault();
            finish(value);
          },
        },
        mark && icon(mark),
        label,
      ),
    );
    const dialog = h(
      'dialog',
      { class: 'dialog', 'aria-labelledby': heading, id },
      h(
        'form',
        { method: 'dialog', novalidate: true, onsubmit: (event) => event.preventDefault() },
        h(
          'header',
          { class: 'dialog-head' },
          h('h2', { id: heading }, title),
          h(
            'button',
            {
              type: 'button',
              class: 'icon-button',
              'aria-label': t('close'),
              onclick: () => dialog.close(),
            },
            icon('close'),
          ),
        ),
        h('div', { class: 'dialog-body' }, body),
        buttons.length > 0 &&
          h('footer', { class: `dialog-foot ${stacked ? 'stacked' : ''}` }, buttons),
      ),
    );
    dialog.addEventListener('close', () => {
      dialog.remove();
      resolve(answer);
    });
    document.body.append(dialog);
    dialog.showModal();
    dialog
      .querySelector('.dialog-body :is(input, select, textarea, a), .dialog-foot button')
      ?.focus();
  });
}

/** Asks before something that hurts. */
export async function confirm({ title, text, action, danger = true }) {
  const answer = await openDialog({
    title,
    body: [text].flat().map((part) => h('p', {}, part)),
    actions: [
      { label: t('cancel'), value: null },
      { label: action, kind: danger ? 'danger' : 'primary', value: true },
    ],
  });
  return answer === true;
}

/** Asks for the administrator's password. Resolves to null when the user gives up. */
export async function askPassword(type, wasWrong) {
  const id = newId('password');
  const error = newId('error');
  const input = h('input', {
    id,
    type: 'password',
    autocomplete: 'current-password',
    required: true,
    'aria-invalid': wasWrong ? 'true' : null,
    'aria-describedby': wasWrong ? error : null,
  });
  const answer = await openDialog({
    title: t('password.title'),
    id: 'password-dialog',
    body: [
      h('p', {}, t('password.why')),
      h(
        'div',
        { class: 'field' },
        h('label', { for: id }, t('password.label')),
        input,
        wasWrong && h('p', { class: 'field-error', id: error, role: 'alert' }, t('password.wrong')),
      ),
    ],
    actions: [
      { label: t('cancel'), value: null },
      { label: t('continue'), kind: 'primary', value: true },
    ],
  });
  return answer === true ? input.value : null;
}

const live = () => document.getElementById('toasts');

/** A short message that goes by itself; screen readers hear it. */
export function toast(text, kind = 'good') {
  const note = h('p', { class: `toast ${kind}` }, icon(kind === 'good' ? 'check' : 'alert'), text);
  live().append(note);
  setTimeout(() => note.remove(), kind === 'good' ? 4000 : 9000);
}

/** A notice inside a page: kind is "error", "warning" or "info". */
export const notice = (kind, ...content) =>
  h(
    'div',
    { class: `notice ${kind}`, role: kind === 'error' ? 'alert' : null },
    icon(kind === 'info' ? 'info' : 'alert'),
    h('div', {}, content),
  );

/** Puts a notice into a place, or empties it. */
export const say = (place, kind, text) => fill(place, text ? notice(kind, text) : null);

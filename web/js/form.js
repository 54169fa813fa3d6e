// Forms from tables. A field is an object:
//   name      member of the values
//   label     key of its label
//   kind      text (default), password, number, time, select, switch, choice, checks, days, period;
//             note and heading, which only say something; shown and custom, whose element or
//             control `make` gives
//   options   select, checks: pairs of value and label key, or a function of the values
//   on, off   switch: the two values ('1' and '0' by default)
//   check     one check of check.js or several, for a value that is not empty
//   required  true, or a function of the values
//   when      whether the field is there, a function of the values
//   hint      key of a line below it
//   unit      key of the word behind it
//   changed   other values that follow from a change, a function of the values
//   verbatim  options whose labels are shown as they are

import { fill, h, newId } from './dom.js';
import { hasText, t } from './i18n.js';
import { icon } from './icons.js';

const labelOf = (field, label) => (field.verbatim || !hasText(label) ? label : t(label));
const holds = (condition, values) =>
  typeof condition === 'function' ? condition(values) : Boolean(condition);

function selectControl(field, common, values, changed) {
  const control = h('select', { ...common, onchange: () => changed(control.value) });
  const refresh = (now) => {
    const pairs = typeof field.options === 'function' ? field.options(now) : field.options;
    const value = String(now[field.name] ?? '');
    // A value that the table does not know stays selectable, so that saving does not change it.
    const known = pairs.some(([option]) => String(option) === value);
    const all = known ? pairs : [[value, value === '' ? 'choose' : value], ...pairs];
    fill(
      control,
      all.map(([option, label]) => h('option', { value: option }, labelOf(field, label))),
    );
    control.value = value;
  };
  refresh(values);
  return { element: control, control, refresh };
}

function switchControl(field, common, values, changed) {
  const on = field.on ?? '1';
  const off = field.off ?? '0';
  const control = h('input', {
    ...common,
    type: 'checkbox',
    role: 'switch',
    onchange: () => changed(control.checked ? on : off),
  });
  const refresh = (now) => {
    control.checked = String(now[field.name]) === String(on);
  };
  refresh(values);
  return {
    element: h('span', { class: 'switch' }, control, h('span', { 'aria-hidden': 'true' })),
    control,
    refresh,
  };
}

/** Boxes of which each stands for a value; together a text of days, or an array. */
function boxesControl(field, common, values, changed) {
  const asText = field.kind === 'days';
  const options = asText ? [...'1234567'].map((day) => [day, `day.${day}`]) : null;
  const element = h('div', {
    class: asText ? 'days' : 'checks',
    role: 'group',
    'aria-labelledby': `${common.id}-label`,
  });
  let boxes = [];
  const refresh = (now) => {
    const chosen = [...(now[field.name] ?? [])];
    const pairs =
      options ?? (typeof field.options === 'function' ? field.options(now) : field.options);
    boxes = pairs.map(([value]) =>
      h('input', {
        type: 'checkbox',
        value,
        checked: chosen.includes(value),
        onchange: () => {
          const picked = boxes.filter((box) => box.checked).map((box) => box.value);
          changed(asText ? picked.join('') : picked);
        },
      }),
    );
    fill(
      element,
      pairs.map(([, label], i) => h('label', {}, boxes[i], h('span', {}, labelOf(field, label)))),
      pairs.length === 0 && h('p', { class: 'hint' }, t(field.empty)),
    );
  };
  refresh(values);
  return {
    element,
    get control() {
      return boxes[0] ?? element;
    },
    refresh,
  };
}

/** Two times of day, joined by "-". */
function periodControl(field, common, values, changed) {
  const report = () => changed(`${from.value}-${to.value}`);
  const from = h('input', {
    ...common,
    type: 'time',
    oninput: report,
    'aria-label': t('period.from'),
  });
  const to = h('input', { type: 'time', oninput: report, 'aria-label': t('period.to') });
  const refresh = (now) => {
    [from.value, to.value] = [...String(now[field.name] ?? '').split('-'), '', ''];
  };
  refresh(values);
  return {
    element: h('div', { class: 'period' }, from, h('span', {}, '–'), to),
    control: from,
    refresh,
  };
}

function textControl(field, common, values, changed) {
  const secret = field.kind === 'password';
  const control = h('input', {
    ...common,
    type: secret ? 'password' : field.kind === 'time' ? 'time' : 'text',
    inputmode: field.kind === 'number' ? 'numeric' : field.inputmode,
    autocomplete: field.autocomplete ?? 'off',
    autocapitalize: 'off',
    spellcheck: 'false',
    placeholder: field.placeholder,
    maxlength: field.maxlength,
    oninput: () => changed(control.value),
  });
  const refresh = (now) => {
    const value = String(now[field.name] ?? '');
    if (control.value !== value) control.value = value;
  };
  refresh(values);
  if (!secret) return { element: control, control, refresh };
  const reveal = h(
    'button',
    {
      type: 'button',
      class: 'icon-button',
      'aria-pressed': 'false',
      'aria-label': t('password.show'),
      onclick: () => {
        const shown = control.type === 'text';
        control.type = shown ? 'password' : 'text';
        reveal.setAttribute('aria-pressed', String(!shown));
      },
    },
    icon('eye'),
  );
  return { element: h('div', { class: 'with-button' }, control, reveal), control, refresh };
}

/** One of several, each with a line that explains it. */
function choiceControl(field, common, values, changed) {
  const element = h('div', {
    class: 'choices',
    role: 'radiogroup',
    'aria-labelledby': `${common.id}-label`,
  });
  let buttons = [];
  const refresh = (now) => {
    for (const button of buttons) button.checked = button.value === String(now[field.name]);
  };
  buttons = field.options.map(([value]) =>
    h('input', { type: 'radio', name: common.id, value, onchange: () => changed(value) }),
  );
  fill(
    element,
    field.options.map(([value, label], i) =>
      h(
        'label',
        { 'data-value': value },
        buttons[i],
        h(
          'span',
          { class: 'choice' },
          h('strong', {}, t(label)),
          hasText(`${label}.about`) && h('small', {}, t(`${label}.about`)),
        ),
      ),
    ),
  );
  refresh(values);
  return {
    element,
    get control() {
      return buttons.find((button) => button.checked) ?? buttons[0];
    },
    refresh,
  };
}

const customControl = (field, common, values, changed) => field.make(common, values, changed);

const kControls = {
  choice: choiceControl,
  custom: customControl,
  select: selectControl,
  switch: switchControl,
  days: boxesControl,
  checks: boxesControl,
  period: periodControl,
};

function faultOf(field, values) {
  const value = values[field.name];
  const empty = value === undefined || value === '' || value === '-' || value?.length === 0;
  if (empty) return holds(field.required, values) ? { key: 'check.required' } : null;
  if (field.kind === 'period' && !/^\d\d:\d\d-\d\d:\d\d$/.test(value))
    return { key: 'check.period' };
  for (const check of [field.check ?? []].flat()) {
    const fault = check(String(value), values);
    if (fault) return fault;
  }
  return null;
}

/**
 * Makes the fields of a table. Gives `element`, `values()`, `reset(values)` and `validate()`, which
 * shows every fault, moves to the first and answers whether there is none.
 */
export function makeFields(fields, initial, onchange = () => {}) {
  let values = { ...initial };
  let strict = false;

  const rows = fields.map((field) => {
    const id = newId('field');
    if (field.kind === 'note') {
      const element = h('p', { class: `hint wide ${field.tone ?? ''}` }, t(field.label));
      return { field, element, refresh() {}, show() {} };
    }
    if (field.kind === 'heading') {
      return {
        field,
        element: h('h3', { class: 'wide' }, t(field.label)),
        refresh() {},
        show() {},
      };
    }
    if (field.kind === 'shown') return { field, element: field.make(), refresh() {}, show() {} };
    const hintId = field.hint && `${id}-hint`;
    const errorId = `${id}-error`;
    const common = {
      id,
      name: field.name,
      'aria-describedby': [hintId, errorId].filter(Boolean).join(' '),
    };
    const part = (kControls[field.kind] ?? textControl)(field, common, values, (value) => {
      values = { ...values, [field.name]: value };
      if (field.changed) values = { ...values, ...field.changed(values) };
      update();
      onchange(values);
    });
    const error = h('p', { class: 'field-error', id: errorId });
    const boxes = ['days', 'checks', 'choice', 'custom'].includes(field.kind);
    const label = boxes
      ? h('span', { class: 'label', id: `${id}-label` }, t(field.label))
      : h('label', { for: id }, t(field.label));
    const element = h(
      'div',
      { class: `field kind-${field.kind ?? 'text'} ${field.wide ? 'wide' : ''}` },
      label,
      field.unit
        ? h(
            'div',
            { class: 'with-unit' },
            part.element,
            h('span', { class: 'unit' }, t(field.unit)),
          )
        : part.element,
      field.hint && h('p', { class: 'hint', id: hintId }, t(field.hint)),
      error,
    );
    const show = (fault) => {
      error.textContent = fault ? t(fault.key, fault.values) : '';
      if (fault) part.control.setAttribute('aria-invalid', 'true');
      else part.control.removeAttribute('aria-invalid');
    };
    return {
      field,
      element,
      show,
      refresh: part.refresh,
      get control() {
        return part.control;
      },
    };
  });

  const present = (row) => !row.field.when || row.field.when(values);
  function update() {
    for (const row of rows) {
      row.element.hidden = !present(row);
      row.refresh(values);
      if (strict) row.show(present(row) ? faultOf(row.field, values) : null);
    }
  }
  update();

  return {
    element: h(
      'div',
      { class: 'fields' },
      rows.map((row) => row.element),
    ),
    values: () => values,
    reset(fresh) {
      strict = false;
      values = { ...fresh };
      update();
      for (const row of rows) row.show(null);
    },
    validate() {
      strict = true;
      update();
      const wrong = rows.find((row) => row.control && present(row) && faultOf(row.field, values));
      wrong?.control.focus();
      return !wrong;
    },
  };
}

export const sameValues = (one, other) => JSON.stringify(one) === JSON.stringify(other);

// The fields: what separates and encloses them, or where the columns of a fixed arrangement begin.
import { change, state } from '../app.js';
import { byId, el, fill } from '../dom.js';
import { delimiterName, delimiterNames } from '../text.js';
import { ruler } from './ruler.js';

function select(id, title, value, found, options, settle) {
  return el('span', { class: 'pair' },
    el('label', { for: id }, title),
    el('select', { id, on: { change: (event) => settle(event.target.value) } },
      el('option', { value: '\0' }, `found: ${found}`),
      options.map(([option, name]) => el('option', { value: option, selected: value === option }, name))));
}

function delimited() {
  const { reading, settings } = state.reading;
  const { given } = state;
  const runners = (state.alternatives?.delimiters ?? []).filter((delimiter) => delimiter !== reading.delimiter);
  return [
    el('div', { class: 'setting' },
      select('delimiter', 'Delimiter', given.delimiter, delimiterName(reading.delimiter), delimiterNames,
        (value) => change({ delimiter: value === '\0' ? undefined : value, fixed: undefined })),
      select('qualifier', 'Qualifier', given.qualifier, reading.qualifier === '' ? 'none' : reading.qualifier,
        [['"', 'double quote "'], ["'", "single quote '"], ['', 'none']],
        (value) => change({ qualifier: value === '\0' ? undefined : value })),
      select('decimal', 'Decimal character', given.decimal, reading.decimal, [['point', 'point'], ['comma', 'comma']],
        (value) => change({ decimal: value === '\0' ? undefined : value })),
      el('span', { class: 'evidence' }, [settings?.delimiter?.evidence, settings?.qualifier?.evidence].filter(Boolean).join('; '))),
    runners.length > 0 ? el('p', { class: 'row' }, 'Nearly as good: ', runners.map((delimiter, number) => el('button', {
      type: 'button', id: `runner-${number}`, on: { click: () => change({ delimiter, fixed: undefined }) },
    }, `Cut at ${delimiterName(delimiter)}`))) : null,
  ];
}

export function showFields() {
  if (!state.reading) return fill(byId('fields-body'), el('p', { class: 'quiet' }, 'Open a file first.'));
  const { given } = state;
  const fixed = given.fixed !== undefined || (given.delimiter === undefined && state.reading.reading.arrangement === 'fixed');
  fill(byId('fields-body'),
    el('fieldset', { class: 'row' },
      el('legend', {}, 'Arrangement'),
      ['delimited', 'fixed'].map((name) => el('label', {},
        el('input', {
          type: 'radio', name: 'arrangement', id: `arrangement-${name}`, checked: (name === 'fixed') === fixed,
          on: {
            change: () => {
              if (name === 'delimited') change({ fixed: undefined, delimiter: state.given.delimiter ?? ',' });
              else change({ delimiter: undefined, fixed: '1-' });
            },
          },
        }), name === 'fixed' ? 'fixed columns' : 'delimited'))),
    ...(fixed ? ruler() : delimited()));
}

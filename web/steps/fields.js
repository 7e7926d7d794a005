// The fields: what separates and encloses them, or where the columns of a fixed arrangement begin.
import { change, state } from '../app.js';
import { byId, el, fill } from '../dom.js';
import { delimiterName, delimiterNames } from '../text.js';
import { field, sum, waiting } from './parts.js';
import { ruler } from './ruler.js';

const found = '\0'; // of a list: let it be found
const qualifierNames = [['"', 'double quote "'], ["'", 'single quote \''], ['', 'none']];
const qualifierName = (qualifier) => qualifierNames.find(([value]) => value === qualifier)?.[1] ?? qualifier;

// A list of a setting that is found unless it is given.
function choice(id, title, key, foundName, options, evidence, more = {}) {
  const given = state.given[key];
  const known = given === undefined || options.some(([value]) => value === given);
  return field(id, title, el('select', {
    id, on: {
      change: (event) => {
        const value = options.find(([one]) => String(one) === event.target.value);
        change({ [key]: event.target.value === found ? undefined : value[0], ...more });
      },
    },
  },
  el('option', { value: found }, given === undefined ? `${foundName} (found)` : 'find it'),
  (known ? options : [[given, delimiterName(given)], ...options]).map(([value, name]) => el('option', { value: String(value), selected: given === value }, name))),
  given === undefined ? evidence : 'set by you');
}

function otherDelimiter() {
  return field('delimiter-text', 'Another one', el('input', {
    id: 'delimiter-text', type: 'text', size: 4, value: '', spellcheck: false, autocomplete: 'off',
    on: {
      change: (event) => {
        const text = event.target.value === '\\t' ? '\t' : event.target.value;
        event.target.value = '';
        if (text) change({ delimiter: text, fixed: undefined });
      },
    },
  }));
}

function delimited() {
  const { reading, settings } = state.reading;
  return el('div', { class: 'settings', id: 'delimited-settings' },
    choice('delimiter', 'Delimiter', 'delimiter', delimiterName(reading.delimiter), delimiterNames, settings?.delimiter?.evidence, { fixed: undefined }),
    otherDelimiter(),
    choice('qualifier', 'Qualifier', 'qualifier', qualifierName(reading.qualifier), qualifierNames, settings?.qualifier?.evidence),
    choice('leading-blanks', 'Blanks before a value', 'leading_blanks', state.reading.leading_blanks ? 'passed over' : 'kept', [[false, 'kept'], [true, 'passed over']]),
    reading.delimiter === ' ' ? choice('multiple-blanks', 'Several blanks', 'multiple_blanks', reading.multiple_blanks ? 'are one delimiter' : 'are empty fields', [[true, 'are one delimiter'], [false, 'are empty fields']]) : null);
}

// What came nearest to the reading, as a button that takes it.
function runnerUp() {
  const { reading } = state.reading;
  const other = reading.confidence?.runner_up;
  const offers = [];
  if (other && other.arrangement === 'fixed' && reading.arrangement !== 'fixed') {
    offers.push(['Fixed columns', { fixed: '1-', delimiter: undefined }]);
  } else if (other && (other.delimiter !== reading.delimiter || other.qualifier !== reading.qualifier || reading.arrangement === 'fixed')) {
    const quote = other.qualifier === reading.qualifier ? '' : (other.qualifier ? `, qualified by ${other.qualifier}` : ', without qualifier');
    offers.push([`${delimiterName(other.delimiter)}${quote}`, { delimiter: other.delimiter, qualifier: other.qualifier, fixed: undefined }]);
  }
  for (const delimiter of state.alternatives?.delimiters ?? []) {
    if (delimiter !== reading.delimiter && delimiter !== other?.delimiter) offers.push([delimiterName(delimiter), { delimiter, fixed: undefined }]);
  }
  if (offers.length === 0) return null;
  return el('p', { class: 'offer', id: 'runner-up' }, el('span', {}, 'Runner-up:'),
    offers.map(([name, settings], number) => el('button', { type: 'button', id: `runner-${number}`, on: { click: () => change(settings) } }, `Cut at ${name}`)));
}

export function showFields() {
  if (!state.reading) {
    sum('fields', '');
    return fill(byId('fields-body'), state.path && !state.failed ? waiting('Finding how lines are cut…') : el('p', { class: 'quiet' }, 'No file is open.'));
  }
  const { given } = state;
  const { reading, settings } = state.reading;
  const fixed = given.fixed !== undefined || (given.delimiter === undefined && reading.arrangement === 'fixed');
  sum('fields', reading.arrangement === 'fixed' ? `${reading.columns.length} fixed columns`
    : `${delimiterName(reading.delimiter)}, ${reading.qualifier ? `qualified by ${reading.qualifier}` : 'no qualifier'}`);
  fill(byId('fields-body'),
    el('div', { class: 'settings' },
      el('fieldset', {}, el('legend', {}, 'Arrangement'),
        el('div', { class: 'choices' }, ['delimited', 'fixed'].map((name) => el('label', {},
          el('input', {
            type: 'radio', name: 'arrangement', id: `arrangement-${name}`, checked: (name === 'fixed') === fixed,
            on: {
              change: () => {
                const isFixed = state.foundArrangement === 'fixed';
                if (name === 'delimited') change({ fixed: undefined, delimiter: isFixed ? ',' : undefined });
                else change({ delimiter: undefined, fixed: isFixed ? undefined : '1-' });
              },
            },
          }), name === 'fixed' ? 'fixed columns' : 'delimited')))),
      choice('decimal', 'Decimal character', 'decimal', reading.decimal, [['point', 'point'], ['comma', 'comma']], settings?.decimal?.evidence)),
    ...(fixed ? ruler() : [delimited()]),
    runnerUp());
}

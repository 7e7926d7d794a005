// The fields: what separates and encloses them, or where the columns of a fixed arrangement begin.
import { change, state } from '../app.js';
import { announce, byId, debounced, el, fill } from '../dom.js';
import { delimiterName, delimiterNames, visible } from '../text.js';

const rulerLines = 12;
const longestRuler = 400;

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

// The borders of fixed columns as offsets between characters: 8 stands behind the eighth.
function borders() {
  const fixed = state.given.fixed ?? state.reading.reading.columns.map(({ from, to }) => `${from}-${to}`).join(',');
  const ends = fixed.split(',').map((range) => Number(range.split('-')[1])).filter((end) => end > 0);
  return ends.slice(0, -1);
}

function setBorders(list, width) {
  const sorted = [...new Set(list)].filter((border) => border > 0 && border < width).sort((a, b) => a - b);
  const starts = [1, ...sorted.map((border) => border + 1)];
  const ends = [...sorted, width];
  change({ fixed: starts.map((start, number) => `${start}-${ends[number]}`).join(',') });
}

const setBordersSoon = debounced(setBorders, 200);

function ruler() {
  const { reading } = state.reading;
  const records = (state.raw ?? []).filter(({ line }) => line >= reading.first_data_line).slice(0, rulerLines);
  const width = Math.min(longestRuler, Math.max(1, ...records.map(({ text }) => Array.from(text).length)));
  const list = borders();
  const place = (border) => `calc(${border} * 1ch)`;
  const ticks = Array.from({ length: Math.ceil(width / 10) }, (_, ten) => el('span', { class: 'tick', style: `left:${place(ten * 10)}` }, ten * 10 || ''));
  const sheet = el('div', {
    class: 'sheet raw', style: `width:calc(${width} * 1ch)`,
    on: {
      dblclick: (event) => {
        const box = sheet.getBoundingClientRect();
        setBorders([...list, Math.round(((event.clientX - box.left) / box.width) * width)], width);
      },
    },
  },
  el('div', { class: 'ticks', 'aria-hidden': 'true' }, ticks),
  records.map(({ text }) => el('div', {}, ...visible(Array.from(text).slice(0, width).join('')), ' ')),
  list.map((border, number) => el('button', {
    type: 'button', class: 'border', id: `border-${number}`, role: 'slider', style: `left:${place(border)}`,
    'aria-label': `Border ${number + 1}`, 'aria-valuemin': 1, 'aria-valuemax': width - 1, 'aria-valuenow': border,
    'aria-valuetext': `behind character ${border}`,
    on: {
      keydown: (event) => {
        const steps = { ArrowLeft: -1, ArrowRight: 1, PageDown: -10, PageUp: 10 };
        if (event.key in steps) {
          event.preventDefault();
          const moved = Math.min(width - 1, Math.max(1, border + steps[event.key]));
          setBorders(list.map((other, at) => (at === number ? moved : other)), width);
          announce(`Border ${number + 1} behind character ${moved}`);
        } else if (event.key === 'Delete' || event.key === 'Backspace') {
          event.preventDefault();
          setBorders(list.filter((_, at) => at !== number), width);
          announce(`Border ${number + 1} removed`);
        }
      },
      pointerdown: (event) => {
        event.preventDefault();
        const button = event.currentTarget;
        button.focus();
        button.setPointerCapture(event.pointerId);
        const box = sheet.getBoundingClientRect();
        const at = (move) => Math.min(width - 1, Math.max(1, Math.round(((move.clientX - box.left) / box.width) * width)));
        const follow = (move) => { button.style.left = place(at(move)); };
        button.addEventListener('pointermove', follow);
        button.addEventListener('pointerup', (up) => {
          button.removeEventListener('pointermove', follow);
          setBorders(list.map((other, index) => (index === number ? at(up) : other)), width);
        }, { once: true });
      },
    },
  })));
  return [
    el('div', { class: 'scroll', tabindex: '0', role: 'region', 'aria-label': 'Ruler of the columns' }, sheet),
    el('div', { class: 'setting' },
      el('label', { for: 'fixed' }, 'Columns (characters, from 1)'),
      el('input', {
        id: 'fixed', type: 'text', size: 40, value: state.given.fixed ?? reading.columns.map(({ from, to }) => `${from}-${to}`).join(','),
        on: { change: (event) => change({ fixed: event.target.value.trim() || undefined }) },
      }),
      el('button', { type: 'button', id: 'add-border', on: { click: () => setBordersSoon([...list, Math.min(width - 1, (list.at(-1) ?? 0) + 5)], width) } }, 'Add a border'),
      el('span', { class: 'evidence' }, 'Drag a border, move it with the arrow keys, remove it with Delete; double-click sets one.')),
  ];
}

export function showFields() {
  if (!state.reading) return fill(byId('fields-body'), el('p', { class: 'quiet' }, 'Open a file first.'));
  const fixed = state.reading.reading.arrangement === 'fixed';
  fill(byId('fields-body'),
    el('fieldset', { class: 'row' },
      el('legend', {}, 'Arrangement'),
      ['delimited', 'fixed'].map((name) => el('label', {},
        el('input', {
          type: 'radio', name: 'arrangement', id: `arrangement-${name}`, checked: (name === 'fixed') === fixed,
          on: {
            change: () => {
              if (name === 'delimited') change({ fixed: undefined, delimiter: state.given.delimiter ?? ',' });
              else change({ delimiter: undefined, fixed: '1-' + Math.max(1, ...(state.raw ?? []).map(({ text }) => Array.from(text).length)) });
            },
          },
        }), name === 'fixed' ? 'fixed columns' : 'delimited'))),
    ...(fixed ? ruler() : delimited()));
}

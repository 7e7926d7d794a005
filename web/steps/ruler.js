// The ruler of fixed columns: borders that are dragged, moved by keys, typed, set and removed.
import { change, state } from '../app.js';
import { announce, el } from '../dom.js';
import { visible } from '../text.js';
import { showFields } from './fields.js';
import { field } from './parts.js';

const rulerLines = 12;
const longestRuler = 400;
// Letters that stand one beside the other in cells of equal width; those of other scripts are wider,
// or joined, or run the other way.
const narrow = /^[\x20-\x7e\u00a1-\u024f\u0370-\u03ff\u0400-\u04ff]*$/u;

// The border that a pointer holds, and where it is meanwhile.
let dragged = null;

const characters = (text) => Array.from(text).length;

function columnsText() {
  return state.given.fixed ?? state.reading.reading.columns.map(({ from, to }) => `${from}-${to || ''}`).join(',');
}

// The borders as offsets between characters: 8 stands behind the eighth.
function borders() {
  return columnsText().split(',').slice(0, -1).map((range) => Number(range.split('-').at(-1))).filter((end) => end > 0);
}

// The last column ends where it ended: at a character, or with the line.
function setBorders(list, width) {
  const sorted = [...new Set(list)].filter((border) => border > 0 && border < width).sort((a, b) => a - b);
  const starts = [1, ...sorted.map((border) => border + 1)];
  const last = columnsText().split(',').at(-1).split('-').at(-1);
  const ends = [...sorted, Number(last) >= starts.at(-1) ? last : ''];
  change({ fixed: starts.map((start, number) => `${start}-${ends[number]}`).join(',') });
}

// A line whose characters all take the same room, so that a border stands where it cuts.
function line(text, width, cells) {
  const shown = Array.from(text).slice(0, width);
  if (!cells) return el('div', { dir: 'ltr' }, ...visible(shown.join('')), ' ');
  return el('div', { dir: 'ltr', class: 'in-cells' }, shown.map((character) => el('span', { class: 'cell' }, ...visible(character))), ' ');
}

// Where a pointer is, in characters.
function under(event, width) {
  const box = event.currentTarget.closest('.sheet').querySelector('.ticks').getBoundingClientRect();
  return Math.min(width - 1, Math.max(1, Math.round(((event.clientX - box.left) / box.width) * width)));
}

function border(place, number, list, width) {
  const shown = dragged?.number === number ? dragged.at : place;
  const move = (to) => setBorders(list.map((other, at) => (at === number ? to : other)), width);
  return el('button', {
    type: 'button', class: 'border', id: `border-${number}`, role: 'slider', style: `left:calc(${shown} * var(--unit))`,
    data: dragged?.number === number ? { dragged: '', at: shown } : {}, 'aria-label': `Border ${number + 1}`, 'aria-orientation': 'horizontal', 'aria-valuemin': 1, 'aria-valuemax': width - 1, 'aria-valuenow': place,
    'aria-valuetext': `behind character ${place}`,
    on: {
      keydown: (event) => {
        const steps = { ArrowLeft: -1, ArrowDown: -1, ArrowRight: 1, ArrowUp: 1, PageDown: -10, PageUp: 10 };
        if (event.key in steps) {
          event.preventDefault();
          const moved = Math.min(width - 1, Math.max(1, place + steps[event.key]));
          if (moved !== place && list.includes(moved)) return announce('Another border stands there.');
          move(moved);
          announce(`Border ${number + 1} stands behind character ${moved}.`);
        } else if (event.key === 'Delete' || event.key === 'Backspace') {
          event.preventDefault();
          setBorders(list.filter((_, at) => at !== number), width);
          announce(`Border ${number + 1} was removed.`);
        }
      },
      pointerdown: (event) => {
        event.preventDefault();
        event.currentTarget.focus();
        event.currentTarget.setPointerCapture(event.pointerId);
        dragged = { number, at: place };
        showFields();
      },
      pointermove: (event) => {
        if (dragged?.number !== number) return;
        dragged.at = under(event, width);
        showFields();
      },
      pointerup: (event) => {
        if (dragged?.number !== number) return;
        dragged = null;
        const to = under(event, width);
        if (to === place) showFields();
        else move(to);
      },
      pointercancel: () => {
        dragged = null;
        showFields();
      },
    },
  });
}

export function ruler() {
  const { reading } = state.reading;
  const lines = state.raw ?? [];
  const data = lines.filter(({ line: number }) => number >= reading.first_data_line);
  const records = (data.length > 0 ? data : lines).slice(0, rulerLines);
  const width = Math.min(longestRuler, Math.max(1, ...borders().map((place) => place + 1), ...records.map(({ text }) => characters(text))));
  const list = borders().filter((place) => place < width);
  const cells = records.some(({ text }) => !narrow.test(text));
  const sheet = el('div', {
    class: 'sheet raw', id: 'sheet', dir: 'ltr', style: `--unit:${cells ? 2 : 1}ch;width:calc(${width} * var(--unit))`,
    on: {
      dblclick: (event) => setBorders([...list, under(event, width)], width),
    },
  });
  const tens = Array.from({ length: Math.ceil(width / 10) }, (_, ten) => el('span', { class: 'tick', style: `left:calc(${ten * 10} * var(--unit))` }, ten * 10 || ''));
  sheet.append(el('div', { class: 'ticks', 'aria-hidden': 'true', style: `width:calc(${width} * var(--unit))` }, tens),
    ...records.map(({ text }) => line(text, width, cells)),
    ...list.map((place, number) => border(place, number, list, width)));
  return [
    el('div', { class: 'scroll ruler', id: 'ruler', tabindex: '0', role: 'region', 'aria-label': 'Ruler of the columns' }, sheet),
    el('div', { class: 'settings fixed-settings' },
      field('fixed', 'Columns', el('input', {
        id: 'fixed', type: 'text', size: 40, value: columnsText(), spellcheck: false, autocomplete: 'off',
        on: { change: (event) => change({ fixed: event.target.value.replaceAll(' ', '') || undefined }) },
      }), 'Characters are counted from 1: 1-8,9-20. Drag a border, or move it with the arrow keys; Delete removes it, a double click sets one.', true),
      el('button', {
        type: 'button', id: 'add-border',
        on: {
          click: () => {
            const last = list.at(-1) ?? 0;
            setBorders([...list, last + Math.max(1, Math.floor((width - last) / 2))], width);
          },
        },
      }, 'Add a border')),
  ];
}

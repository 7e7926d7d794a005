// The lines: where the data begins, which line has the names.
import { change, showRawFrom, state } from '../app.js';
import { announce, byId, count, el, fill } from '../dom.js';
import { lineDirection, pieces, visible } from '../text.js';
import { field, moveFocus, sum, waiting } from './parts.js';

let marked = null; // line and characters of the cell that is looked at
let inOrder = null; // the line whose buttons are in the tab order

function firstDataLine() {
  return state.given.first_line ?? state.reading.reading.first_data_line;
}

function roleOf(line) {
  const { reading } = state.reading;
  const first = firstDataLine();
  if (line < first) {
    const names = state.given.header === undefined ? reading.header_lines : Number(state.given.header);
    return names > 0 && line >= first - names ? 'header' : 'preamble';
  }
  if (reading.last_data_line && line > reading.last_data_line) return 'footer';
  return 'data';
}

const roleNames = { header: 'names', preamble: 'skipped', data: '', footer: 'left out' };

function useAsFirst(line) {
  change({ first_line: line });
  announce(`The data begins in line ${line}.`);
}

function useAsNames(line) {
  change({ first_line: line + 1, header: true });
  announce(`Line ${line} has the names.`);
}

function row(record) {
  const { line } = record;
  const role = roleOf(line);
  const text = marked?.line === line ? pieces(record.text, [{ from: marked.from, to: marked.to, class: 'marked' }]) : visible(record.text);
  const first = line === firstDataLine();
  const button = (id, title, name, use) => el('button', {
    type: 'button', id: `${id}-${line}`, 'aria-label': title, tabindex: line === inOrder ? '0' : '-1',
    on: { click: () => use(line), focus: () => { inOrder = line; } },
  }, name);
  return el('tr', { data: first ? { role, line, first: '' } : { role, line } },
    el('th', { scope: 'row' }, count(line)),
    el('td', { class: 'raw', dir: lineDirection(record.text), title: `Click: the data begins in line ${line}`, on: { click: () => { if (getSelection().isCollapsed) useAsFirst(line); } } }, ...text, record.cut ? el('em', { class: 'quiet' }, ' … (cut)') : null),
    el('td', { class: 'use' }, first ? el('span', { class: 'tag' }, 'data begins') : role === 'header' ? el('span', { class: 'tag' }, 'names') : roleNames[role]),
    el('td', { class: 'set' },
      button('first', `Data begins in line ${line}`, 'Data', useAsFirst), ' ',
      button('names', `Line ${line} has the names`, 'Names', useAsNames)));
}

// Marks characters of a raw line, or none; the line stands below the table of cases, too.
export function markRaw(place) {
  marked = place;
  const shown = byId('cell-line');
  const found = place && state.raw?.find(({ line }) => line === place.line);
  if (shown && found) {
    shown.replaceChildren(`Line ${count(place.line)}`, el('bdi', { class: 'raw', dir: lineDirection(found.text) }, ...pieces(found.text, [{ from: place.from, to: place.to, class: 'marked' }])));
  }
  const body = byId('raw-lines');
  if (!body || !state.raw) return;
  for (const line of body.rows) {
    const record = state.raw.find(({ line: number }) => number === Number(line.dataset.line));
    if (!record) continue;
    const wantedHere = place?.line === record.line;
    if (!wantedHere && !line.querySelector('.marked')) continue;
    line.cells[1].replaceChildren(...(wantedHere ? pieces(record.text, [{ from: place.from, to: place.to, class: 'marked' }]) : visible(record.text)));
  }
}

// Up and down in the column of buttons that has the focus.
function move(event) {
  const kind = event.target.id?.split('-')[0];
  const buttons = [...byId('raw-lines').querySelectorAll(`button[id^="${kind}-"]`)];
  const next = moveFocus(event, buttons);
  if (!next) return;
  for (const button of byId('raw-lines').querySelectorAll('button')) button.tabIndex = button.closest('tr') === next.closest('tr') ? 0 : -1;
}

export function showLines() {
  if (!state.reading || !state.raw) {
    sum('lines', '');
    return fill(byId('lines-body'), state.path && !state.failed ? waiting('Reading the first lines…') : el('p', { class: 'quiet' }, 'No file is open.'));
  }
  const { reading, settings } = state.reading;
  const first = firstDataLine();
  sum('lines', `data from line ${count(first)}${reading.last_data_line ? ` to ${count(reading.last_data_line)}` : ''}, ${reading.header_lines > 0 ? 'names above' : 'no names'}`);
  if (!state.raw.some(({ line }) => line === inOrder)) inOrder = (state.raw.find(({ line }) => line === first) ?? state.raw[0])?.line;
  fill(byId('lines-body'),
    el('div', { class: 'settings' },
      field('first-line', 'Data begins in line', el('input', {
        id: 'first-line', type: 'number', min: 1, value: first,
        on: { change: (event) => change({ first_line: event.target.value ? Number(event.target.value) : undefined }) },
      }), state.given.first_line ? 'set by you' : settings?.first_line?.evidence),
      field('header', 'Names of the columns', el('select', {
        id: 'header', on: { change: (event) => change({ header: event.target.value === '' ? undefined : event.target.value === 'yes' }) },
      },
      el('option', { value: '' }, state.given.header === undefined ? `${reading.header_lines > 0 ? 'in the line above' : 'none'} (found)` : 'find them'),
      el('option', { value: 'yes', selected: state.given.header === true }, 'in the line above'),
      el('option', { value: 'no', selected: state.given.header === false }, 'none')), state.given.header !== undefined ? 'set by you' : settings?.header?.evidence)),
    el('div', { class: 'scroll', tabindex: '0', role: 'region', 'aria-label': 'Lines of the file' },
      el('table', { class: 'lines full', on: { keydown: move } },
        el('caption', { class: 'quiet' }, 'The file as it is. Click the line in which the data begins, or press “Names” on the line that has the names.'),
        el('thead', {}, el('tr', {}, ['Line', 'Text', 'Use', 'Set'].map((title) => el('th', { scope: 'col' }, title)))),
        el('tbody', { id: 'raw-lines' }, state.raw.map(row)))),
    el('p', { class: 'row' },
      el('button', { type: 'button', id: 'raw-back', disabled: state.rawFirst <= 1, on: { click: () => showRawFrom(state.rawFirst - state.counts.raw) } }, 'Earlier lines'),
      el('button', { type: 'button', id: 'raw-on', disabled: state.raw.length < state.counts.raw, on: { click: () => showRawFrom(state.rawFirst + state.counts.raw) } }, 'Later lines'),
      el('span', { class: 'pair' }, el('label', { for: 'raw-line' }, 'Go to line '), el('input', {
        id: 'raw-line', type: 'number', min: 1, value: state.rawFirst, style: 'width:8.5rem', on: { change: (event) => showRawFrom(Number(event.target.value) || 1) },
      })),
      reading.last_data_line ? el('button', { type: 'button', id: 'raw-end', on: { click: () => showRawFrom(reading.last_data_line - 20) } }, 'To the end of the data') : null));
}

// The columns: names, formats, and how well the whole file fits them, above the first cases.
import { change, state } from '../app.js';
import { byId, count, el, fill } from '../dom.js';
import { visible } from '../text.js';
import { markRaw } from './lines.js';
import { sum, waiting } from './parts.js';

const mostColumns = 200;
const formats = ['F8.2', 'COMMA10.2', 'DOT10.2', 'DOLLAR10.2', 'PCT6.1', 'E10.3', 'DATE11', 'ADATE10', 'EDATE10', 'SDATE10', 'JDATE7',
  'QYR8', 'MOYR8', 'WKYR8', 'DATETIME20', 'YMDHMS20', 'TIME8', 'DTIME11', 'MTIME8', 'WKDAY3', 'MONTH3', 'A8', 'A40', 'A255'];

// The cell that is in the tab order; arrow keys move it.
let current = { row: 0, column: 0 };

const isText = (format) => /^A\d/.test(format ?? '');
const quoted = (text) => el('bdi', {}, '“', ...visible(text), '”');

// Where the values went, as a bar and as words.
export function quality(column) {
  const parts = ['read', 'empty', 'null', 'unreadable', 'cut'].filter((key) => column[key] > 0);
  if (parts.length === 0) return el('p', { class: 'counts' }, column.format === 'X' ? 'left out' : 'no values yet');
  const words = parts.map((key) => `${count(column[key])} ${key}`).join(' · ');
  return el('div', {},
    el('div', { class: 'quality', role: 'img', 'aria-label': words, title: words },
      parts.map((key) => el('span', { class: key, style: `flex-grow:${column[key]}` }))),
    el('p', { class: 'counts' }, words));
}

function offending(column) {
  const items = (column.offending ?? []).map((value) => el('li', { class: 'bad-value' }, `line ${count(value.line)}: `, quoted(value.text), ' unreadable'));
  if (column.longest) {
    items.push(el('li', { class: 'cut-value' }, `line ${count(column.longest.line)}: `, quoted(Array.from(column.longest.text).slice(0, 40).join('')),
      ` has ${count(column.longest.count)} bytes and is cut`));
  }
  return items.length > 0 ? el('ul', {}, items) : null;
}

const remarkTexts = {
  mixed: 'Not all values are of one type: text.',
  'leading zeros': 'Text: a number would lose leading zeros.',
  'lost digits': 'Text: a number would lose digits.',
  'too long': 'Longer than the longest string.',
};

const readAs = (column, other) => el('button', { type: 'button', class: 'link', on: { click: () => setType(column.name, other) } }, `Read as ${other}`);

function remarks(column) {
  return (column.remarks ?? []).filter(({ kind }) => kind in remarkTexts).map((remark) => el('p', {}, `${remarkTexts[remark.kind]} Line ${count(remark.line)}: `,
    quoted(remark.text), '. ', remark.other ? readAs(column, remark.other) : null));
}

// Whether the day comes first and what the comma is: what tells, and the switch.
function verdicts(column) {
  const told = [];
  const order = column.day_month;
  if (order) {
    const first = `${order.first === 'day' ? 'Day' : 'Month'} first`;
    const why = order.verdict === 'decided' ? [`, by line ${count(order.line)}: `, quoted(order.text ?? '')]
      : order.verdict === 'mixed' ? [', but not in line ', count(order.line), ': ', quoted(order.text ?? '')] : ', though no value tells';
    told.push(el('p', {}, first, why, '. ', order.other ? readAs(column, order.other) : null));
  }
  const { decimal } = column;
  if (decimal) {
    const character = decimal.other === 'point' ? 'Comma' : 'Point';
    told.push(el('p', {}, `${character} is the decimal`, decimal.verdict === 'ambiguous' ? ', though no value tells' : `, by line ${count(decimal.line)}`, ': ', quoted(decimal.text), '. ',
      el('button', { type: 'button', class: 'link', on: { click: () => change({ decimal: decimal.other }) } }, `Take the ${decimal.other}`)));
  }
  return told;
}

export function setType(name, format) {
  const types = { ...(state.given.types ?? {}) };
  if (format) types[name] = format;
  else delete types[name];
  change({ types: Object.keys(types).length > 0 ? types : undefined });
}

// Formats that were given go along with the name.
function setName(number, name) {
  const names = state.types.map((column) => column.name);
  const types = Object.fromEntries(Object.entries(state.given.types ?? {}).map(([key, format]) => [key === names[number] ? name : key, format]));
  names[number] = name;
  change({ names, types: Object.keys(types).length > 0 ? types : undefined });
}

const isSkipped = (column) => state.given.types?.[column.name] === 'X';

function head(column, number) {
  const given = state.given.types?.[column.name];
  return el('th', { scope: 'col' },
    column.label && column.label !== column.name ? el('div', { class: 'label', dir: 'auto' }, ...visible(column.label)) : null,
    el('input', {
      id: `name-${number}`, class: 'name', type: 'text', value: column.name, 'aria-label': `Name of column ${number + 1}`, spellcheck: false, autocomplete: 'off', dir: 'auto',
      on: { change: (event) => (event.target.value.trim() ? setName(number, event.target.value.trim()) : change({})) },
    }),
    el('input', {
      id: `format-${number}`, type: 'text', value: given ?? column.format, list: 'formats', 'aria-label': `Format of ${column.name}`, spellcheck: false, autocomplete: 'off',
      class: given ? 'format given' : `format ${state.final ? 'final' : 'growing'}`, title: given ? 'Set by you; empty it to let it be found.' : 'Found from the values.',
      on: { change: (event) => setType(column.name, event.target.value.trim().toUpperCase()) },
    }),
    el('label', { class: 'skip-it' }, el('input', {
      type: 'checkbox', id: `skip-${number}`, checked: isSkipped(column), 'aria-label': `Skip ${column.name}`, on: { change: (event) => setType(column.name, event.target.checked ? 'X' : undefined) },
    }), 'skip'));
}

const facts = (column) => el('td', { class: isSkipped(column) ? 'skipped' : '' }, isSkipped(column) ? el('p', {}, 'left out of the import')
  : [quality(column), offending(column), verdicts(column), remarks(column)]);

function cell(value, column, record, row, number) {
  const look = () => markRaw({ line: record.line, from: value.from, to: value.to });
  const text = isText(column.format) || isSkipped(column);
  const isCurrent = current.row === row && current.column === number;
  return el('td', {
    class: `${text ? 'text' : 'number'}${isSkipped(column) ? ' skipped' : ''}`, tabindex: isCurrent ? '0' : '-1', dir: text ? 'auto' : 'ltr',
    data: value.missing ? { missing: '' } : {},
    title: value.missing && value.text.trim() ? `“${value.text}” cannot be read as ${column.format}` : `line ${record.line}`,
    on: {
      mouseenter: look, focus: () => { current = { row, column: number }; look(); },
      mouseleave: (event) => { if (document.activeElement !== event.currentTarget) markRaw(null); }, blur: () => markRaw(null),
    },
  }, ...(value.missing ? [el('span', { class: 'missing' }, value.text.trim() === '' ? '·' : visible(value.text))] : visible(value.value ?? value.text)));
}

// Arrow keys move from cell to cell.
function move(event) {
  const from = event.target.closest('tbody.values td');
  if (!from) return;
  const rows = [...from.closest('tbody').rows];
  const row = rows.indexOf(from.parentElement);
  const column = from.cellIndex - 1;
  const last = from.parentElement.cells.length - 2;
  const to = {
    ArrowLeft: [row, column - 1], ArrowRight: [row, column + 1], ArrowUp: [row - 1, column], ArrowDown: [row + 1, column], Home: [row, 0], End: [row, last],
  }[event.key];
  if (!to) return;
  event.preventDefault();
  const next = rows[Math.min(rows.length - 1, Math.max(0, to[0]))].cells[Math.min(last, Math.max(0, to[1])) + 1];
  from.tabIndex = -1;
  next.tabIndex = 0;
  next.focus();
}

export function showColumns() {
  if (!state.types || !state.reading) {
    sum('columns', '');
    return fill(byId('columns-body'), state.path && !state.failed ? waiting('Reading the first cases…') : el('p', { class: 'quiet' }, 'No file is open.'));
  }
  const columns = state.types.slice(0, mostColumns);
  const left = state.types.length - columns.length;
  const cases = state.head ?? [];
  if (current.row >= cases.length || current.column >= columns.length) current = { row: 0, column: 0 };
  sum('columns', `${count(state.types.length)} ${state.types.length === 1 ? 'column' : 'columns'}`);
  fill(byId('columns-body'),
    el('p', { class: 'hint', id: 'types-state', data: { final: state.final } },
      state.final ? `✓ Types are final: all ${count(state.cases)} cases were read.`
        : state.stopped ? ['Reading was stopped: types are those of what was read. ', el('button', { type: 'button', class: 'link', id: 'read-on', on: { click: () => change({}) } }, 'Read the whole file')] : 'Types are those of what was read so far; the rest of the file is being read.'),
    el('datalist', { id: 'formats' }, formats.map((format) => el('option', { value: format }))),
    el('p', { class: 'cell-line', id: 'cell-line', tabindex: '0', role: 'region', 'aria-label': 'The line of the cell' }, 'The line of a cell stands here.'),
    el('div', { class: 'scroll cases-scroll', id: 'cases', tabindex: '0', role: 'region', 'aria-label': 'Columns and first cases' },
      el('table', { class: 'cases', on: { keydown: move } },
        el('caption', { class: 'quiet' }, 'Point at a cell, or move to it with the arrow keys, to see its characters in the line. “·” is missing.'),
        el('thead', {}, el('tr', { class: 'heads' }, el('th', { scope: 'col' }, 'Line'), columns.map(head))),
        el('tbody', { class: 'facts' }, el('tr', {}, el('th', { scope: 'row' }, 'All'), columns.map(facts))),
        el('tbody', { class: 'values' }, cases.map((record, row) => el('tr', {},
          el('th', { scope: 'row' }, count(record.line)),
          record.cells.slice(0, mostColumns).map((value, number) => cell(value, columns[number] ?? {}, record, row, number))))))),
    left > 0 ? el('p', { class: 'hint' }, `${count(left)} more columns are not shown; the command has them.`) : null);
}

// The columns: names, formats, and how well the whole file fits them, above the first cases.
import { change, state } from '../app.js';
import { byId, count, el, fill } from '../dom.js';
import { visible } from '../text.js';
import { markRaw } from './lines.js';

const mostColumns = 200;
const formats = ['F8.2', 'COMMA10.2', 'DOT10.2', 'DOLLAR10.2', 'PCT6.1', 'E10.3', 'DATE11', 'ADATE10', 'EDATE10', 'SDATE10', 'JDATE7',
  'QYR8', 'MOYR8', 'WKYR8', 'DATETIME20', 'YMDHMS20', 'TIME8', 'DTIME11', 'MTIME8', 'WKDAY3', 'MONTH3', 'A8', 'A40', 'A255'];

const isText = (format) => /^A\d/.test(format ?? '');

function quality(column) {
  const parts = [['read', 'read'], ['empty', 'empty'], ['null', 'null'], ['unreadable', 'unreadable']];
  const all = parts.reduce((sum, [key]) => sum + (column[key] ?? 0), 0);
  if (!all) return null;
  const said = parts.filter(([key]) => column[key]).map(([key, name]) => `${count(column[key])} ${name}`).join(', ');
  return el('div', {},
    el('div', { class: 'quality', role: 'img', 'aria-label': said, title: said },
      parts.filter(([key]) => column[key]).map(([key]) => el('span', { class: key, style: `flex-grow:${column[key]}` }))),
    el('div', { class: 'small' }, said),
    column.offending ? el('div', { class: 'small bad-value' }, `line ${count(column.offending.line)}: `, el('bdi', {}, ...visible(column.offending.text))) : null,
    column.longest ? el('div', { class: 'small bad-value' }, `cut: line ${count(column.longest.line)} has ${count(column.longest.count)} bytes`) : null);
}

const remarkTexts = {
  mixed: 'Most values are of one type, but not enough: text. ',
  'leading zeros': 'Text, because a number would lose leading zeros. ',
  'lost digits': 'Text, because a number would lose digits. ',
  'too long': 'Longer than the longest string. ',
};

function remarks(column) {
  return (column.remarks ?? []).filter(({ kind }) => kind in remarkTexts).map((remark) => el('div', { class: 'small' }, remarkTexts[remark.kind],
    `Line ${count(remark.line)}: `, el('bdi', {}, ...visible(remark.text)), ' ',
    remark.other ? el('button', { type: 'button', class: 'link', on: { click: () => setType(column.name, remark.other) } }, `Read as ${remark.other}`) : null));
}

function question(column) {
  const questions = [];
  const order = column.day_month;
  if (order && (order.verdict !== 'decided' || state.given.types?.[column.name])) {
    questions.push(el('div', { class: 'small' },
      order.verdict === 'mixed' ? 'Days and months come in both orders. ' : 'Day or month first? No value tells. ',
      order.other ? el('button', { type: 'button', class: 'link', on: { click: () => setType(column.name, order.other) } }, `Read as ${order.other}`) : null));
  } else if (order?.line) {
    questions.push(el('div', { class: 'small' }, `decided by line ${count(order.line)}: `, el('bdi', {}, order.text ?? '')));
  }
  const decimal = column.decimal;
  if (decimal && decimal.verdict !== 'decided') {
    questions.push(el('div', { class: 'small' }, 'Is the comma a decimal? No value tells. ',
      el('button', { type: 'button', class: 'link', on: { click: () => change({ decimal: decimal.other }) } }, `Decimal ${decimal.other}`)));
  }
  return questions;
}

function setType(name, format) {
  const types = { ...(state.given.types ?? {}) };
  if (format) types[name] = format;
  else delete types[name];
  change({ types: Object.keys(types).length > 0 ? types : undefined });
}

function setName(number, name) {
  const names = state.types.map((column) => column.name);
  names[number] = name;
  change({ names });
}

function head(column, number) {
  const skipped = state.given.types?.[column.name] === 'X';
  return el('th', { scope: 'col', class: isText(column.format) ? 'text' : 'number' },
    column.label && column.label !== column.name ? el('div', { class: 'label', dir: 'auto' }, ...visible(column.label)) : null,
    el('input', {
      id: `name-${number}`, type: 'text', value: column.name, 'aria-label': `Name of column ${number + 1}`, spellcheck: false,
      on: { change: (event) => setName(number, event.target.value) },
    }),
    el('input', {
      id: `format-${number}`, type: 'text', value: column.format, list: 'formats', 'aria-label': `Format of ${column.name}`, spellcheck: false,
      class: state.final ? 'final' : 'growing',
      on: { change: (event) => setType(column.name, event.target.value.trim().toUpperCase()) },
    }),
    el('label', { class: 'small' }, el('input', {
      type: 'checkbox', id: `skip-${number}`, checked: skipped, on: { change: (event) => setType(column.name, event.target.checked ? 'X' : undefined) },
    }), 'skip'),
    quality(column), question(column), remarks(column));
}

function cell(value, column, record) {
  const look = () => markRaw({ line: record.line, from: value.from, to: value.to });
  return el('td', {
    class: isText(column.format) ? 'text' : 'number', tabindex: '0', dir: isText(column.format) ? 'auto' : 'ltr',
    data: value.missing ? { missing: '' } : {},
    title: value.missing && value.text ? `“${value.text}” cannot be read as ${column.format}` : `line ${record.line}`,
    on: { mouseenter: look, focus: look, mouseleave: () => markRaw(null), blur: () => markRaw(null) },
  }, ...(value.missing ? [el('span', { class: 'missing' }, value.text.trim() === '' ? '·' : value.text)] : visible(value.value ?? value.text)));
}

export function showColumns() {
  if (!state.types || !state.reading) return fill(byId('columns-body'), el('p', { class: 'quiet' }, 'Open a file first.'));
  const columns = state.types.slice(0, mostColumns);
  const left = state.types.length - columns.length;
  fill(byId('columns-body'),
    el('p', { class: 'quiet', id: 'types-state', data: { final: state.final } }, state.final ? 'Types are final: the whole file was read.' : 'Types of the head of the file; the whole file is being read.'),
    el('datalist', { id: 'formats' }, formats.map((format) => el('option', { value: format }))),
    el('div', { class: 'scroll', tabindex: '0', role: 'region', 'aria-label': 'Columns and first cases' },
      el('table', { class: 'cases' },
        el('caption', { class: 'quiet' }, 'Point at a cell, or move to it with Tab, to see its bytes in the line. “·” is missing.'),
        el('thead', {}, el('tr', {}, el('th', { scope: 'col' }, 'Line'), columns.map(head))),
        el('tbody', {}, (state.head ?? []).map((record) => el('tr', {},
          el('th', { scope: 'row' }, record.line),
          record.cells.slice(0, mostColumns).map((value, number) => cell(value, columns[number] ?? {}, record))))))),
    el('p', { class: 'cell-line', id: 'cell-line' }, 'The line of a cell stands here.'),
    left > 0 ? el('p', { class: 'quiet' }, `${count(left)} more columns are not shown; the command has them.`) : null);
}

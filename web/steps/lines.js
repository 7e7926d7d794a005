// The lines: where the data begins, which line has the names.
import { change, showRawFrom, state } from '../app.js';
import { announce, byId, el, fill } from '../dom.js';
import { pieces, visible } from '../text.js';

let marked = null; // line and characters of the cell that is looked at

function roleOf(line) {
  const { reading } = state.reading;
  if (line < reading.first_data_line) {
    const headerFrom = reading.first_data_line - reading.header_lines;
    return reading.header_lines > 0 && line >= headerFrom ? 'header' : 'preamble';
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
  const role = roleOf(record.line);
  const text = marked?.line === record.line
    ? pieces(record.text, [{ from: marked.from, to: marked.to, class: 'marked' }]) : visible(record.text);
  return el('tr', { data: { role, line: record.line } },
    el('th', { scope: 'row' }, record.line),
    el('td', { class: 'raw', dir: 'auto', title: `Data begins in line ${record.line}`, on: { click: () => { if (getSelection().isCollapsed) useAsFirst(record.line); } } }, ...text, record.cut ? el('em', { class: 'quiet' }, ' … (cut)') : null),
    el('td', { class: 'quiet' }, roleNames[role]),
    el('td', { class: 'row nowrap' },
      el('button', { type: 'button', id: `first-${record.line}`, 'aria-label': `Data begins in line ${record.line}`, on: { click: () => useAsFirst(record.line) } }, 'Data'),
      el('button', { type: 'button', id: `names-${record.line}`, 'aria-label': `Line ${record.line} has the names`, on: { click: () => useAsNames(record.line) } }, 'Names')));
}

// Marks characters of a raw line, or none; the line stands below the table of cases, too.
export function markRaw(place) {
  marked = place;
  const shown = byId('cell-line');
  const found = place && state.raw?.find(({ line }) => line === place.line);
  if (shown && found) {
    shown.replaceChildren(`Line ${place.line}: `, el('bdi', { class: 'raw' }, ...pieces(found.text, [{ from: place.from, to: place.to, class: 'marked' }])));
  }
  const body = byId('raw-lines');
  if (!body || !state.raw) return;
  for (const line of body.rows) {
    const record = state.raw.find(({ line: number }) => number === Number(line.dataset.line));
    if (!record) continue;
    const wanted = place?.line === record.line;
    if (!wanted && !line.querySelector('.marked')) continue;
    line.cells[1].replaceChildren(...(wanted ? pieces(record.text, [{ from: place.from, to: place.to, class: 'marked' }]) : visible(record.text)));
  }
}

export function showLines() {
  if (!state.reading || !state.raw) return fill(byId('lines-body'), el('p', { class: 'quiet' }, 'Open a file first.'));
  const { reading, settings } = state.reading;
  fill(byId('lines-body'),
    el('div', { class: 'setting' },
      el('label', { for: 'first-line' }, 'Data begins in line'),
      el('input', {
        id: 'first-line', type: 'number', min: 1, value: state.given.first_line ?? reading.first_data_line,
        on: { change: (event) => change({ first_line: event.target.value ? Number(event.target.value) : undefined }) },
      }),
      el('label', { for: 'header' }, 'Names'),
      el('select', {
        id: 'header',
        on: { change: (event) => change({ header: event.target.value === '' ? undefined : event.target.value === 'yes' }) },
      },
      el('option', { value: '' }, `found: ${reading.header_lines > 0 ? 'in the line above' : 'none'}`),
      el('option', { value: 'yes', selected: state.given.header === true }, 'in the line above'),
      el('option', { value: 'no', selected: state.given.header === false }, 'none')),
      el('span', { class: 'evidence' }, settings?.first_line?.evidence ?? '')),
    el('div', { class: 'scroll', tabindex: '0', role: 'region', 'aria-label': 'Lines of the file' },
      el('table', { class: 'lines' },
        el('caption', { class: 'quiet' }, 'The file as it is: click the line in which the data begins, or press “Names” on the line that has the names.'),
        el('thead', {}, el('tr', {}, ['Line', 'Text', 'Use', 'Set'].map((title) => el('th', { scope: 'col' }, title)))),
        el('tbody', { id: 'raw-lines' }, state.raw.map(row)))),
    el('p', { class: 'row' },
      el('button', { type: 'button', id: 'raw-back', disabled: state.rawFirst <= 1, on: { click: () => showRawFrom(state.rawFirst - 40) } }, 'Earlier lines'),
      el('button', { type: 'button', id: 'raw-on', disabled: state.raw.length < 40, on: { click: () => showRawFrom(state.rawFirst + 40) } }, 'Later lines'),
      reading.last_data_line ? el('button', { type: 'button', id: 'raw-end', on: { click: () => showRawFrom(reading.last_data_line - 20) } }, 'To the end of the data') : null));
}

// The result: outputs, the import, its problems and its ledger.
import { loadProblems, startImport, state } from '../app.js';
import { announce, byId, bytes, copyText, count, el, fill } from '../dom.js';
import { visible } from '../text.js';
import { field, sum } from './parts.js';

const kinds = [['csv', 'CSV'], ['tsv', 'TSV'], ['jsonl', 'JSON Lines'], ['arrow', 'Arrow'], ['parquet', 'Parquet'], ['sqlite', 'SQLite'], ['sps', 'the command (.sps)']];
const pageLength = 100;
let chosen = new Set(['csv', 'sps']);
let replace = false;
let name = { path: null, text: '' };
let expectedOf = '';

const baseName = () => (state.path ?? 'data').replace(/(\.[A-Za-z0-9]{1,8}){1,2}$/, '') + '-imported';

function form() {
  const base = name.path === state.path && name.text ? name.text : baseName();
  const outputs = kinds.filter(([kind]) => chosen.has(kind)).map(([kind]) => `${base}.${kind}`);
  return el('form', {
    on: {
      submit: (event) => {
        event.preventDefault();
        startImport(outputs, replace);
      },
    },
  },
  el('div', { class: 'settings' },
    field('output-name', 'Write to', el('input', {
      id: 'output-name', type: 'text', size: 32, value: base, spellcheck: false, autocomplete: 'off',
      on: {
        input: (event) => {
          name = { path: state.path, text: event.target.value };
          showResult();
        },
      },
    }), 'below the folder of the file, without the ending'),
    el('fieldset', {}, el('legend', {}, 'Formats'),
      el('div', { class: 'chips' }, kinds.map(([kind, title]) => el('label', {}, el('input', {
        type: 'checkbox', id: `output-${kind}`, checked: chosen.has(kind),
        on: {
          change: (event) => {
            if (event.target.checked) chosen.add(kind);
            else chosen.delete(kind);
            showResult();
          },
        },
      }), title))))),
  el('div', { class: 'row' },
    el('button', { id: 'import', class: 'main', type: 'submit', disabled: state.importing || !state.path }, state.importing ? 'Importing…' : 'Import'),
    el('label', {}, el('input', { type: 'checkbox', id: 'replace', checked: replace, on: { change: (event) => { replace = event.target.checked; } } }), 'Replace files of these names')),
  el('p', { class: 'hint row', id: 'planned' }, outputs.length > 0 ? `Writes ${outputs.join(', ')}` : 'Writes nothing: reads all cases and tells problems, ledger and digest.'));
}

function table(titles, rows) {
  return el('table', { class: 'full' },
    el('thead', {}, el('tr', {}, titles.map((title) => el('th', { scope: 'col', class: title.startsWith('#') ? 'number' : '' }, title.replace('#', ''))))),
    el('tbody', {}, rows));
}

function columnFilter(id, value, settle) {
  return el('p', { class: 'row', style: 'margin:0 0 .5rem' },
    el('label', { for: id }, 'Of column'),
    el('select', { id, on: { change: (event) => settle(event.target.value) } },
      el('option', { value: '' }, 'all'),
      (state.types ?? []).map((column) => el('option', { value: column.name, selected: column.name === value }, column.name))));
}

// What the types of the page would lose: while the file is read, and until it is imported.
function expected() {
  if (!state.types || state.result) return null;
  const rows = [];
  for (const column of state.types) {
    if (expectedOf && column.name !== expectedOf) continue;
    for (const value of column.offending ?? []) {
      rows.push([column.name, 'unreadable', value.count, value.line, value.text, `cannot be read as ${column.format}: the number will be missing`]);
    }
    if (column.longest) rows.push([column.name, 'cut', column.cut, column.longest.line, column.longest.text, `longer than ${column.format}: the text will be cut`]);
  }
  const so = state.final ? '' : ' so far';
  return el('div', { class: 'part', id: 'expected' },
    el('h3', {}, 'Problems to expect'),
    columnFilter('expected-column', expectedOf, (value) => {
      expectedOf = value;
      showResult();
    }),
    rows.length === 0 ? el('p', { class: 'quiet' }, `No value${expectedOf ? ` of ${expectedOf}` : ''} is unreadable or cut${so}.`)
      : el('div', { class: 'scroll short', tabindex: '0', role: 'region', 'aria-label': 'Problems to expect' },
        table(['Column', 'Kind', '#Count', '#First line', 'First text', 'What will happen'], rows.map(([column, kind, many, line, text, why]) => el('tr', {},
          el('td', {}, column), el('td', {}, kind), el('td', { class: 'number' }, many === undefined ? '' : count(many)), el('td', { class: 'number' }, count(line)),
          el('td', {}, el('bdi', { class: 'raw' }, ...visible(text))), el('td', {}, why))))));
}

function problemList() {
  const { problems } = state;
  if (!problems) return null;
  const none = problems.all === 0;
  const last = problems.offset + problems.problems.length;
  return el('div', { class: 'part', id: 'problems' },
    el('h3', {}, none && !problems.variable ? 'No problems' : `${count(problems.all)} ${problems.all === 1 ? 'problem' : 'problems'}${problems.variable ? ` of ${problems.variable}` : ''}`),
    none && !problems.variable ? null : columnFilter('problem-column', problems.variable, (value) => loadProblems(value, 0)),
    none ? null : el('div', { class: 'scroll short', tabindex: '0', role: 'region', 'aria-label': 'Problems' },
      table(['#Line', '#Case', 'Column', 'Kind', 'Text', 'What happened'], problems.problems.map((problem) => el('tr', {},
        el('td', { class: 'number' }, problem.line === undefined ? '' : count(problem.line)),
        el('td', { class: 'number' }, problem.case === undefined ? '' : count(problem.case)),
        el('td', {}, problem.variable ?? ''), el('td', {}, problem.kind),
        el('td', {}, el('bdi', { class: 'raw' }, ...visible(problem.text ?? ''))), el('td', {}, problem.detail ?? ''))))),
    problems.all > pageLength ? el('p', { class: 'row' },
      el('button', { type: 'button', id: 'problems-back', disabled: problems.offset === 0, on: { click: () => loadProblems(problems.variable, Math.max(0, problems.offset - pageLength)) } }, 'Earlier problems'),
      el('button', { type: 'button', id: 'problems-on', disabled: last >= problems.all, on: { click: () => loadProblems(problems.variable, problems.offset + pageLength) } }, 'Later problems'),
      el('span', { class: 'hint' }, `${count(problems.offset + 1)} to ${count(last)}`)) : null);
}

const ledgerParts = [
  ['bytes', 'Bytes', ['mark', 'skipped', 'records', 'line_ends', 'dropped', 'unread']],
  ['records_read', 'Records read', ['records_in_cases', 'records_without_case']],
  ['cells', 'Cells', ['read', 'empty', 'null', 'unreadable', 'absent']],
];

function ledgerTables(ledger) {
  return el('div', { class: 'part', id: 'ledger' }, el('h3', {}, 'Ledger: where everything went'),
    el('div', { class: 'ledgers' }, ledgerParts.map(([total, title, parts]) => el('table', {},
      el('caption', { class: 'quiet' }, title),
      el('tbody', {}, parts.map((part) => el('tr', {}, el('th', { scope: 'row' }, part.replaceAll('_', ' ')), el('td', { class: 'number' }, count(ledger[part]))))),
      el('tfoot', {}, el('tr', {}, el('th', { scope: 'row' }, 'together'), el('td', { class: 'number' }, count(ledger[total]))))))));
}

function outcome() {
  const { result } = state;
  if (!result) return null;
  if (result.cancelled) return el('p', { class: 'said stopped row', id: 'was-stopped' }, 'The import was stopped. Unfinished outputs were removed.');
  return el('div', { id: 'outcome' },
    el('div', { class: 'said good row', style: 'display:block' },
      el('p', {}, '✓ ', el('strong', {}, `${count(result.cases)} cases`), ` of ${count(result.ledger.variables)} variables imported, ${bytes(result.ledger.bytes)} read.`),
      result.outputs?.length ? el('ul', { class: 'outputs' }, result.outputs.map((output) => el('li', {}, el('bdi', { class: 'path' }, ...visible(output))))) : null,
      el('p', {}, 'Digest ', el('code', { id: 'digest' }, result.digest))),
    result.line ? el('div', { class: 'part' }, el('h3', {}, 'The same again, from a terminal'), el('code', { class: 'line' }, result.line),
      el('p', { class: 'row' }, el('button', {
        type: 'button', id: 'copy-line', on: {
          click: async () => {
            await copyText(result.line);
            announce('The line was copied.');
          },
        },
      }, 'Copy the line'))) : null,
    problemList(),
    result.ledger ? ledgerTables(result.ledger) : null);
}

export function showResult() {
  const { result } = state;
  sum('result', result && !result.cancelled ? `${count(result.cases)} cases imported` : '');
  if (!state.reading) return fill(byId('result-body'), el('p', { class: 'quiet' }, 'No file is open.'));
  fill(byId('result-body'), form(), outcome(), expected());
}

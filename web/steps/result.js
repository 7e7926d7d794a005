// The result: outputs, the import, its problems and its ledger.
import { loadProblems, startImport, state } from '../app.js';
import { byId, count, el, fill } from '../dom.js';
import { visible } from '../text.js';

const kinds = ['csv', 'tsv', 'jsonl', 'arrow', 'parquet', 'sqlite', 'sps'];
const kindNames = { sps: 'sps (the command)' };
let chosen = new Set(['csv', 'sps']);
let replace = false;
let name = '';

function form() {
  const base = name || (state.path ?? 'data').replace(/(\.[A-Za-z0-9]{1,8}){1,2}$/, '') + '-imported';
  return el('form', {
    on: {
      submit: (event) => {
        event.preventDefault();
        startImport([...chosen].map((kind) => `${name || base}.${kind}`), replace);
      },
    },
  },
  el('div', { class: 'setting' },
    el('label', { for: 'output-name' }, 'Write to'),
    el('input', { id: 'output-name', type: 'text', size: 40, value: base, spellcheck: false, on: { input: (event) => { name = event.target.value; } } }),
    el('fieldset', { class: 'row' }, el('legend', {}, 'Formats'),
      kinds.map((kind) => el('label', {}, el('input', {
        type: 'checkbox', id: `output-${kind}`, checked: chosen.has(kind),
        on: {
          change: (event) => {
            if (event.target.checked) chosen.add(kind);
            else chosen.delete(kind);
          },
        },
      }), kindNames[kind] ?? kind))),
    el('label', {}, el('input', { type: 'checkbox', id: 'replace', checked: replace, on: { change: (event) => { replace = event.target.checked; } } }), 'replace files of these names')),
  el('p', {}, el('button', { id: 'import', class: 'main', disabled: state.importing || !state.path }, state.importing ? 'Importing…' : 'Import')));
}

function ledgerTable(ledger) {
  return el('table', { class: 'ledger' },
    el('caption', {}, 'Ledger: where every byte, record and cell went'),
    el('tbody', {}, Object.entries(ledger).map(([key, value]) => el('tr', {}, el('th', { scope: 'row' }, key.replaceAll('_', ' ')), el('td', { class: 'number' }, count(value))))));
}

function problemList() {
  const { problems } = state;
  if (!problems) return null;
  if (problems.all === 0 && !problems.variable) return el('p', {}, 'No problems.');
  const names = (state.types ?? []).map((column) => column.name);
  return el('div', {},
    el('h3', {}, `Problems: ${count(problems.all)}`),
    el('p', { class: 'setting' },
      el('label', { for: 'problem-column' }, 'Of'),
      el('select', { id: 'problem-column', on: { change: (event) => loadProblems(event.target.value, 0) } },
        el('option', { value: '' }, 'all columns'),
        names.map((column) => el('option', { value: column, selected: column === problems.variable }, column)))),
    el('div', { class: 'scroll', tabindex: '0', role: 'region', 'aria-label': 'Problems' },
      el('table', {},
        el('thead', {}, el('tr', {}, ['Line', 'Case', 'Column', 'Kind', 'Text', 'What happened'].map((title) => el('th', { scope: 'col' }, title)))),
        el('tbody', {}, problems.problems.map((problem) => el('tr', {},
          el('td', { class: 'number' }, problem.line === undefined ? '' : count(problem.line)),
          el('td', { class: 'number' }, problem.case === undefined ? '' : count(problem.case)),
          el('td', {}, problem.variable ?? ''), el('td', {}, problem.kind),
          el('td', { dir: 'auto' }, ...visible(problem.text ?? '')), el('td', {}, problem.detail ?? '')))))),
    el('p', { class: 'row' },
      el('button', { type: 'button', id: 'problems-back', disabled: problems.offset === 0, on: { click: () => loadProblems(problems.variable, Math.max(0, problems.offset - 100)) } }, 'Earlier problems'),
      el('button', { type: 'button', id: 'problems-on', disabled: problems.offset + problems.problems.length >= problems.all, on: { click: () => loadProblems(problems.variable, problems.offset + 100) } }, 'Later problems')));
}

function outcome() {
  const { result } = state;
  if (!result) return null;
  if (result.cancelled) return el('p', { class: 'alert' }, 'The import was stopped. Unfinished outputs were removed.');
  return el('div', { id: 'outcome' },
    el('p', {}, el('strong', {}, `${count(result.cases)} cases`), ' imported. Digest ', el('code', { id: 'digest' }, result.digest)),
    result.outputs?.length ? el('ul', {}, result.outputs.map((output) => el('li', {}, el('bdi', {}, ...visible(output))))) : null,
    result.line ? el('p', {}, 'Again, from a terminal: ', el('code', { class: 'line' }, result.line)) : null,
    problemList(),
    result.ledger ? ledgerTable(result.ledger) : null);
}

export function showResult() {
  if (!state.reading) return fill(byId('result-body'), el('p', { class: 'quiet' }, 'Open a file first.'));
  fill(byId('result-body'), form(), outcome());
}

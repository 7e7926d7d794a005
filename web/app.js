// What happens when: the user's settings, the requests that follow from a change, the steps.
import { ask, follow } from './api.js';
import { started } from './start.js';
import { alertText, announce, byId, bytes, copyText, count, debounced } from './dom.js';
import { showFile } from './steps/file.js';
import { showLines } from './steps/lines.js';
import { showFields } from './steps/fields.js';
import { showColumns } from './steps/columns.js';
import { showResult } from './steps/result.js';

// What is known. Steps read it and change it by `change` and `open` only.
export const state = {
  path: null,
  given: {},
  reading: null, // the answer of sniff
  alternatives: null,
  encodings: null, // the file decoded otherwise
  raw: null, // records as the component's request handler sees them
  rawFirst: 1,
  counts: { raw: 0, head: 0 }, // records and cases that are shown
  head: null, // cases of the head
  types: null, // columns, growing
  cases: 0, // that the types come from, once they are final
  options: [], // of `textwizard run`, that go with the command
  final: false,
  stopped: false, // the reading of the types
  stale: false, // what is shown is of settings that have changed since
  failed: false, // nothing could be read
  foundArrangement: null, // where nobody has given one
  job: null, // of the types
  importJob: null,
  result: null,
  problems: null,
  importing: false,
};

let round = 0;
let abort = new AbortController();

const steps = [showFile, showLines, showFields, showColumns, showResult];

export function render() {
  for (const step of steps) step();
  byId('file-name').textContent = state.path ?? '';
  document.title = state.path ? `${state.path} · TextWizard` : 'TextWizard';
  document.body.dataset.bodyStale = state.stale;
  document.body.dataset.empty = !state.path || state.failed;
  byId('columns').setAttribute('aria-busy', state.stale);
  const reading = state.path ? state.reading : null;
  byId('file-facts').textContent = reading ? bytes(reading.bytes) : '';
  const confidence = reading?.reading.confidence;
  const verdict = byId('verdict');
  verdict.hidden = !confidence;
  verdict.textContent = confidence?.verdict === 'guess' ? 'a guess: look at it' : confidence?.verdict ?? '';
  verdict.title = 'How sure the reading of this file is';
  verdict.dataset.verdict = confidence?.verdict ?? '';
}

function showError(error) {
  if (error.name === 'AbortError') return;
  alertText('alert', error.message);
  byId('alert').scrollIntoView({ block: 'nearest' });
}

// Cancels what is being read for settings that no longer hold.
function restart() {
  round += 1;
  abort.abort();
  abort = new AbortController();
  if (state.job !== null) ask(`api/jobs/${state.job}/cancel`).catch(() => {});
  state.job = null;
  return round;
}

function showProgress(progress, what) {
  const bar = byId('progress');
  bar.hidden = false;
  byId('cancel').hidden = false;
  if (progress.all_bytes > 0) bar.value = progress.bytes / progress.all_bytes;
  else bar.removeAttribute('value');
  const share = progress.all_bytes > 0 ? `${Math.floor((100 * progress.bytes) / progress.all_bytes)} %` : bytes(progress.bytes);
  announce(`${what}: ${share}`);
}

function hideProgress() {
  if (state.importing) return;
  byId('progress').hidden = true;
  byId('cancel').hidden = true;
}

async function readTypes(now) {
  const { job } = await ask('api/types', { path: state.path, given: state.given }, abort.signal);
  if (now !== round) {
    ask(`api/jobs/${job}/cancel`).catch(() => {});
    return;
  }
  state.job = job;
  const take = (answer, final) => {
    if (now !== round) return;
    state.types = answer.columns;
    state.final = final;
    if (final) state.cases = answer.cases;
    if (answer.command) setCommand(answer.command, answer.options);
    steps[3]();
    steps[4]();
  };
  const done = await follow(job, (progress) => {
    if (now !== round) return;
    if (!state.importing) showProgress(progress, 'Reading the whole file');
    take(progress, false);
  });
  if (now !== round) return;
  state.job = null;
  hideProgress();
  if (done === null) {
    state.stopped = true;
    render();
    announce('Reading was stopped: types are those of what was read.');
    return;
  }
  take(done, true);
  announce(`Types are final: ${count(done.cases)} cases read.`);
}

// Reads again what the settings ask for. `what`: "all" after a new file or encoding, "fields" when the
// raw lines stay as they are. `known`: answers that are there already, by their questions.
async function refresh(what, known = {}) {
  const now = restart();
  hideProgress();
  alertText('alert', null);
  Object.assign(state, {
    final: false, stopped: false, failed: false, stale: Boolean(state.path), result: state.importing ? state.result : null, problems: state.importing ? state.problems : null,
  });
  if (!known.sniff) render();
  if (!state.path) {
    announce('');
    return;
  }
  const request = { path: state.path, given: state.given };
  try {
    if (what === 'all') announce('Looking at the file…');
    const sniffed = known.sniff ?? await ask('api/sniff', request, abort.signal);
    if (now !== round) return;
    state.reading = sniffed;
    if (state.given.fixed === undefined && state.given.delimiter === undefined) state.foundArrangement = sniffed.reading.arrangement;
    state.alternatives = sniffed.alternatives ?? {};
    const { signal } = abort;
    const raw = what === 'all'
      ? known.raw ?? ask('api/raw', { path: state.path, encoding: sniffed.reading.encoding, first: state.rawFirst, count: state.counts.raw }, signal)
      : Promise.resolve({ records: state.raw });
    const encodings = what === 'all' && sniffed.alternatives?.encodings?.length
      ? ask('api/encodings', { path: state.path, encodings: sniffed.alternatives.encodings }, signal)
      : Promise.resolve({ encodings: what === 'all' ? [] : state.encodings });
    const [records, head, others] = await Promise.all([raw, known.head ?? ask('api/head', { ...request, count: state.counts.head }, signal), encodings]);
    if (now !== round) return;
    state.raw = records.records;
    state.head = head.cases;
    state.encodings = others.encodings;
    state.types = head.columns;
    state.stale = false;
    setCommand(head.command, head.options);
    render();
    await readTypes(now);
  } catch (error) {
    if (now !== round) return;
    hideProgress();
    Object.assign(state, { stale: false, failed: !state.reading });
    render();
    announce('');
    showError(error);
  }
}

// Of several changes at once, what all of them ask for.
let wanted = 'fields';
const refreshWanted = debounced(() => {
  const what = wanted;
  wanted = 'fields';
  refresh(what);
}, 120);

function refreshSoon(what) {
  if (what === 'all') wanted = what;
  refreshWanted();
}

// Opens a file and finds everything about it that is not `known`.
export function open(path, known = {}) {
  Object.assign(state, {
    path, given: {}, reading: null, alternatives: null, encodings: null, raw: null, rawFirst: 1, head: null, types: null, result: null, foundArrangement: null,
  });
  if (!path) setCommand('', []);
  refresh('all', known);
}

// What the user says; undefined lets it be found again. Settings that follow from others are dropped
// with them.
export function change(settings) {
  state.given = { ...state.given, ...settings };
  for (const [key, value] of Object.entries(state.given)) if (value === undefined) delete state.given[key];
  if (['delimiter', 'fixed', 'qualifier', 'multiple_blanks', 'first_line', 'header'].some((key) => key in settings)) {
    delete state.given.names;
    delete state.given.types;
  }
  Object.assign(state, { final: false, stale: true });
  render();
  refreshSoon('encoding' in settings ? 'all' : 'fields');
}

export async function showRawFrom(first) {
  state.rawFirst = Math.max(1, first);
  try {
    const answer = await ask('api/raw', { path: state.path, encoding: state.reading.reading.encoding, first: state.rawFirst, count: state.counts.raw });
    state.raw = answer.records;
    render();
  } catch (error) {
    showError(error);
  }
}

// Imports what the command says as it stands. The types are not read on meanwhile.
export async function startImport(outputs, replace) {
  restart();
  Object.assign(state, { importing: true, result: null, problems: null, stopped: !state.final });
  alertText('alert', null);
  render();
  try {
    const { job } = await ask('api/import', { command: byId('command').value, options: state.options, outputs, replace });
    state.importJob = job;
    const done = await follow(job, (progress) => showProgress(progress, 'Importing'));
    state.result = done === null ? { cancelled: true } : done;
    announce(done === null ? 'The import was stopped; unfinished outputs were removed.' : `Imported ${count(done.cases)} cases.`);
    if (done !== null) await loadProblems('', 0, job);
  } catch (error) {
    announce('');
    showError(error);
  } finally {
    Object.assign(state, { importing: false, importJob: null });
    hideProgress();
    render();
  }
}

export async function loadProblems(variable, offset, job = state.problems?.job) {
  const answer = await ask(`api/jobs/${job}/problems`, { variable, offset, count: 100 });
  state.problems = { ...answer, variable, offset, job };
  render();
}

// The step that is seen is marked in the list of steps.
const seen = new IntersectionObserver((entries) => {
  for (const entry of entries) entry.target.dataset.seen = entry.isIntersecting;
  const first = document.querySelector('section[data-seen="true"]');
  for (const link of document.querySelectorAll('.steps a')) {
    if (first && link.hash === `#${first.id}`) link.setAttribute('aria-current', 'step');
    else link.removeAttribute('aria-current');
  }
}, { rootMargin: '-25% 0px -60% 0px' });
for (const section of document.querySelectorAll('main section')) seen.observe(section);

// The command. What the program says stands there until the user edits it.

let saidCommand = '';

function setCommand(text, options) {
  state.options = options;
  const area = byId('command');
  const edited = area.value !== saidCommand;
  saidCommand = text;
  if (edited) return;
  area.value = text;
  commandEdited();
}

function commandEdited() {
  const edited = byId('command').value !== saidCommand;
  byId('apply').disabled = !edited;
  byId('revert').disabled = !edited;
  byId('command').dataset.edited = edited;
  if (!edited) alertText('command-error', null);
}

byId('command').addEventListener('input', commandEdited);
byId('revert').addEventListener('click', () => {
  byId('command').value = saidCommand;
  commandEdited();
});
async function applyCommand() {
  try {
    const answer = await ask('api/command', { command: byId('command').value, options: state.options });
    alertText('command-error', null);
    saidCommand = byId('command').value;
    commandEdited();
    state.path = answer.path;
    state.given = answer.given;
    refresh('all');
  } catch (error) {
    const place = error.line ? `Line ${error.line}, column ${error.column}: ` : '';
    alertText('command-error', place + error.message);
    if (error.line) {
      const lines = byId('command').value.split('\n');
      const start = lines.slice(0, error.line - 1).reduce((sum, line) => sum + line.length + 1, 0) + error.column - 1;
      byId('command').focus();
      byId('command').setSelectionRange(start, start + 1);
    }
  }
}

byId('apply').addEventListener('click', applyCommand);
byId('command').addEventListener('keydown', (event) => {
  if (event.key === 'Enter' && (event.ctrlKey || event.metaKey) && !byId('apply').disabled) applyCommand();
});
byId('copy').addEventListener('click', async () => {
  await copyText(byId('command').value);
  announce('The command was copied.');
});
byId('cancel').addEventListener('click', () => {
  const job = state.importJob ?? state.job;
  if (job !== null) ask(`api/jobs/${job}/cancel`).catch(showError);
});

// With --once the program ends when its page is closed.
addEventListener('pagehide', () => {
  fetch('api/close', { method: 'POST', headers: { 'Content-Type': 'application/json' }, body: '{}', keepalive: true }).catch(() => {});
});

const asked = new URLSearchParams(location.search).get('file');
started.then(({ path, counts, first }) => {
  state.counts = counts;
  if (asked) open(asked, asked === path ? first : {});
  else if (path) open(path, first);
  else render();
}).catch(showError);

// What happens when: the user's settings, the requests that follow from a change, the steps.
import { ask, follow } from './api.js';
import { alertText, announce, byId, bytes, count, debounced } from './dom.js';
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
  head: null, // cases of the head
  types: null, // columns, growing
  options: [], // of `textwizard run`, that go with the command
  final: false,
  job: null, // of the types, or of the import
  result: null,
  problems: null,
  importing: false,
};

const rawCount = 40;
const headCount = 30;

let round = 0;
let abort = new AbortController();

const steps = [showFile, showLines, showFields, showColumns, showResult];

export function render() {
  for (const step of steps) step();
  byId('file-name').textContent = state.path ? `· ${state.path}` : '';
  document.title = state.path ? `${state.path} · TextWizard` : 'TextWizard';
  const confidence = state.reading?.reading.confidence;
  const verdict = byId('verdict');
  verdict.textContent = confidence ? `This reading is ${confidence.verdict === 'guess' ? 'a guess: look at it' : confidence.verdict}.` : '';
  verdict.dataset.verdict = confidence?.verdict ?? '';
}

function showError(error) {
  if (error.name === 'AbortError') return;
  alertText('alert', error.message);
}

// Cancels what is being read for settings that no longer hold.
function restart() {
  round += 1;
  abort.abort();
  abort = new AbortController();
  if (state.job !== null && !state.importing) ask(`api/jobs/${state.job}/cancel`).catch(() => {});
  if (!state.importing) state.job = null;
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
    if (answer.command) setCommand(answer.command, answer.options);
    steps[3]();
    steps[4]();
  };
  const done = await follow(job, (progress) => {
    if (now !== round) return;
    showProgress(progress, 'Reading the whole file');
    take(progress, false);
  });
  if (now !== round) return;
  state.job = null;
  hideProgress();
  if (done === null) {
    announce('Reading was stopped: types are those of the head of the file.');
    return;
  }
  take(done, true);
  announce(`Types are final: ${count(done.cases)} cases read.`);
}

// Reads again what the settings ask for. `what`: "all" after a new file or encoding, "fields" when the
// raw lines stay as they are.
async function refresh(what) {
  const now = restart();
  hideProgress();
  if (!state.path) return render();
  alertText('alert', null);
  Object.assign(state, { final: false, result: state.importing ? state.result : null, problems: null });
  const request = { path: state.path, given: state.given };
  try {
    if (what === 'all') announce('Looking at the file…');
    const sniffed = await ask('api/sniff', request, abort.signal);
    if (now !== round) return;
    state.reading = sniffed;
    state.alternatives = sniffed.alternatives ?? {};
    const { signal } = abort;
    const raw = what === 'all'
      ? ask('api/raw', { path: state.path, encoding: sniffed.reading.encoding, first: state.rawFirst, count: rawCount }, signal)
      : Promise.resolve({ records: state.raw });
    const encodings = what === 'all' && sniffed.alternatives?.encodings?.length
      ? ask('api/encodings', { path: state.path, encodings: sniffed.alternatives.encodings }, signal)
      : Promise.resolve({ encodings: what === 'all' ? [] : state.encodings });
    const [records, head, others] = await Promise.all([raw, ask('api/head', { ...request, count: headCount }, signal), encodings]);
    if (now !== round) return;
    state.raw = records.records;
    state.head = head.cases;
    state.encodings = others.encodings;
    state.types = head.columns;
    setCommand(head.command, head.options);
    render();
    await readTypes(now);
  } catch (error) {
    if (now !== round) return;
    hideProgress();
    render();
    showError(error);
  }
}

const refreshSoon = debounced(refresh, 120);

// Opens a file and finds everything about it.
export function open(path) {
  Object.assign(state, {
    path, given: {}, reading: null, alternatives: null, encodings: null, raw: null, rawFirst: 1, head: null, types: null, result: null,
  });
  history.replaceState(null, '', `#file`);
  refresh('all');
}

// What the user says; undefined lets it be found again. Settings that follow from others are dropped
// with them.
export function change(settings) {
  state.given = { ...state.given, ...settings };
  for (const [key, value] of Object.entries(state.given)) if (value === undefined) delete state.given[key];
  if ('delimiter' in settings || 'fixed' in settings || 'qualifier' in settings || 'first_line' in settings || 'header' in settings) {
    delete state.given.names;
    delete state.given.types;
  }
  state.final = false;
  render();
  refreshSoon('encoding' in settings ? 'all' : 'fields');
}

export async function showRawFrom(first) {
  state.rawFirst = Math.max(1, first);
  try {
    const answer = await ask('api/raw', { path: state.path, encoding: state.reading.reading.encoding, first: state.rawFirst, count: rawCount });
    state.raw = answer.records;
    render();
  } catch (error) {
    showError(error);
  }
}

export async function startImport(outputs, replace) {
  const now = restart();
  Object.assign(state, { importing: true, result: null, problems: null });
  alertText('alert', null);
  render();
  try {
    const { job } = await ask('api/import', { command: byId('command').value, options: state.options, outputs, replace });
    state.job = job;
    const done = await follow(job, (progress) => showProgress(progress, 'Importing'));
    state.result = done === null ? { cancelled: true } : done;
    announce(done === null ? 'The import was stopped; unfinished outputs were removed.' : `Imported ${count(done.cases)} cases.`);
    if (done !== null) await loadProblems('', 0, job);
  } catch (error) {
    showError(error);
  } finally {
    if (now === round) state.job = null;
    state.importing = false;
    hideProgress();
    render();
  }
}

export async function loadProblems(variable, offset, job = state.problems?.job) {
  const answer = await ask(`api/jobs/${job}/problems`, { variable, offset, count: 100 });
  state.problems = { ...answer, variable, offset, job };
  render();
}

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
byId('apply').addEventListener('click', async () => {
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
});
byId('copy').addEventListener('click', async () => {
  try {
    await navigator.clipboard.writeText(byId('command').value);
  } catch {
    byId('command').select();
    document.execCommand('copy');
  }
  announce('The command was copied.');
});
byId('cancel').addEventListener('click', () => {
  if (state.job !== null) ask(`api/jobs/${state.job}/cancel`).catch(showError);
});

// With --once the program ends when its page is closed.
addEventListener('pagehide', () => {
  fetch('api/close', { method: 'POST', headers: { 'Content-Type': 'application/json' }, body: '{}', keepalive: true }).catch(() => {});
});

const first = new URLSearchParams(location.search).get('file');
ask('api/start').then(({ path }) => {
  if (first ?? path) open(first ?? path);
  else render();
}).catch(showError);

// The file: which one, and in which encoding.
import { change, open, render, state } from '../app.js';
import { ask } from '../api.js';
import { alertText, byId, bytes, el, fill } from '../dom.js';
import { visible } from '../text.js';

let listing = null;

async function list(folder) {
  try {
    listing = await ask('api/files', { folder });
    render();
  } catch (error) {
    alertText('alert', error.message);
  }
}

function chooser() {
  if (!listing) {
    list('');
    return el('p', { class: 'quiet' }, 'Looking for files…');
  }
  const up = listing.folder ? [el('li', {}, el('button', {
    type: 'button', class: 'link', on: { click: () => list(listing.folder.split('/').slice(0, -1).join('/')) },
  }, '‹ folder above'))] : [];
  return el('div', {},
    el('h3', {}, listing.folder ? `Files in ${listing.folder}` : 'Files'),
    el('ul', { class: 'files' }, up, listing.entries.map((entry) => {
      const path = listing.folder ? `${listing.folder}/${entry.name}` : entry.name;
      return el('li', {},
        el('button', { type: 'button', class: 'link', on: { click: () => (entry.folder ? list(path) : open(path)) } },
          el('bdi', {}, ...visible(entry.name)), entry.folder ? '/' : ''),
        entry.folder ? null : el('span', { class: 'quiet' }, ` ${bytes(entry.size)}`));
    })),
    listing.entries.length === 0 ? el('p', { class: 'quiet' }, 'There is no file here.') : null);
}

function encodingChoice() {
  const { reading, settings } = state.reading;
  const setting = settings?.encoding;
  const names = [...new Set([reading.encoding, ...(state.alternatives?.encodings ?? []), 'UTF-8', 'UTF-16LE', 'UTF-16BE', 'windows-1252',
    'windows-1250', 'windows-1251', 'ISO-8859-1', 'ISO-8859-2', 'ISO-8859-15', 'Shift_JIS', 'GB18030', 'Big5', 'EUC-KR', 'KOI8-R'])];
  return el('div', { class: 'setting' },
    el('label', { for: 'encoding' }, 'Encoding'),
    el('select', { id: 'encoding', on: { change: (event) => change({ encoding: event.target.value || undefined }) } },
      el('option', { value: '' }, `found: ${reading.encoding}`),
      names.map((name) => el('option', { value: name, selected: state.given.encoding === name }, name))),
    el('span', { class: 'evidence' }, reading.byte_order_mark ? 'byte-order mark; ' : '', setting?.evidence ?? ''));
}

function others() {
  if (!state.encodings?.length) return null;
  return el('div', {},
    el('h3', {}, 'The same lines in other encodings'),
    el('div', { class: 'scroll', tabindex: '0', role: 'region', 'aria-label': 'The same lines in other encodings' },
      el('table', {},
        el('thead', {}, el('tr', {}, el('th', { scope: 'col' }, 'Encoding'), el('th', { scope: 'col' }, 'Lines'), el('th', { scope: 'col' }, 'Take it'))),
        el('tbody', {}, state.encodings.map(({ encoding, lines }) => el('tr', {},
          el('th', { scope: 'row' }, encoding),
          el('td', { class: 'raw' }, lines.map((line) => el('div', { dir: 'auto' }, ...visible(line)))),
          el('td', {}, el('button', {
            type: 'button', 'aria-label': `Read as ${encoding}`, disabled: encoding === state.reading.reading.encoding,
            on: { click: () => change({ encoding }) },
          }, encoding === state.reading.reading.encoding ? 'taken' : 'Read so'))))))));
}

export function showFile() {
  const parts = [];
  if (state.path) {
    parts.push(el('p', { class: 'row' }, el('bdi', { class: 'path' }, ...visible(state.path)),
      el('button', { type: 'button', id: 'other-file', on: { click: () => open(null) } }, 'Another file…')));
  }
  if (!state.path) parts.push(chooser());
  else if (state.reading) parts.push(encodingChoice(), others());
  fill(byId('file-body'), ...parts);
}

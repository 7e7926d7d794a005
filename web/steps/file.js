// The file: which one, and in which encoding.
import { change, open, render, state } from '../app.js';
import { ask } from '../api.js';
import { alertText, byId, bytes, el, fill } from '../dom.js';
import { lineDirection, visible } from '../text.js';
import { field, sum, waiting } from './parts.js';

const offered = ['UTF-8', 'UTF-16LE', 'UTF-16BE', 'windows-1252', 'windows-1250', 'windows-1251', 'windows-1253', 'windows-1254', 'windows-1255',
  'windows-1256', 'ISO-8859-1', 'ISO-8859-2', 'ISO-8859-15', 'Shift_JIS', 'EUC-JP', 'GB18030', 'Big5', 'EUC-KR', 'KOI8-R', 'IBM850'];

let listing = null;
let wanted = null;

async function list(folder) {
  wanted = folder;
  try {
    listing = await ask('api/files', { folder });
    render();
  } catch (error) {
    alertText('alert', error.message);
  }
}

function entry(one) {
  const path = listing.folder ? `${listing.folder}/${one.name}` : one.name;
  return el('li', {},
    el('button', { type: 'button', on: { click: () => (one.folder ? list(path) : open(path)) } },
      el('bdi', {}, ...visible(one.name), one.folder ? '/' : ''),
      ' ', el('span', { class: 'quiet' }, one.folder ? 'folder' : bytes(one.size))));
}

function chooser() {
  if (!listing) {
    if (wanted === null) list('');
    return waiting('Looking for files…');
  }
  const above = listing.folder.split('/').slice(0, -1).join('/');
  return el('div', { id: 'chooser' },
    el('p', {}, listing.folder ? 'Files in ' : 'Choose a file in ', el('bdi', { class: 'path' }, listing.folder ? `${listing.root}/${listing.folder}` : listing.root), '.'),
    el('ul', { class: 'files' },
      listing.folder ? el('li', {}, el('button', { type: 'button', id: 'folder-above', on: { click: () => list(above) } }, '‹ folder above')) : null,
      listing.entries.map(entry)),
    listing.entries.length === 0 ? el('p', { class: 'hint' }, 'There is no file here. The page sees files below the folder that the program was started in, or that --root names.') : null);
}

function encodingChoice() {
  const { reading, settings } = state.reading;
  const setting = settings?.encoding;
  const names = [...new Set([reading.encoding, ...(state.alternatives?.encodings ?? []), ...offered])];
  return field('encoding', 'Encoding', el('select', { id: 'encoding', on: { change: (event) => change({ encoding: event.target.value || undefined }) } },
    el('option', { value: '' }, state.given.encoding ? 'find it' : `${reading.encoding} (found)`),
    names.map((name) => el('option', { value: name, selected: state.given.encoding === name }, name))),
  [state.given.encoding ? 'set by you' : setting?.evidence, reading.byte_order_mark ? 'a byte-order mark' : ''].filter(Boolean).join(', '));
}

function others() {
  if (!state.encodings?.length) return null;
  const taken = state.reading.reading.encoding;
  return el('div', { class: 'part', id: 'encodings' },
    el('h3', {}, 'The same lines in other encodings'),
    el('ul', { class: 'side-by-side' }, state.encodings.map(({ encoding, lines }) => el('li', { class: encoding === taken ? 'taken' : '' },
      el('div', { class: 'head' }, el('strong', {}, encoding),
        encoding === taken ? el('span', { class: 'taken' }, '✓ taken')
          : el('button', { type: 'button', 'aria-label': `Read so: ${encoding}`, on: { click: () => change({ encoding }) } }, 'Read so')),
      el('div', { class: 'raw', tabindex: '0', role: 'region', 'aria-label': `Lines in ${encoding}` }, lines.map((line) => el('div', { dir: lineDirection(line) }, ...visible(line))))))));
}

export function showFile() {
  sum('file', state.path && state.reading ? `${state.reading.reading.encoding}, ${bytes(state.reading.bytes)}${state.reading.compressed ? ' unpacked' : ''}` : '');
  if (!state.path) return fill(byId('file-body'), chooser());
  fill(byId('file-body'),
    el('div', { class: 'settings' },
      el('div', { class: 'field' }, el('h3', { class: 'quiet small' }, 'File'), el('p', {}, el('bdi', { class: 'path' }, ...visible(state.path))),
        el('p', {}, el('button', {
          type: 'button', id: 'other-file',
          on: {
            click: () => {
              listing = null;
              wanted = null;
              open(null);
            },
          },
        }, 'Another file…'))),
      state.reading ? encodingChoice() : null),
    state.reading ? others() : (state.failed ? null : waiting('Looking at the file…')));
}

// Texts of a file as a person can see them.
import { el } from './dom.js';

const pictures = { 9: '→', 10: '↵', 13: '⏎', 0x7f: 'DEL', 0x85: 'NEL', 0xa0: '⍽', 0xfeff: 'BOM' };
const controlNames = ['NUL', 'SOH', 'STX', 'ETX', 'EOT', 'ENQ', 'ACK', 'BEL', 'BS', 'HT', 'LF', 'VT', 'FF', 'CR', 'SO', 'SI',
  'DLE', 'DC1', 'DC2', 'DC3', 'DC4', 'NAK', 'SYN', 'ETB', 'CAN', 'EM', 'SUB', 'ESC', 'FS', 'GS', 'RS', 'US'];

function isHidden(code) {
  return code < 32 || (code >= 0x7f && code < 0xa0) || code === 0xa0 || code === 0xfeff ||
    (code >= 0x200b && code <= 0x200f) || (code >= 0x2028 && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

function picture(code) {
  if (pictures[code]) return pictures[code];
  if (code < 32) return controlNames[code];
  return `⟨${code.toString(16).toUpperCase().padStart(4, '0')}⟩`;
}

// Nodes of a text: what cannot be seen is drawn as a picture, marked as such.
export function visible(text) {
  const nodes = [];
  let plain = '';
  for (const character of text) {
    const code = character.codePointAt(0);
    if (code !== 0xfffd && !isHidden(code)) {
      plain += character;
      continue;
    }
    if (plain) nodes.push(plain);
    plain = '';
    const name = code === 0xfffd ? 'no character' : `U+${code.toString(16).toUpperCase().padStart(4, '0')}`;
    nodes.push(el('span', { class: code === 0xfffd ? 'bad' : 'control', title: name }, code === 0xfffd ? '\ufffd' : picture(code)));
  }
  if (plain) nodes.push(plain);
  return nodes;
}

// The text in pieces: [from, to) in characters with a class each; pieces do not overlap and are in
// order.
export function pieces(text, marks) {
  const characters = Array.from(text);
  const nodes = [];
  let at = 0;
  for (const { from, to, ...properties } of marks) {
    if (from > at) nodes.push(...visible(characters.slice(at, from).join('')));
    nodes.push(el('span', properties, ...visible(characters.slice(from, to).join(''))));
    at = to;
  }
  if (at < characters.length) nodes.push(...visible(characters.slice(at).join('')));
  return nodes;
}

export const delimiterNames = [
  [',', 'comma (,)'], [';', 'semicolon (;)'], ['\t', 'tab'], ['|', 'bar (|)'], [':', 'colon (:)'], [' ', 'blank'],
  ['^', 'caret (^)'], ['~', 'tilde (~)'], ['#', 'hash (#)'], ['\x1f', 'unit separator (1F)'], ['', 'none: one column'],
];

export function delimiterName(delimiter) {
  return delimiterNames.find(([value]) => value === delimiter)?.[1] ?? Array.from(delimiter).map((c) => picture(c.codePointAt(0)) === c ? c : visible(c).map((n) => n.textContent ?? n).join('')).join('');
}

// A line of fields runs as it begins: neither digits nor delimiters in front of a word turn it round.
export function lineDirection(text) {
  return /^["'\s]*[\u0590-\u08ff\ufb1d-\ufdff\ufe70-\ufefc]/u.test(text) ? 'rtl' : 'ltr';
}

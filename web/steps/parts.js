// What the steps are made of.
import { byId, el } from '../dom.js';

// A control under its title, with what speaks for its value below.
export function field(id, title, control, evidence, wide = false) {
  if (evidence) control.setAttribute('aria-describedby', `${id}-evidence`);
  return el('div', { class: wide ? 'field wide' : 'field' },
    el('label', { for: id }, title), control,
    evidence ? el('p', { class: 'evidence', id: `${id}-evidence` }, evidence) : null);
}

// A step in short, beside its title.
export function sum(step, text) {
  byId(`${step}-sum`).textContent = text;
}

export function waiting(text) {
  return el('div', { class: 'waiting' }, el('p', { class: 'quiet' }, text), el('span'), el('span'), el('span'));
}

// Arrow keys move between elements of which one at a time is in the tab order.
export function moveFocus(event, elements) {
  const { key } = event;
  const at = elements.indexOf(event.target);
  const to = key === 'Home' ? 0 : key === 'End' ? elements.length - 1 : at + (key === 'ArrowDown' ? 1 : -1);
  if (at < 0 || !['ArrowDown', 'ArrowUp', 'Home', 'End'].includes(key)) return null;
  event.preventDefault();
  const next = elements[Math.min(elements.length - 1, Math.max(0, to))];
  next.focus();
  return next;
}

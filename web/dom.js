// Elements and announcements.

// An element with properties and children. `on` holds event listeners, `data` data attributes, names
// with a dash become attributes. Texts become text nodes: nothing of a file is ever markup.
export function el(name, properties = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (value === undefined || value === null) continue;
    if (key === 'on') {
      for (const [type, listener] of Object.entries(value)) element.addEventListener(type, listener);
    } else if (key === 'data') {
      Object.assign(element.dataset, value);
    } else if (key === 'class') {
      element.className = value;
    } else if (key.includes('-') || key === 'role' || key === 'for' || key === 'scope' || key === 'colspan' || key === 'list' || key === 'tabindex') {
      element.setAttribute(key, value);
    } else {
      element[key] = value;
    }
  }
  element.append(...children.flat().filter((child) => child !== null && child !== undefined && child !== false));
  return element;
}

export const byId = (id) => document.getElementById(id);

// Puts children in place of those that were there and keeps the focus where it was, by id.
export function fill(parent, ...children) {
  const focused = document.activeElement?.id;
  const inside = focused && parent.contains(document.activeElement);
  const selection = inside && 'selectionStart' in document.activeElement
    ? [document.activeElement.selectionStart, document.activeElement.selectionEnd] : null;
  parent.replaceChildren(...children.flat().filter(Boolean));
  if (!inside) return;
  const again = byId(focused);
  again?.focus({ preventScroll: true });
  if (selection && again && 'setSelectionRange' in again && again.type === 'text') again.setSelectionRange(...selection);
}

let lastStatus = '';
// Says something to whoever listens, once.
export function announce(text) {
  if (text === lastStatus) return;
  lastStatus = text;
  byId('status').textContent = text;
}

export function alertText(id, text) {
  const element = byId(id);
  element.hidden = !text;
  element.textContent = text ?? '';
}

// Calls `action` once nothing has called for `wait` milliseconds.
export function debounced(action, wait) {
  let timer = 0;
  return (...values) => {
    clearTimeout(timer);
    timer = setTimeout(() => action(...values), wait);
  };
}

export const count = (number) => Number(number).toLocaleString('en-US');

export function bytes(number) {
  const units = ['bytes', 'kB', 'MB', 'GB', 'TB'];
  let unit = 0;
  for (; number >= 1000 && unit < units.length - 1; unit += 1) number /= 1000;
  return `${unit === 0 ? number : number.toFixed(1)} ${units[unit]}`;
}

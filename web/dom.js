// Elements and announcements.

// Attributes that are no property of the same name.
const attributes = new Set(['role', 'for', 'scope', 'colspan', 'list', 'tabindex']);

// Calls what an element does with an event now: it may have got something else to do since it was made.
function handle(event) {
  event.currentTarget.handlers?.[event.type]?.(event);
}

// An element with properties and children. `on` holds event listeners, one a type, `data` data
// attributes; names with a dash become attributes. Texts become text nodes: nothing of a file is ever
// markup.
export function el(name, properties = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (value === undefined || value === null) continue;
    if (key === 'on') {
      element.handlers = value;
      for (const type of Object.keys(value)) element.addEventListener(type, handle);
    } else if (key === 'data') {
      Object.assign(element.dataset, value);
    } else if (key === 'class') {
      element.className = value;
    } else if (key === 'value' && name === 'input') {
      element.defaultValue = value;
    } else if (key.includes('-') || attributes.has(key)) {
      element.setAttribute(key, value);
    } else {
      element[key] = value;
    }
  }
  element.append(...children.flat(3).filter((child) => child !== null && child !== undefined && child !== false));
  return element;
}

export const byId = (id) => document.getElementById(id);

// A control keeps what the user is typing into it.
function takeState(old, fresh) {
  if (old.localName === 'input') {
    const typing = document.activeElement === old && old.value !== old.defaultValue;
    if (old.defaultValue !== fresh.defaultValue) old.defaultValue = fresh.defaultValue;
    if (!typing && old.value !== fresh.value) old.value = fresh.value;
    if (old.checked !== fresh.checked) old.checked = fresh.checked;
  } else if (old.localName === 'option' && old.selected !== fresh.selected) {
    old.selected = fresh.selected;
  }
}

function takeAttributes(old, fresh) {
  for (const { name } of [...old.attributes]) if (name !== 'style' && !fresh.hasAttribute(name)) old.removeAttribute(name);
  for (const { name, value } of fresh.attributes) {
    if (name !== 'style' && old.getAttribute(name) !== value) old.setAttribute(name, value);
  }
  // As a property: the content policy lets no style attribute be set.
  if (old.style.cssText !== fresh.style.cssText) old.style.cssText = fresh.style.cssText;
  for (const type of Object.keys(fresh.handlers ?? {})) if (!old.handlers?.[type]) old.addEventListener(type, handle);
  old.handlers = fresh.handlers;
}

const alike = (old, fresh) => old.nodeType === fresh.nodeType && old.nodeName === fresh.nodeName && (old.id ?? '') === (fresh.id ?? '');

function become(old, fresh) {
  if (old.nodeType !== Node.ELEMENT_NODE) {
    if (old.data !== fresh.data) old.data = fresh.data;
    return;
  }
  takeAttributes(old, fresh);
  becomeChildren(old, [...fresh.childNodes]);
  takeState(old, fresh);
}

function becomeChildren(parent, children) {
  let old = parent.firstChild;
  for (const fresh of children) {
    // What was taken away in front of a part with a name of its own.
    if (old && fresh.id && !alike(old, fresh)) {
      let same = old.nextSibling;
      while (same && !alike(same, fresh)) same = same.nextSibling;
      while (same && old !== same) {
        const next = old.nextSibling;
        old.remove();
        old = next;
      }
    }
    if (!old) {
      parent.append(fresh);
    } else if (alike(old, fresh)) {
      const next = old.nextSibling;
      become(old, fresh);
      old = next;
    } else if (fresh.id) {
      parent.insertBefore(fresh, old);
    } else {
      const next = old.nextSibling;
      old.replaceWith(fresh);
      old = next;
    }
  }
  while (old) {
    const next = old.nextSibling;
    old.remove();
    old = next;
  }
}

// Makes the parent's children what is given. Elements stay where they can, and with them focus,
// scrolling, an open list, a click that has begun, and what is being typed.
export function fill(parent, ...children) {
  becomeChildren(parent, children.flat(3).filter((child) => child !== null && child !== undefined && child !== false)
    .map((child) => (typeof child === 'string' ? document.createTextNode(child) : child)));
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

export async function copyText(text) {
  try {
    await navigator.clipboard.writeText(text);
  } catch {
    // Where the browser does not let a page write there.
    const area = el('textarea', { value: text, readOnly: true });
    document.body.append(area);
    area.select();
    document.execCommand('copy');
    area.remove();
  }
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

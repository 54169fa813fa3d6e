// The only way elements are made here: text goes in as text nodes, never as markup, so a host name
// or an SSID cannot become part of the page.

const kSvg = 'http://www.w3.org/2000/svg';

function append(element, children) {
  for (const child of children.flat(Infinity)) {
    if (child === null || child === undefined || child === false) continue;
    element.append(child instanceof Node ? child : document.createTextNode(String(child)));
  }
}

/**
 * Makes an element. Properties that begin with "on" are listeners, true and false switch an
 * attribute, null and undefined leave it out.
 */
export function h(tag, props, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(props ?? {})) {
    if (value === null || value === undefined || value === false) continue;
    if (name.startsWith('on')) element.addEventListener(name.slice(2), value);
    else if (name === 'value' || name === 'checked') element[name] = value;
    else element.setAttribute(name, value === true ? '' : value);
  }
  append(element, children);
  return element;
}

/** As h, for drawings. */
export function svg(tag, props, ...children) {
  const element = document.createElementNS(kSvg, tag);
  for (const [name, value] of Object.entries(props ?? {})) {
    if (value !== null && value !== undefined) element.setAttribute(name, value);
  }
  append(element, children);
  return element;
}

/** Puts other children into an element. */
export function fill(element, ...children) {
  element.replaceChildren();
  append(element, children);
  return element;
}

let lastId = 0;

/** An id that no other element has. */
export function newId(prefix) {
  lastId += 1;
  return `${prefix}-${lastId}`;
}

/** Waits; ends early, with an AbortError, when the signal is aborted. */
export function pause(milliseconds, signal) {
  return new Promise((resolve, reject) => {
    let timer;
    const stop = () => {
      clearTimeout(timer);
      reject(new DOMException('stopped', 'AbortError'));
    };
    if (signal?.aborted) {
      stop();
      return;
    }
    timer = setTimeout(() => {
      signal?.removeEventListener('abort', stop);
      resolve();
    }, milliseconds);
    signal?.addEventListener('abort', stop, { once: true });
  });
}

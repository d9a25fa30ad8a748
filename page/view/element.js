// Elements of the page.

import { partsOf } from './text.js';

/** An element with a class and with children or a text. */
export function make(tag, className, ...children) {
  const element = document.createElement(tag);
  if (className) {
    element.className = className;
  }
  element.append(...children);
  return element;
}

/** Puts a stored text into an element; bytes that are no text stand out. */
export function show(element, stored) {
  element.replaceChildren(
    ...partsOf(stored).map(([text, isByte]) => {
      const part = document.createElement(isByte ? 'code' : 'bdi');
      part.textContent = text;
      return part;
    }),
  );
  return element;
}

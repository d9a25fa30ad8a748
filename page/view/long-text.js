// Long texts: a few lines of them, which open.

import { button, show } from './element.js';
import { firstOf, linesOf, sizeOf } from './text.js';

/** Puts a stored text of several lines into an element; its line ends and tabs stay. */
function showLines(element, stored) {
  element.replaceChildren();
  for (const [piece, isBreak] of linesOf(stored)) {
    element.append(...(isBreak ? [piece] : show(document.createElement('span'), piece).childNodes));
  }
  return element;
}

/** Puts a stored text into an element, so much of it at first. */
export function showLong(element, stored, most = { characters: 300, lines: 4 }) {
  const first = firstOf(stored, most);
  showLines(element, first);
  if (first !== stored) {
    element.append('… ');
    element.append(
      button('whole', `Show all ${sizeOf(stored)}`, (event) => {
        event.stopPropagation();
        showLines(element, stored);
        element.append(
          ' ',
          button('whole', 'Show less', () => showLong(element, stored, most)),
        );
      }),
    );
  }
  return element;
}

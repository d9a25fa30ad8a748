// Elements of the page.

import { firstOf, partsOf, readable } from './text.js';

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

const mostOfName = { characters: 120, lines: 1 };

/** Puts a name into an element; of a long one the begin, the rest when it is pointed at. */
export function showName(element, stored) {
  const first = firstOf(stored, mostOfName);
  show(element, first);
  if (first !== stored) {
    element.append('…');
    element.title = readable(firstOf(stored, { characters: 2000, lines: 40 }));
  }
  return element;
}

/** A button with a label that does something. */
export function button(className, label, work) {
  const element = make('button', className, label);
  element.type = 'button';
  element.addEventListener('click', work);
  return element;
}

/** What refers to the row of an execution: main.js opens it. */
export const addressOf = (recorded, at) => `#execution-${recorded.number[at]}`;

/** The node of an execution as a link that opens its row. */
export function linkTo(recorded, at) {
  const link = showName(make('a'), recorded.node[at] || '–');
  link.href = addressOf(recorded, at);
  return link;
}

/** A list that grows by so many items when the reader asks for more. */
export function addInSteps(block, items, step, elementOf, from = 0) {
  block.append(...items.slice(from, from + step).map((item, at) => elementOf(item, from + at)));
  const left = items.length - from - step;
  if (left > 0) {
    const more = button('more', `Show more: ${left.toLocaleString('en')} further`, () => {
      more.remove();
      addInSteps(block, items, step, elementOf, from + step);
    });
    block.append(more);
  }
}

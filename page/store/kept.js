// Changes what is on the screen only where it differs, so that focus, selection and scrolling stay.

const shown = new WeakMap(); // what each element shows
const keys = new WeakMap(); // which item of its list each element is

/** Draws a value in an element, unless it shows that already. */
export function keep(element, value, draw) {
  const key = JSON.stringify(value);
  if (shown.get(element) !== key) {
    shown.set(element, key);
    draw(element, value);
  }
  return element;
}

export const keepText = (element, text) => keep(element, text, () => element.replaceChildren(text));

/**
 * Makes the children of an element those of a list, in its order; each keeps its element.
 * @param keyOf what tells items apart
 * @param make the element of a new item
 * @param update shows what is now known of an item in its element
 */
export function keepList(parent, items, { keyOf, make, update }) {
  const known = new Map([...parent.children].map((element) => [keys.get(element), element]));
  let next = parent.firstElementChild;
  for (const item of items) {
    const key = keyOf(item);
    let element = known.get(key);
    known.delete(key); // another item with this key gets an element of its own
    if (!element) {
      element = make(item);
      keys.set(element, key);
    }
    if (element === next) {
      next = next.nextElementSibling;
    } else {
      parent.insertBefore(element, next);
    }
    update(element, item);
  }
  while (next) {
    const old = next;
    next = next.nextElementSibling;
    old.remove();
  }
}

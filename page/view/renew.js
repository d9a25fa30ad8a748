// Putting new content in the place of the old one, without taking away what a reader is at.

const asNode = (child) => (typeof child === 'string' ? document.createTextNode(child) : child);

/**
 * Gives an element other children. One that is equal to one of those before leaves that in its place, with the focus
 * and what is selected of it; so what its listeners use must not depend on when it was made.
 */
export function renew(element, children) {
  const before = [...element.childNodes];
  let next = 0;
  const wanted = children.map(asNode).map((child) => {
    const place = before.findIndex((one, at) => at >= next && (one === child || one.isEqualNode(child)));
    next = place < 0 ? next : place + 1;
    return place < 0 ? child : before[place];
  });
  const stays = new Set(wanted);
  before.filter((one) => !stays.has(one)).forEach((one) => one.remove());
  wanted.forEach((one, at) => {
    if (element.childNodes[at] !== one) {
      element.insertBefore(one, element.childNodes[at] ?? null);
    }
  });
  return element;
}

/** Does what makes elements anew, and puts the focus on what has taken the place of the element that had it. */
export function keepingFocus(work) {
  const focused = document.activeElement;
  const successor = successorOf(focused);
  work();
  if (!focused.isConnected) {
    successor()?.focus({ preventScroll: true });
  }
}

/** Finds an element of the same kind and at the same place; of a row that is gone, the one that the Tab key reaches. */
function successorOf(element) {
  const home = element.closest('[data-execution], [id]');
  const selector = home?.dataset.execution ? `[data-execution="${home.dataset.execution}"]` : `#${home?.id}`;
  const isAlike = (one) =>
    one.className === element.className && one.getAttribute('href') === element.getAttribute('href');
  const alikeIn = (place) => [...(place?.querySelectorAll(element.tagName) ?? [])].filter(isAlike);
  const at = alikeIn(home).indexOf(element);
  const isInTable = element.closest('#table') !== null;
  return () =>
    alikeIn(document.querySelector(selector))[at] ??
    (isInTable ? document.querySelector('#table .open[tabindex="0"]') : null);
}

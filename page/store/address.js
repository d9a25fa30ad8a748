// What the address holds: its last part names the view, its query string has all that is chosen. Every address is
// relative, so that the page also works below a path of a proxy.

import { addressOf, queryOf } from './api.js';

export class Address {
  /** Calls `show` when the address changes, other than by `choose`. */
  constructor(names, show) {
    Object.assign(this, { names, show });
    window.addEventListener('popstate', () => show());
    document.addEventListener('click', (event) => this.follow(event));
  }

  get view() {
    return partsOf(window.location.pathname)[1];
  }

  get chosen() {
    return new URLSearchParams(window.location.search);
  }

  /** Goes to a view, with parameters as in api.js; the reader can go back. */
  go(view, parameters = {}) {
    window.history.pushState(null, '', addressOf(view, parameters));
    this.show();
  }

  /**
   * Puts what the reader has chosen in the shown view into the address; the view shows it already.
   * @param parameters all of them, as in api.js
   */
  choose(parameters) {
    if (queryOf(parameters) !== String(this.chosen)) {
      window.history.pushState(null, '', addressOf(this.view, parameters));
    }
  }

  /** Shows the view that a link leads to without loading the page again. */
  follow(event) {
    const link = event.target.closest?.('a[href]');
    if (!link || isForBrowser(event, link)) {
      return;
    }
    const [folder, view] = partsOf(link.pathname);
    const isHere = link.origin === window.location.origin && folder === partsOf(window.location.pathname)[0];
    if (isHere && this.names.includes(view)) {
      event.preventDefault();
      window.history.pushState(null, '', link.href);
      this.show();
    }
  }
}

const partsOf = (path) => /^(.*\/)([^/]*)$/.exec(path).slice(1);

/** Whether the browser is to follow a link itself: in another tab, into a file, or within the page. */
const isForBrowser = (event, link) =>
  event.defaultPrevented ||
  event.button !== 0 ||
  [event.metaKey, event.ctrlKey, event.shiftKey, link.target, link.hasAttribute('download'), link.hash].some(Boolean);

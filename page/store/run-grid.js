// A table of any number of runs, of which only those rows exist that can be seen. All rows are equally high.

import { make } from '../view/element.js';
import { keep } from './kept.js';

const spare = 12; // rows above and below those that are seen
const mostPrinted = 1000;

export class RunGrid {
  /**
   * @param columns [{title, className, shown(run), cell(run)}]: what a cell shows, and its children
   * @param actions {open(run), choose(run), isChosen(run), keyOf(run), nearEnd(), end(), scrolled(), printed(rows)}
   */
  constructor(columns, actions) {
    Object.assign(this, { columns, actions, runs: [], active: null, rowHeight: 28, total: -1 });
    this.head = make(
      'div',
      'row head',
      ...columns.map(({ title, className }) => cellOf('columnheader', className, title)),
    );
    this.head.setAttribute('role', 'row');
    this.head.setAttribute('aria-rowindex', '1');
    this.body = make('div', 'rows');
    this.body.setAttribute('role', 'rowgroup');
    const head = make('div', '', this.head);
    head.setAttribute('role', 'rowgroup');
    this.element = make('div', 'grid', head, this.body);
    this.element.tabIndex = 0;
    this.element.setAttribute('role', 'grid');
    this.element.setAttribute('aria-label', 'Runs');
    this.element.setAttribute('aria-colcount', columns.length);
    this.element.setAttribute('aria-multiselectable', 'true');
    this.element.addEventListener('scroll', () => {
      this.draw();
      actions.scrolled();
    });
    this.element.addEventListener('keydown', (event) => this.key(event));
    this.body.addEventListener('click', (event) => this.click(event));
    this.rows = new Map(); // by key
    window.addEventListener('resize', () => this.draw());
    window.addEventListener('beforeprint', () => this.print(true));
    window.addEventListener('afterprint', () => this.print(false));
  }

  /**
   * Shows runs; what is being read stays where it is.
   * @param total how many there are, -1 if that is not known
   * @returns how many more are now above what is being read
   */
  show(runs, total) {
    const { keyOf } = this.actions;
    const first = Math.floor(this.element.scrollTop / this.rowHeight);
    const moves = this.isAtTop && (this.active === null || this.indexOf(this.active) === 0);
    const places = new Map(runs.map((run, at) => [keyOf(run), at]));
    const anchor = moves ? undefined : this.runs.slice(first).find((run) => places.has(keyOf(run)));
    const shift = anchor ? places.get(keyOf(anchor)) - this.indexOf(keyOf(anchor)) : 0;
    Object.assign(this, { runs, places, total });
    this.draw();
    if (shift !== 0) {
      this.element.scrollTop += shift * this.rowHeight;
      this.draw();
    }
    return shift;
  }

  get isAtTop() {
    return this.element.scrollTop < this.rowHeight;
  }

  /** Shows the first run, as for something else that was asked. */
  toTop() {
    this.active = null;
    this.element.scrollTop = 0;
  }

  indexOf(key) {
    return this.places?.get(key) ?? -1;
  }

  /** Has all rows for paper, as far as that makes sense. */
  print(isPrinting) {
    this.isPrinting = isPrinting;
    this.draw();
    this.actions.printed(Math.min(this.runs.length, mostPrinted));
  }

  /** From which run to which one there are rows. */
  get shown() {
    const { element, runs, rowHeight } = this;
    if (this.isPrinting) {
      return [0, Math.min(runs.length, mostPrinted)];
    }
    const seen = [element.scrollTop, element.scrollTop + element.clientHeight].map((at) => at / rowHeight);
    return [Math.max(0, Math.floor(seen[0]) - spare), Math.min(runs.length, Math.ceil(seen[1]) + spare)];
  }

  draw() {
    const { element, runs, rowHeight } = this;
    const { keyOf } = this.actions;
    const [from, to] = this.shown;
    this.body.style.height = `${runs.length * rowHeight}px`;
    element.setAttribute('aria-rowcount', this.total < 0 ? -1 : this.total + 1);
    const wanted = new Set(runs.slice(from, to).map(keyOf));
    this.rows.forEach((row, key) => {
      if (!wanted.has(key)) {
        row.remove();
        this.rows.delete(key);
      }
    });
    let previous = null;
    for (let at = from; at < to; ++at) {
      const row = this.rowOf(runs[at], at);
      if (row.previousElementSibling !== previous || row.parentElement !== this.body) {
        this.body.insertBefore(row, previous ? previous.nextElementSibling : this.body.firstElementChild);
      }
      previous = row;
    }
    this.mark();
    if (to > runs.length - 2 * spare && !this.isPrinting) {
      this.actions.nearEnd();
    }
  }

  rowOf(run, at) {
    const key = this.actions.keyOf(run);
    if (!this.rows.has(key)) {
      const made = make('div', 'row', ...this.columns.map(({ className }) => cellOf('gridcell', className)));
      made.setAttribute('role', 'row');
      made.dataset.key = key;
      made.id = `row-${key.replace(/[^\w-]/g, '-')}`;
      this.rows.set(key, made);
    }
    const row = this.rows.get(key);
    row.setAttribute('aria-rowindex', at + 2);
    row.style.transform = `translateY(${at * this.rowHeight}px)`;
    row.classList.toggle('odd', at % 2 === 1);
    this.columns.forEach(({ cell, shown }, place) =>
      keep(row.children[place], shown(run), (element) => element.replaceChildren(...cell(run))),
    );
    row.setAttribute('aria-selected', this.actions.isChosen(run));
    return row;
  }

  /** Shows which row the keyboard is at. */
  mark() {
    this.rows.forEach((row, key) => row.classList.toggle('active', key === this.active));
    const row = this.rows.get(this.active);
    if (row) {
      this.element.setAttribute('aria-activedescendant', row.id);
    } else {
      this.element.removeAttribute('aria-activedescendant');
    }
  }

  goTo(at) {
    if (this.runs.length === 0) {
      return;
    }
    const { element, rowHeight } = this;
    const place = Math.max(0, Math.min(this.runs.length - 1, at));
    this.active = this.actions.keyOf(this.runs[place]);
    const [top, room] = [place * rowHeight, element.clientHeight - this.head.offsetHeight];
    if (top < element.scrollTop) {
      element.scrollTop = top;
    } else if (top + rowHeight > element.scrollTop + room) {
      element.scrollTop = top + rowHeight - room;
    }
    this.draw();
  }

  key(event) {
    if (event.altKey || event.ctrlKey || event.metaKey) {
      return;
    }
    const at = this.indexOf(this.active);
    const page = Math.max(1, Math.floor(this.element.clientHeight / this.rowHeight) - 2);
    const run = this.runs[at];
    const work = {
      ArrowDown: () => this.goTo(at + 1),
      ArrowUp: () => this.goTo(at - 1),
      PageDown: () => this.goTo(at + page),
      PageUp: () => this.goTo(at - page),
      Home: () => this.goTo(0),
      End: () => this.actions.end().then(() => this.goTo(Infinity)),
      Enter: () => run && this.actions.open(run),
      ' ': () => run && this.actions.choose(run),
    }[event.key];
    if (work && event.target === this.element) {
      event.preventDefault();
      work();
    }
  }

  click(event) {
    const row = event.target.closest('.row');
    const run = this.runs[this.indexOf(row?.dataset.key)];
    if (!run || event.target.closest('a')) {
      return;
    }
    this.active = row.dataset.key;
    this.mark();
    if (event.target.closest('.choose')) {
      this.actions.choose(run);
    }
  }
}

function cellOf(role, className, ...children) {
  const cell = make('div', `cell ${className}`, ...children);
  cell.setAttribute('role', role);
  return cell;
}

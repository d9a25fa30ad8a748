// The table: a row for each execution below the run, with the columns that the reader picks.

import { columnsOf, pickLikely } from './columns.js';
import { make, show } from './element.js';
import { historyOf } from './history.js';
import { running } from './statuses.js';
import { count } from './text.js';

const rowsAtOnce = 100;
const deepestIndent = 19; // levels of rows; below them the level is a number

export class Table {
  constructor(element, recorded) {
    Object.assign(this, { element, recorded, page: 0, rowsShown: rowsAtOnce });
    this.rows = this.inTreeOrder();
    this.columns = columnsOf(recorded);
    pickLikely(this.columns, this.rows);
    this.sorted = { column: null, descending: false };
    this.opened = new Map(); // the history of each
    this.offerColumns();
  }

  inTreeOrder() {
    const rows = [];
    const open = [...this.recorded.children[this.recorded.root]].reverse();
    while (open.length > 0) {
      const at = open.pop();
      rows.push(at);
      for (let child = this.recorded.children[at].length - 1; child >= 0; --child) {
        open.push(this.recorded.children[at][child]);
      }
    }
    return rows;
  }

  offerColumns() {
    const choice = document.getElementById('column-choice');
    const groups = new Map();
    this.columns.forEach((column) => {
      const group = column.quantity ? column.quantity.event : null;
      if (!groups.has(group)) {
        const legend = group === null ? make('legend', '', 'Execution') : show(make('legend'), group);
        groups.set(group, make('fieldset', '', legend));
      }
      const box = make('input');
      box.type = 'checkbox';
      box.checked = column.shown;
      box.addEventListener('change', () => {
        column.shown = box.checked;
        this.draw();
      });
      groups.get(group).append(make('label', '', box, this.titleOf(column, column.quantity?.name ?? column.name)));
    });
    choice.replaceChildren(...groups.values());
  }

  titleOf(column, name = column.name) {
    const title = show(make('span'), name);
    if (column.occurrence > 1) {
      title.append(` (${column.occurrence})`);
    }
    return title;
  }

  get shown() {
    return this.columns.filter((column) => column.shown);
  }

  sortBy(column) {
    const { sorted } = this;
    if (sorted.column !== column) {
      this.sorted = { column, descending: false };
    } else if (!sorted.descending) {
      this.sorted = { column, descending: true };
    } else {
      this.sorted = { column: null, descending: false };
    }
    this.page = 0;
    this.draw();
  }

  /** All rows in the order chosen; what is missing comes last. */
  ordered() {
    const { column, descending } = this.sorted;
    if (!column) {
      return this.rows;
    }
    const keys = new Map(this.rows.map((at) => [at, column.value(at)]));
    const missing = (key) => key === '' || key === null || key === undefined || Number.isNaN(key);
    const compare = (a, b) => (typeof a === typeof b ? (a < b ? -1 : a > b ? 1 : 0) : typeof a === 'number' ? -1 : 1);
    return [...this.rows].sort(
      (a, b) =>
        missing(keys.get(a)) - missing(keys.get(b)) ||
        (missing(keys.get(a)) ? 0 : (descending ? -1 : 1) * compare(keys.get(a), keys.get(b))),
    );
  }

  draw() {
    const rows = this.ordered();
    const first = this.page * this.rowsShown;
    this.element.tHead.replaceChildren(make('tr', '', ...this.shown.map((column) => this.headOf(column))));
    this.element.tBodies[0].replaceChildren(
      ...rows.slice(first, first + this.rowsShown).flatMap((at) => this.rowsOf(at)),
    );
    const last = Math.min(first + this.rowsShown, rows.length);
    document.getElementById('more').textContent =
      rows.length === 0
        ? 'This run has no executions below it.'
        : last - first < rows.length
          ? `Rows ${first + 1} to ${last} of ${rows.length.toLocaleString('en')}`
          : count(rows.length, 'row');
    this.offerPages(rows.length);
  }

  headOf(column) {
    const cell = make('th', column.number ? 'number' : '');
    const isSorted = this.sorted.column === column;
    const arrow = isSorted ? (this.sorted.descending ? ' ▾' : ' ▴') : '';
    const button = make('button', 'sort', this.titleOf(column), arrow);
    button.type = 'button';
    button.addEventListener('click', () => {
      this.sortBy(column);
      this.element.tHead.rows[0].cells[this.shown.indexOf(column)].firstChild.focus();
    });
    cell.scope = 'col';
    cell.setAttribute('aria-sort', isSorted ? (this.sorted.descending ? 'descending' : 'ascending') : 'none');
    cell.append(button);
    return cell;
  }

  rowsOf(at) {
    const { recorded } = this;
    const row = make('tr', recorded.status[at] === running ? 'unfinished' : '');
    const isOpen = this.opened.has(at);
    this.shown.forEach((column, place) => {
      const cell = make(place === 0 ? 'th' : 'td', column.number ? 'number' : column.quantity ? 'text' : '');
      if (place === 0) {
        cell.scope = 'row';
        const button = show(make('button', 'open'), column.text(at) || '–');
        button.type = 'button';
        button.setAttribute('aria-expanded', isOpen);
        const level = recorded.depth[at] - 1; // of the rows
        button.style.marginLeft = `${Math.min(level, deepestIndent) * 14}px`;
        if (level > deepestIndent) {
          button.prepend(`${recorded.depth[at]}: `);
        }
        cell.append(button);
      } else {
        show(cell, column.text(at) ?? '');
      }
      row.append(cell);
    });
    row.dataset.execution = at;
    row.addEventListener('click', () => this.toggle(at));
    if (!isOpen) {
      return [row];
    }
    const cell = make('td', '', this.opened.get(at));
    cell.colSpan = Math.max(1, this.shown.length);
    return [row, make('tr', 'opened', cell)];
  }

  toggle(at) {
    if (!this.opened.delete(at)) {
      this.open(at);
    }
    this.draw();
    this.rowOf(at)?.querySelector('button')?.focus({ preventScroll: true });
  }

  open(at) {
    if (!this.opened.has(at)) {
      this.opened.set(at, historyOf(this.recorded, at));
    }
  }

  rowOf(at) {
    return this.element.querySelector(`tr[data-execution="${at}"]`);
  }

  /** Shows an execution with its history. */
  reveal(at) {
    this.open(at);
    this.page = Math.floor(this.ordered().indexOf(at) / this.rowsShown);
    this.draw();
    this.rowOf(at)?.scrollIntoView({ block: 'center' });
    this.rowOf(at)?.querySelector('button')?.focus({ preventScroll: true });
  }

  offerPages(total) {
    const pages = Math.ceil(total / this.rowsShown);
    const go = (label, page) => {
      const button = make('button', '', label);
      button.type = 'button';
      button.disabled = page < 0 || page >= pages;
      button.addEventListener('click', () => {
        this.page = page;
        this.draw();
        this.element.scrollIntoView();
      });
      return button;
    };
    document
      .getElementById('pages')
      .replaceChildren(...(pages > 1 ? [go('Previous rows', this.page - 1), go('Next rows', this.page + 1)] : []));
  }
}

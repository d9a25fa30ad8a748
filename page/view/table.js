// The table: a row for each execution below the run, with the columns that the reader picks. The rows are a tree, whose
// parts fold; sorted or filtered they are a list.

import { differenceOf, differencesIn, wordsForDifferences } from './against-section.js';
import { isPrinting } from './chart.js';
import { columnsOf, orders, pickLikely } from './columns.js';
import { button, make, show, showName } from './element.js';
import { Filter } from './filter.js';
import { History } from './history.js';
import { renew } from './renew.js';
import { running } from './statuses.js';
import { count, firstOf, readable } from './text.js';
import { Tree } from './tree.js';
import { listenToKeys } from './tree-keys.js';
import { unitBehind } from './units.js';

const rowsAtOnce = 100;
const deepestIndent = 19; // levels of rows; below them the level is a number
const mostUnbroken = 24;
const mostInCell = { characters: 120, lines: 1 };
const mostInTitle = { characters: 2000, lines: 40 };

export class Table {
  constructor(element, recorded) {
    Object.assign(this, { element, recorded, page: 0, choseColumns: false });
    this.tree = new Tree(recorded);
    this.columns = columnsOf(recorded);
    pickLikely(this.columns, this.tree.order);
    this.sorted = { column: null, descending: false };
    this.opened = new Map(); // of each the history, and the row with it
    this.current = null; // the row that the Tab key reaches
    this.filter = new Filter(
      recorded,
      () => this.change(),
      (at) => recorded.against.isDifferent(at, this.shown),
    );
    this.offerColumns();
    this.offerTools();
    listenToKeys(this);
  }

  /** Draws what was recorded since, with what the reader has chosen. */
  take(recorded) {
    this.recorded = recorded;
    this.tree.take(recorded);
    this.takeColumns();
    this.filter.take(recorded);
    this.opened.forEach(({ history }) => history.take(recorded));
    this.offerColumns();
    this.offerFolding();
    this.offerOrders();
    this.known = null;
    this.draw();
  }

  /** Shows the columns that were shown; until the reader has chosen any, those that are likely now. */
  takeColumns() {
    const before = new Map(this.columns.map((column) => [column.key, column]));
    const { column: sorted, descending } = this.sorted;
    this.columns = columnsOf(this.recorded);
    if (this.choseColumns) {
      this.columns.forEach((column) => (column.shown = before.get(column.key)?.shown ?? false));
    } else {
      pickLikely(this.columns, this.tree.order);
    }
    const column = this.columnOf(sorted?.key) ?? null;
    this.sorted = { column, descending };
    if (column) {
      column.shown = true;
    }
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
      box.defaultChecked = column.shown;
      box.addEventListener('change', () => this.showColumn(column.key, box.checked));
      groups.get(group).append(make('label', '', box, this.titleOf(column, column.quantity?.name ?? column.name)));
    });
    renew(choice, [...groups.values()]);
  }

  showColumn(key, shown) {
    this.choseColumns = true;
    this.columnOf(key).shown = shown;
    this.known = null; // which rows differ depends on the columns
    this.draw();
  }

  offerTools() {
    document.getElementById('fold-all').addEventListener('click', () => this.change(() => this.tree.foldAll()));
    document.getElementById('unfold-all').addEventListener('click', () => this.change(() => this.tree.unfoldAll()));
    this.offerFolding();
    this.order = document.getElementById('order');
    this.order.addEventListener('change', () =>
      this.change(() => {
        this.sorted = { column: orders(this.columns)[this.order.value - 1] ?? null, descending: false };
      }),
    );
    this.offerOrders();
    this.allDigits = document.getElementById('all-digits');
    this.allDigits.addEventListener('change', () => this.draw());
  }

  offerFolding() {
    const hasTree = this.tree.order.some((at) => this.tree.folds(at));
    ['fold-all', 'unfold-all'].forEach((id) => (document.getElementById(id).hidden = !hasTree));
  }

  /** Offers the times that parameters state as orders of the steps. */
  offerOrders() {
    const choices = orders(this.columns);
    renew(this.order, [
      new Option('as recorded', 0),
      ...choices.map(({ name }, place) => new Option(readable(name), place + 1)),
    ]);
    this.order.parentElement.hidden = choices.length === 0;
  }

  titleOf(column, name = column.name) {
    const title = showName(make('span'), name);
    if (column.occurrence > 1) {
      title.append(` (${column.occurrence})`);
    }
    return title;
  }

  columnOf(key) {
    return this.columns.find((column) => column.key === key);
  }

  get shown() {
    return this.columns.filter((column) => column.shown);
  }

  /** Other rows are to be shown, or in another order. */
  change(how = () => {}) {
    how();
    this.known = null;
    this.page = 0;
    this.draw();
  }

  sortBy(key) {
    const { sorted } = this;
    if (sorted.column?.key !== key) {
      this.sorted = { column: this.columnOf(key), descending: false };
    } else if (!sorted.descending) {
      this.sorted = { column: sorted.column, descending: true };
    } else {
      this.sorted = { column: null, descending: false };
    }
    this.change();
  }

  get isTree() {
    return this.sorted.column === null && !this.filter.isSet;
  }

  /** All rows that pass the filter in the order chosen, folded or not; what is missing comes last. */
  ordered() {
    const { column, descending } = this.sorted;
    const rows = this.filter.isSet ? this.filter.passing(this.tree.order) : this.tree.order;
    if (!column) {
      return rows;
    }
    const keys = new Map(rows.map((at) => [at, column.value(at)]));
    const missing = (key) => key === '' || key === null || key === undefined || Number.isNaN(key);
    const compare = (a, b) => (typeof a === typeof b ? (a < b ? -1 : a > b ? 1 : 0) : typeof a === 'number' ? -1 : 1);
    return [...rows].sort(
      (a, b) =>
        missing(keys.get(a)) - missing(keys.get(b)) ||
        (missing(keys.get(a)) ? 0 : (descending ? -1 : 1) * compare(keys.get(a), keys.get(b))),
    );
  }

  /** The rows to be shown, page by page; on paper, where few have room, first those that did not finish or differ. */
  visible() {
    this.known ??= this.isTree ? this.tree.visible() : this.ordered();
    if (!isPrinting()) {
      return this.known;
    }
    const { against, status } = this.recorded;
    const isOpen = (at) => status[at] === running;
    const differs = (at) => against?.isDifferent(at, this.shown);
    const rows = against && this.isTree ? this.tree.order.filter(differs) : this.known;
    return [...rows.filter(isOpen).reverse(), ...rows.filter((at) => !isOpen(at))];
  }

  draw() {
    const rows = this.visible();
    this.order.value = orders(this.columns).indexOf(this.sorted.column) + 1;
    this.page = Math.max(0, Math.min(this.page, Math.ceil(rows.length / rowsAtOnce) - 1));
    const first = this.page * rowsAtOnce;
    const onPage = rows.slice(first, first + rowsAtOnce);
    this.current = onPage.includes(this.current) ? this.current : (onPage[0] ?? null);
    renew(this.element.tHead, [make('tr', '', ...this.shown.map((column) => this.headOf(column)))]);
    renew(
      this.element.tBodies[0],
      onPage.flatMap((at, place) => this.rowsOf(at, onPage[place - 1])),
    );
    document.getElementById('more').textContent = this.wordsFor(rows, first, onPage.length);
    this.offerPages(rows.length);
  }

  wordsFor(rows, first, shown) {
    const all = this.tree.order.length;
    if (all === 0) {
      return 'This run has no executions below it.';
    }
    const part = shown < rows.length ? `Rows ${first + 1} to ${first + shown} of ` : '';
    const rest =
      rows.length < all
        ? this.isTree
          ? ` and ${(all - rows.length).toLocaleString('en')} folded away`
          : ` found of ${all.toLocaleString('en')}`
        : '';
    return `${part}${count(rows.length, 'row')}${rest}${wordsForDifferences(this.recorded, rows, this.shown)}`;
  }

  headOf(column) {
    const cell = make('th', column.number ? 'number' : '');
    const isSorted = this.sorted.column === column;
    const arrow = isSorted ? (this.sorted.descending ? ' ▾' : ' ▴') : '';
    const sort = button('sort', this.titleOf(column), () => {
      this.sortBy(column.key);
      this.element.tHead.rows[0].cells[this.shown.indexOf(this.columnOf(column.key))].firstChild.focus();
    });
    sort.append(column.quantity ? unitBehind(this.recorded, column.quantity.name) : '', arrow);
    sort.append(differencesIn(this.recorded, column));
    cell.scope = 'col';
    cell.setAttribute('aria-sort', isSorted ? (this.sorted.descending ? 'descending' : 'ascending') : 'none');
    cell.append(sort);
    return cell;
  }

  /** The row of an execution, below that of another one, and its history where it is open. */
  rowsOf(at, above) {
    const row = make('tr', this.recorded.status[at] === running ? 'unfinished' : '');
    this.shown.forEach((column, place) =>
      row.append(place === 0 ? this.firstCell(column, at) : this.anyCell(column, at, above)),
    );
    row.dataset.execution = at;
    if (this.recorded.against?.isAlone(at)) {
      row.classList.add('alone');
      row.querySelector('.open')?.append(make('span', 'difference', ' only in this run'));
    }
    row.setAttribute('aria-level', this.isTree ? this.recorded.depth[at] : 1);
    if (this.isTree && this.tree.folds(at)) {
      row.setAttribute('aria-expanded', !this.tree.folded.has(at));
    }
    row.addEventListener('click', () => this.toggle(at));
    if (!this.opened.has(at)) {
      return [row];
    }
    const { row: opened } = this.opened.get(at);
    opened.firstChild.colSpan = Math.max(1, this.shown.length);
    return [row, opened];
  }

  anyCell(column, at, above) {
    const both = this.recorded.against?.cell(column, at, this.allDigits.checked);
    return both ? this.cellOfBoth(column, both) : this.cell(column, at, above);
  }

  /** What this run has, and what the other one has there. */
  cellOfBoth(column, [own, other]) {
    const cell = make('td', column.number ? 'differs number' : 'differs text');
    show(cell, firstOf(own, mostInCell) || '–').append(differenceOf(other));
    return cell;
  }

  cell(column, at, above) {
    const text = column.text(at) ?? '';
    const isNumber = column.number && typeof column.value(at) === 'number';
    const isBrief = isNumber && column.brief && !this.allDigits.checked;
    const brief = isBrief ? column.brief(at, above) : firstOf(text, mostInCell);
    const cell = make('td', isNumber ? 'number' : brief.length <= mostUnbroken ? 'word' : 'text');
    show(cell, brief);
    if (brief !== text) {
      cell.append(isNumber ? '' : '…');
      cell.title = readable(firstOf(text, mostInTitle));
    }
    return cell;
  }

  firstCell(column, at) {
    const { recorded, tree } = this;
    const cell = make('th', column.number ? 'number' : '');
    cell.scope = 'row';
    const open = showName(make('button', 'open'), column.text(at) || '–');
    open.type = 'button';
    open.tabIndex = at === this.current ? 0 : -1;
    open.setAttribute('aria-expanded', this.opened.has(at));
    if (!this.isTree || (isPrinting() && recorded.status[at] === running)) {
      cell.append(...this.pathBefore(at), open);
      return cell;
    }
    const level = recorded.depth[at] - 1; // of the rows
    cell.style.paddingLeft = `${10 + Math.min(level, deepestIndent) * 14}px`;
    if (level > deepestIndent) {
      open.prepend(`${recorded.depth[at]}: `);
    }
    const name = cell.appendChild(make('div', 'name'));
    if (tree.folds(at)) {
      const isFolded = tree.folded.has(at);
      const fold = button('fold', isFolded ? '▸' : '▾', (event) => {
        event.stopPropagation();
        this.fold(at);
      });
      fold.tabIndex = -1;
      fold.setAttribute('aria-label', isFolded ? 'Unfold' : 'Fold');
      name.append(fold);
    }
    name.append(open);
    return cell;
  }

  /** In a list, what a row belongs to. */
  pathBefore(at) {
    const above = this.recorded.pathTo(at).slice(1, -1);
    return above.flatMap((step) => [showName(make('span', 'hint'), this.recorded.node[step]), ' › ']);
  }

  filterUnfinished() {
    this.filter.showUnfinished();
    this.element.closest('section').scrollIntoView();
  }

  toggle(at) {
    if (!this.opened.delete(at)) {
      this.open(at);
    }
    this.current = at;
    this.draw();
    this.focusRow(at);
  }

  fold(at) {
    this.tree.toggle(at);
    this.known = null;
    this.current = at;
    this.draw();
    this.focusRow(at);
  }

  open(at) {
    if (!this.opened.has(at)) {
      const history = new History(this.recorded, at);
      this.opened.set(at, { history, row: make('tr', 'opened', make('td', '', history.element)) });
    }
  }

  rowOf(at) {
    return this.element.querySelector(`tr[data-execution="${at}"]`);
  }

  focusRow(at) {
    this.rowOf(at)?.querySelector('button.open').focus({ preventScroll: true });
  }

  /** Moves to a row, on whichever page it is. */
  goTo(at) {
    const place = this.visible().indexOf(at);
    if (place >= 0) {
      this.page = Math.floor(place / rowsAtOnce);
      this.current = at;
      this.draw();
      this.focusRow(at);
      this.rowOf(at).scrollIntoView({ block: 'nearest' });
    }
  }

  /** Shows an execution with its history, whatever hides it. */
  reveal(at) {
    this.open(at);
    this.tree.unfoldTo(at);
    this.known = null;
    if (!this.visible().includes(at)) {
      this.filter.clear();
      this.known = null;
    }
    this.goTo(at);
    this.rowOf(at)?.scrollIntoView({ block: 'start' });
  }

  offerPages(total) {
    const pages = Math.ceil(total / rowsAtOnce);
    const go = (label, page) => {
      const goes = button('', label, () => {
        this.page = page;
        this.draw();
        this.element.scrollIntoView();
      });
      goes.disabled = page < 0 || page >= pages || page === this.page;
      return goes;
    };
    const choices = [
      go('First', 0),
      go('Previous rows', this.page - 1),
      go('Next rows', this.page + 1),
      go('Last', pages - 1),
    ];
    document.getElementById('pages').replaceChildren(...(pages > 1 ? choices : []));
  }
}

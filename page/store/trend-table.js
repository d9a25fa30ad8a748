// The numbers of a trend as a table, with links to the runs that recorded the lowest and the highest of them.

import { button, make } from '../view/element.js';
import { moment } from './moment.js';
import { linkToRun, name } from './run-words.js';

const step = 200; // rows that are added at once
const titles = ['From', 'Count', 'Minimum', '5 %', '25 %', 'Median', '75 %', '95 %', 'Maximum'];

const sixDigits = (number) => String(Number(number.toPrecision(6)));

function cellOf(number, extreme) {
  const text = sixDigits(number);
  const cell = make('td', 'number', extreme ? linkToRun(extreme.store, extreme.run, text) : text);
  cell.title = String(number);
  return cell;
}

const rowOf = ({ group, bin }) =>
  make(
    'tr',
    '',
    make('th', '', name(group.name, group.title)),
    make('td', '', moment(bin.from)),
    make('td', 'number', bin.count.toLocaleString('en')),
    cellOf(bin.min, bin.lowest),
    ...['q05', 'q25', 'median', 'q75', 'q95'].map((quantile) => cellOf(bin[quantile])),
    cellOf(bin.max, bin.highest),
  );

export class TrendTable {
  constructor() {
    this.body = make('tbody');
    this.head = make('th');
    const head = make('tr', '', this.head, ...titles.map((title) => make('th', '', title)));
    const table = make('table', '', make('caption', 'unseen', 'The numbers of the plot'), make('thead', '', head));
    table.append(this.body);
    this.more = button('more', '', () => this.add());
    const summary = make('summary', '', 'The numbers as a table');
    this.element = make('details', 'trend-table', summary, make('div', 'scroll', table), this.more);
  }

  /** @param title of the groups; @param groups with their titles and bins */
  show(title, groups) {
    this.head.textContent = title;
    this.rows = groups.flatMap((group) => group.bins.map((bin) => ({ group, bin })));
    this.body.replaceChildren();
    this.add();
  }

  add() {
    const from = this.body.children.length;
    this.body.append(...this.rows.slice(from, from + step).map(rowOf));
    const left = this.rows.length - this.body.children.length;
    this.more.hidden = left === 0;
    this.more.textContent = `Show more: ${left.toLocaleString('en')} further`;
  }
}

// The page of statistics: how the numbers of a parameter changed over time, and what each group of them is like.

import { colour } from '../view/colours.js';
import { make, show } from '../view/element.js';
import { readable } from '../view/text.js';
import { plotOf } from './plot.js';

const mostRows = 2000;
const columns = [
  ['count', 'Count'],
  ['min', 'Minimum'],
  ['q05', '5 %'],
  ['q25', '25 %'],
  ['median', 'Median'],
  ['q75', '75 %'],
  ['q95', '95 %'],
  ['max', 'Maximum'],
  ['mean', 'Mean'],
  ['deviation', 'Deviation'],
  ['drift', 'Drift'],
];

const byId = (id) => document.getElementById(id);
const statistics = JSON.parse(byId('statistics').textContent);
byId('statistics').remove();
byId('licences').textContent = byId('licence-texts').textContent;

const sixDigits = (number) => (number === null ? '' : String(Number(number.toPrecision(6))));
const moment = (stored) => new Date(`${stored.slice(0, 23)}Z`).toLocaleString('en-GB');

function showHead() {
  const { parameter, unit, all } = statistics;
  show(byId('title'), parameter);
  byId('title').append(unit && !parameter.includes(unit) ? ` [${unit}]` : '');
  document.title = readable(parameter);
  byId('subtitle').textContent =
    `${all.count.toLocaleString('en')} numbers from ${moment(all.first_at)} to ${moment(all.last_at)}`;
}

function rowOf(group) {
  const row = make('tr', '', show(make('td'), group.name || '–'));
  for (const [key] of columns) {
    const cell = row.appendChild(make('td', 'number', key === 'count' ? String(group[key]) : sixDigits(group[key])));
    cell.title = group[key] ?? '';
  }
  return row;
}

function showTable() {
  const { groups, all, before, by } = statistics;
  const listed = by ? groups.slice(0, mostRows) : [];
  const table = byId('table');
  const titles = [by || 'Time', ...columns.map(([, title]) => title)];
  table.tHead.append(make('tr', '', ...titles.map((title) => make('th', '', title))));
  table.tBodies[0].append(...[...listed, all, ...(before ? [before] : [])].map(rowOf));
  byId('more').textContent = listed.length < groups.length && by ? `The first ${mostRows} of ${groups.length}.` : '';
}

showHead();
showTable();
const plot = plotOf(byId('plot'), statistics, colour);
plot.draw();
window.addEventListener('resize', () => plot.draw());
window.matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => plot.draw());
byId('alarm').remove();

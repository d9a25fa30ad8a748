// The columns that the table can have.

import { lengthOf } from './clock.js';
import { csvValue } from './csv.js';
import { statusName } from './statuses.js';
import { numberOf, valueText } from './values.js';

const likelyColumns = ['TiltAngle', 'ExposureDose', 'Defocus'];
const mostOwnColumns = 5;

export const columnsOf = (recorded) => [
  ...fixedColumns(recorded),
  ...recorded.quantities.map((quantity) => parameterColumn(recorded, quantity)),
];

/** A column: its stored name, the value in a row, and that as a stored text; shown where picked. */
function fixedColumns(recorded) {
  const { clock } = recorded;
  const ended = (at) => (recorded.ended[at] === Infinity ? NaN : recorded.ended[at]);
  const column = (name, value, text = value, more = {}) => ({ name, value, text, shown: true, ...more });
  return [
    column('Execution', (at) => recorded.node[at]),
    column('Activity', (at) => recorded.versions.get(recorded.version[at])?.name ?? ''),
    column(
      'Status',
      (at) => recorded.status[at],
      (at) => statusName(recorded.status[at]),
    ),
    column(
      'Started',
      (at) => recorded.started[at],
      (at) => clock.moment(recorded.started[at]),
      { number: true, csv: (at) => clock.stored(recorded.started[at]) },
    ),
    column(
      'Duration',
      (at) => ended(at) - recorded.started[at],
      (at) => lengthOf(ended(at) - recorded.started[at]),
      {
        number: true,
        csv: (at) => (Number.isNaN(ended(at)) ? '' : (ended(at) - recorded.started[at]) / 1e6),
        csvName: 'Duration in s',
      },
    ),
    column(
      recorded.raw.slices ? 'Events kept' : 'Events',
      (at) => recorded.eventsOf[at].length,
      (at) => String(recorded.eventsOf[at].length),
      { number: true, shown: false },
    ),
    column('Description', (at) => recorded.description[at], undefined, { shown: false }),
    column('Parent', (at) => recorded.node[recorded.parent[at]], undefined, { shown: false }),
  ];
}

/** What the newest event of an execution has of a quantity. */
function parameterColumn(recorded, quantity) {
  const newest = () => {
    if (!quantity.read) {
      quantity.read = new Map();
      for (const event of recorded.events) {
        const value = recorded.valueOf(event, quantity);
        if (value !== undefined) {
          quantity.read.set(event.execution, [value, recorded.kindOf(event, quantity)]);
        }
      }
    }
    return quantity.read;
  };
  const text = (at) => (newest().has(at) ? valueText(...newest().get(at)) : '');
  const value = (at) => {
    const number = numberOf(newest().get(at)?.[0]);
    return Number.isNaN(number) ? text(at) : number;
  };
  const unique =
    recorded.quantities.filter((other) => other.name === quantity.name && other.occurrence === quantity.occurrence)
      .length === 1;
  return {
    name: unique ? quantity.name : `${quantity.event} · ${quantity.name}`,
    occurrence: quantity.occurrence,
    quantity,
    number: quantity.numeric,
    value,
    text,
    csv: (at) => (newest().has(at) ? csvValue(...newest().get(at)) : ''),
    shown: false,
  };
}

export function pickLikely(recorded, columns, rows) {
  const below = new Set(rows.slice(0, 1000));
  const own = columns.filter(
    ({ quantity }) =>
      quantity && recorded.events.some((event) => below.has(event.execution) && quantity.places.has(event.batch.shape)),
  );
  const likely = own.filter((column) => likelyColumns.includes(column.name));
  const varying = own.filter(
    (column) =>
      !likely.includes(column) &&
      new Set([...below].map((at) => column.value(at)).filter((value) => value !== '')).size > 1,
  );
  const picked = likely
    .concat(varying)
    .concat(own.filter((column) => !likely.includes(column) && !varying.includes(column)));
  picked.slice(0, mostOwnColumns).forEach((column) => (column.shown = true));
}

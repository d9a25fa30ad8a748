// The columns that the table can have.

import { lengthOf } from './clock.js';
import { numberCell, textCell, valueCell } from './csv.js';
import { keyOf } from './recorded.js';
import { statusOf } from './states.js';
import { statusName } from './statuses.js';
import { briefText, valueText } from './values.js';

const likelyColumns = ['TiltAngle', 'ExposureDose', 'Defocus'];
const mostOwnColumns = 5;

export function columnsOf(recorded) {
  const nameOf = ({ name, occurrence }) => JSON.stringify([name, occurrence]);
  const eventsWith = new Map();
  for (const quantity of recorded.quantities) {
    eventsWith.set(nameOf(quantity), (eventsWith.get(nameOf(quantity)) ?? 0) + 1);
  }
  return [
    ...fixedColumns(recorded),
    ...recorded.quantities.map((quantity) => {
      const { event, name } = quantity;
      const unique = eventsWith.get(nameOf(quantity)) === 1;
      return parameterColumn(recorded, quantity, unique ? name : `${event} · ${name}`);
    }),
  ];
}

/**
 * A column: what tells it from others, its stored name, the value in a row, that as a stored text, and as a cell of
 * CSV; shown where picked.
 */
function column(name, value, more = {}) {
  const text = more.text ?? value;
  return { key: name, name, value, text, csv: (at) => textCell(text(at)), occurrence: 1, shown: true, ...more };
}

function fixedColumns(recorded) {
  const { clock, node, started } = recorded;
  const ended = (at) => (recorded.ended[at] === Infinity ? NaN : recorded.ended[at]);
  const duration = (at) => ended(at) - started[at];
  const events = (at) => recorded.eventsOf[at].length;
  const isSameDay = (at, above) => above !== undefined && clock.date(started[at]) === clock.date(started[above]);
  return [
    column('Execution', (at) => node[at]),
    column('Activity', (at) => recorded.versions.get(recorded.version[at])?.name),
    column('Status', (at) => recorded.status[at], {
      text: (at) => statusOf(recorded, at),
      csv: (at) => textCell(statusName(recorded.status[at])),
    }),
    column('Started', (at) => started[at], {
      text: (at) => clock.moment(started[at]),
      brief: (at, above) => (isSameDay(at, above) ? clock.day(started[at]) : clock.moment(started[at])),
      csv: (at) => textCell(clock.stored(started[at])),
      number: true,
    }),
    column('Duration', duration, {
      text: (at) => lengthOf(duration(at)),
      csv: (at) => numberCell(duration(at) / 1e6),
      csvName: 'Duration in s',
      number: true,
    }),
    column(recorded.raw.slices ? 'Events kept' : 'Events', events, {
      key: 'Events',
      text: (at) => String(events(at)),
      csv: (at) => numberCell(events(at)),
      number: true,
      shown: false,
    }),
    column('Description', (at) => recorded.description[at], { shown: false }),
    column('Parent', (at) => node[recorded.parent[at]], { shown: false }),
  ];
}

/** What the newest event of an execution has of a quantity. */
function parameterColumn(recorded, quantity, name) {
  const newest = (at) => {
    quantity.newest ??= newestOf(recorded, quantity);
    return quantity.newest.get(at);
  };
  const stored = (at) => {
    const event = newest(at);
    return event ? [recorded.valueOf(event, quantity), recorded.kindOf(event, quantity)] : [undefined];
  };
  const text = (at) => valueText(...stored(at));
  const value = (at) => {
    const number = newest(at) ? recorded.coordinateOf(newest(at), quantity) : NaN;
    return Number.isNaN(number) ? text(at) : number;
  };
  const csv = (at) => valueCell(...stored(at));
  const brief = (at) => briefText(...stored(at));
  return column(name, value, {
    ...{ text, brief, csv, quantity, occurrence: quantity.occurrence, number: quantity.numeric, shown: false },
    stored,
    key: keyOf(quantity),
  });
}

/** Of each execution the newest event that has a quantity. */
function newestOf(recorded, quantity) {
  const newest = new Map();
  for (const shape of quantity.places.keys()) {
    for (const event of shape.events) {
      if (!(newest.get(event.execution)?.number > event.number)) {
        newest.set(event.execution, event);
      }
    }
  }
  return newest;
}

/** The columns by whose times the steps can be ordered: hosts that record a file state when each was really done. */
export const orders = (columns) => columns.filter(({ quantity }) => quantity?.timely);

export function pickLikely(columns, rows) {
  const below = new Set(rows.slice(0, 1000));
  const isBelow = ({ events }) => events.some((event) => below.has(event.execution));
  const own = columns.filter(({ quantity }) => quantity && [...quantity.places.keys()].some(isBelow));
  const varies = ({ value }) => new Set([...below].map(value).filter((one) => one !== '')).size > 1;
  const picked = new Set(own.filter(({ name }) => likelyColumns.includes(name)));
  for (const one of own) {
    if (picked.size < mostOwnColumns && !picked.has(one) && varies(one)) {
      picked.add(one);
    }
  }
  [...picked, ...own.filter((one) => !picked.has(one))].slice(0, mostOwnColumns).forEach((one) => {
    one.shown = true;
  });
}

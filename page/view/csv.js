// What is in the page as comma-separated values: docs/velora-ts.md, "Tables and timelines".

import { make } from './element.js';
import { statusName } from './statuses.js';
import { wellFormed } from './text.js';
import { numberOf, valueText } from './values.js';

/** A stored text; undefined for none, which an empty one is not. */
export function textCell(stored) {
  if (stored === undefined) {
    return '';
  }
  const text = wellFormed(stored);
  // What a spreadsheet program would take for a formula, and what would look like that mark.
  const marked = /^[=+\-@\t\r\n']/.test(text) && Number.isNaN(numberOf(text)) ? `'${text}` : text;
  return marked === '' || /[",;\t\r\n]|^ | $/.test(marked) ? `"${marked.replaceAll('"', '""')}"` : marked;
}

/** A number in as few characters as tell it from any other; NaN for none. */
export function numberCell(number) {
  if (Number.isNaN(number) || Number.isSafeInteger(number) || !Number.isFinite(number)) {
    return Number.isNaN(number) ? '' : valueText(number);
  }
  const [digits, exponent] = number.toExponential().split('e');
  const scientific = `${digits}e${exponent[0]}${exponent.slice(1).padStart(2, '0')}`;
  const plain = Number.isInteger(number) ? String(BigInt(number)) : String(number);
  return plain.length > scientific.length || plain.includes('e') ? scientific : plain;
}

/** A value of a parameter; undefined for none. */
export function valueCell(value, kind) {
  if (typeof value === 'number' && kind !== 'bool') {
    return numberCell(value);
  }
  if (value === null) {
    return 'null';
  }
  return textCell(value === undefined ? value : valueText(value, kind));
}

const csvOf = (rows) => rows.map((row) => `${row.join(',')}\r\n`).join('');

/** Cells for names, of which no two are alike. */
function headCells(columns) {
  const taken = new Set();
  return columns.map(({ name, occurrence }) => {
    const readable = wellFormed(name);
    let unique = occurrence === 1 ? readable : `${readable} (${occurrence})`;
    for (let more = occurrence + 1; taken.has(unique); ++more) {
      unique = `${readable} (${more})`;
    }
    taken.add(unique);
    return textCell(unique);
  });
}

/** The table as it is chosen and sorted, all of its rows. */
export function csvOfTable(table) {
  const columns = table.shown;
  const names = columns.map(({ name, csvName, occurrence }) => ({ name: csvName ?? name, occurrence }));
  return csvOf([headCells(names), ...table.ordered().map((at) => columns.map((column) => column.csv(at)))]);
}

const eventColumns = ['Event number', 'Event', 'Time', 'Execution', 'Status'].map((name) => ({ name, occurrence: 1 }));

/** A row for each event in the page, a column for each name of a parameter; another one where an event has it twice. */
export function csvOfEvents(recorded) {
  const columns = new Map();
  for (const quantity of recorded.quantities) {
    const key = JSON.stringify([quantity.name, quantity.occurrence]);
    columns.set(key, [...(columns.get(key) ?? []), quantity]);
  }
  const quantities = [...columns.values()];
  const rows = recorded.events.map((event) => [
    numberCell(event.number),
    textCell(event.batch.shape.name),
    textCell(recorded.clock.stored(event.at)),
    textCell(recorded.node[event.execution]),
    textCell(statusName(recorded.status[event.execution])),
    ...quantities.map((ofName) => {
      const quantity = ofName.find(({ places }) => places.has(event.batch.shape));
      return quantity ? valueCell(recorded.valueOf(event, quantity), recorded.kindOf(event, quantity)) : '';
    }),
  ]);
  return csvOf([headCells([...eventColumns, ...quantities.map(([first]) => first)]), ...rows]);
}

export function download(name, text) {
  const link = make('a');
  link.href = URL.createObjectURL(new Blob(['\ufeff', text], { type: 'text/csv' }));
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

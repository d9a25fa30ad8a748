// What is in the page as comma-separated values, for spreadsheets and programs.

import { make } from './element.js';
import { statusName } from './statuses.js';
import { wellFormed } from './text.js';
import { numberOf, valueText } from './values.js';

/** A cell. A text that a spreadsheet would take for a formula has a quotation mark before it there. */
function csvCell(value) {
  const text = typeof value === 'number' ? valueText(value) : wellFormed(String(value ?? ''));
  const formula = typeof value !== 'number' && /^[=+\-@\t\r\n']/.test(text) && Number.isNaN(numberOf(text));
  const harmless = formula ? `'${text}` : text;
  return /[",;\t\r\n]/.test(harmless) ? `"${harmless.replaceAll('"', '""')}"` : harmless;
}

const csvOf = (rows) => rows.map((row) => `${row.map(csvCell).join(',')}\r\n`).join('');

/** Names that no other column has. */
function distinct(names) {
  const seen = new Set();
  return names.map((name) => {
    let fresh = name;
    for (let more = 2; seen.has(fresh); ++more) {
      fresh = `${name} (${more})`;
    }
    seen.add(fresh);
    return fresh;
  });
}

/** The table as it is chosen and sorted, all of its rows. */
export function csvOfTable(table) {
  const columns = table.shown;
  const names = distinct(columns.map((column) => column.csvName ?? column.name));
  return csvOf([names, ...table.ordered().map((at) => columns.map((column) => (column.csv ?? column.text)(at)))]);
}

/** A value for a cell: a number stays one. */
export const csvValue = (value, kind) =>
  typeof value === 'number' && kind !== 'bool' ? value : valueText(value, kind);

/** A row for each event in the page, a column for each name of a parameter; another one where an event has it twice. */
export function csvOfEvents(recorded) {
  const columns = new Map();
  for (const quantity of recorded.quantities) {
    const name = quantity.occurrence > 1 ? `${quantity.name} (${quantity.occurrence})` : quantity.name;
    const key = JSON.stringify([quantity.name, quantity.occurrence]);
    columns.set(key, { name, quantities: [...(columns.get(key)?.quantities ?? []), quantity] });
  }
  const names = distinct([
    'Event number',
    'Event',
    'Time',
    'Execution',
    'Status',
    ...[...columns.values()].map(({ name }) => name),
  ]);
  const rows = recorded.events.map((event) => [
    event.number,
    event.batch.shape.name,
    recorded.clock.stored(event.at),
    recorded.node[event.execution],
    statusName(recorded.status[event.execution]),
    ...[...columns.values()].map(({ quantities }) => {
      const quantity = quantities.find((one) => recorded.valueOf(event, one) !== undefined);
      return quantity ? csvValue(recorded.valueOf(event, quantity), recorded.kindOf(event, quantity)) : '';
    }),
  ]);
  return csvOf([names, ...rows]);
}

export function download(name, text) {
  const link = make('a');
  link.href = URL.createObjectURL(new Blob(['\ufeff', text], { type: 'text/csv' }));
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

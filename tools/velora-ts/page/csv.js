// What is in the page as comma-separated values, for spreadsheets and programs.

/** A cell. A text that a spreadsheet would take for a formula has a quotation mark before it there. */
function csvCell(value) {
  const text = String(value ?? '');
  const harmless = /^[=+\-@\t\r\n]/.test(text) && Number.isNaN(numberOf(text)) ? `'${text}` : text;
  return /[",\r\n]/.test(harmless) ? `"${harmless.replaceAll('"', '""')}"` : harmless;
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
function csvOfTable(table) {
  const columns = table.shown;
  const names = distinct(columns.map((column) => column.csvName ?? column.name));
  return csvOf([names, ...table.ordered().map((at) => columns.map((column) => (column.csv ?? column.text)(at)))]);
}

/** A row for each event in the page, a column for each parameter. */
function csvOfEvents(recorded) {
  const names = distinct([
    'Event number',
    'Event',
    'Time',
    'Execution',
    'Status',
    ...recorded.quantities.map(({ name, occurrence }) => (occurrence > 1 ? `${name} (${occurrence})` : name)),
  ]);
  const rows = recorded.events.map((event) => [
    event.number,
    event.batch.shape.name,
    recorded.clock.stored(event.at),
    recorded.node[event.execution],
    recorded.status[event.execution],
    ...recorded.quantities.map((quantity) => {
      const value = recorded.valueOf(event, quantity);
      return value === undefined ? '' : valueText(value, recorded.kindOf(event, quantity));
    }),
  ]);
  return csvOf([names, ...rows]);
}

function download(name, text) {
  const link = make('a');
  link.href = URL.createObjectURL(new Blob(['\ufeff', text], { type: 'text/csv' }));
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}
